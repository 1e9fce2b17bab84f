// The stack: last in, first out; searches from the top; a model of random
// operations; the mutex.
#include "stack.h"

#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

namespace {

int kContext = 0;
const char kItems[] = "abcdefghijklmnopqrstuvwxyz";

OAK_COMPARE compare_letters(const void *lookup, const void *item, void *ctx) {
    EXPECT_EQ(ctx, &kContext);
    const char wanted = *static_cast<const char *>(lookup);
    const char found = *static_cast<const char *>(item);
    return wanted < found ? OAK_LT : wanted > found ? OAK_GT : OAK_EQ;
}

B_STACK create(uint32_t flags = 0) {
    B_STACK stack = nullptr;
    EXPECT_EQ(B_STACK_CREATE("letters", flags, compare_letters, &kContext, &stack), sOKAY);
    return stack;
}

void push_all(B_STACK stack, const std::string &letters) {
    for (const char letter : letters) {
        ASSERT_EQ(b_stackPush(stack, &kItems[letter - 'a']), sOKAY);
    }
}

/// Pops everything, as text.
std::string pop_all(B_STACK stack) {
    std::string letters;
    void *item = nullptr;
    while (b_stackPop(stack, &item) == sOKAY) {
        letters += *static_cast<char *>(item);
    }
    return letters;
}

uint64_t count(B_STACK stack) {
    uint64_t items = 999;
    EXPECT_EQ(b_stackCount(stack, &items), sOKAY);
    return items;
}

TEST(Stack, ReturnsTheLastItemFirst) {
    B_STACK stack = create();
    EXPECT_EQ(b_stackTop(stack), nullptr);
    push_all(stack, "abc");
    EXPECT_EQ(count(stack), 3u);
    EXPECT_EQ(b_stackTop(stack), &kItems[2]);
    EXPECT_EQ(pop_all(stack), "cba");
    EXPECT_EQ(count(stack), 0u);
    push_all(stack, "xy");
    EXPECT_EQ(pop_all(stack), "yx");
    b_stackDestroy(stack);
}

TEST(Stack, HasNoDataWhenEmptyAndLeavesTheOutputAlone) {
    B_STACK stack = create();
    void *item = &kContext;
    EXPECT_EQ(b_stackPop(stack, &item), sNODATA);
    EXPECT_EQ(b_stackFind(stack, "a", &item), sNOTFOUND);
    EXPECT_EQ(b_stackFindAndDelete(stack, "a", &item), sNOTFOUND);
    EXPECT_EQ(item, &kContext);
    b_stackDestroy(stack);
}

TEST(Stack, HoldsNullPointersToo) {
    B_STACK stack = create();
    EXPECT_EQ(b_stackPush(stack, nullptr), sOKAY);
    EXPECT_EQ(count(stack), 1u);
    void *item = &kContext;
    EXPECT_EQ(b_stackPop(stack, &item), sOKAY);
    EXPECT_EQ(item, nullptr);
    b_stackDestroy(stack);
}

TEST(Stack, FindsTheFirstMatchFromTheTop) {
    const char letters[] = "aba";
    B_STACK stack = create();
    for (size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(b_stackPush(stack, &letters[i]), sOKAY);
    }
    void *item = nullptr;
    EXPECT_EQ(b_stackFind(stack, "a", &item), sOKAY);
    EXPECT_EQ(item, &letters[2]);
    EXPECT_EQ(b_stackFind(stack, "z", &item), sNOTFOUND);
    EXPECT_EQ(item, &letters[2]);
    EXPECT_EQ(count(stack), 3u);
    EXPECT_EQ(b_stackFindAndDelete(stack, "a", &item), sOKAY);
    EXPECT_EQ(item, &letters[2]);
    EXPECT_EQ(b_stackFindAndDelete(stack, "a", &item), sOKAY);
    EXPECT_EQ(item, &letters[0]) << "the bottom";
    EXPECT_EQ(pop_all(stack), "b");
    b_stackDestroy(stack);
}

TEST(Stack, AgreesWithAVector) {
    oaktest::Random random(6);
    B_STACK stack = create();
    std::string model;
    for (int step = 0; step < 20000; ++step) {
        const char chosen = kItems[random.below(26)];
        void *item = nullptr;
        switch (random.below(3)) {
            case 0:
                push_all(stack, std::string(1, chosen));
                model += chosen;
                break;
            case 1:
                ASSERT_EQ(b_stackPop(stack, &item), model.empty() ? sNODATA : sOKAY);
                ASSERT_EQ(item, model.empty() ? nullptr : &kItems[model.back() - 'a']);
                model.resize(model.empty() ? 0 : model.size() - 1);
                break;
            default: {
                const size_t place = model.rfind(chosen);
                const bool there = place != std::string::npos;
                ASSERT_EQ(b_stackFindAndDelete(stack, &chosen, &item), there ? sOKAY : sNOTFOUND);
                model.erase(there ? place : model.size(), 1);
                break;
            }
        }
        ASSERT_EQ(count(stack), model.size());
        const void *top = b_stackTop(stack);
        ASSERT_EQ(top, model.empty() ? nullptr : &kItems[model.back() - 'a']);
    }
    b_stackDestroy(stack);
}

TEST(Stack, ServesSeveralThreadsWithItsMutex) {
    B_STACK stack = create(B_STACK_SYNC);
    constexpr int kRounds = 500;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                void *item = nullptr;
                EXPECT_EQ(b_stackPush(stack, kItems), sOKAY);
                EXPECT_EQ(b_stackPush(stack, kItems), sOKAY);
                EXPECT_EQ(b_stackFind(stack, "a", &item), sOKAY);
                EXPECT_NE(b_stackTop(stack), nullptr);
                EXPECT_EQ(b_stackPop(stack, &item), sOKAY);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count(stack), uint64_t{4 * kRounds});
    b_stackDestroy(stack);
}

TEST(Stack, TakesNoMemoryForADepthItOnceHad) {
    B_STACK stack = create();
    push_all(stack, "abcdefgh");
    EXPECT_EQ(pop_all(stack), "hgfedcba");
    const oaktest::Live before = oaktest::Live::now();
    push_all(stack, "abcdefgh");
    EXPECT_EQ(oaktest::Live::now(), before);
    b_stackDestroy(stack);
}

TEST(Stack, RefusesNullArguments) {
    B_STACK stack = nullptr;
    EXPECT_EQ(B_STACK_CREATE(nullptr, 0, compare_letters, nullptr, &stack), eINVNULLARG);
    EXPECT_EQ(B_STACK_CREATE("name", 0, nullptr, nullptr, &stack), eINVNULLARG);
    EXPECT_EQ(B_STACK_CREATE("name", 0, compare_letters, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(stack, nullptr);
    void *item = nullptr;
    uint64_t items = 0;
    EXPECT_EQ(b_stackPush(nullptr, kItems), eINVNULLARG);
    EXPECT_EQ(b_stackPop(nullptr, &item), eINVNULLARG);
    EXPECT_EQ(b_stackFind(nullptr, "a", &item), eINVNULLARG);
    EXPECT_EQ(b_stackFindAndDelete(nullptr, "a", &item), eINVNULLARG);
    EXPECT_EQ(b_stackCount(nullptr, &items), eINVNULLARG);
    EXPECT_EQ(b_stackTop(nullptr), nullptr);
    b_stackDestroy(nullptr);
    stack = create();
    EXPECT_EQ(b_stackPop(stack, nullptr), eINVNULLARG);
    EXPECT_EQ(b_stackFind(stack, "a", nullptr), eINVNULLARG);
    EXPECT_EQ(b_stackFindAndDelete(stack, "a", nullptr), eINVNULLARG);
    EXPECT_EQ(b_stackCount(stack, nullptr), eINVNULLARG);
    b_stackDestroy(stack);
}

TEST(Stack, StaysAsItWasWhenMemoryOrLocksEnd) {
    const auto use = [] {
        B_STACK stack = nullptr;
        OAK_RETCODE rc =
            B_STACK_CREATE("letters", B_STACK_SYNC, compare_letters, &kContext, &stack);
        EXPECT_EQ(stack != nullptr, rc == sOKAY);
        uint64_t pushed = 0;
        for (; rc == sOKAY && pushed < 5; pushed += rc == sOKAY ? 1 : 0) {
            rc = b_stackPush(stack, kItems);
        }
        EXPECT_TRUE(stack == nullptr || count(stack) == pushed);
        b_stackDestroy(stack);
        return rc;
    };
    for (const auto resource : {oaktest::Resource::memory, oaktest::Resource::sync}) {
        const uint64_t runs = oaktest::sweep_faults(resource, {eNOMEMORY}, use);
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

} // namespace
