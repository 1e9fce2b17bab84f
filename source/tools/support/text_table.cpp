// A table of texts for people.
#include "text_table.h"

#include <algorithm>

namespace tools {

namespace {

// Characters of a UTF-8 text.
size_t width_of(const std::string &text) {
    size_t width = 0;
    for (const char ch : text) {
        width += (static_cast<unsigned char>(ch) & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

} // namespace

TextTable::TextTable(const std::vector<std::string> &headings) {
    std::vector<std::string> cells;
    for (const std::string &heading : headings) {
        right_.push_back(heading.starts_with('>'));
        cells.push_back(heading.substr(right_.back() ? 1 : 0));
    }
    rows_.push_back(std::move(cells));
}

void TextTable::add(std::vector<std::string> cells) {
    cells.resize(right_.size());
    rows_.push_back(std::move(cells));
}

void TextTable::print(std::string *out, size_t indent) const {
    std::vector<size_t> widths(right_.size(), 0);
    for (const auto &row : rows_) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], width_of(row[i]));
        }
    }
    for (const auto &row : rows_) {
        std::string line(indent, ' ');
        for (size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - width_of(row[i]), ' ');
            line += (i > 0 ? "  " : "") + (right_[i] ? blanks + row[i] : row[i] + blanks);
        }
        line.resize(line.find_last_not_of(' ') + 1);
        *out += line + '\n';
    }
}

} // namespace tools
