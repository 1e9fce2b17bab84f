// The LZMA coder of stored objects: a greedy parser with a lookahead of one
// position over the dictionary of lzma_dict_internal.h, and the packet coding of
// LZMA1 (as the LZMA SDK of Igor Pavlov describes it) over the bit functions of
// range_encoder_internal.h, straight into and out of an OAK_BUFFER. Called by
// the object layer (dbobjapi.cpp) and by upper layers.
//
// Failures deep in the coding, memory for the output or the end of the input,
// leave by a jump to the mark in b_lzmaCompress or b_lzmaDecompress. The frames
// between hold no object with a destructor; what must survive the jump lies in
// the _LZMA record.
#include "lzma.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "lzma_dict_internal.h"
#include "range_encoder_internal.h"
#include "vint_inline.h"

namespace {

constexpr uint32_t kStates = 12;
constexpr uint32_t kFirstStateAfterMatch = 7; // from it on, literals are coded against a match byte
constexpr uint32_t kPosStates = 4;            // 1 << pb
constexpr uint32_t kPosMask = kPosStates - 1;
constexpr uint32_t kLiteralContextBits = 3; // lc; lp is 0
constexpr uint32_t kLiteralModels = 0x300;
constexpr uint32_t kLiteralTotal = kLiteralModels << kLiteralContextBits; // 6144
constexpr uint32_t kReps = 4;
constexpr uint32_t kLengthContexts = 4; // of distance slots, by the match length
constexpr uint32_t kSlotBits = 6;
constexpr uint32_t kFirstModeledSlot = 4;  // below it the slot is the distance
constexpr uint32_t kFirstAlignedSlot = 14; // from it on, fixed bits and an aligned tree
constexpr uint32_t kAlignBits = 4;
constexpr uint32_t kSpecialModels = 114; // reverse trees of slots 4 to 13
constexpr uint32_t kShortBits = 3;
constexpr uint32_t kHighBits = 8;
constexpr uint32_t kMidStart = kLzmaShortestMatch + (1u << kShortBits); // 10
constexpr uint32_t kHighStart = kMidStart + (1u << kShortBits);         // 18
static_assert(kHighStart + (1u << kHighBits) - 1 == kLzmaLongestMatch);

constexpr size_t kOutputStep = 256; // by which an output grows when it is full

constexpr uint8_t lzma_next_state_LIT[kStates] = {0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 4, 5};
constexpr uint8_t lzma_next_state_MATCH[kStates] = {7, 7, 7, 7, 7, 7, 7, 10, 10, 10, 10, 10};
// These two stand the other way round in published LZMA; stored streams depend
// on it.
constexpr uint8_t lzma_next_state_LONGREP[kStates] = {9, 9, 9, 9, 9, 9, 9, 11, 11, 11, 11, 11};
constexpr uint8_t lzma_next_state_SHORTREP[kStates] = {8, 8, 8, 8, 8, 8, 8, 11, 11, 11, 11, 11};

struct LZMA_PROBS {
    RANGE_PROB lit[kLiteralTotal];
    RANGE_PROB is_match[kStates][16];
    RANGE_PROB rep[kStates];
    RANGE_PROB rep0[kStates];
    RANGE_PROB rep0_long[kStates][16];
    RANGE_PROB rep1[kStates];
    RANGE_PROB rep2[kStates];
    RANGE_PROB dist_slot[kLengthContexts][1u << kSlotBits];
    RANGE_PROB dist_special[kSpecialModels];
    RANGE_PROB dist_align[1u << kAlignBits];
    RANGE_PROB choice;
    RANGE_PROB choice2;
    RANGE_PROB low[16 << kShortBits]; // by position state; one length model for matches and repeats
    RANGE_PROB mid[16 << kShortBits];
    RANGE_PROB high[1u << kHighBits];
};
static_assert(sizeof(LZMA_PROBS) / sizeof(RANGE_PROB) - kLiteralTotal == 1332);

} // namespace

struct _LZMA {
    OSL_MEMTAG tag;
    jmp_buf *error_buf;      // set while an object is coded
    size_t output_pos;       // bytes of output that stand, for the time after a jump
    LZMA_DICT dict;          // set while an object is compressed
    uint32_t state;          // 0 to 11, by the last packets
    uint32_t reps[kReps];    // the last distances less 1
    LZMA_MATCHES matches[2]; // of the position and of the one behind it
    LZMA_PROBS probs;
};

namespace {

// Sets all models to the start. For a small object this is a good part of the
// work, so each copy is of all that stands already and as fast as memory is.
void reset_probs(LZMA_PROBS &all) {
    constexpr size_t kCount = sizeof all / sizeof(RANGE_PROB);
    constexpr size_t kFirst = 64;
    auto *probs = reinterpret_cast<RANGE_PROB *>(&all);
    std::fill_n(probs, kFirst, range_coder::kProbStart);
    for (size_t done = kFirst; done < kCount; done *= 2) {
        std::memcpy(probs + done, probs, std::min(done, kCount - done) * sizeof(RANGE_PROB));
    }
}

// Both directions start every object from the same state.
void reset(LZMA lzma) {
    lzma->state = 0;
    std::memset(lzma->reps, 0, sizeof lzma->reps);
    reset_probs(lzma->probs);
}

RANGE_CODER_INLINE RANGE_PROB *literal_models(LZMA_PROBS &probs, uint8_t previous) {
    return probs.lit + (previous >> (8 - kLiteralContextBits)) * kLiteralModels;
}

RANGE_CODER_INLINE RANGE_PROB *slot_models(LZMA_PROBS &probs, uint32_t len) {
    return probs.dist_slot[std::min(len - kLzmaShortestMatch, kLengthContexts - 1)];
}

// Where the reverse tree of a slot below 14 begins, less 1 for its index from 1.
RANGE_CODER_INLINE RANGE_PROB *special_models(LZMA_PROBS &probs, uint32_t slot, uint32_t bits) {
    return probs.dist_special + ((((slot & 1) | 2) << bits) - slot);
}

RANGE_CODER_INLINE uint32_t slot_bits(uint32_t slot) {
    return (slot >> 1) - 1;
}

// Without an index that varies, so that the four can live in registers.
RANGE_CODER_INLINE void rep_to_front(uint32_t *reps, uint32_t index) {
    const uint32_t distance = index == 0   ? reps[0]
                              : index == 1 ? reps[1]
                              : index == 2 ? reps[2]
                                           : reps[3];
    reps[3] = index >= 3 ? reps[2] : reps[3];
    reps[2] = index >= 2 ? reps[1] : reps[2];
    reps[1] = index >= 1 ? reps[0] : reps[1];
    reps[0] = distance;
}

RANGE_CODER_INLINE void push_rep(uint32_t *reps, uint32_t distance) {
    reps[3] = reps[2];
    reps[2] = reps[1];
    reps[1] = reps[0];
    reps[0] = distance;
}

// ---- Compression ------------------------------------------------------------

// What the parser decides for a position.
struct Packet {
    uint32_t len; // 0 for a literal
    uint32_t pos; // distance less 1 of a match
    uint32_t rep; // index of a repeated distance, kReps for a match
};

struct Compressor {
    LZMA lzma;
    const uint8_t *data;
    uint32_t size;
    uint32_t at;       // the position to be coded
    bool looked_ahead; // `here` holds its matches already
    LZMA_MATCHES *here;
    LZMA_MATCHES *next;
    OAK_BUFFER *output;
    range_coder::EncoderState coder;
};

// Makes room for the next bytes of output; jumps when memory ends.
__attribute__((noinline)) void grow_output(LZMA lzma, OAK_BUFFER *output) {
    const OAK_RETCODE status = b_buffIncreaseSize(output, output->size + kOutputStep);
    if (status != sOKAY) {
        longjmp(*lzma->error_buf, status);
    }
}

RANGE_CODER_INLINE auto emit_to(Compressor &c) {
    return [&c](uint8_t byte) {
        if (c.lzma->output_pos == c.output->size) {
            grow_output(c.lzma, c.output);
        }
        c.output->data[c.lzma->output_pos++] = byte;
    };
}

// A full list holds a match unless a nearer one is more than 3 longer; the
// length of the longest nearer one is that of the last record before it.
bool would_be_listed(const LZMA_MATCHES *matches, uint32_t pos, uint32_t len) {
    uint32_t longest = 0;
    for (uint32_t i = 0; i < matches->num && matches->lz77[i].pos < pos; ++i) {
        longest = matches->lz77[i].len;
    }
    return longest == 0 || len + 3 >= longest;
}

// The longest match at one of the repeated distances, the nearest of equals;
// len 0 when there is none.
Packet lzma_find_best_repeated_distance_match(const Compressor &c) {
    Packet best{0, 0, kReps};
    for (uint32_t i = 0; i < kReps; ++i) {
        const uint32_t pos = c.lzma->reps[i];
        const bool seen = std::find(c.lzma->reps, c.lzma->reps + i, pos) != c.lzma->reps + i;
        if (seen || pos >= kLzmaDictSize || pos >= c.at) {
            continue;
        }
        const uint32_t len = lzmaDict_matchLength(c.lzma->dict, c.at, c.at - 1 - pos);
        if (len < kLzmaShortestMatch || !would_be_listed(c.here, pos, len)) {
            continue;
        }
        if (len > best.len || (len == best.len && pos < best.pos)) {
            best = Packet{len, pos, i};
        }
    }
    return best;
}

// Gives up one byte of length for a distance more than 128 times smaller, as
// often as that is to be had: the first record that is long enough is the
// nearest such match.
LZ77_SEQ lzma_check_for_closer_option(const LZMA_MATCHES *matches, LZ77_SEQ best) {
    for (;;) {
        const LZ77_SEQ *closer = matches->lz77;
        while (closer->len + 1 < best.len) {
            ++closer; // ends at the latest with the last record
        }
        if (closer->pos >= best.pos >> 7) {
            return best;
        }
        best = *closer;
    }
}

// True when coding a literal now and the match of the next position then is
// better than the match of this one.
bool next_is_better(const LZMA_MATCHES *next, LZ77_SEQ match) {
    if (next->num == 0) {
        return false;
    }
    const LZ77_SEQ best = next->lz77[next->num - 1];
    return best.len > match.len + 1 || (best.len == match.len + 1 && best.pos >> 7 <= match.pos) ||
           (best.len >= match.len && best.pos < match.pos) ||
           (best.len + 1 >= match.len && match.len > 2 && best.pos < match.pos >> 7);
}

// Decides how the position is coded. A literal chosen for the sake of the next
// position keeps that position's matches.
Packet lzma_find_match(Compressor &c) {
    constexpr Packet kLiteral{0, 0, kReps};
    constexpr uint32_t kLongMatch = 64;
    if (c.here->num == 0) {
        return kLiteral;
    }
    const Packet repeat = lzma_find_best_repeated_distance_match(c);
    LZ77_SEQ match = c.here->lz77[c.here->num - 1];
    if (match.len >= kLongMatch) {
        return repeat.len != 0 ? repeat : Packet{match.len, match.pos, kReps};
    }
    match = lzma_check_for_closer_option(c.here, match);
    if (match.len == 2 && match.pos >= 128) {
        match.len = 1; // costs more than two literals
    }
    if (repeat.len != 0 &&
        (repeat.len + 1 >= match.len || (repeat.len + 2 >= match.len && match.pos >= 512))) {
        return repeat;
    }
    if (match.len < kLzmaShortestMatch) {
        return kLiteral;
    }
    lzmaDict_findMatches(c.lzma->dict, c.at + 1, c.next);
    if (next_is_better(c.next, match)) {
        c.looked_ahead = true;
        return kLiteral;
    }
    return Packet{match.len, match.pos, kReps}; // a repeat as good was taken above
}

void lzma_encode_LIT(Compressor &c) {
    LZMA lzma = c.lzma;
    range_coder::encode_zero(c.coder, emit_to(c),
                             lzma->probs.is_match[lzma->state][c.at & kPosMask]);
    RANGE_PROB *models = literal_models(lzma->probs, c.at > 0 ? c.data[c.at - 1] : 0);
    const uint8_t byte = c.data[c.at];
    if (lzma->state < kFirstStateAfterMatch) {
        range_coder::encode_tree(c.coder, emit_to(c), models, 8, byte);
    } else {
        const uint8_t match_byte = c.data[c.at - 1 - lzma->reps[0]];
        range_coder::encode_matched(c.coder, emit_to(c), models, byte, match_byte);
    }
    lzma->state = lzma_next_state_LIT[lzma->state];
}

void lzma_encode_len(Compressor &c, uint32_t len) {
    LZMA_PROBS &probs = c.lzma->probs;
    const uint32_t trees = (c.at & kPosMask) << kShortBits;
    range_coder::encode_bit(c.coder, emit_to(c), probs.choice, len >= kMidStart);
    if (len < kMidStart) {
        range_coder::encode_tree(c.coder, emit_to(c), probs.low + trees, kShortBits,
                                 len - kLzmaShortestMatch);
        return;
    }
    range_coder::encode_bit(c.coder, emit_to(c), probs.choice2, len >= kHighStart);
    if (len < kHighStart) {
        range_coder::encode_tree(c.coder, emit_to(c), probs.mid + trees, kShortBits,
                                 len - kMidStart);
        return;
    }
    range_coder::encode_tree(c.coder, emit_to(c), probs.high, kHighBits, len - kHighStart);
}

uint32_t lzma_calc_dist_slot(uint32_t pos) {
    if (pos < kFirstModeledSlot) {
        return pos;
    }
    const auto n = static_cast<uint32_t>(std::bit_width(pos));
    return (2 * n - 2) | ((pos >> (n - 2)) & 1);
}

void lzma_encode_distance(Compressor &c, uint32_t pos, uint32_t len) {
    LZMA_PROBS &probs = c.lzma->probs;
    const uint32_t slot = lzma_calc_dist_slot(pos);
    range_coder::encode_tree(c.coder, emit_to(c), slot_models(probs, len), kSlotBits, slot);
    if (slot < kFirstModeledSlot) {
        return;
    }
    const uint32_t bits = slot_bits(slot);
    if (slot < kFirstAlignedSlot) {
        range_coder::encode_tree_reverse(c.coder, emit_to(c), special_models(probs, slot, bits),
                                         bits, pos);
        return;
    }
    range_coder::encode_fixed_bits(c.coder, emit_to(c), pos >> kAlignBits, bits - kAlignBits);
    range_coder::encode_tree_reverse(c.coder, emit_to(c), probs.dist_align, kAlignBits, pos);
}

void lzma_encode_MATCH(Compressor &c, const Packet &packet) {
    LZMA lzma = c.lzma;
    range_coder::encode_zero(c.coder, emit_to(c), lzma->probs.rep[lzma->state]);
    lzma_encode_len(c, packet.len);
    lzma_encode_distance(c, packet.pos, packet.len);
    push_rep(lzma->reps, packet.pos);
    lzma->state = lzma_next_state_MATCH[lzma->state];
}

void lzma_encode_REP(Compressor &c, const Packet &packet) {
    LZMA lzma = c.lzma;
    LZMA_PROBS &probs = lzma->probs;
    const uint32_t state = lzma->state;
    range_coder::encode_one(c.coder, emit_to(c), probs.rep[state]);
    range_coder::encode_bit(c.coder, emit_to(c), probs.rep0[state], packet.rep > 0);
    if (packet.rep == 0) {
        range_coder::encode_one(c.coder, emit_to(c), probs.rep0_long[state][c.at & kPosMask]);
    } else {
        range_coder::encode_bit(c.coder, emit_to(c), probs.rep1[state], packet.rep > 1);
        if (packet.rep > 1) {
            range_coder::encode_bit(c.coder, emit_to(c), probs.rep2[state], packet.rep > 2);
        }
    }
    rep_to_front(lzma->reps, packet.rep);
    lzma_encode_len(c, packet.len);
    lzma->state = lzma_next_state_LONGREP[state];
}

void encode_packet(Compressor &c, const Packet &packet) {
    if (packet.len == 0) {
        lzma_encode_LIT(c);
        return;
    }
    LZMA lzma = c.lzma;
    range_coder::encode_one(c.coder, emit_to(c),
                            lzma->probs.is_match[lzma->state][c.at & kPosMask]);
    if (packet.rep == kReps) {
        lzma_encode_MATCH(c, packet);
    } else {
        lzma_encode_REP(c, packet);
    }
}

// Steps over the packet; the positions inside a match enter the dictionary too.
void step_over(Compressor &c, uint32_t len) {
    ++c.at;
    for (uint32_t i = 1; i < len; ++i, ++c.at) {
        lzmaDict_add(c.lzma->dict, c.at);
    }
}

__attribute__((noinline)) void compress(LZMA lzma, const uint8_t *data, uint32_t size,
                                        OAK_BUFFER *dst) {
    Compressor c{lzma,
                 data,
                 size,
                 0,
                 false,
                 &lzma->matches[0],
                 &lzma->matches[1],
                 dst,
                 range_coder::start_encoder()};
    while (c.at < size) {
        if (c.looked_ahead) {
            std::swap(c.here, c.next);
            c.looked_ahead = false;
        } else {
            lzmaDict_findMatches(lzma->dict, c.at, c.here);
        }
        lzmaDict_add(lzma->dict, c.at);
        const Packet packet = lzma_find_match(c);
        encode_packet(c, packet);
        step_over(c, packet.len);
    }
    range_coder::finish_encoder(c.coder, emit_to(c));
}

// Runs the compression with the jump set. On success lzma->output_pos tells
// where the stream ends.
OAK_RETCODE compress_guarded(LZMA lzma, const OAK_BUFFER *src, OAK_BUFFER *dst) {
    jmp_buf error;
    lzma->error_buf = &error;
    lzma->output_pos = dst->len;
    const int jumped = setjmp(error);
    if (jumped == 0) {
        reset(lzma);
        compress(lzma, src->data, static_cast<uint32_t>(src->len), dst);
    }
    lzma->error_buf = nullptr;
    return static_cast<OAK_RETCODE>(jumped);
}

// Appends the length and the stream; a failure takes both back.
OAK_RETCODE append_stream(LZMA lzma, const OAK_BUFFER *src, OAK_BUFFER *dst) {
    const size_t old_len = dst->len;
    OAK_RETCODE status = osl_vintEncodeUIntmax(src->len, b_buffEmitByte, dst);
    if (status == sOKAY) {
        status = compress_guarded(lzma, src, dst);
    }
    dst->len = status == sOKAY ? lzma->output_pos : old_len;
    return status;
}

// ---- Decompression ----------------------------------------------------------

// Where a decompression stands between packets.
struct Decompressor {
    const uint8_t *in;
    const uint8_t *in_end;
    OAK_BUFFER *dst;
    size_t result_size;
    size_t at; // bytes decoded
    uint32_t state;
    uint32_t reps[kReps];
    range_coder::DecoderState coder;
};

// The most bytes that one packet takes: one for each of its bits at the most.
constexpr ptrdiff_t kMostPacketBytes = 64;

// The first room of an output: the announced size, unless that is far more than
// the input would usually hold.
size_t first_room(size_t input, size_t result_size) {
    constexpr size_t kUsualRatio = 64;
    constexpr size_t kLeastRoom = 4096;
    return std::min(result_size, std::max(input * kUsualRatio, kLeastRoom));
}

// Room for `needed` bytes: up to the announced size in steps that double, so
// that memory follows what was decoded; beyond it, where a last match may lead,
// in steps of 256.
OAK_RETCODE reserve_output(OAK_BUFFER *dst, size_t needed, size_t result_size) {
    while (dst->size < needed) {
        const size_t wanted = dst->size < result_size ? std::min(dst->size * 2, result_size)
                                                      : dst->size + kOutputStep;
        const OAK_RETCODE status = b_buffIncreaseSize(dst, wanted);
        if (status != sOKAY) {
            return status;
        }
    }
    return sOKAY;
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_len(range_coder::DecoderState &coder, Next &&next,
                                       LZMA_PROBS &probs, uint32_t pos_state) {
    const uint32_t trees = pos_state << kShortBits;
    if (range_coder::decode_bit(coder, next, probs.choice) == 0) {
        return kLzmaShortestMatch +
               range_coder::decode_tree(coder, next, probs.low + trees, kShortBits);
    }
    if (range_coder::decode_bit(coder, next, probs.choice2) == 0) {
        return kMidStart + range_coder::decode_tree(coder, next, probs.mid + trees, kShortBits);
    }
    return kHighStart + range_coder::decode_tree(coder, next, probs.high, kHighBits);
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_distance(range_coder::DecoderState &coder, Next &&next,
                                            LZMA_PROBS &probs, uint32_t len) {
    const uint32_t slot = range_coder::decode_tree(coder, next, slot_models(probs, len), kSlotBits);
    if (slot < kFirstModeledSlot) {
        return slot;
    }
    const uint32_t bits = slot_bits(slot);
    const uint32_t base = ((slot & 1) | 2) << bits;
    if (slot < kFirstAlignedSlot) {
        return base + range_coder::decode_tree_reverse(coder, next,
                                                       special_models(probs, slot, bits), bits);
    }
    const uint32_t fixed = range_coder::decode_fixed_bits(coder, next, bits - kAlignBits);
    return base + (fixed << kAlignBits) +
           range_coder::decode_tree_reverse(coder, next, probs.dist_align, kAlignBits);
}

// Brings the repeated distance that a packet names to the front of `reps`. True
// for a short repeat, which is always of the first.
template <class Next>
RANGE_CODER_INLINE bool decode_rep(Decompressor &d, Next &&next, LZMA_PROBS &probs,
                                   uint32_t pos_state) {
    if (range_coder::decode_bit(d.coder, next, probs.rep0[d.state]) == 0) {
        return range_coder::decode_bit(d.coder, next, probs.rep0_long[d.state][pos_state]) == 0;
    }
    if (range_coder::decode_bit(d.coder, next, probs.rep1[d.state]) == 0) {
        rep_to_front(d.reps, 1);
    } else if (range_coder::decode_bit(d.coder, next, probs.rep2[d.state]) == 0) {
        rep_to_front(d.reps, 2);
    } else {
        rep_to_front(d.reps, 3);
    }
    return false;
}

// Repeats `len` bytes from `distance` back; an overlapping copy repeats itself.
// With room behind them it goes in whole steps, the last of which may pass the
// bytes' end: most matches are no longer than a step. No step reads what it
// writes, as the distance is no shorter.
RANGE_CODER_INLINE void copy_match(uint8_t *to, size_t distance, uint32_t len, size_t room) {
    constexpr uint32_t kStep = 16;
    const uint8_t *from = to - distance;
    if (distance >= kStep && room >= len + kStep) {
        uint32_t done = 0;
        do {
            std::memcpy(to + done, from + done, kStep);
            done += kStep;
        } while (done < len);
        return;
    }
    for (uint32_t i = 0; i < len; ++i) {
        to[i] = from[i];
    }
}

template <class Next>
RANGE_CODER_INLINE uint8_t decode_literal(Decompressor &d, Next &&next, LZMA_PROBS &probs,
                                          const uint8_t *out) {
    RANGE_PROB *models = literal_models(probs, d.at > 0 ? out[d.at - 1] : 0);
    const uint32_t byte =
        d.state < kFirstStateAfterMatch
            ? range_coder::decode_tree(d.coder, next, models, 8)
            : range_coder::decode_matched(d.coder, next, models, out[d.at - 1 - d.reps[0]]);
    d.state = lzma_next_state_LIT[d.state];
    return static_cast<uint8_t>(byte);
}

// Decodes a match or a repeat; its distance is then the first of `reps`.
// Returns its length.
template <class Next>
RANGE_CODER_INLINE uint32_t decode_match(Decompressor &d, Next &&next, LZMA_PROBS &probs,
                                         uint32_t pos_state) {
    if (range_coder::decode_bit(d.coder, next, probs.rep[d.state]) == 0) {
        const uint32_t len = decode_len(d.coder, next, probs, pos_state);
        push_rep(d.reps, decode_distance(d.coder, next, probs, len));
        d.state = lzma_next_state_MATCH[d.state];
        return len;
    }
    if (decode_rep(d, next, probs, pos_state)) {
        d.state = lzma_next_state_SHORTREP[d.state];
        return 1;
    }
    const uint32_t len = decode_len(d.coder, next, probs, pos_state);
    d.state = lzma_next_state_LONGREP[d.state];
    return len;
}

// Decodes packets until the announced size is reached or, where `next` does not
// check for the end of the input, while the input holds a packet for sure.
template <bool kChecksInput, class Next>
RANGE_CODER_INLINE OAK_RETCODE decode_packets(LZMA lzma, Decompressor &d, Next &&next) {
    LZMA_PROBS &probs = lzma->probs;
    uint8_t *out = d.dst->data;
    size_t room = d.dst->size;
    const auto reserve = [&](size_t needed) {
        const OAK_RETCODE status = reserve_output(d.dst, needed, d.result_size);
        out = d.dst->data;
        room = d.dst->size;
        return status;
    };
    while (d.at < d.result_size && (kChecksInput || d.in_end - d.in >= kMostPacketBytes)) {
        const uint32_t pos_state = static_cast<uint32_t>(d.at) & kPosMask;
        if (range_coder::decode_bit(d.coder, next, probs.is_match[d.state][pos_state]) == 0) {
            const uint8_t byte = decode_literal(d, next, probs, out);
            if (d.at == room) {
                const OAK_RETCODE status = reserve(d.at + 1);
                if (status != sOKAY) {
                    return status;
                }
            }
            out[d.at++] = byte;
            continue;
        }
        const uint32_t len = decode_match(d, next, probs, pos_state);
        if (d.reps[0] >= d.at) {
            return eDBCORRUPTED; // the distance leads before the first byte
        }
        if (room - d.at < len) {
            const OAK_RETCODE status = reserve(d.at + len);
            if (status != sOKAY) {
                return status;
            }
        }
        copy_match(out + d.at, static_cast<size_t>(d.reps[0]) + 1, len, room - d.at);
        d.at += len;
    }
    return sOKAY;
}

// Decodes while no packet can pass the end of the input.
__attribute__((noinline)) OAK_RETCODE decode_safe_part(LZMA lzma, Decompressor &shared) {
    Decompressor d = shared; // a copy of its own, so that it lives in registers
    const auto next = [&d]() -> uint32_t { return *d.in++; };
    const OAK_RETCODE status = decode_packets<false>(lzma, d, next);
    shared = d;
    return status;
}

// Delivers the input byte by byte. Its end jumps; lzma->output_pos then tells
// how much stands.
RANGE_CODER_INLINE auto checked_input(LZMA lzma, Decompressor &d) {
    return [&d, lzma]() -> uint32_t {
        if (d.in == d.in_end) {
            lzma->output_pos = d.at;
            longjmp(*lzma->error_buf, sEOS);
        }
        return *d.in++;
    };
}

// Decodes the rest.
__attribute__((noinline)) OAK_RETCODE decode_last_part(LZMA lzma, Decompressor &d) {
    return decode_packets<true>(lzma, d, checked_input(lzma, d));
}

OAK_RETCODE decompress(LZMA lzma, Decompressor &d) {
    const auto input = static_cast<size_t>(d.in_end - d.in);
    OAK_RETCODE status = b_buffIncreaseSize(d.dst, first_room(input, d.result_size));
    if (status == sOKAY) {
        d.coder = range_coder::start_decoder(checked_input(lzma, d));
    }
    if (status == sOKAY) {
        status = decode_safe_part(lzma, d);
    }
    if (status == sOKAY) {
        status = decode_last_part(lzma, d);
    }
    lzma->output_pos = d.at;
    return status;
}

// Reads the announced length at the source's position and how many bytes it
// took.
OAK_RETCODE read_length(const OAK_BUFFER *src, uint64_t *length, size_t *used) {
    if (src->len == 0) {
        return sNOTFOUND;
    }
    const size_t left = src->len > src->pos ? src->len - src->pos : 0;
    const OAK_RETCODE status = osl::vint_decode(src->data + src->pos, left, length, used);
    return status == eEOD ? sEOS : status;
}

// Runs the decompression with the jump set. A stream that ends early counts as
// read to its end.
OAK_RETCODE decompress_guarded(LZMA lzma, Decompressor &d) {
    jmp_buf error;
    lzma->error_buf = &error;
    const int jumped = setjmp(error);
    OAK_RETCODE status = sOKAY;
    if (jumped == 0) { // else the input ended, and what was decoded stands
        reset(lzma);
        status = decompress(lzma, d);
    }
    lzma->error_buf = nullptr;
    return status;
}

} // namespace

OAK_RETCODE b_lzmaCreate(LZMA *lzma) {
    if (lzma == nullptr) {
        return eINVNULLARG;
    }
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    auto *record = static_cast<LZMA>(OSL_GET_ZERO(sizeof(_LZMA), tag));
    if (record == nullptr) {
        OSL_FREE_TAG(tag);
        return eNOMEMORY;
    }
    record->tag = tag;
    *lzma = record;
    return sOKAY;
}

void b_lzmaDestroy(LZMA lzma) {
    if (lzma != nullptr) {
        OSL_FREE_TAG(lzma->tag);
    }
}

OAK_RETCODE b_lzmaCompress(LZMA lzma, const OAK_BUFFER *src, OAK_BUFFER *dst) {
    if (lzma == nullptr || src == nullptr || dst == nullptr) {
        return eINVNULLARG;
    }
    if (src->len > UINT32_MAX) {
        return eRANGE;
    }
    const OAK_RETCODE status =
        lzmaDict_create(src->data, static_cast<uint32_t>(src->len), &lzma->dict);
    if (status != sOKAY) {
        return status;
    }
    const OAK_RETCODE result = append_stream(lzma, src, dst);
    lzmaDict_destroy(lzma->dict);
    lzma->dict = nullptr;
    return result;
}

OAK_RETCODE b_lzmaDecompress(LZMA lzma, const OAK_BUFFER *src, OAK_BUFFER *dst) {
    if (lzma == nullptr || src == nullptr || dst == nullptr) {
        return eINVNULLARG;
    }
    uint64_t length = 0;
    size_t used = 0;
    OAK_RETCODE status = read_length(src, &length, &used);
    if (status != sOKAY) {
        return status;
    }
    if (length > UINT32_MAX) {
        return eDBCORRUPTED;
    }
    Decompressor d{src->data + src->pos + used,
                   src->data + src->len,
                   dst,
                   static_cast<size_t>(length),
                   0,
                   0,
                   {0, 0, 0, 0},
                   {0, 0}};
    status = decompress_guarded(lzma, d);
    if (status == sOKAY) {
        dst->len = lzma->output_pos;
        dst->pos = std::min(dst->pos, dst->len);
    }
    return status;
}
