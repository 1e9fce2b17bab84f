// What every tool does alike: its command line, its messages, its output.
//
// Law: results go to standard output through one Output, messages and progress
// to standard error. A function that can fail returns a Complaint, a text for
// the user that is empty when all went well. Exit statuses: 0 success, 1 failure
// or damage, 2 a wrong command line.
#ifndef PROGRAM_H
#define PROGRAM_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "oakcmdlineapi.h"

namespace tools {

enum ExitStatus : int { kSuccess = 0, kFailure = 1, kUsage = 2 };

/// What went wrong, for the user; empty when nothing did.
using Complaint = std::string;

/// "eRANGE (Numeric value out of range)".
std::string status_text(OAK_RETCODE status);

/// "12,345".
std::string with_commas(uint64_t number);
/// "1 row", "12,345 rows".
std::string counted(uint64_t number, const char *what);

// ---- Memory -----------------------------------------------------------------

/// A memory tag for as long as the object lives.
class Tag {
  public:
    Tag() : tag_(OSL_CREATE_TAG()) {}
    ~Tag() { OSL_FREE_TAG(tag_); }
    Tag(const Tag &) = delete;
    Tag &operator=(const Tag &) = delete;
    operator OSL_MEMTAG() const { return tag_; }

  private:
    OSL_MEMTAG tag_;
};

// ---- The command line -------------------------------------------------------

/// The name by which the tools open standard input; "-" on the command line.
inline constexpr char kStandardInput[] = "/dev/stdin";

/// A name as it is told to the user.
const char *shown_name(const char *name);

/// The command line of one tool. Every row of the table has a name: a long name,
/// or for positional arguments its first text.
class CommandLine {
  public:
    /// Checks the command line; `exit_now` tells that help was shown or a
    /// mistake was told, and `exit_status` how to end then.
    CommandLine(int argc, char **argv, const char *description, const OAK_CMDLINE_OPT_A *options);

    bool exit_now() const { return exit_now_; }
    int exit_status() const { return exit_status_; }
    bool quiet() const { return status_.quiet == OAK_TRUE; }

    /// The last value given for a row, an empty text for a flag; null when it was
    /// not given.
    const char *value(std::string_view row) const;
    bool has(std::string_view row) const { return value(row) != nullptr; }
    /// The same for an option that must be given; says so when it is not.
    const char *required(const char *row);
    /// Tells the user a mistake of the command line and returns kUsage.
    int refuse(const std::string &mistake);

  private:
    struct Given {
        std::string_view row;
        const char *value;
    };
    std::vector<const char *> argv_;
    OAK_CMDLINE_A cmd_{};
    OAK_CMDLINE_STATUS_A status_{};
    std::vector<Given> given_;
    bool exit_now_ = false;
    int exit_status_ = kSuccess;
};

// ---- Messages ---------------------------------------------------------------

/// Writes "tool: text" and a newline to standard error.
void say(const char *tool, std::string_view text);

/// Shows on standard error how far work that takes longer than a second has
/// come, when that is a terminal.
class Progress {
  public:
    Progress(const char *tool, const char *unit);
    ~Progress() { clear(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Counts one more; looks at the clock now and then.
    void step() {
        if (++count_ % kStepsPerLook == 0 && enabled_) {
            show();
        }
    }
    /// Takes the line back.
    void clear();

  private:
    static constexpr uint64_t kStepsPerLook = 1024;
    void show();

    const char *tool_;
    const char *unit_;
    bool enabled_;
    bool shown_ = false;
    uint64_t count_ = 0;
    std::chrono::steady_clock::time_point next_;
};

// ---- Standard output --------------------------------------------------------

/// Standard output, buffered. What was appended is written at the latest by
/// finish, which tells whether all of it arrived.
class Output {
  public:
    Output() = default;
    ~Output() { flush(); }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /// Where results are appended; call `poll` now and then to keep it small.
    std::string &text() { return text_; }
    Output &operator<<(std::string_view text) {
        text_ += text;
        poll();
        return *this;
    }
    void poll() {
        if (text_.size() >= kBlock) {
            flush();
        }
    }
    void flush();
    /// Writes what is left. Not empty: standard output could not be written.
    Complaint finish();

  private:
    static constexpr size_t kBlock = 1 << 16;
    std::string text_;
    bool failed_ = false;
};

// ---- Files ------------------------------------------------------------------

/// A file for as long as the object lives.
class File {
  public:
    File() = default;
    ~File() { close(); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    /// Takes the other's file over.
    File &operator=(File &&other) noexcept {
        std::swap(fh_, other.fh_);
        return *this;
    }

    /// Opens `name` with one of the OSL_OPEN_ modes.
    Complaint open(const char *name, int32_t mode);
    void close();
    OSL_FH handle() const { return fh_; }
    explicit operator bool() const { return fh_ != nullptr; }

  private:
    OSL_FH fh_ = nullptr;
};

/// Reads a whole file, or standard input, into `text`.
Complaint read_file(const char *name, std::string *text);

} // namespace tools

#endif
