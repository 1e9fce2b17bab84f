// Conversions that read or write text, and those of binary and UUIDs. Rests on the
// number scanner, the platform's number parsers, decimals and UUIDs; called through the
// matrix. Dates have their own file.
//
// Numbers to text: a single value is written, or an array walked, which is "ARRAY[", its
// elements with commas between them, and "]"; an element that does not fit is dropped
// whole with all behind it, so a number is never cut in the middle and an array is always
// closed. Floating numbers have 15 significant digits, or 7, in the shorter of the two
// usual forms, with a point and an upper-case E whatever the process's locale.
//
// Text to numbers: the scanner classifies the text, and what it found chooses the
// parser, so that integers up to 19 digits are exact. Text with a fraction gives its
// integer part and sTRUNCATE, even where all digits behind the point are zeros.
#include "convert_internal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <iterator>
#include <strings.h>
#include <type_traits>
#include <utility>

#include "bcd.h"
#include "convert_scan.h"
#include "uuid.h"

using namespace convert;

namespace {

// ---- Elements as text -----------------------------------------------------------------------

constexpr size_t ELEMENT_TEXT_SIZE = 80;

// Significant digits of floating numbers.
constexpr int DIGITS_OF_DOUBLE = 15;
constexpr int DIGITS_OF_FLOAT = 7;

// Without a terminator.
struct ElementText {
    char *chars; // room for ELEMENT_TEXT_SIZE, or for the DIRECT_SIZE of the element's type
    size_t length;

    char *end() const { return chars + ELEMENT_TEXT_SIZE; }
    void set(const char *end) { length = static_cast<size_t>(end - chars); }
};

// The longest text of a type whose elements are written where they belong, if there is
// so much room: integers, which always succeed and touch no byte but their own. 0: made
// elsewhere and copied.
template <class T>
constexpr size_t DIRECT_SIZE = 0;
template <std::integral T>
constexpr size_t DIRECT_SIZE<T> = std::numeric_limits<T>::digits10 + 1 + std::is_signed_v<T>;

// How many decimal digits a number has: 1233 / 4096 is a little above the logarithm of 2,
// so the bits tell the count or one less.
size_t digitCount(uint64_t number) {
    static constexpr auto POWERS = [] {
        std::array<uint64_t, 20> powers{1};
        for (size_t i = 1; i < powers.size(); ++i)
            powers[i] = powers[i - 1] * 10;
        return powers;
    }();
    const uint64_t bits = number | 1; // 0 has a digit too
    const size_t least = static_cast<size_t>(std::bit_width(bits)) * 1233 >> 12;
    return least + (bits >= POWERS[least] ? 1 : 0);
}

// Two digits.
void writePair(char *out, uint32_t number) {
    static constexpr auto PAIRS = [] {
        std::array<char, 200> pairs{};
        for (size_t i = 0; i < pairs.size(); ++i)
            pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
        return pairs;
    }();
    std::memcpy(out, &PAIRS[number * 2], 2);
}

// Writes the digits of a number, four at a time from the last, as 64 bits are the dearest
// to divide. Returns their end.
char *writeDigits(uint64_t number, char *out) {
    char *const end = out + digitCount(number);
    char *place = end;
    for (; number >= 10000; number /= 10000) {
        const auto four = static_cast<uint32_t>(number % 10000);
        writePair(place -= 2, four % 100);
        writePair(place -= 2, four / 100);
    }
    auto rest = static_cast<uint32_t>(number);
    if (rest >= 100) {
        writePair(place -= 2, rest % 100);
        rest /= 100;
    }
    if (rest >= 10)
        writePair(out, rest);
    else
        *out = static_cast<char>('0' + rest);
    return end;
}

template <std::integral T>
void formatInteger(T number, ElementText *text) {
    const auto bits = static_cast<uint64_t>(number);
    *text->chars = '-'; // which a digit overwrites where there is no sign
    text->set(writeDigits(number < 0 ? 0 - bits : bits, text->chars + (number < 0 ? 1 : 0)));
}

template <std::integral T>
OAK_RETCODE formatElement(T number, ElementText *text) {
    formatInteger(number, text);
    return sOKAY;
}

void formatWord(OAK_FP_TYPE kind, ElementText *text) {
    static constexpr const char *WORDS[] = {"", "NAN", "-NAN", "INF", "-INF"}; // by kind
    const char *word = WORDS[kind];
    text->length = std::strlen(word);
    std::memcpy(text->chars, word, text->length);
}

// As printf's %.*G does in the C locale. Whole numbers of no more than so many digits,
// which are most of the floating numbers in tables, print as the integers that they are;
// -0 is not one of them.
void formatGeneral(double number, int digits, ElementText *text) {
    const double end = digits == DIGITS_OF_DOUBLE ? 1e15 : 1e7;
    if (number != 0 && std::fabs(number) < end && number == std::trunc(number)) {
        formatInteger(static_cast<int64_t>(number), text);
        return;
    }
    text->set(
        std::to_chars(text->chars, text->end(), number, std::chars_format::general, digits).ptr);
    if (auto *exponent = static_cast<char *>(std::memchr(text->chars, 'e', text->length)))
        *exponent = 'E';
}

OAK_RETCODE formatElement(double number, ElementText *text) {
    OAK_FP_TYPE kind;
    if (osl_validateDouble(&kind, number) == OAK_TRUE)
        formatGeneral(number, DIGITS_OF_DOUBLE, text);
    else
        formatWord(kind, text);
    return sOKAY;
}

OAK_RETCODE formatElement(float number, ElementText *text) {
    OAK_FP_TYPE kind;
    if (osl_validateFloat(&kind, number) == OAK_TRUE)
        formatGeneral(static_cast<double>(number), DIGITS_OF_FLOAT, text);
    else
        formatWord(kind, text);
    return sOKAY;
}

OAK_RETCODE formatElement(const OAK_BCD_T &decimal, ElementText *text) {
    size_t size = 0;
    const OAK_RETCODE rc =
        oak_bcdToString(&decimal, OAK_FALSE, text->chars, ELEMENT_TEXT_SIZE, &size);
    text->length = size - 1;
    return rc;
}

OAK_RETCODE formatElement(const OAK_UUID_T &uuid, ElementText *text) {
    text->length = oak_uuidStrLen(&uuid, OAK_FALSE) - 1;
    return oak_uuidToString(&uuid, text->chars, ELEMENT_TEXT_SIZE, OAK_FALSE);
}

// ---- One value ------------------------------------------------------------------------------

// Text that does not fit is not there at all. An integer is written at its place: a
// processor cannot hand out as a whole what it has not stored yet, so characters that
// were made a moment ago are dear to copy.
template <class T>
OAK_RETCODE valueToText(CNVCB *block) {
    auto *out = static_cast<char *>(block->pvDst);
    const size_t limit = block->tDstLen;
    const bool direct = DIRECT_SIZE<T> != 0 && out != nullptr && limit > DIRECT_SIZE<T>;
    char elsewhere[ELEMENT_TEXT_SIZE];
    ElementText text{direct ? out : elsewhere, 0};
    const OAK_RETCODE rc = formatElement(load<T>(block->pvSrc), &text);
    if (rc < sOKAY)
        return rc;
    if (limit != 0 && text.length >= limit) {
        block->tSize = 1;
        return sTRUNCATE;
    }
    block->tSize = text.length + 1;
    if (out == nullptr)
        return sOKAY;
    if (!direct)
        std::memcpy(out, text.chars, text.length);
    out[text.length] = '\0';
    return sOKAY;
}

// ---- The walk over an array -----------------------------------------------------------------

// The text of an array on its way into the destination, or being measured.
class ArrayRun {
  public:
    explicit ArrayRun(CNVCB *block) : block_(block), out_(static_cast<char *>(block->pvDst)) {}

    // False when the element does not fit, together with all that must follow it.
    bool take(const ElementText &text) {
        const size_t separator = taken_ ? 1 : 0;
        const size_t total = total_ + separator + text.length;
        if (block_->tDstLen != 0 && block_->tDstLen <= total)
            return false;
        if (separator != 0)
            append(",", 1);
        else
            append(PREFIX, sizeof PREFIX - 1);
        append(text.chars, text.length);
        total_ = total;
        taken_ = true;
        return true;
    }

    // Without an element nothing is written, not even a terminator.
    void finish() {
        block_->tSize = taken_ ? total_ + 1 : 1;
        if (taken_)
            append("]", sizeof "]");
    }

  private:
    static constexpr char PREFIX[] = "ARRAY[";
    static constexpr size_t ARRAY_BUDGET = 7; // the prefix and the closing bracket

    void append(const char *text, size_t length) {
        if (out_ == nullptr)
            return;
        std::memcpy(out_, text, length);
        out_ += length;
    }

    CNVCB *block_;
    char *out_;
    bool taken_ = false;
    size_t total_ = ARRAY_BUDGET;
};

template <class T>
OAK_RETCODE arrayToText(CNVCB *block) {
    ArrayRun run(block);
    OAK_RETCODE result = sOKAY;
    for (size_t i = 0; i < elementCount(block) && result == sOKAY; ++i) {
        char chars[ELEMENT_TEXT_SIZE];
        ElementText text{chars, 0};
        const OAK_RETCODE rc = formatElement(loadElement<T>(block, i), &text);
        if (rc < sOKAY)
            return rc;
        result = run.take(text) ? sOKAY : sTRUNCATE;
    }
    run.finish();
    return result;
}

template <class T>
OAK_RETCODE elementsToText(CNVCB *block) {
    return block->uSrcNumElems == 0 ? valueToText<T>(block) : arrayToText<T>(block);
}

// ---- Numeric text ---------------------------------------------------------------------------

struct NumberForm {
    int16_t sign;
    uint16_t mag;   // digits before the point
    uint16_t scale; // digits behind it
    int16_t expt;
};

const char *textOf(const CNVCB *block) {
    return static_cast<const char *>(block->pvSrc);
}

OAK_RETCODE scanNumber(const char *text, NumberForm *form) {
    return convert_parseNumber(text, &form->sign, &form->mag, &form->scale, &form->expt);
}

// What the scanner accepts in front of the point, blanks apart: a sign and at most 20
// digits. An exponent behind the fraction plays no part.
struct IntegerPart {
    char text[24];

    explicit IntegerPart(const char *number) {
        number += std::strspn(number, " \t\n");
        const size_t length = std::strcspn(number, ".");
        std::memcpy(text, number, length);
        text[length] = '\0';
    }
};

OAK_RETCODE parseInteger(const char *text, int64_t *number) {
    return osl_atoi64(text, number);
}
OAK_RETCODE parseInteger(const char *text, uint64_t *number) {
    return osl_atoui64(text, number);
}

// By way of a double, of which 53 bits are exact: the integer part of a text with 17
// or 18 digits before the point comes out rounded to them, as it always has.
template <class Integer>
OAK_RETCODE parseByDouble(const char *text, Integer *number) {
    constexpr double END = 2.0 * (static_cast<double>(std::numeric_limits<Integer>::max() / 2 + 1));
    double value = 0;
    const OAK_RETCODE rc = osl_strtod(text, &value);
    if (rc != sOKAY)
        return rc;
    if (std::is_unsigned_v<Integer> ? value < 0 : value < -END)
        return eRANGE;
    if (value >= END)
        return eRANGE;
    *number = static_cast<Integer>(value);
    return sOKAY;
}

// The integer part of a text that has a fraction: `digits` is what it has in front of
// the point, with a minus counted by the caller where it counts.
template <class Integer>
OAK_RETCODE parseWithFraction(const char *text, unsigned digits, Integer *number) {
    constexpr unsigned DIGITS_BY_DOUBLE = 18;
    const OAK_RETCODE rc = digits > DIGITS_BY_DOUBLE ? parseInteger(IntegerPart(text).text, number)
                                                     : parseByDouble(text, number);
    return rc == sOKAY ? sTRUNCATE : rc;
}

OAK_RETCODE parseNumberForInt64(const char *strNumber, int64_t *pi64v) {
    NumberForm form;
    const OAK_RETCODE rc = scanNumber(strNumber, &form);
    if (rc != sOKAY)
        return rc;
    if (form.mag > 19)
        return eRANGE;
    if (form.scale == 0)
        return parseInteger(strNumber, pi64v);
    return parseWithFraction(strNumber, form.mag + (form.sign < 0 ? 1U : 0U), pi64v);
}

OAK_RETCODE parseNumberForUInt64(const char *text, uint64_t *number) {
    NumberForm form;
    const OAK_RETCODE rc = scanNumber(text, &form);
    if (rc != sOKAY)
        return rc;
    if (form.mag > 20)
        return eRANGE;
    if (form.scale != 0)
        return parseWithFraction(text, form.mag, number);
    return form.sign < 0 ? eRANGE : parseInteger(text, number);
}

// The integers of up to 64 bits, by way of the signed one.
template <class Integer>
OAK_RETCODE textToInteger(CNVCB *block) {
    int64_t number = 0;
    const OAK_RETCODE rc = parseNumberForInt64(textOf(block), &number);
    if (rc < sOKAY)
        return rc;
    if (!std::in_range<Integer>(number))
        return eRANGE;
    return storeResult(block, static_cast<Integer>(number), rc);
}

// ---- Truth values ---------------------------------------------------------------------------

struct TruthWord {
    const char *word;
    uint8_t value;
};
constexpr TruthWord TRUTH_WORDS[] = {{"TRUE", 1}, {"YES", 1}, {"FALSE", 0}, {"NO", 0}};

OAK_RETCODE parseTruthWord(const char *text, uint8_t *value) {
    for (const TruthWord &entry : TRUTH_WORDS) {
        if (strcasecmp(text, entry.word) == 0) {
            *value = entry.value;
            return sOKAY;
        }
    }
    return eINVLITERAL;
}

OAK_RETCODE parseTruth(const char *text, uint8_t *value) {
    NumberForm form;
    OAK_RETCODE rc = scanNumber(text, &form);
    if (rc == eINVLITERAL)
        return parseTruthWord(text, value);
    int64_t number = 0;
    if (rc == sOKAY)
        rc = osl_atoi64(text, &number);
    *value = number != 0;
    return rc;
}

// ---- Hexadecimal digits ---------------------------------------------------------------------

constexpr size_t HEX_FRAME = 3; // "0x" and the terminator

void writeHexadecimal(const uint8_t *bytes, size_t count, char *out) {
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    *out++ = '0';
    *out++ = 'x';
    for (size_t i = 0; i < count; ++i) {
        *out++ = DIGITS[bytes[i] >> 4];
        *out++ = DIGITS[bytes[i] & 0x0F];
    }
    *out = '\0';
}

// Reads pairs of digits up to a zero byte; what lies behind it becomes zeros. `out` may
// be null, to check alone.
OAK_RETCODE readHexadecimal(const char *digits, size_t count, uint8_t *out) {
    constexpr unsigned NO_DIGIT = 255;
    size_t i = 0;
    for (; i < count && digits[2 * i] != '\0'; ++i) {
        const unsigned high = osl_hexdigit(digits[2 * i]);
        const unsigned low = osl_hexdigit(digits[2 * i + 1]);
        if (high == NO_DIGIT || low == NO_DIGIT)
            return eINVBINLITERAL;
        if (out != nullptr)
            out[i] = static_cast<uint8_t>(high << 4 | low);
    }
    if (out != nullptr)
        std::memset(out + i, 0, count - i);
    return sOKAY;
}

bool hasHexPrefix(const char *text, size_t length) {
    return length >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

} // namespace

// ---- Numbers and UUIDs to text --------------------------------------------------------------

#define NUMBER_TO_TEXT(from, From)                                                                 \
    OAK_RETCODE cnv_##from##ToString(CNVCB *block) {                                               \
        return elementsToText<From>(block);                                                        \
    }
CNV_NUMBER_SOURCES(NUMBER_TO_TEXT)

OAK_RETCODE cnv_uuidToString(CNVCB *block) {
    return elementsToText<OAK_UUID_T>(block);
}

// ---- Text to numbers ------------------------------------------------------------------------

#define TEXT_TO_INTEGER(To, Target)                                                                \
    OAK_RETCODE cnv_stringTo##To(CNVCB *block) {                                                   \
        return textToInteger<Target>(block);                                                       \
    }
TEXT_TO_INTEGER(Int8, int8_t)
TEXT_TO_INTEGER(UInt8, uint8_t)
TEXT_TO_INTEGER(Int16, int16_t)
TEXT_TO_INTEGER(UInt16, uint16_t)
TEXT_TO_INTEGER(Int32, int32_t)
TEXT_TO_INTEGER(UInt32, uint32_t)
TEXT_TO_INTEGER(Int64, int64_t)

OAK_RETCODE cnv_stringToUInt64(CNVCB *block) {
    uint64_t number = 0;
    const OAK_RETCODE rc = parseNumberForUInt64(textOf(block), &number);
    return rc < sOKAY ? rc : storeResult(block, number, rc);
}

// The sign is not looked at: a negative text gives its bits.
OAK_RETCODE cnv_stringToRowid(CNVCB *block) {
    NumberForm form;
    OAK_RETCODE rc = scanNumber(textOf(block), &form);
    if (rc != sOKAY)
        return rc;
    if (form.mag > 19)
        return eRANGE;
    if (form.scale != 0)
        return eTYPEMISMATCH;
    int64_t number = 0;
    rc = osl_atoi64(textOf(block), &number);
    return rc == sOKAY ? storeResult(block, static_cast<uint64_t>(number)) : rc;
}

OAK_RETCODE cnv_stringToFloat(CNVCB *block) {
    constexpr int LARGEST_EXPONENT = 38;
    NumberForm form;
    OAK_RETCODE rc = scanNumber(textOf(block), &form);
    if (rc != sOKAY)
        return rc;
    if (std::abs(form.expt) > LARGEST_EXPONENT)
        return eRANGE;
    float number = 0;
    rc = osl_strtof(textOf(block), &number);
    return rc == sOKAY ? storeResult(block, number) : rc;
}

OAK_RETCODE cnv_stringToDouble(CNVCB *block) {
    NumberForm form;
    OAK_RETCODE rc = scanNumber(textOf(block), &form);
    if (rc != sOKAY)
        return rc;
    double number = 0;
    rc = osl_strtod(textOf(block), &number);
    return rc == sOKAY ? storeResult(block, number) : rc;
}

// A sizing run does not look at the text, here and for UUIDs.
OAK_RETCODE cnv_stringToDecimal(CNVCB *block) {
    OAK_BCD_T decimal{};
    const OAK_RETCODE rc =
        block->pvDst == nullptr ? sOKAY : oak_bcdFromString(textOf(block), &decimal);
    if (rc < sOKAY)
        return rc == eRANGE ? eINVLITERAL : rc;
    return storeResult(block, decimal, rc);
}

OAK_RETCODE cnv_stringToUuid(CNVCB *block) {
    OAK_UUID_T uuid{};
    if (block->pvDst != nullptr && oak_uuidFromString(textOf(block), &uuid) != sOKAY)
        return eINVLITERAL;
    return storeResult(block, uuid);
}

OAK_RETCODE cnv_stringToBoolean(CNVCB *block) {
    Boolean truth{};
    const OAK_RETCODE rc = parseTruth(textOf(block), &truth.value);
    return rc == sOKAY ? storeResult(block, truth) : rc;
}

// ---- Text to text ---------------------------------------------------------------------------

// Reads long text in pieces from `offset` on. A destination of one byte takes one
// character without a terminator, and tells a size of two.
OAK_RETCODE cnv_strcpyTrunc(CNVCB *block) {
    const size_t rest = block->tSrcLen - block->offset; // the terminator counted
    const size_t limit = block->tDstLen;
    const bool single = limit == 1 && rest != 0 && block->pvDst != nullptr;
    size_t length = rest == 0 ? 0 : rest - 1;
    if (single)
        length = 1;
    else if (overflows(block, rest))
        length = limit - 1;
    if (length == 0 && block->offset != 0)
        return sNODATA;
    block->tSize = length + 1;
    if (block->pvDst == nullptr)
        return sOKAY;
    auto *destination = static_cast<char *>(block->pvDst);
    std::memcpy(destination, textOf(block) + block->offset, length);
    block->offset += length;
    if (single)
        return sOKAY;
    destination[length] = '\0';
    return overflows(block, rest) ? sTRUNCATE : sOKAY;
}

// ---- Binary ---------------------------------------------------------------------------------

OAK_RETCODE cnv_memcpyTrunc(CNVCB *block) {
    size_t count = block->tSrcLen - block->offset;
    if (count == 0 && block->offset != 0)
        return sNODATA;
    OAK_RETCODE rc = sOKAY;
    if (overflows(block, count)) {
        count = block->tDstLen;
        rc = sTRUNCATE;
    }
    if (block->pvDst != nullptr && count != 0) {
        std::memcpy(block->pvDst, static_cast<const uint8_t *>(block->pvSrc) + block->offset,
                    count);
        block->offset += count;
    }
    block->tSize = count;
    return rc;
}

// The raw image of a number. The limit stands as it is given: 0 has room for nothing.
OAK_RETCODE cnv_memcpy(CNVCB *block) {
    block->tSize = block->tSrcLen;
    if (block->tSrcLen > block->tDstLen)
        return eDATALOST;
    if (block->tSrcLen == 0 || block->pvDst == nullptr)
        return sOKAY;
    std::memset(block->pvDst, 0, block->tDstLen);
    std::memcpy(block->pvDst, block->pvSrc, block->tSrcLen);
    return sOKAY;
}

// A limit from 4 GiB up can count as none, since the room is a signed 32-bit number.
OAK_RETCODE cnv_binaryToString(CNVCB *block) {
    size_t count = block->tSrcLen - block->offset;
    if (count == 0 && block->offset != 0)
        return sNODATA;
    OAK_RETCODE rc = sOKAY;
    if (block->pvDst != nullptr && block->tDstLen != 0) {
        const size_t room = (block->tDstLen - HEX_FRAME) / 2; // wraps below three bytes
        if (static_cast<int32_t>(room) < 0) {
            block->tSize = count * 2 + HEX_FRAME;
            return sTRUNCATE;
        }
        if (count > room) {
            count = room;
            rc = sTRUNCATE;
        }
    }
    if (block->pvDst != nullptr) {
        writeHexadecimal(static_cast<const uint8_t *>(block->pvSrc) + block->offset, count,
                         static_cast<char *>(block->pvDst));
        block->offset += count;
    }
    block->tSize = count * 2 + HEX_FRAME;
    return rc;
}

// `offset` counts the bytes that earlier pieces delivered.
OAK_RETCODE cnv_stringToBinary(CNVCB *block) {
    if (block->tSrcLen % 2 == 0)
        return eINVBINLITERAL;
    const char *digits = textOf(block);
    const size_t length = block->tSrcLen - 1;
    size_t count = length / 2;
    if (hasHexPrefix(digits, length)) {
        digits += 2;
        --count;
    }
    if (block->offset != 0 && block->offset >= count)
        return sNODATA;
    count -= block->offset;
    const OAK_RETCODE cut = overflows(block, count) ? sTRUNCATE : sOKAY;
    if (cut == sTRUNCATE)
        count = block->tDstLen;
    const OAK_RETCODE rc =
        readHexadecimal(digits + 2 * block->offset, count, static_cast<uint8_t *>(block->pvDst));
    if (rc != sOKAY)
        return rc;
    block->tSize = count;
    if (block->pvDst != nullptr)
        block->offset += count;
    return cut;
}

OAK_RETCODE cnv_binaryToBoolean(CNVCB *block) {
    if (block->tSrcLen != 1)
        return eDATALOST;
    return storeResult(block, Boolean{load<uint8_t>(block->pvSrc) != 0});
}

OAK_RETCODE cnv_binaryToUuid(CNVCB *block) {
    const size_t rest = block->tSrcLen - block->offset;
    if (rest == 0 && block->offset != 0)
        return sNODATA;
    if (rest < sizeof(OAK_UUID_T))
        return eRANGE;
    const auto uuid = load<OAK_UUID_T>(static_cast<const uint8_t *>(block->pvSrc) + block->offset);
    if (block->pvDst != nullptr)
        block->offset += sizeof uuid;
    return storeResult(block, uuid, rest > sizeof uuid ? sTRUNCATE : sOKAY);
}

// Asks for one byte more than it writes, so that a destination made to measure, as the
// front door makes it, is refused.
OAK_RETCODE cnv_uuidToBinary(CNVCB *block) {
    if (block->tDstLen != 0 && block->tDstLen <= sizeof(OAK_UUID_T))
        return eDATALOST;
    return storeResult(block, load<OAK_UUID_T>(block->pvSrc));
}

OAK_RETCODE cnv_uuidToUuidTrunc(CNVCB *block) {
    return copyValueTrunc(block, sizeof(OAK_UUID_T));
}
