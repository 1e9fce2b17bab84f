// The range coder on handles: bytes worked out by hand, every kind of bit both
// ways, and the jump of a failing callback.
#include "range_encoder_internal.h"

#include <csetjmp>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

struct Stream {
    std::vector<uint8_t> bytes;
    size_t at = 0;
    size_t room = SIZE_MAX; // bytes that may be written, or read, before a failure
};

OAK_RETCODE put(void *user_data, uint8_t byte) {
    auto *stream = static_cast<Stream *>(user_data);
    if (stream->bytes.size() >= stream->room) {
        return eBADWRITE;
    }
    stream->bytes.push_back(byte);
    return sOKAY;
}

OAK_RETCODE get(void *user_data, uint8_t *byte) {
    auto *stream = static_cast<Stream *>(user_data);
    if (stream->at >= stream->bytes.size() || stream->at >= stream->room) {
        return sEOS;
    }
    *byte = stream->bytes[stream->at++];
    return sOKAY;
}

class RangeCoder : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(re_init(put, &stream_, tag_, &encoder_), sOKAY);
        ASSERT_EQ(rd_init(get, &stream_, tag_, &decoder_), sOKAY);
        re_start(encoder_);
    }
    void TearDown() override {
        re_term(encoder_);
        rd_term(decoder_);
    }
    std::string finished() {
        re_finish(encoder_);
        return oaktest::hex(stream_.bytes.data(), stream_.bytes.size());
    }
    oaktest::Tag tag_;
    Stream stream_;
    RANGE_ENCODER encoder_ = nullptr;
    RANGE_DECODER decoder_ = nullptr;
};

TEST_F(RangeCoder, BeginsWithItsEmptyCache) {
    EXPECT_EQ(finished(), "0000000000");
}

TEST_F(RangeCoder, HoldsARunOf255BackUntilNoCarryComes) {
    // One fixed 1: low 7fffffff. The first step brings out the empty cache and
    // keeps 7f; the next three find ff on top and wait; the last releases them.
    re_encode_fixed_bit(encoder_, 1);
    EXPECT_EQ(finished(), "007fffffff");
}

TEST_F(RangeCoder, LetsACarryRunThroughWhatItHeldBack) {
    // Eight 1s: low 2^32 - 2^24 - 8, range ffffff. The next bit normalises: fe
    // is cached, low fffff800. Eight 0s shrink the range to ffffff again, and
    // the next bit holds an ff back. Then a 1 of probability one half adds
    // 7ffffc00, and the carry makes fe ff into ff 00.
    re_encode_fixed_bits(encoder_, 0xff, 8);
    re_encode_fixed_bits(encoder_, 0, 8);
    RANGE_PROB prob = 1024;
    re_encode_context_one_bit(encoder_, &prob);
    EXPECT_EQ(prob, 1024 - 1024 / 32);
    EXPECT_EQ(finished(), "00ff007ff7fc00");
}

TEST_F(RangeCoder, CarriesIntoItsCacheAlone) {
    re_encode_fixed_bits(encoder_, 0xff, 8);
    RANGE_PROB prob = 1024;
    re_encode_context_one_bit(encoder_, &prob);
    EXPECT_EQ(finished(), "00ff7ffff400");
}

TEST_F(RangeCoder, MovesAProbabilityByA32ndOfItsDistance) {
    RANGE_PROB prob = 1024;
    re_encode_context_zero_bit(encoder_, &prob);
    EXPECT_EQ(prob, 1024 + 1024 / 32);
    re_encode_context_one_bit(encoder_, &prob);
    EXPECT_EQ(prob, 1056 - 1056 / 32);
}

// One step of the encoder from a state: what it brings out, and the state after it.
TEST(RangeNormalize, BringsOutTheCacheUnlessACarryMayStillCome) {
    const struct {
        uint64_t low, pending;
        const char *out;
        uint64_t low_after, pending_after;
        uint8_t cache_after;
    } rows[] = {
        {0, 1, "12", 0, 1, 0},
        {0x345678, 1, "12", 0x34567800, 1, 0},
        {0xfeffffff, 1, "12", 0xffffff00, 1, 0xfe},
        {0xfeffffff, 3, "12ffff", 0xffffff00, 1, 0xfe},
        {0xff000000, 1, "", 0, 2, 0x12},
        {0xffffffff, 2, "", 0xffffff00, 3, 0x12},
        {0x100000000, 1, "13", 0, 1, 0},
        {0x100000000, 3, "130000", 0, 1, 0},
        {0x1abcdef01, 2, "1300", 0xcdef0100, 1, 0xab},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.low);
        range_coder::EncoderState state{row.low, row.pending, 0xabcdef, 0x12};
        std::vector<uint8_t> out;
        range_coder::normalize(state, [&](uint8_t byte) { out.push_back(byte); });
        EXPECT_EQ(oaktest::hex(out.data(), out.size()), row.out);
        EXPECT_EQ(state.low, row.low_after);
        EXPECT_EQ(state.cache_size, row.pending_after);
        EXPECT_EQ(state.cache, row.cache_after);
        EXPECT_EQ(state.range, 0xabcdef00u);
    }
}

// Normalisation is due at a range of ffffff, not at one of 1000000.
TEST(RangeNormalize, IsDueBelowTheTopValue) {
    for (const uint32_t range : {0xffffffu, 0x1000000u}) {
        range_coder::EncoderState state{0, 1, range, 0x12};
        RANGE_PROB prob = 1024;
        size_t bytes = 0;
        range_coder::encode_zero(
            state, [&](uint8_t) { ++bytes; }, prob);
        EXPECT_EQ(bytes, range == 0xffffff ? 1u : 0u);
        EXPECT_EQ(state.range, ((range == 0xffffff ? range << 8 : range) >> 11) * 1024);
    }
}

// The models that a coding touched: its place, and 0 or 1 as it moved.
std::string touched(const std::vector<RANGE_PROB> &probs) {
    std::string text;
    for (size_t i = 0; i < probs.size(); ++i) {
        if (probs[i] != 1024) {
            text += std::to_string(i) + (probs[i] > 1024 ? ":0 " : ":1 ");
        }
    }
    return text;
}

TEST_F(RangeCoder, ReachesATreesModelsByTheBitsBefore) {
    std::vector<RANGE_PROB> probs(0x300, 1024);
    re_encode_rctree(encoder_, probs.data(), 3, 5); // 1, then 0 at 3, then 1 at 6
    EXPECT_EQ(touched(probs), "0:1 2:0 5:1 ");
    probs.assign(0x300, 1024);
    re_encode_rctree_reverse(encoder_, probs.data(), 3, 6); // 0, then 1 at 2, then 1 at 5
    EXPECT_EQ(touched(probs), "0:0 1:1 4:1 ");
}

// While the bits match, the model lies in the table of the match byte's bit; the bit
// that differs is the last of those.
TEST_F(RangeCoder, ReachesAMatchedLiteralsModelsByTheMatchByte) {
    const struct {
        uint32_t data, match;
        const char *models;
    } rows[] = {
        {0x00, 0x00, "256:0 257:0 259:0 263:0 271:0 287:0 319:0 383:0 "},
        {0xff, 0xff, "512:1 514:1 518:1 526:1 542:1 574:1 638:1 766:1 "},
        {0x80, 0xc0, "5:0 11:0 23:0 47:0 95:0 191:0 512:1 514:0 "},
        {0xff, 0x7f, "2:1 6:1 14:1 30:1 62:1 126:1 254:1 256:1 "},
    };
    for (const auto &row : rows) {
        std::vector<RANGE_PROB> probs(0x300, 1024);
        re_encode_matched_literal(encoder_, probs.data(), row.data, row.match);
        EXPECT_EQ(touched(probs), row.models);
    }
}

TEST_F(RangeCoder, GivesBackEveryKindOfBit) {
    oaktest::Random random;
    for (int round = 0; round < 30; ++round) {
        stream_ = Stream{};
        re_start(encoder_);
        std::vector<RANGE_PROB> probs(0x300 + 255, 1024);
        struct Step {
            uint64_t kind;
            uint32_t data;
            uint32_t more;
        };
        std::vector<Step> steps;
        for (int i = 0; i < 400; ++i) {
            const Step s{random.below(6), static_cast<uint32_t>(random.next()),
                         static_cast<uint32_t>(random.below(256))};
            steps.push_back(s);
            switch (s.kind) {
                case 0:
                    (s.data & 1) != 0 ? re_encode_context_one_bit(encoder_, &probs[s.more])
                                      : re_encode_context_zero_bit(encoder_, &probs[s.more]);
                    break;
                case 1:
                    re_encode_fixed_bit(encoder_, s.data & 1);
                    break;
                case 2:
                    re_encode_fixed_bits(encoder_, s.data, s.more % 33);
                    break;
                case 3:
                    re_encode_rctree(encoder_, probs.data(), 1 + s.more % 8, s.data);
                    break;
                case 4:
                    re_encode_rctree_reverse(encoder_, probs.data(), 1 + s.more % 8, s.data);
                    break;
                default:
                    re_encode_matched_literal(encoder_, probs.data(), s.data & 255, s.more);
            }
        }
        re_finish(encoder_);
        EXPECT_EQ(stream_.bytes[0], 0);
        const std::vector<RANGE_PROB> after = probs;
        probs.assign(probs.size(), 1024);
        rd_start(decoder_);
        for (const Step &s : steps) {
            const uint32_t bits = 1 + s.more % 8, mask = (1u << bits) - 1;
            switch (s.kind) {
                case 0:
                    ASSERT_EQ(rd_decode_context_bit(decoder_, &probs[s.more]), s.data & 1);
                    break;
                case 1:
                    ASSERT_EQ(rd_decode_fixed_bit(decoder_), s.data & 1);
                    break;
                case 2: {
                    const uint32_t n = s.more % 33;
                    ASSERT_EQ(rd_decode_fixed_bits(decoder_, n),
                              n == 32 ? s.data : s.data & ((1u << n) - 1));
                    break;
                }
                case 3:
                    ASSERT_EQ(rd_decode_rctree(decoder_, probs.data(), bits), s.data & mask);
                    break;
                case 4:
                    ASSERT_EQ(rd_decode_rctree_reverse(decoder_, probs.data(), bits),
                              s.data & mask);
                    break;
                default:
                    ASSERT_EQ(rd_decode_matched_literal(decoder_, probs.data(), s.more),
                              s.data & 255);
            }
        }
        rd_finish(decoder_);
        EXPECT_EQ(probs, after) << "both sides adapt alike";
    }
}

TEST_F(RangeCoder, DropsTheFirstByteOfItsInput) {
    stream_.bytes = {0xaa, 0x80, 0, 0, 0};
    rd_start(decoder_);
    EXPECT_EQ(rd_decode_fixed_bit(decoder_), 1u); // code 80000000 is not below 7fffffff
    EXPECT_EQ(stream_.at, 5u);
}

// The frame of the jump holds nothing with a destructor.
int jump_of_encoder(RANGE_ENCODER encoder) {
    jmp_buf error;
    re_set_error_jump(encoder, &error);
    const int status = setjmp(error);
    if (status == 0) {
        re_finish(encoder);
    }
    re_set_error_jump(encoder, nullptr);
    return status;
}

int jump_of_decoder(RANGE_DECODER decoder) {
    jmp_buf error;
    rd_set_error_jump(decoder, &error);
    const int status = setjmp(error);
    if (status == 0) {
        rd_start(decoder);
        rd_decode_fixed_bits(decoder, 32);
    }
    rd_set_error_jump(decoder, nullptr);
    return status;
}

TEST_F(RangeCoder, JumpsWithTheStatusOfAFailingCallback) {
    for (size_t room = 0; room < 5; ++room) {
        stream_ = Stream{};
        stream_.room = room;
        re_start(encoder_);
        EXPECT_EQ(jump_of_encoder(encoder_), eBADWRITE) << room;
        EXPECT_EQ(stream_.bytes.size(), room);
    }
    stream_ = Stream{};
    re_start(encoder_);
    EXPECT_EQ(jump_of_encoder(encoder_), 0);
    for (size_t room = 0; room < 8; ++room) {
        stream_.bytes.assign(20, 0);
        stream_.at = 0;
        stream_.room = room;
        EXPECT_EQ(jump_of_decoder(decoder_), sEOS) << room;
    }
    stream_.at = 0;
    stream_.room = SIZE_MAX;
    EXPECT_EQ(jump_of_decoder(decoder_), 0);
}

TEST(RangeCoders, RefuseNullArguments) {
    oaktest::Tag tag;
    RANGE_ENCODER encoder = nullptr;
    RANGE_DECODER decoder = nullptr;
    EXPECT_EQ(re_init(nullptr, nullptr, tag, &encoder), eINVNULLARG);
    EXPECT_EQ(re_init(put, nullptr, tag, nullptr), eINVNULLARG);
    EXPECT_EQ(rd_init(nullptr, nullptr, tag, &decoder), eINVNULLARG);
    EXPECT_EQ(rd_init(get, nullptr, tag, nullptr), eINVNULLARG);
    re_term(nullptr);
    rd_term(nullptr);
}

TEST(RangeCoders, LeaveNothingBehindWhenMemoryEnds) {
    oaktest::Tag tag;
    const uint64_t runs =
        oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&]() -> OAK_RETCODE {
            RANGE_ENCODER encoder = nullptr;
            RANGE_DECODER decoder = nullptr;
            OAK_RETCODE status = re_init(put, nullptr, tag, &encoder);
            if (status == sOKAY) {
                status = rd_init(get, nullptr, tag, &decoder);
            }
            EXPECT_EQ(decoder != nullptr, status == sOKAY);
            re_term(encoder);
            rd_term(decoder);
            return status;
        });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
