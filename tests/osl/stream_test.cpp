// Text streams and printing to the process's own streams.
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "test_support.h"

namespace {

/// Sends one of the process's descriptors into a file for a scope.
class Capture {
  public:
    explicit Capture(int descriptor) : descriptor_(descriptor), saved_(dup(descriptor)) {
        std::fflush(nullptr);
        file_ = std::tmpfile();
        dup2(fileno(file_), descriptor_);
    }
    ~Capture() {
        dup2(saved_, descriptor_);
        close(saved_);
        std::fclose(file_);
    }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    /// What has arrived in the file.
    std::string text() const {
        std::string text(1000, '\0');
        const ssize_t got = pread(fileno(file_), text.data(), text.size(), 0);
        text.resize(got > 0 ? static_cast<size_t>(got) : 0);
        return text;
    }

  private:
    int descriptor_;
    int saved_;
    FILE *file_;
};

int32_t print_v(const char *format, ...) OSL_PRINTF_LIKE(1, 2);
int32_t print_v(const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int32_t count = osl_printfV(format, args);
    va_end(args);
    return count;
}

int32_t print_err_v(const char *format, ...) OSL_PRINTF_LIKE(1, 2);
int32_t print_err_v(const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int32_t count = osl_printfErrV(format, args);
    va_end(args);
    return count;
}

std::string temporary_path() {
    return (std::filesystem::temp_directory_path() /
            ("osl_stream_test_" + std::to_string(getpid())))
        .string();
}

} // namespace

TEST(Stream, WritesAndReadsATextFile) {
    const std::string path = temporary_path();
    OSL_FILE_STREAM stream = osl_fopen(path.c_str(), "w", 0);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(osl_fprintf(stream, "Error %d (%s): %.1f", -7, "eFAIL", 1.5), 21);
    osl_fclose(stream);
    std::ifstream in(path);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(text, "Error -7 (eFAIL): 1.5");
    stream = osl_fopen(path.c_str(), "r", 0);
    EXPECT_NE(stream, nullptr);
    EXPECT_LT(osl_fprintf(stream, "x"), 0) << "opened for reading";
    osl_fclose(stream);
    std::filesystem::remove(path);
}

TEST(Stream, RefusesOtherModesAndMissingFiles) {
    const std::string path = temporary_path();
    EXPECT_EQ(osl_fopen(path.c_str(), "r", 0), nullptr);
    for (const char *mode : {"", "a", "rw", "w+", "rb", "x"}) {
        EXPECT_EQ(osl_fopen(path.c_str(), mode, 0), nullptr) << mode;
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(osl_fopen(nullptr, "r", 0), nullptr);
    EXPECT_EQ(osl_fopen(path.c_str(), nullptr, 0), nullptr);
    EXPECT_LT(osl_fprintf(nullptr, "x"), 0);
    osl_fclose(nullptr);
}

TEST(Stream, KnowsTheProcesssOwnAndNeverClosesThem) {
    for (const char *name : {"stdout", "stderr", "stdin"}) {
        OSL_FILE_STREAM stream = osl_fopenStd(name);
        EXPECT_NE(stream, nullptr) << name;
        osl_fclose(stream);
    }
    for (const char *name : {"", "STDOUT", "stdlog"}) {
        EXPECT_EQ(osl_fopenStd(name), nullptr);
    }
    EXPECT_EQ(osl_fopenStd(nullptr), nullptr);
    const Capture capture(STDOUT_FILENO);
    EXPECT_EQ(osl_fprintf(osl_fopenStd("stdout"), "still open"), 10);
    osl_flush();
    EXPECT_EQ(capture.text(), "still open");
}

TEST(Printing, GoesToStandardOutput) {
    const Capture capture(STDOUT_FILENO);
    EXPECT_EQ(osl_log("usage: %s ", "tool"), 12);
    EXPECT_EQ(print_v("%05.2f|%s", 1.5, "é"), 8) << "bytes are counted";
    osl_flush();
    EXPECT_EQ(capture.text(), "usage: tool 01.50|é");
}

TEST(Printing, GoesToStandardError) {
    const Capture capture(STDERR_FILENO);
    EXPECT_EQ(osl_log_err("error: %d ", 7), 9);
    EXPECT_EQ(print_err_v("%s", "more"), 4);
    osl_flushErr();
    EXPECT_EQ(capture.text(), "error: 7 more");
}

TEST(Printing, WritesAPointUnderACommaLocale) {
    const std::string old = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    const Capture capture(STDOUT_FILENO);
    osl_log("%.1f", 2.5);
    osl_flush();
    EXPECT_EQ(capture.text(), "2.5");
    std::setlocale(LC_ALL, old.c_str());
}

TEST(Stream, ReportsWhatCannotBeOpened) {
    const std::string path = temporary_path();
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::file, {eFILEOPEN}, [&] {
        OSL_FILE_STREAM stream = osl_fopen(path.c_str(), "w", 0);
        OSL_FILE_STREAM out = osl_fopenStd("stdout");
        osl_fclose(stream);
        return stream != nullptr && out != nullptr ? sOKAY : eFILEOPEN;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 4u : 0u);
    std::filesystem::remove(path);
}
