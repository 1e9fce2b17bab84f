// Internal to the conversion modules: the functions of the matrix by name, how one
// is looked up and run, and how elements are read and written. Rests on the
// conversion block; shared by convert*.cpp and their tests.
//
// Law: a function reads elements at any alignment. Where the destination has a
// limit (`tDstLen` not 0) it never writes beyond it, but for one whole element of a
// fixed-size type, for which the caller always has room.
//
// The families bear their names: cnv_<source>To<destination>, with Trunc where an
// array that does not fit is cut. Each family is one template over the element
// types, and the names are stamped out from the lists below.
#ifndef CONVERT_INTERNAL_H
#define CONVERT_INTERNAL_H

#include <array>
#include <bit>
#include <cstring>

#include "base_internal.h"
#include "convert.h"
#include "convert_block.h"

// ---- Lists ----------------------------------------------------------------------------------
// clang-format off

// The number types as sources, (name, element): integers, floating types, decimal.
#define CNV_INTEGER_SOURCES(item)                      \
    item(int8, int8_t)   item(uint8, uint8_t)          \
    item(int16, int16_t) item(uint16, uint16_t)        \
    item(int32, int32_t) item(uint32, uint32_t)        \
    item(int64, int64_t) item(uint64, uint64_t)
#define CNV_NUMBER_SOURCES(item)                       \
    CNV_INTEGER_SOURCES(item)                          \
    item(float, float)   item(double, double)          \
    item(decimal, OAK_BCD_T)

// What each of them converts to, cnv_<source>To<name>Trunc: (source, source element,
// name, element).
#define CNV_NUMBER_TARGETS(item, from, From)                                      \
    item(from, From, Int8, int8_t)   item(from, From, UInt8, uint8_t)             \
    item(from, From, Int16, int16_t) item(from, From, UInt16, uint16_t)           \
    item(from, From, Int32, int32_t) item(from, From, UInt32, uint32_t)           \
    item(from, From, Int64, int64_t) item(from, From, UInt64, uint64_t)           \
    item(from, From, Float, float)   item(from, From, Double, double)             \
    item(from, From, Decimal, OAK_BCD_T)                                          \
    item(from, From, Boolean, convert::Boolean)

// The numbers that a packed decimal converts to, beside a decimal.
#define CNV_PACKED_DECIMAL_NUMBERS(item)               \
    item(Int16) item(UInt16) item(Int32) item(UInt32)  \
    item(Int64) item(UInt64) item(Float) item(Double)

// All others, by their whole names.
#define CNV_OTHER_FUNCTIONS(item)                                                               \
    item(cnv_strcpyTrunc)          item(cnv_stringToBinary)     item(cnv_stringToBoolean)       \
    item(cnv_stringToInt8)         item(cnv_stringToUInt8)      item(cnv_stringToInt16)         \
    item(cnv_stringToUInt16)       item(cnv_stringToInt32)      item(cnv_stringToUInt32)        \
    item(cnv_stringToInt64)        item(cnv_stringToUInt64)     item(cnv_stringToFloat)         \
    item(cnv_stringToDouble)       item(cnv_stringToDecimal)    item(cnv_stringToDate)          \
    item(cnv_stringToTime)         item(cnv_stringToTimeTZ)     item(cnv_stringToTimestamp)     \
    item(cnv_stringToTimestampTZ)  item(cnv_stringToRowid)      item(cnv_stringToUuid)          \
    item(cnv_memcpyTrunc)          item(cnv_memcpy)             item(cnv_binaryToString)        \
    item(cnv_binaryToBoolean)      item(cnv_binaryToUuid)       item(cnv_packedDecimalToDecimal) \
    item(cnv_uuidToString)         item(cnv_uuidToBinary)       item(cnv_uuidToUuidTrunc)       \
    item(cnv_dateToString)         item(cnv_dateToDate)                                         \
    item(cnv_dateToTimestamp)      item(cnv_dateToTimestampTZ)                                  \
    item(cnv_timeToString)         item(cnv_timeToTime)         item(cnv_timeToTimeTZ)          \
    item(cnv_timeToTimestamp)      item(cnv_timeToTimestampTZ)                                  \
    item(cnv_timeTZToString)       item(cnv_timeTZToTime)       item(cnv_timeTZToTimeTZ)        \
    item(cnv_timeTZToTimestamp)    item(cnv_timeTZToTimestampTZ)                                \
    item(cnv_timestampToString)    item(cnv_timestampToDate)    item(cnv_timestampToTime)       \
    item(cnv_timestampToTimeTZ)    item(cnv_timestampToTimestamp)                               \
    item(cnv_timestampToTimestampTZ)                                                            \
    item(cnv_timestampTZToString)  item(cnv_timestampTZToDate)  item(cnv_timestampTZToTime)     \
    item(cnv_timestampTZToTimeTZ)  item(cnv_timestampTZToTimestamp)                             \
    item(cnv_timestampTZToTimestampTZ)

// clang-format on

// ---- The functions --------------------------------------------------------------------------

#define CNV_DECLARE(name)                          OAK_RETCODE name(CNVCB *block);
#define CNV_DECLARE_PAIR(from, From, Name, Target) CNV_DECLARE(cnv_##from##To##Name##Trunc)
#define CNV_DECLARE_NUMBER(from, From)                                                             \
    CNV_NUMBER_TARGETS(CNV_DECLARE_PAIR, from, From)                                               \
    CNV_DECLARE(cnv_##from##ToString)                                                              \
    CNV_DECLARE(cnv_##from##ToBinary)
#define CNV_DECLARE_ROWID(from, From) CNV_DECLARE(cnv_##from##ToRowidTrunc)
#define CNV_DECLARE_PACKED(To)        CNV_DECLARE(cnv_packedDecimalTo##To)

CNV_NUMBER_SOURCES(CNV_DECLARE_NUMBER)
CNV_INTEGER_SOURCES(CNV_DECLARE_ROWID)
CNV_PACKED_DECIMAL_NUMBERS(CNV_DECLARE_PACKED)
CNV_OTHER_FUNCTIONS(CNV_DECLARE)

// ---- Kinds of types -------------------------------------------------------------------------

namespace convert {

// What a value of a type is to the conversions.
enum class Form : uint8_t {
    none,        // unknown here: markers, and wide text of class 8 that has no row
    number,      // in the value, or behind its pointer when it has elements
    moment,      // in the value: a date or a time
    record,      // behind the pointer, of a fixed size: decimal, UUID, timestamp with zone
    narrowText,  // behind the pointer, terminated
    utf8Text,    // wide text stored as UTF-8, the same bytes as narrow text
    largeText,   // either, as a large object
    wideText,    // has a row and no functions
    binary,      // behind the pointer
    largeBinary, // the same as a large object
};

struct Kind {
    uint8_t row; // in typeData; NO_ROW: none
    Form form;
};

constexpr uint8_t NO_ROW = 255;

// The row of a type in typeData and its form: text that is carried as UTF-8 has the row of
// OAK_CHAR, and all binary that of OAK_BINARY.
constexpr Kind tellKind(OAK_TYPE type) {
    switch (type) {
        case OAK_CHAR:
        case OAK_VARCHAR:
            return {0, Form::narrowText};
        case OAK_WCHAR_UTF8:
        case OAK_WVARCHAR_UTF8:
            return {0, Form::utf8Text};
        case OAK_CLOB:
        case OAK_WCLOB_UTF8:
            return {0, Form::largeText};
        case OAK_WCHAR:
            return {1, Form::wideText};
        case OAK_BINARY:
        case OAK_VARBINARY:
            return {2, Form::binary};
        case OAK_BLOB:
            return {2, Form::largeBinary};
        case OAK_BOOL:
            return {3, Form::number};
        case OAK_INT8:
            return {4, Form::number};
        case OAK_UINT8:
            return {5, Form::number};
        case OAK_INT16:
            return {6, Form::number};
        case OAK_UINT16:
            return {7, Form::number};
        case OAK_INT32:
            return {8, Form::number};
        case OAK_UINT32:
            return {9, Form::number};
        case OAK_INT64:
            return {10, Form::number};
        case OAK_UINT64:
            return {11, Form::number};
        case OAK_FLOAT:
            return {12, Form::number};
        case OAK_DOUBLE:
            return {13, Form::number};
        case OAK_BCD:
            return {14, Form::record};
        case OAK_DATE:
            return {15, Form::moment};
        case OAK_TIME:
            return {16, Form::moment};
        case OAK_TIMETZ:
            return {17, Form::moment};
        case OAK_TIMESTAMP:
            return {18, Form::moment};
        case OAK_TIMESTAMPTZ:
            return {19, Form::record};
        case OAK_ROWID:
            return {20, Form::number};
        case OAK_UUID:
            return {21, Form::record};
        default:
            return {NO_ROW, Form::none};
    }
}

// The kinds of all types as a table, for each conversion asks for two. The types that
// have one differ in their class, in five bits of the second byte and in the topmost.
constexpr unsigned KIND_BITS = 0x9F0F;

constexpr size_t kindIndex(unsigned type) {
    return (type & 0x000F) | (type & 0x1F00) >> 4 | (type & 0x8000) >> 6;
}

inline constexpr auto kindTable = [] {
    std::array<Kind, kindIndex(KIND_BITS) + 1> kinds{};
    for (size_t i = 0; i < kinds.size(); ++i)
        kinds[i] =
            tellKind(static_cast<OAK_TYPE>((i & 0x00F) | (i & 0x1F0) << 4 | (i & 0x200) << 6));
    return kinds;
}();

// What tellKind says.
constexpr Kind kindOf(OAK_TYPE type) {
    const auto bits = static_cast<unsigned>(type);
    return (bits & ~KIND_BITS) == 0 ? kindTable[kindIndex(bits)] : Kind{NO_ROW, Form::none};
}

// The types of which there are arrays: truth values, integers and floating numbers.
inline bool canBeArray(OAK_TYPE type) {
    const unsigned typeClass = oak::type_class(type);
    return typeClass >= OAK_TYPE_CLASS_BOOL && typeClass <= OAK_TYPE_CLASS_FLOAT;
}

inline bool isArray(const OAK_VALUE *value) {
    return canBeArray(value->type) && value->elts != 0;
}

} // namespace convert

// ---- The matrix -----------------------------------------------------------------------------

constexpr size_t CNV_TYPES = 22;
constexpr size_t CNV_SLOTS = 297;

struct OAK_TYPE_DATA {
    OAK_TYPE type;
    size_t size; // of an element; 0 where it varies
};

struct CNV_SLOT {
    CNVCODE code; // the slot's own index
    B_CNVFCN function;
};

extern const OAK_TYPE_DATA typeData[CNV_TYPES];
extern const CNVCODE cnv_codes[CNV_TYPES][CNV_TYPES]; // source, destination
extern const CNV_SLOT cnvFcns[CNV_SLOTS];

namespace convert {

// 0 where either type has no row.
inline CNVCODE codeOf(Kind source, Kind destination) {
    const bool hasRows = source.row != NO_ROW && destination.row != NO_ROW;
    return hasRows ? cnv_codes[source.row][destination.row] : CNVCODE{0};
}

} // namespace convert

// The code of a conversion; `pCode` may be null. eINVCONVERT: there is none.
OAK_RETCODE getConvertCode(OAK_TYPE srcType, OAK_TYPE dstType, CNVCODE *pCode);

// The function of a conversion. eINVCONVERT: there is no code, or its slot is empty, as
// those of wide text are, which travels as UTF-8.
inline OAK_RETCODE findConversion(convert::Kind source, convert::Kind destination,
                                  B_CNVFCN *function) {
    *function = cnvFcns[convert::codeOf(source, destination)].function;
    return *function == nullptr ? eINVCONVERT : sOKAY;
}

// ---- Elements -------------------------------------------------------------------------------

namespace convert {

// A truth value in one byte, 0 or 1.
struct Boolean {
    uint8_t value;
};

static_assert(std::endian::native == std::endian::little,
              "the low byte of an OAK_BOOL is taken to be its first");

template <class T>
T load(const void *place) {
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

inline size_t elementCount(const CNVCB *block) {
    return block->uSrcNumElems == 0 ? 1 : block->uSrcNumElems;
}

template <class T>
T loadElement(const CNVCB *block, size_t index) {
    const size_t stride = block->srcStride != 0 ? block->srcStride : sizeof(T);
    return load<T>(static_cast<const uint8_t *>(block->pvSrc) + index * stride);
}

// True when a destination with a limit has no room for `size` bytes.
inline bool overflows(const CNVCB *block, size_t size) {
    return block->pvDst != nullptr && block->tDstLen != 0 && size > block->tDstLen;
}

// Stores one result of fixed size, if there is a destination; sets `tSize` and hands
// back the status.
template <class T>
OAK_RETCODE storeResult(CNVCB *block, const T &result, OAK_RETCODE rc = sOKAY) {
    if (block->pvDst != nullptr)
        std::memcpy(block->pvDst, &result, sizeof result);
    block->tSize = sizeof result;
    return rc;
}

// The copy of same to same: `width` bytes an element, whole elements alone.
// sTRUNCATE: not all of them fit.
OAK_RETCODE copyValueTrunc(CNVCB *block, size_t width);

} // namespace convert

#endif
