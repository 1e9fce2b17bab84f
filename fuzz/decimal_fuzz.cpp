// Decimals from outside: any text through the parser, any bytes as records through every
// operation, any bytes as a packed column. The first byte chooses.
#include <cstdint>
#include <cstring>
#include <string>

#include "bcd.h"

namespace {

void require(bool condition) {
    if (!condition)
        __builtin_trap();
}

constexpr size_t TEXT_SIZE = 400;

bool same(const OAK_BCD_T &a, const OAK_BCD_T &b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

void require_clear_past_prec(const OAK_BCD_T &bcd) {
    require(bcd.prec <= OAK_BCD_MAX_DIGITS);
    for (int i = bcd.prec + 1; i <= OAK_BCD_MAX_DIGITS; ++i)
        require(bcd.data[i] == 0);
}

// What is printed is read back as the same value.
void require_round_trip(const OAK_BCD_T &bcd) {
    char text[TEXT_SIZE];
    size_t needed = 0, written = 0;
    require(oak_bcdToString(&bcd, OAK_FALSE, nullptr, 0, &needed) == sOKAY);
    require(needed <= sizeof text);
    require(oak_bcdToString(&bcd, OAK_FALSE, text, needed, &written) == sOKAY);
    require(written == needed && strlen(text) + 1 == needed);
    OAK_BCD_T back;
    if (oak_bcdFromString(text, &back) == sOKAY)
        require(oak_bcdCompare(&bcd, &back) == OAK_EQ);
}

void parse(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    OAK_BCD_T bcd;
    const OAK_RETCODE rc = oak_bcdFromString(text.c_str(), &bcd);
    require(rc == sOKAY || rc == sPRECISIONLOSS || rc == eRANGE);
    require(oak_bcdValidate(&bcd) == sOKAY);
    require_clear_past_prec(bcd);
    if (rc >= sOKAY)
        require_round_trip(bcd);
}

void compute(const uint8_t *data, size_t size) {
    OAK_BCD_T l{}, r{}, result{};
    if (size < 1 + 2 * sizeof l)
        return;
    const auto mode = static_cast<OAK_BCD_ROUNDING_MODE>(data[0] % 6);
    memcpy(&l, data + 1, sizeof l);
    memcpy(&r, data + 1 + sizeof l, sizeof r);
    for (const auto operation : {oak_bcdAdd, oak_bcdSub, oak_bcdMult, oak_bcdDiv}) {
        OAK_BCD_T in_place = l;
        result = OAK_BCD_T{};
        const OAK_RETCODE rc = operation(&l, &r, mode, &result);
        require_clear_past_prec(result);
        require(operation(&in_place, &r, mode, &in_place) == rc);
        require(rc == eNOMEMORY || same(in_place, result));
    }
    for (const auto operation : {oak_bcdChgSign, oak_bcdCeiling, oak_bcdFloor, oak_bcdRound}) {
        result = OAK_BCD_T{};
        OAK_IGNORE_STATUS(operation(&l, &result), "any");
        require_clear_past_prec(result);
    }
    if (oak_bcdValidate(&l) == sOKAY && oak_bcdValidate(&r) == sOKAY && l.sign == r.sign)
        require(oak_bcdCompare(&l, &r) == -oak_bcdCompare(&r, &l));
    result = l;
    OAK_IGNORE_STATUS(oak_bcdAdjust(&result, r.prec, r.data[0]), "any");
    int64_t integer;
    uint64_t natural;
    double number;
    OAK_IGNORE_STATUS(oak_bcdToInt64(&l, &integer), "any");
    OAK_IGNORE_STATUS(oak_bcdToUInt64(&l, &natural), "any");
    OAK_IGNORE_STATUS(oak_bcdToDouble(&l, &number), "any");
    char text[TEXT_SIZE];
    size_t needed = 0;
    if (oak_bcdToStringWithScale(&l, r.data[1], OAK_TRUE, nullptr, 0, &needed) == sOKAY) {
        require(needed <= sizeof text);
        require(oak_bcdToStringWithScale(&l, r.data[1], OAK_TRUE, text, sizeof text, nullptr) ==
                sOKAY);
        require(strlen(text) + 1 == needed);
    }
}

void unpack(const uint8_t *data, size_t size) {
    if (size < 2)
        return;
    const uint8_t prec = data[0], scale = data[1];
    if (prec <= OAK_BCD_MAX_DIGITS && size < 2 + OAK_PACKED_BCD_SIZE(prec))
        return;
    OAK_BCD_T bcd;
    if (oak_bcdUnpack(data + 2, &bcd, prec, scale) != sOKAY)
        return;
    require(oak_bcdValidate(&bcd) == sOKAY);
    require_clear_past_prec(bcd);
    require_round_trip(bcd);
    OAK_PACKED_BCD_T packed[OAK_PACKED_BCD_SIZE(OAK_BCD_MAX_DIGITS)];
    OAK_BCD_T again;
    if (scale > prec) // a zero does not fit such a column
        return;
    require(oak_bcdPack(&bcd, packed, prec, scale) == sOKAY);
    require(oak_bcdUnpack(packed, &again, prec, scale) == sOKAY);
    require(oak_bcdCompare(&bcd, &again) == OAK_EQ);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    constexpr void (*READERS[])(const uint8_t *, size_t) = {parse, compute, unpack};
    READERS[data[0] % 3](data + 1, size - 1);
    return 0;
}
