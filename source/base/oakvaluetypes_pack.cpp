// Values to and from the stored stream: pack, unpack, unpack_to_buff. Rests on
// the encoder and decoder and on the packed decimal; called for every column of
// every compact row, node and bucket.
//
// Each type's stream form is written and read in one place. Reading fills a
// plain image of the value first; the image then goes into a value or a record
// buffer, so both agree on every byte. What the stream announces is judged
// against the column before memory is taken for it: a text or a varbinary that
// is longer than its column is damage, as is a run list that leaves its array.
#include "oakvaluetypes_internal.h"

#include <type_traits>

#include "bcd.h"
#include "encoder_internal.h"

using namespace typeops;

namespace {

// Memory for a run of bytes is taken in steps of this size as the bytes arrive.
constexpr size_t READ_STEP = 4096;

// Zero bytes for a binary that is shorter than its column.
constexpr size_t PAD_STEP = 64;

// ---- Numbers: the coders of one element and of an array -----------------------------

// For each element type of a stream, the coder's functions under one name each.
#define CODEC(native, name)                                                                        \
    OAK_RETCODE encode_array(B_ENCODER encoder, uint32_t count, const native *array) {             \
        return b_encoderEncode##name##Array(encoder, count, array);                                \
    }                                                                                              \
    OAK_RETCODE decode(B_DECODER decoder, native *number) {                                        \
        return b_decoderDecode##name(decoder, number);                                             \
    }                                                                                              \
    OAK_RETCODE decode_array(B_DECODER decoder, uint32_t count, native **array, OSL_MEMTAG tag) {  \
        return b_decoderDecode##name##Array(decoder, count, array, tag);                           \
    }                                                                                              \
    OAK_RETCODE decode_array_in_place(B_DECODER decoder, uint32_t count, native *array) {          \
        return b_decoderDecode##name##ArrayBuffer(decoder, count, array);                          \
    }
CODEC(int8_t, Int8)
CODEC(uint8_t, Uint8)
CODEC(int16_t, Int16)
CODEC(uint16_t, Uint16)
CODEC(int32_t, Int32)
CODEC(uint32_t, Uint32)
CODEC(int64_t, Int64)
CODEC(uint64_t, Uint64)
CODEC(float, Float)
CODEC(double, Double)
#undef CODEC

template <class Stream>
OAK_RETCODE encode(B_ENCODER encoder, Stream number) {
    if constexpr (std::is_same_v<Stream, float>) {
        return b_encoderEncodeFloat(encoder, number);
    } else if constexpr (std::is_same_v<Stream, double>) {
        return b_encoderEncodeDouble(encoder, number);
    } else if constexpr (std::is_signed_v<Stream>) {
        return encoderEncodeIntmax(encoder, number);
    } else {
        return encoderEncodeUintmax(encoder, number);
    }
}

template <class T>
bool is_aligned(const void *place) {
    return reinterpret_cast<uintptr_t>(place) % alignof(T) == 0;
}

// A value that points into a buffer may have its elements at any address; the
// coder wants them aligned. Such an array goes through a block of its own.
template <class Stream>
OAK_RETCODE pack_elements(const Elements &elements, uint32_t count, B_ENCODER encoder) {
    if (is_aligned<Stream>(elements.place)) {
        return encode_array(encoder, count, reinterpret_cast<const Stream *>(elements.place));
    }
    auto *aligned = static_cast<Stream *>(
        OSL_GET_COPY(elements.place, count * sizeof(Stream), OSL_TAG_PROCESS));
    if (aligned == nullptr) {
        return eNOMEMORY;
    }
    const OAK_RETCODE rc = encode_array(encoder, count, aligned);
    OSL_FREE(aligned, OSL_TAG_PROCESS);
    return rc;
}

// As many elements as the column declares; bytes are the exception and go by
// their value's own count.
template <class Traits>
OAK_RETCODE pack_arrayable(SCH_TYPE_INFO_C pi, const OAK_VALUE *col, B_ENCODER encoder) {
    using Stream = typename Traits::Stream;
    const Elements elements = elements_of(col);
    if (elements.place == nullptr) {
        return eINVNULLARG;
    }
    const uint32_t declared = sch_type_num_elems(pi);
    if (declared == 0) {
        return encode(encoder, load_element<Stream>(elements, 0));
    }
    const uint32_t count = std::is_same_v<Traits, int8_traits> ? col->elts : declared;
    if (count > elements.count) {
        return eBADDATALEN;
    }
    return pack_elements<Stream>(elements, count, encoder);
}

template <class Traits>
OAK_RETCODE unpack_array(OAK_VALUE *col, OSL_MEMTAG tag, B_DECODER decoder) {
    typename Traits::Stream *array = nullptr;
    const OAK_RETCODE rc = decode_array(decoder, col->elts, &array, tag);
    if (rc == sOKAY) {
        col->vt.pv = array;
    }
    return rc;
}

template <class Traits>
OAK_RETCODE unpack_arrayable(SCH_TYPE_INFO_C, OAK_VALUE *col, OSL_MEMTAG tag, B_DECODER decoder) {
    if (col->elts != 0) {
        return unpack_array<Traits>(col, tag, decoder);
    }
    typename Traits::Stream number;
    const OAK_RETCODE rc = decode(decoder, &number);
    if (rc == sOKAY) {
        store_inline(col, &number, sizeof number);
    }
    return rc;
}

// An array at an address that the decoder cannot write to is read in a block of
// its own. Elements that no run covers stay as they were either way.
template <class Stream>
OAK_RETCODE decode_array_anywhere(void *place, uint32_t count, B_DECODER decoder) {
    if (is_aligned<Stream>(place)) {
        return decode_array_in_place(decoder, count, static_cast<Stream *>(place));
    }
    const size_t size = count * sizeof(Stream);
    auto *aligned = static_cast<Stream *>(OSL_GET_COPY(place, size, OSL_TAG_PROCESS));
    if (aligned == nullptr) {
        return eNOMEMORY;
    }
    const OAK_RETCODE rc = decode_array_in_place(decoder, count, aligned);
    memcpy(place, aligned, size);
    OSL_FREE(aligned, OSL_TAG_PROCESS);
    return rc;
}

template <class Traits>
OAK_RETCODE arrayable_to_buff(SCH_TYPE_INFO_C pi, void *colData, B_DECODER decoder) {
    using Stream = typename Traits::Stream;
    const uint32_t declared = sch_type_num_elems(pi);
    if (declared != 0) {
        return decode_array_anywhere<Stream>(colData, declared, decoder);
    }
    Stream number;
    const OAK_RETCODE rc = decode(decoder, &number);
    if (rc == sOKAY) {
        memcpy(colData, &number, sizeof number);
    }
    return rc;
}

// ---- Fixed records: the stream forms ------------------------------------------------

OAK_RETCODE encode_moment(B_ENCODER encoder, OAK_PACKED_DATE_T date, OAK_PACKED_TIME_T time) {
    const OAK_RETCODE rc = encode(encoder, date);
    return rc != sOKAY ? rc : encode(encoder, time);
}

OAK_RETCODE decode_moment(B_DECODER decoder, OAK_PACKED_DATE_T *date, OAK_PACKED_TIME_T *time) {
    const OAK_RETCODE rc = decode(decoder, date);
    return rc != sOKAY ? rc : decode(decoder, time);
}

OAK_RETCODE pack_date(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    return encode(encoder, col->vt.dtv);
}

OAK_RETCODE pack_time(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    return encode(encoder, col->vt.tmv);
}

OAK_RETCODE pack_timetz(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    const OAK_RETCODE rc = encode(encoder, col->vt.tmzv.time);
    return rc != sOKAY ? rc : encode(encoder, col->vt.tmzv.tz);
}

OAK_RETCODE pack_timestamp(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    return encode_moment(encoder, col->vt.tsv.date, col->vt.tsv.time);
}

OAK_RETCODE pack_timestamptz(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    const auto moment = load<OAK_PACKED_TIMESTAMPTZ_T>(col->vt.pv);
    const OAK_RETCODE rc = encode_moment(encoder, moment.date, moment.time);
    return rc != sOKAY ? rc : encode(encoder, moment.tz);
}

OAK_RETCODE pack_uuid(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    return b_encoderEncodeBytes(encoder, col->vt.pv, sizeof(OAK_UUID_T));
}

// The buffer holds the packed form of every precision that a column can declare.
using PackedDecimal = OAK_PACKED_BCD_T[OAK_PACKED_BCD_SIZE(UINT8_MAX)];

OAK_RETCODE pack_bcd(SCH_TYPE_INFO_C pi, const OAK_VALUE *col, B_ENCODER encoder) {
    PackedDecimal packed = {};
    const uint8_t prec = sch_type_prec(pi);
    if (oak_bcdPack(col->vt.bcd, packed, prec, sch_type_scale(pi)) < sOKAY) {
        return eINVBCD;
    }
    return b_encoderEncodeBytes(encoder, packed, OAK_PACKED_BCD_SIZE(prec));
}

OAK_RETCODE read_record(SCH_TYPE_INFO_C, B_DECODER decoder, OAK_PACKED_DATE_T *number) {
    return decode(decoder, number);
}

OAK_RETCODE read_record(SCH_TYPE_INFO_C, B_DECODER decoder, OAK_PACKED_TIMETZ_T *record) {
    const OAK_RETCODE rc = decode(decoder, &record->time);
    return rc != sOKAY ? rc : decode(decoder, &record->tz);
}

OAK_RETCODE read_record(SCH_TYPE_INFO_C, B_DECODER decoder, OAK_PACKED_TIMESTAMP_T *record) {
    return decode_moment(decoder, &record->date, &record->time);
}

OAK_RETCODE read_record(SCH_TYPE_INFO_C, B_DECODER decoder, OAK_PACKED_TIMESTAMPTZ_T *record) {
    const OAK_RETCODE rc = decode_moment(decoder, &record->date, &record->time);
    return rc != sOKAY ? rc : decode(decoder, &record->tz);
}

OAK_RETCODE read_record(SCH_TYPE_INFO_C, B_DECODER decoder, OAK_UUID_T *record) {
    return b_decoderDecodeBytes(decoder, record, sizeof *record);
}

OAK_RETCODE read_record(SCH_TYPE_INFO_C pi, B_DECODER decoder, OAK_BCD_T *record) {
    PackedDecimal packed;
    const uint8_t prec = sch_type_prec(pi);
    const OAK_RETCODE rc = b_decoderDecodeBytes(decoder, packed, OAK_PACKED_BCD_SIZE(prec));
    if (rc != sOKAY) {
        return rc;
    }
    return oak_bcdUnpack(packed, record, prec, sch_type_scale(pi)) < sOKAY ? eINVBCD : sOKAY;
}

// ---- Fixed records: into values and buffers --------------------------------------------

template <class Traits>
OAK_RETCODE unpack_inline(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG, B_DECODER decoder) {
    typename Traits::Value record;
    const OAK_RETCODE rc = read_record(pi, decoder, &record);
    if (rc == sOKAY) {
        store_inline(col, &record, Traits::used);
    }
    return rc;
}

template <class Traits>
OAK_RETCODE unpack_pointed(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG tag, B_DECODER decoder) {
    typename Traits::Value record;
    const OAK_RETCODE rc = read_record(pi, decoder, &record);
    if (rc != sOKAY) {
        return rc;
    }
    const void *block = new_fixed<Traits>(&record, tag);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    col->vt.pv = block;
    return sOKAY;
}

template <class Traits>
OAK_RETCODE record_to_buff(SCH_TYPE_INFO_C pi, void *colData, B_DECODER decoder) {
    typename Traits::Value record;
    const OAK_RETCODE rc = read_record(pi, decoder, &record);
    if (rc == sOKAY) {
        store_padded(colData, &record, Traits::used, Traits::size);
    }
    return rc;
}

// ---- Runs of bytes: how long they may be -------------------------------------------------

// The bytes that a column takes at most in a record buffer.
size_t column_room(SCH_TYPE_INFO_C pi) {
    const size_t byte_len = sch_type_byte_len(pi);
    return byte_len != 0 ? byte_len : sch_type_length(pi);
}

// The length of a text; with its terminator it must fit its column.
OAK_RETCODE read_text_length(SCH_TYPE_INFO_C pi, B_DECODER decoder, size_t *length) {
    uintmax_t announced = 0;
    const OAK_RETCODE rc = decoderDecodeUintmax(decoder, &announced);
    if (rc != sOKAY) {
        return rc;
    }
    if (announced >= column_room(pi)) {
        return eDBCORRUPTED;
    }
    *length = announced;
    return sOKAY;
}

// The length of a varbinary, which no column lets grow beyond `room`.
OAK_RETCODE read_varbinary_length(size_t room, B_DECODER decoder, uint16_t *length) {
    uint16_t announced = 0;
    const OAK_RETCODE rc = decode(decoder, &announced);
    if (rc != sOKAY) {
        return rc;
    }
    if (announced > room) {
        return eDBCORRUPTED;
    }
    *length = announced;
    return sOKAY;
}

// The room of a varbinary's bytes in a record buffer, where its length goes first.
size_t varbinary_room_in_buffer(SCH_TYPE_INFO_C pi) {
    const size_t byte_len = sch_type_byte_len(pi);
    if (byte_len == 0) {
        return sch_type_length(pi);
    }
    return byte_len < sizeof(uint16_t) ? 0 : byte_len - sizeof(uint16_t);
}

// A new block of `length` bytes from the stream and `spare` zero bytes, by steps:
// a length that announces more than the stream holds takes no more memory than
// what arrived calls for.
OAK_RETCODE read_run(B_DECODER decoder, size_t length, size_t spare, OSL_MEMTAG tag,
                     uint8_t **pblock) {
    uint8_t *block = nullptr;
    size_t got = 0;
    do {
        const size_t step = length - got < READ_STEP ? length - got : READ_STEP;
        auto *grown = static_cast<uint8_t *>(osl_extendMem(
            block, got + step + spare, tag, OSL_MEM_PLAIN, 0, nullptr, __FILE__, __LINE__));
        const OAK_RETCODE rc =
            grown == nullptr ? eNOMEMORY : b_decoderDecodeBytes(decoder, grown + got, step);
        block = grown == nullptr ? block : grown;
        if (rc != sOKAY) {
            OSL_FREE(block, tag);
            return rc;
        }
        got += step;
    } while (got < length);
    memset(block + got, 0, spare);
    *pblock = block;
    return sOKAY;
}

// ---- Text ----------------------------------------------------------------------------

OAK_RETCODE pack_utf8(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    return b_encoderEncodeString(encoder, col->vt.cv);
}

OAK_RETCODE unpack_utf8(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG tag, B_DECODER decoder) {
    size_t length = 0;
    uint8_t *text = nullptr;
    OAK_RETCODE rc = read_text_length(pi, decoder, &length);
    if (rc == sOKAY) {
        rc = read_run(decoder, length, 1, tag, &text);
    }
    if (rc == sOKAY) {
        col->vt.pv = text;
        col->len = length + 1;
    }
    return rc;
}

OAK_RETCODE utf8_to_buff(SCH_TYPE_INFO_C pi, void *colData, B_DECODER decoder) {
    size_t length = 0;
    OAK_RETCODE rc = read_text_length(pi, decoder, &length);
    if (rc == sOKAY) {
        rc = b_decoderDecodeBytes(decoder, colData, length);
    }
    if (rc == sOKAY) {
        static_cast<char *>(colData)[length] = '\0';
    }
    return rc;
}

// ---- Binary --------------------------------------------------------------------------

OAK_RETCODE encode_zeros(B_ENCODER encoder, size_t count) {
    static constexpr uint8_t ZEROS[PAD_STEP] = {};
    OAK_RETCODE rc = sOKAY;
    while (count != 0 && rc == sOKAY) {
        const size_t step = count < PAD_STEP ? count : PAD_STEP;
        rc = b_encoderEncodeBytesBulk(encoder, ZEROS, step);
        count -= step;
    }
    return rc;
}

// The column's length without a length in front; a value shorter than its column
// goes on in zeros.
OAK_RETCODE pack_binary(SCH_TYPE_INFO_C pi, const OAK_VALUE *col, B_ENCODER encoder) {
    const size_t at_hand = binary_bytes_at_hand(pi, col);
    const OAK_RETCODE rc = b_encoderEncodeBytesBulk(encoder, col->vt.pv, at_hand);
    return rc != sOKAY ? rc : encode_zeros(encoder, sch_type_length(pi) - at_hand);
}

OAK_RETCODE decode_bulk(B_DECODER decoder, void *data, size_t size) {
    size_t got = 0;
    const OAK_RETCODE rc = b_decoderDecodeBytesBulk(decoder, size, data, &got);
    return rc == sOKAY && got != size ? eEOD : rc;
}

OAK_RETCODE unpack_binary(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG tag, B_DECODER decoder) {
    const size_t length = sch_type_length(pi);
    void *block = OSL_GET(length, tag);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    const OAK_RETCODE rc = decode_bulk(decoder, block, length);
    if (rc != sOKAY) {
        OSL_FREE(block, tag);
        return rc;
    }
    col->vt.pv = block;
    col->len = length;
    return sOKAY;
}

OAK_RETCODE binary_to_buff(SCH_TYPE_INFO_C pi, void *colData, B_DECODER decoder) {
    return decode_bulk(decoder, colData, sch_type_length(pi));
}

// ---- Varbinary -----------------------------------------------------------------------

OAK_RETCODE pack_varbinary(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_ENCODER encoder) {
    if (col->len != 0 && col->vt.pv == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = encoderEncodeUintmax(encoder, col->len);
    if (rc != sOKAY || col->len == 0) {
        return rc;
    }
    return b_encoderEncodeBytes(encoder, col->vt.pv, col->len);
}

OAK_RETCODE unpack_varbinary(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG tag,
                             B_DECODER decoder) {
    uint16_t length = 0;
    uint8_t *bytes = nullptr;
    OAK_RETCODE rc = read_varbinary_length(column_room(pi), decoder, &length);
    if (rc == sOKAY && length != 0) {
        rc = read_run(decoder, length, 0, tag, &bytes);
    }
    if (rc == sOKAY) {
        col->vt.pv = bytes;
        col->len = length;
    }
    return rc;
}

OAK_RETCODE varbinary_to_buff(SCH_TYPE_INFO_C pi, void *colData, B_DECODER decoder) {
    uint16_t length = 0;
    OAK_RETCODE rc = read_varbinary_length(varbinary_room_in_buffer(pi), decoder, &length);
    if (rc == sOKAY) {
        memcpy(colData, &length, sizeof length);
        rc = b_decoderDecodeBytes(decoder, static_cast<uint8_t *>(colData) + sizeof length, length);
    }
    return rc;
}

// ---- Frames --------------------------------------------------------------------------

OAK_RETCODE packed(B_TYPE_SCHEMA_PACK_FCN rule, bool pointed, SCH_TYPE_INFO_C pi,
                   const OAK_VALUE *col, B_ENCODER encoder) {
    if (col == nullptr || encoder == nullptr || (pointed && col->vt.pv == nullptr)) {
        return eINVNULLARG;
    }
    return rule(pi, col, encoder);
}

OAK_RETCODE unpacked(B_TYPE_SCHEMA_UNPACK_FCN rule, SCH_TYPE_INFO_C pi, OAK_VALUE *col,
                     OSL_MEMTAG tag, B_DECODER decoder) {
    if (col == nullptr || decoder == nullptr) {
        return eINVNULLARG;
    }
    set_head(col, sch_type_num_elems(pi));
    col->type = sch_type_data_type(pi);
    return rule(pi, col, tag, decoder);
}

using ToBuffRule = OAK_RETCODE (*)(SCH_TYPE_INFO_C pi, void *colData, B_DECODER decoder);

OAK_RETCODE unpacked_to_buff(ToBuffRule rule, SCH_TYPE_INFO_C pi, void *colData,
                             OAK_HAS_VALUE_T *hasValue, B_DECODER decoder) {
    if (colData == nullptr || decoder == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = rule(pi, colData, decoder);
    if (rc == sOKAY && hasValue != nullptr) {
        *hasValue = 1;
    }
    return rc;
}

} // namespace

// ---- Families ------------------------------------------------------------------------

#define STREAM(type, pack_rule, pointed, unpack_rule, to_buff_rule)                                \
    OAK_RETCODE b_type_schema_pack_##type(SCH_TYPE_INFO_C pi, const OAK_VALUE *col,                \
                                          B_ENCODER encoder) {                                     \
        return packed(pack_rule, pointed, pi, col, encoder);                                       \
    }                                                                                              \
    OAK_RETCODE b_type_schema_unpack_##type(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG tag,    \
                                            B_DECODER decoder) {                                   \
        return unpacked(unpack_rule, pi, col, tag, decoder);                                       \
    }                                                                                              \
    OAK_RETCODE b_type_schema_unpack_to_buff_##type(                                               \
        SCH_TYPE_INFO_C pi, void *colData, OAK_HAS_VALUE_T *hasValue, B_DECODER decoder) {         \
        return unpacked_to_buff(to_buff_rule, pi, colData, hasValue, decoder);                     \
    }
#define STREAM_ARRAYABLE(type)                                                                     \
    STREAM(type, pack_arrayable<type##_traits>, false, unpack_arrayable<type##_traits>,            \
           arrayable_to_buff<type##_traits>)
#define STREAM_INLINE(type)                                                                        \
    STREAM(type, pack_##type, false, unpack_inline<type##_traits>, record_to_buff<type##_traits>)
#define STREAM_POINTED(type)                                                                       \
    STREAM(type, pack_##type, true, unpack_pointed<type##_traits>, record_to_buff<type##_traits>)

B_TYPE_LIST_ARRAYABLE(STREAM_ARRAYABLE)
STREAM_INLINE(date)
STREAM_INLINE(time)
STREAM_INLINE(timetz)
STREAM_INLINE(timestamp)
STREAM_POINTED(timestamptz)
STREAM_POINTED(uuid)
STREAM_POINTED(bcd)
STREAM(utf8, pack_utf8, true, unpack_utf8, utf8_to_buff)
STREAM(binary, pack_binary, true, unpack_binary, binary_to_buff)
STREAM(varbinary, pack_varbinary, false, unpack_varbinary, varbinary_to_buff)
