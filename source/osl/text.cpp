// Building and printing text: into buffers, into new texts under a tag, through
// output callbacks. Numbers are printed with a point whatever the locale.
//
// A text is first printed into a buffer on the stack, which nearly always is
// enough; a longer one is printed a second time into a block of the right size.
#include "osl_internal.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr size_t kStackText = 512;

/// A formatted text: on the stack where it is short, else in a block of its own.
struct Formatted {
    char stack[kStackText];
    char *text;
    size_t length;
};

/// Prints anew into a block of `length` + 1 bytes under the tag.
OAK_RETCODE format_block(Formatted *out, OSL_MEMTAG tag, const char *file, int32_t line,
                         const char *format, va_list args) OSL_PRINTF_LIKE(5, 0);
OAK_RETCODE format_block(Formatted *out, OSL_MEMTAG tag, const char *file, int32_t line,
                         const char *format, va_list args) {
    void *block = nullptr;
    const OAK_RETCODE status =
        osl_getMem_rc(out->length + 1, tag, OSL_MEM_PLAIN, nullptr, &block, file, line);
    if (status == sOKAY) {
        out->text = static_cast<char *>(block);
        osl::format_text(out->text, out->length + 1, format, args);
    }
    return status;
}

/// Prints on the stack if the text is short, else under the tag.
OAK_RETCODE print(Formatted *out, OSL_MEMTAG tag, const char *file, int32_t line,
                  const char *format, va_list args) OSL_PRINTF_LIKE(5, 0);
OAK_RETCODE print(Formatted *out, OSL_MEMTAG tag, const char *file, int32_t line,
                  const char *format, va_list args) {
    va_list again;
    va_copy(again, args);
    const int length = osl::format_text(out->stack, kStackText, format, args);
    OAK_RETCODE status = length < 0 ? eINVARG : sOKAY;
    out->text = out->stack;
    out->length = static_cast<size_t>(length);
    if (status == sOKAY && out->length >= kStackText) {
        status = format_block(out, tag, file, line, format, again);
    }
    va_end(again);
    return status;
}

/// Releases what was printed under tag 1.
void release(Formatted *formatted) {
    if (formatted->text != formatted->stack) {
        OSL_FREE(formatted->text, OSL_TAG_PROCESS);
    }
}

OAK_RETCODE make_text(const char *file, int32_t line, OSL_MEMTAG tag, const char *format,
                      va_list args, char **out) OSL_PRINTF_LIKE(4, 0);
OAK_RETCODE make_text(const char *file, int32_t line, OSL_MEMTAG tag, const char *format,
                      va_list args, char **out) {
    if (format == nullptr || out == nullptr) {
        return eINVNULLARG;
    }
    Formatted made;
    OAK_RETCODE status = print(&made, tag, file, line, format, args);
    void *block = made.text;
    if (status == sOKAY && made.text == made.stack) {
        status = osl_getMem_rc(made.length + 1, tag, OSL_MEM_COPY, made.stack, &block, file, line);
    }
    if (status == sOKAY) {
        *out = static_cast<char *>(block);
    }
    return status;
}

/// Appends to `old`, which the arguments may point into: so the new part is
/// printed before the old text moves.
OAK_RETCODE append_text(const char *file, int32_t line, OSL_MEMTAG tag, char *old,
                        const char *format, va_list args, char **out) OSL_PRINTF_LIKE(5, 0);
OAK_RETCODE append_text(const char *file, int32_t line, OSL_MEMTAG tag, char *old,
                        const char *format, va_list args, char **out) {
    if (old == nullptr) {
        return make_text(file, line, tag, format, args, out);
    }
    if (format == nullptr || out == nullptr) {
        return eINVNULLARG;
    }
    Formatted added;
    OAK_RETCODE status = print(&added, OSL_TAG_PROCESS, file, line, format, args);
    if (status != sOKAY) {
        return status;
    }
    const size_t old_length = std::strlen(old);
    void *block = nullptr;
    status = osl_extendMem_rc(old, old_length + added.length + 1, tag, OSL_MEM_PLAIN, added.length,
                              nullptr, &block, file, line);
    if (status == sOKAY) {
        *out = static_cast<char *>(block);
        std::memcpy(*out + old_length, added.text, added.length + 1);
    }
    release(&added);
    return status;
}

/// Sends a text through a callback, a byte a call. The bounded UTF-8 buffer, which
/// takes characters, is given the text's characters.
OAK_RETCODE send(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *text, size_t length) {
    if (fcn == osl_emitCharAsUtf8) {
        osl::append_utf8(static_cast<OAK_OUTPUT_BUFF *>(ctx), text, length);
        return sOKAY;
    }
    OAK_RETCODE status = sOKAY;
    for (size_t i = 0; i < length && status == sOKAY; ++i) {
        status = fcn(ctx, static_cast<uint8_t>(text[i]));
    }
    return status;
}

} // namespace

namespace osl {

int format_text(char *buffer, size_t size, const char *format, va_list args) {
    const InCLocale in_c_locale;
    return std::vsnprintf(buffer, size, format, args);
}

} // namespace osl

char *osl_makeStrV(const char *file, int32_t line, OSL_MEMTAG tag, const char *format,
                   va_list args) {
    char *text = nullptr;
    OAK_IGNORE_STATUS(make_text(file, line, tag, format, args, &text), "a null text tells");
    return text;
}

char *osl_makeStrVA(const char *file, int32_t line, OSL_MEMTAG tag, const char *format, ...) {
    va_list args;
    va_start(args, format);
    char *text = osl_makeStrV(file, line, tag, format, args);
    va_end(args);
    return text;
}

OAK_RETCODE osl_makeStrVA_rc(const char *file, int32_t line, char **pText, OSL_MEMTAG tag,
                             const char *format, ...) {
    va_list args;
    va_start(args, format);
    const OAK_RETCODE status = make_text(file, line, tag, format, args, pText);
    va_end(args);
    return status;
}

char *osl_appendStrVA(const char *file, int32_t line, OSL_MEMTAG tag, char *old, const char *format,
                      ...) {
    va_list args;
    va_start(args, format);
    char *text = nullptr;
    OAK_IGNORE_STATUS(append_text(file, line, tag, old, format, args, &text), "a null text tells");
    va_end(args);
    return text;
}

OAK_RETCODE osl_appendStrVA_rc(const char *file, int32_t line, char **pText, OSL_MEMTAG tag,
                               char *old, const char *format, ...) {
    va_list args;
    va_start(args, format);
    const OAK_RETCODE status = append_text(file, line, tag, old, format, args, pText);
    va_end(args);
    return status;
}

int32_t osl_snprintf(char *buffer, size_t size, const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int length = osl::format_text(buffer, size, format, args);
    va_end(args);
    return length;
}

OAK_RETCODE osl_fnprintf(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *format, ...) {
    if (fcn == nullptr || format == nullptr) {
        return eINVNULLARG;
    }
    Formatted formatted;
    va_list args;
    va_start(args, format);
    OAK_RETCODE status = print(&formatted, OSL_TAG_PROCESS, __FILE__, __LINE__, format, args);
    va_end(args);
    if (status == sOKAY) {
        status = send(fcn, ctx, formatted.text, formatted.length);
        release(&formatted);
    }
    return status;
}

OAK_RETCODE osl_outputString(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *text) {
    if (fcn == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    return send(fcn, ctx, text, std::strlen(text));
}

char *osl_strncpyZ(char *destination, const char *source, size_t size) {
    if (destination == nullptr || size == 0) {
        return destination;
    }
    const size_t length = source != nullptr ? strnlen(source, size - 1) : 0;
    std::memmove(destination, source != nullptr ? source : "", length);
    destination[length] = '\0';
    return destination;
}

OAK_RETCODE osl_tokenize(char *text, const char *delimiters, char ***pTokens, uint32_t *pCount,
                         uint32_t, uint32_t) {
    if (text == nullptr || delimiters == nullptr || pTokens == nullptr || pCount == nullptr) {
        return eINVNULLARG;
    }
    uint32_t count = 1;
    for (const char *at = std::strpbrk(text, delimiters); at != nullptr;
         at = std::strpbrk(at + 1, delimiters)) {
        ++count;
    }
    void *block = nullptr;
    const OAK_RETCODE status = osl_getMem_rc(count * sizeof(char *), OSL_TAG_PROCESS, OSL_MEM_PLAIN,
                                             nullptr, &block, __FILE__, __LINE__);
    if (status != sOKAY) {
        return status;
    }
    auto **tokens = static_cast<char **>(block);
    for (uint32_t i = 0; i < count; ++i) {
        tokens[i] = text;
        text += std::strcspn(text, delimiters);
        *text++ = '\0';
    }
    *pTokens = tokens;
    *pCount = count;
    return sOKAY;
}
