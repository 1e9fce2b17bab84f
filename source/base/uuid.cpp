// Random UUIDs and their text. Rests on the platform's process-wide objects and its
// random bits; called by the value, type and conversion modules, and by users directly.
//
// The random stream is one per process, made at the first creation. The platform's
// generator takes draws from any number of threads and draws anew in a forked child, so
// nothing is locked here.
//
// Text and memory have the same order, so both directions walk the 16 bytes once and
// need no copy of the text.

#include "uuid.h"

#include <cstddef>
#include <cstring>

#include "text_output.h"

namespace {

constexpr size_t uuidBytes = 16;
static_assert(sizeof(OAK_UUID_T) == uuidBytes && offsetof(OAK_UUID_T, time_mid) == 4 &&
              offsetof(OAK_UUID_T, time_high_and_version) == 6 &&
              offsetof(OAK_UUID_T, clock_seq_high_and_reserved) == 8 &&
              offsetof(OAK_UUID_T, node) == 10);

// Bytes of the five groups of the text.
constexpr uint8_t groupBytes[] = {4, 2, 2, 2, 6};

constexpr uint16_t randomVersion = 0x4000; // version 4, in the top four bits
constexpr uint16_t versionMask = 0x0FFF;
constexpr uint8_t rfcVariant = 0x80; // in the top two bits
constexpr uint8_t variantMask = 0x3F;

constexpr uint8_t noHexDigit = 255;

// ---- The random stream ----------------------------------------------------------

// The slot of the process-wide object holds the generator itself.
OAK_RETCODE osl_uuidInit(void *slot) {
    const uint64_t pid = osl_get_pid();
    const uint64_t seed = pid ^ osl_threadId() ^ osl_seed() ^ (pid >> 32);
    OSL_RAND generator = osl_randCreate(static_cast<uint32_t>(seed));
    if (generator == nullptr)
        return eNOMEMORY;
    std::memcpy(slot, &generator, sizeof generator);
    return sOKAY;
}

void osl_uuidTerm(void *slot) {
    OSL_RAND generator;
    std::memcpy(&generator, slot, sizeof generator);
    osl_randDestroy(generator);
    std::memset(slot, 0, sizeof generator);
}

// Null where the stream cannot be made.
OSL_RAND findGenerator() {
    void *slot = nullptr;
    const OAK_RETCODE rc =
        osl_globalGet("osluuid", sizeof(OSL_RAND), osl_uuidInit, osl_uuidTerm, &slot);
    if (rc != sOKAY || slot == nullptr)
        return nullptr;
    OSL_RAND generator;
    std::memcpy(&generator, slot, sizeof generator);
    return generator;
}

// ---- Text -----------------------------------------------------------------------

struct UuidText {
    char bytes[OAK_UUID_BRACED_TEXT_SIZE - 1];
    size_t length = 0;

    void put(char ch) { bytes[length++] = ch; }
};

UuidText renderUuid(const OAK_UUID_T *uuid, OAK_BOOL_T braces) {
    constexpr char hexDigits[] = "0123456789abcdef";
    uint8_t bytes[uuidBytes];
    std::memcpy(bytes, uuid, uuidBytes);
    UuidText text;
    if (braces != OAK_FALSE)
        text.put('{');
    const uint8_t *at = bytes;
    for (const uint8_t count : groupBytes) {
        if (at != bytes)
            text.put('-');
        for (const uint8_t *end = at + count; at < end; ++at) {
            text.put(hexDigits[*at >> 4]);
            text.put(hexDigits[*at & 0xF]);
        }
    }
    if (braces != OAK_FALSE)
        text.put('}');
    return text;
}

void skipBlanks(const char **pstr) {
    while (**pstr == ' ')
        ++*pstr;
}

// Two hexadecimal digits.
bool scanHexByte(const char **pstr, uint8_t *byte) {
    const uint8_t high = osl_hexdigit((*pstr)[0]);
    const uint8_t low = high == noHexDigit ? noHexDigit : osl_hexdigit((*pstr)[1]);
    if (low == noHexDigit)
        return false;
    *byte = static_cast<uint8_t>(high << 4 | low);
    *pstr += 2;
    return true;
}

bool scanCharacter(const char **pstr, char ch) {
    if (**pstr != ch)
        return false;
    ++*pstr;
    return true;
}

bool scanGroups(const char **pstr, uint8_t bytes[uuidBytes]) {
    const uint8_t *first = bytes;
    for (const uint8_t count : groupBytes) {
        if (bytes != first && !scanCharacter(pstr, '-'))
            return false;
        for (const uint8_t *end = bytes + count; bytes < end; ++bytes)
            if (!scanHexByte(pstr, bytes))
                return false;
    }
    return true;
}

bool scanUuid(const char *text, uint8_t bytes[uuidBytes]) {
    skipBlanks(&text);
    const bool braced = scanCharacter(&text, '{');
    if (!scanGroups(&text, bytes))
        return false;
    if (braced) {
        if (!scanCharacter(&text, '}'))
            return false;
        skipBlanks(&text);
    }
    return *text == '\0';
}

} // namespace

void oak_uuidCreate(OAK_UUID_T *uuid) {
    OSL_RAND generator = uuid != nullptr ? findGenerator() : nullptr;
    if (generator == nullptr)
        return;
    const uint64_t draws[2] = {osl_randGetUInt64(generator), osl_randGetUInt64(generator)};
    OAK_UUID_T result;
    std::memcpy(&result, draws, sizeof result);
    result.clock_seq_high_and_reserved = (draws[1] & variantMask) | rfcVariant;
    result.time_high_and_version =
        static_cast<uint16_t>((result.time_high_and_version & versionMask) | randomVersion);
    osl_swaporderUInt32(&result.time_low);
    osl_swaporderUInt16(&result.time_mid);
    osl_swaporderUInt16(&result.time_high_and_version);
    *uuid = result;
}

size_t oak_uuidStrLen(const OAK_UUID_T *uuid, OAK_BOOL_T braces) {
    if (uuid == nullptr)
        return SIZE_MAX;
    const UuidText text = renderUuid(uuid, braces);
    return deliverText(text.bytes, text.length, nullptr, 0).needed;
}

OAK_RETCODE oak_uuidToString(const OAK_UUID_T *uuid, char *str, size_t len, OAK_BOOL_T braces) {
    if (uuid == nullptr)
        return eINVNULLARG;
    const UuidText text = renderUuid(uuid, braces);
    return deliverText(text.bytes, text.length, str, len).needed > len ? sTRUNCATE : sOKAY;
}

OAK_RETCODE b_uuidFormat(const OAK_UUID_T *uuid, OAK_BOOL_T braces, OAK_OUTPUT_FCN fcn,
                         OAK_OUTPUT_CTX ctx) {
    if (uuid == nullptr || fcn == nullptr)
        return eINVNULLARG;
    const UuidText text = renderUuid(uuid, braces);
    return emitText(text.bytes, text.length, fcn, ctx);
}

OAK_RETCODE oak_uuidFromString(const char *str, OAK_UUID_T *uuid) {
    if (str == nullptr || uuid == nullptr)
        return eINVNULLARG;
    uint8_t bytes[uuidBytes];
    if (!scanUuid(str, bytes))
        return eOSL_INVUUID;
    std::memcpy(uuid, bytes, uuidBytes);
    return sOKAY;
}
