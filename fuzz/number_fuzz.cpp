// Numbers and tokens out of any text, against the C library's parsers and
// against their own law: what is refused stores nothing, what is accepted is
// the number that the text is.
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "osltypes.h"

namespace {

void require(bool truth) {
    if (!truth) {
        __builtin_trap();
    }
}

bool has_digit(const std::string &text) {
    return text.find_first_of("0123456789") != std::string::npos;
}

/// Whether the text has nothing but what a number of this system may hold.
bool is_plain(const std::string &text, const char *allowed) {
    return text.find_first_not_of(allowed) == std::string::npos;
}

template <class Number>
bool same_bits(Number left, Number right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

/// The text without the point at its end, which belongs to the number.
std::string without_last_point(const std::string &text) {
    const bool ends_in_point = text.size() > 1 && text.back() == '.' && has_digit(text);
    return ends_in_point ? text.substr(0, text.size() - 1) : text;
}

void check_integers(const std::string &text) {
    const std::string digits = without_last_point(text);
    char *end = nullptr;
    int64_t number = 77;
    const OAK_RETCODE status = osl_atoi64(text.c_str(), &number);
    errno = 0;
    const long long expected = std::strtoll(digits.c_str(), &end, 10);
    const bool whole = end != digits.c_str() && *end == '\0' && errno == 0;
    require(status == (whole ? sOKAY : eRANGE));
    require(number == (whole ? expected : 77));

    uint64_t magnitude = 77;
    const OAK_RETCODE unsigned_status = osl_atoui64(text.c_str(), &magnitude);
    errno = 0;
    const unsigned long long expected_magnitude = std::strtoull(digits.c_str(), &end, 10);
    const bool unsigned_whole = end != digits.c_str() && *end == '\0' && errno == 0 &&
                                digits.find('-') == std::string::npos;
    require(unsigned_status == (unsigned_whole ? sOKAY : eRANGE));
    require(magnitude == (unsigned_whole ? expected_magnitude : 77));
}

template <class Number>
void check_floating(const std::string &text, OAK_RETCODE (*parse)(const char *, Number *),
                    Number (*standard)(const char *, char **)) {
    Number number = 77;
    const OAK_RETCODE status = parse(text.c_str(), &number);
    char *end = nullptr;
    const Number expected = standard(text.c_str(), &end);
    const bool whole = end != text.c_str() && *end == '\0' && std::isfinite(expected) &&
                       is_plain(text, "0123456789+-.eE \t\n\v\f\r");
    require(status == (whole ? sOKAY : eRANGE));
    require(same_bits(number, whole ? expected : Number{77}));
}

void check_atof(const std::string &text) {
    require(same_bits(osl_atof(text.c_str()), std::strtod(text.c_str(), nullptr)));
}

/// Splits the text at its second half's bytes and puts it together again.
void check_tokens(const std::string &text) {
    const std::string delimiters = text.substr(text.size() / 2);
    std::string split = text;
    char **tokens = nullptr;
    uint32_t count = 0;
    require(osl_tokenize(split.data(), delimiters.c_str(), &tokens, &count, 1, 1) == sOKAY);
    size_t at = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const size_t length = std::strlen(tokens[i]);
        require(tokens[i] == split.data() + at);
        require(text.compare(at, length, tokens[i]) == 0);
        require(std::strpbrk(tokens[i], delimiters.c_str()) == nullptr);
        at += length;
        require(i + 1 == count || delimiters.find(text[at]) != std::string::npos);
        ++at;
    }
    require(at == text.size() + 1);
    OSL_FREE(tokens, OSL_TAG_PROCESS);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    text = text.c_str(); // up to the first zero byte
    check_integers(text);
    check_floating<double>(text, osl_strtod, std::strtod);
    check_floating<float>(text, osl_strtof, std::strtof);
    check_atof(text);
    check_tokens(text);
    return 0;
}
