// A second decoder of the stored forms, written only to be read: varying integers,
// the types' values, compact and expanded rows, LZMA streams, stored objects. It
// shares no code with the library and knows of it nothing but the description of
// each form; its results are lines of text. Damaged input throws.
//
// The record layout is reckoned here a second time as well: offsets, alignment,
// has-value bytes, the parts of the row buffer.
#ifndef PLAIN_DECODER_H
#define PLAIN_DECODER_H

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace oaktest::plain {

using Bytes = std::vector<uint8_t>;
using Lines = std::vector<std::string>;

inline void check(bool condition, const char *what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

__attribute__((format(printf, 1, 2))) inline std::string text_of(const char *format, ...) {
    char text[400];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

// ---- Bytes -------------------------------------------------------------------

class Reader {
  public:
    explicit Reader(Bytes bytes, size_t at = 0) : bytes_(std::move(bytes)), at_(at) {}

    size_t at() const { return at_; }
    bool at_end() const { return at_ == bytes_.size(); }
    void skip_to(size_t at) { at_ = at; }
    uint8_t byte() {
        check(at_ < bytes_.size(), "the bytes end early");
        return bytes_[at_++];
    }
    Bytes take(size_t count) {
        Bytes taken;
        while (count-- > 0) {
            taken.push_back(byte());
        }
        return taken;
    }
    /// The unsigned varying integer.
    uint64_t u() {
        uint64_t value = 0;
        for (int shift = 0;; shift += 7) {
            const uint8_t next = byte();
            check(shift < 63 || next <= 1, "a varying integer of more than 64 bits");
            value |= uint64_t{next & 0x7fu} << shift;
            if (next < 0x80) {
                return value;
            }
        }
    }
    /// The signed one: 0, 1, 2, 3, 4 stand for 0, -1, 1, -2, 2.
    int64_t s() {
        const uint64_t mapped = u();
        return mapped % 2 == 0 ? static_cast<int64_t>(mapped / 2)
                               : -static_cast<int64_t>(mapped / 2) - 1;
    }
    uint64_t most_significant_first(int count) {
        uint64_t value = 0;
        while (count-- > 0) {
            value = value << 8 | byte();
        }
        return value;
    }
    uint64_t least_significant_first(int count) {
        uint64_t value = 0;
        for (int i = 0; i < count; ++i) {
            value |= uint64_t{byte()} << (8 * i);
        }
        return value;
    }

  private:
    Bytes bytes_;
    size_t at_;
};

// ---- A table as the decoder needs it -----------------------------------------

struct Column {
    unsigned index = 0;
    std::string word; // the catalog's word for the type
    bool named = true;
    bool nullable = true;
    bool foreign = false;
    unsigned length = 0; // bytes of texts and binaries
    unsigned prec = 0, scale = 0;
    unsigned elems = 0; // 0 for a scalar
};

struct Table {
    std::vector<unsigned> avl_numbers; // of the live AVL keys
    unsigned refs = 0;
    std::vector<Column> columns; // live and dropped, in the order of their indexes
};

inline bool is_large_object(const Column &c) {
    return c.word == "blob" || c.word == "clob" || c.word == "wclob";
}
inline bool is_text(const Column &c) {
    return c.word == "char" || c.word == "varchar" || c.word == "wchar" || c.word == "wvarchar";
}

// ---- Values as text ----------------------------------------------------------

inline std::string hex_of(const Bytes &bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        text += text_of("%02x", byte);
    }
    return text;
}

/// Years are counted down from 0001 one by one. A number that is no date is shown as
/// it is.
inline std::string date_text(uint64_t days) {
    if (days == 0 || days > 3652059) {
        return std::to_string(days);
    }
    const auto is_leap = [](unsigned y) { return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0); };
    unsigned year = 1, month = 1;
    for (; days > (is_leap(year) ? 366u : 365u); ++year) {
        days -= is_leap(year) ? 366 : 365;
    }
    const unsigned lengths[] = {31, is_leap(year) ? 29u : 28u, 31, 30, 31, 30, 31, 31, 30, 31, 30,
                                31};
    for (; days > lengths[month - 1]; ++month) {
        days -= lengths[month - 1];
    }
    return text_of("%04u-%02u-%02u", year, month, static_cast<unsigned>(days));
}

inline std::string time_text(uint64_t units) {
    const auto seconds = static_cast<unsigned>(units / 10000);
    return text_of("%02u:%02u:%02u.%04u", seconds / 3600, seconds / 60 % 60, seconds % 60,
                   static_cast<unsigned>(units % 10000));
}

inline std::string zone_text(int64_t minutes) {
    return text_of(" zone %ld", static_cast<long>(minutes));
}

/// Digits of which the first `before_point` stand before the point; zeros in front
/// and at the end of the fraction are left out.
inline std::string decimal_text(bool negative, std::string digits, int before_point) {
    while (before_point < 0) {
        digits.insert(digits.begin(), '0');
        ++before_point;
    }
    while (digits.size() < static_cast<size_t>(before_point)) {
        digits += '0';
    }
    std::string whole = digits.substr(0, static_cast<size_t>(before_point));
    std::string fraction = digits.substr(static_cast<size_t>(before_point));
    whole.erase(0, whole.find_first_not_of('0'));
    fraction.erase(fraction.find_last_not_of('0') + 1);
    const std::string text =
        (whole.empty() ? "0" : whole) + (fraction.empty() ? "" : "." + fraction);
    return negative && text != "0" ? "-" + text : text;
}

inline std::string packed_decimal_text(const Bytes &packed, unsigned prec, unsigned scale) {
    const bool negative = (packed[0] & 0x40) == 0;
    std::string digits;
    for (unsigned digit = 1; digit <= prec; ++digit) {
        const unsigned nibble = digit % 2 == 1 ? packed[digit / 2] & 15u : packed[digit / 2] >> 4;
        check(nibble <= 9, "a nibble that is no digit");
        digits += static_cast<char>('0' + (negative ? 9 - nibble : nibble));
    }
    return decimal_text(negative, digits, static_cast<int>(prec) - static_cast<int>(scale));
}

/// The shortest text that reads back as the number, in any locale.
template <class Float, class Bits>
std::string float_text(Bits bits) {
    static_assert(sizeof(Float) == sizeof(Bits));
    Float value;
    std::memcpy(&value, &bits, sizeof value);
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

inline std::string float_text(uint64_t bits, unsigned size) {
    return size == 4 ? float_text<float>(static_cast<uint32_t>(bits)) : float_text<double>(bits);
}

// ---- The types ---------------------------------------------------------------

struct TypeRow {
    const char *word;
    char kind;      // b boolean, s signed, u unsigned, f floating
    unsigned bytes; // of an element in a record buffer, which is its alignment too
};

inline const TypeRow *number_row(const std::string &word) {
    static const TypeRow rows[] = {
        {"bool", 'b', 4},   {"int8", 's', 1},  {"uint8", 'u', 1},  {"int16", 's', 2},
        {"uint16", 'u', 2}, {"int32", 's', 4}, {"uint32", 'u', 4}, {"int64", 's', 8},
        {"uint64", 'u', 8}, {"rowid", 'u', 8}, {"float", 'f', 4},  {"double", 'f', 8},
    };
    for (const TypeRow &row : rows) {
        if (word == row.word) {
            return &row;
        }
    }
    return nullptr;
}

inline std::string number_from_stream(const TypeRow &row, Reader &in) {
    switch (row.kind) {
        case 'b':
            return in.s() == 1 ? "true" : "false";
        case 's':
            return std::to_string(in.s());
        case 'u':
            return std::to_string(in.u());
        default:
            return float_text(in.most_significant_first(static_cast<int>(row.bytes)), row.bytes);
    }
}

inline std::string number_from_record(const TypeRow &row, Reader &in) {
    const auto bits = static_cast<int>(8 * row.bytes);
    uint64_t raw = in.least_significant_first(static_cast<int>(row.bytes));
    switch (row.kind) {
        case 'b':
            return raw == 1 ? "true" : "false";
        case 's':
            if (bits < 64 && (raw >> (bits - 1)) != 0) {
                raw |= ~uint64_t{0} << bits;
            }
            return std::to_string(static_cast<int64_t>(raw));
        case 'u':
            return std::to_string(raw);
        default:
            return float_text(raw, row.bytes);
    }
}

inline std::string joined(const std::vector<std::string> &elements) {
    std::string text;
    for (const std::string &element : elements) {
        text += (text.empty() ? "" : " ") + element;
    }
    return text;
}

/// The run list: runs, then each with its count, the elements skipped behind it,
/// and its elements.
inline std::string array_from_stream(const TypeRow &row, unsigned elems, Reader &in) {
    std::vector<std::string> elements(elems, row.kind == 'b' ? "false" : "0");
    uint64_t index = 0;
    for (uint64_t runs = in.u(); runs > 0; --runs) {
        const uint64_t count = in.u();
        const uint64_t skip = in.u();
        check(index + count <= elems, "a run beyond the array");
        for (uint64_t i = 0; i < count; ++i) {
            elements[index++] = number_from_stream(row, in);
        }
        index += skip;
    }
    return joined(elements);
}

inline std::string value_from_stream(const Column &c, Reader &in) {
    if (const TypeRow *row = number_row(c.word); row != nullptr) {
        return c.elems > 0 ? array_from_stream(*row, c.elems, in) : number_from_stream(*row, in);
    }
    if (c.word == "decimal") {
        return packed_decimal_text(in.take(c.prec / 2 + 1), c.prec, c.scale);
    }
    if (c.word == "date") {
        return date_text(in.u());
    }
    if (c.word == "time") {
        return time_text(in.u());
    }
    if (c.word == "timetz") {
        const std::string time = time_text(in.u());
        return time + zone_text(in.s());
    }
    if (c.word == "timestamp" || c.word == "timestamptz") {
        const std::string date = date_text(in.u());
        const std::string time = time_text(in.u());
        return date + " " + time + (c.word == "timestamptz" ? zone_text(in.s()) : "");
    }
    if (c.word == "uuid") {
        return hex_of(in.take(16));
    }
    if (is_text(c)) {
        const uint64_t length = in.u();
        check(length < c.length, "a text longer than its column");
        const Bytes text = in.take(length);
        return std::string(text.begin(), text.end());
    }
    if (c.word == "binary") {
        return hex_of(in.take(c.length));
    }
    check(c.word == "varbinary", "a type without a stream form");
    const uint64_t length = in.u();
    check(length <= c.length, "bytes longer than their column");
    return hex_of(in.take(length));
}

inline std::string value_from_record(const Column &c, Reader &in) {
    if (const TypeRow *row = number_row(c.word); row != nullptr) {
        std::vector<std::string> elements;
        for (unsigned i = 0; i < std::max(c.elems, 1u); ++i) {
            elements.push_back(number_from_record(*row, in));
        }
        return joined(elements);
    }
    const auto number = [&in] { return in.least_significant_first(4); };
    const auto zone = [&in] { return static_cast<int16_t>(in.least_significant_first(2)); };
    if (c.word == "decimal") {
        const unsigned prec = in.byte();
        const auto exp = static_cast<int8_t>(in.byte());
        in.byte(); // flags
        const auto sign = static_cast<int8_t>(in.byte());
        in.byte(); // the carry slot
        std::string digits;
        for (unsigned i = 0; i < prec; ++i) {
            digits += static_cast<char>('0' + in.byte());
        }
        return decimal_text(sign < 0, digits, exp);
    }
    if (c.word == "date") {
        return date_text(number());
    }
    if (c.word == "time") {
        return time_text(number());
    }
    if (c.word == "timetz") {
        const std::string time = time_text(number());
        return time + zone_text(zone());
    }
    if (c.word == "timestamp" || c.word == "timestamptz") {
        const std::string date = date_text(number());
        const std::string time = time_text(number());
        return date + " " + time + (c.word == "timestamptz" ? zone_text(zone()) : "");
    }
    if (c.word == "uuid") {
        return hex_of(in.take(16));
    }
    if (is_text(c)) {
        std::string text;
        while (const uint8_t byte = in.byte()) {
            text += static_cast<char>(byte);
        }
        return text;
    }
    if (c.word == "binary") {
        return hex_of(in.take(c.length));
    }
    check(c.word == "varbinary", "a type without a place in a record");
    return hex_of(in.take(in.least_significant_first(2)));
}

// ---- Layout ------------------------------------------------------------------

struct Extent {
    size_t size, alignment;
};

inline Extent extent_of(const Column &c) {
    if (const TypeRow *row = number_row(c.word); row != nullptr) {
        return {row->bytes * std::max(c.elems, 1u), row->bytes};
    }
    static const std::map<std::string, Extent> fixed = {
        {"decimal", {37, 1}},  {"date", {4, 4}},         {"time", {4, 4}},  {"timetz", {8, 4}},
        {"timestamp", {8, 4}}, {"timestamptz", {12, 4}}, {"uuid", {16, 4}},
    };
    if (const auto found = fixed.find(c.word); found != fixed.end()) {
        return found->second;
    }
    return c.word == "varbinary" ? Extent{c.length + 2, 2} : Extent{c.length, 1};
}

inline size_t rounded_up(size_t offset, size_t multiple) {
    return (offset + multiple - 1) / multiple * multiple;
}

struct Layout {
    std::map<unsigned, size_t> value_at; // by column index, in the column data
    std::map<unsigned, size_t> has_value_at;
    size_t joins_at = 0, statuses_at = 0, columns_at = 0, size = 0;
};

inline Layout layout_of(const Table &table) {
    Layout layout;
    size_t end = 0, widest = 1, live = 0;
    for (const Column &c : table.columns) {
        live += c.named ? 1 : 0;
        if (c.named && !is_large_object(c)) {
            const Extent extent = extent_of(c);
            layout.value_at[c.index] = rounded_up(end, extent.alignment);
            end = layout.value_at[c.index] + extent.size;
            widest = std::max(widest, extent.alignment);
        }
    }
    for (const Column &c : table.columns) {
        if (c.named && c.nullable) {
            if (end != 0) { // 0 stands for "no such byte"
                layout.has_value_at[c.index] = end;
            }
            ++end;
        }
    }
    layout.joins_at = rounded_up(24 * table.avl_numbers.size(), 8);
    layout.statuses_at = rounded_up(layout.joins_at + 8 * table.refs, 8);
    layout.columns_at = rounded_up(layout.statuses_at + 4 * live, 8);
    layout.size = layout.columns_at + rounded_up(end, widest);
    return layout;
}

// ---- Rows --------------------------------------------------------------------

inline std::string avl_line(uint64_t number, uint64_t left, uint64_t right, uint64_t flags) {
    return "avl " + std::to_string(number) + ": left " + std::to_string(left) + " right " +
           std::to_string(right) + " flags " + std::to_string(flags);
}
inline std::string join_line(uint64_t ref, uint64_t owner) {
    return "join " + std::to_string(ref) + ": owner " + std::to_string(owner);
}
inline std::string column_line(unsigned index, const std::string &value) {
    return std::to_string(index) + ":" + (value.empty() ? "" : " " + value);
}

inline const Column &column_at(const Table &table, uint64_t index) {
    for (const Column &c : table.columns) {
        if (c.index == index) {
            return c;
        }
    }
    throw std::runtime_error("a column that the table does not have");
}

/// What a compact row says, in its order; a dropped column's value is passed over.
inline Lines compact_row(const Table &table, Reader &in) {
    Lines lines;
    for (uint64_t keys = in.u(); keys > 0; --keys) {
        const uint64_t number = in.u(), left = in.u(), right = in.u(), flags = in.u();
        lines.push_back(avl_line(number, left, right, flags));
    }
    for (uint64_t joins = in.u(); joins > 0; --joins) {
        const uint64_t ref = in.u(), owner = in.u();
        lines.push_back(join_line(ref, owner));
    }
    while (const uint64_t size = in.u()) {
        const uint64_t first = in.u();
        for (uint64_t index = first; index < first + size; ++index) {
            const Column &c = column_at(table, index);
            if (is_large_object(c)) {
                in.u(); // the mark
                lines.push_back(column_line(c.index, "large object"));
            } else {
                const std::string value = value_from_stream(c, in);
                if (c.named) {
                    lines.push_back(column_line(c.index, value));
                }
            }
        }
    }
    return lines;
}

/// What an expanded row says of what a compact row would hold: no rowid, no value
/// behind a join, no join without an owner.
inline Lines expanded_row(const Table &table, Reader &in) {
    constexpr uint32_t kValue = 1, kNoValue = 0; // statuses
    const Layout layout = layout_of(table);
    check(in.least_significant_first(8) == layout.size, "not the length of the table's rows");
    const Bytes image = in.take(layout.size);
    Lines lines;
    Reader avls(image);
    for (const unsigned number : table.avl_numbers) {
        const uint64_t flags = avls.least_significant_first(2);
        avls.take(6);
        const uint64_t left = avls.least_significant_first(8);
        lines.push_back(avl_line(number, left, avls.least_significant_first(8), flags));
    }
    Reader joins(image, layout.joins_at);
    for (unsigned ref = 0; ref < table.refs; ++ref) {
        if (const uint64_t owner = joins.least_significant_first(8); owner != 0) {
            lines.push_back(join_line(ref, owner));
        }
    }
    Reader statuses(image, layout.statuses_at);
    for (const Column &c : table.columns) {
        if (!c.named) {
            continue;
        }
        const uint64_t status = statuses.least_significant_first(4);
        const auto has_value = layout.has_value_at.find(c.index);
        if (c.foreign || c.word == "rowid" ||
            (has_value != layout.has_value_at.end() &&
             image[layout.columns_at + has_value->second] == 0)) {
            continue;
        }
        if (is_large_object(c) && (status == kValue || status == kNoValue)) {
            lines.push_back(column_line(c.index, "large object"));
        } else if (status == kValue) {
            Reader value(image, layout.columns_at + layout.value_at.at(c.index));
            lines.push_back(column_line(c.index, value_from_record(c, value)));
        }
    }
    return lines;
}

// ---- LZMA --------------------------------------------------------------------

class LzmaDecoder {
  public:
    explicit LzmaDecoder(Reader &in) : in_(in) {}

    Bytes run() {
        const uint64_t size = in_.u();
        for (int i = 0; i < 5; ++i) {
            code_ = code_ << 8 | in_.byte();
        }
        while (out_.size() < size) {
            packet();
        }
        return out_;
    }

  private:
    /// A table of adaptive probabilities, all of them one half at first.
    using Models = std::map<unsigned, unsigned>;

    void normalize() {
        if (range_ < (1u << 24)) {
            range_ <<= 8;
            code_ = code_ << 8 | in_.byte();
        }
    }
    unsigned bit(Models &models, unsigned index) {
        unsigned &prob = models.try_emplace(index, 1024).first->second;
        normalize();
        const uint32_t bound = (range_ >> 11) * prob;
        if (code_ < bound) {
            range_ = bound;
            prob += (2048 - prob) >> 5;
            return 0;
        }
        code_ -= bound;
        range_ -= bound;
        prob -= prob >> 5;
        return 1;
    }
    unsigned fixed(unsigned bits) {
        unsigned value = 0;
        while (bits-- > 0) {
            normalize();
            range_ >>= 1;
            const unsigned one = code_ >= range_ ? 1 : 0;
            code_ -= one * range_;
            value = value * 2 + one;
        }
        return value;
    }
    /// A tree whose models begin at `base`; the bits so far, behind a 1, choose.
    unsigned tree(Models &models, unsigned base, unsigned bits) {
        unsigned index = 1;
        for (unsigned i = 0; i < bits; ++i) {
            index = index * 2 + bit(models, base + index);
        }
        return index - (1u << bits);
    }
    unsigned tree_reverse(Models &models, unsigned base, unsigned bits) {
        unsigned index = 1, value = 0;
        for (unsigned i = 0; i < bits; ++i) {
            const unsigned next = bit(models, base + index);
            index = index * 2 + next;
            value |= next << i;
        }
        return value;
    }
    unsigned position() const { return static_cast<unsigned>(out_.size()) & 3; }

    void packet() {
        if (bit(is_match_, state_ * 16 + position()) == 0) {
            literal();
        } else if (bit(rep_, state_) == 0) {
            match();
        } else {
            repeat();
        }
    }
    void literal() {
        static const unsigned next[] = {0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 4, 5};
        const unsigned context = (out_.empty() ? 0u : out_.back() >> 5) * 0x300;
        unsigned index = 1;
        bool matching = state_ >= 7;
        const unsigned expected = matching ? out_.at(out_.size() - 1 - reps_[0]) : 0;
        for (int shift = 7; shift >= 0; --shift) {
            const unsigned match_bit = expected >> shift & 1;
            const unsigned set = matching ? (match_bit + 1) * 0x100 : 0;
            const unsigned value = bit(lit_, context + set + index);
            matching = matching && value == match_bit;
            index = index * 2 + value;
        }
        out_.push_back(static_cast<uint8_t>(index));
        state_ = next[state_];
    }
    unsigned length() {
        if (bit(choice_, 0) == 0) {
            return 2 + tree(low_, position() * 8, 3);
        }
        if (bit(choice_, 1) == 0) {
            return 10 + tree(mid_, position() * 8, 3);
        }
        return 18 + tree(high_, 0, 8);
    }
    unsigned distance(unsigned length) {
        const unsigned slot = tree(slot_, std::min(length - 2, 3u) * 64, 6);
        if (slot < 4) {
            return slot;
        }
        const unsigned bits = slot / 2 - 1;
        const unsigned base = (2 + slot % 2) << bits;
        if (slot < 14) {
            return base + tree_reverse(special_, slot * 64, bits);
        }
        const unsigned high = fixed(bits - 4);
        return base + high * 16 + tree_reverse(align_, 0, 4);
    }
    void copy(unsigned length) {
        check(reps_[0] < out_.size(), "a distance before the first byte");
        while (length-- > 0) {
            out_.push_back(out_[out_.size() - 1 - reps_[0]]);
        }
    }
    void match() {
        const unsigned len = length();
        const unsigned pos = distance(len);
        reps_.insert(reps_.begin(), pos);
        reps_.pop_back();
        state_ = state_ < 7 ? 7 : 10;
        copy(len);
    }
    void repeat() {
        unsigned index = 0;
        if (bit(rep0_, state_) == 0) {
            if (bit(rep0_long_, state_ * 16 + position()) == 0) {
                state_ = state_ < 7 ? 8 : 11; // a short repeat
                copy(1);
                return;
            }
        } else if (bit(rep1_, state_) == 0) {
            index = 1;
        } else {
            index = 2 + bit(rep2_, state_);
        }
        const unsigned pos = reps_[index];
        reps_.erase(reps_.begin() + index);
        reps_.insert(reps_.begin(), pos);
        const unsigned len = length();
        state_ = state_ < 7 ? 9 : 11;
        copy(len);
    }

    Reader &in_;
    Bytes out_;
    uint32_t range_ = 0xffffffff, code_ = 0;
    unsigned state_ = 0;
    std::vector<unsigned> reps_ = {0, 0, 0, 0};
    Models lit_, is_match_, rep_, rep0_, rep0_long_, rep1_, rep2_;
    Models slot_, special_, align_, choice_, low_, mid_, high_;
};

inline Bytes lzma_stream(Reader &in) {
    return LzmaDecoder(in).run();
}

// ---- Stored objects ----------------------------------------------------------

struct StoredObject {
    unsigned format; // 1 compact, 2 expanded
    unsigned method; // 1 stored, 2 LZMA, 4 ZERO
    Bytes object;    // with the padding, where it was stored
};

inline StoredObject stored_object(const Bytes &bytes) {
    check(bytes.size() % 16 == 0, "not padded to a multiple of 16");
    Reader in(bytes);
    const uint64_t header = in.u();
    StoredObject result{static_cast<unsigned>(header >> 4), static_cast<unsigned>(header & 15), {}};
    if (result.method == 1) {
        result.object = in.take(bytes.size() - in.at());
        return result;
    }
    check(result.method == 2 || result.method == 4, "an unknown method");
    result.object = lzma_stream(in);
    return result;
}

} // namespace oaktest::plain

#endif
