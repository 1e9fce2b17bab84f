// A row from a stored object: deciphers nothing, reads the header, decompresses,
// and unpacks by the function that the header calls for.
#ifndef ROW_READER_H
#define ROW_READER_H

#include <span>
#include <string>

#include "catalog_file.h"
#include "dbobjapi.h"
#include "row.h"
#include "value_text.h"

namespace tools {

/// The packed object in a stored one. What is given must outlive it.
class PackedObject {
  public:
    PackedObject();
    ~PackedObject();
    PackedObject(const PackedObject &) = delete;
    PackedObject &operator=(const PackedObject &) = delete;

    /// The statuses of obj_convert_in, and eDBCORRUPTED for an item format that
    /// does not exist; the packed object is there all the same then.
    OAK_RETCODE read(std::span<const uint8_t> stored);
    OAK_BUFFER *packed() { return &packed_; }
    OAK_ITEM_FORMAT format() const { return format_; }
    OSL_MEMTAG tag() const { return tag_; }

  private:
    Tag tag_;
    LZMA lzma_ = nullptr;
    OAK_BUFFER stored_;
    OAK_BUFFER packed_;
    OAK_ITEM_FORMAT format_ = OAK_ITEM_FORMAT_COMPACT;
};

class RowReader {
  public:
    explicit RowReader(SCH_TBL_INFO_C ti);
    ~RowReader();
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    /// Reads the row of a stored object; it stands until the next one is read.
    OAK_RETCODE read(std::span<const uint8_t> stored, OAK_ROWID_T row_number);
    const std::vector<Column> &columns() const { return columns_; }

    enum class State { value, null, elsewhere };
    /// What the row says of a column, with the value. A value that lies
    /// elsewhere is a large object's. eDBCORRUPTED and the statuses of types for
    /// a column whose bytes are no value.
    OAK_RETCODE column(const Column &column, State *state, OAK_VALUE *value) const;

  private:
    State foreign_key(const Column &column, OAK_VALUE *value) const;
    OAK_RETCODE stored_value(const Column &column, State *state, OAK_VALUE *value) const;

    SCH_TBL_INFO_C ti_;
    std::vector<Column> columns_;
    PackedObject object_;
    B_DECODER decoder_ = nullptr;
    OAK_ROW row_{};
};

} // namespace tools

#endif
