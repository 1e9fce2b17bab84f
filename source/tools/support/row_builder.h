// A row in buffer form from the fields of a CSV record.
//
// Law: a field that is not there or empty and unquoted is NULL; a column that
// the CSV does not name gets its default, a keyword's value being that of the
// moment when the builder was prepared, and a new UUID for each row. A rowid
// column has the row's number; a field for it is empty or that number. A foreign
// key column that refers to the row number of its table becomes the join of its
// reference; other foreign key columns, and large objects, have their values
// outside the row and can only be NULL.
//
// The row belongs to the builder and stands until the next one is begun.
#ifndef ROW_BUILDER_H
#define ROW_BUILDER_H

#include "csv.h"
#include "row.h"
#include "value_text.h"

namespace tools {

class RowBuilder {
  public:
    explicit RowBuilder(SCH_TBL_INFO_C ti);
    RowBuilder(const RowBuilder &) = delete;
    RowBuilder &operator=(const RowBuilder &) = delete;

    /// Takes the header record, which names the columns in any order and case.
    Complaint prepare(const std::vector<CsvField> &header);
    /// Builds the row of a record. Not empty: the line, the column and why.
    Complaint build(const std::vector<CsvField> &record, uint64_t line, OAK_ROWID_T row_number);
    const OAK_ROW &row() const { return row_; }

    /// Fields of which fraction digits were dropped, and where the first one is.
    uint64_t fractions_lost() const { return fractions_lost_; }
    const std::string &first_fraction_lost() const { return first_fraction_lost_; }

  private:
    static constexpr size_t kNotInCsv = SIZE_MAX;
    enum class Generated { none, uuid };
    struct Target {
        Column column;
        size_t field = kNotInCsv;
        Generated generated = Generated::none;
    };

    Complaint find_columns(const std::vector<CsvField> &header);
    Complaint set_defaults();
    Complaint set_default(Target *target);
    Complaint set_field(const Target &target, const CsvField &field);
    Complaint set_missing(const Target &target, uint64_t line);
    Complaint set_new_uuid(const Column &column, uint64_t line);
    std::string more_about(const Column &column, const CsvField &field, OAK_RETCODE status) const;
    void note_fraction(const Column &column, uint64_t line);
    OAK_RETCODE store(const Column &column, const OAK_VALUE &value);
    OAK_RETCODE copy(const Column &column, const OAK_VALUE &value);
    OAK_RETCODE store_decimal(const Column &column, const OAK_VALUE &value);
    OAK_RETCODE store_row_number(const Column &column, const OAK_VALUE &value);
    OAK_RETCODE store_join(const Column &column, const OAK_VALUE &value);
    void mark(const Column &column);
    void point();

    SCH_TBL_INFO_C ti_;
    OAK_ROW_BUFFER_INFO layout_;
    std::vector<Target> targets_;
    size_t header_fields_ = 0;
    std::vector<uint64_t> row_buffer_; // the row's block, aligned
    std::vector<uint64_t> template_;   // NULLs and the defaults that stand for every row
    OAK_ROW row_{};
    FieldConverter converter_;
    uint64_t fractions_lost_ = 0;
    std::string first_fraction_lost_;
};

} // namespace tools

#endif
