// The front door: which conversions are copies, what a destination gets to hold its
// payload, the lengths of results, raw sources, plain buffers, arrays, failures with their
// memory, and every road under an exhausted allocator.
#include <cmath>
#include <limits>

#include "convert_support.h"
#include "datetime.h"
#include "uuid.h"

using namespace oaktest;

namespace {

constexpr OAK_TYPE kPlainTexts[] = {OAK_CHAR, OAK_VARCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR_UTF8};
constexpr OAK_TYPE kLargeTexts[] = {OAK_CLOB, OAK_WCLOB_UTF8};

bool is_narrow(OAK_TYPE type) {
    return type == OAK_CHAR || type == OAK_VARCHAR;
}

// The tag's blocks are the values' payloads.
class Convert : public testing::Test {
  protected:
    void SetUp() override { tag_.may_keep_blocks(); }

    OAK_RETCODE convert(const OAK_VALUE &from, OAK_TYPE type, size_t room = 0) {
        return convert_value(&to_, &from, type, room, tag_);
    }
    // The text that a value becomes without a limit.
    std::string text_of(const OAK_VALUE &from, OAK_TYPE type = OAK_CHAR, size_t room = 0) {
        const OAK_RETCODE rc = convert(from, type, room);
        EXPECT_GE(rc, sOKAY);
        EXPECT_EQ(to_.type, type);
        EXPECT_EQ(to_.status, vsOKAY);
        EXPECT_EQ(to_.len, std::strlen(to_.vt.cv) + 1);
        return to_.vt.cv;
    }

    Tag tag_;
    OAK_VALUE to_;
};

// ---- Copies ---------------------------------------------------------------------------------

TEST_F(Convert, CopiesNullsAndAbsentValuesWithTheirType) {
    OAK_VALUE value;
    oak_valueInitAndSetNull(&value);
    EXPECT_EQ(convert(value, OAK_INT32), sOKAY);
    EXPECT_EQ(to_.status, vsNULL);
    EXPECT_EQ(to_.type, OAK_NOVAL);
    oak_valueSetInt32(&value, 5);
    oak_valueSetNull(&value);
    EXPECT_EQ(convert(value, OAK_CHAR), sOKAY);
    EXPECT_EQ(to_.status, vsNULL);
    EXPECT_EQ(to_.type, OAK_INT32);
    // What a NULL points to is not looked at.
    value = value_over(OAK_CHAR, reinterpret_cast<const void *>(uintptr_t{16}), 0, 0);
    value.status = vsNULL;
    EXPECT_EQ(convert(value, OAK_INT32), sOKAY);
    EXPECT_EQ(to_.status, vsNULL);
    EXPECT_EQ(to_.type, OAK_CHAR);
    oak_valueInitWithType(&value, OAK_UUID);
    EXPECT_EQ(convert(value, OAK_DATE), sOKAY);
    EXPECT_EQ(to_.status, vsNOVAL);
    EXPECT_EQ(to_.type, OAK_UUID);
}

// Even a type that the matrix does not know is a copy of itself.
TEST_F(Convert, CopiesWhatHasTheTypeAlready) {
    const OAK_VALUE number = scalar<int32_t>(OAK_INT32, 77);
    EXPECT_EQ(convert(number, OAK_INT32, 1), sOKAY);
    EXPECT_EQ(to_.vt.i32v, 77);
    const OAK_VALUE text = text_value(OAK_CHAR, "hello");
    EXPECT_EQ(convert(text, OAK_CHAR, 2), sOKAY); // the limit has no effect
    EXPECT_STREQ(to_.vt.cv, "hello");
    EXPECT_EQ(to_.len, 6u);
    EXPECT_NE(to_.vt.cv, text.vt.cv);
    EXPECT_EQ(convert(scalar<int16_t>(OAK_PARAMREF, 3), OAK_PARAMREF), sOKAY);
    EXPECT_EQ(to_.vt.i16v, 3);
    int32_t elements[] = {1, 2, 3};
    EXPECT_EQ(convert(value_over(OAK_INT32, elements, 0, 3), OAK_INT32), sOKAY);
    EXPECT_EQ(to_.elts, 3u);
    EXPECT_NE(to_.vt.i32a, elements);
    EXPECT_EQ(std::memcmp(to_.vt.i32a, elements, sizeof elements), 0);
}

TEST_F(Convert, CopiesNarrowTextAsUtf8TextAndBackWithTheSourcesType) {
    for (const OAK_TYPE from : kPlainTexts) {
        for (const OAK_TYPE type : kPlainTexts) {
            SCOPED_TRACE(std::string(b_typeGetStr(from)) + " to " + std::to_string(type));
            EXPECT_EQ(convert(text_value(from, "hello"), type, 3),
                      from != type && is_narrow(from) == is_narrow(type) ? sTRUNCATE : sOKAY);
            const bool copied = from == type || is_narrow(from) != is_narrow(type);
            EXPECT_EQ(to_.type, copied ? from : type);
            EXPECT_STREQ(to_.vt.cv, copied ? "hello" : "he");
            EXPECT_EQ(to_.len, copied ? 6u : 3u);
        }
    }
}

TEST_F(Convert, RefusesNullArguments) {
    OAK_VALUE value = scalar<int32_t>(OAK_INT32, 1);
    EXPECT_EQ(convert_value(nullptr, &value, OAK_INT64, 0, tag_), eINVNULLARG);
    EXPECT_EQ(convert_value(&to_, nullptr, OAK_INT64, 0, tag_), eINVNULLARG);
    EXPECT_EQ(convert_buffer(nullptr, OAK_INT64, 0, &value, OAK_INT32, 4, tag_), eINVNULLARG);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT64, 0, nullptr, OAK_INT32, 4, tag_), eINVNULLARG);
    EXPECT_EQ(convert_into(&to_, nullptr, OAK_INT64, 0, tag_), eINVNULLARG);
    EXPECT_EQ(convert_into(nullptr, &value, OAK_INT64, 0, tag_), eINVNULLARG);
    EXPECT_EQ(to_buffer(nullptr, OAK_INT64, &value, 8, nullptr), eINVNULLARG);
    EXPECT_EQ(b_convertOakArray(nullptr, &to_, OAK_INT64, tag_), eINVNULLARG);
    EXPECT_EQ(b_convertOakArray(&value, nullptr, OAK_INT64, tag_), eINVNULLARG);
}

// A payload that is not there is told of, where it would be read.
TEST_F(Convert, RefusesValuesWithoutTheirPayload) {
    for (const OAK_TYPE type : {OAK_CHAR, OAK_CLOB, OAK_BCD, OAK_UUID, OAK_TIMESTAMPTZ}) {
        SCOPED_TRACE(b_typeGetStr(type));
        const OAK_VALUE value = value_over(type, nullptr, 0, 0);
        EXPECT_EQ(convert(value, OAK_VARCHAR), eINVNULLARG);
        EXPECT_EQ(to_buffer(&value, OAK_VARCHAR, nullptr, 0, nullptr), eINVNULLARG);
    }
    EXPECT_EQ(convert(value_over(OAK_INT32, nullptr, 0, 3), OAK_INT64), eINVNULLARG);
    EXPECT_EQ(convert(value_over(OAK_BINARY, nullptr, 3, 0), OAK_CHAR), eINVNULLARG);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT64, 0, nullptr, OAK_INT32, 0, tag_), eINVNULLARG);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT64, 0, nullptr, OAK_CHAR, 0, tag_), eINVNULLARG);
    // Binary without bytes has none.
    EXPECT_EQ(text_of(value_over(OAK_BINARY, nullptr, 0, 0)), "0x");
    EXPECT_EQ(convert(value_over(OAK_BINARY, nullptr, 0, 0), OAK_INT32), sOKAY);
    EXPECT_EQ(to_.vt.i32v, 0);
}

TEST_F(Convert, TakesTheSourceAsItsOwnDestination) {
    OAK_VALUE value = text_value(OAK_CHAR, "2024");
    EXPECT_EQ(convert_value(&value, &value, OAK_INT32, 0, tag_), sOKAY);
    EXPECT_EQ(value.vt.i32v, 2024);
    EXPECT_EQ(convert_value(&value, &value, OAK_VARCHAR, 0, tag_), sOKAY);
    EXPECT_STREQ(value.vt.cv, "2024");
    int16_t elements[] = {7, 8};
    value = value_over(OAK_INT16, elements, 0, 2);
    EXPECT_EQ(convert_value(&value, &value, OAK_DOUBLE, 0, tag_), sOKAY);
    EXPECT_EQ(value.vt.da[1], 8.0);
}

// ---- Numbers through the door ---------------------------------------------------------------

TEST_F(Convert, ClearsTheDestinationAndSetsItsFields) {
    std::memset(&to_, 0x5A, sizeof to_);
    EXPECT_EQ(convert(scalar<int64_t>(OAK_INT64, -2), OAK_INT16), sOKAY);
    EXPECT_EQ(to_.type, OAK_INT16);
    EXPECT_EQ(to_.status, vsOKAY);
    EXPECT_EQ(to_.elts, 0u);
    EXPECT_EQ(to_.len, 0u);
    EXPECT_EQ(to_.tag, nullptr);
    EXPECT_EQ(to_.vt.u64v, 0xFFFEu); // nothing above the two bytes
    EXPECT_EQ(convert(scalar<int64_t>(OAK_INT64, 256), OAK_BOOL), sOKAY);
    EXPECT_EQ(to_.vt.bv, OAK_TRUE);
    EXPECT_EQ(to_.vt.u64v, 1u);
}

TEST_F(Convert, LeavesAnAbsentValueWhereItFails) {
    EXPECT_EQ(convert(scalar<int64_t>(OAK_INT64, 300), OAK_INT8), eRANGE);
    EXPECT_EQ(to_.type, OAK_NOVAL);
    EXPECT_EQ(to_.status, vsNOVAL);
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, 0), OAK_ROWID), eRANGE);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "0"), OAK_ROWID), sOKAY); // text has no such check
    EXPECT_EQ(to_.vt.ridv, 0u);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "12.50"), OAK_INT32), sTRUNCATE);
    EXPECT_EQ(to_.vt.i32v, 12);
    EXPECT_EQ(to_.status, vsOKAY);
    EXPECT_EQ(to_.type, OAK_INT32);
}

// Other positive statuses keep the source's status and the conversion's length.
TEST_F(Convert, PassesOtherPositiveStatusesOn) {
    OAK_VALUE text = text_value(OAK_CHAR, "0.111111111111111111111111111111111");
    text.status = vsCURRENT;
    EXPECT_EQ(convert(text, OAK_BCD), sPRECISIONLOSS);
    EXPECT_EQ(to_.type, OAK_BCD);
    EXPECT_EQ(to_.status, vsCURRENT);
    EXPECT_EQ(to_.len, 37u);
    EXPECT_EQ(to_.vt.bcd->data[1], 1);
}

TEST_F(Convert, MakesDecimalsUuidsAndZonedTimestampsBehindAPointer) {
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, -15), OAK_BCD, 1), sOKAY); // the size is known
    const OAK_BCD_T wanted = decimal("-15");
    EXPECT_EQ(std::memcmp(to_.vt.bcd, &wanted, sizeof wanted), 0);
    EXPECT_EQ(to_.len, 37u);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "00112233-4455-6677-8899-aabbccddeeff"), OAK_UUID),
              sOKAY);
    EXPECT_EQ(hex(to_.vt.uuid, 16), "00112233445566778899aabbccddeeff");
    EXPECT_EQ(to_.len, 16u);
    EXPECT_EQ(convert(scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{5, 6}), OAK_TIMESTAMPTZ), sOKAY);
    EXPECT_EQ(to_.vt.tszv->date, 5u);
    EXPECT_EQ(to_.len, 0u);
}

TEST_F(Convert, NeverGivesAScalarMoreRoomThanItHas) {
    // A raw image of nine bytes does not fit an integer of eight, whatever was asked.
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 3, 0), OAK_INT32, 4), sOKAY);
    EXPECT_EQ(to_.vt.u64v, 0x030201u);
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 4, 0), OAK_INT32, 100), sOKAY);
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 5, 0), OAK_INT32, 100), eDATALOST);
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 9, 0), OAK_UINT64, 100), eDATALOST);
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 3, 0), OAK_INT32, 2), eDATALOST);
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 3, 0), OAK_INT32), eDATALOST); // no room
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 1, 0), OAK_BOOL), sOKAY);
    // Less room than a date needs is not enough.
    EXPECT_EQ(convert(scalar<uint32_t>(OAK_DATE, 738945), OAK_TIMESTAMP, 4), eDATALOST);
    EXPECT_EQ(convert(scalar<uint32_t>(OAK_DATE, 738945), OAK_TIMESTAMP, 100), sOKAY);
    EXPECT_EQ(convert(scalar<uint32_t>(OAK_DATE, 738945), OAK_TIMESTAMP), sOKAY);
    EXPECT_EQ(to_.vt.tsv.date, 738945u);
}

// ---- One letter -----------------------------------------------------------------------------

TEST_F(Convert, TakesTheCodeOfASingleLetter) {
    for (const OAK_TYPE type : kPlainTexts) {
        EXPECT_EQ(convert(text_value(type, "A"), OAK_INT8), sOKAY);
        EXPECT_EQ(to_.type, OAK_INT8);
        EXPECT_EQ(to_.vt.i8v, 65);
        EXPECT_EQ(to_.len, 0u);
        EXPECT_EQ(convert(text_value(type, "12"), OAK_INT8), sOKAY);
        EXPECT_EQ(to_.vt.i8v, 12);
    }
    EXPECT_EQ(convert(text_value(OAK_CHAR, "7"), OAK_INT8), sOKAY);
    EXPECT_EQ(to_.vt.i8v, 55);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "\xE4"), OAK_INT8), sOKAY);
    EXPECT_EQ(to_.vt.i8v, -28);
    EXPECT_EQ(convert(value_over(OAK_CHAR, "A", 0, 0), OAK_INT8), sOKAY); // without a length
    EXPECT_EQ(to_.vt.i8v, 65);
    // Not with a size, for another type, of a large object, or from a raw source.
    EXPECT_EQ(convert(text_value(OAK_CHAR, "7"), OAK_INT8, 1), sOKAY);
    EXPECT_EQ(to_.vt.i8v, 7);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "A"), OAK_UINT8), eINVLITERAL);
    EXPECT_EQ(convert(text_value(OAK_CLOB, "A"), OAK_INT8), eINVLITERAL);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT8, 0, "A", OAK_CHAR, 2, tag_), eINVLITERAL);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT8, 0, "7", OAK_CHAR, 2, tag_), sOKAY);
    EXPECT_EQ(to_.vt.i8v, 7);
}

// ---- Text destinations ----------------------------------------------------------------------

TEST_F(Convert, WritesWholeTextsWhereNobodyNamedASize) {
    const OAK_BCD_T number = decimal("-0.00000000000000000000000000000001");
    OAK_UUID_T uuid;
    ASSERT_EQ(oak_uuidFromString("00112233-4455-6677-8899-aabbccddeeff", &uuid), sOKAY);
    const OAK_PACKED_TIMESTAMPTZ_T moment = {738945, 0, 60};
    for (const OAK_TYPE type :
         {OAK_CHAR, OAK_VARCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR_UTF8, OAK_CLOB, OAK_WCLOB_UTF8}) {
        EXPECT_EQ(text_of(scalar<int64_t>(OAK_INT64, INT64_MIN), type), "-9223372036854775808");
        EXPECT_EQ(text_of(scalar<double>(OAK_DOUBLE, -0.1), type), "-0.1");
        EXPECT_EQ(text_of(scalar(OAK_BOOL, OAK_TRUE), type), "1");
        EXPECT_EQ(text_of(scalar<uint64_t>(OAK_ROWID, 12), type), "12");
        EXPECT_EQ(text_of(scalar<uint32_t>(OAK_DATE, 738945), type), "2024-02-29");
        EXPECT_EQ(text_of(scalar<uint32_t>(OAK_TIME, 0), type), "00:00:00.0000");
        EXPECT_EQ(text_of(value_over(OAK_BCD, &number, 0, 0), type),
                  "-0.00000000000000000000000000000001");
        EXPECT_EQ(text_of(value_over(OAK_UUID, &uuid, 0, 0), type),
                  "00112233-4455-6677-8899-aabbccddeeff");
        // Values that a copy gave a length are the same values.
        EXPECT_EQ(text_of(value_over(OAK_UUID, &uuid, 16, 0), type),
                  "00112233-4455-6677-8899-aabbccddeeff");
        EXPECT_EQ(text_of(value_over(OAK_TIMESTAMPTZ, &moment, 12, 0), type),
                  "2024-02-29 01:00:00.0000 +01:00");
    }
}

TEST_F(Convert, WritesLongTextsWholeAsWell) {
    std::vector<OAK_BCD_T> decimals(40, decimal("12345678901234567890"));
    std::string wanted = "ARRAY[";
    for (size_t i = 0; i < decimals.size(); ++i)
        wanted += (i == 0 ? "" : ",") + std::string("12345678901234567890");
    for (uint32_t count = 0; count <= 40; ++count) // about the size of any work area
        EXPECT_EQ(text_of(value_over(OAK_BCD, decimals.data(), 0, count)),
                  count == 0 ? "12345678901234567890" : wanted.substr(0, 5 + 21 * count) + "]");
    const std::string digits(3000, '7');
    EXPECT_EQ(convert(text_value(OAK_CLOB, digits.c_str()), OAK_BLOB), sOKAY);
    EXPECT_EQ(to_.len, 1500u);
    EXPECT_EQ(hex(to_.vt.pv, to_.len), digits);
    const std::string bad = digits + "xx";
    EXPECT_EQ(convert(text_value(OAK_CLOB, bad.c_str()), OAK_BLOB), eINVBINLITERAL);
}

TEST_F(Convert, CutsTextsToTheSizeThatWasNamed) {
    EXPECT_EQ(text_of(scalar<int32_t>(OAK_INT32, 12345), OAK_CHAR, 6), "12345");
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, 12345), OAK_CHAR, 5), sTRUNCATE);
    EXPECT_STREQ(to_.vt.cv, ""); // a number is never cut
    EXPECT_EQ(to_.len, 1u);
    EXPECT_EQ(convert(scalar<uint32_t>(OAK_DATE, 738945), OAK_CHAR, 5), eDATALOST);
    EXPECT_EQ(to_.type, OAK_NOVAL);
    const OAK_VALUE moment = scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{738945, 1234});
    EXPECT_EQ(convert(moment, OAK_CHAR, 21), sTRUNCATE);
    EXPECT_STREQ(to_.vt.cv, "2024-02-29 00:00:00");
    EXPECT_EQ(to_.len, 20u);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "hello"), OAK_VARCHAR, 3), sTRUNCATE);
    EXPECT_STREQ(to_.vt.cv, "he");
    EXPECT_EQ(to_.len, 3u);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "hello"), OAK_VARCHAR, 1), sOKAY);
    EXPECT_STREQ(to_.vt.cv, "h"); // terminated in the byte to spare
    EXPECT_EQ(to_.len, 2u);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "hello"), OAK_VARCHAR), sOKAY);
    EXPECT_STREQ(to_.vt.cv, "hello");
}

TEST_F(Convert, CountsTheCharactersOfATextWithoutALength) {
    for (const OAK_TYPE type : {OAK_CHAR, OAK_CLOB, OAK_WVARCHAR_UTF8}) {
        const OAK_VALUE text = value_over(type, "0102", 0, 0);
        EXPECT_EQ(convert(text, OAK_BINARY), sOKAY);
        EXPECT_EQ(to_.len, 2u);
        EXPECT_EQ(hex(to_.vt.pv, 2), "0102");
        char buffer[8];
        size_t size = 0;
        EXPECT_EQ(to_buffer(&text, OAK_CHAR, buffer, sizeof buffer, &size), sOKAY);
        EXPECT_STREQ(buffer, "0102");
        EXPECT_EQ(size, 5u);
    }
    EXPECT_EQ(text_of(value_over(OAK_CHAR, "abc", 0, 0), OAK_CLOB), "abc");
}

TEST_F(Convert, MakesLargeTextsOfTheSourcesLength) {
    for (const OAK_TYPE type : kLargeTexts) {
        EXPECT_EQ(text_of(text_value(OAK_CHAR, "hello"), type, 2), "hello"); // no limit holds
        EXPECT_EQ(text_of(text_value(OAK_CHAR, ""), type), "");
        const uint8_t bytes[] = {0xAB, 0xCD, 0xEF, 1, 2, 3, 4, 5, 6};
        // Binary gets as many characters as it has bytes, which hold fewer digits.
        EXPECT_EQ(text_of(value_over(OAK_BINARY, bytes, 9, 0), type), "0xABCDEF");
        EXPECT_EQ(text_of(value_over(OAK_BINARY, bytes, 3, 0), type), "0x");
        EXPECT_EQ(text_of(value_over(OAK_BINARY, bytes, 2, 0), type), "");
        EXPECT_EQ(text_of(value_over(OAK_BINARY, bytes, 0, 0), type), "0x");
        EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 9, 0), type), sTRUNCATE);
    }
}

TEST_F(Convert, GivesBinaryTheRoomOfItsHexadecimalForm) {
    const uint8_t bytes[] = {0xAB, 0xCD};
    for (const OAK_TYPE type : kPlainTexts)
        for (const size_t room : {size_t{0}, size_t{1}, size_t{100}})
            EXPECT_EQ(text_of(value_over(OAK_VARBINARY, bytes, 2, 0), type, room), "0xABCD");
}

// ---- Binary destinations --------------------------------------------------------------------

TEST_F(Convert, SizesBinaryByTheSource) {
    EXPECT_EQ(convert(text_value(OAK_CHAR, "0x0102"), OAK_BINARY, 1), sOKAY);
    EXPECT_EQ(to_.len, 2u);
    EXPECT_EQ(hex(to_.vt.pv, 2), "0102");
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, 0x01020304), OAK_VARBINARY), sOKAY);
    EXPECT_EQ(to_.len, 4u);
    EXPECT_EQ(hex(to_.vt.pv, 4), "04030201");
    EXPECT_EQ(convert(scalar(OAK_BOOL, OAK_TRUE), OAK_BINARY), sOKAY);
    EXPECT_EQ(to_.len, 1u);
    const OAK_BCD_T number = decimal("1");
    EXPECT_EQ(convert(value_over(OAK_BCD, &number, 0, 0), OAK_BINARY), sOKAY);
    EXPECT_EQ(to_.len, 37u);
    EXPECT_EQ(std::memcmp(to_.vt.pv, &number, 37), 0);
    const uint8_t bytes[] = {1, 2, 3};
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 3, 0), OAK_VARBINARY, 1), sOKAY);
    EXPECT_EQ(to_.len, 3u);
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 0, 0), OAK_VARBINARY), eTYPEMISMATCH);
    EXPECT_EQ(convert(text_value(OAK_CHAR, "012"), OAK_BINARY), eINVBINLITERAL);
}

// The size of the source is one byte less than the conversion asks for.
TEST_F(Convert, CannotMakeBinaryOfAUuidThroughTheDoor) {
    OAK_UUID_T uuid = {};
    EXPECT_EQ(convert(value_over(OAK_UUID, &uuid, 0, 0), OAK_BINARY), eDATALOST);
    EXPECT_EQ(convert(value_over(OAK_UUID, &uuid, 16, 0), OAK_BINARY), eDATALOST);
    EXPECT_EQ(convert(value_over(OAK_UUID, &uuid, 17, 0), OAK_BINARY), sOKAY);
    EXPECT_EQ(to_.len, 16u);
    EXPECT_EQ(convert(value_over(OAK_UUID, &uuid, 0, 0), OAK_BLOB, 17), sOKAY);
    EXPECT_EQ(to_.len, 16u);
}

TEST_F(Convert, SizesLargeBinaryByTheSourceOrTheRequest) {
    const uint8_t bytes[] = {1, 2, 3};
    EXPECT_EQ(convert(value_over(OAK_BINARY, bytes, 3, 0), OAK_BLOB, 1), sOKAY);
    EXPECT_EQ(to_.len, 3u);
    EXPECT_EQ(convert(value_over(OAK_VARBINARY, bytes, 0, 0), OAK_BLOB), sOKAY);
    EXPECT_EQ(to_.len, 0u);
    EXPECT_EQ(to_.vt.pv, nullptr);
    for (const OAK_TYPE type : kPlainTexts) {
        EXPECT_EQ(convert(text_value(type, "010203"), OAK_BLOB, 1), sOKAY);
        EXPECT_EQ(to_.len, 3u);
    }
    EXPECT_EQ(convert(text_value(OAK_CLOB, "010203"), OAK_BLOB, 2), sTRUNCATE);
    EXPECT_EQ(to_.len, 2u);
    EXPECT_EQ(convert(text_value(OAK_CLOB, "010203"), OAK_BLOB), sOKAY);
    EXPECT_EQ(to_.len, 3u);
    EXPECT_EQ(hex(to_.vt.pv, 3), "010203");
    // A number without a request has its own size; with a small one, no element fits.
    EXPECT_EQ(convert(scalar<int16_t>(OAK_INT16, 5), OAK_BLOB), sOKAY);
    EXPECT_EQ(to_.len, 2u);
    EXPECT_EQ(hex(to_.vt.pv, 2), "0500");
    EXPECT_EQ(convert(scalar<int16_t>(OAK_INT16, 5), OAK_BLOB, 1), sTRUNCATE);
    EXPECT_EQ(to_.len, 0u);
}

// ---- Refusals -------------------------------------------------------------------------------

TEST_F(Convert, DoesNothingForASubquery) {
    OAK_VALUE value;
    oak_valueInitWithStatusAndType(&value, vsOKAY, OAK_SUBQUERY);
    for (const OAK_TYPE type : {OAK_INT32, OAK_CHAR, OAK_BCD, OAK_BLOB}) {
        EXPECT_EQ(convert(value, type), sOKAY);
        EXPECT_EQ(to_.type, OAK_NOVAL);
        EXPECT_EQ(to_.status, vsNOVAL);
    }
    EXPECT_EQ(convert(value, OAK_BINARY), eTYPEMISMATCH); // it has no length
}

TEST_F(Convert, RefusesErrorsAndMarkers) {
    OAK_VALUE value;
    oak_valueInit(&value);
    for (const OAK_RETCODE error : {eDIVBY0, eRANGE}) {
        oak_valueSetError(&value, error);
        EXPECT_EQ(convert(value, OAK_INT32), eINVCONVERT);
        EXPECT_EQ(convert(value, OAK_CHAR), eINVCONVERT);
        EXPECT_EQ(convert(value, OAK_BINARY), eTYPEMISMATCH); // no length, which is asked first
    }
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, 1), OAK_DEFAULT), eINVCONVERT);
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, 1), OAK_WVARCHAR), eINVCONVERT);
    EXPECT_EQ(convert(scalar<int32_t>(OAK_INT32, 1), OAK_WCHAR), eINVCONVERT);
    EXPECT_EQ(convert_buffer(&to_, OAK_BINARY, 0, "", OAK_NOVAL, 0, tag_), eTYPEMISMATCH);
}

TEST(ConvertMemory, ReleasesThePayloadOfAFailedConversion) {
    Tag tag; // ends empty
    OAK_VALUE to;
    const OAK_VALUE text = text_value(OAK_CHAR, "no number");
    EXPECT_EQ(convert_value(&to, &text, OAK_BCD, 0, tag), eINVLITERAL);
    EXPECT_EQ(to.vt.pv, nullptr);
    EXPECT_EQ(convert_value(&to, &text, OAK_UUID, 0, tag), eINVLITERAL);
    const OAK_VALUE date = scalar<uint32_t>(OAK_DATE, 738945);
    EXPECT_EQ(convert_value(&to, &date, OAK_CHAR, 4, tag), eDATALOST);
    const OAK_VALUE none = scalar<uint32_t>(OAK_DATE, 0);
    EXPECT_EQ(convert_value(&to, &none, OAK_CHAR, 0, tag), eBASE_INVDATE);
    EXPECT_EQ(convert_buffer(&to, OAK_CHAR, 40, &none.vt, OAK_DATE, 4, tag), eBASE_INVDATE);
    int32_t elements[] = {1, 2};
    const OAK_VALUE array = value_over(OAK_INT32, elements, 0, 2);
    EXPECT_EQ(convert_value(&to, &array, OAK_CHAR, 40, tag), eINVCONVERT);
    EXPECT_EQ(convert_value(&to, &array, OAK_BCD, 0, tag), eINVCONVERT);
}

TEST(ConvertMemory, RefusesASizeThatNoMachineHas) {
    Tag tag;
    OAK_VALUE to;
    const OAK_VALUE number = scalar<int32_t>(OAK_INT32, 1);
    EXPECT_EQ(convert_value(&to, &number, OAK_CHAR, SIZE_MAX, tag), eNOMEMORY);
    EXPECT_EQ(convert_value(&to, &number, OAK_CHAR, SIZE_MAX / 2, tag), eNOMEMORY);
    EXPECT_EQ(to.vt.pv, nullptr);
}

// Scalars need no tag.
TEST(ConvertMemory, ConvertsInlineScalarsWithoutATag) {
    OAK_VALUE to;
    const OAK_VALUE text = text_value(OAK_CHAR, "2024-02-29");
    EXPECT_EQ(convert_value(&to, &text, OAK_DATE, 0, nullptr), sOKAY);
    EXPECT_EQ(to.vt.dtv, 738945u);
}

// ---- Raw sources ----------------------------------------------------------------------------

TEST_F(Convert, ConvertsRawSources) {
    const int32_t number = -1234567;
    EXPECT_EQ(convert_buffer(&to_, OAK_INT64, 0, &number, OAK_INT32, sizeof number, tag_), sOKAY);
    EXPECT_EQ(to_.type, OAK_INT64);
    EXPECT_EQ(to_.status, vsOKAY);
    EXPECT_EQ(to_.vt.i64v, -1234567);
    for (const size_t length : {size_t{0}, sizeof number}) {
        EXPECT_EQ(convert_buffer(&to_, OAK_CHAR, 0, &number, OAK_INT32, length, tag_), sOKAY);
        EXPECT_STREQ(to_.vt.cv, "-1234567");
        EXPECT_EQ(to_.len, 9u);
    }
    EXPECT_EQ(convert_buffer(&to_, OAK_INT32, 0, "42", OAK_CHAR, 3, tag_), sOKAY);
    EXPECT_EQ(to_.vt.i32v, 42);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT32, 0, "42.9", OAK_VARCHAR, 0, tag_), sTRUNCATE);
    EXPECT_EQ(to_.vt.i32v, 42);
    EXPECT_EQ(to_.status, vsOKAY);
    // The same type is converted, and cut, not copied.
    EXPECT_EQ(convert_buffer(&to_, OAK_CHAR, 3, "hello", OAK_CHAR, 6, tag_), sTRUNCATE);
    EXPECT_STREQ(to_.vt.cv, "he");
    EXPECT_EQ(convert_buffer(&to_, OAK_INT32, 0, &number, OAK_INT32, 4, tag_), sOKAY);
    EXPECT_EQ(to_.vt.i32v, number);
    const OAK_PACKED_TIMESTAMPTZ_T moment = {738945, 5, 60};
    EXPECT_EQ(convert_buffer(&to_, OAK_TIMESTAMPTZ, 0, &moment, OAK_TIMESTAMPTZ, 12, tag_), sOKAY);
    EXPECT_EQ(to_.vt.tszv->tz, 60);
    EXPECT_EQ(to_.len, 0u);
    EXPECT_EQ(convert_buffer(&to_, OAK_BINARY, 0, "abc", OAK_BINARY, 3, tag_), sOKAY);
    EXPECT_EQ(hex(to_.vt.pv, to_.len), "616263");
    EXPECT_EQ(convert_buffer(&to_, OAK_BLOB, 0, nullptr, OAK_BINARY, 0, tag_), sOKAY);
    EXPECT_EQ(to_.len, 0u);
    EXPECT_EQ(convert_buffer(&to_, OAK_INT8, 0, &number, OAK_INT32, 4, tag_), eRANGE);
    EXPECT_EQ(to_.type, OAK_NOVAL);
}

// At an address that suits no number, as in the middle of a row.
TEST_F(Convert, ConvertsRawSourcesAtAnyAddress) {
    const double value = 2.5;
    uint8_t bytes[sizeof value + 1];
    std::memcpy(bytes + 1, &value, sizeof value);
    EXPECT_EQ(convert_buffer(&to_, OAK_FLOAT, 0, bytes + 1, OAK_DOUBLE, 8, tag_), sOKAY);
    EXPECT_EQ(to_.vt.fv, 2.5F);
}

// ---- Prepared destinations and plain buffers ------------------------------------------------

TEST_F(Convert, RunsOneConversionIntoAPreparedDestination) {
    char buffer[8] = "*******";
    OAK_VALUE into = value_over(OAK_NOVAL, buffer, 3, 9);
    OAK_VALUE number = scalar<int32_t>(OAK_INT32, 1234);
    number.status = vsDATALOSS;
    EXPECT_EQ(convert_into(&into, &number, OAK_CHAR, sizeof buffer, tag_), sOKAY);
    EXPECT_STREQ(buffer, "1234");
    EXPECT_EQ(into.type, OAK_CHAR);
    EXPECT_EQ(into.status, vsDATALOSS);
    EXPECT_EQ(into.elts, 0u);
    EXPECT_EQ(into.len, 5u);
    // Without a payload the size is told.
    into = value_over(OAK_NOVAL, nullptr, 0, 0);
    EXPECT_EQ(convert_into(&into, &number, OAK_CHAR, 0, tag_), sOKAY);
    EXPECT_EQ(into.len, 5u);
    // A failure leaves the fields.
    into = scalar<int8_t>(OAK_INT8, 7);
    into.len = 3;
    EXPECT_EQ(convert_into(&into, &number, OAK_INT8, 0, tag_), eRANGE);
    EXPECT_EQ(into.status, vsOKAY);
    EXPECT_EQ(into.len, 3u);
    EXPECT_EQ(into.vt.i8v, 7);
}

TEST_F(Convert, WritesASingleResultIntoTheValueWhateverItWas) {
    OAK_VALUE into = value_over(OAK_INT64, nullptr, 0, 5); // it claimed an array
    const OAK_VALUE number = scalar<int32_t>(OAK_INT32, 1234);
    EXPECT_EQ(convert_into(&into, &number, OAK_INT64, 100, tag_), sOKAY);
    EXPECT_EQ(into.elts, 0u);
    EXPECT_EQ(into.vt.i64v, 1234);
}

// Row ids have no arrays of their own, so what comes of some is one value, or as many as
// the destination has room for.
TEST_F(Convert, BoundsElementsThatAreNoArrayByTheDestination) {
    const uint64_t rows[] = {5, 6, 7};
    const OAK_VALUE value = value_over(OAK_ROWID, rows, 0, 3);
    for (const OAK_TYPE type : {OAK_INT64, OAK_INT16, OAK_ROWID}) {
        OAK_VALUE into = value_over(type, nullptr, 0, 0);
        EXPECT_EQ(convert_into(&into, &value, type, 100, tag_), sTRUNCATE);
        EXPECT_EQ(into.elts, 0u);
        EXPECT_EQ(into.vt.u64v, 5u);
    }
    int16_t numbers[3] = {1, 1, 1};
    OAK_VALUE into = value_over(OAK_INT16, numbers, 0, 2);
    EXPECT_EQ(convert_into(&into, &value, OAK_INT16, 100, tag_), sTRUNCATE);
    EXPECT_EQ(into.elts, 3u);
    EXPECT_EQ(hex(numbers, sizeof numbers), "050006000100");
    const OAK_BCD_T decimals[2] = {decimal("1.5"), decimal("2.5")};
    EXPECT_EQ(text_of(value_over(OAK_BCD, decimals, 0, 2)), "ARRAY[1.5,2.5]");
    EXPECT_EQ(convert(value_over(OAK_BCD, decimals, 0, 2), OAK_INT32), sTRUNCATE);
    EXPECT_EQ(to_.vt.i32v, 1);
    EXPECT_EQ(to_.elts, 0u);
}

TEST_F(Convert, ConvertsIntoPlainBuffersAndTellsTheBytes) {
    char buffer[16];
    size_t size = 99;
    const OAK_VALUE number = scalar<double>(OAK_DOUBLE, 2.5);
    EXPECT_EQ(to_buffer(&number, OAK_CHAR, buffer, sizeof buffer, &size), sOKAY);
    EXPECT_STREQ(buffer, "2.5");
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(to_buffer(&number, OAK_CHAR, buffer, sizeof buffer, nullptr), sOKAY);
    EXPECT_EQ(to_buffer(&number, OAK_CHAR, nullptr, 0, &size), sOKAY);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(to_buffer(&number, OAK_CHAR, buffer, 3, &size), sTRUNCATE);
    EXPECT_EQ(size, 1u);
    size = 99;
    EXPECT_EQ(to_buffer(&number, OAK_DATE, buffer, 16, &size), eINVCONVERT);
    EXPECT_EQ(size, 99u); // a failure tells no size
    const OAK_VALUE large = scalar<double>(OAK_DOUBLE, 1e30);
    EXPECT_EQ(to_buffer(&large, OAK_INT32, buffer, 16, &size), eRANGE);
    EXPECT_EQ(size, 99u);
}

TEST_F(Convert, ConvertsArraysIntoPlainBuffersElementByElement) {
    double values[] = {1.5, 2.25, 1e20};
    const OAK_VALUE array = value_over(OAK_DOUBLE, values, 0, 3);
    char text[40];
    size_t size = 0;
    EXPECT_EQ(to_buffer(&array, OAK_CHAR, text, sizeof text, &size), sOKAY);
    EXPECT_STREQ(text, "ARRAY[1.5,2.25,1E+20]");
    EXPECT_EQ(size, 22u);
    float narrow[3];
    EXPECT_EQ(to_buffer(&array, OAK_FLOAT, narrow, sizeof narrow, &size), sOKAY);
    EXPECT_EQ(narrow[2], 1e20F);
    EXPECT_EQ(to_buffer(&array, OAK_FLOAT, narrow, 8, &size), sTRUNCATE);
    EXPECT_EQ(size, 8u);
    OAK_BCD_T decimals[3];
    EXPECT_EQ(to_buffer(&array, OAK_BCD, decimals, sizeof decimals, &size), sOKAY);
    EXPECT_EQ(size, 111u);
}

// How dates are ordered and separated, what times show and the zone to assume go through
// every door to the conversion.
TEST_F(Convert, HandsTheFormatsToTheConversion) {
    const OAK_VALUE moment = scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{738945, 495000000});
    const OAK_VALUE date = scalar<uint32_t>(OAK_DATE, 738945);
    constexpr OAK_DATE_FORMAT order = OAK_DDMMYYYY;
    constexpr OAK_TIME_FORMAT shown = OAK_HHMM;
    constexpr int16_t zone = -90;
    const char *const wanted = "29.02.2024 13:45";

    EXPECT_EQ(oak_valueConvert(&to_, &moment, OAK_CHAR, 0, order, '.', shown, zone, tag_), sOKAY);
    EXPECT_STREQ(to_.vt.cv, wanted);
    EXPECT_EQ(oak_valueConvert(&to_, &moment, OAK_CHAR, 40, order, '.', shown, zone, tag_), sOKAY);
    EXPECT_STREQ(to_.vt.cv, wanted);
    EXPECT_EQ(oak_valueConvert(&to_, &date, OAK_TIMESTAMPTZ, 0, order, '.', shown, zone, tag_),
              sOKAY);
    EXPECT_EQ(to_.vt.tszv->tz, zone);

    EXPECT_EQ(oak_valueConvertFromBuffer(&to_, OAK_CHAR, 0, &moment.vt, OAK_TIMESTAMP, 8, order,
                                         '.', shown, zone, tag_),
              sOKAY);
    EXPECT_STREQ(to_.vt.cv, wanted);
    EXPECT_EQ(oak_valueConvertFromBuffer(&to_, OAK_TIMESTAMPTZ, 0, &date.vt, OAK_DATE, 4, order,
                                         '.', shown, zone, tag_),
              sOKAY);
    EXPECT_EQ(to_.vt.tszv->tz, zone);

    char text[40];
    OAK_PACKED_TIMESTAMPTZ_T zoned{};
    OAK_VALUE into = value_over(OAK_NOVAL, text, 0, 0);
    EXPECT_EQ(
        b_convertOakValue(&moment, &into, OAK_CHAR, sizeof text, order, '.', shown, zone, tag_),
        sOKAY);
    EXPECT_STREQ(text, wanted);
    into = value_over(OAK_NOVAL, &zoned, 0, 0);
    EXPECT_EQ(b_convertOakValue(&date, &into, OAK_TIMESTAMPTZ, sizeof zoned, order, '.', shown,
                                zone, tag_),
              sOKAY);
    EXPECT_EQ(zoned.tz, zone);

    text[0] = '\0';
    zoned.tz = 0;
    EXPECT_EQ(b_convertOakValueToBuffer(&moment, OAK_CHAR, order, '.', shown, zone, text,
                                        sizeof text, nullptr, nullptr),
              sOKAY);
    EXPECT_STREQ(text, wanted);
    EXPECT_EQ(b_convertOakValueToBuffer(&date, OAK_TIMESTAMPTZ, order, '.', shown, zone, &zoned,
                                        sizeof zoned, nullptr, nullptr),
              sOKAY);
    EXPECT_EQ(zoned.tz, zone);
}

// ---- Arrays ---------------------------------------------------------------------------------

TEST_F(Convert, ConvertsAnArrayToAnArray) {
    int32_t values[] = {1, 2, 3};
    OAK_VALUE array = value_over(OAK_INT32, values, 7, 3);
    EXPECT_EQ(convert(array, OAK_DOUBLE), sOKAY);
    EXPECT_EQ(to_.type, OAK_DOUBLE);
    EXPECT_EQ(to_.status, vsOKAY);
    EXPECT_EQ(to_.len, 0u);
    EXPECT_EQ(to_.elts, 3u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(to_.vt.da[i], i + 1.0);
    EXPECT_EQ(convert(array, OAK_BOOL), sOKAY);
    EXPECT_EQ(hex(to_.vt.ba, 12), "010000000100000001000000");
    OAK_BOOL_T truths[] = {OAK_TRUE, OAK_FALSE};
    EXPECT_EQ(convert(value_over(OAK_BOOL, truths, 0, 2), OAK_UINT64), sOKAY);
    EXPECT_EQ(to_.vt.u64a[0], 1u);
    EXPECT_EQ(to_.vt.u64a[1], 0u);
}

TEST_F(Convert, MakesAPreparedDestinationAnArrayAsWell) {
    int32_t values[] = {1, 2};
    const OAK_VALUE array = value_over(OAK_INT32, values, 0, 2);
    OAK_VALUE into = scalar<int64_t>(OAK_INT64, 9);
    EXPECT_EQ(convert_into(&into, &array, OAK_INT64, 0, tag_), sOKAY);
    EXPECT_EQ(into.elts, 2u);
    EXPECT_EQ(into.vt.i64a[1], 2);
    EXPECT_EQ(convert_into(&into, &array, OAK_CHAR, 0, tag_), eINVCONVERT);
}

// Every pair of the eleven types that can be arrays.
TEST_F(Convert, ConvertsArraysOfEveryTypeToEveryOther) {
    const OAK_TYPE types[] = {OAK_BOOL,   OAK_INT8,  OAK_UINT8,  OAK_INT16, OAK_UINT16, OAK_INT32,
                              OAK_UINT32, OAK_INT64, OAK_UINT64, OAK_FLOAT, OAK_DOUBLE};
    const int8_t ones[] = {1, 0, 1};
    const OAK_VALUE start = value_over(OAK_INT8, ones, 0, 3);
    for (const OAK_TYPE from : types) {
        OAK_VALUE source;
        ASSERT_EQ(b_convertOakArray(&start, &source, from, tag_), sOKAY);
        for (const OAK_TYPE type : types) {
            ASSERT_EQ(b_convertOakArray(&source, &to_, type, tag_), sOKAY);
            OAK_VALUE back;
            ASSERT_EQ(b_convertOakArray(&to_, &back, OAK_INT8, tag_), sOKAY);
            EXPECT_EQ(std::memcmp(back.vt.i8a, ones, 3), 0)
                << b_typeGetStr(from) << " to " << b_typeGetStr(type);
        }
    }
}

TEST_F(Convert, RefusesArraysToWhatIsNone) {
    int32_t values[] = {1};
    const OAK_VALUE array = value_over(OAK_INT32, values, 0, 1);
    for (const OAK_TYPE type : {OAK_CHAR, OAK_CLOB, OAK_BCD, OAK_BINARY, OAK_BLOB, OAK_ROWID,
                                OAK_DATE, OAK_UUID, OAK_DEFAULT}) {
        EXPECT_EQ(convert(array, type, 40), eINVCONVERT) << b_typeGetStr(type);
        EXPECT_EQ(b_convertOakArray(&array, &to_, type, tag_), eINVCONVERT);
    }
    const OAK_VALUE one = scalar<int32_t>(OAK_INT32, 1);
    EXPECT_EQ(b_convertOakArray(&one, &to_, OAK_INT64, tag_), eINVCONVERT); // no array
    // A code of class 2 that is no type of the matrix.
    EXPECT_EQ(b_convertOakArray(&array, &to_, static_cast<OAK_TYPE>(0x0402), tag_), eINVCONVERT);
}

// The walk goes on behind a failure, and the status is that of the last element.
TEST_F(Convert, TellsOfTheLastElementAlone) {
    int64_t values[] = {300, 1};
    EXPECT_EQ(convert(value_over(OAK_INT64, values, 0, 2), OAK_INT8), sOKAY);
    EXPECT_EQ(to_.vt.i8a[1], 1);
    std::swap(values[0], values[1]);
    EXPECT_EQ(convert(value_over(OAK_INT64, values, 0, 2), OAK_INT8), eRANGE);
    EXPECT_EQ(to_.vt.i8a[0], 1); // the array is there all the same
    EXPECT_EQ(to_.elts, 2u);
    EXPECT_EQ(to_.type, OAK_INT8);
    float reals[] = {1, NAN};
    EXPECT_EQ(convert(value_over(OAK_FLOAT, reals, 0, 2), OAK_BOOL), eRANGE);
    EXPECT_EQ(to_.vt.ba[0], OAK_TRUE);
}

TEST_F(Convert, TakesArraysAtAnyAddress) {
    uint8_t bytes[9] = {0, 1, 0, 0, 0, 2, 0, 0, 0};
    EXPECT_EQ(convert(value_over(OAK_INT32, bytes + 1, 0, 2), OAK_INT16), sOKAY);
    EXPECT_EQ(to_.vt.i16a[1], 2);
}

// ---- Arrays as text -------------------------------------------------------------------------

template <class T>
std::string array_text(OAK_TYPE type, std::vector<T> values, int32_t width = 0,
                       int32_t precision = 2) {
    Tag tag;
    const OAK_VALUE array =
        value_over(type, values.data(), 0, static_cast<uint32_t>(values.size()));
    char *text = nullptr;
    EXPECT_EQ(b_convertArrayToString(&array, &text, width, precision, tag), sOKAY);
    const std::string result = text;
    OSL_FREE(text, tag);
    return result;
}

TEST(ConvertArrayText, WritesEachTypeInItsForm) {
    EXPECT_EQ(array_text<int8_t>(OAK_INT8, {-128, 127}), "ARRAY[-128,127]");
    EXPECT_EQ(array_text<int16_t>(OAK_INT16, {-32768}), "ARRAY[-32768]");
    EXPECT_EQ(array_text<int32_t>(OAK_INT32, {1, -2, 3}), "ARRAY[1,-2,3]");
    EXPECT_EQ(array_text<int64_t>(OAK_INT64, {INT64_MIN}), "ARRAY[-9223372036854775808]");
    EXPECT_EQ(array_text<uint8_t>(OAK_UINT8, {255}), "ARRAY[255]");
    EXPECT_EQ(array_text<uint16_t>(OAK_UINT16, {65535}), "ARRAY[65535]");
    EXPECT_EQ(array_text<uint32_t>(OAK_UINT32, {UINT32_MAX}), "ARRAY[4294967295]");
    EXPECT_EQ(array_text<uint64_t>(OAK_UINT64, {UINT64_MAX}), "ARRAY[18446744073709551615]");
    EXPECT_EQ(array_text<float>(OAK_FLOAT, {0.5F, -1.25F}), "ARRAY[0.50,-1.25]");
    EXPECT_EQ(array_text<double>(OAK_DOUBLE, {0.5, 1e3}), "ARRAY[0.50,1000.00]");
}

TEST(ConvertArrayText, PadsAndRoundsFloatingNumbers) {
    EXPECT_EQ(array_text<double>(OAK_DOUBLE, {1.25, -2}, 8, 3), "ARRAY[   1.250,  -2.000]");
    EXPECT_EQ(array_text<float>(OAK_FLOAT, {1.5F}, -6, 0), "ARRAY[2     ]");
    EXPECT_EQ(array_text<double>(OAK_DOUBLE, {0.125}, 0, -1), "ARRAY[0.125000]");
    EXPECT_EQ(array_text<int32_t>(OAK_INT32, {1}, 8, 3), "ARRAY[1]"); // for those types alone
    // A text of any length: the block is measured.
    const std::string wide = array_text<double>(OAK_DOUBLE, {1, 2}, 500, 300);
    EXPECT_EQ(wide.size(), 7 + 2 * 500 + 1);
    EXPECT_EQ(array_text<double>(OAK_DOUBLE, {1e308}, 0, 0).size(), 7 + 309);
}

// True is what equals one, and nothing else.
TEST(ConvertArrayText, WritesTruthInWords) {
    EXPECT_EQ(array_text<OAK_BOOL_T>(OAK_BOOL, {OAK_TRUE, OAK_FALSE, static_cast<OAK_BOOL_T>(2),
                                                static_cast<OAK_BOOL_T>(257)}),
              "ARRAY[true,false,false,false]");
}

TEST(ConvertArrayText, RefusesWhatIsNoArray) {
    Tag tag;
    char *text = nullptr;
    int32_t values[] = {1};
    OAK_VALUE value = scalar<int32_t>(OAK_INT32, 1);
    EXPECT_EQ(b_convertArrayToString(&value, &text, 0, 0, tag), eINVCONVERT);
    value = value_over(OAK_INT32, values, 0, 1);
    EXPECT_EQ(b_convertArrayToString(&value, nullptr, 0, 0, tag), eINVCONVERT);
    EXPECT_EQ(b_convertArrayToString(nullptr, &text, 0, 0, tag), eINVNULLARG);
    value = value_over(OAK_INT32, nullptr, 0, 1);
    EXPECT_EQ(b_convertArrayToString(&value, &text, 0, 0, tag), eINVNULLARG);
    value = value_over(OAK_ROWID, values, 0, 1);
    EXPECT_EQ(b_convertArrayToString(&value, &text, 0, 0, tag), eINVCONVERT);
    EXPECT_EQ(text, nullptr);
}

// Against the C library, and where it would take minutes, against what it must be.
TEST(ConvertArrayText, WritesFloatingNumbersAsPrintfDoes) {
    Random random(2);
    for (int i = 0; i < 300; ++i) {
        uint64_t bits = random.next();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        const auto width = static_cast<int32_t>(random.below(40)) - 20;
        const auto precision = static_cast<int32_t>(random.below(i % 10 == 0 ? 1500 : 20)) - 1;
        std::vector<char> text(8192);
        if (width == 0)
            osl_snprintf(text.data(), text.size(), "ARRAY[%.*f]", precision, value);
        else
            osl_snprintf(text.data(), text.size(), "ARRAY[%*.*f]", width, precision, value);
        EXPECT_EQ(array_text<double>(OAK_DOUBLE, {value}, width, precision), text.data());
    }
    for (const double value : {double{INFINITY}, double{-INFINITY}, double{NAN}, 0.0, -0.0})
        for (const int32_t precision : {0, 2000}) {
            std::vector<char> text(8192);
            osl_snprintf(text.data(), text.size(), "ARRAY[%9.*f]", precision, value);
            EXPECT_EQ(array_text<double>(OAK_DOUBLE, {value}, 9, precision), text.data());
        }
    const std::string wide = array_text<double>(OAK_DOUBLE, {1}, -1000000, 500000);
    EXPECT_EQ(wide, "ARRAY[1." + std::string(500000, '0') + std::string(499998, ' ') + "]");
}

TEST(ConvertText, ReadsADoubleAsTheStandardDoes) {
    EXPECT_EQ(b_convertAsciiToDouble("12.5abc"), 12.5);
    EXPECT_EQ(b_convertAsciiToDouble("abc"), 0.0);
    EXPECT_EQ(b_convertAsciiToDouble(nullptr), 0.0);
}

// ---- Exhausted memory -----------------------------------------------------------------------

// Each road that allocates, and what it gives when that fails; nothing is left behind.
template <class Operation>
void sweep(Operation operation) {
    const uint64_t failures = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        OSL_MEMTAG tag = OSL_CREATE_TAG();
        if (tag == nullptr)
            return eNOMEMORY;
        const OAK_RETCODE rc = operation(tag);
        OSL_FREE_TAG(tag);
        return rc;
    });
    EXPECT_EQ(failures != 0, faults_are_injected());
}

TEST(ConvertMemory, TellsOfItsEndAndLeavesAnAbsentValue) {
    const OAK_VALUE number = scalar<double>(OAK_DOUBLE, 2.5);
    for (const OAK_TYPE type : {OAK_CHAR, OAK_CLOB, OAK_BCD, OAK_BINARY, OAK_BLOB}) {
        sweep([&](OSL_MEMTAG tag) {
            OAK_VALUE to;
            const OAK_RETCODE rc = convert_value(&to, &number, type, 0, tag);
            EXPECT_EQ(to.type, rc == sOKAY ? type : OAK_NOVAL);
            EXPECT_EQ(to.vt.pv == nullptr, rc != sOKAY);
            return rc;
        });
        sweep([&](OSL_MEMTAG tag) {
            OAK_VALUE to;
            return convert_buffer(&to, type, 0, &number.vt, OAK_DOUBLE, 8, tag);
        });
    }
}

TEST(ConvertMemory, LeavesTheDestinationOfAnArrayAsItWas) {
    int32_t values[] = {1, 2, 3};
    const OAK_VALUE array = value_over(OAK_INT32, values, 0, 3);
    sweep([&](OSL_MEMTAG tag) {
        OAK_VALUE to = scalar<int8_t>(OAK_INT8, 7);
        const OAK_RETCODE rc = b_convertOakArray(&array, &to, OAK_INT64, tag);
        if (rc != sOKAY) {
            EXPECT_EQ(to.type, OAK_INT8);
            EXPECT_EQ(to.elts, 0u);
        }
        return rc;
    });
    sweep([&](OSL_MEMTAG tag) {
        OAK_VALUE to;
        return convert_value(&to, &array, OAK_DOUBLE, 0, tag);
    });
    sweep([&](OSL_MEMTAG tag) {
        char *text = nullptr;
        const OAK_RETCODE rc = b_convertArrayToString(&array, &text, 0, 0, tag);
        EXPECT_EQ(text == nullptr, rc != sOKAY);
        return rc;
    });
}

} // namespace
