// Comma-separated values as RFC 4180 has them, read and written.
//
// Law of the reader: a record is fields between commas, and ends at a line feed,
// with or without a carriage return before it, or at the end of the text. A field
// that begins with a quote ends at the next single quote and holds everything in
// between, line breaks included, two quotes standing for one. Refused are a
// quote inside an unquoted field, anything but a comma or a line end behind a
// closing quote, a quote that never closes, and a zero byte. An empty line is a
// record of one empty field. A byte order mark at the start is passed over.
//
// The fields of a record are terminated texts in the reader's own buffer and
// stand until the next record is read; they may be changed in place. Reading
// allocates nothing but for records longer than any before.
#ifndef CSV_H
#define CSV_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "osltypes.h"

namespace tools {

struct CsvField {
    char *text;    // terminated
    size_t length; // bytes, the terminator not counted
    uint64_t line; // where it begins, from 1
    bool quoted;   // an empty field that was quoted is a text, an unquoted one none
};

class CsvReader {
  public:
    /// Delivers up to `count` bytes: fewer at the end alone, OSL_READ_ERROR when
    /// reading fails.
    using Source = std::function<uint32_t(char *place, uint32_t count)>;
    static constexpr size_t kFirstRoom = 1 << 18;

    explicit CsvReader(Source source, size_t first_room = kFirstRoom);

    enum class Outcome { record, end, refused };
    /// Reads the next record. Behind a refusal there is no reading on.
    Outcome next();
    const std::vector<CsvField> &fields() const { return fields_; }
    /// The line on which the record begins.
    uint64_t line() const { return record_line_; }
    /// Why the text is refused, with the line: "line 3: ...".
    const std::string &complaint() const { return complaint_; }
    /// Bytes that were read from the source.
    uint64_t bytes_read() const { return bytes_read_; }

  private:
    // A field of the record being looked for, by its place in the buffer, while
    // nothing has been changed yet.
    struct Slice {
        size_t start;
        size_t length;
        uint64_t line;
        bool quoted;
        bool doubled; // holds doubled quotes
    };
    enum class Scan { comma, line_end, text_end, more, refused };

    bool refill();
    void pass_byte_order_mark();
    Scan scan_record();
    Scan scan_field();
    Scan scan_unquoted();
    Scan scan_quoted();
    Scan close_quoted(Slice slice);
    Scan refuse(uint64_t line, const char *why);
    void take_fields();

    Source source_;
    std::vector<char> buffer_; // one byte more than is ever filled
    size_t begin_ = 0;         // of the record
    size_t end_ = 0;           // of what is filled
    size_t next_ = 0;          // what is scanned next
    uint64_t line_ = 1;        // of the byte at next_
    uint64_t record_line_ = 1;
    uint64_t bytes_read_ = 0;
    bool at_start_ = true;
    bool source_ended_ = false;
    std::vector<Slice> slices_;
    std::vector<CsvField> fields_;
    std::string complaint_;
};

/// Appends one field, quoted where it has to be: an empty text is "", NULL is
/// nothing, and a text that begins with a byte order mark keeps it.
void append_csv_field(std::string *out, std::string_view text);

} // namespace tools

#endif
