// Running the programs as users run them, in a directory of the test's own, and a
// catalog that has a column of every type.
#ifndef TOOL_RUN_H
#define TOOL_RUN_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "catalog.h"
#include "test_support.h"

namespace oaktest {

using Strings = std::vector<std::string>;

struct Result {
    int status = -1; // of exit; 128 and the signal where there was one
    std::string out;
    std::string err;
};

inline std::string shell_word(const std::string &word) {
    std::string text = "'";
    for (const char ch : word) {
        text += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
    }
    return text + "'";
}

inline std::string read_all(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline void write_all(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary) << text;
}

/// A directory that goes with the object, and the programs run in it.
class Workplace {
  public:
    Workplace()
        : path_((std::filesystem::temp_directory_path() /
                 ("oaktools." + std::to_string(osl_get_pid()) + "." + std::to_string(next_++)))
                    .string()) {
        std::filesystem::create_directory(path_);
    }
    ~Workplace() { std::filesystem::remove_all(path_); }
    Workplace(const Workplace &) = delete;
    Workplace &operator=(const Workplace &) = delete;

    std::string path(const std::string &name) const { return path_ + "/" + name; }
    void write(const std::string &name, const std::string &text) const {
        write_all(path(name), text);
    }
    std::string read(const std::string &name) const { return read_all(path(name)); }
    bool has(const std::string &name) const { return std::filesystem::exists(path(name)); }

    /// Runs a tool with the arguments in this directory.
    Result run(const std::string &tool, const Strings &args, const std::string &input = "") const {
        write("stdin", input);
        std::string command =
            "cd " + shell_word(path_) + " && " + shell_word(OAK_BINARY_DIR "/" + tool);
        for (const std::string &arg : args) {
            command += " " + shell_word(arg);
        }
        const int status = std::system((command + " <stdin >stdout 2>stderr").c_str());
        const int exit = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return {exit, read("stdout"), read("stderr")};
    }

  private:
    static inline int next_ = 0;
    std::string path_;
};

inline std::string example(const char *name) {
    return std::string(OAK_SOURCE_DIR "/examples/") + name;
}

/// A column of a catalog: its name, the members of its type, and further members.
inline std::string column(int id, const std::string &name, const std::string &type,
                          const std::string &more = "") {
    return R"({"colid": )" + std::to_string(id) + R"(, "name": ")" + name +
           R"(", "type": {"data_type": )" + type + "}" + (more.empty() ? "" : ", " + more) + "}";
}

/// The types of the table "t", in order.
struct TypedColumn {
    const char *name;
    const char *type;
};
inline constexpr TypedColumn kTypedColumns[] = {
    {"a_bool", R"("bool")"},
    {"a_int8", R"("int8")"},
    {"a_uint8", R"("uint8")"},
    {"a_int16", R"("int16")"},
    {"a_uint16", R"("uint16")"},
    {"a_int32", R"("int32")"},
    {"a_uint32", R"("uint32")"},
    {"a_int64", R"("int64")"},
    {"a_uint64", R"("uint64")"},
    {"a_float", R"("float")"},
    {"a_double", R"("double")"},
    {"a_decimal", R"("decimal", "length": 10, "scale": 3)"},
    {"a_date", R"("date")"},
    {"a_time", R"("time")"},
    {"a_timetz", R"("timetz")"},
    {"a_timestamp", R"("timestamp")"},
    {"a_timestamptz", R"("timestamptz")"},
    {"a_rowid", R"("rowid")"},
    {"a_uuid", R"("uuid")"},
    {"a_char", R"("char", "length": 9)"},
    {"a_varchar", R"("varchar", "length": 9)"},
    {"a_wchar", R"("wchar", "length": 9)"},
    {"a_wvarchar", R"("wvarchar", "length": 9)"},
    {"a_binary", R"("binary", "length": 3)"},
    {"a_varbinary", R"("varbinary", "length": 5)"},
    {"bools", R"("bool", "noelts": 2)"},
    {"int8s", R"("int8", "noelts": 3)"},
    {"uint16s", R"("uint16", "noelts": 1)"},
    {"int64s", R"("int64", "noelts": 2)"},
    {"floats", R"("float", "noelts": 2)"},
    {"doubles", R"("double", "noelts": 3)"},
};
inline constexpr int kTypedCount = sizeof kTypedColumns / sizeof kTypedColumns[0];

inline std::string typed_catalog() {
    std::string columns;
    for (int i = 0; i < kTypedCount; ++i) {
        columns += (i > 0 ? ",\n" : "") + column(i, kTypedColumns[i].name, kTypedColumns[i].type);
    }
    return one_table(columns, kTypedCount);
}

inline std::string typed_header() {
    std::string header;
    for (const TypedColumn &column : kTypedColumns) {
        header += (header.empty() ? "" : ",") + std::string(column.name);
    }
    return header + "\n";
}

/// Whether a text is one JSON value; sees to nesting, commas, quotes and words.
class JsonCheck {
  public:
    static bool is_valid(const std::string &text) {
        JsonCheck check(text);
        return check.value() && (check.blanks(), check.at_ == text.size());
    }

  private:
    explicit JsonCheck(const std::string &text) : text_(text) {}
    void blanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n')) {
            ++at_;
        }
    }
    bool take(const std::string &word) {
        blanks();
        if (text_.compare(at_, word.size(), word) != 0) {
            return false;
        }
        at_ += word.size();
        return true;
    }
    bool quoted() {
        if (!take("\"")) {
            return false;
        }
        for (; at_ < text_.size() && text_[at_] != '"'; ++at_) {
            if (static_cast<unsigned char>(text_[at_]) < ' ') {
                return false;
            }
            at_ += text_[at_] == '\\' ? 1 : 0;
        }
        return take("\"");
    }
    bool number() {
        const size_t start = at_;
        while (at_ < text_.size() && (std::isdigit(text_[at_]) != 0 || text_[at_] == '-')) {
            ++at_;
        }
        return at_ > start;
    }
    bool member(bool in_object) { return !in_object || (quoted() && take(":")); }
    bool list(const char *end, bool in_object) {
        if (take(end)) {
            return true;
        }
        do {
            if (!member(in_object) || !value()) {
                return false;
            }
        } while (take(","));
        return take(end);
    }
    bool value() {
        blanks();
        if (take("{")) {
            return list("}", true);
        }
        if (take("[")) {
            return list("]", false);
        }
        return take("true") || take("false") || take("null") || quoted() || number();
    }

    const std::string &text_;
    size_t at_ = 0;
};

} // namespace oaktest

#endif
