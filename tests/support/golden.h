// Reads the text tables of tests/golden: a row is a line, '#' begins a comment
// line, and what a line holds is the reader's affair.
#ifndef GOLDEN_H
#define GOLDEN_H

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

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

} // namespace oaktest

#endif
