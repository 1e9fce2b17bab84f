// The range coder on handles: each call runs the bit function of
// range_encoder_internal.h with the handle's callback behind it. Rests on the
// platform alone; for callers that have no buffer of their own.
#include "range_encoder_internal.h"

struct _RANGE_ENCODER {
    RANGE_ENCODER_OUTPUT_FCN output_fcn;
    void *user_data;
    jmp_buf *error_buf;
    OSL_MEMTAG tag;
    range_coder::EncoderState state;
};

struct _RANGE_DECODER {
    RANGE_DECODER_INPUT_FCN input_fcn;
    void *user_data;
    jmp_buf *error_buf;
    OSL_MEMTAG tag;
    range_coder::DecoderState state;
};

namespace {

// Hands a byte to the encoder's callback, and jumps when it fails.
auto emit_through(RANGE_ENCODER encoder) {
    return [encoder](uint8_t byte) {
        const OAK_RETCODE status = encoder->output_fcn(encoder->user_data, byte);
        if (status != sOKAY) {
            longjmp(*encoder->error_buf, status);
        }
    };
}

auto next_through(RANGE_DECODER decoder) {
    return [decoder]() -> uint32_t {
        uint8_t byte = 0;
        const OAK_RETCODE status = decoder->input_fcn(decoder->user_data, &byte);
        if (status != sOKAY) {
            longjmp(*decoder->error_buf, status);
        }
        return byte;
    };
}

// Both kinds of coder are a record with a callback, user data and a tag.
template <class Record, class Callback>
OAK_RETCODE make_coder(Callback Record::*member, Callback callback, void *user_data, OSL_MEMTAG tag,
                       Record **coder) {
    if (callback == nullptr || coder == nullptr) {
        return eINVNULLARG;
    }
    void *block = nullptr;
    const OAK_RETCODE status =
        osl_getMem_rc(sizeof(Record), tag, OSL_MEM_ZERO, nullptr, &block, __FILE__, __LINE__);
    if (status != sOKAY) {
        return status;
    }
    auto *record = static_cast<Record *>(block);
    record->*member = callback;
    record->user_data = user_data;
    record->tag = tag;
    *coder = record;
    return sOKAY;
}

template <class Record>
void free_coder(Record *coder) {
    if (coder != nullptr) {
        OSL_FREE(coder, coder->tag);
    }
}

} // namespace

OAK_RETCODE re_init(RANGE_ENCODER_OUTPUT_FCN output_fcn, void *user_data, OSL_MEMTAG tag,
                    RANGE_ENCODER *encoder) {
    return make_coder(&_RANGE_ENCODER::output_fcn, output_fcn, user_data, tag, encoder);
}

OAK_RETCODE rd_init(RANGE_DECODER_INPUT_FCN input_fcn, void *user_data, OSL_MEMTAG tag,
                    RANGE_DECODER *decoder) {
    return make_coder(&_RANGE_DECODER::input_fcn, input_fcn, user_data, tag, decoder);
}

void re_term(RANGE_ENCODER encoder) {
    free_coder(encoder);
}

void rd_term(RANGE_DECODER decoder) {
    free_coder(decoder);
}

void re_set_error_jump(RANGE_ENCODER encoder, jmp_buf *error_buf) {
    encoder->error_buf = error_buf;
}

void rd_set_error_jump(RANGE_DECODER decoder, jmp_buf *error_buf) {
    decoder->error_buf = error_buf;
}

void re_start(RANGE_ENCODER encoder) {
    encoder->state = range_coder::start_encoder();
}

void re_finish(RANGE_ENCODER encoder) {
    range_coder::finish_encoder(encoder->state, emit_through(encoder));
}

void re_encode_context_zero_bit(RANGE_ENCODER encoder, RANGE_PROB *prob) {
    range_coder::encode_zero(encoder->state, emit_through(encoder), *prob);
}

void re_encode_context_one_bit(RANGE_ENCODER encoder, RANGE_PROB *prob) {
    range_coder::encode_one(encoder->state, emit_through(encoder), *prob);
}

void re_encode_fixed_bit(RANGE_ENCODER encoder, uint32_t bit) {
    range_coder::encode_fixed(encoder->state, emit_through(encoder), bit);
}

void re_encode_fixed_bits(RANGE_ENCODER encoder, uint32_t data, uint32_t numbits) {
    range_coder::encode_fixed_bits(encoder->state, emit_through(encoder), data, numbits);
}

void re_encode_rctree(RANGE_ENCODER encoder, RANGE_PROB *prob, uint32_t bits, uint32_t data) {
    range_coder::encode_tree(encoder->state, emit_through(encoder), prob, bits, data);
}

void re_encode_rctree_reverse(RANGE_ENCODER encoder, RANGE_PROB *prob, uint32_t bits,
                              uint32_t data) {
    range_coder::encode_tree_reverse(encoder->state, emit_through(encoder), prob, bits, data);
}

void re_encode_matched_literal(RANGE_ENCODER encoder, RANGE_PROB *prob, uint32_t data,
                               uint32_t match_byte) {
    range_coder::encode_matched(encoder->state, emit_through(encoder), prob, data, match_byte);
}

void rd_start(RANGE_DECODER decoder) {
    decoder->state = range_coder::start_decoder(next_through(decoder));
}

// The decoder has read what it needs; there is nothing to bring out.
void rd_finish(RANGE_DECODER) {}

uint32_t rd_decode_context_bit(RANGE_DECODER decoder, RANGE_PROB *prob) {
    return range_coder::decode_bit(decoder->state, next_through(decoder), *prob);
}

uint32_t rd_decode_fixed_bit(RANGE_DECODER decoder) {
    return range_coder::decode_fixed(decoder->state, next_through(decoder));
}

uint32_t rd_decode_fixed_bits(RANGE_DECODER decoder, uint32_t numbits) {
    return range_coder::decode_fixed_bits(decoder->state, next_through(decoder), numbits);
}

uint32_t rd_decode_rctree(RANGE_DECODER decoder, RANGE_PROB *prob, uint32_t bits) {
    return range_coder::decode_tree(decoder->state, next_through(decoder), prob, bits);
}

uint32_t rd_decode_rctree_reverse(RANGE_DECODER decoder, RANGE_PROB *prob, uint32_t bits) {
    return range_coder::decode_tree_reverse(decoder->state, next_through(decoder), prob, bits);
}

uint32_t rd_decode_matched_literal(RANGE_DECODER decoder, RANGE_PROB *prob, uint32_t match_byte) {
    return range_coder::decode_matched(decoder->state, next_through(decoder), prob, match_byte);
}
