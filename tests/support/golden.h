// Reads the text files of tests/golden. Tables (.txt): a row is a line, '#' begins
// a comment line, and what a line holds is the reader's affair. Stored forms
// (.hex): a line '@ name' begins a case, its bytes follow in hex with '#' comments,
// and lines '= text' say what they mean.
#ifndef GOLDEN_H
#define GOLDEN_H

#include <fstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace oaktest {

/// The lines of tests/golden/`name` that are neither empty nor a comment.
inline std::vector<std::string> golden_lines(const std::string &name) {
    std::ifstream file(std::string(OAK_SOURCE_DIR "/tests/golden/") + name);
    EXPECT_TRUE(file.is_open()) << name;
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            lines.push_back(line);
        }
    }
    return lines;
}

struct GoldenCase {
    std::string name;
    std::vector<uint8_t> bytes;
    std::vector<std::string> meaning;
};

/// The cases of tests/golden/`file`, in their order.
inline std::vector<GoldenCase> golden_cases(const std::string &file) {
    std::vector<GoldenCase> cases;
    for (const std::string &line : golden_lines(file)) {
        if (line[0] == '@') {
            cases.push_back({line.substr(2), {}, {}});
            continue;
        }
        if (cases.empty()) {
            ADD_FAILURE() << file << ": a line before the first case";
            return {};
        }
        if (line[0] == '=') {
            cases.back().meaning.push_back(line.size() > 2 ? line.substr(2) : "");
        } else {
            const std::vector<uint8_t> bytes = unhex(line);
            cases.back().bytes.insert(cases.back().bytes.end(), bytes.begin(), bytes.end());
        }
    }
    EXPECT_FALSE(cases.empty()) << file;
    return cases;
}

} // namespace oaktest

#endif
