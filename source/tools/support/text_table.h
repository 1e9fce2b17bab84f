// A table of texts for people: columns as wide as their widest cell, two blanks
// between them.
#ifndef TEXT_TABLE_H
#define TEXT_TABLE_H

#include <string>
#include <vector>

namespace tools {

class TextTable {
  public:
    /// One row of headings; a heading that begins with '>' aligns its column to
    /// the right.
    explicit TextTable(const std::vector<std::string> &headings);
    /// As many cells as there are headings.
    void add(std::vector<std::string> cells);
    /// Appends the lines, each behind `indent` blanks.
    void print(std::string *out, size_t indent) const;

  private:
    std::vector<bool> right_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace tools

#endif
