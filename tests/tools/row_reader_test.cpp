// Rows from stored objects, below the programs: what has no bytes, no memory or no
// text. What the programs make of rows is shown with them.
#include "row_reader.h"

#include "catalog.h"
#include "row_dump.h"
#include "tool_run.h"
#include "value.h"

namespace {

using oaktest::column;

constexpr char kStored[] = "11 00 00 02 00 0a 01 78 00"; // the row 5, "x"

// A tag that could not be had is a null argument to what needs one.
constexpr std::initializer_list<OAK_RETCODE> kWithoutMemory = {eNOMEMORY, eINVNULLARG};

std::string two_columns() {
    return oaktest::one_table(
        column(0, "a", R"("int32")") + "," + column(1, "b", R"("varchar", "length": 9)"), 2);
}

TEST(PackedObject, AnObjectWithoutBytesIsNotTheOneBefore) {
    const std::vector<uint8_t> stored = oaktest::unhex(kStored);
    tools::PackedObject object;
    EXPECT_EQ(object.read({}), eEOD);
    ASSERT_EQ(object.read(stored), sOKAY);
    EXPECT_EQ(object.read({}), eEOD);
    EXPECT_EQ(object.read(stored), sOKAY);
}

TEST(RowReader, TellsThatMemoryEnds) {
    const oaktest::Catalog catalog(two_columns());
    const std::vector<uint8_t> stored = oaktest::unhex(kStored);
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, kWithoutMemory, [&] {
        tools::RowReader reader(catalog.table("t"));
        const OAK_RETCODE status = reader.read(stored, 1);
        if (status == sOKAY) {
            std::string text;
            for (const tools::Column &each : reader.columns()) {
                tools::RowReader::State state = tools::RowReader::State::null;
                OAK_VALUE value;
                EXPECT_EQ(reader.column(each, &state, &value), sOKAY);
                EXPECT_EQ(state, tools::RowReader::State::value);
                EXPECT_EQ(tools::append_value_text(&text, each, value), sOKAY);
            }
            EXPECT_EQ(text, "5x");
        }
        return status;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(RowDump, TellsThatMemoryEnds) {
    const oaktest::Catalog catalog(two_columns());
    const std::vector<uint8_t> packed = oaktest::unhex(kStored + 3); // without its header
    const tools::Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, kWithoutMemory, [&] {
        OAK_BUFFER buffer;
        b_buffInit(&buffer, tag);
        b_buffSetStatic(&buffer, packed.data(), packed.size());
        std::string values;
        const tools::Complaint complaint =
            tools::dump_row(&buffer, OAK_ITEM_FORMAT_COMPACT, catalog.table("t"), 0,
                            [&](const tools::RowPart &part) {
                                values += part.is_column ? part.what + part.value : "";
                            });
        b_buffTerm(&buffer);
        if (complaint.empty()) {
            EXPECT_EQ(values, "a5bx");
            return sOKAY;
        }
        for (const OAK_RETCODE status : kWithoutMemory) {
            if (complaint.ends_with(tools::status_text(status))) {
                return status;
            }
        }
        ADD_FAILURE() << complaint;
        return eFAIL;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(ValueText, WhatIsOfNoTypeHasNoText) {
    const oaktest::Catalog catalog(two_columns());
    const std::vector<tools::Column> columns = tools::columns_of(catalog.table("t"));
    OAK_VALUE value;
    oak_valueInit(&value);
    std::string text = "before";
    EXPECT_EQ(tools::append_value_text(&text, columns[0], value), eINVCONVERT);
    EXPECT_EQ(text, "before");
}

TEST(StatusText, AStatusThatIsNotListedIsItsNumber) {
    EXPECT_EQ(tools::status_text(eRANGE), "eRANGE (Numeric value out of range)");
    EXPECT_EQ(tools::status_text(static_cast<OAK_RETCODE>(-99999)), "status -99999");
}

} // namespace
