// Feeds the scanners of numbers, date literals and UUIDs arbitrary texts. The first byte
// chooses the date's format and separator. Traps when a failure stores anything, when a
// number's counts do not add up to its digits, and when a UUID does not come back.
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>

#include "convert_block.h"
#include "convert_scan.h"
#include "datetime.h"
#include "uuid.h"

namespace {

void require(bool holds) {
    if (!holds)
        __builtin_trap();
}

void check_number(const std::string &text) {
    int16_t sign = 99;
    uint16_t mag = 99;
    uint16_t scale = 99;
    int16_t expt = 999;
    const OAK_RETCODE rc = convert_parseNumber(text.c_str(), &sign, &mag, &scale, &expt);
    if (rc != sOKAY) {
        require(rc == eINVLITERAL || rc == eRANGE);
        require(sign == 99 && mag == 99 && scale == 99 && expt == 999);
        return;
    }
    const size_t mantissa = text.find_first_of("eE");
    size_t digits = 0;
    for (const char ch : text.substr(0, mantissa))
        digits += isdigit(static_cast<unsigned char>(ch)) != 0;
    require(digits == size_t{mag} + scale || digits > UINT16_MAX);
    require((sign == -1) == (text.substr(0, mantissa).find('-') != std::string::npos));
    require(expt >= -308 && expt <= 308);
    require(mantissa != std::string::npos || expt == 0);
}

void check_date(const std::string &text, uint8_t choice) {
    OAK_PACKED_DATE_T date = 77;
    CNVCB block{};
    block.pvSrc = text.c_str();
    block.tSrcLen = text.size() + 1;
    block.date_format = static_cast<OAK_DATE_FORMAT>(choice % 5);
    block.date_sep = static_cast<int8_t>("-/. 0\0"[choice / 5 % 6]);
    block.pvDst = &date;
    block.tDstLen = sizeof date;
    const OAK_RETCODE rc = cnv_stringToDate(&block);
    if (rc == sOKAY)
        require(date >= 1 && date <= OAK_DATE_MAX && block.tSize == 4);
    else
        require(date == 77 && (rc == eINVLITERAL || rc == eBASE_INVDATE));
}

void check_uuid(const std::string &text) {
    OAK_UUID_T uuid{};
    const OAK_RETCODE rc = oak_uuidFromString(text.c_str(), &uuid);
    if (rc != sOKAY) {
        require(rc == eOSL_INVUUID);
        return;
    }
    char shown[OAK_UUID_TEXT_SIZE];
    require(oak_uuidToString(&uuid, shown, sizeof shown, OAK_FALSE) == sOKAY);
    OAK_UUID_T back;
    require(oak_uuidFromString(shown, &back) == sOKAY);
    require(std::memcmp(&back, &uuid, sizeof uuid) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const std::string given(reinterpret_cast<const char *>(data + 1), size - 1);
    const std::string text = given.c_str();
    check_number(text);
    check_date(text, data[0]);
    check_uuid(text);
    return 0;
}
