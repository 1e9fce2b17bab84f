// The LZMA coder against known streams and against a second coder written only
// to be read: it lists every earlier match, decides by the stated rules one by
// one, and codes bit by bit into a plain vector.
#include "lzma.h"

#include <cstring>
#include <string>
#include <vector>

#include "lzma_dict_internal.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

// ---- The plain coder ---------------------------------------------------------

struct PlainModels {
    std::vector<uint16_t> lit = fresh(6144);
    std::vector<uint16_t> is_match = fresh(12 * 16), rep = fresh(12), rep0 = fresh(12),
                          rep0_long = fresh(12 * 16), rep1 = fresh(12), rep2 = fresh(12),
                          slot = fresh(4 * 64), special = fresh(114), align = fresh(16),
                          choice = fresh(2), low = fresh(128), mid = fresh(128), high = fresh(256);
    static std::vector<uint16_t> fresh(size_t n) { return std::vector<uint16_t>(n, 1024); }
};

int next_state(int state, char packet) {
    static const char after_literal[] = {0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 4, 5};
    switch (packet) {
        case 'L':
            return after_literal[state];
        case 'M':
            return state < 7 ? 7 : 10;
        case 'R':
            return state < 7 ? 9 : 11;
        default:
            return state < 7 ? 8 : 11;
    }
}

class PlainEncoder {
  public:
    explicit PlainEncoder(const Bytes &data) : data_(data) {}

    Bytes run(bool use_short_repeats = false) {
        put_length(data_.size());
        size_t at = 0;
        bool have_next = false;
        std::vector<LZ77_SEQ> here, next;
        while (at < data_.size()) {
            here = have_next ? next : list_matches(at);
            have_next = false;
            LZ77_SEQ best{0, 0};
            int rep = -1;
            const char packet = decide(at, here, next, have_next, best, rep);
            if (use_short_repeats && packet == 'L' && at > reps_[0] &&
                data_[at] == data_[at - 1 - reps_[0]]) {
                code_short_repeat(at);
                at += 1;
            } else if (packet == 'L') {
                code_literal(at);
                at += 1;
            } else if (packet == 'M') {
                code_match(at, best);
                at += best.len;
            } else {
                code_repeat(at, rep, best.len);
                at += best.len;
            }
        }
        for (int i = 0; i < 5; ++i) {
            normalize();
        }
        return out_;
    }

    /// A stream of one match with the distance and length given, for damage.
    Bytes lone_match(size_t announced, uint32_t pos, uint32_t len) {
        put_length(announced);
        code_match(0, LZ77_SEQ{pos, len});
        for (int i = 0; i < 5; ++i) {
            normalize();
        }
        return out_;
    }

    int literals = 0, matches = 0, short_repeats = 0;
    int repeats[4] = {0, 0, 0, 0};

  private:
    uint32_t match_length(size_t at, size_t earlier) const {
        uint32_t len = 0;
        while (len < 273 && at + len < data_.size() && data_[at + len] == data_[earlier + len]) {
            ++len;
        }
        return len;
    }

    /// Every earlier place with the same two bytes in the window, nearest first,
    /// kept unless a nearer one is more than 3 longer.
    std::vector<LZ77_SEQ> list_matches(size_t at) const {
        std::vector<LZ77_SEQ> list;
        uint32_t longest = 0;
        for (size_t distance = 1; distance <= at && distance <= 16384; ++distance) {
            const uint32_t len = match_length(at, at - distance);
            if (len >= 2 && (list.empty() || len + 3 >= longest)) {
                list.push_back({static_cast<uint32_t>(distance - 1), len});
                longest = std::max(longest, len);
            }
        }
        return list;
    }

    static LZ77_SEQ best_of(const std::vector<LZ77_SEQ> &list) {
        LZ77_SEQ best = list[0];
        for (const LZ77_SEQ &m : list) {
            if (m.len > best.len || (m.len == best.len && m.pos < best.pos)) {
                best = m;
            }
        }
        return best;
    }

    char decide(size_t at, const std::vector<LZ77_SEQ> &here, std::vector<LZ77_SEQ> &next,
                bool &have_next, LZ77_SEQ &chosen, int &rep) const {
        if (here.empty()) {
            return 'L';
        }
        LZ77_SEQ repeat{0, 0};
        for (const LZ77_SEQ &m : here) {
            for (int i = 0; i < 4; ++i) {
                if (reps_[i] == m.pos) {
                    if (m.len > repeat.len) {
                        repeat = m;
                        rep = i;
                    }
                    break;
                }
            }
        }
        LZ77_SEQ best = best_of(here);
        const auto use_repeat = [&] {
            chosen = repeat;
            return 'R';
        };
        if (best.len >= 64) {
            if (rep >= 0) {
                return use_repeat();
            }
            chosen = best;
            return 'M';
        }
        for (bool again = true; again;) {
            again = false;
            for (const LZ77_SEQ &m : here) {
                if (m.pos >= best.pos >> 7) {
                    break;
                }
                if (m.len >= best.len - 1) {
                    best = m;
                    again = true;
                    break;
                }
            }
        }
        if (best.len == 2 && best.pos >= 128) {
            best.len = 1;
        }
        if (rep >= 0 &&
            (repeat.len + 1 >= best.len || (repeat.len + 2 >= best.len && best.pos >= 512))) {
            return use_repeat();
        }
        if (best.len < 2) {
            return 'L';
        }
        next = at + 1 < data_.size() ? list_matches(at + 1) : std::vector<LZ77_SEQ>{};
        if (!next.empty()) {
            const LZ77_SEQ n = best_of(next);
            if (n.len > best.len + 1 || (n.len == best.len + 1 && n.pos >> 7 <= best.pos) ||
                (n.len >= best.len && n.pos < best.pos) ||
                (n.len >= best.len - 1 && best.len > 2 && n.pos < best.pos >> 7)) {
                have_next = true;
                return 'L';
            }
        }
        if (rep >= 0 && repeat.len >= best.len - 1) {
            return use_repeat();
        }
        chosen = best;
        return 'M';
    }

    void put_length(size_t value) {
        for (; value > 127; value >>= 7) {
            out_.push_back(static_cast<uint8_t>(value | 0x80));
        }
        out_.push_back(static_cast<uint8_t>(value));
    }

    void normalize() {
        if (low_ < 0xff000000u) {
            out_.push_back(cache_);
            out_.insert(out_.end(), cache_size_ - 1, 0xff);
            cache_size_ = 1;
            cache_ = static_cast<uint8_t>(low_ >> 24);
        } else if (low_ > 0xffffffffu) {
            out_.push_back(static_cast<uint8_t>(cache_ + 1));
            out_.insert(out_.end(), cache_size_ - 1, 0x00);
            cache_size_ = 1;
            cache_ = static_cast<uint8_t>(low_ >> 24);
        } else {
            ++cache_size_;
        }
        range_ <<= 8;
        low_ = (low_ & 0xffffff) << 8;
    }

    void bit(uint16_t &prob, uint32_t value) {
        if (range_ <= 0xffffff) {
            normalize();
        }
        const uint32_t bound = (range_ >> 11) * prob;
        if (value == 0) {
            range_ = bound;
            prob = static_cast<uint16_t>(prob + ((2048 - prob) >> 5));
        } else {
            low_ += bound;
            range_ -= bound;
            prob = static_cast<uint16_t>(prob - (prob >> 5));
        }
    }

    void fixed(uint32_t value, uint32_t bits) {
        while (bits-- > 0) {
            if (range_ <= 0xffffff) {
                normalize();
            }
            range_ >>= 1;
            if (((value >> bits) & 1) != 0) {
                low_ += range_;
            }
        }
    }

    void tree(uint16_t *prob, uint32_t bits, uint32_t value) {
        uint32_t index = 1;
        for (uint32_t i = bits; i-- > 0;) {
            bit(prob[index - 1], (value >> i) & 1);
            index = index * 2 | ((value >> i) & 1);
        }
    }

    void tree_reverse(uint16_t *prob, uint32_t bits, uint32_t value) {
        uint32_t index = 1;
        for (uint32_t i = 0; i < bits; ++i) {
            bit(prob[index - 1], (value >> i) & 1);
            index = index * 2 | ((value >> i) & 1);
        }
    }

    uint16_t &is_match(size_t at) { return m_.is_match[state_ * 16 + (at & 3)]; }

    void code_literal(size_t at) {
        ++literals;
        bit(is_match(at), 0);
        uint16_t *models = &m_.lit[(at > 0 ? data_[at - 1] >> 5 : 0) * 0x300];
        const uint32_t byte = data_[at];
        if (state_ < 7) {
            tree(models, 8, byte);
        } else {
            const uint32_t match = data_[at - 1 - reps_[0]];
            uint32_t index = 1;
            bool matching = true;
            for (int i = 7; i >= 0; --i) {
                const uint32_t match_bit = (match >> i) & 1, value = (byte >> i) & 1;
                bit(models[(matching ? (match_bit + 1) << 8 : 0) + index - 1], value);
                matching = matching && match_bit == value;
                index = index * 2 | value;
            }
        }
        state_ = next_state(state_, 'L');
    }

    void code_length(size_t at, uint32_t len) {
        if (len < 10) {
            bit(m_.choice[0], 0);
            tree(&m_.low[(at & 3) * 8], 3, len - 2);
        } else if (len < 18) {
            bit(m_.choice[0], 1);
            bit(m_.choice[1], 0);
            tree(&m_.mid[(at & 3) * 8], 3, len - 10);
        } else {
            bit(m_.choice[0], 1);
            bit(m_.choice[1], 1);
            tree(m_.high.data(), 8, len - 18);
        }
    }

    void code_match(size_t at, LZ77_SEQ match) {
        ++matches;
        bit(is_match(at), 1);
        bit(m_.rep[state_], 0);
        code_length(at, match.len);
        uint32_t slot = match.pos;
        if (match.pos >= 4) {
            uint32_t n = 0; // bits of the distance
            while (n < 32 && match.pos >> n != 0) {
                ++n;
            }
            slot = (2 * n - 2) | ((match.pos >> (n - 2)) & 1);
        }
        tree(&m_.slot[std::min(match.len - 2, 3u) * 64], 6, slot);
        if (slot >= 14) {
            fixed(match.pos >> 4, (slot >> 1) - 5);
            tree_reverse(m_.align.data(), 4, match.pos);
        } else if (slot >= 4) {
            const uint32_t bits = (slot >> 1) - 1;
            tree_reverse(&m_.special[(((slot & 1) | 2) << bits) - slot], bits, match.pos);
        }
        reps_[3] = reps_[2];
        reps_[2] = reps_[1];
        reps_[1] = reps_[0];
        reps_[0] = match.pos;
        state_ = next_state(state_, 'M');
    }

    void code_short_repeat(size_t at) {
        ++short_repeats;
        bit(is_match(at), 1);
        bit(m_.rep[state_], 1);
        bit(m_.rep0[state_], 0);
        bit(m_.rep0_long[state_ * 16 + (at & 3)], 0);
        state_ = next_state(state_, 'S');
    }

    void code_repeat(size_t at, int rep, uint32_t len) {
        ++repeats[rep];
        bit(is_match(at), 1);
        bit(m_.rep[state_], 1);
        if (rep == 0) {
            bit(m_.rep0[state_], 0);
            bit(m_.rep0_long[state_ * 16 + (at & 3)], 1);
        } else {
            bit(m_.rep0[state_], 1);
            bit(m_.rep1[state_], rep > 1 ? 1 : 0);
            if (rep > 1) {
                bit(m_.rep2[state_], rep > 2 ? 1 : 0);
            }
        }
        const uint32_t distance = reps_[rep];
        for (int i = rep; i > 0; --i) {
            reps_[i] = reps_[i - 1];
        }
        reps_[0] = distance;
        code_length(at, len);
        state_ = next_state(state_, 'R');
    }

    const Bytes &data_;
    PlainModels m_;
    Bytes out_;
    int state_ = 0;
    uint32_t reps_[4] = {0, 0, 0, 0};
    uint64_t low_ = 0;
    uint32_t range_ = 0xffffffff;
    uint8_t cache_ = 0;
    size_t cache_size_ = 1;
};

// ---- Inputs ------------------------------------------------------------------

Bytes bytes_of(const std::string &text) {
    return Bytes(text.begin(), text.end());
}

Bytes rows(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        char row[100];
        std::snprintf(row, sizeof row, "%08d|customer-%05d|%s street %d|%d.%02d;", 1000 + i,
                      i * 7919 % 20000, i % 2 == 0 ? "Oak" : "Birch", i * 37 % 300, i * 101 % 5000,
                      i * 13 % 100);
        text += row;
    }
    return bytes_of(text);
}

Bytes generated(size_t count) {
    Bytes bytes;
    uint32_t s = 12345;
    while (bytes.size() < count) {
        s = (s * 1103515245u + 12345u) & 0x7fffffff;
        bytes.push_back(static_cast<uint8_t>(s >> 16));
    }
    return bytes;
}

Bytes random_bytes(oaktest::Random &random, size_t size, uint64_t alphabet) {
    Bytes bytes(size);
    for (uint8_t &byte : bytes) {
        byte = static_cast<uint8_t>(random.below(alphabet));
    }
    // Copies of earlier stretches, so that repeats of all four kinds come up.
    for (size_t n = size / 40; n > 0 && size > 100; --n) {
        const size_t len = 2 + random.below(n % 7 == 0 ? 80 : 12);
        const size_t from = random.below(size - len), to = random.below(size - len);
        std::memmove(&bytes[to], &bytes[from], len);
    }
    return bytes;
}

class Lzma : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(b_lzmaCreate(&lzma_), sOKAY);
        b_buffInit(&out_, tag_);
        b_buffInit(&back_, tag_);
    }
    void TearDown() override {
        b_buffTerm(&out_);
        b_buffTerm(&back_);
        b_lzmaDestroy(lzma_);
    }

    Bytes compress(const Bytes &data) {
        OAK_BUFFER source;
        b_buffInit(&source, tag_);
        b_buffSetStatic(&source, data.data(), data.size());
        b_buffReset(&out_);
        EXPECT_EQ(b_lzmaCompress(lzma_, &source, &out_), sOKAY);
        return Bytes(out_.data, out_.data + out_.len);
    }

    std::string compressed_hex(const Bytes &data) {
        const Bytes stream = compress(data);
        return oaktest::hex(stream.data(), stream.size());
    }

    OAK_RETCODE decompress(const Bytes &stream) {
        OAK_BUFFER source;
        b_buffInit(&source, tag_);
        b_buffSetStatic(&source, stream.data(), stream.size());
        return b_lzmaDecompress(lzma_, &source, &back_);
    }

    Bytes restored() const { return Bytes(back_.data, back_.data + back_.len); }

    oaktest::Tag tag_;
    LZMA lzma_ = nullptr;
    OAK_BUFFER out_{}, back_{};
};

// ---- Known streams -----------------------------------------------------------

struct Known {
    const char *what;
    Bytes input;
    const char *stream; // hex
};

TEST_F(Lzma, WritesTheKnownStreams) {
    const Known known[] = {
        {"empty", {}, "000000000000"},
        {"one byte", bytes_of("a"), "0100307ffc00"},
        {"a run", bytes_of("aaaaaaaaaa"), "0a0030eb7c0000"},
        {"a period of three", bytes_of("abcabcabcabcabcabc"), "1200309888aa0207d000"},
        {"a sentence", bytes_of("the oak, the birch and the oak"),
         "1e003a1a08ce76b570fe45204285fb9338ab96d963cc53da35df7dad00"},
        {"zeros", Bytes(300, 0), "ac0200006ffdf7c10d2000"},
    };
    for (const Known &k : known) {
        EXPECT_EQ(compressed_hex(k.input), k.stream) << k.what;
        ASSERT_EQ(decompress(oaktest::unhex(k.stream)), sOKAY) << k.what;
        EXPECT_EQ(restored(), k.input) << k.what;
    }
}

struct KnownDigest {
    const char *what;
    Bytes input;
    size_t size;
    const char *first;  // hex of the first bytes
    const char *sha256; // its first 24 digits
};

TEST_F(Lzma, WritesLongStreamsWithTheKnownDigests) {
    Bytes all(256);
    for (size_t i = 0; i < all.size(); ++i) {
        all[i] = static_cast<uint8_t>(i);
    }
    const KnownDigest known[] = {
        {"bytes 0 to 255", all, 237, "800200000052500a", "ecf0ce8df4551432a5e71a22"},
        {"40 rows", rows(40), 588, "e60e00186888611e", "35db8850a13256461aef4999"},
        {"300 rows", rows(300), 2893, "8f6f00186888611e", "770496d805631315a287d467"},
        {"generator", generated(2000), 2039, "d00f006e0108454b", "3a34cea1d7fffd913f1393d4"},
    };
    for (const KnownDigest &k : known) {
        const Bytes stream = compress(k.input);
        EXPECT_EQ(stream.size(), k.size) << k.what;
        EXPECT_EQ(oaktest::hex(stream.data(), 8), k.first) << k.what;
        EXPECT_EQ(oaktest::sha256(stream.data(), stream.size()).substr(0, 24), k.sha256) << k.what;
        ASSERT_EQ(decompress(stream), sOKAY) << k.what;
        EXPECT_EQ(restored(), k.input) << k.what;
    }
}

TEST_F(Lzma, CompressesAsTheStatedRulesDoWithEveryMatchListed) {
    oaktest::Random random;
    PlainEncoder total({});
    for (int round = 0; round < 200; ++round) {
        const uint64_t alphabet = 2 + random.below(round % 3 == 0 ? 254 : 12);
        const Bytes data = random_bytes(random, random.below(round < 2 ? 20000 : 1000), alphabet);
        PlainEncoder plain(data);
        const Bytes expected = plain.run();
        ASSERT_EQ(compress(data), expected) << "round " << round << ", " << data.size() << " bytes";
        ASSERT_EQ(decompress(expected), sOKAY);
        ASSERT_EQ(restored(), data);
        total.literals += plain.literals;
        total.matches += plain.matches;
        for (int i = 0; i < 4; ++i) {
            total.repeats[i] += plain.repeats[i];
        }
    }
    // The inputs reached every kind of packet.
    EXPECT_GT(total.literals, 1000);
    EXPECT_GT(total.matches, 1000);
    for (const int repeats : total.repeats) {
        EXPECT_GT(repeats, 10);
    }
}

TEST_F(Lzma, ReadsTheShortRepeatsThatItNeverWrites) {
    oaktest::Random random(1);
    for (int round = 0; round < 40; ++round) {
        const Bytes data = random_bytes(random, 600, 3 + random.below(20));
        PlainEncoder plain(data);
        const Bytes stream = plain.run(true);
        EXPECT_GT(plain.short_repeats, 0);
        ASSERT_EQ(decompress(stream), sOKAY);
        EXPECT_EQ(restored(), data);
    }
}

// ---- Lengths, distances, window ----------------------------------------------

TEST_F(Lzma, EndsAMatchAtItsLongestLength) {
    for (const size_t size : {273u, 274u, 275u, 546u, 547u, 548u, 1000u}) {
        const Bytes data(size, 'x');
        EXPECT_EQ(compress(data), PlainEncoder(data).run()) << size;
        ASSERT_EQ(decompress(compress(data)), sOKAY);
        EXPECT_EQ(restored(), data);
    }
}

Bytes with_pair_at_distance(size_t distance) {
    // Bytes that never repeat as a pair nearer than the one wanted.
    Bytes data{0xfe, 0xff};
    for (size_t i = 0; data.size() < distance; ++i) {
        data.push_back(static_cast<uint8_t>(i % 120));
        if (data.size() < distance) {
            data.push_back(static_cast<uint8_t>(120 + i / 120));
        }
    }
    data.push_back(0xfe);
    data.push_back(0xff);
    data.push_back(0xfd);
    return data;
}

TEST_F(Lzma, UsesATwoByteMatchBelowDistance128Alone) {
    // The stored distance is one less than the distance in bytes.
    for (const size_t distance : {127u, 128u, 129u, 130u}) {
        const Bytes data = with_pair_at_distance(distance);
        PlainEncoder plain(data);
        const Bytes expected = plain.run();
        EXPECT_EQ(plain.matches > 0, distance - 1 < 128) << distance;
        EXPECT_EQ(compress(data), expected) << distance;
    }
}

// A text X of `length` bytes whose first `shared` bytes also stand where the last
// distance points, and whole at `distance`, nearer than that or farther off.
Bytes long_match_beside_repeat(size_t length, size_t shared, size_t distance, bool match_nearer) {
    Bytes source = generated(2000);
    const auto take = [&source](size_t count) {
        const Bytes taken(source.begin(), source.begin() + static_cast<long>(count));
        source.erase(source.begin(), source.begin() + static_cast<long>(count));
        return taken;
    };
    const Bytes lead = take(20), x = take(length);
    Bytes repeat = lead; // sets the distance; then a byte that differs, then some of X
    repeat.push_back(1);
    repeat.insert(repeat.end(), x.begin(), x.begin() + static_cast<long>(shared));
    repeat.push_back(static_cast<uint8_t>(x[shared] ^ 0xff));
    const size_t behind = lead.size() + 1 + (match_nearer ? 0 : repeat.size());
    const Bytes fill = take(distance - length - behind);

    Bytes data = match_nearer ? repeat : Bytes{};
    data.insert(data.end(), x.begin(), x.end());
    if (!match_nearer) {
        data.insert(data.end(), repeat.begin(), repeat.end());
    }
    data.insert(data.end(), fill.begin(), fill.end());
    data.insert(data.end(), lead.begin(), lead.end());
    data.push_back(2);
    data.insert(data.end(), x.begin(), x.end());
    data.push_back(3);
    return data;
}

// From 64 bytes on any listed repeat beats a longer match; below, it must come within
// one byte of it, or within two where the match is 513 bytes away or more.
TEST_F(Lzma, WeighsARepeatAgainstALongMatch) {
    int repeats = 0, matches = 0;
    for (const size_t length : {20u, 62u, 63u, 64u, 65u, 80u}) {
        for (const size_t distance : {300u, 511u, 512u, 513u, 514u}) {
            for (const size_t shared : {size_t{2}, size_t{10}, length - 5, length - 4, length - 3,
                                        length - 2, length - 1}) {
                for (const bool match_nearer : {false, true}) {
                    const Bytes data =
                        long_match_beside_repeat(length, shared, distance, match_nearer);
                    PlainEncoder plain(data);
                    ASSERT_EQ(compress(data), plain.run())
                        << length << ", " << shared << " at " << distance << ", " << match_nearer;
                    repeats += plain.repeats[0] > 0;
                    matches += plain.repeats[0] == 0;
                }
            }
        }
    }
    EXPECT_GT(repeats, 100);
    EXPECT_GT(matches, 100);
}

TEST_F(Lzma, ReachesBackOneWindowAndNoFurther) {
    for (const size_t distance : {16383u, 16384u, 16385u}) {
        Bytes data = generated(distance);
        const char needle[] = "a needle of some length";
        std::memcpy(data.data(), needle, sizeof needle);
        data.insert(data.end(), needle, needle + sizeof needle);
        const Bytes stream = compress(data);
        Bytes without = generated(distance);
        std::memcpy(without.data(), needle, sizeof needle);
        EXPECT_EQ(stream.size() < compress(without).size() + 12, distance <= 16384) << distance;
        ASSERT_EQ(decompress(stream), sOKAY);
        EXPECT_EQ(restored(), data);
    }
}

// Two needles at the longest distance with a byte between them that differs: a match,
// a literal, and a repeat.
TEST_F(Lzma, RepeatsTheLongestDistance) {
    const Bytes needle = bytes_of("the first needle, the second needle");
    Bytes data = generated(16384);
    std::copy(needle.begin(), needle.end(), data.begin());
    data.insert(data.end(), needle.begin(), needle.end());
    data[16384 + 17] = '!';
    PlainEncoder plain(data);
    EXPECT_EQ(compress(data), plain.run());
    EXPECT_EQ(plain.repeats[0], 1);
}

TEST_F(Lzma, KeepsNothingFromOneObjectToTheNext) {
    const Bytes first = rows(20), second = bytes_of("abcabcabcabcabcabc");
    compress(first);
    EXPECT_EQ(compressed_hex(second), "1200309888aa0207d000");
}

// ---- Buffers -----------------------------------------------------------------

TEST_F(Lzma, AppendsBehindWhatTheDestinationHolds) {
    ASSERT_EQ(b_buffEmitByte(&out_, 18), sOKAY);
    OAK_BUFFER source;
    b_buffInit(&source, tag_);
    b_buffSetStatic(&source, "a", 1);
    source.pos = 1; // compression takes the whole source from its first byte
    ASSERT_EQ(b_lzmaCompress(lzma_, &source, &out_), sOKAY);
    EXPECT_EQ(oaktest::hex(out_.data, out_.len), "120100307ffc00");
    EXPECT_EQ(out_.len, 7u);
}

TEST_F(Lzma, ReadsFromTheSourcesPositionAndIgnoresWhatFollows) {
    const Bytes stored = oaktest::unhex("12 0100307ffc00 00000000000000000000");
    OAK_BUFFER source;
    b_buffInit(&source, tag_);
    b_buffSetStatic(&source, stored.data(), stored.size());
    source.pos = 1;
    ASSERT_EQ(b_lzmaDecompress(lzma_, &source, &back_), sOKAY);
    EXPECT_EQ(restored(), bytes_of("a"));
    EXPECT_EQ(source.pos, 1u);
}

TEST_F(Lzma, RaisesTheDestinationToTheAnnouncedSize) {
    const Bytes data = rows(300);
    ASSERT_EQ(decompress(compress(data)), sOKAY);
    EXPECT_EQ(back_.size, data.size());
    ASSERT_EQ(decompress(compress(bytes_of("a"))), sOKAY); // reuse shrinks nothing
    EXPECT_EQ(back_.size, data.size());
    EXPECT_EQ(restored(), bytes_of("a"));
}

// A stream of some 30 bytes first gets room for 4096; the rest follows what is
// decoded, in front of a literal and in front of a match.
TEST_F(Lzma, GrowsItsOutputWithWhatIsDecoded) {
    Bytes literal_at_the_end_of_room(4096, 0);
    literal_at_the_end_of_room.insert(literal_at_the_end_of_room.end(), {'a', 'b', 'c'});
    for (const Bytes &data : {literal_at_the_end_of_room, Bytes(300000, 'x')}) {
        const Bytes stream = compress(data);
        ASSERT_LT(stream.size(), 64u + (data.size() > 5000 ? 600 : 0));
        OAK_BUFFER source;
        b_buffInit(&source, tag_);
        b_buffSetStatic(&source, stream.data(), stream.size());
        const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
            OAK_BUFFER back;
            b_buffInit(&back, tag_);
            const OAK_RETCODE status = b_lzmaDecompress(lzma_, &source, &back);
            if (status == sOKAY) {
                EXPECT_EQ(Bytes(back.data, back.data + back.len), data);
                EXPECT_EQ(back.size, data.size());
            }
            b_buffTerm(&back);
            return status;
        });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

TEST_F(Lzma, MakesAStaticDestinationItsOwn) {
    const char view[] = "caller's bytes";
    b_buffSetStatic(&out_, view, sizeof view);
    OAK_BUFFER source;
    b_buffInit(&source, tag_);
    b_buffSetStatic(&source, "a", 1);
    ASSERT_EQ(b_lzmaCompress(lzma_, &source, &out_), sOKAY);
    EXPECT_EQ(oaktest::hex(out_.data, out_.len), "0100307ffc00");
    b_buffSetStatic(&back_, view, sizeof view);
    ASSERT_EQ(decompress(oaktest::unhex("0100307ffc00")), sOKAY);
    EXPECT_EQ(restored(), bytes_of("a"));
    EXPECT_STREQ(view, "caller's bytes");
}

// ---- Damage ------------------------------------------------------------------

TEST_F(Lzma, YieldsWhatWasDecodedOfAStreamCutShort) {
    const Bytes data = rows(40);
    const Bytes stream = compress(data);
    for (size_t cut = 2; cut < stream.size(); ++cut) {
        ASSERT_EQ(decompress(Bytes(stream.begin(), stream.begin() + static_cast<long>(cut))),
                  sOKAY);
        const Bytes got = restored();
        ASSERT_LE(got.size(), data.size());
        ASSERT_TRUE(std::equal(got.begin(), got.end(), data.begin())) << "cut at " << cut;
    }
}

TEST_F(Lzma, TellsAnEmptySourceFromALengthCutShort) {
    EXPECT_EQ(decompress({}), sNOTFOUND);
    EXPECT_EQ(decompress({0x80}), sEOS);
    EXPECT_EQ(decompress({0x80, 0x80}), sEOS);
    EXPECT_EQ(decompress(Bytes(11, 0x80)), eINVVARINT);
    EXPECT_EQ(decompress({0}), sOKAY); // an object of no bytes, its stream cut off
    EXPECT_EQ(back_.len, 0u);
}

TEST_F(Lzma, RefusesAnAnnouncedSizeOfFourGigabytes) {
    EXPECT_EQ(decompress(oaktest::unhex("8080808010 0000000000")), eDBCORRUPTED);
    // One less is taken; memory follows what is decoded, which is next to nothing.
    EXPECT_EQ(decompress(oaktest::unhex("ffffffff0f 0000000000")), sOKAY);
    EXPECT_LE(back_.size, 65536u);
}

TEST_F(Lzma, RefusesADistanceBeforeTheFirstByte) {
    const Bytes nothing;
    for (const uint32_t pos : {0u, 1u, 3u, 4u, 127u, 128u, 16383u, 0x7fffffffu, 0xffffffffu}) {
        EXPECT_EQ(decompress(PlainEncoder(nothing).lone_match(100, pos, 5)), eDBCORRUPTED) << pos;
    }
}

TEST_F(Lzma, LetsALastMatchPassTheAnnouncedSize) {
    const Bytes data(300, 0);
    Bytes stream = compress(data);
    stream[0] = 0x82; // 2 instead of 300, in the same two bytes
    stream[1] = 0x00;
    ASSERT_EQ(decompress(stream), sOKAY);
    EXPECT_EQ(back_.len, 274u); // a literal and a match of 273
    EXPECT_EQ(back_.size, 2u + 2 * 256);
}

TEST_F(Lzma, SurvivesEveryFlippedBit) {
    const Bytes data = rows(8);
    const Bytes stream = compress(data);
    for (size_t i = 0; i < stream.size() * 8; ++i) {
        Bytes damaged = stream;
        damaged[i / 8] ^= static_cast<uint8_t>(1 << i % 8);
        const OAK_RETCODE status = decompress(damaged);
        EXPECT_TRUE(status == sOKAY || status == eDBCORRUPTED) << status;
    }
}

TEST_F(Lzma, RefusesNullArguments) {
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag_);
    EXPECT_EQ(b_lzmaCreate(nullptr), eINVNULLARG);
    EXPECT_EQ(b_lzmaCompress(nullptr, &buffer, &buffer), eINVNULLARG);
    EXPECT_EQ(b_lzmaCompress(lzma_, nullptr, &buffer), eINVNULLARG);
    EXPECT_EQ(b_lzmaCompress(lzma_, &buffer, nullptr), eINVNULLARG);
    EXPECT_EQ(b_lzmaDecompress(nullptr, &buffer, &buffer), eINVNULLARG);
    EXPECT_EQ(b_lzmaDecompress(lzma_, nullptr, &buffer), eINVNULLARG);
    EXPECT_EQ(b_lzmaDecompress(lzma_, &buffer, nullptr), eINVNULLARG);
    b_lzmaDestroy(nullptr);
}

TEST_F(Lzma, RefusesASourceOfFourGigabytes) {
    OAK_BUFFER source;
    b_buffInit(&source, tag_);
    b_buffSetStatic(&source, "a", size_t{1} << 32);
    EXPECT_EQ(b_lzmaCompress(lzma_, &source, &out_), eRANGE);
    EXPECT_EQ(out_.len, 0u);
}

// ---- Failing memory ----------------------------------------------------------

TEST(LzmaFaults, GiveUpTheWholeCoder) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        LZMA lzma = nullptr;
        const OAK_RETCODE status = b_lzmaCreate(&lzma);
        EXPECT_EQ(lzma != nullptr, status == sOKAY);
        b_lzmaDestroy(lzma);
        return status;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST_F(Lzma, LeavesTheDestinationAsItWasWhenMemoryEnds) {
    const Bytes data = rows(300);
    OAK_BUFFER source;
    b_buffInit(&source, tag_);
    b_buffSetStatic(&source, data.data(), data.size());
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        OAK_BUFFER out;
        b_buffInit(&out, tag_);
        OAK_RETCODE status = b_buffEmitByte(&out, 18);
        if (status == sOKAY) {
            status = b_lzmaCompress(lzma_, &source, &out);
            EXPECT_EQ(out.len == 1, status != sOKAY);
            EXPECT_EQ(out.data[0], 18);
        }
        b_buffTerm(&out);
        return status;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST_F(Lzma, ReportsMemoryThatEndsWhileDecoding) {
    const Bytes stream = compress(rows(300));
    OAK_BUFFER source;
    b_buffInit(&source, tag_);
    b_buffSetStatic(&source, stream.data(), stream.size());
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        OAK_BUFFER back;
        b_buffInit(&back, tag_);
        const OAK_RETCODE status = b_lzmaDecompress(lzma_, &source, &back);
        EXPECT_EQ(back.len == 0, status != sOKAY);
        b_buffTerm(&back);
        return status;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
