// Text streams, and printing to standard output and standard error. A stream is
// one of the C library's; numbers are printed with a point whatever the locale.
#include "osl_internal.h"

#include <cstdio>
#include <cstring>

namespace {

FILE *file_of(OSL_FILE_STREAM stream) {
    return reinterpret_cast<FILE *>(stream);
}

OSL_FILE_STREAM stream_of(FILE *file) {
    return reinterpret_cast<OSL_FILE_STREAM>(file);
}

struct StandardStream {
    const char *name;
    FILE **file;
};
const StandardStream kStandardStreams[] = {
    {"stdout", &stdout},
    {"stderr", &stderr},
    {"stdin", &stdin},
};

bool is_standard(const FILE *file) {
    return file == stdout || file == stderr || file == stdin;
}

int print(FILE *file, const char *format, va_list args) OSL_PRINTF_LIKE(2, 0);
int print(FILE *file, const char *format, va_list args) {
    const osl::InCLocale in_c_locale;
    return std::vfprintf(file, format, args);
}

} // namespace

OSL_FILE_STREAM osl_fopen(const char *name, const char *mode, uint32_t) {
    if (name == nullptr || mode == nullptr) {
        return nullptr;
    }
    const bool reads = std::strcmp(mode, "r") == 0;
    if ((!reads && std::strcmp(mode, "w") != 0) || osl::refuses(osl::Resource::file)) {
        return nullptr;
    }
    FILE *file = std::fopen(name, reads ? "re" : "we");
    if (file != nullptr) {
        osl::count_live(osl::Live::files, 1);
    }
    return stream_of(file);
}

OSL_FILE_STREAM osl_fopenStd(const char *which) {
    if (which == nullptr || osl::refuses(osl::Resource::file)) {
        return nullptr;
    }
    for (const StandardStream &stream : kStandardStreams) {
        if (std::strcmp(which, stream.name) == 0) {
            return stream_of(*stream.file);
        }
    }
    return nullptr;
}

void osl_fclose(OSL_FILE_STREAM stream) {
    FILE *file = file_of(stream);
    if (file == nullptr) {
        return;
    }
    if (is_standard(file)) {
        std::fflush(file); // the process's own streams stay open
        return;
    }
    std::fclose(file);
    osl::count_live(osl::Live::files, -1);
}

int32_t osl_fprintf(OSL_FILE_STREAM stream, const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int32_t count = stream != nullptr ? print(file_of(stream), format, args) : -1;
    va_end(args);
    return count;
}

int32_t osl_log(const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int32_t count = print(stdout, format, args);
    va_end(args);
    return count;
}

int32_t osl_log_err(const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int32_t count = print(stderr, format, args);
    va_end(args);
    return count;
}

int32_t osl_printfV(const char *format, va_list args) {
    return print(stdout, format, args);
}

int32_t osl_printfErrV(const char *format, va_list args) {
    return print(stderr, format, args);
}

void osl_flush(void) {
    std::fflush(stdout);
}

void osl_flushErr(void) {
    std::fflush(stderr);
}
