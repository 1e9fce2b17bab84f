// A column's value as the text that stands for it in a CSV file, and back.
//
// The text of a value is the one form of it: booleans true and false, integers
// in decimal, a double as the shorter of %.15g and %.17g that reads back the
// same, a float likewise of %.6g and %.9g, decimals with the digits of their
// column's scale, dates YYYY-MM-DD, times HH:MM:SS.FFFF, zones behind a blank as
// +HH:MM, UUIDs without braces, binary as 0x and upper-case hexadecimal digits,
// text as it stands, arrays as ARRAY[1,2,3]. Reading takes what oak_valueConvert
// takes, with one exception: a date or time is taken whole or not at all, where
// the conversions pass over what stands behind it.
#ifndef VALUE_TEXT_H
#define VALUE_TEXT_H

#include <string>

#include "catalog_file.h"
#include "oaktypes.h"

namespace tools {

/// Appends the text of a vsOKAY value of the column. eDBCORRUPTED for a boolean
/// that is neither 0 nor 1; what the library says to a value that has no text,
/// such as a day that is none.
OAK_RETCODE append_value_text(std::string *out, const Column &column, const OAK_VALUE &value);

/// Appends bytes as 0x and hexadecimal digits.
void append_hex(std::string *out, const void *data, size_t length);

/// A field's value. Payloads point into `text`, or lie in the converter's tag
/// until the next conversion.
class FieldConverter {
  public:
    /// Converts a terminated text, which may be changed, to the column's type; to
    /// an OAK_UINT64 for a row number. sOKAY; sTRUNCATE for a number whose digits
    /// behind the point an integer does not take, or bytes that a binary does not;
    /// sPRECISIONLOSS and sUNDERFLOW as decimals give them; else why it does not
    /// convert, with `detail` telling more where the status does not say all.
    OAK_RETCODE convert(const Column &column, char *text, size_t length, OAK_VALUE *value);
    const char *detail() const { return detail_.c_str(); }
    /// Frees what the last conversion allocated.
    void release(const Column &column, OAK_VALUE *value);

  private:
    OAK_RETCODE convert_array(const Column &column, char *text, size_t length, OAK_VALUE *value);
    Tag tag_;
    std::string detail_;
    std::vector<uint64_t> elements_; // room for an array, aligned for any element
};

} // namespace tools

#endif
