// The stored forms against the bytes of tests/golden: what the library writes is
// what stands there, what stands there reads back, and the plain decoder finds the
// same in it. Behind the golden bytes, random values and rows that both decoders
// must agree on.
#include <bit>
#include <cstring>
#include <functional>
#include <map>
#include <string>

#include "bcd.h"
#include "catalog.h"
#include "datetime.h"
#include "dbobjapi.h"
#include "encoder_internal.h"
#include "golden.h"
#include "plain_table.h"
#include "rich_catalog.h"
#include "row_bench.h"
#include "type_descriptors.h"
#include "uuid.h"

namespace {

using namespace oaktest;

std::string hex_text(const Bytes &bytes) {
    return hex(bytes.data(), bytes.size());
}

/// Record forms and expanded rows are in the machine's order; the golden ones are
/// those of a little-endian machine.
constexpr bool kGoldenOrder = std::endian::native == std::endian::little;
#define NEEDS_GOLDEN_ORDER()                                                                       \
    if (!kGoldenOrder)                                                                             \
    GTEST_SKIP() << "the golden bytes are those of a little-endian machine"

/// A buffer with the bytes, read through a decoder; and one to write into.
class Stream {
  public:
    explicit Stream(const Bytes &bytes = {}) {
        b_buffInit(&buffer_, tag_);
        if (!bytes.empty()) {
            EXPECT_EQ(b_buffEmitBytesBulk(&buffer_, bytes.data(), bytes.size()), sOKAY);
        }
        EXPECT_EQ(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &buffer_, tag_, &encoder),
                  sOKAY);
        EXPECT_EQ(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &buffer_, tag_, &decoder),
                  sOKAY);
    }
    ~Stream() {
        b_encoderDestroy(encoder);
        b_decoderDestroy(decoder);
        b_buffTerm(&buffer_);
    }
    Bytes bytes() const { return Bytes(buffer_.data, buffer_.data + buffer_.len); }
    bool at_end() const { return buffer_.pos == buffer_.len; }
    OAK_BUFFER *buffer() { return &buffer_; }
    OSL_MEMTAG tag() const { return tag_; }

  private:
    Tag tag_;
    OAK_BUFFER buffer_{};

  public:
    B_ENCODER encoder = nullptr;
    B_DECODER decoder = nullptr;
};

// ---- Varying integers --------------------------------------------------------

TEST(Golden, VaryingIntegers) {
    for (const GoldenCase &c : golden_cases("vints.hex")) {
        const bool is_signed = c.name[0] == 's';
        const std::string digits = c.name.substr(2);
        Stream written;
        Stream read(c.bytes);
        plain::Reader plain_reader(c.bytes);
        if (is_signed) {
            const int64_t number = std::stoll(digits);
            EXPECT_EQ(b_encoderEncodeInt64(written.encoder, number), sOKAY);
            int64_t back = ~number;
            EXPECT_EQ(b_decoderDecodeInt64(read.decoder, &back), sOKAY);
            EXPECT_EQ(back, number);
            EXPECT_EQ(plain_reader.s(), number);
        } else {
            const uint64_t number = std::stoull(digits);
            EXPECT_EQ(osl_vintEncodeUIntmax(number, b_buffEmitByte, written.buffer()), sOKAY);
            uint64_t back = ~number;
            EXPECT_EQ(osl_vintDecodeUIntmax(b_buffInputByte, read.buffer(), &back), sOKAY);
            EXPECT_EQ(back, number);
            EXPECT_EQ(plain_reader.u(), number);
        }
        EXPECT_EQ(hex_text(written.bytes()), hex_text(c.bytes)) << c.name;
        EXPECT_TRUE(read.at_end() && plain_reader.at_end()) << c.name;
    }
}

// ---- Packed decimals, dates, times, UUIDs ------------------------------------

TEST(Golden, PackedDecimals) {
    for (const GoldenCase &c : golden_cases("packed_decimals.hex")) {
        unsigned prec = 0, scale = 0;
        char digits[64];
        ASSERT_EQ(std::sscanf(c.name.c_str(), "(%u,%u) %63s", &prec, &scale, digits), 3) << c.name;
        ASSERT_EQ(c.bytes.size(), prec / 2 + 1) << c.name;
        OAK_BCD_T value, back;
        ASSERT_EQ(oak_bcdFromString(digits, &value), sOKAY) << c.name;
        Bytes packed(c.bytes.size(), 0xee);
        EXPECT_EQ(oak_bcdPack(&value, packed.data(), static_cast<uint8_t>(prec),
                              static_cast<uint8_t>(scale)),
                  sOKAY);
        EXPECT_EQ(hex_text(packed), hex_text(c.bytes)) << c.name;
        EXPECT_EQ(oak_bcdUnpack(c.bytes.data(), &back, static_cast<uint8_t>(prec),
                                static_cast<uint8_t>(scale)),
                  sOKAY);
        EXPECT_EQ(oak_bcdCompare(&value, &back), 0) << c.name;
        EXPECT_EQ(plain::packed_decimal_text(c.bytes, prec, scale), digits);
    }
}

TEST(Golden, PackedDecimalsOfAColumnSortAsTheirBytes) {
    std::map<std::pair<unsigned, unsigned>, std::map<Bytes, double>> columns;
    for (const GoldenCase &c : golden_cases("packed_decimals.hex")) {
        unsigned prec = 0, scale = 0;
        double value = 0;
        ASSERT_EQ(std::sscanf(c.name.c_str(), "(%u,%u)", &prec, &scale), 2);
        const char *digits = c.name.c_str() + c.name.find(' ') + 1;
        std::from_chars(digits, c.name.c_str() + c.name.size(), value);
        columns[{prec, scale}][c.bytes] = value;
    }
    for (const auto &[column, values] : columns) {
        double last = -1e300;
        for (const auto &[bytes, value] : values) {
            EXPECT_LT(last, value) << column.first;
            last = value;
        }
    }
}

/// Date and time of a case's name, as "2024-02-29 08:30:00.0000 840" or a part of
/// it, packed by the library's functions.
struct Moment {
    OAK_TIMESTAMPTZ_T fields{1, 1, 1, 0, 0, 0, 0, 0};
    OAK_PACKED_DATE_T date = 0;
    OAK_PACKED_TIME_T time = 0;

    Moment(const char *text, bool has_date, bool has_time) {
        OAK_TIMESTAMPTZ_T &f = fields;
        int used = 0;
        if (has_date) {
            EXPECT_EQ(std::sscanf(text, "%d-%hu-%hu%n", &f.year, &f.month, &f.day, &used), 3);
            text += used;
        }
        if (has_time) {
            EXPECT_GE(std::sscanf(text, "%hu:%hu:%hu.%hu %hd", &f.hour, &f.minute, &f.second,
                                  &f.fraction, &f.tz),
                      4);
        }
        const OAK_DATE_T d{f.year, f.month, f.day};
        const OAK_TIME_T t{f.hour, f.minute, f.second, f.fraction};
        EXPECT_EQ(oak_datePack(&d, &date), sOKAY);
        EXPECT_EQ(oak_timePack(&t, &time), sOKAY);
    }
};

/// The packed value of a case's name, in memory as the library lays it out.
Bytes packed_moment(const std::string &name) {
    const size_t blank = name.find(' ');
    const std::string kind = name.substr(0, blank);
    const Moment m(name.c_str() + blank + 1, kind == "date" || kind.starts_with("timestamp"),
                   kind != "date");
    Bytes memory;
    const auto keep = [&memory](const auto &value) {
        memory.assign(sizeof value, 0);
        std::memcpy(memory.data(), &value, sizeof value);
    };
    if (kind == "date") {
        keep(m.date);
    } else if (kind == "time") {
        keep(m.time);
    } else if (kind == "timetz") {
        OAK_PACKED_TIMETZ_T value{};
        const OAK_TIMETZ_T fields{m.fields.hour, m.fields.minute, m.fields.second,
                                  m.fields.fraction, m.fields.tz};
        EXPECT_EQ(oak_timetzPack(&fields, &value), sOKAY);
        keep(value);
    } else if (kind == "timestamp") {
        keep(OAK_PACKED_TIMESTAMP_T{m.date, m.time});
    } else {
        OAK_PACKED_TIMESTAMPTZ_T value{};
        EXPECT_EQ(kind, "timestamptz");
        EXPECT_EQ(oak_timestamptzPack(&m.fields, &value), sOKAY);
        keep(value);
    }
    return memory;
}

TEST(Golden, PackedDatesAndTimes) {
    NEEDS_GOLDEN_ORDER();
    for (const GoldenCase &c : golden_cases("packed_times.hex")) {
        EXPECT_EQ(hex_text(packed_moment(c.name)), hex_text(c.bytes)) << c.name;
        // And back: the plain record reader finds the text again.
        plain::Column column;
        column.word = c.name.substr(0, c.name.find(' '));
        plain::Reader in(c.bytes);
        std::string text = plain::value_from_record(column, in);
        if (const size_t zone = text.find("zone "); zone != std::string::npos) {
            text.erase(zone, 5);
        }
        EXPECT_EQ(column.word + " " + text, c.name);
    }
}

TEST(Golden, PackedDatesUnpack) {
    NEEDS_GOLDEN_ORDER();
    for (const GoldenCase &c : golden_cases("packed_times.hex")) {
        if (c.name.starts_with("date ")) {
            OAK_PACKED_DATE_T packed;
            OAK_DATE_T date{};
            std::memcpy(&packed, c.bytes.data(), sizeof packed);
            EXPECT_EQ(oak_dateUnpack(packed, &date), sOKAY);
            EXPECT_EQ(plain::text_of("date %04d-%02d-%02d", date.year, date.month, date.day),
                      c.name);
        } else if (c.name.starts_with("time ")) {
            OAK_PACKED_TIME_T packed;
            OAK_TIME_T time{};
            std::memcpy(&packed, c.bytes.data(), sizeof packed);
            EXPECT_EQ(oak_timeUnpack(packed, &time), sOKAY);
            EXPECT_EQ(plain::text_of("time %02d:%02d:%02d.%04d", time.hour, time.minute,
                                     time.second, time.fraction),
                      c.name);
        }
    }
}

TEST(Golden, Uuids) {
    for (const GoldenCase &c : golden_cases("uuids.hex")) {
        OAK_UUID_T uuid;
        ASSERT_EQ(oak_uuidFromString(c.name.c_str(), &uuid), sOKAY) << c.name;
        EXPECT_EQ(hex(&uuid, sizeof uuid), hex_text(c.bytes)) << c.name;
        std::memcpy(&uuid, c.bytes.data(), sizeof uuid);
        char text[40];
        EXPECT_EQ(oak_uuidToString(&uuid, text, sizeof text, OAK_FALSE), sOKAY);
        EXPECT_EQ(text, c.name);
    }
}

// ---- The types ---------------------------------------------------------------

/// A column's type and a value of it.
struct Sample {
    _SCH_TYPE_INFO type;
    OAK_VALUE value;
};

template <class Native>
Sample number(OAK_TYPE type, Native value) {
    return {number_type(type), scalar(type, value)};
}

/// An array whose elements stay where they are.
template <class Native, size_t kCount>
Sample numbers(OAK_TYPE type, const Native (&values)[kCount]) {
    return {number_type(type, kCount), array_at(type, values, kCount)};
}

/// The samples of types.hex by their names.
std::map<std::string, Sample> type_samples() {
    static const uint32_t bools[] = {1, 0, 1};
    static const int8_t int8s[] = {127, -1};
    static const uint8_t uint8s[] = {0, 128};
    static const int16_t int16s[] = {1, -1, 300};
    static const uint16_t uint16s[] = {258};
    static const int32_t int32s[] = {INT32_MIN, 1};
    static const uint32_t uint32s[] = {16909060, 0};
    static const int64_t int64s[] = {-1};
    static const uint64_t uint64s[] = {1, 128};
    static const float floats[] = {-1, 0};
    static const double doubles[] = {1.5, -2.5};
    static const uint8_t three_bytes[] = {0, 0xff, 0x10};
    static const OAK_PACKED_TIMESTAMPTZ_T last_moment{3652059, 863999999, -840};
    static OAK_UUID_T uuid;
    static OAK_BCD_T decimal;
    EXPECT_EQ(oak_uuidFromString("00112233-4455-6677-8899-aabbccddeeff", &uuid), sOKAY);
    EXPECT_EQ(oak_bcdFromString("-1.5", &decimal), sOKAY);
    Sample timetz = number(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{416967890, 60});
    timetz.value.vt.u64v &= 0xffffffffffff; // no padding
    return {
        {"bool true", number(OAK_BOOL, uint32_t{1})},
        {"bool false", number(OAK_BOOL, uint32_t{0})},
        {"bool[3] true false true", numbers(OAK_BOOL, bools)},
        {"int8 -128", number(OAK_INT8, int8_t{-128})},
        {"int8[2] 127 -1", numbers(OAK_INT8, int8s)},
        {"uint8 255", number(OAK_UINT8, uint8_t{255})},
        {"uint8[2] 0 128", numbers(OAK_UINT8, uint8s)},
        {"int16 -32768", number(OAK_INT16, int16_t{-32768})},
        {"int16[3] 1 -1 300", numbers(OAK_INT16, int16s)},
        {"uint16 65535", number(OAK_UINT16, uint16_t{65535})},
        {"uint16[1] 258", numbers(OAK_UINT16, uint16s)},
        {"int32 -300", number(OAK_INT32, int32_t{-300})},
        {"int32[2] -2147483648 1", numbers(OAK_INT32, int32s)},
        {"uint32 4294967295", number(OAK_UINT32, UINT32_MAX)},
        {"uint32[2] 16909060 0", numbers(OAK_UINT32, uint32s)},
        {"int64 -9223372036854775808", number(OAK_INT64, INT64_MIN)},
        {"int64[1] -1", numbers(OAK_INT64, int64s)},
        {"uint64 18446744073709551615", number(OAK_UINT64, UINT64_MAX)},
        {"uint64[2] 1 128", numbers(OAK_UINT64, uint64s)},
        {"rowid 300", number(OAK_ROWID, uint64_t{300})},
        {"float 1.5", number(OAK_FLOAT, 1.5f)},
        {"float[2] -1 0", numbers(OAK_FLOAT, floats)},
        {"double -2.5", number(OAK_DOUBLE, -2.5)},
        {"double[2] 1.5 -2.5", numbers(OAK_DOUBLE, doubles)},
        {"decimal(5,2) -1.5", {decimal_type(5, 2), pointed(OAK_BCD, &decimal)}},
        {"date 2024-02-29", number(OAK_DATE, uint32_t{738945})},
        {"time 12:34:56.7890", number(OAK_TIME, uint32_t{452967890})},
        {"timetz 11:34:56.7890 60", timetz},
        {"timestamp 2024-02-29 08:30:00.0000",
         number(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{738945, 306000000})},
        {"timestamptz 9999-12-31 23:59:59.9999 -840",
         {descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, &last_moment)}},
        {"uuid 00112233-4455-6677-8899-aabbccddeeff",
         {descriptor(OAK_UUID), pointed(OAK_UUID, &uuid)}},
        {"char(9) Oak", {text_type(9), pointed(OAK_CHAR, "Oak", 4)}},
        {"varchar(41) empty", {text_type(41, OAK_VARCHAR), pointed(OAK_VARCHAR, "", 1)}},
        {"wvarchar(9) e with acute accent",
         {text_type(9, OAK_WVARCHAR_UTF8), pointed(OAK_WVARCHAR_UTF8, "\xc3\xa9", 3)}},
        {"binary(3) 00ff10", {binary_type(3), pointed(OAK_BINARY, three_bytes, 3)}},
        {"varbinary(8) 00ff10", {varbinary_type(8), pointed(OAK_VARBINARY, three_bytes, 3)}},
        {"varbinary(8) empty", {varbinary_type(8), pointed(OAK_VARBINARY, nullptr, 0)}},
    };
}

void check_stream(const GoldenCase &c, const Sample &sample) {
    const OAK_TYPE_INFO &ops = *sample.type.type_info;
    Stream written;
    EXPECT_EQ(ops.pack_fcn(&sample.type, &sample.value, written.encoder), sOKAY) << c.name;
    EXPECT_EQ(hex_text(written.bytes()), hex_text(c.bytes)) << c.name;
    Stream read(c.bytes);
    OAK_VALUE back{};
    EXPECT_EQ(ops.unpack_fcn(&sample.type, &back, read.tag(), read.decoder), sOKAY) << c.name;
    EXPECT_TRUE(read.at_end()) << c.name;
    EXPECT_EQ(ops.cmp(&sample.type, 0, &back, &sample.value), OAK_EQ) << c.name;
    if (back.type == OAK_TIMESTAMPTZ) { // a comparison does not look at the zone
        EXPECT_EQ(back.vt.tszv->tz, sample.value.vt.tszv->tz);
        OSL_FREE(const_cast<OAK_PACKED_TIMESTAMPTZ_T *>(back.vt.tszv), read.tag());
    } else if (back.type == OAK_TIMETZ) {
        EXPECT_EQ(back.vt.tmzv.tz, sample.value.vt.tmzv.tz);
    } else if (ops.free_fcn != nullptr) {
        ops.free_fcn(&back, read.tag());
    }
}

void check_record(const GoldenCase &c, const Sample &sample) {
    const OAK_TYPE_INFO &ops = *sample.type.type_info;
    Bytes record(100, 0xee);
    size_t size = record.size();
    EXPECT_EQ(ops.copy_to_buff_fcn(&sample.type, record.data(), &size, &sample.value), sOKAY)
        << c.name;
    const bool is_number = sample.value.elts > 0 || size <= sample.type.byte_len;
    EXPECT_TRUE(is_number);
    record.resize(c.bytes.size());
    EXPECT_EQ(hex_text(record), hex_text(c.bytes)) << c.name;
    Bytes padded = c.bytes; // a column's bytes are as many as it has
    padded.resize(sample.type.byte_len);
    OAK_VALUE back{};
    back.type = sample.type.type;
    EXPECT_EQ(ops.assign_from_buff_fcn(&sample.type, &back, padded.data(), padded.size()), sOKAY)
        << c.name;
    back.elts = sample.value.elts;
    EXPECT_EQ(ops.cmp(&sample.type, 0, &back, &sample.value), OAK_EQ) << c.name;
}

TEST(Golden, TypesInStreamsAndRecords) {
    NEEDS_GOLDEN_ORDER();
    const std::map<std::string, Sample> samples = type_samples();
    std::map<std::string, int> seen;
    for (const GoldenCase &c : golden_cases("types.hex")) {
        const size_t blank = c.name.find(' ');
        const std::string name = c.name.substr(blank + 1);
        const auto sample = samples.find(name);
        ASSERT_NE(sample, samples.end()) << c.name;
        if (c.name.starts_with("stream ")) {
            check_stream(c, sample->second);
            seen[name] += 1;
        } else {
            check_record(c, sample->second);
            seen[name] += 2;
        }
    }
    for (const auto &[name, sample] : samples) {
        EXPECT_EQ(seen[name], 3) << name << " has not both forms in the file";
    }
}

TEST(Golden, StreamsOfTypesFillRecords) {
    NEEDS_GOLDEN_ORDER();
    const std::map<std::string, Sample> samples = type_samples();
    std::map<std::string, Bytes> records;
    for (const GoldenCase &c : golden_cases("types.hex")) {
        if (c.name.starts_with("record ")) {
            records[c.name.substr(7)] = c.bytes;
        }
    }
    for (const GoldenCase &c : golden_cases("types.hex")) {
        if (!c.name.starts_with("stream ")) {
            continue;
        }
        const std::string name = c.name.substr(7);
        const _SCH_TYPE_INFO &type = samples.at(name).type;
        Stream read(c.bytes);
        Bytes record(type.byte_len, 0xee);
        OAK_HAS_VALUE_T has_value = 0;
        EXPECT_EQ(
            type.type_info->unpack_to_buff_fcn(&type, record.data(), &has_value, read.decoder),
            sOKAY)
            << name;
        EXPECT_EQ(has_value, 1);
        record.resize(records.at(name).size());
        if (type.type == OAK_BCD) { // the column's places come back, with their zeros
            EXPECT_EQ(hex_text(record).substr(0, 16), "030100ff00010500") << name;
        } else {
            EXPECT_EQ(hex_text(record), hex_text(records.at(name))) << name;
        }
    }
}

// ---- Rows --------------------------------------------------------------------

const Catalog &rich() {
    static const Catalog catalog(kRichCatalog);
    return catalog;
}

/// The table of a case's name, as in "ints: one group".
SCH_TBL_INFO table_of(const GoldenCase &c) {
    return rich().table(c.name.substr(0, c.name.find(':')).c_str());
}

void set_large_object(RowBench &row, OAK_COL_INDEX position) {
    row.mark(position, vsNOVAL);
}

/// A record without the padding behind its first `used` bytes, which stays zero.
template <class Record>
void set_unpadded(RowBench &row, OAK_COL_INDEX position, const Record &record, size_t used) {
    std::array<uint8_t, sizeof(Record)> bytes{};
    std::memcpy(bytes.data(), &record, used);
    row.set(position, bytes);
}

void fill_every(RowBench &row) {
    row.row_.avls[0].flags = 3;
    row.row_.avls[0].left = 1;
    row.row_.avls[0].right = 2;
    row.row_.avls[1].left = 128;
    row.row_.joins[0].owner = 300;
    row.set<uint32_t>(0, 1);
    row.set<int8_t>(1, -1);
    row.set<uint8_t>(2, 200);
    row.set<int16_t>(3, 300);
    row.set<uint16_t>(4, 65535);
    row.set<int32_t>(5, -300);
    row.set<uint32_t>(6, UINT32_MAX);
    row.set<int64_t>(7, INT64_MIN);
    row.set<uint64_t>(8, UINT64_MAX);
    row.set<float>(9, 1.5f);
    row.set<double>(10, -2.5);
    OAK_BCD_T price;
    EXPECT_EQ(oak_bcdFromString("-12345.67", &price), sOKAY);
    row.set(11, price);
    // Column 12 was dropped: the positions of those behind it are one less.
    row.set<OAK_PACKED_DATE_T>(12, 738945);
    row.set<OAK_PACKED_TIME_T>(13, 452967890);
    set_unpadded(row, 14, OAK_PACKED_TIMETZ_T{416967890, 60}, 6);
    row.set(15, OAK_PACKED_TIMESTAMP_T{738945, 306000000});
    set_unpadded(row, 16, OAK_PACKED_TIMESTAMPTZ_T{3652059, 863999999, -840}, 10);
    row.set<OAK_ROWID_T>(17, 77);
    OAK_UUID_T guid;
    EXPECT_EQ(oak_uuidFromString("00112233-4455-6677-8899-aabbccddeeff", &guid), sOKAY);
    row.set(18, guid);
    row.set_text(19, "ab");
    row.set_text(20, "");
    row.set_text(21, "\xc3\xa9");
    row.set_text(22, "Oak");
    row.set(23, std::array<uint8_t, 3>{0, 0xff, 0x10});
    row.set(24, std::array<uint8_t, 4>{2, 0, 1, 2});
    row.set(25, std::array<int16_t, 3>{1, -1, 300});
    row.set(26, std::array<double, 2>{1.5, -2.5});
    set_large_object(row, 27);
    set_large_object(row, 28);
    set_large_object(row, 29);
    row.row_.data.b.col_status[30] = vsNOVAL; // the foreign key
    row.set<int32_t>(31, 42);
}

void fill_linked(RowBench &row) {
    row.row_.avls[0].flags = 1;
    row.row_.avls[0].left = 5;
    row.row_.avls[0].right = 300;
    row.row_.avls[1].flags = 0x8002;
    row.row_.avls[1].right = 4294967296;
    row.row_.joins[0].owner = 7;
    row.set<int8_t>(0, -2);
    row.set<int16_t>(2, 258);
    row.set_text(3, "no");
    row.row_.data.b.col_status[4] = vsNOVAL;
}

void fill_documents(RowBench &row) {
    row.set<int32_t>(0, 7);
    set_large_object(row, 1);
    row.set<int32_t>(2, 8);
}

void fill_dropped(RowBench &row) {
    row.set<int32_t>(0, 5);
    row.set<int32_t>(1, 7); // column 2
}

using Fill = std::function<void(RowBench &)>;

/// How the rows of the golden files are made; what is only read has no entry.
std::map<std::string, Fill> row_makers() {
    return {
        {"ints: nothing but NULL", [](RowBench &) {}},
        {"ints: one group",
         [](RowBench &row) {
             row.set<int32_t>(0, 1);
             row.set<int32_t>(1, -1);
             row.set<int32_t>(2, 64);
         }},
        {"ints: a NULL splits the group",
         [](RowBench &row) {
             row.set<int32_t>(0, 1);
             row.set<int32_t>(2, 2);
         }},
        {"ints: 1, NULL, -1",
         [](RowBench &row) {
             row.set<int32_t>(0, 1);
             row.set<int32_t>(2, -1);
         }},
        {"linked: links and a join", fill_linked},
        {"linked: links, a join, alignment", fill_linked},
        {"linked: no owner", [](RowBench &row) { row.row_.data.b.col_status[4] = vsNOVAL; }},
        {"documents: a large object and a NULL one", fill_documents},
        {"documents: large objects have a has-value byte and no place", fill_documents},
        {"dropped: column 1 was dropped", fill_dropped},
        {"dropped: the live columns alone", fill_dropped},
        {"every: a value of every type", fill_every},
    };
}

std::string image_of(const RowBench &row) {
    return hex(row.row_.row_data, row.row_.data_len);
}

TEST(Golden, CompactRows) {
    const std::map<std::string, Fill> makers = row_makers();
    for (const GoldenCase &c : golden_cases("compact_rows.hex")) {
        SCOPED_TRACE(c.name);
        RowBench row(table_of(c));
        ASSERT_EQ(row.unpack_compact(hex_text(c.bytes)), sOKAY);
        const std::string read = image_of(row);
        plain::Reader in(c.bytes);
        EXPECT_EQ(plain::compact_row(plain_table(row.ti_), in), c.meaning);
        EXPECT_TRUE(in.at_end());
        if (const auto maker = makers.find(c.name); maker != makers.end()) {
            row.clear();
            maker->second(row);
            EXPECT_EQ(row.compact(), hex_text(c.bytes));
            EXPECT_EQ(read, image_of(row));
        } else {
            EXPECT_EQ(c.name, "dropped: written before column 1 was dropped");
            EXPECT_EQ(row.get<int32_t>(0), 5);
            EXPECT_EQ(row.get<int32_t>(1), 7);
        }
    }
}

TEST(Golden, ExpandedRows) {
    NEEDS_GOLDEN_ORDER();
    const std::map<std::string, Fill> makers = row_makers();
    for (const GoldenCase &c : golden_cases("expanded_rows.hex")) {
        SCOPED_TRACE(c.name);
        RowBench row(table_of(c));
        const auto maker = makers.find(c.name);
        ASSERT_NE(maker, makers.end());
        maker->second(row);
        EXPECT_EQ(row.expanded(), hex_text(c.bytes));
        const std::string built = image_of(row);
        ASSERT_EQ(row.unpack_expanded(c.bytes), sOKAY);
        EXPECT_EQ(image_of(row), built);
        plain::Reader in(c.bytes);
        EXPECT_EQ(plain::expanded_row(plain_table(row.ti_), in), c.meaning);
        EXPECT_TRUE(in.at_end());
    }
}

TEST(Golden, MakersOfRowsHaveTheirCases) {
    std::map<std::string, Fill> makers = row_makers();
    for (const char *file : {"compact_rows.hex", "expanded_rows.hex"}) {
        for (const GoldenCase &c : golden_cases(file)) {
            makers.erase(c.name);
        }
    }
    EXPECT_TRUE(makers.empty()) << makers.begin()->first;
}

// ---- LZMA and stored objects -------------------------------------------------

/// The object of a case: hex bytes, or "count x byte".
Bytes object_of(const GoldenCase &c) {
    Bytes object;
    for (const std::string &line : c.meaning) {
        unsigned count = 0, byte = 0;
        if (std::sscanf(line.c_str(), "%u x %x", &count, &byte) == 2) {
            object.insert(object.end(), count, static_cast<uint8_t>(byte));
        } else {
            const Bytes bytes = unhex(line);
            object.insert(object.end(), bytes.begin(), bytes.end());
        }
    }
    return object;
}

struct Coder {
    Coder() { EXPECT_EQ(b_lzmaCreate(&lzma), sOKAY); }
    ~Coder() { b_lzmaDestroy(lzma); }
    LZMA lzma = nullptr;
};

TEST(Golden, LzmaStreams) {
    const Coder coder;
    for (const GoldenCase &c : golden_cases("lzma.hex")) {
        SCOPED_TRACE(c.name);
        Stream object(object_of(c)), written, stored(c.bytes), read;
        EXPECT_EQ(b_lzmaCompress(coder.lzma, object.buffer(), written.buffer()), sOKAY);
        EXPECT_EQ(hex_text(written.bytes()), hex_text(c.bytes));
        EXPECT_EQ(b_lzmaDecompress(coder.lzma, stored.buffer(), read.buffer()), sOKAY);
        EXPECT_EQ(hex_text(read.bytes()), hex_text(object.bytes()));
        plain::Reader in(c.bytes);
        EXPECT_EQ(plain::lzma_stream(in), object.bytes());
    }
}

struct Header {
    OAK_ITEM_FORMAT format;
    OAK_COMPRESS_METHOD method;
};

Header header_of(const std::string &name) {
    Header header{OAK_ITEM_FORMAT_EXPANDED, OAK_COMPRESS_NONE};
    if (name.starts_with("compact")) {
        header.format = OAK_ITEM_FORMAT_COMPACT;
    }
    if (name.find("LZMA") != std::string::npos) {
        header.method = OAK_COMPRESS_LZMA;
    } else if (name.find("ZERO") != std::string::npos) {
        header.method = OAK_COMPRESS_ZERO;
    }
    return header;
}

TEST(Golden, StoredObjects) {
    const Coder coder;
    std::map<uint8_t, int> headers;
    for (const GoldenCase &c : golden_cases("stored_objects.hex")) {
        SCOPED_TRACE(c.name);
        const Bytes object = object_of(c);
        const Header header = header_of(c.name);
        Stream packed(object), written, stored(c.bytes), read;
        EXPECT_EQ(obj_compress(coder.lzma, header.method, 0, header.format, packed.buffer(),
                               written.buffer()),
                  sOKAY);
        EXPECT_EQ(hex_text(written.bytes()), hex_text(c.bytes));
        OAK_ITEM_FORMAT format = static_cast<OAK_ITEM_FORMAT>(0);
        EXPECT_EQ(obj_convert_in(read.buffer(), stored.buffer(), nullptr, &format, coder.lzma),
                  sOKAY);
        EXPECT_EQ(format, header.format);
        const plain::StoredObject plain_object = plain::stored_object(c.bytes);
        EXPECT_EQ(plain_object.format * 16, static_cast<unsigned>(header.format));
        EXPECT_EQ(plain_object.method, static_cast<unsigned>(header.method));
        EXPECT_EQ(plain_object.object, read.bytes());
        Bytes without_padding = read.bytes();
        without_padding.resize(object.size());
        EXPECT_EQ(without_padding, object);
        ++headers[c.bytes[0]];
    }
    for (const int value : {17, 18, 20, 33, 34, 36}) {
        EXPECT_GT(headers[static_cast<uint8_t>(value)], 0) << value;
    }
}

// ---- Random values -----------------------------------------------------------

/// Fills a column of the row's record with a random value of its type.
void set_random(RowBench &row, OAK_COL_INDEX position, Random &random) {
    const SCH_COL_INFO_C ci = schema_view::live_column(row.ti_, position);
    const plain::Column column = plain_column(ci);
    const auto date = [&random] { return static_cast<uint32_t>(1 + random.below(3652059)); };
    const auto time = [&random] { return static_cast<uint32_t>(random.below(864000000)); };
    const auto zone = [&random] { return static_cast<int16_t>(random.below(1681) - 840); };
    const auto letters = [&random](size_t most) {
        std::string text(random.below(most + 1), ' ');
        for (char &letter : text) {
            letter = static_cast<char>(' ' + random.below(95));
        }
        return text;
    };
    if (column.word == "bool") {
        row.set<uint32_t>(position, static_cast<uint32_t>(random.below(2)));
    } else if (const plain::TypeRow *number = plain::number_row(column.word); number != nullptr) {
        const unsigned shift = static_cast<unsigned>(random.below(64)); // small ones too
        for (unsigned i = 0; i < std::max(column.elems, 1u); ++i) {
            const uint64_t bits = number->kind == 'f' ? random.next() : random.next() >> shift;
            std::memcpy(row.row_.data.b.col_data + ci->ptr + i * number->bytes, &bits,
                        number->bytes);
        }
        row.mark(position, vsOKAY);
    } else if (column.word == "decimal") {
        OAK_BCD_T value;
        const auto cents = static_cast<int64_t>(random.below(20000000)) - 10000000;
        const std::string text = plain::text_of("%s%ld.%02ld", cents < 0 ? "-" : "",
                                                static_cast<long>(std::abs(cents) / 100),
                                                static_cast<long>(std::abs(cents) % 100));
        ASSERT_EQ(oak_bcdFromString(text.c_str(), &value), sOKAY);
        row.set(position, value);
    } else if (column.word == "date") {
        row.set(position, date());
    } else if (column.word == "time") {
        row.set(position, time());
    } else if (column.word == "timetz") {
        row.set(position, OAK_PACKED_TIMETZ_T{time(), zone()});
    } else if (column.word == "timestamp") {
        row.set(position, OAK_PACKED_TIMESTAMP_T{date(), time()});
    } else if (column.word == "timestamptz") {
        row.set(position, OAK_PACKED_TIMESTAMPTZ_T{date(), time(), zone()});
    } else if (column.word == "uuid") {
        row.set(position, std::array<uint64_t, 2>{random.next(), random.next()});
    } else if (plain::is_text(column)) {
        row.set_text(position, letters(column.length - 1).c_str());
    } else if (column.word == "binary") {
        row.set(position, std::array<uint8_t, 3>{static_cast<uint8_t>(random.next()), 0, 1});
    } else if (column.word == "varbinary") {
        const std::string bytes = letters(column.length);
        const auto length = static_cast<uint16_t>(bytes.size());
        row.set(position, length);
        std::memcpy(row.row_.data.b.col_data + ci->ptr + 2, bytes.data(), length);
    } else {
        set_large_object(row, position);
    }
}

TEST(Rows, OfRandomValuesReadAlikeByBothDecoders) {
    Random random(1);
    for (const char *name : {"every", "linked", "ints", "documents", "dropped", "owners"}) {
        RowBench row(rich().table(name));
        const plain::Table table = plain_table(row.ti_);
        for (int round = 0; round < 200; ++round) {
            row.clear();
            for (OAK_COL_INDEX p = 0; p < row.ti_->num_cols; ++p) {
                if (random.below(4) != 0) {
                    set_random(row, p, random);
                }
            }
            for (unsigned i = 0; i < table.avl_numbers.size(); ++i) {
                row.row_.avls[i].left = random.next() >> random.below(64);
                row.row_.avls[i].right = random.next() >> random.below(64);
                row.row_.avls[i].flags = static_cast<uint16_t>(random.next());
            }
            for (unsigned i = 0; i < table.refs; ++i) {
                row.row_.joins[i].owner = random.below(3);
            }
            plain::Reader compact(unhex(row.compact()));
            const plain::Lines lines = plain::compact_row(table, compact);
            ASSERT_TRUE(compact.at_end()) << name;
            if (kGoldenOrder) {
                plain::Reader expanded(unhex(row.expanded()));
                ASSERT_EQ(plain::expanded_row(table, expanded), lines) << name;
                ASSERT_TRUE(expanded.at_end()) << name;
            }
            const std::string stream = row.compact();
            ASSERT_EQ(row.unpack_compact(stream), sOKAY) << name;
            ASSERT_EQ(row.compact(), stream) << name;
        }
    }
}

TEST(PlainDecoder, RefusesDamage) {
    const auto refuses = [](const std::string &bytes) {
        const plain::Table table = plain_table(rich().table("ints"));
        plain::Reader in(unhex(bytes));
        EXPECT_THROW(plain::compact_row(table, in), std::runtime_error) << bytes;
    };
    refuses("");
    refuses("0000 0300 02");
    refuses("0000 0103 02 00");
    refuses("ffffffffffffffffff02");
}

} // namespace
