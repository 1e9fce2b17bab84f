// Internal to compression: the binary adaptive range coder, bit by bit.
//
// The coder of LZMA (the LZMA SDK of Igor Pavlov describes the method): a
// bit is coded with an 11-bit probability that adapts by a 32nd of its distance
// at each use. This one normalises before a bit and only when it must, so its
// bytes are this system's own.
//
// Two ways in. The functions re_... and rd_... work on handles that hand bytes
// to a callback and take them from one; a status other than sOKAY jumps to the
// buffer set by the owner, which keeps the bit functions free of checks. The
// coder of whole objects (lzma.cpp) uses the same bit functions as templates
// over where the bytes go, with the state in registers.
//
// The frames between a mark and a jump are those of these functions; none holds
// an object with a destructor. A coder belongs to one thread at a time.
#ifndef RANGE_ENCODER_INTERNAL_H
#define RANGE_ENCODER_INTERNAL_H

#include <setjmp.h>

#include "osltypes.h"

typedef uint16_t RANGE_PROB; // probability of a 0 bit in units of 1/2048

namespace range_coder {

constexpr uint32_t kModelBits = 11;
constexpr uint32_t kModelTotal = 1u << kModelBits; // 2048
constexpr RANGE_PROB kProbStart = kModelTotal / 2;
constexpr uint32_t kAdaptionShift = 5;
constexpr uint32_t kTop = 0x1000000; // normalisation is due below it
constexpr int kFlushSteps = 5;       // bytes that bring out what `low` holds
constexpr int kStartBytes = 5;       // bytes that fill `code`; the first drops out

#define RANGE_CODER_INLINE __attribute__((always_inline)) inline

// Both directions move a probability alike.
RANGE_CODER_INLINE void saw_zero(RANGE_PROB &prob) {
    prob = static_cast<RANGE_PROB>(prob + ((kModelTotal - prob) >> kAdaptionShift));
}
RANGE_CODER_INLINE void saw_one(RANGE_PROB &prob) {
    prob = static_cast<RANGE_PROB>(prob - (prob >> kAdaptionShift));
}

// ---- Encoder ----------------------------------------------------------------

struct EncoderState {
    uint64_t low;
    uint64_t cache_size; // bytes held back until it is known whether a carry comes
    uint32_t range;
    uint8_t cache; // the first of them; the others are 0xff
};

RANGE_CODER_INLINE EncoderState start_encoder() {
    return EncoderState{0, 1, UINT32_MAX, 0};
}

// Brings out the top byte of `low`, with the carry that reached the bytes held
// back. `emit` takes one byte and does not return on failure.
template <class Emit>
RANGE_CODER_INLINE void normalize(EncoderState &state, Emit &&emit) {
    constexpr uint64_t kCarry = 0x100000000;
    if (state.low < 0xff000000u || state.low >= kCarry) {
        const uint8_t carry = state.low >= kCarry ? 1 : 0;
        emit(static_cast<uint8_t>(state.cache + carry));
        for (uint64_t pending = state.cache_size - 1; pending > 0; --pending) {
            emit(static_cast<uint8_t>(0xff + carry));
        }
        state.cache_size = 1;
        state.cache = static_cast<uint8_t>(state.low >> 24);
    } else {
        ++state.cache_size;
    }
    state.range <<= 8;
    state.low = (state.low & 0xffffff) << 8;
}

template <class Emit>
RANGE_CODER_INLINE void normalize_if_due(EncoderState &state, Emit &&emit) {
    if (state.range < kTop) {
        normalize(state, emit);
    }
}

template <class Emit>
RANGE_CODER_INLINE void finish_encoder(EncoderState &state, Emit &&emit) {
    for (int step = 0; step < kFlushSteps; ++step) {
        normalize(state, emit);
    }
}

template <class Emit>
RANGE_CODER_INLINE void encode_zero(EncoderState &state, Emit &&emit, RANGE_PROB &prob) {
    normalize_if_due(state, emit);
    state.range = (state.range >> kModelBits) * prob;
    saw_zero(prob);
}

template <class Emit>
RANGE_CODER_INLINE void encode_one(EncoderState &state, Emit &&emit, RANGE_PROB &prob) {
    normalize_if_due(state, emit);
    const uint32_t bound = (state.range >> kModelBits) * prob;
    state.low += bound;
    state.range -= bound;
    saw_one(prob);
}

template <class Emit>
RANGE_CODER_INLINE void encode_bit(EncoderState &state, Emit &&emit, RANGE_PROB &prob,
                                   uint32_t bit) {
    if (bit != 0) {
        encode_one(state, emit, prob);
    } else {
        encode_zero(state, emit, prob);
    }
}

// A bit of probability one half, without a model.
template <class Emit>
RANGE_CODER_INLINE void encode_fixed(EncoderState &state, Emit &&emit, uint32_t bit) {
    normalize_if_due(state, emit);
    state.range >>= 1;
    state.low += bit != 0 ? state.range : 0;
}

// The low `numbits` bits of `data`, the most significant first.
template <class Emit>
RANGE_CODER_INLINE void encode_fixed_bits(EncoderState &state, Emit &&emit, uint32_t data,
                                          uint32_t numbits) {
    while (numbits > 0) {
        --numbits;
        encode_fixed(state, emit, (data >> numbits) & 1);
    }
}

// A tree of models: the bits seen so far, behind a leading 1, choose the model.
// `prob` has (1 << bits) - 1 entries. Most significant bit first.
template <class Emit>
RANGE_CODER_INLINE void encode_tree(EncoderState &state, Emit &&emit, RANGE_PROB *prob,
                                    uint32_t bits, uint32_t data) {
    uint32_t index = 1;
    while (bits > 0) {
        --bits;
        const uint32_t bit = (data >> bits) & 1;
        encode_bit(state, emit, prob[index - 1], bit);
        index = index << 1 | bit;
    }
}

// The same, least significant bit first.
template <class Emit>
RANGE_CODER_INLINE void encode_tree_reverse(EncoderState &state, Emit &&emit, RANGE_PROB *prob,
                                            uint32_t bits, uint32_t data) {
    uint32_t index = 1;
    for (; bits > 0; --bits, data >>= 1) {
        encode_bit(state, emit, prob[index - 1], data & 1);
        index = index << 1 | (data & 1);
    }
}

// A byte whose bits are expected to follow `match_byte`: while they do, the bit
// of the match byte chooses one of two further sets of models.
template <class Emit>
RANGE_CODER_INLINE void encode_matched(EncoderState &state, Emit &&emit, RANGE_PROB *prob,
                                       uint32_t data, uint32_t match_byte) {
    uint32_t index = 1;
    bool matching = true;
    for (uint32_t shift = 8; shift > 0;) {
        --shift;
        const uint32_t match_bit = (match_byte >> shift) & 1;
        const uint32_t bit = (data >> shift) & 1;
        const uint32_t offset = matching ? (match_bit + 1) << 8 : 0;
        encode_bit(state, emit, prob[offset + index - 1], bit);
        matching = matching && bit == match_bit;
        index = index << 1 | bit;
    }
}

// ---- Decoder ----------------------------------------------------------------

struct DecoderState {
    uint32_t range;
    uint32_t code;
};

// `next` delivers one byte and does not return on failure.
template <class Next>
RANGE_CODER_INLINE DecoderState start_decoder(Next &&next) {
    DecoderState state{UINT32_MAX, 0};
    for (int i = 0; i < kStartBytes; ++i) {
        state.code = state.code << 8 | next();
    }
    return state;
}

template <class Next>
RANGE_CODER_INLINE void normalize_if_due(DecoderState &state, Next &&next) {
    if (state.range < kTop) {
        const uint32_t byte = next();
        state.range <<= 8;
        state.code = state.code << 8 | byte;
    }
}

// Decodes a bit and goes on with `on_zero` or `on_one`. A bit is told by the way
// taken and not by a value, so that nothing waits for one: with the way foreseen,
// a tree's next model is loaded while this bit is still being reckoned, and
// decoding takes what the chain of ranges takes, a multiplication a bit.
template <class Next, class OnZero, class OnOne>
RANGE_CODER_INLINE void decode_branch(DecoderState &state, Next &&next, RANGE_PROB &prob,
                                      OnZero &&on_zero, OnOne &&on_one) {
    normalize_if_due(state, next);
    const uint32_t bound = (state.range >> kModelBits) * prob;
    if (state.code < bound) {
        state.range = bound;
        saw_zero(prob);
        on_zero();
    } else {
        state.code -= bound;
        state.range -= bound;
        saw_one(prob);
        on_one();
    }
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_bit(DecoderState &state, Next &&next, RANGE_PROB &prob) {
    uint32_t bit = 0;
    decode_branch(
        state, next, prob, [] {}, [&bit] { bit = 1; });
    return bit;
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_fixed(DecoderState &state, Next &&next) {
    normalize_if_due(state, next);
    state.range >>= 1;
    const uint32_t bit = state.code >= state.range ? 1 : 0;
    state.code -= bit != 0 ? state.range : 0;
    return bit;
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_fixed_bits(DecoderState &state, Next &&next, uint32_t numbits) {
    uint32_t data = 0;
    for (; numbits > 0; --numbits) {
        data = data << 1 | decode_fixed(state, next);
    }
    return data;
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_tree(DecoderState &state, Next &&next, RANGE_PROB *prob,
                                        uint32_t bits) {
    size_t index = 1;
#pragma GCC unroll 8
    for (uint32_t i = 0; i < bits; ++i) {
        decode_branch(
            state, next, prob[index - 1], [&] { index = index * 2; },
            [&] { index = index * 2 + 1; });
    }
    return static_cast<uint32_t>(index) & ((1u << bits) - 1);
}

template <class Next>
RANGE_CODER_INLINE uint32_t decode_tree_reverse(DecoderState &state, Next &&next, RANGE_PROB *prob,
                                                uint32_t bits) {
    size_t index = 1;
    uint32_t data = 0;
#pragma GCC unroll 4
    for (uint32_t i = 0; i < bits; ++i) {
        decode_branch(
            state, next, prob[index - 1], [&] { index = index * 2; },
            [&] {
                index = index * 2 + 1;
                data |= 1u << i;
            });
    }
    return data;
}

// `models` is 0x100 while the byte follows the match byte, then 0; the bit of the
// match byte is brought to that place, so that it chooses the set of models.
template <class Next>
RANGE_CODER_INLINE uint32_t decode_matched(DecoderState &state, Next &&next, RANGE_PROB *prob,
                                           uint32_t match_byte) {
    size_t index = 1;
    size_t models = 0x100;
#pragma GCC unroll 8
    for (uint32_t i = 0; i < 8; ++i) {
        match_byte <<= 1;
        const size_t expected = match_byte & models;
        decode_branch(
            state, next, prob[models + expected + index - 1],
            [&] {
                index = index * 2;
                models ^= expected;
            },
            [&] {
                index = index * 2 + 1;
                models = expected;
            });
    }
    return static_cast<uint32_t>(index) & 0xff;
}

} // namespace range_coder

// ---- Handles ----------------------------------------------------------------

typedef OAK_RETCODE (*RANGE_ENCODER_OUTPUT_FCN)(void *user_data, uint8_t byte);
typedef OAK_RETCODE (*RANGE_DECODER_INPUT_FCN)(void *user_data, uint8_t *byte);
typedef struct _RANGE_ENCODER *RANGE_ENCODER;
typedef struct _RANGE_DECODER *RANGE_DECODER;

// Makes a coder under `tag`; eINVNULLARG for a null function or output,
// eNOMEMORY when memory ends.
OAK_RETCODE re_init(RANGE_ENCODER_OUTPUT_FCN output_fcn, void *user_data, OSL_MEMTAG tag,
                    RANGE_ENCODER *encoder);
OAK_RETCODE rd_init(RANGE_DECODER_INPUT_FCN input_fcn, void *user_data, OSL_MEMTAG tag,
                    RANGE_DECODER *decoder);
// Frees it; null is allowed.
void re_term(RANGE_ENCODER encoder);
void rd_term(RANGE_DECODER decoder);
// Where a failing callback's status arrives. Must be set before coding; the
// owner clears it afterwards.
void re_set_error_jump(RANGE_ENCODER encoder, jmp_buf *error_buf);
void rd_set_error_jump(RANGE_DECODER decoder, jmp_buf *error_buf);

void re_start(RANGE_ENCODER encoder);
void re_finish(RANGE_ENCODER encoder);
void re_encode_context_zero_bit(RANGE_ENCODER encoder, RANGE_PROB *prob);
void re_encode_context_one_bit(RANGE_ENCODER encoder, RANGE_PROB *prob);
void re_encode_fixed_bit(RANGE_ENCODER encoder, uint32_t bit);
void re_encode_fixed_bits(RANGE_ENCODER encoder, uint32_t data, uint32_t numbits);
void re_encode_rctree(RANGE_ENCODER encoder, RANGE_PROB *prob, uint32_t bits, uint32_t data);
void re_encode_rctree_reverse(RANGE_ENCODER encoder, RANGE_PROB *prob, uint32_t bits,
                              uint32_t data);
void re_encode_matched_literal(RANGE_ENCODER encoder, RANGE_PROB *prob, uint32_t data,
                               uint32_t match_byte);

void rd_start(RANGE_DECODER decoder);
void rd_finish(RANGE_DECODER decoder);
uint32_t rd_decode_context_bit(RANGE_DECODER decoder, RANGE_PROB *prob);
uint32_t rd_decode_fixed_bit(RANGE_DECODER decoder);
uint32_t rd_decode_fixed_bits(RANGE_DECODER decoder, uint32_t numbits);
uint32_t rd_decode_rctree(RANGE_DECODER decoder, RANGE_PROB *prob, uint32_t bits);
uint32_t rd_decode_rctree_reverse(RANGE_DECODER decoder, RANGE_PROB *prob, uint32_t bits);
uint32_t rd_decode_matched_literal(RANGE_DECODER decoder, RANGE_PROB *prob, uint32_t match_byte);

#endif
