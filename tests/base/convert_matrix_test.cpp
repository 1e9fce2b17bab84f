// The matrix against its table in golden/: all 484 cells, all 297 slots, which types fold
// to which, and that a pair that is refused, or has no function, is refused by every entry
// point before any data is read.
#include <set>
#include <sstream>

#include "convert_support.h"
#include "golden.h"

using namespace oaktest;

namespace {

// ---- The tables as text ---------------------------------------------------------------------

struct MatrixRow {
    OAK_TYPE type;
    size_t size;
    std::vector<CNVCODE> codes;
};

const std::vector<MatrixRow> &matrix() {
    static const std::vector<MatrixRow> rows = [] {
        std::vector<MatrixRow> result;
        for (const std::string &line : golden_lines("convert_matrix.txt")) {
            std::istringstream fields(line);
            std::string name;
            MatrixRow row{};
            fields >> name >> row.size;
            row.type = type_of(name);
            for (CNVCODE code; fields >> code;)
                row.codes.push_back(code);
            result.push_back(row);
        }
        return result;
    }();
    return rows;
}

// Names by code; a dash is an empty slot.
const std::vector<std::string> &slots() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> result;
        for (const std::string &line : golden_lines("convert_slots.txt")) {
            std::istringstream fields(line);
            size_t code = 0;
            std::string name;
            fields >> code >> name;
            EXPECT_EQ(code, result.size());
            result.push_back(name);
        }
        return result;
    }();
    return names;
}

bool has_function(CNVCODE code) {
    return slots()[code] != "-";
}

// What folds to a type of the matrix.
const std::map<OAK_TYPE, OAK_TYPE> &folds() {
    static const std::map<OAK_TYPE, OAK_TYPE> pairs = {
        {OAK_WCHAR_UTF8, OAK_CHAR}, {OAK_VARCHAR, OAK_CHAR},    {OAK_WVARCHAR_UTF8, OAK_CHAR},
        {OAK_CLOB, OAK_CHAR},       {OAK_WCLOB_UTF8, OAK_CHAR}, {OAK_VARBINARY, OAK_BINARY},
        {OAK_BLOB, OAK_BINARY},
    };
    return pairs;
}

constexpr OAK_TYPE kOutside[] = {OAK_NOVAL,
                                 OAK_WVARCHAR,
                                 OAK_WCLOB,
                                 OAK_SUBQUERY,
                                 OAK_OUTERREF,
                                 OAK_PARAMREF,
                                 OAK_OAKVALUE,
                                 OAK_AUTOGEN,
                                 OAK_PROCVAR,
                                 OAK_ZERODIV,
                                 OAK_RESULTCOL,
                                 OAK_COLREF,
                                 OAK_DEFAULT,
                                 OAK_DEFAULT_AUTO,
                                 OAK_DEFAULT_CURRENT,
                                 OAK_DEFAULT_CURRDATE,
                                 OAK_DEFAULT_CURRTIME,
                                 OAK_DEFAULT_CURRTIMESTAMP,
                                 OAK_GLOBALVAR,
                                 static_cast<OAK_TYPE>(0x7FFFFFFF),
                                 static_cast<OAK_TYPE>(-1),
                                 static_cast<OAK_TYPE>(0x8008)};

// ---- The tables -----------------------------------------------------------------------------

TEST(ConvertMatrix, HoldsTheTypesInTheirOrderWithTheirSizes) {
    ASSERT_EQ(matrix().size(), CNV_TYPES);
    for (size_t row = 0; row < CNV_TYPES; ++row) {
        EXPECT_EQ(typeData[row].type, matrix()[row].type) << row;
        EXPECT_EQ(typeData[row].size, matrix()[row].size) << row;
        EXPECT_EQ(convert::kindOf(matrix()[row].type).row, row);
    }
}

// The table of kinds says what the list of types says, of every number that a type could be.
TEST(ConvertMatrix, KindsStandInTheirTable) {
    for (int32_t type = -0x20000; type < 0x20000; ++type) {
        const convert::Kind kind = convert::kindOf(static_cast<OAK_TYPE>(type));
        const convert::Kind told = convert::tellKind(static_cast<OAK_TYPE>(type));
        ASSERT_EQ(kind.row, told.row) << type;
        ASSERT_EQ(kind.form, told.form) << type;
    }
}

TEST(ConvertMatrix, HoldsEveryCodeOfThe484) {
    size_t cells = 0;
    for (size_t from = 0; from < CNV_TYPES; ++from) {
        ASSERT_EQ(matrix()[from].codes.size(), CNV_TYPES);
        for (size_t to = 0; to < CNV_TYPES; ++to, ++cells)
            EXPECT_EQ(cnv_codes[from][to], matrix()[from].codes[to]) << from << " to " << to;
    }
    EXPECT_EQ(cells, 484u);
}

TEST(ConvertMatrix, HoldsEveryFunctionOfThe297Slots) {
    ASSERT_EQ(slots().size(), CNV_SLOTS);
    for (size_t code = 0; code < CNV_SLOTS; ++code) {
        EXPECT_EQ(cnvFcns[code].code, code);
        if (slots()[code] == "-") {
            EXPECT_EQ(cnvFcns[code].function, nullptr) << code;
            continue;
        }
        const auto named = conversion_functions().find(slots()[code]);
        ASSERT_NE(named, conversion_functions().end()) << slots()[code];
        EXPECT_EQ(cnvFcns[code].function, named->second) << code;
    }
}

// Different names are different functions, and each has a slot.
TEST(ConvertMatrix, GivesEachNamedFunctionASlotOfItsOwn) {
    std::set<B_CNVFCN> functions;
    for (const auto &[name, function] : conversion_functions()) {
        EXPECT_TRUE(functions.insert(function).second) << name;
        EXPECT_NE(std::find(slots().begin(), slots().end(), name), slots().end()) << name;
    }
    EXPECT_EQ(functions.size(), 226u);
}

TEST(ConvertMatrix, LeavesTheWideTextsSlotsEmpty) {
    std::set<size_t> empty;
    for (size_t code = 0; code < CNV_SLOTS; ++code)
        if (cnvFcns[code].function == nullptr)
            empty.insert(code);
    std::set<size_t> expected = {0,   2,   5,   19,  50,  54,  65,  68,  80,  83,  95,  98,  110,
                                 113, 125, 128, 140, 143, 155, 158, 170, 173, 185, 187, 199, 201,
                                 213, 214, 215, 216, 217, 218, 229, 233, 238, 243, 249, 255, 265};
    for (size_t code = 27; code <= 48; ++code)
        expected.insert(code);
    EXPECT_EQ(empty, expected);
}

// ---- Lookup ---------------------------------------------------------------------------------

TEST(ConvertMatrix, VerifiesAPairByItsCellAlone) {
    for (const MatrixRow &from : matrix()) {
        for (size_t to = 0; to < CNV_TYPES; ++to) {
            CNVCODE code = 999;
            const OAK_RETCODE rc = b_convertVerify(from.type, matrix()[to].type, &code);
            const CNVCODE expected = from.codes[to];
            EXPECT_EQ(rc, expected == 0 ? eINVCONVERT : sOKAY);
            EXPECT_EQ(code, expected == 0 ? 999 : expected);
            EXPECT_EQ(b_convertVerify(from.type, matrix()[to].type, nullptr), rc);
            EXPECT_EQ(getConvertCode(from.type, matrix()[to].type, nullptr), rc);
            B_CNVFCN function = nullptr;
            EXPECT_EQ(findConversion(convert::kindOf(from.type), convert::kindOf(matrix()[to].type),
                                     &function),
                      has_function(expected) ? sOKAY : eINVCONVERT);
            EXPECT_EQ(function, cnvFcns[expected].function);
        }
    }
}

TEST(ConvertMatrix, FoldsTextAndBinaryOnBothSides) {
    for (const auto &[type, folded] : folds()) {
        for (const MatrixRow &row : matrix()) {
            CNVCODE code = 0, expected = 0;
            EXPECT_EQ(b_convertVerify(type, row.type, &code),
                      b_convertVerify(folded, row.type, &expected));
            EXPECT_EQ(code, expected);
            code = expected = 0;
            EXPECT_EQ(b_convertVerify(row.type, type, &code),
                      b_convertVerify(row.type, folded, &expected));
            EXPECT_EQ(code, expected);
        }
    }
}

TEST(ConvertMatrix, KnowsNoMarkersAndNoOtherWideText) {
    for (const OAK_TYPE type : kOutside) {
        CNVCODE code = 999;
        EXPECT_EQ(b_convertVerify(type, OAK_CHAR, &code), eINVCONVERT) << std::hex << type;
        EXPECT_EQ(b_convertVerify(OAK_CHAR, type, &code), eINVCONVERT) << std::hex << type;
        EXPECT_EQ(b_convertVerify(type, type, &code), eINVCONVERT) << std::hex << type;
        EXPECT_EQ(code, 999);
    }
}

// ---- Every pair through every entry point ---------------------------------------------------

// A value of each type that every function takes; `text` is what it is as text.
struct Sample {
    OAK_VALUE value;
    const char *text; // a text that the type takes
};

class Samples {
  public:
    Samples() : decimal_(decimal("5")) {
        EXPECT_EQ(oak_uuidFromText(), sOKAY);
        moment_ = {738945, 120000000, 60};
        add(scalar(OAK_BOOL, OAK_TRUE), "1");
        add(scalar<int8_t>(OAK_INT8, 5), "5");
        add(scalar<uint8_t>(OAK_UINT8, 5), "5");
        add(scalar<int16_t>(OAK_INT16, 5), "5");
        add(scalar<uint16_t>(OAK_UINT16, 5), "5");
        add(scalar<int32_t>(OAK_INT32, 5), "5");
        add(scalar<uint32_t>(OAK_UINT32, 5), "5");
        add(scalar<int64_t>(OAK_INT64, 5), "5");
        add(scalar<uint64_t>(OAK_UINT64, 5), "5");
        add(scalar<float>(OAK_FLOAT, 5), "5");
        add(scalar<double>(OAK_DOUBLE, 5), "5");
        add(value_over(OAK_BCD, &decimal_, 0, 0), "5");
        add(scalar<uint32_t>(OAK_DATE, 738945), "2024-02-29");
        add(scalar<uint32_t>(OAK_TIME, 120000000), "12:00:00");
        add(scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{120000000, 60}), "12:00:00 +01:00");
        add(scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{738945, 120000000}),
            "2024-02-29 12:00:00");
        add(value_over(OAK_TIMESTAMPTZ, &moment_, 0, 0), "2024-02-29 12:00:00 +01:00");
        add(scalar<uint64_t>(OAK_ROWID, 5), "5");
        add(value_over(OAK_UUID, &uuid_, 0, 0), "00112233-4455-6677-8899-aabbccddeeff");
        for (const OAK_TYPE type :
             {OAK_CHAR, OAK_VARCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR_UTF8, OAK_CLOB, OAK_WCLOB_UTF8})
            add(value_over(type, "5", 2, 0), "5");
        for (const OAK_TYPE type : {OAK_BINARY, OAK_VARBINARY, OAK_BLOB})
            add(value_over(type, bytes_, 1, 0), "AB");
        add(value_over(OAK_WCHAR, bytes_, 8, 0), "5");
    }

    const std::map<OAK_TYPE, Sample> &all() const { return samples_; }

    // The source for a pair: text and binary must suit what they are to become.
    OAK_VALUE source(OAK_TYPE from, OAK_TYPE to) const {
        OAK_VALUE value = samples_.at(from).value;
        const unsigned typeClass = static_cast<unsigned>(from) & OAK_TYPE_CLASS_MASK;
        if (typeClass == OAK_TYPE_CLASS_TEXT && samples_.contains(to)) {
            value.vt.cv = samples_.at(to).text;
            value.len = std::strlen(value.vt.cv) + 1;
        }
        if (typeClass == OAK_TYPE_CLASS_BINARY && to == OAK_UUID)
            value.len = sizeof bytes_;
        return value;
    }

  private:
    OAK_RETCODE oak_uuidFromText() {
        std::memset(&uuid_, 0x5A, sizeof uuid_);
        return sOKAY;
    }
    void add(const OAK_VALUE &value, const char *text) { samples_[value.type] = {value, text}; }

    OAK_BCD_T decimal_;
    OAK_PACKED_TIMESTAMPTZ_T moment_;
    OAK_UUID_T uuid_;
    uint8_t bytes_[16] = {1, 2, 3};
    std::map<OAK_TYPE, Sample> samples_;
};

OAK_TYPE folded(OAK_TYPE type) {
    const auto found = folds().find(type);
    return found == folds().end() ? type : found->second;
}

CNVCODE code_of(OAK_TYPE from, OAK_TYPE to) {
    for (const MatrixRow &row : matrix())
        if (row.type == folded(from))
            for (size_t i = 0; i < matrix().size(); ++i)
                if (matrix()[i].type == folded(to))
                    return row.codes[i];
    return 0;
}

// Each pair of the 29 types converts by every road, or is refused by every road.
TEST(ConvertMatrix, ConvertsOrRefusesEachPairAlikeAtEveryEntry) {
    const Samples samples;
    for (const auto &[from, ignored] : samples.all()) {
        for (const auto &[to, also_ignored] : samples.all()) {
            Tag tag;
            tag.may_keep_blocks();
            SCOPED_TRACE(std::string(b_typeGetStr(from)) + " to " + b_typeGetStr(to));
            const OAK_VALUE source = samples.source(from, to);
            const CNVCODE code = code_of(from, to);
            const bool possible = code != 0 && has_function(code);
            alignas(16) uint8_t buffer[256] = {};
            size_t size = 0;
            const OAK_RETCODE by_buffer = to_buffer(&source, to, buffer, sizeof buffer, &size);
            OAK_VALUE into = value_over(to, buffer, 0, 0);
            const OAK_RETCODE by_value = convert_into(&into, &source, to, sizeof buffer, tag);
            OAK_VALUE converted;
            const OAK_RETCODE by_door = convert_value(&converted, &source, to, 64, tag);
            if (possible) {
                EXPECT_EQ(by_buffer, sOKAY);
                EXPECT_EQ(by_value, sOKAY);
                EXPECT_EQ(into.type, to);
                EXPECT_EQ(into.len, size);
            } else {
                EXPECT_EQ(by_buffer, eINVCONVERT);
                EXPECT_EQ(by_value, eINVCONVERT);
                EXPECT_EQ(by_door, from == to ? sOKAY : eINVCONVERT);
            }
        }
    }
}

// A payload at an address that nobody may read.
TEST(ConvertMatrix, RefusesAPairBeforeItReadsAnyData) {
    const Samples samples;
    for (const auto &[from, sample] : samples.all()) {
        OAK_VALUE source = sample.value;
        source.vt.pv = reinterpret_cast<const void *>(uintptr_t{16});
        source.len = 40;
        for (const auto &[to, ignored] : samples.all()) {
            const CNVCODE code = code_of(from, to);
            if (from == to || (code != 0 && has_function(code)))
                continue;
            Tag tag;
            SCOPED_TRACE(std::string(b_typeGetStr(from)) + " to " + b_typeGetStr(to));
            OAK_VALUE converted;
            EXPECT_EQ(convert_value(&converted, &source, to, 0, tag), eINVCONVERT);
            EXPECT_EQ(converted.type, OAK_NOVAL);
            EXPECT_EQ(convert_buffer(&converted, to, 0, source.vt.pv, from, 40, tag), eINVCONVERT);
            EXPECT_EQ(to_buffer(&source, to, nullptr, 0, nullptr), eINVCONVERT);
            EXPECT_EQ(convert_into(&converted, &source, to, 0, tag), eINVCONVERT);
        }
    }
}

} // namespace
