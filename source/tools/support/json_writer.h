// Prints JSON for programs: one value after the other, commas and quotes where
// they belong.
//
// Law: the text is always valid JSON as long as containers are closed in the
// order in which they were opened and every member of an object has its key.
// What is no UTF-8 is shown as U+FFFD. Nothing stands between the values but
// the line breaks that the caller asks for.
#ifndef JSON_WRITER_H
#define JSON_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// How many bytes the UTF-8 character at the front of `text` has; 0 when it is
/// none.
size_t utf8_length(std::string_view text);

class JsonWriter {
  public:
    /// Appends to `out`, which the caller empties when it likes.
    explicit JsonWriter(std::string *out) : out_(out) {}

    JsonWriter &begin_object() { return open('{'); }
    JsonWriter &end_object() { return close('}'); }
    JsonWriter &begin_array() { return open('['); }
    JsonWriter &end_array() { return close(']'); }
    JsonWriter &key(std::string_view name);
    JsonWriter &text(std::string_view text);
    JsonWriter &text_or_null(const char *text);
    JsonWriter &number(int64_t value);
    JsonWriter &unsigned_number(uint64_t value);
    JsonWriter &boolean(bool value);
    JsonWriter &null();

    /// Begins a line: the next value, or what closes the container, stands on it.
    JsonWriter &line();

    /// Whole members.
    JsonWriter &member(std::string_view name, std::string_view value) {
        return key(name).text(value);
    }
    JsonWriter &member(std::string_view name, const char *value) {
        return key(name).text_or_null(value);
    }
    JsonWriter &member_number(std::string_view name, uint64_t value) {
        return key(name).unsigned_number(value);
    }
    JsonWriter &member_boolean(std::string_view name, bool value) {
        return key(name).boolean(value);
    }

  private:
    void separate();
    JsonWriter &open(char bracket);
    JsonWriter &close(char bracket);
    JsonWriter &word(std::string_view word);
    void quote(std::string_view text);

    std::string *out_;
    std::vector<bool> filled_; // for each open container: it has a value
    bool after_key_ = false;
    bool line_ = false;
};

} // namespace tools

#endif
