// Any text into the CSV reader, once whole and once in small pieces: both must
// see the same records and the same refusal, and what is written of the records
// must read back as they were.
#include <cstring>
#include <string>
#include <vector>

#include "csv.h"

namespace {

struct Field {
    std::string text;
    bool quoted;
    uint64_t line;
    bool operator==(const Field &) const = default;
};

struct Reading {
    std::vector<std::vector<Field>> records;
    std::string complaint;
    bool operator==(const Reading &) const = default;
};

Reading read(const uint8_t *data, size_t size, size_t room) {
    tools::CsvReader reader(
        [&, at = size_t{0}](char *place, uint32_t count) mutable {
            const size_t got = size - at < count ? size - at : count;
            if (got > 0) {
                std::memcpy(place, data + at, got);
            }
            at += got;
            return static_cast<uint32_t>(got);
        },
        room);
    Reading reading;
    while (reader.next() == tools::CsvReader::Outcome::record) {
        reading.records.emplace_back();
        for (const tools::CsvField &field : reader.fields()) {
            if (field.text[field.length] != '\0' || std::strlen(field.text) != field.length) {
                __builtin_trap();
            }
            reading.records.back().push_back({field.text, field.quoted, field.line});
        }
    }
    reading.complaint = reader.complaint();
    return reading;
}

std::string written(const Reading &reading) {
    std::string text;
    for (const auto &record : reading.records) {
        for (const Field &field : record) {
            text += &field == record.data() ? "" : ",";
            tools::append_csv_field(&text, field.text);
        }
        text += '\n';
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const Reading whole = read(data, size, 1 << 16);
    if (!(read(data, size, 1) == whole)) {
        __builtin_trap();
    }
    const std::string text = written(whole);
    const Reading back = read(reinterpret_cast<const uint8_t *>(text.data()), text.size(), 16);
    if (!back.complaint.empty() || written(back) != text ||
        back.records.size() != whole.records.size()) {
        __builtin_trap();
    }
    return 0;
}
