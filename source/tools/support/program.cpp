// What every tool does alike. Rests on the platform layer, the command-line
// framework and the look-up of statuses.
#include "program.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "errorapi.h"

namespace tools {

namespace {

constexpr OAK_CMD_DEFAULTS kStandardOptions = {1, 1}; // neither --key nor --docroot
constexpr auto kFirstProgress = std::chrono::seconds(1);
constexpr auto kNextProgress = std::chrono::milliseconds(200);
constexpr uint32_t kReadBlock = 1 << 16;

} // namespace

std::string status_text(OAK_RETCODE status) {
    const char *text = nullptr;
    const char *name = nullptr;
    if (oakErrorCodeDef(status, &text, &name) != sOKAY) {
        return "status " + std::to_string(static_cast<int32_t>(status));
    }
    return std::string(name) + " (" + text + ")";
}

std::string with_commas(uint64_t number) {
    std::string text = std::to_string(number);
    for (size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, 1, ',');
    }
    return text;
}

std::string counted(uint64_t number, const char *what) {
    return with_commas(number) + " " + what + (number == 1 ? "" : "s");
}

// ---- The command line -------------------------------------------------------

const char *shown_name(const char *name) {
    return std::strcmp(name, kStandardInput) == 0 ? "standard input" : name;
}

// The framework takes a lone "-" for an option without a name, so it gets the
// name of what it stands for.
CommandLine::CommandLine(int argc, char **argv, const char *description,
                         const OAK_CMDLINE_OPT_A *options)
    : argv_(argv, argv + argc) {
    for (const char *&entry : argv_) {
        entry = std::strcmp(entry, "-") == 0 ? kStandardInput : entry;
    }
    argv_.push_back(nullptr);
    const OAK_RETCODE rc = oak_cmdlineInitEx(&cmd_, nullptr, argc, argv_.data(), description,
                                             options, &kStandardOptions, &status_);
    if (rc != sOKAY) {
        exit_now_ = true;
        exit_status_ = rc == sCMD_USAGE || rc == sCMD_VERSION ? kSuccess : kUsage;
        return;
    }
    const char *value = nullptr;
    while (const char *row = oak_cmdlineNextLongOption(&cmd_, &value)) {
        given_.push_back({row, value != nullptr ? value : ""});
    }
}

const char *CommandLine::value(std::string_view row) const {
    const char *found = nullptr;
    for (const Given &given : given_) {
        found = given.row == row ? given.value : found;
    }
    return found;
}

int CommandLine::refuse(const std::string &mistake) {
    osl_log_err("error: %s ('--help' for more information)\n", mistake.c_str());
    exit_now_ = true;
    return exit_status_ = kUsage;
}

const char *CommandLine::required(const char *row) {
    const char *given = value(row);
    if (given == nullptr && !exit_now_) {
        refuse(std::string("Missing option '--") + row + "'");
    }
    return given;
}

// ---- Messages ---------------------------------------------------------------

void say(const char *tool, std::string_view text) {
    osl_log_err("%s: %.*s\n", tool, static_cast<int>(text.size()), text.data());
}

Progress::Progress(const char *tool, const char *unit)
    : tool_(tool), unit_(unit), enabled_(isatty(STDERR_FILENO) == 1),
      next_(std::chrono::steady_clock::now() + kFirstProgress) {}

void Progress::show() {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + kNextProgress;
    shown_ = true;
    osl_log_err("\r%s: %s %s", tool_, with_commas(count_).c_str(), unit_);
    osl_flushErr();
}

void Progress::clear() {
    if (shown_) {
        osl_log_err("\r\x1b[K");
        osl_flushErr();
        shown_ = false;
    }
}

// ---- Standard output --------------------------------------------------------

void Output::flush() {
    if (!text_.empty() && std::fwrite(text_.data(), 1, text_.size(), stdout) != text_.size()) {
        failed_ = true;
    }
    text_.clear();
    if (std::fflush(stdout) != 0) {
        failed_ = true;
    }
}

Complaint Output::finish() {
    flush();
    return failed_ ? "standard output: " + status_text(eBADWRITE) : Complaint();
}

// ---- Files ------------------------------------------------------------------

Complaint File::open(const char *name, int32_t mode) {
    close();
    fh_ = osl_fileOpen(name, mode, 0);
    if (fh_ != nullptr) {
        return {};
    }
    const bool missing = mode == OSL_OPEN_READ && osl_fileValidate(name) == eNOFILE;
    return std::string(shown_name(name)) + ": " + status_text(missing ? eNOFILE : eFILEOPEN);
}

void File::close() {
    osl_fileClose(fh_);
    fh_ = nullptr;
}

Complaint read_file(const char *name, std::string *text) {
    File file;
    if (Complaint complaint = file.open(name, OSL_OPEN_READ); !complaint.empty()) {
        return complaint;
    }
    char block[kReadBlock];
    for (;;) {
        const uint32_t got = osl_fileRead(file.handle(), block, kReadBlock);
        if (got == OSL_READ_ERROR) {
            return std::string(shown_name(name)) + ": " + status_text(eFILEIO);
        }
        text->append(block, got);
        if (got < kReadBlock) {
            return {};
        }
    }
}

} // namespace tools
