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

#include <bit>
#include <cstring>

#include "convert.h"
#include "convert_block.h"

// ---- Lists --------------------------------------------------------------------

// The number types as sources, (name, element): integers, floating types, decimal.
#define CNV_INTEGER_SOURCES(item)                                                                  \
    item(int8, int8_t) item(uint8, uint8_t) item(int16, int16_t) item(uint16, uint16_t)            \
        item(int32, int32_t) item(uint32, uint32_t) item(int64, int64_t) item(uint64, uint64_t)
#define CNV_NUMBER_SOURCES(item)                                                                   \
    CNV_INTEGER_SOURCES(item) item(float, float) item(double, double) item(decimal, OAK_BCD_T)

// The same as destinations of one source, (source, source element, name, element).
#define CNV_NUMBER_TARGETS(item, from, From)                                                       \
    item(from, From, Int8, int8_t) item(from, From, UInt8, uint8_t)                                \
        item(from, From, Int16, int16_t) item(from, From, UInt16, uint16_t)                        \
            item(from, From, Int32, int32_t) item(from, From, UInt32, uint32_t)                    \
                item(from, From, Int64, int64_t) item(from, From, UInt64, uint64_t)                \
                    item(from, From, Float, float) item(from, From, Double, double)                \
                        item(from, From, Decimal, OAK_BCD_T)                                       \
                            item(from, From, Boolean, convert::Boolean)

// The numbers that a packed decimal converts to, beside a decimal.
#define CNV_PACKED_DECIMAL_NUMBERS(item)                                                           \
    item(Int16) item(UInt16) item(Int32) item(UInt32) item(Int64) item(UInt64) item(Float)         \
        item(Double)

// Everything that is no number, by its whole name.
#define CNV_OTHER_FUNCTIONS(item)                                                                  \
    item(cnv_strcpyTrunc) item(cnv_memcpyTrunc) item(cnv_memcpy) item(cnv_stringToBinary)          \
        item(cnv_stringToBoolean) item(cnv_stringToInt8) item(cnv_stringToUInt8) item(             \
            cnv_stringToInt16) item(cnv_stringToUInt16) item(cnv_stringToInt32)                    \
            item(cnv_stringToUInt32) item(cnv_stringToInt64) item(cnv_stringToUInt64) item(        \
                cnv_stringToFloat) item(cnv_stringToDouble) item(cnv_stringToDecimal)              \
                item(cnv_stringToDate) item(cnv_stringToTime) item(cnv_stringToTimeTZ) item(       \
                    cnv_stringToTimestamp) item(cnv_stringToTimestampTZ) item(cnv_stringToRowid)   \
                    item(cnv_stringToUuid) item(cnv_packedDecimalToDecimal) item(                  \
                        cnv_binaryToString) item(cnv_binaryToBoolean) item(cnv_binaryToUuid)       \
                        item(cnv_uuidToString) item(cnv_uuidToBinary) item(                        \
                            cnv_uuidToUuidTrunc) item(cnv_dateToString) item(cnv_dateToDate)       \
                            item(cnv_dateToTimestamp) item(cnv_dateToTimestampTZ) item(            \
                                cnv_timeToString) item(cnv_timeToTime) item(cnv_timeToTimeTZ)      \
                                item(cnv_timeToTimestamp) item(cnv_timeToTimestampTZ) item(        \
                                    cnv_timeTZToString) item(cnv_timeTZToTime)                     \
                                    item(cnv_timeTZToTimeTZ) item(cnv_timeTZToTimestamp) item(     \
                                        cnv_timeTZToTimestampTZ) item(cnv_timestampToString)       \
                                        item(cnv_timestampToDate) item(cnv_timestampToTime) item(  \
                                            cnv_timestampToTimeTZ) item(cnv_timestampToTimestamp)  \
                                            item(cnv_timestampToTimestampTZ)                       \
                                                item(cnv_timestampTZToString)                      \
                                                    item(cnv_timestampTZToDate)                    \
                                                        item(cnv_timestampTZToTime)                \
                                                            item(cnv_timestampTZToTimeTZ) item(    \
                                                                cnv_timestampTZToTimestamp)        \
                                                                item(cnv_timestampTZToTimestampTZ)

// ---- The functions --------------------------------------------------------------

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

// ---- The matrix -------------------------------------------------------------------

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

// The code of a conversion; `pCode` may be null. eINVCONVERT: there is none.
OAK_RETCODE getConvertCode(OAK_TYPE srcType, OAK_TYPE dstType, CNVCODE *pCode);

// The element size of a type in typeData, 0 for a type without a row.
size_t convertTypeSize(OAK_TYPE type);

// Runs the function behind a code. eINVCONVERT: the slot is empty, as those of wide
// text are, which travels as UTF-8.
OAK_RETCODE runConversion(CNVCODE code, CNVCB *block);

// ---- Elements -----------------------------------------------------------------------

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
