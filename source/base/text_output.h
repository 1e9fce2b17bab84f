// Internal to the value modules: a finished text on its way out, through an output
// function or into a caller's buffer. Rests on the platform's UTF-8 buffer; called
// by datetime.cpp and uuid.cpp, whose texts are ASCII and short.
//
// Law: a text that fits is copied; only one that is cut or measured goes through the
// platform's buffer, which has the rules of cutting in one place.
#ifndef TEXT_OUTPUT_H
#define TEXT_OUTPUT_H

#include <cstring>

#include "osltypes.h"

// What became of a text; both counts include the terminator.
struct TextDelivery {
    size_t written; // bytes in the buffer
    size_t needed;  // bytes that the whole text takes
};

// Emits `length` characters; the first status other than sOKAY ends the run.
inline OAK_RETCODE emitText(const char *text, size_t length, OAK_OUTPUT_FCN fcn,
                            OAK_OUTPUT_CTX ctx) {
    for (size_t i = 0; i < length; ++i) {
        const OAK_RETCODE rc = fcn(ctx, static_cast<uint8_t>(text[i]));
        if (rc != sOKAY)
            return rc;
    }
    return sOKAY;
}

inline TextDelivery cutOrMeasureText(const char *text, size_t length, char *buf, size_t bufSize) {
    OAK_OUTPUT_BUFF out;
    osl_utf8BuffInit(&out, buf, bufSize);
    OAK_IGNORE_STATUS(emitText(text, length, osl_emitCharAsUtf8, &out),
                      "a full buffer goes on counting, and ASCII is always valid");
    osl_utf8BuffTerm(&out);
    return {out.used_chars, out.needed_chars};
}

// Writes a terminated text into a buffer; `buf` may be null to measure alone.
inline TextDelivery deliverText(const char *text, size_t length, char *buf, size_t bufSize) {
    if (buf == nullptr || length >= bufSize)
        return cutOrMeasureText(text, length, buf, bufSize);
    std::memcpy(buf, text, length);
    buf[length] = '\0';
    return {length + 1, length + 1};
}

#endif
