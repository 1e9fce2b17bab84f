// UUIDs: the random ones, alone, from several threads and across a fork; their text in
// both directions.
#include <cstring>
#include <set>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "test_support.h"
#include "uuid.h"

namespace {

using Bytes = std::array<uint8_t, 16>;

// The example of RFC 4122, and one in which every byte differs.
const char *const kExample = "f81d4fae-7dec-11d0-a765-00a0c91e6bf6";
const char *const kCounting = "00112233-4455-6677-8899-aabbccddeeff";

OAK_UUID_T from_hex(const std::string &text) {
    const std::vector<uint8_t> bytes = oaktest::unhex(text);
    OAK_UUID_T uuid;
    EXPECT_EQ(bytes.size(), sizeof uuid);
    std::memcpy(&uuid, bytes.data(), sizeof uuid);
    return uuid;
}

OAK_UUID_T patterned() {
    return from_hex("77777777777777777777777777777777");
}

std::string to_hex(const OAK_UUID_T &uuid) {
    return oaktest::hex(&uuid, sizeof uuid);
}

Bytes create() {
    OAK_UUID_T uuid;
    oak_uuidCreate(&uuid);
    Bytes bytes;
    std::memcpy(bytes.data(), &uuid, sizeof uuid);
    return bytes;
}

std::string text_of(const OAK_UUID_T &uuid, OAK_BOOL_T braces = OAK_FALSE) {
    char text[OAK_UUID_BRACED_TEXT_SIZE];
    EXPECT_EQ(oak_uuidToString(&uuid, text, sizeof text, braces), sOKAY);
    return text;
}

struct Sink {
    std::string text;
    size_t limit = SIZE_MAX;
};

OAK_RETCODE collect(OAK_OUTPUT_CTX ctx, uint32_t ch) {
    auto *sink = static_cast<Sink *>(ctx);
    if (sink->text.size() >= sink->limit)
        return eBADCAT;
    sink->text += static_cast<char>(ch);
    return sOKAY;
}

} // namespace

// ---- Creation -------------------------------------------------------------------------

// First in the file, while the process has no stream yet.
TEST(UuidCreate, LeavesTheTargetAloneWhenTheStreamCannotBeMade) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        OAK_UUID_T uuid = patterned();
        EXPECT_EQ(osl_init(), sOKAY);
        oak_uuidCreate(&uuid);
        osl_term(); // ends the stream, so that the next run makes it anew
        return to_hex(uuid) == to_hex(patterned()) ? eNOMEMORY : sOKAY;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(UuidCreate, MarksVersionFourAndTheVariant) {
    Bytes all_or{};
    Bytes all_and;
    all_and.fill(0xFF);
    for (int i = 0; i < 2000; ++i) {
        const Bytes bytes = create();
        EXPECT_EQ(bytes[6] >> 4, 4);
        EXPECT_EQ(bytes[8] >> 6, 2);
        for (size_t at = 0; at < bytes.size(); ++at) {
            all_or[at] |= bytes[at];
            all_and[at] &= bytes[at];
        }
    }
    // Every other bit is seen both set and clear.
    EXPECT_EQ(oaktest::hex(all_or.data(), 16), "ffffffffffff4fffbfffffffffffffff");
    EXPECT_EQ(oaktest::hex(all_and.data(), 16), "00000000000040008000000000000000");
}

TEST(UuidCreate, TextShowsVersionAndVariant) {
    for (int i = 0; i < 100; ++i) {
        OAK_UUID_T uuid;
        oak_uuidCreate(&uuid);
        const std::string text = text_of(uuid);
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89ab").find(text[19]), std::string::npos) << text;
    }
}

TEST(UuidCreate, DoesNothingForNull) {
    oak_uuidCreate(nullptr);
}

TEST(UuidCreate, TwoThreadsNeverDrawTheSame) {
    constexpr size_t each = 20000;
    std::array<std::vector<Bytes>, 2> drawn;
    std::array<std::thread, 2> threads;
    for (size_t i = 0; i < 2; ++i)
        threads[i] = std::thread([&drawn, i] {
            for (size_t n = 0; n < each; ++n)
                drawn[i].push_back(create());
        });
    for (std::thread &thread : threads)
        thread.join();
    std::vector<Bytes> all = drawn[0];
    all.insert(all.end(), drawn[1].begin(), drawn[1].end());
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
    EXPECT_EQ(all.size(), 2 * each);
}

TEST(UuidCreate, AForkDrawsOthersThanItsParentAndItsSiblings) {
    constexpr size_t each = 100;
    std::set<Bytes> seen;
    seen.insert(create()); // the stream exists before the fork
    for (int child = 0; child < 3; ++child) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            bool written = true;
            for (size_t i = 0; i < each; ++i) {
                const Bytes bytes = create();
                written = written && write(ends[1], bytes.data(), 16) == 16;
            }
            _exit(written ? 0 : 1);
        }
        close(ends[1]);
        Bytes bytes;
        size_t count = 0;
        while (read(ends[0], bytes.data(), 16) == 16) {
            EXPECT_TRUE(seen.insert(bytes).second) << "drawn twice";
            ++count;
        }
        close(ends[0]);
        EXPECT_EQ(count, each);
        int status = 1;
        EXPECT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_EQ(status, 0);
    }
    for (size_t i = 0; i < each; ++i)
        EXPECT_TRUE(seen.insert(create()).second) << "the parent repeats a child";
}

// ---- Text -------------------------------------------------------------------------------

TEST(UuidText, ShowsTheBytesInTheirOrderInMemory) {
    EXPECT_EQ(text_of(from_hex("00112233445566778899aabbccddeeff")), kCounting);
    EXPECT_EQ(text_of(from_hex("f81d4fae7dec11d0a76500a0c91e6bf6")), kExample);
    EXPECT_EQ(text_of(from_hex("00000000000000000000000000000000")),
              "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(text_of(from_hex("ffffffffffffffffffffffffffffffff"), OAK_TRUE),
              "{ffffffff-ffff-ffff-ffff-ffffffffffff}");
}

TEST(UuidText, FieldsAreStoredBigEndian) {
    OAK_UUID_T uuid = from_hex("00112233445566778899aabbccddeeff");
    osl_swaporderUInt32(&uuid.time_low);
    osl_swaporderUInt16(&uuid.time_mid);
    osl_swaporderUInt16(&uuid.time_high_and_version);
    EXPECT_EQ(uuid.time_low, 0x00112233u);
    EXPECT_EQ(uuid.time_mid, 0x4455);
    EXPECT_EQ(uuid.time_high_and_version, 0x6677);
    EXPECT_EQ(uuid.clock_seq_high_and_reserved, 0x88);
    EXPECT_EQ(uuid.clock_seq_low, 0x99);
    EXPECT_EQ(oaktest::hex(uuid.node, 6), "aabbccddeeff");
}

TEST(UuidText, IsCutAndTerminatedInASmallBuffer) {
    const OAK_UUID_T uuid = from_hex("00112233445566778899aabbccddeeff");
    for (const OAK_BOOL_T braces : {OAK_FALSE, OAK_TRUE}) {
        const std::string whole = text_of(uuid, braces);
        EXPECT_EQ(oak_uuidStrLen(&uuid, braces), whole.size() + 1);
        for (size_t size = 0; size <= whole.size() + 1; ++size) {
            char buffer[44];
            std::memset(buffer, '~', sizeof buffer);
            const bool fits = size > whole.size();
            EXPECT_EQ(oak_uuidToString(&uuid, buffer, size, braces), fits ? sOKAY : sTRUNCATE);
            const size_t kept = size == 0 ? 0 : size - 1;
            EXPECT_EQ(std::string(buffer, kept), whole.substr(0, kept));
            EXPECT_EQ(buffer[kept], size == 0 ? '~' : '\0');
            EXPECT_EQ(buffer[kept + 1], '~');
        }
    }
    EXPECT_EQ(OAK_UUID_TEXT_SIZE, 37);
    EXPECT_EQ(OAK_UUID_BRACED_TEXT_SIZE, 39);
}

TEST(UuidText, GoesThroughAnOutputFunction) {
    const OAK_UUID_T uuid = from_hex("00112233445566778899aabbccddeeff");
    Sink plain;
    EXPECT_EQ(b_uuidFormat(&uuid, OAK_FALSE, collect, &plain), sOKAY);
    EXPECT_EQ(plain.text, kCounting);
    Sink braced;
    EXPECT_EQ(b_uuidFormat(&uuid, OAK_TRUE, collect, &braced), sOKAY);
    EXPECT_EQ(braced.text, std::string("{") + kCounting + "}");
    for (size_t limit = 0; limit < braced.text.size(); ++limit) {
        Sink narrow{"", limit};
        EXPECT_EQ(b_uuidFormat(&uuid, OAK_TRUE, collect, &narrow), eBADCAT);
        EXPECT_EQ(narrow.text, braced.text.substr(0, limit));
    }
}

TEST(UuidText, NullIsRefusedOrMeasured) {
    const OAK_UUID_T uuid = patterned();
    char buffer[40] = "~";
    Sink sink;
    EXPECT_EQ(oak_uuidStrLen(nullptr, OAK_FALSE), SIZE_MAX);
    EXPECT_EQ(oak_uuidToString(nullptr, buffer, sizeof buffer, OAK_FALSE), eINVNULLARG);
    EXPECT_STREQ(buffer, "~");
    EXPECT_EQ(b_uuidFormat(nullptr, OAK_FALSE, collect, &sink), eINVNULLARG);
    EXPECT_EQ(b_uuidFormat(&uuid, OAK_FALSE, nullptr, &sink), eINVNULLARG);
    EXPECT_EQ(oak_uuidToString(&uuid, nullptr, 0, OAK_FALSE), sTRUNCATE);
    EXPECT_EQ(oak_uuidToString(&uuid, nullptr, 37, OAK_FALSE), sOKAY);
}

// ---- From text ------------------------------------------------------------------------------

TEST(UuidFromText, ReadsBothCasesBracesAndBlanks) {
    const char *const texts[] = {
        "00112233-4455-6677-8899-aabbccddeeff",       "00112233-4455-6677-8899-AABBCCDDEEFF",
        "00112233-4455-6677-8899-AaBbCcDdEeFf",       "   00112233-4455-6677-8899-aabbccddeeff",
        "{00112233-4455-6677-8899-aabbccddeeff}",     "{00112233-4455-6677-8899-aabbccddeeff}   ",
        "  {00112233-4455-6677-8899-AABBCCDDEEFF}  ",
    };
    for (const char *text : texts) {
        OAK_UUID_T uuid = patterned();
        EXPECT_EQ(oak_uuidFromString(text, &uuid), sOKAY) << text;
        EXPECT_EQ(to_hex(uuid), "00112233445566778899aabbccddeeff") << text;
    }
}

TEST(UuidFromText, RefusesEveryOtherForm) {
    const char *const texts[] = {
        "",
        "   ",
        "{",
        "}",
        "{}",
        "{   ",
        "-",
        "----",
        "{----}",
        // Blanks behind need braces, and braces each other.
        "00112233-4455-6677-8899-aabbccddeeff ",
        "{00112233-4455-6677-8899-aabbccddeeff",
        "00112233-4455-6677-8899-aabbccddeeff}",
        "{{00112233-4455-6677-8899-aabbccddeeff}}",
        "{00112233-4455-6677-8899-aabbccddeeff}}",
        "{00112233-4455-6677-8899-aabbccddeeff}x",
        "{ 00112233-4455-6677-8899-aabbccddeeff}",
        "{00112233-4455-6677-8899-aabbccddeeff }",
        // Lengths of the groups, and their number.
        "0011223-4455-6677-8899-aabbccddeeff",
        "001122334-4455-6677-8899-aabbccddeeff",
        "00112233-445-6677-8899-aabbccddeeff",
        "00112233-44556-6677-8899-aabbccddeeff",
        "00112233-4455-667-8899-aabbccddeeff",
        "00112233-4455-66778-8899-aabbccddeeff",
        "00112233-4455-6677-889-aabbccddeeff",
        "00112233-4455-6677-88990-aabbccddeeff",
        "00112233-4455-6677-8899-aabbccddeef",
        "00112233-4455-6677-8899-aabbccddeeff0",
        "00112233-4455-6677-8899",
        "00112233-4455-6677-8899-",
        "00112233-4455-6677-8899-aabbccddeeff-",
        "00112233-4455-6677-8899-aabbccddeeff-00",
        "-00112233-4455-6677-8899-aabbccddeeff",
        "00112233--4455-6677-8899-aabbccddeeff",
        "00112233445566778899aabbccddeeff",
        "00112233 4455 6677 8899 aabbccddeeff",
        // Characters.
        "g0112233-4455-6677-8899-aabbccddeeff",
        "0x112233-4455-6677-8899-aabbccddeeff",
        "00112233-44 5-6677-8899-aabbccddeeff",
        "00112233-4455-+677-8899-aabbccddeeff",
        "00112233-4455-6677-8899-aabbccddeefg",
        "\t00112233-4455-6677-8899-aabbccddeeff",
    };
    for (const char *text : texts) {
        OAK_UUID_T uuid = patterned();
        EXPECT_EQ(oak_uuidFromString(text, &uuid), eOSL_INVUUID) << text;
        EXPECT_EQ(to_hex(uuid), to_hex(patterned())) << "left as it was: " << text;
    }
}

TEST(UuidFromText, RefusesAWrongCharacterAtEveryPlace) {
    for (size_t at = 0; at < std::strlen(kExample); ++at)
        for (const char wrong : {'g', 'G', '/', ':', '@', '`', ' ', '\x80'}) {
            std::string text = kExample;
            text[at] = wrong;
            OAK_UUID_T uuid = patterned();
            EXPECT_EQ(oak_uuidFromString(text.c_str(), &uuid), eOSL_INVUUID) << text;
        }
}

TEST(UuidFromText, RefusesNullPointers) {
    OAK_UUID_T uuid;
    EXPECT_EQ(oak_uuidFromString(nullptr, &uuid), eINVNULLARG);
    EXPECT_EQ(oak_uuidFromString(kExample, nullptr), eINVNULLARG);
}

TEST(UuidFromText, ReadsBackWhatWasWritten) {
    oaktest::Random random(3);
    for (int i = 0; i < 2000; ++i) {
        const uint64_t draws[2] = {random.next(), random.next()};
        OAK_UUID_T uuid;
        std::memcpy(&uuid, draws, sizeof uuid);
        for (const OAK_BOOL_T braces : {OAK_FALSE, OAK_TRUE}) {
            OAK_UUID_T back = patterned();
            EXPECT_EQ(oak_uuidFromString(text_of(uuid, braces).c_str(), &back), sOKAY);
            EXPECT_EQ(to_hex(back), to_hex(uuid));
        }
    }
}

TEST(UuidFromText, OrdersAsTheTextsDo) {
    oaktest::Random random(4);
    for (int i = 0; i < 2000; ++i) {
        const uint64_t draws[4] = {random.next(), random.next(), random.next(), random.next()};
        OAK_UUID_T pair[2];
        std::memcpy(pair, draws, sizeof pair);
        if (i % 2 == 0) // a common front
            std::memcpy(&pair[1], &pair[0], random.below(16));
        const int by_bytes = std::memcmp(&pair[0], &pair[1], sizeof pair[0]);
        const int by_text = text_of(pair[0]).compare(text_of(pair[1]));
        EXPECT_EQ(by_bytes < 0, by_text < 0);
        EXPECT_EQ(by_bytes == 0, by_text == 0);
    }
}
