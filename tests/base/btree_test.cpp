// The B-tree: every call by hand on small trees, then random operations against a
// standard set and a model of the cursor, with the whole structure checked after
// each; costs in comparisons; and what is left when memory ends.
#include "btree.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "btree_internal.h"
#include "test_support.h"

namespace {

// Items are pointers into this table of ascending numbers.
constexpr int kNumbers = 4096;
const std::vector<int> &numbers() {
    static const std::vector<int> table = [] {
        std::vector<int> all(kNumbers);
        for (int i = 0; i < kNumbers; ++i) {
            all[static_cast<size_t>(i)] = i;
        }
        return all;
    }();
    return table;
}
const int *item(int number) {
    return &numbers()[static_cast<size_t>(number)];
}

/// The number behind a returned pointer, -1 for null.
int number_of(const void *data) {
    return data != nullptr ? *static_cast<const int *>(data) : -1;
}

struct Context {
    uint64_t comparisons = 0;
};

OAK_COMPARE compare_numbers(const void *data1, const void *data2, void *ctx) {
    ++static_cast<Context *>(ctx)->comparisons;
    const int a = *static_cast<const int *>(data1);
    const int b = *static_cast<const int *>(data2);
    return a < b ? OAK_LT : a > b ? OAK_GT : OAK_EQ;
}

// ---- The structure ----------------------------------------------------------

/// Walks a subtree: fill, order, depth and children. Appends its numbers.
void check_node(const _B_BTREE &tree, const B_BTREE_NODE &node, uint32_t level,
                std::vector<int> *all) {
    const bool isRoot = &node == &tree.root;
    const bool isLeaf = level + 1 == tree.depth;
    ASSERT_LE(node.used, tree.slots);
    ASSERT_GE(node.used, isRoot ? (isLeaf ? 0 : 1) : tree.slots / 2);
    for (uint32_t i = 0; i <= node.used; ++i) {
        ASSERT_EQ(node.slots[i].child == nullptr, isLeaf);
        if (!isLeaf) {
            check_node(tree, *node.slots[i].child, level + 1, all);
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
        if (i < node.used) {
            all->push_back(number_of(node.slots[i].data));
        }
    }
}

/// A path, where there is one, goes down by the children that it names, and ends
/// on an item or in a leaf.
void check_path(const _B_BTREE &tree) {
    const bool pathless = tree.cursor != BtCursor::on_item && tree.cursor != BtCursor::between;
    ASSERT_EQ(tree.pathlevel == kNoBtPath, pathless);
    ASSERT_LE(tree.depth, tree.pathsize);
    if (pathless) {
        return;
    }
    ASSERT_LT(tree.pathlevel, tree.depth);
    ASSERT_EQ(tree.path[0].node, &tree.root);
    for (uint32_t level = 0; level < tree.pathlevel; ++level) {
        ASSERT_LE(tree.path[level].slot, tree.path[level].node->used);
        ASSERT_EQ(tree.path[level].node->slots[tree.path[level].slot].child,
                  tree.path[level + 1].node);
    }
    const B_BTREE_PATH &end = tree.path[tree.pathlevel];
    if (tree.cursor == BtCursor::on_item) {
        ASSERT_LT(end.slot, end.node->used);
    } else {
        ASSERT_EQ(tree.pathlevel + 1, tree.depth);
        ASSERT_LE(end.slot, end.node->used);
    }
}

void check(B_BT tree, const std::set<int> &expected) {
    std::vector<int> all;
    check_node(*tree, tree->root, 0, &all);
    check_path(*tree);
    ASSERT_TRUE(std::equal(all.begin(), all.end(), expected.begin(), expected.end()));
    ASSERT_EQ(b_btCount(tree), expected.size());
}

/// A tree of numbers with the set that it must hold.
class Tree {
  public:
    explicit Tree(uint32_t slots = 4, uint32_t flags = 0) {
        EXPECT_EQ(B_BT_CREATE("numbers", compare_numbers, slots, flags, &context, &handle), sOKAY);
    }
    ~Tree() { b_btDestroy(handle); }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;

    /// Adds `first`, `first` + `step`, ... below `end`.
    void add_range(int first, int end, int step = 1) {
        for (int number = first; number < end; number += step) {
            ASSERT_EQ(b_btAdd(handle, item(number)), sOKAY);
            expected.insert(number);
        }
        verify();
    }
    void verify() { check(handle, expected); }
    int next() { return number_of(b_btNext(handle)); }
    int prev() { return number_of(b_btPrev(handle)); }
    int find(int number) { return number_of(b_btFind(handle, &number)); }
    int find_or_next(int number) { return number_of(b_btFindOrNext(handle, &number)); }
    int find_or_prev(int number) { return number_of(b_btFindOrPrev(handle, &number)); }
    int remove(int number) {
        expected.erase(number);
        return number_of(b_btDelete(handle, &number));
    }
    uint64_t comparisons_since_last_time() { return std::exchange(context.comparisons, 0); }

    Context context;
    B_BT handle = nullptr;
    std::set<int> expected;
};

// ---- Life -------------------------------------------------------------------

TEST(BTree, RefusesFewerThanThreeSlotsAndNoComparisonWithOneCode) {
    Context context;
    B_BT tree = nullptr;
    for (const uint32_t slots : {0u, 1u, 2u}) {
        EXPECT_EQ(B_BT_CREATE("numbers", compare_numbers, slots, 0, &context, &tree), eNOMEMORY);
    }
    EXPECT_EQ(B_BT_CREATE("numbers", nullptr, 32, 0, &context, &tree), eNOMEMORY);
    EXPECT_EQ(B_BT_CREATE("numbers", compare_numbers, 32, 0, &context, nullptr), eINVNULLARG);
    EXPECT_EQ(tree, nullptr);
    ASSERT_EQ(B_BT_CREATE("numbers", compare_numbers, 3, 0, &context, &tree), sOKAY);
    b_btDestroy(tree);
    ASSERT_EQ(B_BT_CREATE(nullptr, compare_numbers, 3, 0, &context, &tree), sOKAY);
    b_btDestroy(tree);
}

TEST(BTree, CopiesItsName) {
    Context context;
    char name[] = "numbers";
    B_BT tree = nullptr;
    ASSERT_EQ(B_BT_CREATE(name, compare_numbers, 3, 0, &context, &tree), sOKAY);
    name[0] = 'X';
    EXPECT_STREQ(tree->name, "numbers");
    b_btDestroy(tree);
}

TEST(BTree, HasNothingWhileEmpty) {
    Tree tree;
    const int number = 1;
    for (const auto call :
         {b_btFirst, b_btLast, b_btNext, b_btPrev, b_btDeleteFirst, b_btDeleteLast}) {
        EXPECT_EQ(call(tree.handle), nullptr);
        tree.verify();
    }
    for (const auto call : {b_btFind, b_btFindOrNext, b_btFindOrPrev, b_btDelete}) {
        EXPECT_EQ(call(tree.handle, &number), nullptr);
        EXPECT_EQ(b_btNext(tree.handle), nullptr);
        EXPECT_EQ(call(tree.handle, &number), nullptr);
        EXPECT_EQ(b_btPrev(tree.handle), nullptr);
        tree.verify();
    }
    EXPECT_EQ(b_btCount(tree.handle), 0u);
}

TEST(BTree, TakesNullArguments) {
    Tree tree;
    const int number = 1;
    EXPECT_EQ(b_btAdd(nullptr, &number), eINVNULLARG);
    EXPECT_EQ(b_btAdd(tree.handle, nullptr), eINVNULLARG);
    EXPECT_EQ(b_btAddMultiple(nullptr, 0, nullptr), eINVNULLARG);
    EXPECT_EQ(b_btAddMultiple(tree.handle, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(b_btAddMultiple(tree.handle, 0, nullptr), sOKAY);
    EXPECT_EQ(b_btCount(nullptr), 0u);
    for (const auto call :
         {b_btFirst, b_btLast, b_btNext, b_btPrev, b_btDeleteFirst, b_btDeleteLast}) {
        EXPECT_EQ(call(nullptr), nullptr);
    }
    for (const auto call : {b_btFind, b_btFindOrNext, b_btFindOrPrev, b_btDelete}) {
        EXPECT_EQ(call(nullptr, &number), nullptr);
    }
    b_btDestroy(nullptr);
    tree.verify();
}

// ---- Add and delete ---------------------------------------------------------

TEST(BTree, AddsInAnyOrder) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u, 32u}) {
        Tree ascending(slots);
        Tree descending(slots);
        for (int i = 0; i < 300; ++i) {
            for (auto *tree : {&ascending, &descending}) {
                const int number = tree == &ascending ? i : 299 - i;
                ASSERT_EQ(b_btAdd(tree->handle, item(number)), sOKAY);
                tree->expected.insert(number);
                tree->verify();
            }
        }
    }
}

TEST(BTree, RefusesADuplicate) {
    Tree tree;
    tree.add_range(0, 50);
    const int other = 7; // equal, another pointer
    EXPECT_EQ(b_btAdd(tree.handle, &other), eDUPLICATE);
    EXPECT_EQ(b_btAdd(tree.handle, item(49)), eDUPLICATE);
    tree.verify();
    EXPECT_EQ(b_btFind(tree.handle, &other), item(7)) << "the stored pointer";
}

// A node of four slots splits at the fifth entry: two to the left, two to the right.
TEST(BTree, SplitsTheRootInHalves) {
    Tree tree(4);
    tree.add_range(0, 4);
    EXPECT_EQ(tree.handle->depth, 1u);
    tree.add_range(4, 5);
    EXPECT_EQ(tree.handle->depth, 2u);
    EXPECT_EQ(tree.handle->root.used, 1u);
    EXPECT_EQ(number_of(tree.handle->root.slots[0].data), 2);
    EXPECT_EQ(tree.handle->root.slots[0].child->used, 2u);
    EXPECT_EQ(tree.handle->root.slots[1].child->used, 2u);
}

TEST(BTree, AddsSeveralInOrderOrNone) {
    Tree tree;
    tree.add_range(10, 20);
    const void *fresh[] = {item(5), item(30), item(7)};
    EXPECT_EQ(b_btAddMultiple(tree.handle, 3, fresh), sOKAY);
    tree.expected.insert({5, 30, 7});
    tree.verify();
    const void *clash[] = {item(1), item(2), item(3), item(15), item(4)};
    EXPECT_EQ(b_btAddMultiple(tree.handle, 5, clash), eDUPLICATE);
    tree.verify();
    const void *twice[] = {item(1), item(1)};
    EXPECT_EQ(b_btAddMultiple(tree.handle, 2, twice), eDUPLICATE);
    tree.verify();
    const void *broken[] = {item(1), nullptr};
    EXPECT_EQ(b_btAddMultiple(tree.handle, 2, broken), eINVNULLARG);
    tree.verify();
}

TEST(BTree, DeletesEachItemOfTreesOfEverySize) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u}) {
        for (int size = 1; size <= 40; ++size) {
            for (int gone = 0; gone < size; ++gone) {
                Tree tree(slots);
                tree.add_range(0, size);
                ASSERT_EQ(tree.remove(gone), gone);
                tree.verify();
                ASSERT_EQ(tree.remove(gone), -1);
                tree.verify();
            }
        }
    }
}

TEST(BTree, HandsBackTheStoredPointer) {
    Tree tree;
    tree.add_range(0, 10);
    const int lookup = 4;
    EXPECT_EQ(b_btFind(tree.handle, &lookup), item(4));
    EXPECT_EQ(b_btDelete(tree.handle, &lookup), item(4));
    EXPECT_EQ(b_btDeleteFirst(tree.handle), item(0));
    EXPECT_EQ(b_btDeleteLast(tree.handle), item(9));
}

TEST(BTree, EmptiesAndFillsAgain) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u, 32u}) {
        Tree tree(slots);
        for (int round = 0; round < 3; ++round) {
            tree.add_range(0, 200);
            for (int i = 0; i < 200; ++i) {
                const int number = i % 2 == 0 ? *tree.expected.begin() : *tree.expected.rbegin();
                const auto call = i % 2 == 0 ? b_btDeleteFirst : b_btDeleteLast;
                ASSERT_EQ(number_of(call(tree.handle)), number);
                tree.expected.erase(number);
                tree.verify();
            }
            EXPECT_EQ(tree.handle->depth, 1u);
            EXPECT_EQ(b_btDeleteFirst(tree.handle), nullptr);
        }
    }
}

// ---- Find -------------------------------------------------------------------

TEST(BTree, FindsAndTheirNeighbours) {
    for (const uint32_t slots : {3u, 4u, 8u, 32u}) {
        Tree tree(slots);
        tree.add_range(1, 200, 2); // odd numbers, 1 to 199
        for (int number = 0; number <= 200; ++number) {
            const bool there = number % 2 == 1;
            ASSERT_EQ(tree.find(number), there ? number : -1);
            ASSERT_EQ(tree.find_or_next(number), there ? number : number == 200 ? -1 : number + 1);
            ASSERT_EQ(tree.find_or_prev(number), there ? number : number == 0 ? -1 : number - 1);
        }
        tree.verify();
    }
}

// ---- The cursor -------------------------------------------------------------

TEST(BTreeCursor, WalksBothWays) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u, 32u}) {
        Tree tree(slots);
        tree.add_range(0, 300);
        int expected = 0;
        for (int got = number_of(b_btFirst(tree.handle)); got >= 0; got = tree.next()) {
            ASSERT_EQ(got, expected++);
        }
        EXPECT_EQ(expected, 300);
        for (int got = number_of(b_btLast(tree.handle)); got >= 0; got = tree.prev()) {
            ASSERT_EQ(got, --expected);
        }
        EXPECT_EQ(expected, 0);
    }
}

// Whatever step follows a step gives the neighbour, across all levels.
TEST(BTreeCursor, TurnsRoundAnywhere) {
    for (const uint32_t slots : {3u, 4u, 5u}) {
        Tree tree(slots);
        tree.add_range(0, 100);
        for (int number = 0; number < 100; ++number) {
            const int after = number == 99 ? -1 : number + 1;
            const int before = number - 1;
            ASSERT_EQ(tree.find(number), number);
            ASSERT_EQ(tree.next(), after);
            ASSERT_EQ(tree.prev(), number);
            ASSERT_EQ(tree.prev(), before);
            ASSERT_EQ(tree.next(), number);
        }
    }
}

TEST(BTreeCursor, RestsPastAnEnd) {
    Tree tree;
    tree.add_range(0, 20);
    EXPECT_EQ(number_of(b_btLast(tree.handle)), 19);
    EXPECT_EQ(tree.next(), -1);
    EXPECT_EQ(tree.next(), -1);
    EXPECT_EQ(tree.prev(), 19) << "back from past the end";
    EXPECT_EQ(number_of(b_btFirst(tree.handle)), 0);
    EXPECT_EQ(tree.prev(), -1);
    EXPECT_EQ(tree.prev(), -1);
    EXPECT_EQ(tree.next(), 0);
}

TEST(BTreeCursor, GoesNowhereBeforeItWasSet) {
    Tree tree;
    ASSERT_EQ(tree.next(), -1);
    tree.add_range(0, 20);
    EXPECT_EQ(number_of(b_btDeleteFirst(tree.handle)), 0);
    EXPECT_EQ(tree.next(), -1);
    EXPECT_EQ(tree.prev(), -1);
    EXPECT_EQ(number_of(b_btDeleteLast(tree.handle)), 19);
    EXPECT_EQ(tree.prev(), -1);
    EXPECT_EQ(tree.next(), -1);
}

TEST(BTreeCursor, StandsInTheGapAfterAFindWithoutAHit) {
    for (const uint32_t slots : {3u, 4u, 8u}) {
        Tree tree(slots);
        tree.add_range(1, 100, 2);
        for (int gap = 0; gap <= 100; gap += 2) {
            const int after = gap == 100 ? -1 : gap + 1;
            const int before = gap == 0 ? -1 : gap - 1;
            ASSERT_EQ(tree.find(gap), -1);
            ASSERT_EQ(tree.next(), after);
            ASSERT_EQ(tree.find(gap), -1);
            ASSERT_EQ(tree.prev(), before);
            ASSERT_EQ(tree.find_or_next(gap), after);
            ASSERT_EQ(tree.prev(), before);
            ASSERT_EQ(tree.find_or_prev(gap), before);
            ASSERT_EQ(tree.next(), after);
        }
    }
}

TEST(BTreeCursor, GoesOnFromADeletedItem) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u}) {
        for (int gone = 0; gone < 60; ++gone) {
            for (const bool forward : {true, false}) {
                Tree tree(slots);
                tree.add_range(0, 60);
                ASSERT_EQ(tree.remove(gone), gone);
                tree.verify();
                ASSERT_EQ(forward ? tree.next() : tree.prev(),
                          forward ? (gone == 59 ? -1 : gone + 1) : gone - 1);
                ASSERT_EQ(forward ? tree.prev() : tree.next(),
                          forward ? gone - 1 : (gone == 59 ? -1 : gone + 1));
            }
        }
    }
}

TEST(BTreeCursor, SurvivesAWalkThatDeletesEverything) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u, 32u}) {
        Tree tree(slots);
        tree.add_range(0, 200);
        int expected = 0;
        for (int got = number_of(b_btFirst(tree.handle)); got >= 0; got = tree.next()) {
            ASSERT_EQ(got, expected++);
            ASSERT_EQ(tree.remove(got), got);
        }
        EXPECT_EQ(expected, 200);
        tree.add_range(0, 200);
        for (int got = number_of(b_btLast(tree.handle)); got >= 0; got = tree.prev()) {
            ASSERT_EQ(got, --expected);
            ASSERT_EQ(tree.remove(got), got);
        }
        EXPECT_EQ(expected, 0);
        tree.verify();
    }
}

TEST(BTreeCursor, StandsOnTheItemThatWasAdded) {
    for (const uint32_t slots : {3u, 4u, 5u, 8u}) {
        for (int added = 0; added < 60; ++added) {
            Tree tree(slots);
            for (int number = 0; number < 60; ++number) {
                if (number != added) {
                    ASSERT_EQ(b_btAdd(tree.handle, item(number)), sOKAY);
                }
            }
            ASSERT_EQ(b_btAdd(tree.handle, item(added)), sOKAY);
            ASSERT_EQ(tree.next(), added == 59 ? -1 : added + 1);
            ASSERT_EQ(tree.prev(), added);
            ASSERT_EQ(tree.prev(), added - 1);
        }
    }
}

// Adding does not end a walk that deletes: the next step is still what followed.
TEST(BTreeCursor, YieldsTheStaleSuccessorOnceAfterDeleteThenAdd) {
    Tree tree;
    tree.add_range(0, 100, 10);
    ASSERT_EQ(tree.remove(20), 20);
    ASSERT_EQ(b_btAdd(tree.handle, item(75)), sOKAY);
    EXPECT_EQ(tree.next(), 30) << "not 80, the successor of what was added";
    EXPECT_EQ(tree.next(), 40);
    ASSERT_EQ(tree.remove(60), 60);
    ASSERT_EQ(b_btAdd(tree.handle, item(65)), sOKAY);
    EXPECT_EQ(tree.prev(), 65) << "what now precedes 70";
    EXPECT_EQ(tree.next(), 70);
}

TEST(BTreeCursor, ForgetsTheSuccessorWithALookupOrAnEnd) {
    const auto prepare = [](Tree *tree) {
        tree->add_range(0, 100, 10);
        ASSERT_EQ(tree->remove(20), 20); // 30 follows
    };
    const int lookup = 50;
    for (const auto call : {b_btFind, b_btFindOrNext, b_btFindOrPrev}) {
        Tree tree;
        prepare(&tree);
        EXPECT_EQ(number_of(call(tree.handle, &lookup)), 50);
        EXPECT_EQ(tree.next(), 60);
    }
    Tree first;
    prepare(&first);
    EXPECT_EQ(number_of(b_btFirst(first.handle)), 0);
    EXPECT_EQ(first.next(), 10);
    Tree last;
    prepare(&last);
    EXPECT_EQ(number_of(b_btLast(last.handle)), 90);
    EXPECT_EQ(last.prev(), 80);
}

// The ends are deleted without a successor being remembered; an old one stays unless
// it is the very item that goes.
TEST(BTreeCursor, LeavesAnOldSuccessorAloneWhenAnEndIsDeleted) {
    Tree tree;
    tree.add_range(0, 100, 10);
    ASSERT_EQ(tree.remove(20), 20);
    ASSERT_EQ(number_of(b_btDeleteFirst(tree.handle)), 0);
    ASSERT_EQ(number_of(b_btDeleteLast(tree.handle)), 90);
    EXPECT_EQ(tree.next(), 30);

    Tree front;
    front.add_range(0, 50, 10);
    ASSERT_EQ(front.remove(0), 0); // 10 follows
    ASSERT_EQ(number_of(b_btDeleteFirst(front.handle)), 10);
    EXPECT_EQ(front.next(), -1) << "10 may be freed by now";
    Tree back;
    back.add_range(0, 50, 10);
    ASSERT_EQ(back.remove(30), 30); // 40 follows
    ASSERT_EQ(number_of(b_btDeleteLast(back.handle)), 40);
    EXPECT_EQ(back.prev(), -1);
}

TEST(BTreeCursor, KeepsTheSuccessorOverADeleteThatFindsNothing) {
    Tree tree;
    tree.add_range(0, 100, 10);
    ASSERT_EQ(tree.remove(20), 20);
    EXPECT_EQ(tree.remove(55), -1);
    EXPECT_EQ(tree.next(), 30);
}

// ---- Against a model --------------------------------------------------------

/// A standard set with the cursor's rules as btree.h tells them.
class Model {
  public:
    std::set<int> items;

    bool add(int number) {
        const bool added = items.insert(number).second;
        stand_on(number);
        return added;
    }
    int remove(int number) {
        if (items.erase(number) == 0) {
            stand(Where::gap, number);
            return -1;
        }
        const auto follows = items.upper_bound(number);
        next_value_ = follows != items.end() ? std::optional<int>(*follows) : std::nullopt;
        where_ = next_value_ ? Where::lost : Where::end;
        return number;
    }
    int remove_end(bool front) {
        where_ = Where::lost;
        if (items.empty()) {
            return -1;
        }
        const int number = front ? *items.begin() : *items.rbegin();
        items.erase(number);
        if (next_value_ == number) {
            next_value_.reset();
        }
        return number;
    }
    int find(int number) {
        next_value_.reset();
        stand(items.count(number) > 0 ? Where::on : Where::gap, number);
        return where_ == Where::on ? number : -1;
    }
    int find_or(int number, bool forward) {
        return find(number) >= 0 ? number : forward ? next() : prev();
    }
    int go_to_end(bool front) {
        next_value_.reset();
        if (items.empty()) {
            where_ = Where::lost;
            return -1;
        }
        return stand_on(front ? *items.begin() : *items.rbegin());
    }
    int next() {
        if (next_value_) {
            return stand_on(*std::exchange(next_value_, std::nullopt));
        }
        if (where_ == Where::start) {
            return go_to_end(true);
        }
        if (where_ == Where::lost || where_ == Where::end) {
            return -1;
        }
        const auto place = items.upper_bound(at_);
        return place != items.end() ? stand_on(*place) : stand(Where::end, 0);
    }
    int prev() {
        if (next_value_) {
            stand_on(*std::exchange(next_value_, std::nullopt));
        }
        if (where_ == Where::end) {
            return go_to_end(false);
        }
        if (where_ == Where::lost || where_ == Where::start) {
            return -1;
        }
        const auto place = items.lower_bound(at_);
        return place != items.begin() ? stand_on(*std::prev(place)) : stand(Where::start, 0);
    }

  private:
    enum class Where { lost, on, gap, start, end };
    int stand_on(int number) {
        stand(Where::on, number);
        return number;
    }
    int stand(Where where, int number) {
        where_ = where;
        at_ = number;
        return -1;
    }
    Where where_ = Where::lost;
    int at_ = 0;
    std::optional<int> next_value_;
};

/// One random operation on both; false when they disagree.
void step_both(Tree *tree, Model *model, oaktest::Random *random, int range, uint64_t adds) {
    const int number = static_cast<int>(random->below(static_cast<uint64_t>(range)));
    const uint64_t kind = random->below(20 + adds);
    B_BT handle = tree->handle;
    if (kind >= 20 || kind < 2) {
        const OAK_RETCODE rc = b_btAdd(handle, item(number));
        ASSERT_EQ(rc, model->add(number) ? sOKAY : eDUPLICATE);
    } else if (kind < 6) {
        ASSERT_EQ(number_of(b_btDelete(handle, &number)), model->remove(number));
    } else if (kind == 6) {
        ASSERT_EQ(number_of(b_btDeleteFirst(handle)), model->remove_end(true));
    } else if (kind == 7) {
        ASSERT_EQ(number_of(b_btDeleteLast(handle)), model->remove_end(false));
    } else if (kind < 10) {
        ASSERT_EQ(tree->find(number), model->find(number));
    } else if (kind == 10) {
        ASSERT_EQ(tree->find_or_next(number), model->find_or(number, true));
    } else if (kind == 11) {
        ASSERT_EQ(tree->find_or_prev(number), model->find_or(number, false));
    } else if (kind == 12) {
        ASSERT_EQ(number_of(b_btFirst(handle)), model->go_to_end(true));
    } else if (kind == 13) {
        ASSERT_EQ(number_of(b_btLast(handle)), model->go_to_end(false));
    } else if (kind < 17) {
        ASSERT_EQ(tree->next(), model->next());
    } else {
        ASSERT_EQ(tree->prev(), model->prev());
    }
}

class BTreeModel : public testing::TestWithParam<uint32_t> {};

TEST_P(BTreeModel, AgreesAfterEveryOperation) {
    oaktest::Random random(7 + GetParam());
    Tree tree(GetParam());
    Model model;
    for (int step = 0; step < 6000; ++step) {
        // Tides: the tree fills for a while, then empties.
        const uint64_t adds = step / 500 % 2 == 0 ? 12 : 0;
        const int range = step / 1000 % 2 == 0 ? 120 : 400;
        step_both(&tree, &model, &random, range, adds);
        ASSERT_FALSE(HasFatalFailure()) << "step " << step;
        check(tree.handle, model.items);
        ASSERT_FALSE(HasFatalFailure()) << "step " << step;
    }
}

INSTANTIATE_TEST_SUITE_P(Slots, BTreeModel, testing::Values(3, 4, 5, 8, 32),
                         [](const auto &each) { return std::to_string(each.param); });

// ---- Costs ------------------------------------------------------------------

TEST(BTreeCost, FindsWithAboutTheLogarithmOfComparisons) {
    Tree tree(32);
    tree.add_range(0, kNumbers);
    oaktest::Random random(8);
    uint64_t most = 0;
    for (int i = 0; i < 2000; ++i) {
        const int number = static_cast<int>(random.below(kNumbers));
        (void)tree.comparisons_since_last_time();
        ASSERT_EQ(tree.find(number), number);
        most = std::max(most, tree.comparisons_since_last_time());
    }
    EXPECT_LE(most, 12u + 4u + 2u) << "log2 of 4096, a rounding a level, a look at the last node";
}

TEST(BTreeCost, FindsCloseToTheLastFindWithinTheNode) {
    Tree tree(32);
    tree.add_range(0, kNumbers);
    ASSERT_EQ(tree.find(104), 104);
    ASSERT_EQ(tree.find(105), 105);
    for (const int number : {104, 108, 105}) {
        (void)tree.comparisons_since_last_time();
        ASSERT_EQ(tree.find(number), number);
        EXPECT_LE(tree.comparisons_since_last_time(), 7u) << "two and log2 of 32";
    }
}

TEST(BTreeCost, WalksWithoutAComparison) {
    Tree tree(4);
    tree.add_range(0, 1000);
    ASSERT_EQ(tree.find(500), 500);
    (void)tree.comparisons_since_last_time();
    while (tree.next() >= 0) {
    }
    while (tree.prev() >= 0) {
    }
    EXPECT_NE(b_btDeleteFirst(tree.handle), nullptr);
    EXPECT_NE(b_btDeleteLast(tree.handle), nullptr);
    EXPECT_EQ(tree.comparisons_since_last_time(), 0u);
}

TEST(BTreeCost, AddsWhatALookupMissedWithTwoComparisons) {
    Tree tree(8);
    tree.add_range(0, 2000, 2);
    for (int number = 1; number < 2000; number += 2) {
        ASSERT_EQ(tree.find(number), -1);
        (void)tree.comparisons_since_last_time();
        ASSERT_EQ(b_btAdd(tree.handle, item(number)), sOKAY);
        EXPECT_LE(tree.comparisons_since_last_time(), 2u);
        tree.expected.insert(number);
    }
    tree.verify();
}

TEST(BTreeCost, TakesNoMemoryInASteadyState) {
    Tree tree(4);
    tree.add_range(0, 1000);
    const oaktest::Live before = oaktest::Live::now();
    for (int round = 0; round < 3; ++round) {
        for (int number = 0; number < 1000; number += 3) {
            ASSERT_EQ(tree.remove(number), number);
        }
        tree.add_range(0, 1000, 3);
    }
    const oaktest::Live after = oaktest::Live::now();
    EXPECT_LE(after.counts[1], before.counts[1] + 100) << "nodes, not more of them each round";
}

// ---- Threads and failures ---------------------------------------------------

TEST(BTree, ServesSeveralThreadsWithItsMutex) {
    Tree tree(4, B_BT_SYNC);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = thread; i < 1000; i += 4) {
                EXPECT_EQ(b_btAdd(tree.handle, item(i)), sOKAY);
                EXPECT_EQ(b_btFind(tree.handle, item(i)), item(i));
                EXPECT_NE(b_btFirst(tree.handle), nullptr);
                (void)b_btNext(tree.handle);
                EXPECT_NE(b_btCount(tree.handle), 0u);
                if (i % 2 == 1) {
                    EXPECT_EQ(b_btDelete(tree.handle, item(i)), item(i));
                }
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (int i = 0; i < 1000; i += 2) {
        tree.expected.insert(i);
    }
    tree.verify();
}

TEST(BTree, IsNotMadeWhenMemoryOrLocksEnd) {
    for (const auto resource : {oaktest::Resource::memory, oaktest::Resource::sync}) {
        Context context;
        const uint64_t runs = oaktest::sweep_faults(resource, {eNOMEMORY}, [&] {
            B_BT tree = nullptr;
            const OAK_RETCODE rc =
                B_BT_CREATE("numbers", compare_numbers, 32, B_BT_SYNC, &context, &tree);
            EXPECT_EQ(tree != nullptr, rc == sOKAY);
            b_btDestroy(tree);
            return rc;
        });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

// A failed split leaves the tree as it was, down to the cursor's path.
TEST(BTree, StaysAsItWasWhenMemoryEnds) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        Context context;
        B_BT tree = nullptr;
        OAK_RETCODE rc = B_BT_CREATE(nullptr, compare_numbers, 3, 0, &context, &tree);
        if (rc != sOKAY) {
            return rc;
        }
        std::set<int> expected;
        for (int i = 0; i < 150 && rc == sOKAY; ++i) {
            rc = b_btAdd(tree, item(i * 37 % 150));
            if (rc == sOKAY) {
                expected.insert(i * 37 % 150);
            }
        }
        check(tree, expected);
        for (const int number : expected) { // and can still be used
            EXPECT_EQ(number_of(b_btDelete(tree, &number)), number);
        }
        b_btDestroy(tree);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(BTree, AddsNoneOfSeveralWhenMemoryEnds) {
    std::vector<const void *> several;
    for (int i = 0; i < 60; ++i) {
        several.push_back(item(i * 7 % 60 * 2));
    }
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        Context context;
        B_BT tree = nullptr;
        OAK_RETCODE rc = B_BT_CREATE(nullptr, compare_numbers, 4, 0, &context, &tree);
        std::set<int> expected;
        for (int number = 1; number < 30 && rc == sOKAY; number += 2) {
            rc = b_btAdd(tree, item(number));
            expected.insert(number);
        }
        if (rc == sOKAY) {
            rc = b_btAddMultiple(tree, 60, several.data());
            for (int i = 0; i < 60 && rc == sOKAY; ++i) {
                expected.insert(i * 2);
            }
            check(tree, expected);
        }
        b_btDestroy(tree);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
