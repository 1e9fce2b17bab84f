// Internal to the item formats and the typed packing: the records behind the
// two handles, and the varying integers inline.
//
// Where a handle's callback is the buffer's own byte function, the integer goes
// straight into or out of the buffer's memory. That way is taken only when it
// needs no growth and meets no failure; all else goes through the callback, so
// that growth, statuses and the position after a failure have one home.
#ifndef ENCODER_INTERNAL_H
#define ENCODER_INTERNAL_H

#include "buff.h"
#include "encoder.h"
#include "vint_inline.h"

struct _B_ENCODER {
    OAK_OUTPUT_FCN fcn;
    OAK_BULK_OUTPUT_FCN bulk_fcn;
    OAK_OUTPUT_CTX ctx;
    OSL_MEMTAG tag;
};

struct _B_DECODER {
    OAK_INPUT_FCN fcn;
    OAK_BULK_INPUT_FCN bulk_fcn;
    OAK_INPUT_CTX ctx;
    OSL_MEMTAG tag;
};

/// The buffer that the encoder writes into, null behind any other callback.
inline OAK_BUFFER *encoder_buffer(B_ENCODER_C encoder) {
    return encoder->fcn == b_buffEmitByte ? static_cast<OAK_BUFFER *>(encoder->ctx) : nullptr;
}

/// The buffer that the decoder reads from, null behind any other callback.
inline OAK_BUFFER *decoder_buffer(B_DECODER_C decoder) {
    return decoder->fcn == b_buffInputByte ? static_cast<OAK_BUFFER *>(decoder->ctx) : nullptr;
}

/// Writes the unsigned form. The handle is not null.
inline OAK_RETCODE encoderEncodeUintmax(B_ENCODER_C encoder, uintmax_t value) {
    OAK_BUFFER *buffer = encoder_buffer(encoder);
    if (buffer != nullptr && buffer->len < buffer->size &&
        buffer->size - buffer->len >= osl::vint_size(value)) [[likely]] {
        buffer->len += osl::vint_encode(value, buffer->data + buffer->len);
        return sOKAY;
    }
    return osl_vintEncodeUIntmax(value, encoder->fcn, encoder->ctx);
}

/// Writes the signed form. The handle is not null.
inline OAK_RETCODE encoderEncodeIntmax(B_ENCODER_C encoder, intmax_t value) {
    return encoderEncodeUintmax(encoder, osl::vint_to_unsigned(value));
}

/// Reads the unsigned form; on failure the output is untouched. No argument is null.
inline OAK_RETCODE decoderDecodeUintmax(B_DECODER_C decoder, uintmax_t *value) {
    OAK_BUFFER *buffer = decoder_buffer(decoder);
    if (buffer != nullptr && buffer->pos < buffer->len) [[likely]] {
        uint64_t read = 0;
        size_t used = 0;
        if (osl::vint_decode(buffer->data + buffer->pos, buffer->len - buffer->pos, &read, &used) ==
            sOKAY) [[likely]] {
            buffer->pos += used;
            *value = read;
            return sOKAY;
        }
    }
    return osl_vintDecodeUIntmax(decoder->fcn, decoder->ctx, value);
}

/// Reads the signed form; on failure the output is untouched. No argument is null.
inline OAK_RETCODE decoderDecodeIntmax(B_DECODER_C decoder, intmax_t *value) {
    uintmax_t mapped = 0;
    const OAK_RETCODE rc = decoderDecodeUintmax(decoder, &mapped);
    if (rc == sOKAY) {
        *value = osl::vint_to_signed(mapped);
    }
    return rc;
}

/// A place in a handle's buffer while several values go straight over it, and where
/// the buffer ends there. Behind any other callback, or at the end, there is none.
/// Nobody else may touch the buffer between begin and settle.
template <class Byte, size_t OAK_BUFFER::*Place, size_t OAK_BUFFER::*Limit>
struct StreamCursor {
    explicit StreamCursor(OAK_BUFFER *handle_buffer) : buffer(handle_buffer) { begin(); }

    /// Takes up the place that the buffer tells.
    void begin() {
        const bool has_place = buffer != nullptr && buffer->*Place < buffer->*Limit;
        at = has_place ? buffer->data + buffer->*Place : nullptr;
        end = has_place ? at + (buffer->*Limit - buffer->*Place) : nullptr;
    }
    /// Tells the buffer how far the place has moved.
    void settle() {
        if (at != nullptr) {
            buffer->*Place = static_cast<size_t>(at - buffer->data);
        }
    }
    bool has_room(size_t size) const { return static_cast<size_t>(end - at) >= size; }

    OAK_BUFFER *buffer;
    Byte *at;
    Byte *end;
};

/// Writes behind what the buffer holds, as far as it needs no growth.
using StreamWriter = StreamCursor<uint8_t, &OAK_BUFFER::len, &OAK_BUFFER::size>;
/// Reads from the buffer's position to its length.
using StreamReader = StreamCursor<const uint8_t, &OAK_BUFFER::pos, &OAK_BUFFER::len>;

/// b_decoderDecodeStringToBuff for a buffer of `capacity` bytes, terminator
/// included: a text that does not fit is eDBCORRUPTED before any byte is written.
OAK_RETCODE decoderDecodeStringBounded(B_DECODER decoder, char *str, size_t capacity,
                                       uint32_t *plen);

#endif
