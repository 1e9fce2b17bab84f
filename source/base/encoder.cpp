// B_ENCODER and B_DECODER (encoder.h). Rests on the platform's varying integers
// and on the byte buffer; the typed packing and all compact item formats are
// built on these calls, the expanded ones on the two bulk calls alone.
//
// One list of element types (at the foot of the private part) stamps out the
// scalar calls and the three array calls of each type; what differs between the
// types is in encode_element and decode_element alone.
//
// The stored integers carry no width, so narrowing on the way in is where damage
// shows: a value that does not fit is eDBCORRUPTED, the only judgement that a
// decoder passes, but for run lists that address positions beyond their array
// and texts whose length no count of theirs could hold.
#include "encoder.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <type_traits>

#include "buff_internal.h"
#include "encoder_internal.h"

static_assert(std::is_same_v<uintmax_t, uint64_t> && std::is_same_v<intmax_t, int64_t>);

namespace {

// ---- Handles ----------------------------------------------------------------

/// Makes either kind of handle: their records differ in the callbacks' types alone.
template <class Handle, class ByteFcn, class BulkFcn>
OAK_RETCODE create_handle(ByteFcn fcn, BulkFcn bulk_fcn, void *ctx, OSL_MEMTAG tag, Handle **out) {
    if (out == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    void *block = nullptr;
    const OAK_RETCODE rc =
        osl_getMem_rc(sizeof(Handle), tag, OSL_MEM_ZERO, nullptr, &block, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    auto *handle = static_cast<Handle *>(block);
    *handle = {fcn, bulk_fcn, ctx, tag};
    *out = handle;
    return sOKAY;
}

template <class Handle>
void destroy_handle(Handle *handle) {
    if (handle != nullptr) {
        OSL_FREE(handle, handle->tag);
    }
}

// ---- Bytes ------------------------------------------------------------------

OAK_RETCODE encode_bytes(B_ENCODER_C encoder, const uint8_t *data, size_t size) {
    if (OAK_BUFFER *buffer = encoder_buffer(encoder); buffer != nullptr) {
        return oak::buff_append_as_bytes(buffer, data, size);
    }
    for (size_t i = 0; i < size; ++i) {
        const OAK_RETCODE rc = encoder->fcn(encoder->ctx, data[i]);
        if (rc != sOKAY) {
            return rc;
        }
    }
    return sOKAY;
}

OAK_RETCODE decode_bytes(B_DECODER_C decoder, uint8_t *data, size_t size) {
    if (OAK_BUFFER *buffer = decoder_buffer(decoder); buffer != nullptr) {
        return b_buffInputBytesBulk(buffer, size, data, nullptr);
    }
    for (size_t i = 0; i < size; ++i) {
        uint32_t byte = 0;
        const OAK_RETCODE rc = decoder->fcn(decoder->ctx, &byte);
        if (rc != sOKAY) {
            return rc;
        }
        data[i] = static_cast<uint8_t>(byte);
    }
    return sOKAY;
}

// ---- Elements ---------------------------------------------------------------

void swap_order(float *value) {
    osl_swaporderFloat(value);
}
void swap_order(double *value) {
    osl_swaporderDouble(value);
}

template <class Element>
OAK_RETCODE encode_element(B_ENCODER_C encoder, Element value) {
    if constexpr (std::is_floating_point_v<Element>) {
        swap_order(&value);
        uint8_t bytes[sizeof(Element)];
        std::memcpy(bytes, &value, sizeof(Element));
        return encode_bytes(encoder, bytes, sizeof(Element));
    } else if constexpr (std::is_signed_v<Element>) {
        return encoderEncodeIntmax(encoder, value);
    } else {
        return encoderEncodeUintmax(encoder, value);
    }
}

template <class Element>
OAK_RETCODE decode_float(B_DECODER_C decoder, Element *out) {
    uint8_t bytes[sizeof(Element)];
    const OAK_RETCODE rc = decode_bytes(decoder, bytes, sizeof(Element));
    if (rc == sOKAY) {
        std::memcpy(out, bytes, sizeof(Element));
        swap_order(out);
    }
    return rc;
}

template <class Element, class Wide>
OAK_RETCODE decode_narrowed(B_DECODER_C decoder, OAK_RETCODE (*decode)(B_DECODER_C, Wide *),
                            Element *out) {
    Wide value = 0;
    const OAK_RETCODE rc = decode(decoder, &value);
    if (rc != sOKAY) {
        return rc;
    }
    if (value < std::numeric_limits<Element>::min() ||
        value > std::numeric_limits<Element>::max()) {
        return eDBCORRUPTED;
    }
    *out = static_cast<Element>(value);
    return sOKAY;
}

template <class Element>
OAK_RETCODE decode_element(B_DECODER_C decoder, Element *out) {
    if constexpr (std::is_floating_point_v<Element>) {
        return decode_float(decoder, out);
    } else if constexpr (std::is_signed_v<Element>) {
        return decode_narrowed(decoder, decoderDecodeIntmax, out);
    } else {
        return decode_narrowed(decoder, decoderDecodeUintmax, out);
    }
}

// ---- Arrays -----------------------------------------------------------------

/// Writes the array as one run of all its elements.
template <class Element>
OAK_RETCODE encode_array(B_ENCODER_C encoder, uint32_t size, const Element *array) {
    if (encoder == nullptr || (array == nullptr && size > 0)) {
        return eINVNULLARG;
    }
    for (const uint32_t number : {uint32_t{1}, size, uint32_t{0}}) { // runs, values, skip
        const OAK_RETCODE rc = encoderEncodeUintmax(encoder, number);
        if (rc != sOKAY) {
            return rc;
        }
    }
    for (uint32_t i = 0; i < size; ++i) {
        const OAK_RETCODE rc = encode_element(encoder, array[i]);
        if (rc != sOKAY) {
            return rc;
        }
    }
    return sOKAY;
}

/// Reads a run's count and skip. The run begins at `index`, which may lie beyond
/// the array after a skip; only a run with values is then at fault.
OAK_RETCODE decode_run_head(B_DECODER_C decoder, uint64_t index, uint32_t size, uint64_t *count,
                            uint64_t *skip) {
    OAK_RETCODE rc = decoderDecodeUintmax(decoder, count);
    if (rc != sOKAY) {
        return rc;
    }
    const uint64_t left = index < size ? size - index : 0;
    if (*count > left) {
        return eDBCORRUPTED;
    }
    return decoderDecodeUintmax(decoder, skip);
}

uint64_t add_saturated(uint64_t a, uint64_t b) {
    return b > UINT64_MAX - a ? UINT64_MAX : a + b;
}

template <class Element>
OAK_RETCODE decode_runs(B_DECODER_C decoder, uint32_t size, Element *array) {
    uint64_t runs = 0;
    OAK_RETCODE rc = decoderDecodeUintmax(decoder, &runs);
    uint64_t index = 0;
    for (uint64_t run = 0; rc == sOKAY && run < runs; ++run) {
        uint64_t count = 0;
        uint64_t skip = 0;
        rc = decode_run_head(decoder, index, size, &count, &skip);
        for (uint64_t i = 0; rc == sOKAY && i < count; ++i) {
            rc = decode_element(decoder, &array[index + i]);
        }
        index = add_saturated(index + count, skip);
    }
    return rc;
}

template <class Element>
OAK_RETCODE decode_array_buffer(B_DECODER_C decoder, uint32_t size, Element *array) {
    if (decoder == nullptr || (array == nullptr && size > 0)) {
        return eINVNULLARG;
    }
    return decode_runs(decoder, size, array);
}

/// The block is zeroed: a damaged list may leave positions out, and what the block
/// held before must not come out of them.
template <class Element>
OAK_RETCODE decode_array(B_DECODER_C decoder, uint32_t size, Element **out, OSL_MEMTAG tag) {
    if (decoder == nullptr || out == nullptr) {
        return eINVNULLARG;
    }
    void *block = nullptr;
    OAK_RETCODE rc = osl_getMem_rc(std::max(size, uint32_t{1}) * sizeof(Element), tag, OSL_MEM_ZERO,
                                   nullptr, &block, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    auto *array = static_cast<Element *>(block);
    rc = decode_runs(decoder, size, array);
    if (rc != sOKAY) {
        OSL_FREE(block, tag);
        return rc;
    }
    *out = array;
    return sOKAY;
}

// ---- Texts ------------------------------------------------------------------

// How much memory a text takes at first when nobody knows what will arrive.
constexpr size_t kFirstTextRoom = 256;

/// Reads a text's length, which must leave room for the count of its terminator.
OAK_RETCODE decode_text_length(B_DECODER_C decoder, uint32_t *length) {
    uint32_t read = 0;
    const OAK_RETCODE rc = decode_element(decoder, &read);
    if (rc != sOKAY) {
        return rc;
    }
    if (read == UINT32_MAX) {
        return eDBCORRUPTED;
    }
    *length = read;
    return sOKAY;
}

void hand_out_length(uint32_t length, uint32_t *plen) {
    if (plen != nullptr) {
        *plen = length + 1;
    }
}

/// Bytes that are known to be there: all that is left in a buffer.
size_t bytes_in_sight(B_DECODER_C decoder) {
    const OAK_BUFFER *buffer = decoder_buffer(decoder);
    return buffer != nullptr && buffer->pos < buffer->len ? buffer->len - buffer->pos : 0;
}

/// Reads `length` bytes into memory that grows with them: at first what is in
/// sight, then twice what has been read. `*text` is freed by the caller.
OAK_RETCODE decode_text_bytes(B_DECODER_C decoder, size_t length, OSL_MEMTAG tag, char **text) {
    size_t have = 0;
    size_t room = std::min(length, std::max(kFirstTextRoom, bytes_in_sight(decoder)));
    for (;;) {
        void *block = nullptr;
        OAK_RETCODE rc = osl_extendMem_rc(*text, room + 1, tag, OSL_MEM_PLAIN, 0, nullptr, &block,
                                          __FILE__, __LINE__);
        if (rc != sOKAY) {
            return rc;
        }
        *text = static_cast<char *>(block);
        rc = decode_bytes(decoder, static_cast<uint8_t *>(block) + have, room - have);
        if (rc != sOKAY || room == length) {
            return rc;
        }
        have = room;
        room = std::min(length, 2 * room);
    }
}

OAK_RETCODE decode_text_in_place(B_DECODER_C decoder, char *str, size_t capacity, uint32_t *plen) {
    uint32_t length = 0;
    OAK_RETCODE rc = decode_text_length(decoder, &length);
    if (rc != sOKAY) {
        return rc;
    }
    if (length >= capacity) {
        return eDBCORRUPTED;
    }
    rc = decode_bytes(decoder, reinterpret_cast<uint8_t *>(str), length);
    if (rc != sOKAY) {
        return rc;
    }
    str[length] = '\0';
    hand_out_length(length, plen);
    return sOKAY;
}

} // namespace

// The element types: the part of the names that tells them, and the C type.
#define ENCODER_ARRAY_TYPES(X)                                                                     \
    X(Uint8, uint8_t)                                                                              \
    X(Uint16, uint16_t)                                                                            \
    X(Uint32, uint32_t)                                                                            \
    X(Uint64, uint64_t)                                                                            \
    X(Int8, int8_t)                                                                                \
    X(Int16, int16_t)                                                                              \
    X(Int32, int32_t)                                                                              \
    X(Int64, int64_t)                                                                              \
    X(Float, float)                                                                                \
    X(Double, double)

// ---- Handles ----------------------------------------------------------------

OAK_RETCODE b_encoderCreate(OAK_OUTPUT_FCN fcn, OAK_BULK_OUTPUT_FCN bulk_fcn, OAK_OUTPUT_CTX ctx,
                            OSL_MEMTAG tag, B_ENCODER *pencoder) {
    return create_handle(fcn, bulk_fcn, ctx, tag, pencoder);
}

OAK_RETCODE b_decoderCreate(OAK_INPUT_FCN fcn, OAK_BULK_INPUT_FCN bulk_fcn, OAK_INPUT_CTX ctx,
                            OSL_MEMTAG tag, B_DECODER *pdecoder) {
    return create_handle(fcn, bulk_fcn, ctx, tag, pdecoder);
}

void b_encoderDestroy(B_ENCODER encoder) {
    destroy_handle(encoder);
}

void b_decoderDestroy(B_DECODER decoder) {
    destroy_handle(decoder);
}

OAK_OUTPUT_CTX b_encoderGetCtx(B_ENCODER_C encoder) {
    return encoder != nullptr ? encoder->ctx : nullptr;
}

OAK_INPUT_CTX b_decoderGetCtx(B_DECODER_C decoder) {
    return decoder != nullptr ? decoder->ctx : nullptr;
}

void b_encoderReset(B_ENCODER encoder) {
    if (encoder != nullptr) {
        b_buffReset(static_cast<OAK_BUFFER *>(encoder->ctx));
    }
}

OAK_RETCODE b_decoderSeek(B_DECODER decoder, size_t newPos) {
    return decoder != nullptr ? b_buffSeek(static_cast<OAK_BUFFER *>(decoder->ctx), newPos)
                              : eINVNULLARG;
}

// ---- Scalars ----------------------------------------------------------------

#define ENCODER_DEFINE_SCALARS(Name, Type)                                                         \
    OAK_RETCODE b_encoderEncode##Name(B_ENCODER encoder, Type value) {                             \
        return encoder != nullptr ? encode_element(encoder, value) : eINVNULLARG;                  \
    }                                                                                              \
    OAK_RETCODE b_decoderDecode##Name(B_DECODER decoder, Type *pvalue) {                           \
        return decoder != nullptr && pvalue != nullptr ? decode_element(decoder, pvalue)           \
                                                       : eINVNULLARG;                              \
    }

ENCODER_ARRAY_TYPES(ENCODER_DEFINE_SCALARS)
ENCODER_DEFINE_SCALARS(Slot, OAK_SLOT)

OAK_RETCODE b_decoderDecodeSize_t(B_DECODER decoder, size_t *pvalue) {
    return decoder != nullptr && pvalue != nullptr ? decode_element(decoder, pvalue) : eINVNULLARG;
}

// ---- Arrays -----------------------------------------------------------------

#define ENCODER_DEFINE_ARRAYS(Name, Type)                                                          \
    OAK_RETCODE b_encoderEncode##Name##Array(B_ENCODER encoder, uint32_t size,                     \
                                             const Type *array) {                                  \
        return encode_array(encoder, size, array);                                                 \
    }                                                                                              \
    OAK_RETCODE b_decoderDecode##Name##Array(B_DECODER decoder, uint32_t size, Type **parray,      \
                                             OSL_MEMTAG tag) {                                     \
        return decode_array(decoder, size, parray, tag);                                           \
    }                                                                                              \
    OAK_RETCODE b_decoderDecode##Name##ArrayBuffer(B_DECODER decoder, uint32_t size,               \
                                                   Type *array) {                                  \
        return decode_array_buffer(decoder, size, array);                                          \
    }

ENCODER_ARRAY_TYPES(ENCODER_DEFINE_ARRAYS)

// ---- Bytes and texts --------------------------------------------------------

OAK_RETCODE b_encoderEncodeString(B_ENCODER encoder, const char *str) {
    if (encoder == nullptr || str == nullptr) {
        return eINVNULLARG;
    }
    const size_t length = std::strlen(str);
    const OAK_RETCODE rc = encoderEncodeUintmax(encoder, length);
    return rc == sOKAY ? encode_bytes(encoder, reinterpret_cast<const uint8_t *>(str), length) : rc;
}

OAK_RETCODE b_encoderEncodeBytes(B_ENCODER encoder, const void *data, size_t size) {
    if (encoder == nullptr || (data == nullptr && size > 0)) {
        return eINVNULLARG;
    }
    return encode_bytes(encoder, static_cast<const uint8_t *>(data), size);
}

OAK_RETCODE b_encoderEncodeBytesBulk(B_ENCODER encoder, const void *data, size_t size) {
    if (encoder == nullptr || (data == nullptr && size > 0)) {
        return eINVNULLARG;
    }
    return encoder->bulk_fcn != nullptr ? encoder->bulk_fcn(encoder->ctx, data, size)
                                        : eNOTIMPLEMENTED;
}

OAK_RETCODE b_decoderDecodeString(B_DECODER decoder, char **pstr, uint32_t *plen, OSL_MEMTAG tag) {
    if (decoder == nullptr || pstr == nullptr) {
        return eINVNULLARG;
    }
    uint32_t length = 0;
    OAK_RETCODE rc = decode_text_length(decoder, &length);
    if (rc != sOKAY) {
        return rc;
    }
    char *text = nullptr;
    rc = decode_text_bytes(decoder, length, tag, &text);
    if (rc != sOKAY) {
        OSL_FREE(text, tag);
        return rc;
    }
    text[length] = '\0';
    *pstr = text;
    hand_out_length(length, plen);
    return sOKAY;
}

OAK_RETCODE b_decoderDecodeStringToBuff(B_DECODER decoder, char *str, uint32_t *plen) {
    return decoderDecodeStringBounded(decoder, str, SIZE_MAX, plen);
}

OAK_RETCODE decoderDecodeStringBounded(B_DECODER decoder, char *str, size_t capacity,
                                       uint32_t *plen) {
    if (decoder == nullptr || str == nullptr) {
        return eINVNULLARG;
    }
    return decode_text_in_place(decoder, str, capacity, plen);
}

OAK_RETCODE b_decoderDecodeBytes(B_DECODER decoder, void *data, size_t size) {
    if (decoder == nullptr || (data == nullptr && size > 0)) {
        return eINVNULLARG;
    }
    return decode_bytes(decoder, static_cast<uint8_t *>(data), size);
}

OAK_RETCODE b_decoderDecodeBytesBulk(B_DECODER decoder, size_t bytesRequested, void *data,
                                     size_t *bytesRead) {
    if (decoder == nullptr || (data == nullptr && bytesRequested > 0)) {
        return eINVNULLARG;
    }
    return decoder->bulk_fcn != nullptr
               ? decoder->bulk_fcn(decoder->ctx, bytesRequested, data, bytesRead)
               : eNOTIMPLEMENTED;
}
