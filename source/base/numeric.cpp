// The numeric structure of the call-level interface, to and from decimals and to
// double. Rests on the decimal module for fitting a value to precision and scale;
// called by the call-level interface above this library.
//
// 32 decimal digits are below 2 to the 107th, so a 128-bit integer stands between the
// two forms and every conversion is exact.

#include "numeric.h"

#include <cstddef>
#include <cstring>

#include "bcd.h"
#include "bcd_internal.h"

namespace {

__extension__ typedef unsigned __int128 uint128;

static_assert(sizeof(OAK_NUMERIC_T) == 19 && offsetof(OAK_NUMERIC_T, val) == 3);

constexpr uint8_t numericPositive = 1;
constexpr uint8_t numericNegative = 0;
constexpr size_t numericBytes = sizeof(OAK_NUMERIC_T::val);

constexpr uint32_t digitsPerHalf = OAK_BCD_MAX_DIGITS / 2;
constexpr uint64_t halfBound = 10000000000000000; // 10 to the 16th

bool precisionIsValid(uint8_t prec, uint8_t scale) {
    return prec <= OAK_BCD_MAX_DIGITS && scale <= OAK_BCD_MAX_DIGITS;
}

uint128 loadMagnitude(const uint8_t (&val)[numericBytes]) {
    uint128 magnitude = 0;
    for (size_t i = numericBytes; i-- > 0;)
        magnitude = magnitude << 8 | val[i];
    return magnitude;
}

// Writes the bytes that the magnitude needs, one at least; the others stay.
void storeMagnitude(uint128 magnitude, uint8_t (&val)[numericBytes]) {
    size_t i = 0;
    do {
        val[i++] = static_cast<uint8_t>(magnitude);
        magnitude >>= 8;
    } while (magnitude != 0);
}

// Sixteen digits with leading zeros.
void writeHalf(uint64_t half, uint8_t *digits) {
    for (uint32_t i = digitsPerHalf; i-- > 0; half /= 10)
        digits[i] = static_cast<uint8_t>(half % 10);
}

// The digits of a magnitude below 10 to the 32nd, without leading zeros, as an integer.
void setInteger(OAK_BCD_T *bcd, uint128 magnitude) {
    uint8_t digits[OAK_BCD_MAX_DIGITS];
    writeHalf(static_cast<uint64_t>(magnitude / halfBound), digits);
    writeHalf(static_cast<uint64_t>(magnitude % halfBound), digits + digitsPerHalf);
    uint32_t lead = 0;
    while (lead < OAK_BCD_MAX_DIGITS && digits[lead] == 0)
        ++lead;
    bcd_set_zero(bcd);
    bcd->prec = static_cast<uint8_t>(OAK_BCD_MAX_DIGITS - lead);
    bcd->exp = static_cast<int8_t>(bcd->prec);
    std::memcpy(bcd->data + 1, digits + lead, bcd->prec);
}

uint128 magnitudeOf(const OAK_BCD_T &bcd) {
    uint128 magnitude = 0;
    for (uint32_t i = 1; i <= bcd.prec; ++i)
        magnitude = magnitude * 10 + bcd.data[i];
    return magnitude;
}

// 10 to the power of a scale, in 32 bits that wrap: from 10 on the value is what is
// left of it. Settled; callers with such scales get what they always got.
int32_t wrappedDivisor(int8_t scale) {
    uint32_t divisor = 1;
    for (int8_t i = 0; i < scale; ++i)
        divisor *= 10;
    return static_cast<int32_t>(divisor);
}

} // namespace

OAK_RETCODE oak_bcdFromNumericStruct(const OAK_NUMERIC_T *pVal, uint8_t prec, uint8_t scale,
                                     OAK_BCD_ROUNDING_MODE, OAK_BCD_T *result) {
    if (pVal == nullptr || result == nullptr)
        return eINVNULLARG;
    if (!precisionIsValid(prec, scale))
        return eRANGE;
    const uint128 magnitude = loadMagnitude(pVal->val);
    if (magnitude >= uint128{halfBound} * halfBound)
        return eRANGE;
    setInteger(result, magnitude);
    if (magnitude == 0)
        return sOKAY;
    result->sign = pVal->sign == numericPositive ? 1 : -1;
    result->exp = static_cast<int8_t>(result->prec - scale);
    return sOKAY;
}

OAK_RETCODE oak_bcdToNumericStruct(const OAK_BCD_T *b, uint8_t prec, uint8_t scale,
                                   OAK_BCD_ROUNDING_MODE, OAK_NUMERIC_T *result) {
    if (b == nullptr || result == nullptr)
        return eINVNULLARG;
    if (!precisionIsValid(prec, scale))
        return eRANGE;
    if (!bcd_is_decimal(b))
        return eINVBCD;
    OAK_BCD_T fitted;
    clean_copy(&fitted, b);
    const OAK_RETCODE rc = oak_bcdAdjust(&fitted, prec, scale);
    if (rc < sOKAY)
        return rc;
    normalize(&fitted);
    result->sign = fitted.sign == 1 ? numericPositive : numericNegative;
    result->precision = fitted.prec;
    result->scale = static_cast<int8_t>(fitted.prec - fitted.exp);
    storeMagnitude(magnitudeOf(fitted), result->val);
    return sOKAY;
}

double b_getDoubleFromNumeric(const OAK_NUMERIC_T *pNumStr) {
    if (pNumStr == nullptr)
        return 0.0;
    const auto sum = static_cast<int64_t>(static_cast<uint64_t>(loadMagnitude(pNumStr->val)));
    const double value = static_cast<double>(sum) / wrappedDivisor(pNumStr->scale);
    return pNumStr->sign == numericNegative ? -value : value;
}
