// The status codes as an independent table in the test tree tells them, for the
// tests of the tables, the look-ups and the tools.
#ifndef RETCODE_ROWS_H
#define RETCODE_ROWS_H

#include <optional>
#include <sstream>

#include "golden.h"
#include "oakretcodetypes.h"

namespace oaktest {

struct RetcodeRow {
    OAK_RETCODE code;
    std::string name;
    std::optional<std::string> sqlstate;
};

inline std::vector<RetcodeRow> retcode_rows() {
    std::vector<RetcodeRow> rows;
    for (const std::string &line : golden_lines("retcodes.txt")) {
        std::istringstream fields(line);
        int32_t code = 0;
        std::string name;
        std::string sqlstate;
        fields >> code >> name >> sqlstate;
        rows.push_back({static_cast<OAK_RETCODE>(code), name,
                        sqlstate == "-" ? std::nullopt : std::optional(sqlstate)});
    }
    return rows;
}

/// A text of C, or nothing where it is null.
inline std::optional<std::string> optional_text(const char *text) {
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

} // namespace oaktest

#endif
