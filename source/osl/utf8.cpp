// UTF-8, bounded output buffers, and locales by name.
//
// A bounded buffer counts two ways at once: `needed` is the whole text, `used`
// what is in the buffer; chars are bytes, elems are characters. The buffer keeps
// whole characters and always has room for its terminator; after the first
// character that does not fit (`done`) nothing more goes in, and the counting
// goes on.
#include "osl_internal.h"

#include <algorithm>
#include <cstring>

#include <langinfo.h>
#include <locale.h>
#include <strings.h>

namespace {

constexpr uint32_t kLastOneByte = 0x7f;
constexpr uint32_t kLastTwoBytes = 0x7ff;
constexpr uint32_t kLastThreeBytes = 0xffff;
constexpr uint32_t kFirstSurrogate = 0xd800;
constexpr uint32_t kLastSurrogate = 0xdfff;
constexpr uint32_t kLastCodePoint = 0x10ffff;
constexpr size_t kMostUtf8Bytes = 4;

constexpr bool is_code_point(uint32_t value) {
    return value <= kLastCodePoint && (value < kFirstSurrogate || value > kLastSurrogate);
}

constexpr uint8_t continuation(uint32_t bits) {
    return static_cast<uint8_t>(0x80 | (bits & 0x3f));
}

/// Bytes written, 1 to 4; 0 for what is no code point.
uint32_t encode(uint32_t code_point, uint8_t *bytes) {
    if (code_point <= kLastOneByte) {
        bytes[0] = static_cast<uint8_t>(code_point);
        return 1;
    }
    if (code_point <= kLastTwoBytes) {
        bytes[0] = static_cast<uint8_t>(0xc0 | (code_point >> 6));
        bytes[1] = continuation(code_point);
        return 2;
    }
    if (!is_code_point(code_point)) {
        return 0;
    }
    if (code_point <= kLastThreeBytes) {
        bytes[0] = static_cast<uint8_t>(0xe0 | (code_point >> 12));
        bytes[1] = continuation(code_point >> 6);
        bytes[2] = continuation(code_point);
        return 3;
    }
    bytes[0] = static_cast<uint8_t>(0xf0 | (code_point >> 18));
    bytes[1] = continuation(code_point >> 12);
    bytes[2] = continuation(code_point >> 6);
    bytes[3] = continuation(code_point);
    return 4;
}

/// Length of the character that the lead byte announces; 1 where it announces none.
size_t announced_length(char lead) {
    const auto byte = static_cast<uint8_t>(lead);
    if (byte >= 0xf8 || byte < 0xc0) {
        return 1;
    }
    return byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : 2;
}

/// Length of the character at the front of `size` bytes, at least 1.
size_t character_length(const char *text, size_t size) {
    const size_t announced = announced_length(text[0]);
    if (announced > size) {
        return 1;
    }
    for (size_t i = 1; i < announced; ++i) {
        if ((static_cast<uint8_t>(text[i]) & 0xc0) != 0x80) {
            return 1;
        }
    }
    return announced;
}

void append_character(OAK_OUTPUT_BUFF *out, const void *bytes, size_t length) {
    out->needed_chars += length;
    out->needed_elems += 1;
    if (out->buff == nullptr || out->done == OAK_TRUE) {
        return;
    }
    if (out->used_chars + length >= out->size) {
        out->done = OAK_TRUE;
        return;
    }
    std::memcpy(out->buff + out->used_chars, bytes, length);
    out->used_chars += length;
    out->used_elems += 1;
}

/// How many of the bytes at the front are ASCII.
size_t ascii_length(const char *text, size_t size) {
    size_t length = 0;
    for (uint64_t word = 0; size - length >= sizeof word; length += sizeof word) {
        std::memcpy(&word, text + length, sizeof word);
        if ((word & 0x8080808080808080) != 0) {
            break;
        }
    }
    while (length < size && static_cast<uint8_t>(text[length]) <= kLastOneByte) {
        ++length;
    }
    return length;
}

/// The same as appending each by itself.
void append_ascii(OAK_OUTPUT_BUFF *out, const char *text, size_t length) {
    out->needed_chars += length;
    out->needed_elems += length;
    if (out->buff == nullptr || out->done == OAK_TRUE) {
        return;
    }
    const size_t room = out->size - 1 - out->used_chars;
    const size_t fitting = std::min(length, room);
    std::memcpy(out->buff + out->used_chars, text, fitting);
    out->used_chars += fitting;
    out->used_elems += fitting;
    out->done = fitting < length ? OAK_TRUE : OAK_FALSE;
}

} // namespace

namespace osl {

void append_utf8(OAK_OUTPUT_BUFF *out, const char *text, size_t size) {
    for (size_t at = 0; at < size;) {
        const size_t plain = ascii_length(text + at, size - at);
        append_ascii(out, text + at, plain);
        at += plain;
        if (at < size) {
            const size_t length = character_length(text + at, size - at);
            append_character(out, text + at, length);
            at += length;
        }
    }
}

locale_t c_locale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

} // namespace osl

char *osl_uchar_to_utf8(uint32_t codePoint, char *buffer, size_t size) {
    uint8_t bytes[kMostUtf8Bytes];
    if (buffer == nullptr || size == 0) {
        return buffer;
    }
    uint32_t length = encode(codePoint, bytes);
    if (length >= size) {
        length = 0;
    }
    std::memcpy(buffer, bytes, length);
    buffer[length] = '\0';
    return buffer;
}

uint32_t osl_utf8_codes(uint32_t codePoint, uint8_t *buffer) {
    return buffer != nullptr ? encode(codePoint, buffer) : 0;
}

void osl_utf8BuffInit(OAK_OUTPUT_BUFF *out, char *buffer, size_t size) {
    *out = OAK_OUTPUT_BUFF{};
    out->buff = size > 0 ? buffer : nullptr;
    out->size = size;
}

OAK_RETCODE osl_emitCharAsUtf8(OAK_OUTPUT_CTX out, uint32_t codePoint) {
    uint8_t bytes[kMostUtf8Bytes];
    const uint32_t length = encode(codePoint, bytes);
    if (length == 0) {
        return eINVUTF;
    }
    append_character(static_cast<OAK_OUTPUT_BUFF *>(out), bytes, length);
    return sOKAY;
}

void osl_utf8BuffTerm(OAK_OUTPUT_BUFF *out) {
    out->needed_chars += 1;
    if (out->buff != nullptr) {
        out->buff[out->used_chars] = '\0';
        out->used_chars += 1;
    }
}

// ---- Locales ----------------------------------------------------------------

namespace {

bool is_utf8_name(const char *codeset, size_t length) {
    return (length == 5 && strncasecmp(codeset, "UTF-8", length) == 0) ||
           (length == 4 && strncasecmp(codeset, "UTF8", length) == 0);
}

/// Asks the system for the encoding of a locale whose name does not tell it.
bool system_says_utf8(const char *name) {
    locale_t locale = newlocale(LC_CTYPE_MASK, name, nullptr);
    if (locale == nullptr) {
        return false;
    }
    const char *codeset = nl_langinfo_l(CODESET, locale);
    const bool result = is_utf8_name(codeset, std::strlen(codeset));
    freelocale(locale);
    return result;
}

} // namespace

OSL_LOCALE osl_createlocale(int32_t categoryMask, const char *name) {
    return name != nullptr ? newlocale(categoryMask, name, nullptr) : nullptr;
}

void osl_freelocale(OSL_LOCALE locale) {
    if (locale != nullptr) {
        freelocale(locale);
    }
}

int32_t osl_locale_validate_utf8(const char *localeName) {
    if (localeName == nullptr || *localeName == '\0') {
        return 0;
    }
    const char *point = std::strchr(localeName, '.');
    if (point == nullptr) {
        return system_says_utf8(localeName) ? 1 : 0;
    }
    return is_utf8_name(point + 1, std::strcspn(point + 1, "@")) ? 1 : 0;
}
