// The main of every test program: sets the locale that the run asks for, shows
// the seed of whatever is random, and runs the tests.
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

#include "test_support.h"

namespace oaktest {
uint64_t seed() {
    static const uint64_t value = [] {
        const char *text = std::getenv("OAK_TEST_SEED");
        return text != nullptr ? std::strtoull(text, nullptr, 0) : uint64_t{14};
    }();
    return value;
}
} // namespace oaktest

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    if (const char *wanted = std::getenv("OAK_TEST_LOCALE");
        wanted != nullptr && std::setlocale(LC_ALL, wanted) == nullptr) {
        std::fprintf(stderr, "locale %s is not on this machine; scripts/check installs it\n",
                     wanted);
        return 1;
    }
    std::printf("seed %llu (set OAK_TEST_SEED for another)\n",
                static_cast<unsigned long long>(oaktest::seed()));
    return RUN_ALL_TESTS();
}
