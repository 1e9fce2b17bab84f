// The B-tree beside std::set and absl::btree_set: finding in random order, finding
// in ascending order, adding in random order, walking, and deleting and adding in a
// steady state. All three hold pointers to the same records, which lie in random
// order in memory, and compare them with the same function.
//
// The tree has 32 slots, as the maps give it.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <utility>
#include <vector>

#include <absl/container/btree_set.h>
#include <benchmark/benchmark.h>

#include "btree.h"

namespace {

struct Record {
    uint64_t key;
    uint64_t payload;
};

OAK_COMPARE compare_records(const void *data1, const void *data2, void *) {
    const uint64_t a = static_cast<const Record *>(data1)->key;
    const uint64_t b = static_cast<const Record *>(data2)->key;
    return a < b ? OAK_LT : a > b ? OAK_GT : OAK_EQ;
}

/// The function behind a pointer that the compiler cannot see through.
B_BT_COMPARE volatile const g_compare = compare_records;

uint64_t next_random(uint64_t *state) {
    uint64_t z = (*state += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

/// Records with the keys 0 to count - 1 in random order.
std::vector<Record> make_records(size_t count) {
    std::vector<Record> records(count);
    uint64_t state = 14;
    for (size_t i = 0; i < count; ++i) {
        records[i] = {i, i};
        std::swap(records[i], records[next_random(&state) % (i + 1)]);
    }
    return records;
}

/// The tree, in the shape that the peers have below.
class OakTree {
  public:
    OakTree() {
        if (B_BT_CREATE("bench", g_compare, 32, 0, nullptr, &tree_) != sOKAY) {
            std::abort();
        }
    }
    ~OakTree() { b_btDestroy(tree_); }
    OakTree(const OakTree &) = delete;
    OakTree &operator=(const OakTree &) = delete;
    void add(const Record *record) {
        OAK_IGNORE_STATUS(b_btAdd(tree_, record), "a duplicate changes nothing");
    }
    const void *find(const Record *record) { return b_btFind(tree_, record); }
    void remove(const Record *record) { b_btDelete(tree_, record); }
    uint64_t walk() {
        uint64_t sum = 0;
        for (void *item = b_btFirst(tree_); item != nullptr; item = b_btNext(tree_)) {
            sum += reinterpret_cast<uintptr_t>(item);
        }
        return sum;
    }

  private:
    B_BT tree_ = nullptr;
};

/// Orders by the same function; its answer serves a three-way tree as it is.
struct Less {
    B_BT_COMPARE compare = g_compare;
    bool operator()(const Record *a, const Record *b) const {
        return compare(a, b, nullptr) == OAK_LT;
    }
};

template <class Set>
class Peer {
  public:
    void add(const Record *record) { set_.insert(record); }
    const void *find(const Record *record) {
        const auto place = set_.find(record);
        return place != set_.end() ? *place : nullptr;
    }
    void remove(const Record *record) { set_.erase(record); }
    uint64_t walk() {
        uint64_t sum = 0;
        for (const Record *item : set_) {
            sum += reinterpret_cast<uintptr_t>(item);
        }
        return sum;
    }

  private:
    Set set_;
};
using StdSet = Peer<std::set<const Record *, Less>>;
using AbslBtreeSet = Peer<absl::btree_set<const Record *, Less>>;

template <class Tree>
void fill(Tree *tree, const std::vector<Record> &records) {
    for (const Record &record : records) {
        tree->add(&record);
    }
}

/// Finds a random record each time, or each in ascending order of the keys.
template <class Tree, bool kAscending>
void find(benchmark::State &state) {
    const auto count = static_cast<size_t>(state.range(0));
    const std::vector<Record> records = make_records(count);
    Tree tree;
    fill(&tree, records);
    uint64_t random = 7;
    Record lookup{};
    for (auto _ : state) {
        lookup.key = kAscending ? (lookup.key + 1) % count : next_random(&random) % count;
        benchmark::DoNotOptimize(tree.find(&lookup));
    }
}

/// Adds all records to an empty tree; the time is that of one.
template <class Tree>
void add(benchmark::State &state) {
    const std::vector<Record> records = make_records(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        Tree tree;
        fill(&tree, records);
        benchmark::DoNotOptimize(&tree);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Deletes a random record and adds it again.
template <class Tree>
void change(benchmark::State &state) {
    const std::vector<Record> records = make_records(static_cast<size_t>(state.range(0)));
    Tree tree;
    fill(&tree, records);
    uint64_t random = 7;
    for (auto _ : state) {
        const Record *record = &records[next_random(&random) % records.size()];
        tree.remove(record);
        tree.add(record);
    }
}

template <class Tree>
void walk(benchmark::State &state) {
    const std::vector<Record> records = make_records(static_cast<size_t>(state.range(0)));
    Tree tree;
    fill(&tree, records);
    for (auto _ : state) {
        benchmark::DoNotOptimize(tree.walk());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

#define BTREE_BENCH(Tree)                                                                          \
    BENCHMARK(find<Tree, false>)->Name("find_random/" #Tree)->Arg(1000)->Arg(100000);              \
    BENCHMARK(find<Tree, true>)->Name("find_ascending/" #Tree)->Arg(1000)->Arg(100000);            \
    BENCHMARK(add<Tree>)->Name("add_random/" #Tree)->Arg(1000)->Arg(100000);                       \
    BENCHMARK(change<Tree>)->Name("delete_and_add/" #Tree)->Arg(1000)->Arg(100000);                \
    BENCHMARK(walk<Tree>)->Name("walk/" #Tree)->Arg(1000)->Arg(100000)
BTREE_BENCH(OakTree);
BTREE_BENCH(StdSet);
BTREE_BENCH(AbslBtreeSet);

} // namespace
