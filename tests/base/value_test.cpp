// Typed values: every setter, getter, comparer and copy on every type that it
// takes and on one that it refuses, the limits at both ends, and what happens
// when memory ends.
#include "value.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "bcd.h"
#include "datetime.h"
#include "test_support.h"
#include "value_internal.h"

using oaktest::Tag;

namespace {

constexpr OAK_TYPE kAllTypes[] = {OAK_NOVAL,
                                  OAK_BOOL,
                                  OAK_INT8,
                                  OAK_UINT8,
                                  OAK_INT16,
                                  OAK_UINT16,
                                  OAK_INT32,
                                  OAK_UINT32,
                                  OAK_INT64,
                                  OAK_UINT64,
                                  OAK_FLOAT,
                                  OAK_DOUBLE,
                                  OAK_BCD,
                                  OAK_DATE,
                                  OAK_TIME,
                                  OAK_TIMETZ,
                                  OAK_TIMESTAMP,
                                  OAK_TIMESTAMPTZ,
                                  OAK_ROWID,
                                  OAK_UUID,
                                  OAK_CHAR,
                                  OAK_WCHAR,
                                  OAK_WCHAR_UTF8,
                                  OAK_VARCHAR,
                                  OAK_WVARCHAR,
                                  OAK_WVARCHAR_UTF8,
                                  OAK_BINARY,
                                  OAK_VARBINARY,
                                  OAK_BLOB,
                                  OAK_CLOB,
                                  OAK_WCLOB,
                                  OAK_WCLOB_UTF8,
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
                                  OAK_GLOBALVAR};
static_assert(std::size(kAllTypes) == 48);

constexpr uint64_t kTopBit = UINT64_C(1) << 63;

// A record whose every byte is set, so that what is not cleared shows.
OAK_VALUE dirty() {
    OAK_VALUE value;
    memset(&value, 0xA5, sizeof value);
    return value;
}

unsigned class_of(OAK_TYPE type) {
    return static_cast<unsigned>(type) & 0x0F;
}

OAK_VALUE fresh() {
    OAK_VALUE value;
    oak_valueInit(&value);
    return value;
}

template <class Setter, class Native>
OAK_VALUE made(Setter setter, Native native) {
    OAK_VALUE value = fresh();
    setter(&value, native);
    return value;
}

OAK_VALUE of_type(OAK_TYPE type) {
    OAK_VALUE value;
    oak_valueInitWithStatusAndType(&value, vsOKAY, type);
    return value;
}

OAK_BCD_T decimal(const char *text) {
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdFromString(text, &result), sOKAY);
    return result;
}

OAK_VALUE of_decimal(OAK_BCD_T *number) {
    OAK_VALUE value = of_type(OAK_BCD);
    value.vt.bcd = number;
    return value;
}

OAK_VALUE text_value(const char *text, OAK_TYPE type = OAK_CHAR) {
    OAK_VALUE value = of_type(type);
    value.vt.cv = text;
    value.len = strlen(text) + 1;
    return value;
}

OAK_VALUE bytes_value(const void *bytes, size_t len, OAK_TYPE type = OAK_BINARY) {
    OAK_VALUE value = of_type(type);
    value.vt.pv = bytes;
    value.len = len;
    return value;
}

void free_payload(OAK_VALUE *value, OSL_MEMTAG tag) {
    OSL_FREE(const_cast<void *>(value->vt.pv), tag);
}

// ---- The record ------------------------------------------------------------------

TEST(ValueRecord, LaysItsFieldsOutInOrder) {
    EXPECT_EQ(offsetof(OAK_VALUE, status), 0u);
    EXPECT_EQ(offsetof(OAK_VALUE, type), 4u);
    EXPECT_EQ(offsetof(OAK_VALUE, elts), 8u);
    EXPECT_EQ(offsetof(OAK_VALUE, len), 16u);
    EXPECT_EQ(offsetof(OAK_VALUE, vt), 24u);
    EXPECT_EQ(offsetof(OAK_VALUE, tag), 32u);
    EXPECT_EQ(sizeof(OAK_VALUE), 40u);
    EXPECT_EQ(sizeof(OAK_COLUMN), 8u);
}

TEST(ValueRecord, NumbersItsStatuses) {
    EXPECT_EQ(vsNOVAL, 0);
    EXPECT_EQ(vsOKAY, 1);
    EXPECT_EQ(vsNULL, 2);
    EXPECT_EQ(vsCURRENT, 3);
    EXPECT_EQ(vsAUTO, 4);
    EXPECT_EQ(vsEMPTY, 5);
    EXPECT_EQ(vsTRUNCATE, 6);
    EXPECT_EQ(vsDATALOSS, 7);
    EXPECT_EQ(vsERROR, 8);
}

// ---- Making ------------------------------------------------------------------------

void expect_cleared(const OAK_VALUE &value, VAL_STATUS status, OAK_TYPE type) {
    EXPECT_EQ(value.status, status);
    EXPECT_EQ(value.type, type);
    EXPECT_EQ(value.elts, 0u);
    EXPECT_EQ(value.len, 0u);
    EXPECT_EQ(value.vt.u64v, 0u);
    EXPECT_EQ(value.tag, nullptr);
}

TEST(ValueInit, ClearsEverythingAndSetsStatusAndType) {
    OAK_VALUE value = dirty();
    oak_valueInit(&value);
    expect_cleared(value, vsNOVAL, OAK_NOVAL);
    value = dirty();
    oak_valueInitAndSetNull(&value);
    expect_cleared(value, vsNULL, OAK_NOVAL);
    value = dirty();
    oak_valueInitWithType(&value, OAK_BCD);
    expect_cleared(value, vsNOVAL, OAK_BCD);
    value = dirty();
    oak_valueInitWithStatusAndType(&value, vsAUTO, OAK_UUID);
    expect_cleared(value, vsAUTO, OAK_UUID);
}

TEST(ValueInit, DoesNothingToANullPointer) {
    oak_valueInit(nullptr);
    oak_valueInitAndSetNull(nullptr);
    oak_valueInitWithType(nullptr, OAK_INT8);
    oak_valueInitWithStatusAndType(nullptr, vsOKAY, OAK_INT8);
}

// ---- Scalar setters --------------------------------------------------------------------

// Each setter on a dirty record: the head is set, the tag stays.
#define EXPECT_SETTER(setter, native, code, member)                                                \
    do {                                                                                           \
        OAK_VALUE value = dirty();                                                                 \
        const OSL_MEMTAG tag = value.tag;                                                          \
        setter(&value, native);                                                                    \
        EXPECT_EQ(value.status, vsOKAY) << #setter;                                                \
        EXPECT_EQ(value.type, code) << #setter;                                                    \
        EXPECT_EQ(value.len, 0u) << #setter;                                                       \
        EXPECT_EQ(value.elts, 0u) << #setter;                                                      \
        EXPECT_EQ(value.tag, tag) << #setter;                                                      \
        EXPECT_EQ(value.vt.member, native) << #setter;                                             \
        setter(nullptr, native);                                                                   \
    } while (false)

TEST(ValueSet, MakesAValidScalarOfItsType) {
    EXPECT_SETTER(oak_valueSetBoolean, OAK_TRUE, OAK_BOOL, bv);
    EXPECT_SETTER(oak_valueSetBoolean, OAK_FALSE, OAK_BOOL, bv);
    EXPECT_SETTER(oak_valueSetInt8, INT8_MIN, OAK_INT8, i8v);
    EXPECT_SETTER(oak_valueSetUInt8, UINT8_MAX, OAK_UINT8, u8v);
    EXPECT_SETTER(oak_valueSetInt16, INT16_MIN, OAK_INT16, i16v);
    EXPECT_SETTER(oak_valueSetUInt16, UINT16_MAX, OAK_UINT16, u16v);
    EXPECT_SETTER(oak_valueSetInt32, INT32_MIN, OAK_INT32, i32v);
    EXPECT_SETTER(oak_valueSetUInt32, UINT32_MAX, OAK_UINT32, u32v);
    EXPECT_SETTER(oak_valueSetInt64, INT64_MIN, OAK_INT64, i64v);
    EXPECT_SETTER(oak_valueSetUInt64, UINT64_MAX, OAK_UINT64, u64v);
    EXPECT_SETTER(oak_valueSetFloat, -1.5f, OAK_FLOAT, fv);
    EXPECT_SETTER(oak_valueSetDouble, 2.25, OAK_DOUBLE, dv);
    EXPECT_SETTER(oak_valueSetDate, 3652059u, OAK_DATE, dtv);
    EXPECT_SETTER(oak_valueSetTime, 863999999u, OAK_TIME, tmv);
    EXPECT_SETTER(oak_valueSetRowId, UINT64_MAX, OAK_ROWID, ridv);
    EXPECT_SETTER(oak_valueSetParamRef, -2, OAK_PARAMREF, i16v);
    EXPECT_SETTER(oak_valueSetColRef, 32767, OAK_COLREF, i16v);
    EXPECT_SETTER(oak_valueSetProcVar, 7, OAK_PROCVAR, i16v);
    EXPECT_SETTER(oak_valueSetResultCol, 65535, OAK_RESULTCOL, u16v);
}

TEST(ValueSet, TakesPackedRecordsByValue) {
    OAK_VALUE value = dirty();
    oak_valueSetTimeTZ(&value, {36000000, -90});
    EXPECT_EQ(value.type, OAK_TIMETZ);
    EXPECT_EQ(value.vt.tmzv.time, 36000000u);
    EXPECT_EQ(value.vt.tmzv.tz, -90);
    value = dirty();
    oak_valueSetTimestamp(&value, {738000, 1});
    EXPECT_EQ(value.type, OAK_TIMESTAMP);
    EXPECT_EQ(value.vt.tsv.date, 738000u);
    EXPECT_EQ(value.vt.tsv.time, 1u);
    EXPECT_EQ(value.len, 0u);
    oak_valueSetTimeTZ(nullptr, {1, 1});
    oak_valueSetTimestamp(nullptr, {1, 1});
}

// ---- States ------------------------------------------------------------------------------

TEST(ValueSetError, TellsDivisionByZeroFromOtherErrors) {
    OAK_VALUE value = dirty();
    oak_valueSetError(&value, eDIVBY0);
    EXPECT_EQ(value.status, vsERROR);
    EXPECT_EQ(value.type, OAK_ZERODIV);
    EXPECT_EQ(value.vt.err, eDIVBY0);
    EXPECT_EQ(value.len, 0u);
    EXPECT_EQ(value.elts, 0u);
    value = dirty();
    oak_valueSetError(&value, eRANGE);
    EXPECT_EQ(value.status, vsERROR);
    EXPECT_EQ(value.type, OAK_NOVAL);
    EXPECT_EQ(value.vt.err, eRANGE);
    oak_valueSetError(nullptr, eRANGE);
}

TEST(ValueSetNull, LeavesTypeAndPayload) {
    OAK_VALUE value = made(oak_valueSetInt32, 5);
    oak_valueSetNull(&value);
    EXPECT_EQ(value.status, vsNULL);
    EXPECT_EQ(value.type, OAK_INT32);
    int64_t number = 0;
    EXPECT_EQ(oak_valueGetInt64(&value, &number), sOKAY);
    EXPECT_EQ(number, 5);
    oak_valueSetNull(nullptr);
}

TEST(ValueSetNoVal, ClearsStatusAndTypeAlone) {
    OAK_VALUE value = text_value("abc");
    oak_valueSetNoVal(&value);
    EXPECT_EQ(value.status, vsNOVAL);
    EXPECT_EQ(value.type, OAK_NOVAL);
    EXPECT_EQ(value.len, 4u);
    EXPECT_STREQ(value.vt.cv, "abc");
    oak_valueSetNoVal(nullptr);
}

// ---- Setters of payloads --------------------------------------------------------------------

const OAK_UUID_T kUuid = {0x01020304, 0x0506, 0x0708, 0x89, 0x0A, {11, 12, 13, 14, 15, 16}};

TEST(ValueSetString, BorrowsWithoutATag) {
    const char *text = "oak";
    OAK_VALUE value = fresh();
    value.elts = 3;
    ASSERT_EQ(oak_valueSetString(&value, text), sOKAY);
    EXPECT_EQ(value.type, OAK_CHAR);
    EXPECT_EQ(value.status, vsOKAY);
    EXPECT_EQ(value.elts, 0u);
    EXPECT_EQ(value.len, 4u);
    EXPECT_EQ(value.vt.cv, text);
}

TEST(ValueSetString, CopiesIntoTheTag) {
    Tag tag;
    const char *text = "oak";
    OAK_VALUE value = fresh();
    value.tag = tag;
    ASSERT_EQ(oak_valueSetString(&value, text), sOKAY);
    EXPECT_NE(value.vt.cv, text);
    EXPECT_STREQ(value.vt.cv, text);
    EXPECT_EQ(value.len, 4u);
    EXPECT_EQ(value.tag, tag.get());
    free_payload(&value, tag);
}

TEST(ValueSetBinary, BorrowsOrCopies) {
    Tag tag;
    const uint8_t bytes[] = {0, 1, 2};
    OAK_VALUE value = fresh();
    ASSERT_EQ(oak_valueSetBinary(&value, bytes, 3), sOKAY);
    EXPECT_EQ(value.type, OAK_BINARY);
    EXPECT_EQ(value.len, 3u);
    EXPECT_EQ(value.vt.pv, bytes);
    value.tag = tag;
    ASSERT_EQ(oak_valueSetBinary(&value, bytes, 2), sOKAY);
    EXPECT_EQ(value.len, 2u);
    ASSERT_NE(value.vt.pv, bytes);
    EXPECT_EQ(memcmp(value.vt.pv, bytes, 2), 0);
    free_payload(&value, tag);
}

TEST(ValueSetBinary, TakesNoBytesFromNowhere) {
    OAK_VALUE value = fresh();
    ASSERT_EQ(oak_valueSetBinary(&value, nullptr, 0), sOKAY);
    EXPECT_EQ(value.type, OAK_BINARY);
    EXPECT_EQ(value.len, 0u);
}

TEST(ValueSetUuid, BorrowsOrCopiesWithoutALength) {
    Tag tag;
    OAK_VALUE value = fresh();
    value.len = 9;
    ASSERT_EQ(oak_valueSetUuid(&value, &kUuid), sOKAY);
    EXPECT_EQ(value.type, OAK_UUID);
    EXPECT_EQ(value.len, 0u);
    EXPECT_EQ(value.vt.uuid, &kUuid);
    value.tag = tag;
    ASSERT_EQ(oak_valueSetUuid(&value, &kUuid), sOKAY);
    ASSERT_NE(value.vt.uuid, &kUuid);
    EXPECT_EQ(memcmp(value.vt.uuid, &kUuid, 16), 0);
    free_payload(&value, tag);
}

TEST(ValueSetPayload, RefusesNullPointers) {
    OAK_VALUE value = fresh();
    EXPECT_EQ(oak_valueSetString(nullptr, ""), eINVNULLARG);
    EXPECT_EQ(oak_valueSetString(&value, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_valueSetBinary(nullptr, "", 1), eINVNULLARG);
    EXPECT_EQ(oak_valueSetBinary(&value, nullptr, 1), eINVNULLARG);
    EXPECT_EQ(oak_valueSetUuid(nullptr, &kUuid), eINVNULLARG);
    EXPECT_EQ(oak_valueSetUuid(&value, nullptr), eINVNULLARG);
    expect_cleared(value, vsNOVAL, OAK_NOVAL);
}

TEST(ValueSetPayload, LeavesTheValueWhenMemoryEnds) {
    Tag tag;
    const auto attempt = [&tag](auto setter) {
        OAK_VALUE value = made(oak_valueSetInt32, 42);
        value.tag = tag;
        const OAK_RETCODE rc = setter(&value);
        if (rc == sOKAY) {
            free_payload(&value, tag);
        } else {
            EXPECT_EQ(value.type, OAK_INT32);
            EXPECT_EQ(value.vt.i32v, 42);
            EXPECT_EQ(value.len, 0u);
        }
        return rc;
    };
    for (const auto &setter : std::vector<std::function<OAK_RETCODE(OAK_VALUE *)>>{
             [](OAK_VALUE *value) { return oak_valueSetString(value, "text"); },
             [](OAK_VALUE *value) { return oak_valueSetBinary(value, "text", 3); },
             [](OAK_VALUE *value) { return oak_valueSetUuid(value, &kUuid); }}) {
        const uint64_t injected = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY},
                                                        [&] { return attempt(setter); });
        EXPECT_EQ(injected != 0, oaktest::faults_are_injected());
    }
}

// ---- Getters
// --------------------------------------------------------------------------------------

constexpr int64_t kNone64 = 0x1122334455667788;

// A getter that refuses leaves its output.
template <class Getter, class Out>
OAK_RETCODE got(Getter getter, const OAK_VALUE &value, Out *out) {
    const Out before = *out;
    const OAK_RETCODE rc = getter(&value, out);
    if (rc != sOKAY) {
        EXPECT_EQ(*out, before);
    }
    return rc;
}

struct SignedCase {
    OAK_VALUE value;
    int64_t as_signed;
    uint64_t as_unsigned;
    double as_double;
};

TEST(ValueGet, WidensIntegersByEachGettersRule) {
    const SignedCase cases[] = {
        {made(oak_valueSetInt8, int8_t{-1}), -1, 255, -1.0},
        {made(oak_valueSetInt8, INT8_MIN), -128, 128, -128.0},
        {made(oak_valueSetInt8, INT8_MAX), 127, 127, 127.0},
        {made(oak_valueSetUInt8, UINT8_MAX), 255, 255, 255.0},
        {made(oak_valueSetInt16, int16_t{-1}), -1, 65535, -1.0},
        {made(oak_valueSetInt16, INT16_MIN), -32768, 32768, -32768.0},
        {made(oak_valueSetUInt16, UINT16_MAX), 65535, 65535, 65535.0},
        {made(oak_valueSetInt32, -1), -1, 4294967295u, -1.0},
        {made(oak_valueSetInt32, INT32_MIN), INT32_MIN, 2147483648u, -2147483648.0},
        {made(oak_valueSetInt32, INT32_MAX), INT32_MAX, 2147483647u, 2147483647.0},
        {made(oak_valueSetUInt32, UINT32_MAX), 4294967295, 4294967295u, 4294967295.0},
        {made(oak_valueSetInt64, int64_t{-1}), -1, UINT64_MAX, -1.0},
        {made(oak_valueSetInt64, INT64_MIN), INT64_MIN, kTopBit, -9223372036854775808.0},
        {made(oak_valueSetInt64, INT64_MAX), INT64_MAX, INT64_MAX, 9223372036854775808.0},
        {made(oak_valueSetUInt64, kTopBit - 1), INT64_MAX, INT64_MAX, 9223372036854775808.0},
        {made(oak_valueSetUInt64, uint64_t{0}), 0, 0, 0.0},
    };
    for (const SignedCase &row : cases) {
        SCOPED_TRACE(row.value.type);
        int64_t signed_number = kNone64;
        uint64_t unsigned_number = kNone64;
        size_t size = kNone64;
        double real = 0.5;
        EXPECT_EQ(got(oak_valueGetInt64, row.value, &signed_number), sOKAY);
        EXPECT_EQ(signed_number, row.as_signed);
        EXPECT_EQ(got(oak_valueGetUInt64, row.value, &unsigned_number), sOKAY);
        EXPECT_EQ(unsigned_number, row.as_unsigned);
        EXPECT_EQ(got(oak_valueGetSizeT, row.value, &size), sOKAY);
        EXPECT_EQ(size, row.as_unsigned);
        EXPECT_EQ(got(oak_valueGetDouble, row.value, &real), sOKAY);
        EXPECT_EQ(real, row.as_double);
    }
}

TEST(ValueGetInt64, RefusesAnUnsignedNumberWithTheTopBit) {
    int64_t number = kNone64;
    for (const uint64_t bits : {kTopBit, kTopBit + 1, UINT64_MAX}) {
        EXPECT_EQ(got(oak_valueGetInt64, made(oak_valueSetUInt64, bits), &number), eRANGE);
    }
}

TEST(ValueGetUInt64, TruncatesFloatingNumbersTowardsZero) {
    const std::pair<double, uint64_t> cases[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.999, 0},
        {-0.999, 0},
        {1.5, 1},
        {-1.5, UINT64_MAX},
        {-9223372036854775808.0, kTopBit},
        {9223372036854774784.0, 9223372036854774784u},
        {9223372036854775808.0, kTopBit},
        {9223372036854777856.0, 9223372036854777856u},
        {18446744073709549568.0, 18446744073709549568u},
        // Out of range: what subtracting and flipping gives.
        {18446744073709551616.0, 0},
        {1e300, 0},
        {std::numeric_limits<double>::infinity(), 0},
        {-9223372036854777856.0, kTopBit},
        {-1e300, kTopBit},
        {-std::numeric_limits<double>::infinity(), kTopBit},
        {std::numeric_limits<double>::quiet_NaN(), kTopBit},
    };
    for (const auto &[real, expected] : cases) {
        SCOPED_TRACE(real);
        uint64_t number = kNone64;
        EXPECT_EQ(got(oak_valueGetUInt64, made(oak_valueSetDouble, real), &number), sOKAY);
        EXPECT_EQ(number, expected);
    }
    uint64_t number = kNone64;
    EXPECT_EQ(got(oak_valueGetUInt64, made(oak_valueSetFloat, 3.99f), &number), sOKAY);
    EXPECT_EQ(number, 3u);
}

TEST(ValueGetDouble, RoundsLargeUnsignedNumbersToNearest) {
    // Between 2^63 and 2^64 the doubles lie 2048 apart; ties go to the even one.
    const std::pair<uint64_t, double> cases[] = {
        {kTopBit, 9223372036854775808.0},        {kTopBit + 1024, 9223372036854775808.0},
        {kTopBit + 1025, 9223372036854777856.0}, {kTopBit + 3072, 9223372036854779904.0},
        {UINT64_MAX, 18446744073709551616.0},
    };
    for (const auto &[bits, expected] : cases) {
        double real = 0;
        EXPECT_EQ(got(oak_valueGetDouble, made(oak_valueSetUInt64, bits), &real), sOKAY);
        EXPECT_EQ(real, expected) << bits;
    }
}

TEST(ValueGetDouble, ReadsFloatsDecimalsDatesAndTimes) {
    double real = 0;
    EXPECT_EQ(got(oak_valueGetDouble, made(oak_valueSetFloat, -1.5f), &real), sOKAY);
    EXPECT_EQ(real, -1.5);
    EXPECT_EQ(got(oak_valueGetDouble, made(oak_valueSetDouble, 1e-300), &real), sOKAY);
    EXPECT_EQ(real, 1e-300);
    OAK_BCD_T number = decimal("-12.5");
    EXPECT_EQ(got(oak_valueGetDouble, of_decimal(&number), &real), sOKAY);
    EXPECT_EQ(real, -12.5);
    EXPECT_EQ(got(oak_valueGetDouble, made(oak_valueSetDate, UINT32_MAX), &real), sOKAY);
    EXPECT_EQ(real, 4294967295.0);
    EXPECT_EQ(got(oak_valueGetDouble, made(oak_valueSetTime, 863999999u), &real), sOKAY);
    EXPECT_EQ(real, 863999999.0);
}

TEST(ValueGetDouble, HandsOnTheStatusOfADecimalThatNoDoubleHolds) {
    OAK_BCD_T number = decimal("1.2345678901234567890123");
    OAK_VALUE value = of_decimal(&number);
    double real = 0;
    EXPECT_EQ(oak_valueGetDouble(&value, &real), eRANGE);
    EXPECT_NEAR(real, 1.2345678901234567, 1e-15);
    value.vt.bcd = nullptr;
    EXPECT_EQ(oak_valueGetDouble(&value, &real), eINVNULLARG);
}

TEST(ValueGet, TakesTheTypesOfItsRowAndNoOther) {
    const auto is_integer = [](OAK_TYPE type) { return class_of(type) == 2; };
    OAK_BCD_T zero = decimal("0");
    for (const OAK_TYPE type : kAllTypes) {
        SCOPED_TRACE(type);
        OAK_VALUE value = of_type(type);
        if (type == OAK_BCD) {
            value.vt.bcd = &zero;
        }
        const bool real_type = type == OAK_FLOAT || type == OAK_DOUBLE;
        int64_t signed_number = kNone64;
        uint64_t unsigned_number = kNone64;
        size_t size = kNone64;
        double real = 0.5;
        const auto expected = [](bool taken) { return taken ? sOKAY : eINVARGTYPE; };
        EXPECT_EQ(got(oak_valueGetInt64, value, &signed_number), expected(is_integer(type)));
        EXPECT_EQ(got(oak_valueGetSizeT, value, &size), expected(is_integer(type)));
        EXPECT_EQ(got(oak_valueGetUInt64, value, &unsigned_number),
                  expected(is_integer(type) || real_type || type == OAK_ROWID));
        EXPECT_EQ(got(oak_valueGetDouble, value, &real),
                  expected(is_integer(type) || real_type || type == OAK_BCD || type == OAK_DATE ||
                           type == OAK_TIME));
    }
}

TEST(ValueGetUInt64, ReadsARowIdAsItIs) {
    uint64_t number = 0;
    EXPECT_EQ(got(oak_valueGetUInt64, made(oak_valueSetRowId, UINT64_MAX), &number), sOKAY);
    EXPECT_EQ(number, UINT64_MAX);
}

TEST(ValueGet, RefusesNullPointers) {
    const OAK_VALUE value = made(oak_valueSetInt32, 1);
    int64_t signed_number;
    uint64_t unsigned_number;
    size_t size;
    double real;
    EXPECT_EQ(oak_valueGetInt64(nullptr, &signed_number), eINVNULLARG);
    EXPECT_EQ(oak_valueGetInt64(&value, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_valueGetUInt64(nullptr, &unsigned_number), eINVNULLARG);
    EXPECT_EQ(oak_valueGetUInt64(&value, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_valueGetSizeT(nullptr, &size), eINVNULLARG);
    EXPECT_EQ(oak_valueGetSizeT(&value, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_valueGetDouble(nullptr, &real), eINVNULLARG);
    EXPECT_EQ(oak_valueGetDouble(&value, nullptr), eINVNULLARG);
}

// ---- Comparers
// ----------------------------------------------------------------------------------------

template <class Setter, class Comparer, class Native>
void expect_order(Setter setter, Comparer comparer, Native small, Native large) {
    const OAK_VALUE value = made(setter, small);
    OAK_COMPARE order = OAK_GT;
    EXPECT_EQ(comparer(&value, large, &order), sOKAY);
    EXPECT_EQ(order, OAK_LT);
    EXPECT_EQ(comparer(&value, small, &order), sOKAY);
    EXPECT_EQ(order, OAK_EQ);
    const OAK_VALUE larger = made(setter, large);
    EXPECT_EQ(comparer(&larger, small, &order), sOKAY);
    EXPECT_EQ(order, OAK_GT);
    EXPECT_EQ(comparer(&value, small, nullptr), sOKAY);
    EXPECT_EQ(comparer(nullptr, small, &order), eINVNULLARG);
    for (const OAK_TYPE type : kAllTypes) {
        if (type != value.type) {
            const OAK_VALUE other = of_type(type);
            EXPECT_EQ(comparer(&other, small, &order), eTYPEMISMATCH) << type;
            EXPECT_EQ(comparer(&other, small, nullptr), eTYPEMISMATCH) << type;
        }
    }
}

TEST(ValueCompareTo, OrdersNumbersOfExactlyItsType) {
    expect_order(oak_valueSetInt8, oak_valueCompareToInt8, INT8_MIN, INT8_MAX);
    expect_order(oak_valueSetUInt8, oak_valueCompareToUInt8, uint8_t{127}, uint8_t{128});
    expect_order(oak_valueSetInt16, oak_valueCompareToInt16, INT16_MIN, INT16_MAX);
    expect_order(oak_valueSetUInt16, oak_valueCompareToUInt16, uint16_t{32767}, uint16_t{32768});
    expect_order(oak_valueSetInt32, oak_valueCompareToInt32, INT32_MIN, INT32_MAX);
    expect_order(oak_valueSetUInt32, oak_valueCompareToUInt32, 2147483647u, 2147483648u);
    expect_order(oak_valueSetInt64, oak_valueCompareToInt64, INT64_MIN, INT64_MAX);
    expect_order(oak_valueSetUInt64, oak_valueCompareToUInt64, kTopBit - 1, kTopBit);
    expect_order(oak_valueSetFloat, oak_valueCompareToFloat, -FLT_MAX, FLT_MIN);
    expect_order(oak_valueSetDouble, oak_valueCompareToDouble, -DBL_MAX, DBL_MIN);
}

TEST(ValueCompareTo, FindsANaNEqualToEverything) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    OAK_COMPARE order = OAK_LT;
    OAK_VALUE value = made(oak_valueSetDouble, nan);
    EXPECT_EQ(oak_valueCompareToDouble(&value, 1.0, &order), sOKAY);
    EXPECT_EQ(order, OAK_EQ);
    value = made(oak_valueSetFloat, 1.0f);
    order = OAK_LT;
    EXPECT_EQ(oak_valueCompareToFloat(&value, static_cast<float>(nan), &order), sOKAY);
    EXPECT_EQ(order, OAK_EQ);
}

// ---- Sign
// ---------------------------------------------------------------------------------------------

TEST(ValueIsZero, IsTrueForZerosOfNumbersAlone) {
    OAK_BCD_T zero = decimal("0");
    for (const OAK_TYPE type : kAllTypes) {
        OAK_VALUE value = of_type(type);
        if (type == OAK_BCD) {
            value.vt.bcd = &zero;
        }
        const unsigned kind = class_of(type);
        const bool number = kind == 2 || kind == 3 || kind == 5;
        EXPECT_EQ(oak_valueIsZero(&value), number ? OAK_TRUE : OAK_FALSE) << type;
    }
}

TEST(ValueIsZero, IsFalseForOtherNumbers) {
    OAK_BCD_T small = decimal("0.0000000000000001");
    const OAK_VALUE cases[] = {made(oak_valueSetInt8, int8_t{-1}),
                               made(oak_valueSetUInt64, kTopBit),
                               made(oak_valueSetFloat, FLT_TRUE_MIN),
                               made(oak_valueSetDouble, DBL_TRUE_MIN),
                               made(oak_valueSetDouble, std::nan("")),
                               of_decimal(&small),
                               of_decimal(nullptr)};
    for (const OAK_VALUE &value : cases) {
        EXPECT_EQ(oak_valueIsZero(&value), OAK_FALSE) << value.type;
    }
    const OAK_VALUE negative_zero = made(oak_valueSetDouble, -0.0);
    EXPECT_EQ(oak_valueIsZero(&negative_zero), OAK_TRUE);
    EXPECT_EQ(oak_valueIsZero(nullptr), OAK_FALSE);
}

void expect_sign(const OAK_VALUE &value, int16_t expected) {
    int16_t sign = 99;
    EXPECT_EQ(oak_valueGetSign(&value, &sign), sOKAY) << value.type;
    EXPECT_EQ(sign, expected) << value.type;
}

TEST(ValueGetSign, TellsNegativeZeroAndPositive) {
    expect_sign(made(oak_valueSetInt8, INT8_MIN), -1);
    expect_sign(made(oak_valueSetInt8, int8_t{0}), 0);
    expect_sign(made(oak_valueSetInt8, INT8_MAX), 1);
    expect_sign(made(oak_valueSetInt16, int16_t{-1}), -1);
    expect_sign(made(oak_valueSetInt16, int16_t{0}), 0);
    expect_sign(made(oak_valueSetInt16, int16_t{1}), 1);
    expect_sign(made(oak_valueSetInt32, -1), -1);
    expect_sign(made(oak_valueSetInt32, 0), 0);
    expect_sign(made(oak_valueSetInt32, 1), 1);
    expect_sign(made(oak_valueSetInt64, INT64_MIN), -1);
    expect_sign(made(oak_valueSetInt64, int64_t{0}), 0);
    expect_sign(made(oak_valueSetInt64, INT64_MAX), 1);
    expect_sign(made(oak_valueSetUInt8, uint8_t{0}), 0);
    expect_sign(made(oak_valueSetUInt8, UINT8_MAX), 1);
    expect_sign(made(oak_valueSetUInt16, uint16_t{0}), 0);
    expect_sign(made(oak_valueSetUInt16, UINT16_MAX), 1);
    expect_sign(made(oak_valueSetUInt32, 0u), 0);
    expect_sign(made(oak_valueSetUInt32, UINT32_MAX), 1);
    expect_sign(made(oak_valueSetUInt64, uint64_t{0}), 0);
    expect_sign(made(oak_valueSetUInt64, UINT64_MAX), 1);
    expect_sign(made(oak_valueSetFloat, -FLT_TRUE_MIN), -1);
    expect_sign(made(oak_valueSetFloat, -0.0f), 0);
    expect_sign(made(oak_valueSetFloat, 1.0f), 1);
    expect_sign(made(oak_valueSetDouble, -DBL_MAX), -1);
    expect_sign(made(oak_valueSetDouble, -0.0), 0);
    expect_sign(made(oak_valueSetDouble, DBL_TRUE_MIN), 1);
}

TEST(ValueGetSign, GivesOneForANaN) {
    expect_sign(made(oak_valueSetDouble, std::nan("")), 1);
    expect_sign(made(oak_valueSetDouble, -std::nan("")), 1);
    expect_sign(made(oak_valueSetFloat, std::nanf("")), 1);
}

TEST(ValueGetSign, ReadsDecimals) {
    OAK_BCD_T number = decimal("-0.5");
    expect_sign(of_decimal(&number), -1);
    number = decimal("0");
    expect_sign(of_decimal(&number), 0);
    number = decimal("7");
    expect_sign(of_decimal(&number), 1);
}

TEST(ValueGetSign, RefusesOtherTypesAndNullPointers) {
    int16_t sign = 99;
    for (const OAK_TYPE type : kAllTypes) {
        const unsigned kind = class_of(type);
        if (kind != 2 && kind != 3 && kind != 5) {
            const OAK_VALUE value = of_type(type);
            EXPECT_EQ(oak_valueGetSign(&value, &sign), eINVARGTYPE) << type;
        }
    }
    const OAK_VALUE value = made(oak_valueSetInt32, 1);
    EXPECT_EQ(oak_valueGetSign(nullptr, &sign), eINVNULLARG);
    EXPECT_EQ(oak_valueGetSign(&value, nullptr), eINVNULLARG);
    const OAK_VALUE empty = of_decimal(nullptr);
    EXPECT_EQ(oak_valueGetSign(&empty, &sign), eINVNULLARG);
    EXPECT_EQ(sign, 99);
}

OAK_VALUE negated(OAK_VALUE value) {
    oak_valueChangeSign(&value);
    return value;
}

TEST(ValueChangeSign, NegatesSignedIntegersInPlace) {
    EXPECT_EQ(negated(made(oak_valueSetInt8, int8_t{5})).vt.i8v, -5);
    EXPECT_EQ(negated(made(oak_valueSetInt16, int16_t{-5})).vt.i16v, 5);
    EXPECT_EQ(negated(made(oak_valueSetInt32, INT32_MAX)).vt.i32v, -INT32_MAX);
    EXPECT_EQ(negated(made(oak_valueSetInt64, int64_t{1})).vt.i64v, -1);
    EXPECT_EQ(negated(made(oak_valueSetInt64, int64_t{1})).type, OAK_INT64);
}

TEST(ValueChangeSign, LeavesTheSmallestIntegerAsItIs) {
    EXPECT_EQ(negated(made(oak_valueSetInt8, INT8_MIN)).vt.i8v, INT8_MIN);
    EXPECT_EQ(negated(made(oak_valueSetInt16, INT16_MIN)).vt.i16v, INT16_MIN);
    EXPECT_EQ(negated(made(oak_valueSetInt32, INT32_MIN)).vt.i32v, INT32_MIN);
    EXPECT_EQ(negated(made(oak_valueSetInt64, INT64_MIN)).vt.i64v, INT64_MIN);
}

TEST(ValueChangeSign, FlipsTheSignBitOfZeroAndNaNToo) {
    EXPECT_TRUE(std::signbit(negated(made(oak_valueSetDouble, 0.0)).vt.dv));
    EXPECT_FALSE(std::signbit(negated(made(oak_valueSetFloat, -0.0f)).vt.fv));
    EXPECT_EQ(negated(made(oak_valueSetDouble, 1.5)).vt.dv, -1.5);
    const OAK_VALUE nan = negated(made(oak_valueSetDouble, std::nan("")));
    EXPECT_TRUE(std::isnan(nan.vt.dv));
    EXPECT_TRUE(std::signbit(nan.vt.dv));
}

TEST(ValueChangeSign, MakesUnsignedIntegersTheNextSignedType) {
    OAK_VALUE value = negated(made(oak_valueSetUInt8, UINT8_MAX));
    EXPECT_EQ(value.type, OAK_INT16);
    EXPECT_EQ(value.vt.i16v, -255);
    value = negated(made(oak_valueSetUInt16, UINT16_MAX));
    EXPECT_EQ(value.type, OAK_INT32);
    EXPECT_EQ(value.vt.i32v, -65535);
    value = negated(made(oak_valueSetUInt32, UINT32_MAX));
    EXPECT_EQ(value.type, OAK_INT64);
    EXPECT_EQ(value.vt.i64v, -INT64_C(4294967295));
    value = negated(made(oak_valueSetUInt8, uint8_t{0}));
    EXPECT_EQ(value.type, OAK_INT16);
    EXPECT_EQ(value.vt.i16v, 0);
}

TEST(ValueChangeSign, TakesUInt64UpToTheSmallestInteger) {
    OAK_VALUE value = negated(made(oak_valueSetUInt64, kTopBit - 1));
    EXPECT_EQ(value.type, OAK_INT64);
    EXPECT_EQ(value.vt.i64v, -INT64_MAX);
    EXPECT_EQ(value.status, vsOKAY);
    value = negated(made(oak_valueSetUInt64, kTopBit));
    EXPECT_EQ(value.type, OAK_INT64);
    EXPECT_EQ(value.vt.i64v, INT64_MIN);
    EXPECT_EQ(value.status, vsOKAY);
    value = negated(made(oak_valueSetUInt64, kTopBit + 1));
    EXPECT_EQ(value.type, OAK_UINT64);
    EXPECT_EQ(value.vt.u64v, kTopBit + 1);
    EXPECT_EQ(value.status, vsDATALOSS);
}

TEST(ValueChangeSign, TurnsTheLowByteOfABooleanRound) {
    EXPECT_EQ(negated(made(oak_valueSetBoolean, OAK_TRUE)).vt.bv, OAK_FALSE);
    EXPECT_EQ(negated(made(oak_valueSetBoolean, OAK_FALSE)).vt.bv, OAK_TRUE);
    OAK_VALUE value = of_type(OAK_BOOL);
    value.vt.u32v = 0x01020002;
    EXPECT_EQ(negated(value).vt.u32v, 0x01020000u);
    value.vt.u32v = 0x01020000;
    EXPECT_EQ(negated(value).vt.u32v, 0x01020001u);
}

TEST(ValueChangeSign, NegatesADecimalWhereItLies) {
    OAK_BCD_T number = decimal("12.5");
    OAK_VALUE value = of_decimal(&number);
    oak_valueChangeSign(&value);
    EXPECT_EQ(number.sign, -1);
    EXPECT_EQ(value.vt.bcd, &number);
    OAK_VALUE empty = of_decimal(nullptr);
    oak_valueChangeSign(&empty);
    EXPECT_EQ(empty.vt.bcd, nullptr);
}

TEST(ValueChangeSign, LeavesOtherTypesAlone) {
    for (const OAK_TYPE type : kAllTypes) {
        const unsigned kind = class_of(type);
        if (type == OAK_BOOL || kind == 2 || kind == 3 || kind == 5) {
            continue;
        }
        OAK_VALUE value = of_type(type);
        value.vt.u64v = 0x8182838485868788;
        const OAK_VALUE after = negated(value);
        EXPECT_EQ(memcmp(&after, &value, sizeof value), 0) << type;
    }
    oak_valueChangeSign(nullptr);
}

// ---- Limits
// ------------------------------------------------------------------------------------------

double maximum(OAK_TYPE type) {
    OAK_VALUE value = dirty();
    oak_valueTypeMax(&value, type);
    EXPECT_EQ(value.type, OAK_DOUBLE);
    EXPECT_EQ(value.status, vsOKAY);
    return value.vt.dv;
}

double minimum(OAK_TYPE type) {
    OAK_VALUE value = dirty();
    oak_valueTypeMin(&value, type);
    EXPECT_EQ(value.type, OAK_DOUBLE);
    EXPECT_EQ(value.status, vsOKAY);
    return value.vt.dv;
}

TEST(ValueLimits, AreDoublesWhateverTheType) {
    struct {
        OAK_TYPE type;
        double max;
        double min;
    } const cases[] = {
        {OAK_INT8, 127.0, -128.0},
        {OAK_CHAR, 127.0, 0.0},
        {OAK_VARCHAR, 127.0, 0.0},
        {OAK_CLOB, 127.0, 0.0},
        {OAK_UINT8, 255.0, 0.0},
        {OAK_BINARY, 255.0, 0.0},
        {OAK_VARBINARY, 255.0, 0.0},
        {OAK_BLOB, 255.0, 0.0},
        {OAK_INT16, 32767.0, -32768.0},
        {OAK_UINT16, 65535.0, 0.0},
        {OAK_INT32, 2147483647.0, -2147483648.0},
        {OAK_UINT32, 4294967295.0, 0.0},
        {OAK_INT64, std::ldexp(1.0, 63), -std::ldexp(1.0, 63)},
        {OAK_UINT64, std::ldexp(1.0, 64), 0.0},
        {OAK_ROWID, std::ldexp(1.0, 64), 0.0},
        {OAK_FLOAT, 3.4028234663852886e38, 1.1754943508222875e-38},
        {OAK_DOUBLE, 1.7976931348623157e308, 2.2250738585072014e-308},
        {OAK_BOOL, 1.0, 0.0},
        {OAK_TIME, 863999999.0, 0.0},
        {OAK_TIMETZ, 863999999.0, 0.0},
        {OAK_NOVAL, 0.0, 0.0},
        {OAK_BCD, 0.0, 0.0},
        {OAK_UUID, 0.0, 0.0},
        {OAK_WCHAR, 0.0, 0.0},
        {OAK_WCHAR_UTF8, 0.0, 0.0},
        {OAK_WVARCHAR, 0.0, 0.0},
        {OAK_WVARCHAR_UTF8, 0.0, 0.0},
        {OAK_WCLOB, 0.0, 0.0},
        {OAK_WCLOB_UTF8, 0.0, 0.0},
        {OAK_PARAMREF, 0.0, 0.0},
        {OAK_OAKVALUE, 0.0, 0.0},
    };
    for (const auto &row : cases) {
        EXPECT_EQ(maximum(row.type), row.max) << row.type;
        EXPECT_EQ(minimum(row.type), row.min) << row.type;
    }
}

TEST(ValueLimits, OfADateAreToday) {
    OAK_PACKED_DATE_T before = 0;
    OAK_PACKED_DATE_T after = 0;
    for (const OAK_TYPE type : {OAK_DATE, OAK_TIMESTAMP, OAK_TIMESTAMPTZ}) {
        ASSERT_EQ(oak_dateToday(0, &before), sOKAY);
        const double max = maximum(type);
        ASSERT_EQ(oak_dateToday(0, &after), sOKAY);
        EXPECT_GE(max, before);
        EXPECT_LE(max, after);
        EXPECT_GT(max, 700000.0);
        EXPECT_EQ(minimum(type), 0.0);
    }
}

TEST(ValueLimits, DoNothingToANullPointer) {
    oak_valueTypeMax(nullptr, OAK_INT8);
    oak_valueTypeMin(nullptr, OAK_INT8);
}

// ---- Shallow copy
// ---------------------------------------------------------------------------------------

TEST(ValueCopy, SharesThePayloadAndLeavesLengthAndTag) {
    OAK_VALUE source = text_value("oak");
    source.elts = 2;
    OAK_VALUE copy = dirty();
    const size_t len = copy.len;
    const OSL_MEMTAG tag = copy.tag;
    oak_valueCopy(&copy, &source);
    EXPECT_EQ(copy.type, OAK_CHAR);
    EXPECT_EQ(copy.status, vsOKAY);
    EXPECT_EQ(copy.elts, 2u);
    EXPECT_EQ(copy.vt.cv, source.vt.cv);
    EXPECT_EQ(copy.len, len);
    EXPECT_EQ(copy.tag, tag);
    oak_valueCopy(nullptr, &source);
    oak_valueCopy(&copy, nullptr);
    EXPECT_EQ(copy.vt.cv, source.vt.cv);
}

// ---- Deep copy
// --------------------------------------------------------------------------------------------

TEST(ValueCopyEx, RefusesNullPointers) {
    OAK_VALUE value = fresh();
    EXPECT_EQ(oak_valueCopyEx(nullptr, &value, 0, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_valueCopyEx(&value, nullptr, 0, nullptr), eINVNULLARG);
}

TEST(ValueCopyEx, TakesTheTypeAloneOfAnAbsentValue) {
    OAK_VALUE source = text_value("oak");
    source.status = vsNOVAL;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 10, nullptr), sOKAY);
    expect_cleared(copy, vsNOVAL, OAK_CHAR);
}

TEST(ValueCopyEx, KeepsTheReferenceOfAnAbsentLargeObject) {
    for (const OAK_TYPE type : {OAK_BLOB, OAK_CLOB, OAK_WCLOB, OAK_WCLOB_UTF8}) {
        OAK_VALUE source = of_type(type);
        source.status = vsNOVAL;
        source.vt.u64v = 77;
        OAK_VALUE copy = dirty();
        ASSERT_EQ(oak_valueCopyEx(&copy, &source, 10, nullptr), sOKAY);
        EXPECT_EQ(copy.status, vsNOVAL);
        EXPECT_EQ(copy.type, type);
        EXPECT_EQ(copy.vt.u64v, 77u);
    }
}

TEST(ValueCopyEx, LeavesLengthAndPayloadForANull) {
    OAK_VALUE source = text_value("oak");
    source.status = vsNULL;
    source.elts = 4;
    OAK_VALUE copy = made(oak_valueSetInt32, 9);
    copy.len = 3;
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 10, nullptr), sOKAY);
    EXPECT_EQ(copy.status, vsNULL);
    EXPECT_EQ(copy.type, OAK_CHAR);
    EXPECT_EQ(copy.elts, 4u);
    EXPECT_EQ(copy.len, 3u);
    EXPECT_EQ(copy.vt.i32v, 9);
}

TEST(ValueCopyEx, SharesWithoutATag) {
    const OAK_VALUE source = text_value("oak");
    OAK_VALUE copy = dirty();
    const OSL_MEMTAG tag = copy.tag;
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 2, nullptr), sOKAY);
    EXPECT_EQ(copy.vt.cv, source.vt.cv);
    EXPECT_EQ(copy.len, 4u);
    EXPECT_EQ(copy.tag, tag);
}

TEST(ValueCopyEx, CopiesScalarsAsTheyAre) {
    Tag tag;
    OAK_VALUE source = made(oak_valueSetInt64, INT64_MIN);
    source.len = 5; // means nothing for a fixed type
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_EQ(copy.vt.i64v, INT64_MIN);
    EXPECT_EQ(copy.len, 0u);
    EXPECT_EQ(copy.elts, 0u);
}

TEST(ValueCopyEx, DuplicatesTextOfTheFourShortTypes) {
    Tag tag;
    for (const OAK_TYPE type : {OAK_CHAR, OAK_VARCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR_UTF8}) {
        const OAK_VALUE source = text_value("oak", type);
        OAK_VALUE copy = dirty();
        ASSERT_EQ(oak_valueCopyEx(&copy, &source, 4, tag), sOKAY);
        EXPECT_EQ(copy.type, type);
        EXPECT_NE(copy.vt.cv, source.vt.cv);
        EXPECT_STREQ(copy.vt.cv, "oak");
        EXPECT_EQ(copy.len, 4u);
        free_payload(&copy, tag);
    }
}

TEST(ValueCopyEx, CutsTextLongerThanTheBound) {
    Tag tag;
    const OAK_VALUE source = text_value("birch");
    const std::pair<size_t, const char *> cases[] = {
        {6, "birch"}, {5, "birc"}, {2, "b"}, {1, ""}, {0, ""}};
    for (const auto &[bound, expected] : cases) {
        OAK_VALUE copy = dirty();
        ASSERT_EQ(oak_valueCopyEx(&copy, &source, bound, tag), sOKAY);
        EXPECT_STREQ(copy.vt.cv, expected) << bound;
        EXPECT_EQ(copy.len, strlen(expected) + 1) << bound;
        free_payload(&copy, tag);
    }
}

TEST(ValueCopyEx, MeasuresATextWithoutALength) {
    Tag tag;
    OAK_VALUE source = text_value("oak");
    source.len = 0;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_STREQ(copy.vt.cv, "oak");
    EXPECT_EQ(copy.len, 4u);
    free_payload(&copy, tag);
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, nullptr), sOKAY);
    EXPECT_EQ(copy.vt.cv, source.vt.cv);
    EXPECT_EQ(copy.len, 4u);
}

TEST(ValueCopyEx, DuplicatesBinaries) {
    Tag tag;
    const uint8_t bytes[] = {9, 0, 8, 7};
    for (const OAK_TYPE type : {OAK_BINARY, OAK_VARBINARY, OAK_BLOB}) {
        const OAK_VALUE source = bytes_value(bytes, 4, type);
        OAK_VALUE copy = dirty();
        ASSERT_EQ(oak_valueCopyEx(&copy, &source, 1, tag), sOKAY); // the bound is for text
        ASSERT_NE(copy.vt.pv, bytes);
        EXPECT_EQ(memcmp(copy.vt.pv, bytes, 4), 0);
        EXPECT_EQ(copy.len, 4u);
        free_payload(&copy, tag);
    }
}

TEST(ValueCopyEx, SharesAnEmptyBinary) {
    Tag tag;
    const uint8_t bytes[] = {1};
    const OAK_VALUE source = bytes_value(bytes, 0);
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 1, tag), sOKAY);
    EXPECT_EQ(copy.len, 0u);
    EXPECT_EQ(copy.vt.pv, bytes);
}

TEST(ValueCopyEx, DuplicatesTextOfLargeObjectsWithALength) {
    Tag tag;
    for (const OAK_TYPE type : {OAK_CLOB, OAK_WCLOB_UTF8}) {
        const OAK_VALUE source = text_value("a long text", type);
        OAK_VALUE copy = dirty();
        ASSERT_EQ(oak_valueCopyEx(&copy, &source, 2, tag), sOKAY);
        EXPECT_NE(copy.vt.cv, source.vt.cv);
        EXPECT_STREQ(copy.vt.cv, "a long text");
        EXPECT_EQ(copy.len, 12u);
        free_payload(&copy, tag);
    }
}

TEST(ValueCopyEx, LeavesThePayloadForOtherLargeObjects) {
    Tag tag;
    const OAK_VALUE source = bytes_value("wide", 4, OAK_WCLOB);
    OAK_VALUE copy = fresh();
    copy.vt.u64v = 123;
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 2, tag), sOKAY);
    EXPECT_EQ(copy.type, OAK_WCLOB);
    EXPECT_EQ(copy.len, 4u);
    EXPECT_EQ(copy.vt.u64v, 123u);
}

TEST(ValueCopyEx, SharesALargeObjectWithoutALength) {
    Tag tag;
    OAK_VALUE source = text_value("text", OAK_CLOB);
    source.len = 0;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 2, tag), sOKAY);
    EXPECT_EQ(copy.vt.cv, source.vt.cv);
    EXPECT_EQ(copy.len, 0u);
}

TEST(ValueCopyEx, DuplicatesDecimalsAndUuids) {
    Tag tag;
    OAK_BCD_T number = decimal("-1.25");
    OAK_VALUE source = of_decimal(&number);
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    ASSERT_NE(copy.vt.bcd, &number);
    EXPECT_EQ(memcmp(copy.vt.bcd, &number, sizeof number), 0);
    EXPECT_EQ(copy.len, 37u);
    free_payload(&copy, tag);
    source = of_type(OAK_UUID);
    source.vt.uuid = &kUuid;
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    ASSERT_NE(copy.vt.uuid, &kUuid);
    EXPECT_EQ(memcmp(copy.vt.uuid, &kUuid, sizeof kUuid), 0);
    EXPECT_EQ(copy.len, 16u);
    free_payload(&copy, tag);
}

TEST(ValueCopyEx, CopiesAsMuchOfADecimalAsItsLengthSays) {
    Tag tag;
    OAK_BCD_T number = decimal("1234");
    OAK_VALUE source = of_decimal(&number);
    source.len = 7; // head, carry slot and two digits
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_EQ(copy.len, 7u);
    EXPECT_EQ(memcmp(copy.vt.bcd, &number, 7), 0);
    EXPECT_EQ(copy.vt.bcd->data[3], 0);
    free_payload(&copy, tag);
    source.len = 1000; // more than a record has
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_EQ(memcmp(copy.vt.bcd, &number, sizeof number), 0);
    free_payload(&copy, tag);
}

TEST(ValueCopyEx, SharesAZonedTimestampEvenWithATag) {
    Tag tag;
    const OAK_PACKED_TIMESTAMPTZ_T moment = {1, 2, 3};
    OAK_VALUE source = of_type(OAK_TIMESTAMPTZ);
    source.vt.tszv = &moment;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_EQ(copy.vt.tszv, &moment);
    EXPECT_EQ(copy.len, 0u);
}

TEST(ValueCopyEx, DuplicatesArrays) {
    Tag tag;
    int32_t numbers[] = {1, -2, 3};
    OAK_VALUE source = of_type(OAK_INT32);
    source.elts = 3;
    source.vt.i32a = numbers;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    ASSERT_NE(copy.vt.i32a, numbers);
    EXPECT_EQ(memcmp(copy.vt.i32a, numbers, sizeof numbers), 0);
    EXPECT_EQ(copy.elts, 3u);
    EXPECT_EQ(copy.len, 0u);
    free_payload(&copy, tag);
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, nullptr), sOKAY);
    EXPECT_EQ(copy.vt.i32a, numbers);
}

TEST(ValueCopyEx, DuplicatesBooleanArraysByFourBytes) {
    Tag tag;
    OAK_BOOL_T flags[] = {OAK_TRUE, OAK_FALSE};
    OAK_VALUE source = of_type(OAK_BOOL);
    source.elts = 2;
    source.vt.ba = flags;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_EQ(copy.vt.ba[0], OAK_TRUE);
    EXPECT_EQ(copy.vt.ba[1], OAK_FALSE);
    free_payload(&copy, tag);
}

TEST(ValueCopyEx, TakesNullPayloadsAsTheyAre) {
    Tag tag;
    for (const OAK_TYPE type : {OAK_CHAR, OAK_BINARY, OAK_BCD, OAK_UUID, OAK_BLOB, OAK_CLOB}) {
        OAK_VALUE source = of_type(type);
        OAK_VALUE copy = dirty();
        ASSERT_EQ(oak_valueCopyEx(&copy, &source, 10, tag), sOKAY);
        EXPECT_EQ(copy.vt.pv, nullptr) << type;
    }
    OAK_VALUE source = of_type(OAK_INT32);
    source.elts = 3;
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 10, tag), sOKAY);
    EXPECT_EQ(copy.vt.pv, nullptr);
}

TEST(ValueCopyEx, CopiesAWideTextByItsLengthWhichTheCopyDoesNotKeep) {
    Tag tag;
    const OAK_VALUE source = bytes_value("o\0a\0k\0\0", 8, OAK_WCHAR);
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 10, tag), sOKAY);
    EXPECT_NE(copy.vt.pv, source.vt.pv);
    EXPECT_EQ(memcmp(copy.vt.pv, source.vt.pv, 8), 0);
    EXPECT_EQ(copy.len, 0u);
    free_payload(&copy, tag);
}

TEST(ValueCopyEx, CarriesAnErrorAsItIs) {
    Tag tag;
    OAK_VALUE source = fresh();
    oak_valueSetError(&source, eDIVBY0);
    OAK_VALUE copy = dirty();
    ASSERT_EQ(oak_valueCopyEx(&copy, &source, 0, tag), sOKAY);
    EXPECT_EQ(copy.status, vsERROR);
    EXPECT_EQ(copy.type, OAK_ZERODIV);
    EXPECT_EQ(copy.vt.err, eDIVBY0);
}

TEST(ValueCopyEx, CopiesAValueOntoItself) {
    Tag tag;
    OAK_VALUE value = text_value("oak");
    ASSERT_EQ(oak_valueCopyEx(&value, &value, 10, tag), sOKAY);
    EXPECT_STREQ(value.vt.cv, "oak");
    free_payload(&value, tag);
    value = of_type(OAK_BLOB);
    value.status = vsNOVAL;
    value.vt.u64v = 5;
    ASSERT_EQ(oak_valueCopyEx(&value, &value, 10, tag), sOKAY);
    EXPECT_EQ(value.type, OAK_BLOB);
    EXPECT_EQ(value.vt.u64v, 5u);
}

TEST(ValueCopyEx, LeavesTheDestinationWhenMemoryEnds) {
    Tag tag;
    int16_t numbers[] = {1, 2};
    OAK_BCD_T number = decimal("1");
    OAK_VALUE array = of_type(OAK_INT16);
    array.elts = 2;
    array.vt.i16a = numbers;
    OAK_VALUE uuid = of_type(OAK_UUID);
    uuid.vt.uuid = &kUuid;
    const OAK_VALUE sources[] = {array,
                                 uuid,
                                 of_decimal(&number),
                                 text_value("oak"),
                                 text_value("longer than four"),
                                 bytes_value("12", 2),
                                 text_value("clob", OAK_CLOB),
                                 bytes_value("blob", 4, OAK_BLOB)};
    for (const OAK_VALUE &source : sources) {
        SCOPED_TRACE(source.type);
        const uint64_t injected =
            oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
                OAK_VALUE copy = made(oak_valueSetInt32, 42);
                const OAK_VALUE before = copy;
                const OAK_RETCODE rc = oak_valueCopyEx(&copy, &source, 4, tag);
                if (rc == sOKAY) {
                    free_payload(&copy, tag);
                } else {
                    EXPECT_EQ(memcmp(&copy, &before, sizeof copy), 0);
                }
                return rc;
            });
        EXPECT_EQ(injected != 0, oaktest::faults_are_injected());
    }
}

// ---- Length
// ---------------------------------------------------------------------------------------------

TEST(ValueLength, IsThatOfThePayload) {
    OAK_BCD_T number = decimal("1");
    struct {
        OAK_VALUE value;
        size_t expected;
    } cases[] = {
        {text_value("oak", OAK_CHAR), 4},       {text_value("oak", OAK_VARCHAR), 4},
        {text_value("oak", OAK_WCHAR_UTF8), 4}, {text_value("", OAK_WVARCHAR_UTF8), 1},
        {bytes_value("abc", 3, OAK_BINARY), 3}, {bytes_value("abc", 2, OAK_VARBINARY), 2},
        {bytes_value("abc", 3, OAK_BLOB), 3},   {bytes_value("abc", 3, OAK_CLOB), 3},
        {bytes_value("abc", 3, OAK_WCLOB), 3},  {bytes_value("abc", 3, OAK_WCLOB_UTF8), 3},
        {bytes_value("abc", 3, OAK_WCHAR), 0},  {bytes_value("abc", 3, OAK_WVARCHAR), 0},
        {bytes_value(&kUuid, 3, OAK_UUID), 16}, {of_decimal(&number), 37},
        {bytes_value(&number, 9, OAK_BCD), 9},  {made(oak_valueSetInt64, int64_t{1}), 0},
        {made(oak_valueSetDate, 1u), 0},        {made(oak_valueSetRowId, uint64_t{1}), 0},
        {of_type(OAK_TIMESTAMPTZ), 0},          {of_type(OAK_CHAR), 0}, // without a payload
    };
    for (auto &row : cases) {
        SCOPED_TRACE(row.value.type);
        size_t length = 999;
        EXPECT_EQ(oak_valueLength(&row.value, &length), sOKAY);
        EXPECT_EQ(length, row.expected);
        EXPECT_EQ(oak_valueLength(&row.value, nullptr), sOKAY);
    }
}

TEST(ValueLength, CountsTheTextAndNotItsLength) {
    OAK_VALUE value = text_value("oak");
    value.len = 100;
    size_t length = 0;
    EXPECT_EQ(oak_valueLength(&value, &length), sOKAY);
    EXPECT_EQ(length, 4u);
}

TEST(ValueLength, RefusesAbsentValues) {
    for (const VAL_STATUS status : {vsNOVAL, vsNULL}) {
        OAK_VALUE value = text_value("oak");
        value.status = status;
        size_t length = 999;
        EXPECT_EQ(oak_valueLength(&value, &length), eINVARG);
        EXPECT_EQ(oak_valueLength(&value, nullptr), eINVARG);
        EXPECT_EQ(length, 999u);
        EXPECT_EQ(valueLength(&value), 0u);
    }
    EXPECT_EQ(oak_valueLength(nullptr, nullptr), eINVNULLARG);
}

// ---- Raw bytes
// ------------------------------------------------------------------------------------------

TEST(ValueToBuffer, WritesFixedTypesRaw) {
    OAK_BCD_T number = decimal("-31.4");
    const OAK_PACKED_TIMESTAMPTZ_T moment = {10, 20, -30};
    OAK_VALUE zoned = of_type(OAK_TIMESTAMPTZ);
    zoned.vt.tszv = &moment;
    OAK_VALUE uuid = of_type(OAK_UUID);
    uuid.vt.uuid = &kUuid;
    struct {
        OAK_VALUE value;
        const void *raw;
        size_t size;
    } cases[] = {
        {made(oak_valueSetInt8, int8_t{-2}), nullptr, 1},
        {made(oak_valueSetUInt8, uint8_t{200}), nullptr, 1},
        {made(oak_valueSetInt16, int16_t{-300}), nullptr, 2},
        {made(oak_valueSetUInt16, uint16_t{60000}), nullptr, 2},
        {made(oak_valueSetBoolean, OAK_TRUE), nullptr, 4},
        {made(oak_valueSetDate, 738000u), nullptr, 4},
        {made(oak_valueSetTime, 86399u), nullptr, 4},
        {made(oak_valueSetInt32, -70000), nullptr, 4},
        {made(oak_valueSetUInt32, 4000000000u), nullptr, 4},
        {made(oak_valueSetFloat, 1.5f), nullptr, 4},
        {made(oak_valueSetRowId, kTopBit), nullptr, 8},
        {made(oak_valueSetInt64, INT64_MIN), nullptr, 8},
        {made(oak_valueSetUInt64, UINT64_MAX), nullptr, 8},
        {made(oak_valueSetDouble, -0.1), nullptr, 8},
        {made(oak_valueSetTimestamp, OAK_PACKED_TIMESTAMP_T{3, 4}), nullptr, 8},
        {made(oak_valueSetTimeTZ, OAK_PACKED_TIMETZ_T{3, 4}), nullptr, 8},
        {zoned, &moment, 12},
        {uuid, &kUuid, 16},
        {of_decimal(&number), &number, 37},
    };
    for (auto &row : cases) {
        SCOPED_TRACE(row.value.type);
        const void *raw = row.raw == nullptr ? &row.value.vt : row.raw;
        uint8_t buffer[48];
        memset(buffer, 0xEE, sizeof buffer);
        size_t size = 999;
        EXPECT_EQ(oak_valueToBuffer(&row.value, nullptr, 0, &size), sOKAY);
        EXPECT_EQ(size, row.size);
        size = 999;
        EXPECT_EQ(oak_valueToBuffer(&row.value, buffer, row.size, &size), sOKAY);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(memcmp(buffer, raw, row.size), 0);
        EXPECT_EQ(buffer[row.size], 0xEE);
        EXPECT_EQ(oak_valueToBuffer(&row.value, buffer, sizeof buffer, nullptr), sOKAY);
        memset(buffer, 0xEE, sizeof buffer);
        EXPECT_EQ(oak_valueToBuffer(&row.value, buffer, row.size - 1, &size), sTRUNCATE);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(buffer[0], 0xEE);
    }
}

TEST(ValueToBuffer, RefusesAFixedTypeWithoutItsPayload) {
    uint8_t buffer[48];
    for (const OAK_TYPE type : {OAK_TIMESTAMPTZ, OAK_UUID, OAK_BCD}) {
        const OAK_VALUE value = of_type(type);
        EXPECT_EQ(oak_valueToBuffer(&value, buffer, sizeof buffer, nullptr), eINVNULLARG);
    }
}

TEST(ValueToBuffer, AnswersANullWithAllOnes) {
    OAK_VALUE value = made(oak_valueSetInt32, 1);
    value.status = vsNULL;
    uint8_t buffer[4] = {7, 7, 7, 7};
    size_t size = 0;
    EXPECT_EQ(oak_valueToBuffer(&value, buffer, 4, &size), sOKAY);
    EXPECT_EQ(size, SIZE_MAX);
    EXPECT_EQ(buffer[0], 7);
    EXPECT_EQ(oak_valueToBuffer(&value, buffer, 4, nullptr), sOKAY);
}

TEST(ValueToBuffer, GivesAnAbsentValueNoSuchCare) {
    OAK_VALUE value = made(oak_valueSetInt32, 258);
    value.status = vsNOVAL;
    int32_t number = 0;
    size_t size = 0;
    EXPECT_EQ(oak_valueToBuffer(&value, &number, 4, &size), sOKAY);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(number, 258);
}

TEST(ValueToBuffer, CopiesExactlyTheBoundOfABinary) {
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6};
    for (const OAK_TYPE type : {OAK_BINARY, OAK_VARBINARY}) {
        const OAK_VALUE value = bytes_value(bytes, 4, type);
        struct {
            size_t bound;
            OAK_RETCODE rc;
        } const cases[] = {{0, sTRUNCATE}, {3, sTRUNCATE}, {4, sOKAY}, {6, sOKAY}};
        for (const auto &row : cases) {
            uint8_t buffer[8];
            memset(buffer, 0xEE, sizeof buffer);
            size_t size = 0;
            EXPECT_EQ(oak_valueToBuffer(&value, buffer, row.bound, &size), row.rc);
            EXPECT_EQ(size, 4u);
            EXPECT_EQ(memcmp(buffer, bytes, row.bound), 0);
            EXPECT_EQ(buffer[row.bound], 0xEE);
        }
        size_t size = 0;
        EXPECT_EQ(oak_valueToBuffer(&value, nullptr, 2, &size), sOKAY);
        EXPECT_EQ(size, 4u);
    }
    uint8_t buffer[1];
    const OAK_VALUE empty = bytes_value(nullptr, 0);
    EXPECT_EQ(oak_valueToBuffer(&empty, buffer, 0, nullptr), sOKAY);
    EXPECT_EQ(oak_valueToBuffer(&empty, buffer, 1, nullptr), eINVNULLARG);
}

TEST(ValueToBuffer, CopiesTextWithItsTerminator) {
    for (const OAK_TYPE type : {OAK_CHAR, OAK_VARCHAR}) {
        const OAK_VALUE value = text_value("oak", type);
        struct {
            size_t bound;
            const char *text;
            OAK_RETCODE rc;
        } const cases[] = {
            {10, "oak", sOKAY}, {4, "oak", sOKAY}, {3, "oa", sTRUNCATE}, {1, "", sTRUNCATE}};
        for (const auto &row : cases) {
            char buffer[12];
            memset(buffer, 'x', sizeof buffer);
            size_t size = 0;
            EXPECT_EQ(oak_valueToBuffer(&value, buffer, row.bound, &size), row.rc);
            EXPECT_STREQ(buffer, row.text);
            EXPECT_EQ(size, strlen(row.text));
            EXPECT_EQ(buffer[row.bound], 'x');
        }
        char untouched[2] = "x";
        size_t size = 9;
        EXPECT_EQ(oak_valueToBuffer(&value, untouched, 0, &size), sTRUNCATE);
        EXPECT_EQ(size, 0u);
        EXPECT_STREQ(untouched, "x");
        EXPECT_EQ(oak_valueToBuffer(&value, nullptr, 0, &size), sOKAY);
        EXPECT_EQ(size, 3u);
    }
}

TEST(ValueToBuffer, MeasuresATextByItsLengthWhereItHasOne) {
    OAK_VALUE value = text_value("oak");
    size_t size = 0;
    value.len = 9;
    EXPECT_EQ(oak_valueToBuffer(&value, nullptr, 0, &size), sOKAY);
    EXPECT_EQ(size, 8u);
    value.len = 0;
    EXPECT_EQ(oak_valueToBuffer(&value, nullptr, 0, &size), sOKAY);
    EXPECT_EQ(size, 3u);
    value.vt.cv = nullptr;
    EXPECT_EQ(oak_valueToBuffer(&value, nullptr, 0, &size), eINVNULLARG);
}

TEST(ValueToBuffer, RefusesOtherTypesWithoutASize) {
    char buffer[64];
    for (const OAK_TYPE type :
         {OAK_NOVAL, OAK_WCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR, OAK_WVARCHAR_UTF8, OAK_BLOB, OAK_CLOB,
          OAK_WCLOB, OAK_WCLOB_UTF8, OAK_SUBQUERY, OAK_PARAMREF, OAK_RESULTCOL, OAK_ZERODIV,
          OAK_OAKVALUE, OAK_DEFAULT_AUTO}) {
        const OAK_VALUE value = text_value("oak", type);
        size_t size = 77;
        EXPECT_EQ(oak_valueToBuffer(&value, buffer, sizeof buffer, &size), eINVARGTYPE) << type;
        EXPECT_EQ(oak_valueToBuffer(&value, nullptr, 0, &size), eINVARGTYPE) << type;
        EXPECT_EQ(size, 77u);
    }
    EXPECT_EQ(oak_valueToBuffer(nullptr, buffer, 1, nullptr), eINVNULLARG);
}

// ---- Equality
// -------------------------------------------------------------------------------------------

bool equal(const OAK_VALUE &first, const OAK_VALUE &second) {
    const OAK_BOOL_T forth = oak_valueEqual(&first, &second);
    EXPECT_EQ(forth, oak_valueEqual(&second, &first));
    return forth == OAK_TRUE;
}

TEST(ValueEqual, WantsTheSameHead) {
    const OAK_VALUE value = made(oak_valueSetInt32, 1);
    OAK_VALUE other = value;
    EXPECT_TRUE(equal(value, other));
    other.status = vsNULL;
    EXPECT_FALSE(equal(value, other));
    other = value;
    other.type = OAK_UINT32;
    EXPECT_FALSE(equal(value, other));
    other = value;
    other.len = 1;
    EXPECT_FALSE(equal(value, other));
    int32_t numbers[] = {1};
    other = value;
    other.elts = 1;
    other.vt.i32a = numbers;
    EXPECT_FALSE(equal(value, other));
}

TEST(ValueEqual, ComparesNullsByTheirPayload) {
    OAK_VALUE first = made(oak_valueSetInt32, 1);
    OAK_VALUE second = made(oak_valueSetInt32, 2);
    first.status = second.status = vsNULL;
    EXPECT_FALSE(equal(first, second));
    second.vt.i32v = 1;
    EXPECT_TRUE(equal(first, second));
}

TEST(ValueEqual, ComparesScalarsByTheMemberOfTheirType) {
    // The bytes beyond a member's width differ and do not count.
    struct {
        OAK_TYPE type;
        size_t width;
    } const cases[] = {{OAK_INT8, 1},   {OAK_UINT8, 1},  {OAK_INT16, 2}, {OAK_UINT16, 2},
                       {OAK_INT32, 4},  {OAK_UINT32, 4}, {OAK_INT64, 8}, {OAK_UINT64, 8},
                       {OAK_BOOL, 4},   {OAK_ROWID, 8},  {OAK_DATE, 4},  {OAK_TIME, 4},
                       {OAK_TIMETZ, 4}, {OAK_FLOAT, 4},  {OAK_DOUBLE, 8}};
    for (const auto &row : cases) {
        SCOPED_TRACE(row.type);
        OAK_VALUE first = of_type(row.type);
        OAK_VALUE second = of_type(row.type);
        memset(&first.vt, 1, sizeof first.vt);
        memset(&second.vt, 1, sizeof second.vt);
        EXPECT_TRUE(equal(first, second));
        if (row.width < 8) {
            memset(reinterpret_cast<uint8_t *>(&second.vt) + row.width, 2, 8 - row.width);
            EXPECT_TRUE(equal(first, second));
        }
        reinterpret_cast<uint8_t *>(&second.vt)[row.width - 1] ^= 2;
        EXPECT_FALSE(equal(first, second));
    }
}

TEST(ValueEqual, ComparesFloatingNumbersAsNumbers) {
    const OAK_VALUE nan = made(oak_valueSetDouble, std::nan(""));
    EXPECT_FALSE(equal(nan, nan));
    EXPECT_TRUE(equal(made(oak_valueSetDouble, 0.0), made(oak_valueSetDouble, -0.0)));
    EXPECT_TRUE(equal(made(oak_valueSetFloat, 0.0f), made(oak_valueSetFloat, -0.0f)));
    const OAK_VALUE nanf = made(oak_valueSetFloat, std::nanf(""));
    EXPECT_FALSE(equal(nanf, nanf));
}

TEST(ValueEqual, ComparesDecimalsByValue) {
    OAK_BCD_T first = decimal("1.5");
    OAK_BCD_T second = decimal("1.50");
    second.flags = BCD_FLAG_PRECISION;
    EXPECT_TRUE(equal(of_decimal(&first), of_decimal(&second)));
    second = decimal("-1.5");
    EXPECT_FALSE(equal(of_decimal(&first), of_decimal(&second)));
    EXPECT_FALSE(equal(of_decimal(&first), of_decimal(nullptr)));
    EXPECT_TRUE(equal(of_decimal(nullptr), of_decimal(nullptr)));
}

TEST(ValueEqual, ComparesUuidsByTheirBytes) {
    OAK_UUID_T other = kUuid;
    OAK_VALUE first = of_type(OAK_UUID);
    OAK_VALUE second = of_type(OAK_UUID);
    first.vt.uuid = &kUuid;
    second.vt.uuid = &other;
    EXPECT_TRUE(equal(first, second));
    other.node[5] ^= 1;
    EXPECT_FALSE(equal(first, second));
}

TEST(ValueEqual, PassesOverTimeZones) {
    const auto zoned_time = [](uint32_t time, int16_t tz) {
        return made(oak_valueSetTimeTZ, OAK_PACKED_TIMETZ_T{time, tz});
    };
    EXPECT_TRUE(equal(zoned_time(5, 60), zoned_time(5, -60)));
    EXPECT_FALSE(equal(zoned_time(5, 60), zoned_time(6, 60)));
    const OAK_PACKED_TIMESTAMPTZ_T moments[] = {{1, 2, 60}, {1, 2, 0}, {1, 3, 60}, {2, 2, 60}};
    OAK_VALUE first = of_type(OAK_TIMESTAMPTZ);
    OAK_VALUE second = of_type(OAK_TIMESTAMPTZ);
    first.vt.tszv = &moments[0];
    second.vt.tszv = &moments[1];
    EXPECT_TRUE(equal(first, second));
    second.vt.tszv = &moments[2];
    EXPECT_FALSE(equal(first, second));
    second.vt.tszv = &moments[3];
    EXPECT_FALSE(equal(first, second));
    second.vt.tszv = nullptr;
    EXPECT_FALSE(equal(first, second));
}

TEST(ValueEqual, ComparesTimestampsByDateAndTime) {
    const auto moment = [](uint32_t date, uint32_t time) {
        return made(oak_valueSetTimestamp, OAK_PACKED_TIMESTAMP_T{date, time});
    };
    EXPECT_TRUE(equal(moment(1, 2), moment(1, 2)));
    EXPECT_FALSE(equal(moment(1, 2), moment(1, 3)));
    EXPECT_FALSE(equal(moment(1, 2), moment(2, 2)));
}

TEST(ValueEqual, ComparesNarrowTextsAndBinaries) {
    for (const OAK_TYPE type : {OAK_CHAR, OAK_VARCHAR, OAK_CLOB}) {
        EXPECT_TRUE(equal(text_value("oak", type), text_value("oak", type)));
        EXPECT_FALSE(equal(text_value("oak", type), text_value("elm", type)));
    }
    for (const OAK_TYPE type : {OAK_BINARY, OAK_VARBINARY, OAK_BLOB}) {
        EXPECT_TRUE(equal(bytes_value("a\0b", 3, type), bytes_value("a\0b", 3, type)));
        EXPECT_FALSE(equal(bytes_value("a\0b", 3, type), bytes_value("a\0c", 3, type)));
        EXPECT_FALSE(equal(bytes_value("a\0b", 3, type), bytes_value("a\0b", 2, type)));
        EXPECT_FALSE(equal(bytes_value("a\0b", 3, type), bytes_value(nullptr, 3, type)));
    }
    OAK_VALUE nothing = of_type(OAK_CHAR);
    OAK_VALUE text = text_value("");
    text.len = 0;
    EXPECT_FALSE(equal(nothing, text));
    EXPECT_TRUE(equal(nothing, nothing));
}

TEST(ValueEqual, DoesNotLookAtWideTexts) {
    for (const OAK_TYPE type :
         {OAK_WCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR, OAK_WVARCHAR_UTF8, OAK_WCLOB, OAK_WCLOB_UTF8}) {
        EXPECT_TRUE(equal(text_value("oak", type), text_value("elm", type)));
        EXPECT_FALSE(equal(text_value("oak", type), text_value("birch", type)));
    }
}

TEST(ValueEqual, FindsOtherTypesEqual) {
    for (const OAK_TYPE type : {OAK_NOVAL, OAK_PARAMREF, OAK_COLREF, OAK_RESULTCOL, OAK_ZERODIV}) {
        OAK_VALUE first = of_type(type);
        OAK_VALUE second = of_type(type);
        second.vt.u64v = 5;
        EXPECT_TRUE(equal(first, second)) << type;
    }
}

template <class Element>
void expect_array_equality(OAK_TYPE type, Element other) {
    SCOPED_TRACE(type);
    Element first[3] = {};
    Element second[3] = {};
    OAK_VALUE left = of_type(type);
    OAK_VALUE right = of_type(type);
    left.elts = right.elts = 3;
    left.vt.pv = first;
    right.vt.pv = second;
    EXPECT_TRUE(equal(left, right));
    second[2] = other;
    EXPECT_FALSE(equal(left, right));
    left.elts = right.elts = 2;
    EXPECT_TRUE(equal(left, right));
    right.elts = 1;
    EXPECT_FALSE(equal(left, right));
    right.elts = 2;
    right.vt.pv = nullptr;
    EXPECT_FALSE(equal(left, right));
}

TEST(ValueEqual, ComparesArraysElementByElement) {
    expect_array_equality<OAK_BOOL_T>(OAK_BOOL, OAK_TRUE);
    expect_array_equality<int8_t>(OAK_INT8, -1);
    expect_array_equality<uint8_t>(OAK_UINT8, 1);
    expect_array_equality<int16_t>(OAK_INT16, 256);
    expect_array_equality<uint16_t>(OAK_UINT16, 256);
    expect_array_equality<int32_t>(OAK_INT32, 65536);
    expect_array_equality<uint32_t>(OAK_UINT32, 65536);
    expect_array_equality<int64_t>(OAK_INT64, INT64_MIN);
    expect_array_equality<uint64_t>(OAK_UINT64, kTopBit);
    expect_array_equality<float>(OAK_FLOAT, 1.0f);
    expect_array_equality<double>(OAK_DOUBLE, 1.0);
}

TEST(ValueEqual, ComparesFloatingElementsAsNumbers) {
    double first[] = {0.0, 1.0};
    double second[] = {-0.0, 1.0};
    OAK_VALUE left = of_type(OAK_DOUBLE);
    OAK_VALUE right = of_type(OAK_DOUBLE);
    left.elts = right.elts = 2;
    left.vt.da = first;
    right.vt.da = second;
    EXPECT_TRUE(equal(left, right));
    first[1] = second[1] = std::nan("");
    EXPECT_FALSE(equal(left, right));
}

TEST(ValueEqual, FindsArraysOfOtherTypesEqual) {
    OAK_VALUE left = of_type(OAK_DATE);
    OAK_VALUE right = of_type(OAK_DATE);
    left.elts = right.elts = 2;
    right.vt.u64v = 1;
    EXPECT_TRUE(equal(left, right));
}

TEST(ValueEqual, TakesNullPointers) {
    const OAK_VALUE value = fresh();
    EXPECT_EQ(oak_valueEqual(nullptr, nullptr), OAK_TRUE);
    EXPECT_EQ(oak_valueEqual(&value, nullptr), OAK_FALSE);
    EXPECT_EQ(oak_valueEqual(nullptr, &value), OAK_FALSE);
}

} // namespace
