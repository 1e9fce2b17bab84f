// Item files: stored objects one after another, with the numbers of their rows.
//
// Law: a file is a header of 16 bytes and items; an item is a header of 16 bytes
// and a stored object, whose length is a multiple of 16, so that every header
// stands at a multiple of 16. The file header tells how far the file is valid,
// and an append ends by writing it: what stands behind is the rest of an append
// that was cut short, and no reader looks at it. Rows are numbered from 1 without
// a gap. docs/itemfile.md gives the form byte by byte.
//
// A reader takes any bytes: what is damaged is told, item by item, and reading
// goes on at the next item. A writer locks the file, and leaves it as it was
// unless it is told to commit.
#ifndef ITEM_FILE_H
#define ITEM_FILE_H

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "buff.h"
#include "program.h"

namespace tools {

inline constexpr size_t kItemAlignment = 16;
inline constexpr size_t kFileHeaderSize = 16;
inline constexpr size_t kItemHeaderSize = 16;
/// No object is longer, so a damaged length does not make a reader take more.
inline constexpr uint32_t kLongestObject = 1u << 26;

using ItemBytes = std::array<uint8_t, 16>;

/// The 16 bytes of a file header whose file is valid for `valid_length` bytes.
ItemBytes file_header(uint64_t valid_length);
/// The 16 bytes of an item header.
ItemBytes item_header(uint32_t object_length, uint64_t row);

// ---- Reading ----------------------------------------------------------------

/// One item, or a stretch of the file in which none can be recognised.
struct Item {
    uint64_t place = 0;              // of its header
    bool has_header = false;         // false: a stretch without an item
    uint64_t row = 0;                // as the header says
    uint32_t length = 0;             // of the object, as the header says
    std::span<const uint8_t> object; // what there is of it; stands until the next call
    uint64_t end = 0;                // where it ends
    Complaint damage;                // empty: the headers are sound
};

class ItemReader {
  public:
    /// Delivers up to `count` bytes: fewer at the end alone, OSL_READ_ERROR when
    /// reading fails.
    using Source = std::function<uint32_t(uint8_t *place, uint32_t count)>;
    static constexpr size_t kFirstRoom = 1 << 18;

    explicit ItemReader(Source source, size_t first_room = kFirstRoom);

    /// Reads the file header. Not empty: it is damaged, and what follows is read
    /// up to the end of the file.
    Complaint read_header();
    /// The next item or damaged stretch; false at the end.
    bool next(Item *item);

    /// Once next has answered false: where the file ended too early, or could not
    /// be read. Empty: it is whole.
    const Complaint &ending() const { return ending_; }
    /// Bytes behind the valid part, the rest of an append that was cut short.
    uint64_t rest() const { return rest_; }
    /// No byte was there at all.
    bool empty() const { return empty_; }

  private:
    uint64_t position() const { return base_ + begin_; }
    bool has(size_t count);
    bool is_header(size_t place) const;
    uint64_t row_of(size_t place) const;
    const uint8_t *find_header(size_t from, size_t limit);
    bool is_followed(size_t whole, uint64_t next_row);
    void read_item(Item *item);
    const char *fault_of_length(const Item &item);
    void pass_to_header(bool keep);
    void take_row_number(Item *item);
    void finish();

    Source source_;
    std::vector<uint8_t> buffer_;
    uint64_t base_ = 0;  // place in the file of the buffer's first byte
    size_t begin_ = 0;   // of what was not yet delivered
    size_t end_ = 0;     // of what is filled
    size_t pending_ = 0; // length of the item that was delivered last
    uint64_t valid_length_ = UINT64_MAX;
    uint64_t expected_row_ = 1;
    uint64_t last_row_ = 0;
    uint64_t rest_ = 0;
    bool source_ended_ = false;
    bool finished_ = false;
    bool empty_ = false;
    Complaint ending_;
};

/// Reads from an open file at its position, or from memory.
ItemReader::Source item_source(OSL_FH file);
ItemReader::Source item_source(std::span<const uint8_t> bytes);

// ---- Writing ----------------------------------------------------------------

class ItemWriter {
  public:
    ItemWriter();
    ~ItemWriter();
    ItemWriter(const ItemWriter &) = delete;
    ItemWriter &operator=(const ItemWriter &) = delete;

    /// Opens the file, or makes it, locks it and reads on to its end. A file in
    /// which anything is damaged is refused. The name must outlive the writer.
    Complaint open(const char *name);
    /// The number that the next item's row gets.
    uint64_t next_row() const { return next_row_; }
    /// Where the next object is to be appended; its length becomes a multiple of
    /// 16, since that of the buffer is one.
    OAK_BUFFER *begin_item();
    /// Ends the item that was begun.
    Complaint end_item();
    /// Makes what was appended part of the file.
    Complaint commit();

    /// The file's length once committed.
    uint64_t file_length() const { return valid_length_ + written_length_ + out_.len; }
    /// Bytes of the objects that were appended.
    uint64_t object_bytes() const { return object_bytes_; }

  private:
    Complaint examine();
    Complaint write_header(uint64_t valid_length);
    Complaint flush();
    void abandon();
    Complaint complain(OAK_RETCODE status) const;

    Tag tag_;
    File file_;
    const char *name_ = nullptr; // null while nothing is open
    bool made_ = false;          // the file was not there before
    bool is_new_ = false;        // there was no byte in it
    bool touched_ = false;       // something was written
    OAK_BUFFER out_;             // items that are not yet in the file
    size_t item_ = 0;            // where in `out_` the item begins
    uint64_t next_row_ = 1;
    uint64_t old_length_ = 0;     // of the file as it was found, any rest included
    uint64_t valid_length_ = 0;   // of its valid part
    uint64_t written_length_ = 0; // of the items written behind that
    uint64_t object_bytes_ = 0;
};

} // namespace tools

#endif
