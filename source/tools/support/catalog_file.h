// A catalog read from a file, and the columns of a table as the tools see them.
#ifndef CATALOG_FILE_H
#define CATALOG_FILE_H

#include <string>
#include <vector>

#include "program.h"
#include "schema.h"

namespace tools {

/// A catalog's schema for as long as the object lives.
class CatalogFile {
  public:
    CatalogFile() = default;
    ~CatalogFile() { sch_destroy(schema_); }
    CatalogFile(const CatalogFile &) = delete;
    CatalogFile &operator=(const CatalogFile &) = delete;

    /// Reads the file, or standard input. A refusal names line, column, member
    /// and reason.
    Complaint read(const char *name);
    SCH_INFO schema() const { return schema_; }
    /// A table by its name, "_sys_files" included. Null with a complaint that
    /// lists the tables there are.
    SCH_TBL_INFO_C table(const char *name, Complaint *complaint) const;

  private:
    std::string name_;
    SCH_INFO schema_ = nullptr;
};

/// Calls `visit` for each object that one of the schema's iterators finds below
/// `parent`.
template <class Iterate, class Parent, class Visit>
void each(Iterate iterate, Parent parent, Visit visit) {
    for (auto object = iterate(parent, nullptr, OAK_FORWARD); object != nullptr;
         object = iterate(parent, object, OAK_FORWARD)) {
        visit(object);
    }
}

/// The class of a type, OAK_TYPE_CLASS_TEXT and kin.
inline int class_of(OAK_TYPE type) {
    return static_cast<int>(type) & OAK_TYPE_CLASS_MASK;
}

/// What a column is to those who fill it or read it.
enum class ColumnKind {
    plain,       // a scalar in the column data
    text,        // the same with a terminator
    binary,      // the same with a length of its own
    decimal,     // the same, with a precision and a scale
    array,       // of booleans or numbers
    rowid,       // the row's number
    foreign,     // a foreign key column: the join has its value
    large_object // lies in a drawer of its own
};

/// A column of a finalized table, looked up once.
struct Column {
    SCH_COL_INFO_C info;
    const char *name;
    OAK_TYPE type;
    ColumnKind kind;
    OAK_COL_INDEX position;         // among the live columns
    uint32_t offset;                // in the column data
    uint32_t byte_len;              // there
    OAK_HAS_VALUE_OFFSET has_value; // 0: no such byte
    uint16_t elements;              // of an array; 0 for a scalar
    bool nullable;
};

/// What there is to know of a column; a dropped one has no name.
Column column_of(SCH_COL_INFO_C ci);
std::vector<Column> columns_of(SCH_TBL_INFO_C ti);

/// Whether the join that has a foreign key column's value gives the value itself:
/// where the column referred to is the row number of its table.
bool refers_to_rowid(SCH_COL_INFO_C ci);

} // namespace tools

#endif
