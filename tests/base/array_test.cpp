// The pointer array: positions, removal, searches, walks with undo.
#include "array.h"

#include <string>
#include <vector>

#include "test_support.h"

namespace {

const char kItems[] = "abcdefghijklmnopqrstuvwxyz";

/// An array that holds pointers to the first `count` letters.
class Letters {
  public:
    explicit Letters(OSL_MEMTAG tag, uint32_t count = 0) {
        EXPECT_EQ(b_arrCreate(tag, &handle), sOKAY);
        for (uint32_t i = 0; i < count; ++i) {
            uint32_t index = 999;
            EXPECT_EQ(b_arrAdd(handle, &kItems[i], &index), sOKAY);
            EXPECT_EQ(index, i);
        }
    }
    ~Letters() { b_arrDestroy(handle); }
    Letters(const Letters &) = delete;
    Letters &operator=(const Letters &) = delete;

    std::string text() const {
        std::string letters;
        const void *item = nullptr;
        for (uint32_t i = 0; b_arrLookup(handle, i, &item) == sOKAY; ++i) {
            letters += item != nullptr ? *static_cast<const char *>(item) : '-';
        }
        EXPECT_EQ(letters.size(), b_arrCount(handle));
        return letters;
    }

    B_ARRAY handle = nullptr;
};

/// Walks and what they saw: visits in lower case, undone ones in upper case.
struct Walk {
    char stop_at;
    OAK_RETCODE stop_with;
    std::string seen;
};
OAK_RETCODE visit(const void *item, void *ctx) {
    auto *walk = static_cast<Walk *>(ctx);
    const char letter = *static_cast<const char *>(item);
    walk->seen += letter;
    return letter == walk->stop_at ? walk->stop_with : sOKAY;
}
OAK_RETCODE look_for(const void *item, void *ctx) {
    const auto *walk = static_cast<const Walk *>(ctx);
    return *static_cast<const char *>(item) == walk->stop_at ? walk->stop_with : sNOTFOUND;
}
void undo(const void *item, void *ctx) {
    static_cast<Walk *>(ctx)->seen +=
        static_cast<char>(*static_cast<const char *>(item) - 'a' + 'A');
}

TEST(Array, KeepsItsEntriesInOrder) {
    oaktest::Tag tag;
    for (const uint32_t count : {0u, 1u, 3u, 4u, 5u, 8u, 9u, 26u}) {
        const Letters letters(tag, count);
        EXPECT_EQ(letters.text(), std::string(kItems, count));
    }
}

#ifdef OSL_FAULT_INJECTION
// Memory is asked for by the first of each four entries alone.
TEST(Array, GrowsByFourEntries) {
    oaktest::Tag tag;
    Letters letters(tag);
    for (uint32_t i = 0; i < 12; ++i) {
        osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
        const OAK_RETCODE rc = b_arrAdd(letters.handle, &kItems[i], nullptr);
        EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), i % 4 == 0 ? 1u : 0u) << i;
        EXPECT_EQ(rc, i % 4 == 0 ? eNOMEMORY : sOKAY) << i;
        if (rc != sOKAY) {
            ASSERT_EQ(b_arrAdd(letters.handle, &kItems[i], nullptr), sOKAY);
        }
    }
    EXPECT_EQ(letters.text(), "abcdefghijkl");
}
#endif

TEST(Array, AddsWithoutHandingOutTheIndex) {
    oaktest::Tag tag;
    Letters letters(tag);
    EXPECT_EQ(b_arrAdd(letters.handle, &kItems[5], nullptr), sOKAY);
    EXPECT_EQ(b_arrAdd(letters.handle, nullptr, nullptr), sOKAY) << "a null pointer is an entry";
    EXPECT_EQ(letters.text(), "f-");
}

TEST(Array, LooksUpByIndex) {
    oaktest::Tag tag;
    const Letters letters(tag, 3);
    const void *item = nullptr;
    EXPECT_EQ(b_arrLookup(letters.handle, 2, &item), sOKAY);
    EXPECT_EQ(item, &kItems[2]);
    EXPECT_EQ(b_arrLookup(letters.handle, 3, &item), sNOTFOUND);
    EXPECT_EQ(b_arrLookup(letters.handle, UINT32_MAX, &item), sNOTFOUND);
    EXPECT_EQ(item, &kItems[2]) << "the output is untouched";
}

TEST(Array, FindsTheFirstIndexOfAPointer) {
    oaktest::Tag tag;
    Letters letters(tag, 3);
    ASSERT_EQ(b_arrAdd(letters.handle, &kItems[1], nullptr), sOKAY);
    uint32_t index = 99;
    EXPECT_EQ(b_arrGetIndex(letters.handle, &kItems[1], &index), sOKAY);
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(b_arrGetIndex(letters.handle, &kItems[2], nullptr), sOKAY);
    const char other = 'b';
    EXPECT_EQ(b_arrGetIndex(letters.handle, &other, &index), sNOTFOUND) << "not by contents";
    EXPECT_EQ(index, 1u);
}

TEST(Array, RemovesAndKeepsTheOrder) {
    oaktest::Tag tag;
    Letters letters(tag, 6);
    EXPECT_EQ(b_arrRemove(letters.handle, 2), sOKAY);
    EXPECT_EQ(letters.text(), "abdef");
    EXPECT_EQ(b_arrRemove(letters.handle, 0), sOKAY);
    EXPECT_EQ(letters.text(), "bdef");
    EXPECT_EQ(b_arrRemove(letters.handle, 3), sOKAY);
    EXPECT_EQ(letters.text(), "bde");
    EXPECT_EQ(b_arrRemove(letters.handle, 3), sNOTFOUND);
    EXPECT_EQ(letters.text(), "bde");
    while (b_arrCount(letters.handle) > 0) {
        ASSERT_EQ(b_arrRemove(letters.handle, 0), sOKAY);
    }
    EXPECT_EQ(b_arrRemove(letters.handle, 0), sNOTFOUND);
    EXPECT_EQ(b_arrAdd(letters.handle, &kItems[9], nullptr), sOKAY);
    EXPECT_EQ(letters.text(), "j");
}

TEST(Array, ClearsItsEntriesAndKeepsTheCount) {
    oaktest::Tag tag;
    Letters letters(tag, 5);
    b_arrClear(letters.handle);
    EXPECT_EQ(letters.text(), "-----");
    EXPECT_EQ(b_arrCount(letters.handle), 5u);
    ASSERT_EQ(b_arrAdd(letters.handle, &kItems[0], nullptr), sOKAY);
    EXPECT_EQ(letters.text(), "-----a");
}

TEST(Array, FindsByCallback) {
    oaktest::Tag tag;
    const Letters letters(tag, 5);
    uint32_t index = 99;
    Walk walk{'d', sOKAY, ""};
    EXPECT_EQ(b_arrFind(letters.handle, look_for, &walk, &index), sOKAY);
    EXPECT_EQ(index, 3u);
    EXPECT_EQ(b_arrFind(letters.handle, look_for, &walk, nullptr), sOKAY);
    walk = {'z', sOKAY, ""};
    EXPECT_EQ(b_arrFind(letters.handle, look_for, &walk, &index), sNOTFOUND);
    walk = {'c', eFAIL, ""};
    EXPECT_EQ(b_arrFind(letters.handle, look_for, &walk, &index), eFAIL);
    walk = {'c', sTIMEOUT, ""};
    EXPECT_EQ(b_arrFind(letters.handle, look_for, &walk, &index), sTIMEOUT);
    EXPECT_EQ(index, 3u);
    const Letters none(tag);
    EXPECT_EQ(b_arrFind(none.handle, look_for, &walk, &index), sNOTFOUND);
}

TEST(Array, IteratesInOrder) {
    oaktest::Tag tag;
    const Letters letters(tag, 5);
    Walk walk{'\0', sOKAY, ""};
    EXPECT_EQ(b_arrIterate(letters.handle, visit, undo, &walk), sOKAY);
    EXPECT_EQ(walk.seen, "abcde");
    const Letters none(tag);
    walk.seen = "";
    EXPECT_EQ(b_arrIterate(none.handle, visit, undo, &walk), sOKAY);
    EXPECT_EQ(walk.seen, "");
}

TEST(Array, UndoesAStoppedWalkFromTheFailingEntryDown) {
    oaktest::Tag tag;
    const Letters letters(tag, 5);
    Walk walk{'c', eFAIL, ""};
    EXPECT_EQ(b_arrIterate(letters.handle, visit, undo, &walk), eFAIL);
    EXPECT_EQ(walk.seen, "abcCBA");
    walk = {'a', sNOTFOUND, ""};
    EXPECT_EQ(b_arrIterate(letters.handle, visit, undo, &walk), sNOTFOUND);
    EXPECT_EQ(walk.seen, "aA");
    walk = {'e', eFAIL, ""};
    EXPECT_EQ(b_arrIterate(letters.handle, visit, nullptr, &walk), eFAIL);
    EXPECT_EQ(walk.seen, "abcde");
}

TEST(Array, RefusesNullArguments) {
    oaktest::Tag tag;
    const Letters letters(tag, 1);
    EXPECT_EQ(b_arrCreate(tag, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrAdd(nullptr, kItems, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrGetIndex(nullptr, kItems, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrLookup(letters.handle, 0, nullptr), eINVNULLARG);
    const void *item = nullptr;
    EXPECT_EQ(b_arrLookup(nullptr, 0, &item), eINVNULLARG);
    EXPECT_EQ(b_arrRemove(nullptr, 0), eINVNULLARG);
    EXPECT_EQ(b_arrFind(nullptr, look_for, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrFind(letters.handle, nullptr, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrIterate(nullptr, visit, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrIterate(letters.handle, nullptr, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_arrCount(nullptr), 0u);
    b_arrClear(nullptr);
    b_arrDestroy(nullptr);
}

TEST(Array, StaysAsItWasWhenMemoryEnds) {
    oaktest::Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        B_ARRAY array = nullptr;
        OAK_RETCODE rc = b_arrCreate(tag, &array);
        uint32_t added = 0;
        while (rc == sOKAY && added < 10) {
            rc = b_arrAdd(array, &kItems[added], nullptr);
            added += rc == sOKAY ? 1 : 0;
        }
        EXPECT_EQ(b_arrCount(array), added);
        const void *item = nullptr;
        EXPECT_TRUE(added == 0 || b_arrLookup(array, added - 1, &item) == sOKAY);
        EXPECT_TRUE(added == 0 || item == &kItems[added - 1]);
        b_arrDestroy(array);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
