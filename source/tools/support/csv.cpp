// Comma-separated values. A record is found whole before a byte of it is
// changed, so that one that crosses the end of the buffer can be looked for again
// from its start once more is there; then its fields are terminated and doubled
// quotes made single in place.
#include "csv.h"

#include <array>
#include <cstring>

namespace tools {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr size_t kLeastRoom = 4; // so that the first read sees the mark

// The characters at which an unquoted field is looked at.
constexpr std::array<bool, 256> make_stops() {
    std::array<bool, 256> stops{};
    for (const unsigned char ch : {',', '\n', '"', '\0'}) {
        stops[ch] = true;
    }
    return stops;
}
constexpr std::array<bool, 256> kStops = make_stops();

size_t single_quotes(char *text, size_t length) {
    char *to = text;
    for (size_t i = 0; i < length; ++i) {
        *to++ = text[i];
        i += text[i] == '"' ? 1 : 0;
    }
    return static_cast<size_t>(to - text);
}

} // namespace

CsvReader::CsvReader(Source source, size_t first_room)
    : source_(std::move(source)), buffer_((first_room > kLeastRoom ? first_room : kLeastRoom) + 1) {
}

CsvReader::Outcome CsvReader::next() {
    if (at_start_) {
        pass_byte_order_mark();
    }
    if (!complaint_.empty()) {
        return Outcome::refused;
    }
    const uint64_t line = record_line_ = line_;
    for (;;) {
        if (source_ended_ && begin_ == end_) {
            return Outcome::end;
        }
        next_ = begin_;
        line_ = line;
        const Scan scan = begin_ == end_ ? Scan::more : scan_record();
        if (scan == Scan::more && refill()) {
            continue;
        }
        if (scan == Scan::more || scan == Scan::refused) {
            return Outcome::refused;
        }
        take_fields();
        begin_ = next_;
        return Outcome::record;
    }
}

// Makes room behind what is filled and fills it; false when reading fails. Once
// the source has ended no scan asks for more.
bool CsvReader::refill() {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    if (end_ > buffer_.size() / 2) {
        buffer_.resize(buffer_.size() * 2);
    }
    const size_t room = buffer_.size() - 1 - end_;
    const uint32_t wanted = static_cast<uint32_t>(room < UINT32_MAX / 2 ? room : UINT32_MAX / 2);
    const uint32_t got = source_(buffer_.data() + end_, wanted);
    if (got == OSL_READ_ERROR) {
        complaint_ = "the text cannot be read";
        return false;
    }
    end_ += got;
    bytes_read_ += got;
    source_ended_ = got < wanted;
    return true;
}

void CsvReader::pass_byte_order_mark() {
    at_start_ = false;
    if (refill() && std::string_view(buffer_.data(), end_).starts_with(kByteOrderMark)) {
        begin_ = kByteOrderMark.size();
    }
}

CsvReader::Scan CsvReader::scan_record() {
    slices_.clear();
    Scan scan = Scan::comma;
    while (scan == Scan::comma) {
        scan = scan_field();
    }
    return scan;
}

CsvReader::Scan CsvReader::scan_field() {
    if (next_ == end_ && !source_ended_) {
        return Scan::more;
    }
    return next_ < end_ && buffer_[next_] == '"' ? scan_quoted() : scan_unquoted();
}

CsvReader::Scan CsvReader::scan_unquoted() {
    Slice slice = {next_, 0, line_, false, false};
    buffer_[end_] = '\n'; // the scan ends here at the latest
    const char *at = buffer_.data() + next_;
    while (!kStops[static_cast<unsigned char>(*at)]) {
        ++at;
    }
    next_ = static_cast<size_t>(at - buffer_.data());
    slice.length = next_ - slice.start;
    if (next_ == end_) {
        slices_.push_back(slice);
        return source_ended_ ? Scan::text_end : Scan::more;
    }
    const char stop = buffer_[next_++];
    if (stop == '"') {
        return refuse(line_, "a quote inside a field that does not begin with one");
    }
    if (stop == '\0') {
        return refuse(line_, "a zero byte");
    }
    if (stop == '\n') {
        ++line_;
        slice.length -= slice.length > 0 && at[-1] == '\r' ? 1 : 0;
    }
    slices_.push_back(slice);
    return stop == ',' ? Scan::comma : Scan::line_end;
}

CsvReader::Scan CsvReader::scan_quoted() {
    Slice slice = {next_ + 1, 0, line_, true, false};
    for (++next_; next_ < end_; ++next_) {
        const char ch = buffer_[next_];
        if (ch == '\0') {
            return refuse(line_, "a zero byte");
        }
        line_ += ch == '\n' ? 1 : 0;
        if (ch != '"') {
            continue;
        }
        if (next_ + 1 == end_ && !source_ended_) {
            return Scan::more;
        }
        if (next_ + 1 == end_ || buffer_[next_ + 1] != '"') {
            return close_quoted(slice);
        }
        slice.doubled = true;
        ++next_;
    }
    return source_ended_ ? refuse(slice.line, "a quoted field begins here and never ends")
                         : Scan::more;
}

// What stands behind the closing quote at next_.
CsvReader::Scan CsvReader::close_quoted(Slice slice) {
    slice.length = next_++ - slice.start;
    slices_.push_back(slice);
    const bool carriage_return = next_ < end_ && buffer_[next_] == '\r';
    if (carriage_return && next_ + 1 == end_ && !source_ended_) {
        return Scan::more;
    }
    if (carriage_return && next_ + 1 < end_ && buffer_[next_ + 1] == '\n') {
        ++next_;
    }
    if (next_ == end_) {
        return Scan::text_end;
    }
    const char stop = buffer_[next_++];
    line_ += stop == '\n' ? 1 : 0;
    if (stop != ',' && stop != '\n') {
        return refuse(line_, "neither a comma nor a line end behind a closing quote");
    }
    return stop == ',' ? Scan::comma : Scan::line_end;
}

CsvReader::Scan CsvReader::refuse(uint64_t line, const char *why) {
    complaint_ = "line " + std::to_string(line) + ": " + why;
    return Scan::refused;
}

void CsvReader::take_fields() {
    fields_.clear();
    for (const Slice &slice : slices_) {
        char *text = buffer_.data() + slice.start;
        const size_t length = slice.doubled ? single_quotes(text, slice.length) : slice.length;
        text[length] = '\0';
        fields_.push_back({text, length, slice.line, slice.quoted});
    }
}

void append_csv_field(std::string *out, std::string_view text) {
    if (!text.empty() && !text.starts_with(kByteOrderMark) &&
        text.find_first_of("\",\r\n") == std::string_view::npos) {
        *out += text;
        return;
    }
    *out += '"';
    for (const char ch : text) {
        out->append(ch == '"' ? 2 : 1, ch);
    }
    *out += '"';
}

} // namespace tools
