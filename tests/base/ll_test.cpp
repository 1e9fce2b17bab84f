// The linked list: both ends, the cursor, removal by pointer, walks, a model of
// random operations, and the mutex.
#include "ll.h"

#include <algorithm>
#include <list>
#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

namespace {

const char kItems[] = "abcdefghijklmnopqrstuvwxyz";

class Letters {
  public:
    explicit Letters(OSL_MEMTAG tag, const std::string &text = "", OAK_BOOL_T sync = OAK_FALSE) {
        EXPECT_EQ(b_llCreate(sync, tag, &handle), sOKAY);
        for (const char letter : text) {
            EXPECT_EQ(b_llAddTail(handle, item(letter)), sOKAY);
        }
    }
    ~Letters() { b_llDestroy(handle); }
    Letters(const Letters &) = delete;
    Letters &operator=(const Letters &) = delete;

    static const char *item(char letter) { return &kItems[letter - 'a']; }
    /// The contents by a walk from each end, which must agree.
    std::string text() const {
        std::string forward;
        std::string backward;
        EXPECT_EQ(b_llIterate(handle, append, &forward), sOKAY);
        EXPECT_EQ(b_llIterateBackward(handle, append, &backward), sOKAY);
        std::reverse(backward.begin(), backward.end());
        EXPECT_EQ(forward, backward);
        EXPECT_EQ(b_llGetNodeCount(handle), forward.size());
        return forward;
    }

    B_LL handle = nullptr;

  private:
    static OAK_RETCODE append(void *item, void *ctx) {
        *static_cast<std::string *>(ctx) += *static_cast<const char *>(item);
        return sOKAY;
    }
};

/// The letter behind a returned pointer, '-' for null.
char letter(const void *item) {
    return item != nullptr ? *static_cast<const char *>(item) : '-';
}

TEST(LinkedList, AddsAtBothEnds) {
    oaktest::Tag tag;
    Letters list(tag);
    EXPECT_EQ(list.text(), "");
    EXPECT_EQ(b_llAddHead(list.handle, Letters::item('b')), sOKAY);
    EXPECT_EQ(b_llAddTail(list.handle, Letters::item('c')), sOKAY);
    EXPECT_EQ(b_llAddHead(list.handle, Letters::item('a')), sOKAY);
    EXPECT_EQ(list.text(), "abc");
    EXPECT_EQ(letter(b_llGetHead(list.handle)), 'a');
    EXPECT_EQ(letter(b_llGetTail(list.handle)), 'c');
}

TEST(LinkedList, HasNothingWhileEmpty) {
    oaktest::Tag tag;
    const Letters list(tag);
    for (const auto call : {b_llGetHead, b_llGetTail, b_llFirst, b_llLast, b_llNext, b_llPrev,
                            b_llDeleteHead, b_llDeleteTail}) {
        EXPECT_EQ(call(list.handle), nullptr);
    }
    EXPECT_EQ(b_llRemove(list.handle, kItems), nullptr);
    EXPECT_EQ(b_llGetNodeCount(list.handle), 0u);
}

TEST(LinkedList, DeletesAtBothEnds) {
    oaktest::Tag tag;
    const Letters list(tag, "abcd");
    EXPECT_EQ(letter(b_llDeleteHead(list.handle)), 'a');
    EXPECT_EQ(letter(b_llDeleteTail(list.handle)), 'd');
    EXPECT_EQ(list.text(), "bc");
    EXPECT_EQ(letter(b_llDeleteTail(list.handle)), 'c');
    EXPECT_EQ(letter(b_llDeleteTail(list.handle)), 'b');
    EXPECT_EQ(list.text(), "");
    EXPECT_EQ(b_llAddTail(list.handle, Letters::item('x')), sOKAY);
    EXPECT_EQ(list.text(), "x");
}

TEST(LinkedList, WalksByItsCursor) {
    oaktest::Tag tag;
    const Letters list(tag, "abc");
    EXPECT_EQ(b_llNext(list.handle), nullptr) << "no cursor yet";
    EXPECT_EQ(letter(b_llFirst(list.handle)), 'a');
    EXPECT_EQ(letter(b_llNext(list.handle)), 'b');
    EXPECT_EQ(letter(b_llNext(list.handle)), 'c');
    EXPECT_EQ(letter(b_llPrev(list.handle)), 'b');
    EXPECT_EQ(letter(b_llNext(list.handle)), 'c');
    EXPECT_EQ(b_llNext(list.handle), nullptr);
    EXPECT_EQ(b_llNext(list.handle), nullptr) << "it stays past the end";
    EXPECT_EQ(b_llPrev(list.handle), nullptr) << "from both sides";
    EXPECT_EQ(letter(b_llLast(list.handle)), 'c');
    EXPECT_EQ(letter(b_llPrev(list.handle)), 'b');
    EXPECT_EQ(letter(b_llPrev(list.handle)), 'a');
    EXPECT_EQ(b_llPrev(list.handle), nullptr);
}

TEST(LinkedList, MovesItsCursorByFourCallsAlone) {
    oaktest::Tag tag;
    const Letters list(tag, "abc");
    EXPECT_EQ(letter(b_llFirst(list.handle)), 'a');
    EXPECT_EQ(letter(b_llGetTail(list.handle)), 'c');
    EXPECT_EQ(letter(b_llGetHead(list.handle)), 'a');
    EXPECT_EQ(b_llAddHead(list.handle, Letters::item('x')), sOKAY);
    EXPECT_EQ(b_llAddTail(list.handle, Letters::item('y')), sOKAY);
    EXPECT_EQ(list.text(), "xabcy");
    EXPECT_EQ(letter(b_llNext(list.handle)), 'b');
}

TEST(LinkedList, ClearsTheCursorOnADeletedHead) {
    oaktest::Tag tag;
    const Letters list(tag, "abc");
    b_llFirst(list.handle);
    EXPECT_EQ(letter(b_llDeleteHead(list.handle)), 'a');
    EXPECT_EQ(b_llNext(list.handle), nullptr);
    b_llLast(list.handle);
    EXPECT_EQ(letter(b_llDeleteHead(list.handle)), 'b');
    EXPECT_EQ(b_llPrev(list.handle), nullptr) << "c stands alone";
}

// A walk does not survive the deletion of the node under its cursor; it ends.
TEST(LinkedList, EndsAWalkWhoseNodeIsDeleted) {
    oaktest::Tag tag;
    const Letters list(tag, "abcd");
    b_llLast(list.handle);
    EXPECT_EQ(letter(b_llDeleteTail(list.handle)), 'd');
    EXPECT_EQ(b_llPrev(list.handle), nullptr);
    b_llFirst(list.handle);
    b_llNext(list.handle);
    EXPECT_EQ(letter(b_llRemove(list.handle, Letters::item('b'))), 'b');
    EXPECT_EQ(b_llNext(list.handle), nullptr);
    EXPECT_EQ(letter(b_llFirst(list.handle)), 'a');
    EXPECT_EQ(letter(b_llRemove(list.handle, Letters::item('c'))), 'c');
    EXPECT_EQ(b_llNext(list.handle), nullptr) << "another node's deletion leaves it on a";
    EXPECT_EQ(list.text(), "a");
}

TEST(LinkedList, RemovesByPointer) {
    oaktest::Tag tag;
    const Letters list(tag, "abcde");
    const char other = 'c';
    EXPECT_EQ(b_llRemove(list.handle, &other), nullptr) << "not by contents";
    EXPECT_EQ(b_llRemove(list.handle, Letters::item('z')), nullptr);
    for (const char gone : {'a', 'e', 'c', 'b', 'd'}) {
        EXPECT_EQ(b_llRemove(list.handle, Letters::item(gone)), Letters::item(gone));
        EXPECT_EQ(b_llRemove(list.handle, Letters::item(gone)), nullptr);
    }
    EXPECT_EQ(list.text(), "");
}

// The head is looked at first, then the tail, then the rest in order.
TEST(LinkedList, RemovesOneOfSeveralAtHeadTailThenInOrder) {
    oaktest::Tag tag;
    const Letters list(tag, "xaxbx");
    EXPECT_EQ(letter(b_llRemove(list.handle, Letters::item('x'))), 'x');
    EXPECT_EQ(list.text(), "axbx");
    EXPECT_EQ(letter(b_llRemove(list.handle, Letters::item('x'))), 'x');
    EXPECT_EQ(list.text(), "axb");
    EXPECT_EQ(letter(b_llRemove(list.handle, Letters::item('x'))), 'x');
    EXPECT_EQ(list.text(), "ab");
}

struct Stop {
    char at;
    std::string seen;
};
OAK_RETCODE stop_at(void *item, void *ctx) {
    auto *stop = static_cast<Stop *>(ctx);
    stop->seen += letter(item);
    return letter(item) == stop->at ? sTIMEOUT : sOKAY;
}

TEST(LinkedList, StopsAWalkAtTheFirstStatus) {
    oaktest::Tag tag;
    const Letters list(tag, "abcde");
    Stop stop{'c', ""};
    EXPECT_EQ(b_llIterate(list.handle, stop_at, &stop), sTIMEOUT);
    EXPECT_EQ(stop.seen, "abc");
    stop = {'b', ""};
    EXPECT_EQ(b_llIterateBackward(list.handle, stop_at, &stop), sTIMEOUT);
    EXPECT_EQ(stop.seen, "edcb");
    EXPECT_EQ(b_llNext(list.handle), nullptr) << "the cursor is not theirs";
}

TEST(LinkedList, AgreesWithAStandardList) {
    oaktest::Tag tag;
    oaktest::Random random(5);
    const Letters list(tag);
    std::list<char> model;
    for (int step = 0; step < 20000; ++step) {
        const char chosen = kItems[random.below(26)];
        switch (random.below(6)) {
            case 0:
                ASSERT_EQ(b_llAddHead(list.handle, Letters::item(chosen)), sOKAY);
                model.push_front(chosen);
                break;
            case 1:
                ASSERT_EQ(b_llAddTail(list.handle, Letters::item(chosen)), sOKAY);
                model.push_back(chosen);
                break;
            case 2:
                ASSERT_EQ(letter(b_llDeleteHead(list.handle)), model.empty() ? '-' : model.front());
                model.erase(model.begin(), model.empty() ? model.begin() : ++model.begin());
                break;
            case 3:
                ASSERT_EQ(letter(b_llDeleteTail(list.handle)), model.empty() ? '-' : model.back());
                model.erase(model.empty() ? model.end() : --model.end(), model.end());
                break;
            default: {
                auto place = std::find(model.begin(), model.end(), chosen);
                if (!model.empty() && model.front() != chosen && model.back() == chosen) {
                    place = --model.end();
                }
                ASSERT_EQ(letter(b_llRemove(list.handle, Letters::item(chosen))),
                          place == model.end() ? '-' : chosen);
                if (place != model.end()) {
                    model.erase(place);
                }
                break;
            }
        }
        ASSERT_EQ(list.text(), std::string(model.begin(), model.end()));
    }
}

// Under the thread sanitizer this shows that each call is whole.
TEST(LinkedList, ServesSeveralThreadsWithItsMutex) {
    const Letters list(OSL_TAG_PROCESS, "", OAK_TRUE);
    constexpr int kRounds = 500;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                EXPECT_EQ(b_llAddHead(list.handle, Letters::item('h')), sOKAY);
                EXPECT_EQ(b_llAddTail(list.handle, Letters::item('t')), sOKAY);
                EXPECT_NE(b_llGetNodeCount(list.handle), 0u);
                EXPECT_NE(b_llDeleteHead(list.handle), nullptr);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(list.text().size(), size_t{4 * kRounds});
}

TEST(LinkedList, RefusesNullArguments) {
    oaktest::Tag tag;
    const Letters list(tag);
    EXPECT_EQ(b_llCreate(OAK_FALSE, tag, nullptr), eINVNULLARG);
    EXPECT_EQ(b_llAddHead(nullptr, kItems), eINVNULLARG);
    EXPECT_EQ(b_llAddTail(nullptr, kItems), eINVNULLARG);
    EXPECT_EQ(b_llAddHead(list.handle, nullptr), eINVNULLARG);
    EXPECT_EQ(b_llAddTail(list.handle, nullptr), eINVNULLARG);
    EXPECT_EQ(b_llIterate(nullptr, stop_at, nullptr), eINVNULLARG);
    EXPECT_EQ(b_llIterate(list.handle, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_llIterateBackward(nullptr, stop_at, nullptr), eINVNULLARG);
    EXPECT_EQ(b_llIterateBackward(list.handle, nullptr, nullptr), eINVNULLARG);
    for (const auto call : {b_llGetHead, b_llGetTail, b_llFirst, b_llLast, b_llNext, b_llPrev,
                            b_llDeleteHead, b_llDeleteTail}) {
        EXPECT_EQ(call(nullptr), nullptr);
    }
    EXPECT_EQ(b_llRemove(nullptr, kItems), nullptr);
    EXPECT_EQ(b_llGetNodeCount(nullptr), 0u);
    b_llDestroy(nullptr);
}

TEST(LinkedList, StaysAsItWasWhenMemoryOrLocksEnd) {
    oaktest::Tag tag;
    const auto use = [&] {
        B_LL list = nullptr;
        OAK_RETCODE rc = b_llCreate(OAK_TRUE, tag, &list);
        uint32_t added = 0;
        for (; rc == sOKAY && added < 5; added += rc == sOKAY ? 1 : 0) {
            rc = added % 2 == 0 ? b_llAddHead(list, kItems) : b_llAddTail(list, kItems);
        }
        EXPECT_EQ(b_llGetNodeCount(list), added);
        b_llDestroy(list);
        return rc;
    };
    for (const auto resource : {oaktest::Resource::memory, oaktest::Resource::sync}) {
        const uint64_t runs = oaktest::sweep_faults(resource, {eNOMEMORY}, use);
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

} // namespace
