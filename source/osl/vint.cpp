// Varying integers over one-byte callbacks. The form stands in vint_inline.h.
#include "vint_inline.h"

#include "osltypes.h"

#include <limits>

namespace {

using osl::VintGatherer;

template <class Target>
OAK_RETCODE decode(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, Target *out) {
    if (fcn == nullptr || out == nullptr) {
        return eINVNULLARG;
    }
    VintGatherer gatherer;
    VintGatherer::State state = VintGatherer::State::more;
    while (state == VintGatherer::State::more) {
        uint32_t byte = 0;
        const OAK_RETCODE status = fcn(ctx, &byte);
        if (status != sOKAY) {
            return status;
        }
        state = gatherer.take(static_cast<uint8_t>(byte));
    }
    if (state == VintGatherer::State::malformed) {
        return eINVVARINT;
    }
    if (gatherer.value() > std::numeric_limits<Target>::max()) {
        return eRANGE;
    }
    *out = static_cast<Target>(gatherer.value());
    return sOKAY;
}

} // namespace

OAK_RETCODE osl_vintEncodeUIntmax(uintmax_t value, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {
    if (fcn == nullptr) {
        return eINVNULLARG;
    }
    uint8_t bytes[osl::kMostVintBytes];
    const size_t count = osl::vint_encode(value, bytes);
    for (size_t i = 0; i < count; ++i) {
        const OAK_RETCODE status = fcn(ctx, bytes[i]);
        if (status != sOKAY) {
            return status;
        }
    }
    return sOKAY;
}

OAK_RETCODE osl_vintDecodeUIntmax(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, uintmax_t *pValue) {
    return decode(fcn, ctx, pValue);
}

OAK_RETCODE osl_vintDecodeUInt32(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, uint32_t *pValue) {
    return decode(fcn, ctx, pValue);
}

OAK_RETCODE osl_vintDecodeSize_t(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, size_t *pValue) {
    return decode(fcn, ctx, pValue);
}

uintmax_t osl_vintConvertToUnsigned(intmax_t value) {
    return osl::vint_to_unsigned(value);
}

intmax_t osl_vintConvertToSigned(uintmax_t value) {
    return osl::vint_to_signed(value);
}
