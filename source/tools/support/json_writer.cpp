// Prints JSON for programs.
#include "json_writer.h"

namespace tools {

namespace {

// How many bytes a character has whose first byte is `lead`; 0 for none.
size_t length_by_lead(unsigned lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

unsigned byte_at(std::string_view text, size_t place) {
    return static_cast<unsigned char>(text[place]);
}

} // namespace

size_t utf8_length(std::string_view text) {
    const unsigned lead = byte_at(text, 0);
    const size_t length = length_by_lead(lead);
    if (length > text.size()) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byte_at(text, i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    if (length < 3) {
        return length;
    }
    const unsigned second = byte_at(text, 1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool no_character = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return overlong || no_character ? 0 : length;
}

void JsonWriter::separate() {
    if (!after_key_ && !filled_.empty()) {
        if (filled_.back()) {
            *out_ += ',';
        }
        filled_.back() = true;
    }
    if (line_) {
        *out_ += '\n';
    }
    line_ = after_key_ = false;
}

JsonWriter &JsonWriter::open(char bracket) {
    separate();
    *out_ += bracket;
    filled_.push_back(false);
    return *this;
}

JsonWriter &JsonWriter::close(char bracket) {
    if (line_) {
        *out_ += '\n';
        line_ = false;
    }
    *out_ += bracket;
    filled_.pop_back();
    return *this;
}

JsonWriter &JsonWriter::word(std::string_view word) {
    separate();
    *out_ += word;
    return *this;
}

void JsonWriter::quote(std::string_view text) {
    static constexpr char kDigits[] = "0123456789abcdef";
    *out_ += '"';
    while (!text.empty()) {
        const size_t length = utf8_length(text);
        const unsigned first = byte_at(text, 0);
        if (length == 0) {
            *out_ += "\\ufffd";
        } else if (first == '"' || first == '\\') {
            *out_ += '\\';
            *out_ += text[0];
        } else if (first < ' ') {
            *out_ += "\\u00";
            *out_ += kDigits[first >> 4];
            *out_ += kDigits[first & 15];
        } else {
            *out_ += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    *out_ += '"';
}

JsonWriter &JsonWriter::key(std::string_view name) {
    separate();
    quote(name);
    *out_ += ':';
    after_key_ = true;
    return *this;
}

JsonWriter &JsonWriter::text(std::string_view text) {
    separate();
    quote(text);
    return *this;
}

JsonWriter &JsonWriter::text_or_null(const char *text) {
    return text != nullptr ? this->text(std::string_view(text)) : null();
}

JsonWriter &JsonWriter::number(int64_t value) {
    return word(std::to_string(value));
}

JsonWriter &JsonWriter::unsigned_number(uint64_t value) {
    return word(std::to_string(value));
}

JsonWriter &JsonWriter::boolean(bool value) {
    return word(value ? "true" : "false");
}

JsonWriter &JsonWriter::null() {
    return word("null");
}

JsonWriter &JsonWriter::line() {
    line_ = true;
    return *this;
}

} // namespace tools
