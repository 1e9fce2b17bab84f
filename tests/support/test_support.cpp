// The helpers of test_support.h.
#include "test_support.h"

#include <cctype>

#include <openssl/sha.h>

namespace oaktest {

uint64_t Random::next() {
    uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

std::string hex(const void *data, size_t size) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        const uint8_t byte = static_cast<const uint8_t *>(data)[i];
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::vector<uint8_t> unhex(const std::string &text) {
    std::string digits;
    bool comment = false;
    for (const char ch : text) {
        comment = ch == '#' || (comment && ch != '\n');
        if (!comment && std::isxdigit(static_cast<unsigned char>(ch)) != 0) {
            digits += ch;
        } else if (!comment) {
            EXPECT_TRUE(std::isspace(static_cast<unsigned char>(ch)) != 0) << "not hex: " << ch;
        }
    }
    EXPECT_EQ(digits.size() % 2, 0u) << "odd number of hex digits";
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::string sha256(const void *data, size_t size) {
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(static_cast<const unsigned char *>(data), size, digest);
    return hex(digest, sizeof digest);
}

Tag::Tag() : tag_(OSL_CREATE_TAG()) {
    EXPECT_NE(tag_, nullptr);
}

Tag::~Tag() {
    if (!may_keep_blocks_) {
        EXPECT_EQ(live(), 0u) << "blocks are left under the test's tag";
    }
    OSL_FREE_TAG(tag_);
}

uint64_t Tag::live() const {
#ifdef OSL_FAULT_INJECTION
    return osl_faultLiveUnderTag(tag_);
#else
    return 0;
#endif
}

Live Live::now() {
    Live live;
#ifdef OSL_FAULT_INJECTION
    for (size_t kind = 0; kind < live.counts.size(); ++kind) {
        live.counts[kind] = osl_faultLive(static_cast<OSL_LIVE_KIND>(kind));
    }
#endif
    return live;
}

std::ostream &operator<<(std::ostream &out, const Live &live) {
    return out << "tags " << live.counts[0] << " blocks " << live.counts[1] << " files "
               << live.counts[2] << " locks " << live.counts[3] << " threads " << live.counts[4];
}

#ifdef OSL_FAULT_INJECTION
namespace {
constexpr uint64_t kMostRuns = 1000000;

uint64_t sweep_one_way(OSL_FAULT_KIND kind, OAK_BOOL_T forever,
                       std::initializer_list<OAK_RETCODE> expected,
                       const std::function<OAK_RETCODE()> &operation) {
    for (uint64_t nth = 1; nth <= kMostRuns; ++nth) {
        const Live before = Live::now();
        osl_faultArm(kind, nth, forever);
        const OAK_RETCODE status = operation();
        const uint64_t injected = osl_faultDisarm(kind);
        EXPECT_EQ(Live::now(), before) << "request " << nth << " failed; status " << status;
        if (injected == 0) {
            EXPECT_EQ(status, sOKAY) << "no failure was injected";
            return nth - 1;
        }
        EXPECT_NE(std::find(expected.begin(), expected.end(), status), expected.end())
            << "request " << nth << " failed; status " << status;
        if (testing::Test::HasFailure()) {
            return nth;
        }
    }
    ADD_FAILURE() << "the sweep did not end";
    return kMostRuns;
}
} // namespace

uint64_t sweep_faults(Resource resource, std::initializer_list<OAK_RETCODE> expected,
                      const std::function<OAK_RETCODE()> &operation) {
    // What comes into being on first use is not a leak of the swept operation.
    EXPECT_EQ(operation(), sOKAY) << "the operation must succeed when nothing fails";
    const auto kind = static_cast<OSL_FAULT_KIND>(resource);
    const uint64_t once = sweep_one_way(kind, OAK_FALSE, expected, operation);
    return once + sweep_one_way(kind, OAK_TRUE, expected, operation);
}
#else
uint64_t sweep_faults(Resource, std::initializer_list<OAK_RETCODE>,
                      const std::function<OAK_RETCODE()> &operation) {
    EXPECT_EQ(operation(), sOKAY);
    return 0;
}
#endif

} // namespace oaktest
