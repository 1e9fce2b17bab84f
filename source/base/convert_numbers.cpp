// Conversions between numbers: integers, floating types, decimals, truth values and row
// ids, packed decimals, and the raw image of a number in binary. Rests on the decimals
// and the platform's test for finite values; called through the matrix.
//
// One walk, convertElements, serves every pair. It takes an array or a single value
// (an array of one), converts element by element, and cuts an array that does not fit
// with sTRUNCATE. "Trunc" in a name means that cut of an array: a value that does not
// fit its type is eRANGE. What a pair does with one element is a rule, an overload of
// convertElement; where the families differ in what ends a walk is a trait, Walk.
//
// Fractions are cut towards zero before a range is looked at, so -0.9 is 0 in an
// unsigned integer. Every floating number passes through a signed integer of its own
// width on the way: 64 bits for a double, and only 32 for a float, so a float of 2 to
// the 31st and above converts to no integer, however wide.
#include "convert_internal.h"

#include <cfloat>
#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>
#include <utility>

#include "bcd.h"

using namespace convert;

namespace {

// ---- Kinds of elements ----------------------------------------------------------------------

// A row's number.
struct RowId {
    uint64_t value;
};

template <class T>
constexpr bool isDecimal = std::is_same_v<T, OAK_BCD_T>;
template <class T>
constexpr bool isTruth = std::is_same_v<T, Boolean>;

static_assert(sizeof(OAK_BCD_T) == 37 && alignof(OAK_BCD_T) == 1);
static_assert(sizeof(Boolean) == 1 && sizeof(RowId) == 8);

// ---- Decimals by type -----------------------------------------------------------------------

#define DECIMAL_OF(suffix, type)                                                                   \
    OAK_RETCODE decimalFrom(type number, OAK_BCD_T *decimal) {                                     \
        return oak_bcdFrom##suffix(number, decimal);                                               \
    }                                                                                              \
    OAK_RETCODE numberFrom(const OAK_BCD_T &decimal, type *number) {                               \
        return oak_bcdTo##suffix(&decimal, number);                                                \
    }
DECIMAL_OF(Int8, int8_t)
DECIMAL_OF(UInt8, uint8_t)
DECIMAL_OF(Int16, int16_t)
DECIMAL_OF(UInt16, uint16_t)
DECIMAL_OF(Int32, int32_t)
DECIMAL_OF(UInt32, uint32_t)
DECIMAL_OF(Int64, int64_t)
DECIMAL_OF(UInt64, uint64_t)
DECIMAL_OF(Float, float)
DECIMAL_OF(Double, double)

// ---- Floating numbers -----------------------------------------------------------------------

bool isFinite(double number) {
    return osl_validateDouble(nullptr, number) == OAK_TRUE;
}
bool isFinite(float number) {
    return osl_validateFloat(nullptr, number) == OAK_TRUE;
}

// The whole part of a number, if it survives the way through a signed integer.
OAK_RETCODE ceil_or_floor(double dv, double *dvp) {
    constexpr double TWO_TO_63 = 9223372036854775808.0;
    if (!isFinite(dv))
        return eRANGE;
    const double whole = std::trunc(dv);
    if (whole < -TWO_TO_63 || whole >= TWO_TO_63)
        return eRANGE;
    *dvp = whole;
    return sOKAY;
}

OAK_RETCODE f_ceil_or_floor(float fv, double *dv) {
    constexpr float TWO_TO_31 = 2147483648.0F;
    if (!isFinite(fv))
        return eRANGE;
    const float whole = fv < 0 ? osl_ceilf(fv) : osl_floorf(fv);
    if (whole < -TWO_TO_31 || whole >= TWO_TO_31)
        return eRANGE;
    *dv = static_cast<double>(whole);
    return sOKAY;
}

OAK_RETCODE wholePart(double number, double *whole) {
    return ceil_or_floor(number, whole);
}
OAK_RETCODE wholePart(float number, double *whole) {
    return f_ceil_or_floor(number, whole);
}

// ---- Rules: one element ---------------------------------------------------------------------

template <std::integral From, std::integral To>
OAK_RETCODE convertElement(From number, To *result) {
    if (!std::in_range<To>(number))
        return eRANGE;
    *result = static_cast<To>(number);
    return sOKAY;
}

template <std::integral From, std::floating_point To>
OAK_RETCODE convertElement(From number, To *result) {
    // A float takes no OAK_UINT64 above the largest 32-bit integer, though it could hold
    // it; every other pair rounds without a check. Callers have settled on that bound.
    if constexpr (std::is_same_v<From, uint64_t> && std::is_same_v<To, float>)
        if (number > uint64_t{INT32_MAX})
            return eRANGE;
    *result = static_cast<To>(number);
    return sOKAY;
}

template <std::floating_point From, std::integral To>
OAK_RETCODE convertElement(From number, To *result) {
    double whole = 0;
    const OAK_RETCODE rc = wholePart(number, &whole);
    if (rc != sOKAY)
        return rc;
    // The largest 64-bit integers round up to powers of two here, which wholePart has
    // excluded, so that comparing with them is exact for every type.
    if (whole < static_cast<double>(std::numeric_limits<To>::min()) ||
        whole > static_cast<double>(std::numeric_limits<To>::max()))
        return eRANGE;
    *result = static_cast<To>(whole);
    return sOKAY;
}

OAK_RETCODE convertElement(float number, double *result) {
    *result = static_cast<double>(number);
    return sOKAY;
}

// A NaN or an infinity becomes that of the float; only a number has a range.
OAK_RETCODE convertElement(double number, float *result) {
    if (isFinite(number) && std::fabs(number) > static_cast<double>(FLT_MAX))
        return eRANGE;
    *result = static_cast<float>(number);
    return sOKAY;
}

template <class From>
requires std::is_arithmetic_v<From> OAK_RETCODE convertElement(From number, OAK_BCD_T *result) {
    return decimalFrom(number, result);
}

// Losing the fraction is what a conversion to an integer means, and no news.
template <class To>
requires std::is_arithmetic_v<To> OAK_RETCODE convertElement(const OAK_BCD_T &decimal, To *result) {
    const OAK_RETCODE rc = numberFrom(decimal, result);
    return std::is_integral_v<To> && rc == sPRECISIONLOSS ? sOKAY : rc;
}

template <std::integral From>
OAK_RETCODE convertElement(From number, Boolean *result) {
    result->value = number != 0;
    return sOKAY;
}

template <std::floating_point From>
OAK_RETCODE convertElement(From number, Boolean *result) {
    if (!isFinite(number))
        return eRANGE;
    result->value = number != 0;
    return sOKAY;
}

OAK_RETCODE convertElement(const OAK_BCD_T &decimal, Boolean *result) {
    const OAK_RETCODE rc = oak_bcdValidate(&decimal);
    if (rc < sOKAY)
        return rc == eINVALID ? eRANGE : rc;
    result->value = oak_bcdIsZero(&decimal) == OAK_FALSE;
    return sOKAY;
}

// 0 is no row id.
template <std::integral From>
OAK_RETCODE convertElement(From number, RowId *result) {
    if (number <= 0)
        return eRANGE;
    result->value = static_cast<uint64_t>(number);
    return sOKAY;
}

// ---- The walk -------------------------------------------------------------------------------

// How a failing element ends the walk of a family.
template <class From, class To>
struct Walk {
    // A decimal made of a floating number ends it with any status, a loss of precision
    // among them; elsewhere a positive status goes on and becomes the result.
    static constexpr bool endsWithAnyStatus = std::is_floating_point_v<From> && isDecimal<To>;
    // The size is told even so, except from decimals and to truth values.
    static constexpr bool tellsSize = !isDecimal<From> && !isTruth<To>;
};

template <class To>
void storeElement(const CNVCB *block, size_t index, const To &element) {
    auto *place = static_cast<uint8_t *>(block->pvDst);
    if (isTruth<To> && block->dstStride != 0) {
        place += index * block->dstStride;
        std::memset(place, 0, block->dstStride);
    } else {
        place += index * sizeof(To);
    }
    std::memcpy(place, &element, sizeof element);
}

template <class From, class To>
OAK_RETCODE convertElements(CNVCB *block) {
    const size_t width = isTruth<To> && block->dstStride != 0 ? block->dstStride : sizeof(To);
    size_t count = elementCount(block);
    OAK_RETCODE result = sOKAY;
    if (block->pvDst == nullptr) {
        block->tSize = count * width;
        return result;
    }
    const size_t capacity = block->tDstLen < width ? 1 : block->tDstLen / width;
    if (count > capacity) {
        count = capacity;
        result = sTRUNCATE;
    }
    for (size_t i = 0; i < count; ++i) {
        To element{};
        const OAK_RETCODE rc = convertElement(loadElement<From>(block, i), &element);
        if (rc >= sOKAY)
            storeElement(block, i, element);
        if (rc == sOKAY)
            continue;
        result = rc;
        if (rc < sOKAY || Walk<From, To>::endsWithAnyStatus) {
            if (Walk<From, To>::tellsSize)
                block->tSize = count * width;
            return result;
        }
    }
    block->tSize = count * width;
    return result;
}

template <class From, class To>
OAK_RETCODE convertNumbers(CNVCB *block) {
    if constexpr (std::is_same_v<From, To>)
        return copyValueTrunc(block, sizeof(To));
    else
        return convertElements<From, To>(block);
}

// The raw image: an OAK_BOOL of an array has four bytes, and all four are its image.
template <class From>
OAK_RETCODE convertToBinary(CNVCB *block) {
    return copyValueTrunc(block, block->srcStride != 0 ? block->srcStride : sizeof(From));
}

// ---- Packed decimals ------------------------------------------------------------------------

OAK_RETCODE unpackBCD(const CNVCB *block, OAK_BCD_T *decimal) {
    const auto *packed = static_cast<const OAK_PACKED_BCD_T *>(block->pvSrc);
    const OAK_RETCODE rc = oak_bcdUnpack(packed, decimal, block->prec, block->scale);
    return rc == sOKAY ? sOKAY : eINVBCD;
}

// Unpacks, and runs the conversion of a single decimal.
OAK_RETCODE convertUnpacked(CNVCB *block, B_CNVFCN function) {
    OAK_BCD_T decimal;
    const OAK_RETCODE bad = unpackBCD(block, &decimal);
    if (bad != sOKAY)
        return bad;
    CNVCB inner = *block;
    inner.pvSrc = &decimal;
    inner.tSrcLen = sizeof decimal;
    inner.uSrcNumElems = 1;
    const OAK_RETCODE rc = function(&inner);
    block->tSize = inner.tSize;
    return rc;
}

// A whole decimal, or eDATALOST.
OAK_RETCODE unpackWhole(CNVCB *block) {
    OAK_BCD_T decimal;
    if (overflows(block, sizeof decimal))
        return eDATALOST;
    const OAK_RETCODE rc = unpackBCD(block, &decimal);
    return rc == sOKAY ? storeResult(block, decimal) : rc;
}

} // namespace

// ---- Copies ---------------------------------------------------------------------------------

OAK_RETCODE convert::copyValueTrunc(CNVCB *block, size_t width) {
    size_t count = elementCount(block);
    OAK_RETCODE rc = sOKAY;
    if (overflows(block, count * width)) {
        count = block->tDstLen / width;
        rc = sTRUNCATE;
    }
    block->tSize = count * width;
    if (block->pvDst == nullptr)
        return rc;
    const auto *source = static_cast<const uint8_t *>(block->pvSrc);
    auto *destination = static_cast<uint8_t *>(block->pvDst);
    const size_t stride = block->srcStride != 0 ? block->srcStride : width;
    if (stride == width)
        std::memcpy(destination, source, block->tSize);
    else
        for (size_t i = 0; i < count; ++i)
            std::memcpy(destination + i * width, source + i * stride, width);
    return rc;
}

// ---- The functions by name ------------------------------------------------------------------

#define CONVERT_PAIR(from, From, Name, Target)                                                     \
    OAK_RETCODE cnv_##from##To##Name##Trunc(CNVCB *block) {                                        \
        return convertNumbers<From, Target>(block);                                                \
    }
#define CONVERT_NUMBER(from, From)                                                                 \
    CNV_NUMBER_TARGETS(CONVERT_PAIR, from, From)                                                   \
    OAK_RETCODE cnv_##from##ToBinary(CNVCB *block) {                                               \
        return convertToBinary<From>(block);                                                       \
    }
#define CONVERT_TO_ROWID(from, From)                                                               \
    OAK_RETCODE cnv_##from##ToRowidTrunc(CNVCB *block) {                                           \
        return convertElements<From, RowId>(block);                                                \
    }
#define CONVERT_PACKED(To)                                                                         \
    OAK_RETCODE cnv_packedDecimalTo##To(CNVCB *block) {                                            \
        return convertUnpacked(block, cnv_decimalTo##To##Trunc);                                   \
    }

CNV_NUMBER_SOURCES(CONVERT_NUMBER)
CNV_INTEGER_SOURCES(CONVERT_TO_ROWID)
CNV_PACKED_DECIMAL_NUMBERS(CONVERT_PACKED)

OAK_RETCODE cnv_packedDecimalToDecimal(CNVCB *block) {
    return unpackWhole(block);
}
