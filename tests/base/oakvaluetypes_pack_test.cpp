// Values to and from the stored stream: literal bytes for every type, run lists
// of every shape, streams that end early, lie about a length or hold a number
// out of range, and what is left allocated after each.
#include "oakvaluetypes.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "bcd.h"
#include "buff.h"
#include "encoder.h"
#include "test_support.h"
#include "type_descriptors.h"

using namespace oaktest;

namespace {

const OAK_UUID_T kUuid = {0x04030201, 0x0605, 0x0807, 9, 10, {11, 12, 13, 14, 15, 16}};
const OAK_PACKED_TIMESTAMPTZ_T kMoment = {738000, 5, -90};

// An encoder into a buffer.
struct Writing {
    Writing() {
        b_buffInit(&bytes, tag);
        EXPECT_EQ(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &bytes, tag, &encoder),
                  sOKAY);
    }
    ~Writing() {
        b_encoderDestroy(encoder);
        b_buffTerm(&bytes);
    }
    std::string text() const { return hex(bytes.data, bytes.len); }

    Tag tag;
    OAK_BUFFER bytes;
    B_ENCODER encoder = nullptr;
};

// A decoder over bytes, through the buffer's own functions or through plain
// callbacks.
struct Reading {
    explicit Reading(const std::vector<uint8_t> &stream) {
        b_buffInit(&bytes, tag);
        b_buffSetStatic(&bytes, stream.data(), stream.size());
        EXPECT_EQ(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &bytes, tag, &decoder),
                  sOKAY);
    }
    ~Reading() { b_decoderDestroy(decoder); }
    bool at_end() const { return bytes.pos == bytes.len; }

    Tag tag;
    OAK_BUFFER bytes;
    B_DECODER decoder = nullptr;
};

std::string packed(const _SCH_TYPE_INFO &type, const OAK_VALUE &value) {
    Writing writing;
    EXPECT_EQ(type.type_info->pack_fcn(&type, &value, writing.encoder), sOKAY);
    return writing.text();
}

OAK_RETCODE pack_status(const _SCH_TYPE_INFO &type, const OAK_VALUE *value) {
    Writing writing;
    return type.type_info->pack_fcn(&type, value, writing.encoder);
}

// The unpacked value, or a status.
struct Unpacked {
    Unpacked(const _SCH_TYPE_INFO &column, const std::string &stream) : type(column) {
        const std::vector<uint8_t> bytes = unhex(stream);
        Reading reading(bytes);
        memset(&value, 0x5A, sizeof value);
        rc = type.type_info->unpack_fcn(&type, &value, tag, reading.decoder);
        consumed = reading.at_end();
    }
    ~Unpacked() {
        if (owns_payload()) {
            OSL_FREE(const_cast<void *>(value.vt.pv), tag);
        }
    }
    bool owns_payload() const {
        const OAK_TYPE code = type.type;
        const unsigned kind = static_cast<unsigned>(code) & 0x0F;
        return rc == sOKAY && (value.elts != 0 || code == OAK_TIMESTAMPTZ || kind == 5 ||
                               kind == 6 || kind == 8 || kind == 9);
    }
    const void *payload() const { return owns_payload() ? value.vt.pv : &value.vt; }

    _SCH_TYPE_INFO type;
    Tag tag;
    OAK_VALUE value;
    OAK_RETCODE rc;
    bool consumed;
};

// A record buffer of exactly the column's length, so that a sanitizer sees each
// byte beyond it.
struct IntoRecord {
    IntoRecord(const _SCH_TYPE_INFO &column, const std::string &stream)
        : record(column.byte_len, 0xEE) {
        const std::vector<uint8_t> bytes = unhex(stream);
        Reading reading(bytes);
        rc = column.type_info->unpack_to_buff_fcn(&column, record.data(), &has_value,
                                                  reading.decoder);
        consumed = reading.at_end();
    }
    std::string text(size_t size) const { return hex(record.data(), size); }

    std::vector<uint8_t> record;
    OAK_HAS_VALUE_T has_value = 7;
    OAK_RETCODE rc;
    bool consumed;
};

// ---- The stream forms, both ways ----------------------------------------------------

// A stream, and the machine form of what it holds.
struct Form {
    _SCH_TYPE_INFO type;
    std::string stream;
    std::string machine;
    uint32_t elts = 0;
    size_t len = 0;
};

const Form kForms[] = {
    // Scalars at both ends of their types: zigzag for signed, plain for unsigned.
    {number_type(OAK_BOOL), "02", "01000000"},
    {number_type(OAK_BOOL), "00", "00000000"},
    {number_type(OAK_INT8), "00", "00"},
    {number_type(OAK_INT8), "01", "ff"},
    {number_type(OAK_INT8), "fe01", "7f"},
    {number_type(OAK_INT8), "ff01", "80"},
    {number_type(OAK_UINT8), "7f", "7f"},
    {number_type(OAK_UINT8), "ff01", "ff"},
    {number_type(OAK_INT16), "feff03", "ff7f"},
    {number_type(OAK_INT16), "ffff03", "0080"},
    {number_type(OAK_UINT16), "ffff03", "ffff"},
    {number_type(OAK_INT32), "8001", "40000000"},
    {number_type(OAK_INT32), "feffffff0f", "ffffff7f"},
    {number_type(OAK_INT32), "ffffffff0f", "00000080"},
    {number_type(OAK_UINT32), "ac02", "2c010000"},
    {number_type(OAK_UINT32), "ffffffff0f", "ffffffff"},
    {number_type(OAK_INT64), "feffffffffffffffff01", "ffffffffffffff7f"},
    {number_type(OAK_INT64), "ffffffffffffffffff01", "0000000000000080"},
    {number_type(OAK_UINT64), "ffffffffffffffffff01", "ffffffffffffffff"},
    {number_type(OAK_ROWID), "808001", "0040000000000000"},
    {number_type(OAK_FLOAT), "3f800000", "0000803f"},
    {number_type(OAK_DOUBLE), "c000000000000000", "00000000000000c0"},
    // Arrays: one run, the count, no skip, the elements.
    {number_type(OAK_BOOL, 2), "0102000200", "0100000000000000", 2},
    {number_type(OAK_INT8, 3), "010300020104", "01ff02", 3},
    {number_type(OAK_UINT8, 2), "01020001ff01", "01ff", 2},
    {number_type(OAK_INT16, 2), "0102000201", "0100ffff", 2},
    {number_type(OAK_UINT16, 2), "01020001ac02", "01002c01", 2},
    {number_type(OAK_INT32, 2), "0102000201", "01000000ffffffff", 2},
    {number_type(OAK_UINT32, 1), "010100ac02", "2c010000", 1},
    {number_type(OAK_INT64, 2), "0102000201", "0100000000000000ffffffffffffffff", 2},
    {number_type(OAK_UINT64, 1), "01010001", "0100000000000000", 1},
    {number_type(OAK_FLOAT, 2), "0102003f800000c0000000", "0000803f000000c0", 2},
    {number_type(OAK_DOUBLE, 1), "0101003ff0000000000000", "000000000000f03f", 1},
    // Records.
    {descriptor(OAK_DATE), "ac02", "2c010000"},
    {descriptor(OAK_TIME), "ac02", "2c010000"},
    {descriptor(OAK_TIMETZ), "05b301", "05000000a6ff0000"},
    {descriptor(OAK_TIMESTAMP), "0105", "0100000005000000"},
    {descriptor(OAK_TIMESTAMPTZ), "0105b301", "0100000005000000a6ff0000"},
    {descriptor(OAK_UUID), "000102030405060708090a0b0c0d0e0f", "000102030405060708090a0b0c0d0e0f"},
    {decimal_type(5, 2), "400150",
     "03010001000105000000000000000000000000000000000000000000000000000000000000"},
    // Runs of bytes.
    {text_type(4), "036f616b", "6f616b00", 0, 4},
    {text_type(4, OAK_WVARCHAR), "036f616b", "6f616b00", 0, 4},
    {text_type(4), "00", "00", 0, 1},
    {binary_type(3), "6f616b", "6f616b", 0, 3},
    {varbinary_type(3), "036f616b", "6f616b", 0, 3},
};

// The value whose machine form is given, lying in `machine`.
OAK_VALUE value_of(const Form &form, const std::vector<uint8_t> &machine) {
    OAK_VALUE value = of_type(form.type.type);
    const unsigned kind = static_cast<unsigned>(form.type.type) & 0x0F;
    const bool behind_pointer = form.elts != 0 || kind == 5 || kind == 6 || kind == 8 ||
                                kind == 9 || form.type.type == OAK_TIMESTAMPTZ;
    value.elts = form.elts;
    value.len = form.len;
    if (behind_pointer) {
        value.vt.pv = machine.data();
    } else {
        memcpy(&value.vt, machine.data(), machine.size());
    }
    return value;
}

// A trailing zero that packing a decimal in a fixed scale leaves.
bool keeps_column_digits(const Form &form) {
    return form.type.type == OAK_BCD;
}

TEST(Pack, WritesTheStreamForm) {
    for (const Form &form : kForms) {
        SCOPED_TRACE(form.stream);
        const std::vector<uint8_t> machine = unhex(form.machine);
        EXPECT_EQ(packed(form.type, value_of(form, machine)), form.stream);
    }
}

TEST(Pack, ReadsPayloadsAtAnyAddress) {
    for (const Form &form : kForms) {
        SCOPED_TRACE(form.stream);
        const std::vector<uint8_t> machine = unhex(form.machine);
        std::vector<uint8_t> moved(machine.size() + 1);
        memcpy(moved.data() + 1, machine.data(), machine.size());
        OAK_VALUE value = value_of(form, machine);
        if (value.vt.pv == machine.data()) {
            value.vt.pv = moved.data() + 1;
        }
        EXPECT_EQ(packed(form.type, value), form.stream);
    }
}

TEST(Unpack, ReadsTheStreamForm) {
    for (const Form &form : kForms) {
        SCOPED_TRACE(form.stream);
        const Unpacked read(form.type, form.stream);
        ASSERT_EQ(read.rc, sOKAY);
        EXPECT_TRUE(read.consumed);
        EXPECT_EQ(read.value.status, vsOKAY);
        EXPECT_EQ(read.value.type, form.type.type);
        EXPECT_EQ(read.value.elts, form.elts);
        EXPECT_EQ(read.value.len, form.len);
        if (!keeps_column_digits(form)) {
            EXPECT_EQ(hex(read.payload(), form.machine.size() / 2), form.machine);
        }
    }
}

TEST(UnpackToBuff, ReadsTheStreamForm) {
    for (const Form &form : kForms) {
        SCOPED_TRACE(form.stream);
        const IntoRecord read(form.type, form.stream);
        ASSERT_EQ(read.rc, sOKAY);
        EXPECT_TRUE(read.consumed);
        EXPECT_EQ(read.has_value, 1);
        const bool varbinary = form.type.type == OAK_VARBINARY;
        if (!keeps_column_digits(form)) {
            const std::string expected = varbinary ? "0300" + form.machine : form.machine;
            EXPECT_EQ(read.text(expected.size() / 2), expected);
        }
    }
}

TEST(UnpackToBuff, TakesNoInterestInTheHasValueByte) {
    const std::vector<uint8_t> stream = unhex("02");
    Reading reading(stream);
    const _SCH_TYPE_INFO type = number_type(OAK_INT32);
    int32_t number = 0;
    EXPECT_EQ(b_type_schema_unpack_to_buff_int32(&type, &number, nullptr, reading.decoder), sOKAY);
    EXPECT_EQ(number, 1);
}

TEST(UnpackToBuff, WritesAtAnyAddress) {
    for (const Form &form : kForms) {
        if (form.type.type == OAK_VARBINARY || keeps_column_digits(form)) {
            continue;
        }
        SCOPED_TRACE(form.stream);
        const std::vector<uint8_t> stream = unhex(form.stream);
        Reading reading(stream);
        std::vector<uint8_t> record(form.type.byte_len + 1u, 0xEE);
        ASSERT_EQ(form.type.type_info->unpack_to_buff_fcn(&form.type, record.data() + 1, nullptr,
                                                          reading.decoder),
                  sOKAY);
        EXPECT_EQ(record[0], 0xEE);
        EXPECT_EQ(hex(record.data() + 1, form.machine.size() / 2), form.machine);
    }
}

TEST(Unpack, KeepsTheDigitsOfTheDecimalsColumn) {
    const Unpacked read(decimal_type(5, 2), "400150");
    ASSERT_EQ(read.rc, sOKAY);
    const OAK_BCD_T *number = read.value.vt.bcd;
    EXPECT_EQ(number->prec, 3); // 1.50
    EXPECT_EQ(number->exp, 1);
    EXPECT_EQ(number->sign, 1);
    EXPECT_EQ(hex(number->data, 5), "0001050000");
    const IntoRecord record(decimal_type(5, 2), "099849");
    ASSERT_EQ(record.rc, sOKAY);
    EXPECT_EQ(record.text(9), "030100ff0001050000");
}

TEST(Pack, TakesTheElementsOfABooleanAsNumbers) {
    EXPECT_EQ(packed(number_type(OAK_BOOL), scalar(OAK_BOOL, 0xFFFFFFFFu)), "01"); // -1
}

// ---- Packing: what a value must have -----------------------------------------------------

TEST(Pack, TakesTheFirstElementForAScalarColumn) {
    const int32_t numbers[] = {1, 2};
    EXPECT_EQ(packed(number_type(OAK_INT32), array_at(OAK_INT32, numbers, 2)), "02");
}

TEST(Pack, TakesAsManyElementsAsTheColumnDeclares) {
    const int32_t numbers[] = {1, 2, 3};
    EXPECT_EQ(packed(number_type(OAK_INT32, 2), array_at(OAK_INT32, numbers, 3)), "0102000204");
}

TEST(Pack, TakesTheBytesOfAnArrayByTheValuesOwnCount) {
    const int8_t numbers[] = {1, 2, 3};
    EXPECT_EQ(packed(number_type(OAK_INT8, 2), array_at(OAK_INT8, numbers, 3)), "010300020406");
    EXPECT_EQ(packed(number_type(OAK_INT8, 2), array_at(OAK_INT8, numbers, 1)), "01010002");
    EXPECT_EQ(packed(number_type(OAK_INT8, 2), scalar<int8_t>(OAK_INT8, 1)), "010000");
}

TEST(Pack, RefusesAnArrayWithFewerElementsThanTheColumn) {
    const int64_t numbers[] = {1, 2};
    for (const OAK_TYPE code : {OAK_BOOL, OAK_UINT8, OAK_INT16, OAK_UINT16, OAK_INT32, OAK_UINT32,
                                OAK_INT64, OAK_UINT64, OAK_FLOAT, OAK_DOUBLE}) {
        const OAK_VALUE value = array_at(code, numbers, 2);
        EXPECT_EQ(pack_status(number_type(code, 3), &value), eBADDATALEN) << code;
        OAK_VALUE empty = of_type(code);
        empty.elts = 3;
        EXPECT_EQ(pack_status(number_type(code, 3), &empty), eINVNULLARG) << code;
    }
}

TEST(Pack, WritesATextUpToItsTerminatorWhateverItsLength) {
    EXPECT_EQ(packed(text_type(10), pointed(OAK_CHAR, "oak", 0)), "036f616b");
    EXPECT_EQ(packed(text_type(10), pointed(OAK_CHAR, "oak", 99)), "036f616b");
    const std::string longer(200, 'x');
    EXPECT_EQ(packed(text_type(300), pointed(OAK_CHAR, longer.c_str())).substr(0, 6), "c80178");
}

TEST(Pack, ContinuesAShortBinaryInZeros) {
    EXPECT_EQ(packed(binary_type(5), pointed(OAK_BINARY, "oak", 3)), "6f616b0000");
    EXPECT_EQ(packed(binary_type(3), pointed(OAK_BINARY, "oaks", 4)), "6f616b");
    EXPECT_EQ(packed(binary_type(3), pointed(OAK_BINARY, "oaks", 0)), "6f616b");
    EXPECT_EQ(packed(binary_type(200), pointed(OAK_BINARY, "\1", 1)), "01" + std::string(398, '0'));
    EXPECT_EQ(packed(binary_type(0), pointed(OAK_BINARY, "oaks", 4)), "");
}

TEST(Pack, WritesAnEmptyVarbinaryByItsLengthAlone) {
    EXPECT_EQ(packed(varbinary_type(5), pointed(OAK_VARBINARY, nullptr, 0)), "00");
    EXPECT_EQ(packed(varbinary_type(5), pointed(OAK_VARBINARY, "oak", 0)), "00");
}

TEST(Pack, RefusesADecimalThatDoesNotFitItsColumn) {
    OAK_BCD_T number;
    ASSERT_EQ(oak_bcdFromString("1234.5", &number), sOKAY);
    const OAK_VALUE value = pointed(OAK_BCD, &number);
    EXPECT_EQ(pack_status(decimal_type(3, 0), &value), eINVBCD);
    EXPECT_EQ(pack_status(decimal_type(33, 0), &value), eINVBCD);
    EXPECT_EQ(pack_status(decimal_type(255, 0), &value), eINVBCD);
    EXPECT_EQ(pack_status(decimal_type(10, 33), &value), eINVBCD);
    EXPECT_EQ(packed(decimal_type(4, 0), value), "412340"); // the fraction is cut off
}

TEST(Pack, RefusesNullPointers) {
    for (const OAK_TYPE code : {OAK_INT32, OAK_DATE, OAK_TIMETZ, OAK_TIMESTAMP, OAK_TIMESTAMPTZ,
                                OAK_UUID, OAK_BCD, OAK_CHAR, OAK_BINARY, OAK_VARBINARY}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        EXPECT_EQ(pack_status(type, nullptr), eINVNULLARG) << code;
        const OAK_VALUE value = of_type(code);
        EXPECT_EQ(type.type_info->pack_fcn(&type, &value, nullptr), eINVNULLARG) << code;
    }
    for (const OAK_TYPE code : {OAK_TIMESTAMPTZ, OAK_UUID, OAK_BCD, OAK_CHAR, OAK_BINARY}) {
        const OAK_VALUE value = of_type(code);
        EXPECT_EQ(pack_status(descriptor(code), &value), eINVNULLARG) << code;
    }
    const OAK_VALUE value = pointed(OAK_VARBINARY, nullptr, 1);
    EXPECT_EQ(pack_status(varbinary_type(5), &value), eINVNULLARG);
}

// A byte callback that fails after so many bytes, without a bulk callback.
struct Limited {
    size_t room;
};

OAK_RETCODE emit_limited(OAK_OUTPUT_CTX ctx, uint32_t) {
    auto *limited = static_cast<Limited *>(ctx);
    if (limited->room == 0) {
        return eOSL_FAILURE;
    }
    --limited->room;
    return sOKAY;
}

OAK_RETCODE emit_limited_bulk(OAK_OUTPUT_CTX ctx, const void *, size_t size) {
    auto *limited = static_cast<Limited *>(ctx);
    if (limited->room < size) {
        return eOSL_FAILURE;
    }
    limited->room -= size;
    return sOKAY;
}

TEST(Pack, HandsOnTheFailureOfTheOutput) {
    for (const Form &form : kForms) {
        SCOPED_TRACE(form.stream);
        const std::vector<uint8_t> machine = unhex(form.machine);
        const OAK_VALUE value = value_of(form, machine);
        const size_t whole = form.stream.size() / 2;
        for (size_t room = 0; room <= whole; ++room) {
            Tag tag;
            Limited limited = {room};
            B_ENCODER encoder = nullptr;
            ASSERT_EQ(b_encoderCreate(emit_limited, emit_limited_bulk, &limited, tag, &encoder),
                      sOKAY);
            EXPECT_EQ(form.type.type_info->pack_fcn(&form.type, &value, encoder),
                      room == whole ? sOKAY : eOSL_FAILURE);
            b_encoderDestroy(encoder);
        }
    }
    Tag tag;
    Limited limited = {3};
    B_ENCODER encoder = nullptr;
    ASSERT_EQ(b_encoderCreate(emit_limited, emit_limited_bulk, &limited, tag, &encoder), sOKAY);
    const OAK_VALUE short_one = pointed(OAK_BINARY, "oak", 3);
    const _SCH_TYPE_INFO type = binary_type(5);
    EXPECT_EQ(b_type_schema_pack_binary(&type, &short_one, encoder), eOSL_FAILURE); // in the zeros
    b_encoderDestroy(encoder);
}

TEST(Pack, NeedsTheBulkCallbackForABinaryAlone) {
    Tag tag;
    Limited limited = {100};
    B_ENCODER encoder = nullptr;
    ASSERT_EQ(b_encoderCreate(emit_limited, nullptr, &limited, tag, &encoder), sOKAY);
    const _SCH_TYPE_INFO binary = binary_type(3);
    const OAK_VALUE bytes = pointed(OAK_BINARY, "oak", 3);
    EXPECT_EQ(b_type_schema_pack_binary(&binary, &bytes, encoder), eNOTIMPLEMENTED);
    const _SCH_TYPE_INFO varbinary = varbinary_type(3);
    EXPECT_EQ(b_type_schema_pack_varbinary(&varbinary, &bytes, encoder), sOKAY);
    EXPECT_EQ(limited.room, 96u);
    b_encoderDestroy(encoder);
}

// ---- Run lists ----------------------------------------------------------------------------

TEST(Unpack, StoresASecondRunBehindTheSkippedElements) {
    const Unpacked read(number_type(OAK_INT32, 4), "02 0201 02 04 0100 06");
    ASSERT_EQ(read.rc, sOKAY);
    EXPECT_EQ(read.value.elts, 4u);
    EXPECT_EQ(read.value.vt.i32a[0], 1);
    EXPECT_EQ(read.value.vt.i32a[1], 2);
    EXPECT_EQ(read.value.vt.i32a[3], 3);
}

TEST(UnpackToBuff, LeavesTheSkippedElementsAsTheyWere) {
    const IntoRecord read(number_type(OAK_INT16, 4), "02 0201 02 04 0100 06");
    ASSERT_EQ(read.rc, sOKAY);
    EXPECT_EQ(read.text(8), "01000200eeee0300");
    // At an odd address too.
    const std::vector<uint8_t> stream = unhex("02 0201 02 04 0100 06");
    Reading reading(stream);
    std::vector<uint8_t> record(9, 0xEE);
    const _SCH_TYPE_INFO type = number_type(OAK_INT16, 4);
    ASSERT_EQ(
        b_type_schema_unpack_to_buff_int16(&type, record.data() + 1, nullptr, reading.decoder),
        sOKAY);
    EXPECT_EQ(hex(record.data(), 9), "ee01000200eeee0300");
}

TEST(Unpack, AcceptsARunListWithoutRuns) {
    const Unpacked read(number_type(OAK_DOUBLE, 4), "00");
    EXPECT_EQ(read.rc, sOKAY);
    EXPECT_EQ(read.value.elts, 4u);
    const IntoRecord record(number_type(OAK_UINT8, 4), "00");
    EXPECT_EQ(record.rc, sOKAY);
    EXPECT_EQ(record.has_value, 1);
    EXPECT_EQ(record.text(4), "eeeeeeee");
}

TEST(Unpack, AcceptsASkipThatOnlyEndsTheList) {
    const Unpacked read(number_type(OAK_UINT8, 2), "01 02 ffffffff0f 01 02");
    EXPECT_EQ(read.rc, sOKAY);
    const IntoRecord record(number_type(OAK_UINT8, 2), "01 02 ffffffff0f 01 02");
    EXPECT_EQ(record.rc, sOKAY);
    EXPECT_EQ(record.text(2), "0102");
}

TEST(Unpack, RefusesARunListThatLeavesItsArray) {
    const char *streams[] = {
        "01 03 00 02 02 02",                      // three elements for two
        "01 ffffffff0f 00 02 02",                 // very many
        "02 02 00 02 02 01 00 02",                // a second run behind the end
        "02 01 02 02 01 00 02",                   // a skip over the end, then a run
        "03 00 ffffffff0f 00 ffffffff0f 01 00 02" // skips that would wrap in 32 bits
    };
    for (const OAK_TYPE code : {OAK_BOOL, OAK_INT8, OAK_UINT8, OAK_INT16, OAK_UINT16, OAK_INT32,
                                OAK_UINT32, OAK_INT64, OAK_UINT64}) {
        for (const char *stream : streams) {
            SCOPED_TRACE(stream);
            const Unpacked read(number_type(code, 2), stream);
            EXPECT_EQ(read.rc, eDBCORRUPTED) << code;
            EXPECT_EQ(hex(&read.value.vt, 8), "5a5a5a5a5a5a5a5a");
            EXPECT_EQ(read.tag.live(), 0u);
            const IntoRecord record(number_type(code, 2), stream);
            EXPECT_EQ(record.rc, eDBCORRUPTED);
            EXPECT_EQ(record.has_value, 7);
        }
    }
    const Unpacked floats(number_type(OAK_FLOAT, 1), "01 02 00 3f800000 3f800000");
    EXPECT_EQ(floats.rc, eDBCORRUPTED);
    const Unpacked doubles(number_type(OAK_DOUBLE, 1), "01 02 00 3ff0000000000000");
    EXPECT_EQ(doubles.rc, eDBCORRUPTED);
}

// ---- Damaged streams --------------------------------------------------------------------------

void expect_damaged(const _SCH_TYPE_INFO &type, const std::string &stream, OAK_RETCODE expected) {
    SCOPED_TRACE(stream);
    const Unpacked read(type, stream);
    EXPECT_EQ(read.rc, expected) << type.type;
    EXPECT_EQ(hex(&read.value.vt, 8), "5a5a5a5a5a5a5a5a");
    EXPECT_EQ(read.tag.live(), 0u);
    const IntoRecord record(type, stream);
    EXPECT_EQ(record.rc, expected) << type.type;
    EXPECT_EQ(record.has_value, 7);
}

TEST(Unpack, RefusesNumbersOutOfTheirTypesRange) {
    expect_damaged(number_type(OAK_INT8), "8002", eDBCORRUPTED);  // 128
    expect_damaged(number_type(OAK_INT8), "8102", eDBCORRUPTED);  // -129
    expect_damaged(number_type(OAK_UINT8), "8002", eDBCORRUPTED); // 256
    expect_damaged(number_type(OAK_INT16), "808004", eDBCORRUPTED);
    expect_damaged(number_type(OAK_UINT16), "808004", eDBCORRUPTED);
    expect_damaged(number_type(OAK_INT32), "8080808010", eDBCORRUPTED);
    expect_damaged(number_type(OAK_BOOL), "8080808010", eDBCORRUPTED);
    expect_damaged(number_type(OAK_UINT32), "8080808010", eDBCORRUPTED);
    expect_damaged(number_type(OAK_UINT8, 2), "0102008002", eDBCORRUPTED);
    expect_damaged(descriptor(OAK_DATE), "8080808010", eDBCORRUPTED);
    expect_damaged(descriptor(OAK_TIME), "8080808010", eDBCORRUPTED);
    expect_damaged(descriptor(OAK_TIMETZ), "05808004", eDBCORRUPTED);
    expect_damaged(descriptor(OAK_TIMESTAMP), "058080808010", eDBCORRUPTED);
    expect_damaged(descriptor(OAK_TIMESTAMPTZ), "0505808004", eDBCORRUPTED);
}

TEST(Unpack, RefusesMalformedIntegers) {
    const std::string eleven = "8080808080808080808001";
    for (const OAK_TYPE code : {OAK_BOOL, OAK_INT8, OAK_UINT16, OAK_INT32, OAK_UINT64, OAK_ROWID,
                                OAK_DATE, OAK_TIMETZ, OAK_TIMESTAMPTZ}) {
        expect_damaged(descriptor(code), eleven, eINVVARINT);
    }
    expect_damaged(text_type(100), eleven, eINVVARINT);
    expect_damaged(varbinary_type(100), eleven, eINVVARINT);
    expect_damaged(number_type(OAK_INT32, 2), eleven, eINVVARINT);
    expect_damaged(number_type(OAK_UINT64), "ffffffffffffffffff02", eINVVARINT);
}

TEST(Unpack, RefusesEveryStreamThatEndsEarly) {
    for (const Form &form : kForms) {
        for (size_t digits = 0; digits < form.stream.size(); digits += 2) {
            expect_damaged(form.type, form.stream.substr(0, digits), eEOD);
        }
    }
}

TEST(Unpack, RefusesATextThatDoesNotFitItsColumn) {
    const Unpacked longest(text_type(4), "036f616b");
    EXPECT_EQ(longest.rc, sOKAY);
    expect_damaged(text_type(3), "036f616b", eDBCORRUPTED);
    expect_damaged(text_type(1), "016f", eDBCORRUPTED);
    expect_damaged(text_type(100), "64", eDBCORRUPTED);
    expect_damaged(text_type(65535), "ffff03", eDBCORRUPTED);
    expect_damaged(text_type(65535), "ffffffffffffffffff01", eDBCORRUPTED);
    expect_damaged(text_type(100), "63", eEOD);
}

TEST(Unpack, BoundsATextByItsDeclaredLengthWhereTheTableIsNotFinal) {
    _SCH_TYPE_INFO type = text_type(4);
    type.byte_len = 0;
    const Unpacked fits(type, "036f616b");
    EXPECT_EQ(fits.rc, sOKAY);
    const Unpacked damaged(type, "046f616b73");
    EXPECT_EQ(damaged.rc, eDBCORRUPTED);
    type.x.c.len = 0;
    const Unpacked nothing(type, "00");
    EXPECT_EQ(nothing.rc, eDBCORRUPTED);
}

TEST(Unpack, BoundsAVarbinaryByItsColumn) {
    // As a value it may have the bytes that a copy takes; a record has two fewer.
    const _SCH_TYPE_INFO type = varbinary_type(3);
    for (const char *stream : {"036f616b", "046f616b73", "056f616b7373"}) {
        const Unpacked read(type, stream);
        EXPECT_EQ(read.rc, sOKAY) << stream;
    }
    const Unpacked damaged(type, "066f616b737373");
    EXPECT_EQ(damaged.rc, eDBCORRUPTED);
    const IntoRecord fits(type, "036f616b");
    EXPECT_EQ(fits.rc, sOKAY);
    EXPECT_EQ(fits.text(5), "03006f616b");
    const IntoRecord overrun(type, "046f616b73");
    EXPECT_EQ(overrun.rc, eDBCORRUPTED);
    EXPECT_EQ(overrun.text(5), "eeeeeeeeee");
    expect_damaged(type, "808004", eDBCORRUPTED); // above 16 bits
    expect_damaged(type, "ffffffffffffffffff01", eDBCORRUPTED);
}

TEST(Unpack, BoundsAVarbinaryByItsDeclaredLengthWhereTheTableIsNotFinal) {
    _SCH_TYPE_INFO type = varbinary_type(3);
    type.byte_len = 0;
    const Unpacked fits(type, "036f616b");
    EXPECT_EQ(fits.rc, sOKAY);
    const Unpacked damaged(type, "046f616b73");
    EXPECT_EQ(damaged.rc, eDBCORRUPTED);
    const std::vector<uint8_t> stream = unhex("036f616b");
    Reading reading(stream);
    uint8_t record[5] = {};
    EXPECT_EQ(b_type_schema_unpack_to_buff_varbinary(&type, record, nullptr, reading.decoder),
              sOKAY);
    EXPECT_EQ(hex(record, 5), "03006f616b");
    _SCH_TYPE_INFO tiny = varbinary_type(0);
    tiny.byte_len = 1; // no room for the length
    const IntoRecord none(tiny, "016f");
    EXPECT_EQ(none.rc, eDBCORRUPTED);
}

TEST(Unpack, ReadsAnEmptyVarbinary) {
    const Unpacked read(varbinary_type(3), "00");
    ASSERT_EQ(read.rc, sOKAY);
    EXPECT_EQ(read.value.len, 0u);
    EXPECT_EQ(read.value.vt.pv, nullptr);
    EXPECT_EQ(read.tag.live(), 0u);
    const IntoRecord record(varbinary_type(3), "00");
    ASSERT_EQ(record.rc, sOKAY);
    EXPECT_EQ(record.text(5), "0000eeeeee");
}

TEST(Unpack, RefusesADecimalThatIsNone) {
    expect_damaged(decimal_type(5, 2), "4a0000", eINVBCD); // a nibble that is no digit
    expect_damaged(decimal_type(33, 2), "4000000000000000000000000000000000", eINVBCD);
    expect_damaged(decimal_type(255, 2), std::string(256, '0'), eINVBCD);
    expect_damaged(decimal_type(10, 33), "400000000000", eINVBCD);
}

TEST(Unpack, TakesMemoryAsItReads) {
    // 60,000 bytes are announced and 5,000 come: what is asked for stays near that.
    const _SCH_TYPE_INFO text = text_type(65535);
    const _SCH_TYPE_INFO binary = varbinary_type(65000);
    const std::string head = "e0d403";
    expect_damaged(text, head + std::string(10000, '6'), eEOD);
    expect_damaged(binary, head + std::string(10000, '6'), eEOD);
    const Unpacked whole(text, head + std::string(120000, '6'));
    ASSERT_EQ(whole.rc, sOKAY);
    EXPECT_EQ(whole.value.len, 60001u);
    EXPECT_EQ(std::string(whole.value.vt.cv), std::string(60000, 'f'));
    const Unpacked bytes(binary, head + std::string(120000, '6'));
    ASSERT_EQ(bytes.rc, sOKAY);
    EXPECT_EQ(bytes.value.len, 60000u);
    EXPECT_EQ(std::string(bytes.value.vt.cv, 60000), std::string(60000, 'f'));
}

TEST(Unpack, ReadsTextsAroundTheStepsOfItsMemory) {
    for (const size_t length :
         {size_t{4095}, size_t{4096}, size_t{4097}, size_t{8191}, size_t{8192}, size_t{8193}}) {
        std::string text(length, 'x');
        text.back() = 'y';
        const _SCH_TYPE_INFO type = text_type(20000);
        const Unpacked read(type, packed(type, pointed(OAK_CHAR, text.c_str())));
        ASSERT_EQ(read.rc, sOKAY);
        EXPECT_EQ(text, read.value.vt.cv);
    }
}

// An input that delivers fewer bytes in bulk than were asked for, and says so by
// the count alone.
OAK_RETCODE no_byte(OAK_INPUT_CTX, uint32_t *) {
    return eEOD;
}
OAK_RETCODE few_bytes(OAK_INPUT_CTX, size_t requested, void *data, size_t *got) {
    memset(data, 1, requested - 1);
    *got = requested - 1;
    return sOKAY;
}

TEST(Unpack, DoesNotTakeAShortBulkReadForABinary) {
    Tag tag;
    B_DECODER decoder = nullptr;
    ASSERT_EQ(b_decoderCreate(no_byte, few_bytes, &tag, tag, &decoder), sOKAY);
    const _SCH_TYPE_INFO type = binary_type(4);
    OAK_VALUE value = of_type(OAK_BINARY);
    uint8_t record[4];
    EXPECT_EQ(b_type_schema_unpack_binary(&type, &value, tag, decoder), eEOD);
    EXPECT_EQ(b_type_schema_unpack_to_buff_binary(&type, record, nullptr, decoder), eEOD);
    b_decoderDestroy(decoder);
    ASSERT_EQ(b_decoderCreate(no_byte, nullptr, &tag, tag, &decoder), sOKAY);
    EXPECT_EQ(b_type_schema_unpack_binary(&type, &value, tag, decoder), eNOTIMPLEMENTED);
    b_decoderDestroy(decoder);
}

TEST(Unpack, RefusesNullPointers) {
    const std::vector<uint8_t> stream = unhex("00");
    for (const OAK_TYPE code :
         {OAK_INT32, OAK_DATE, OAK_UUID, OAK_CHAR, OAK_BINARY, OAK_VARBINARY}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        Reading reading(stream);
        OAK_VALUE value = of_type(code);
        uint8_t record[64];
        Tag tag;
        EXPECT_EQ(type.type_info->unpack_fcn(&type, nullptr, tag, reading.decoder), eINVNULLARG);
        EXPECT_EQ(type.type_info->unpack_fcn(&type, &value, tag, nullptr), eINVNULLARG);
        EXPECT_EQ(type.type_info->unpack_to_buff_fcn(&type, nullptr, nullptr, reading.decoder),
                  eINVNULLARG);
        EXPECT_EQ(type.type_info->unpack_to_buff_fcn(&type, record, nullptr, nullptr), eINVNULLARG);
    }
}

// ---- Exhausted memory --------------------------------------------------------------------------

TEST(Unpack, LeavesNothingBehindWhenMemoryEnds) {
    for (const Form &form : kForms) {
        SCOPED_TRACE(form.stream);
        const std::vector<uint8_t> stream = unhex(form.stream);
        const std::vector<uint8_t> machine = unhex(form.machine);
        const bool allocates = value_of(form, machine).vt.pv == machine.data();
        Reading reading(stream);
        Tag tag;
        const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
            EXPECT_EQ(b_decoderSeek(reading.decoder, 0), sOKAY);
            OAK_VALUE value = of_type(OAK_NOVAL);
            const OAK_RETCODE rc =
                form.type.type_info->unpack_fcn(&form.type, &value, tag, reading.decoder);
            if (rc != sOKAY) {
                EXPECT_EQ(value.vt.pv, nullptr);
            } else if (allocates) {
                OSL_FREE(const_cast<void *>(value.vt.pv), tag);
            }
            return rc;
        });
        EXPECT_EQ(injected != 0, allocates && faults_are_injected());
    }
}

TEST(Unpack, LeavesNothingBehindWhenMemoryEndsInALongText) {
    const std::string text(10000, 'x');
    const _SCH_TYPE_INFO type = text_type(20000);
    const std::vector<uint8_t> stream = unhex(packed(type, pointed(OAK_CHAR, text.c_str())));
    Reading reading(stream);
    Tag tag;
    const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        EXPECT_EQ(b_decoderSeek(reading.decoder, 0), sOKAY);
        OAK_VALUE value = of_type(OAK_NOVAL);
        const OAK_RETCODE rc = b_type_schema_unpack_utf8(&type, &value, tag, reading.decoder);
        EXPECT_EQ(value.vt.pv != nullptr, rc == sOKAY);
        OSL_FREE(const_cast<void *>(value.vt.pv), tag);
        return rc;
    });
    EXPECT_GE(injected, faults_are_injected() ? 3u : 0u);
}

TEST(Pack, NeedsMemoryForElementsAtOddAddressesAlone) {
    const int32_t numbers[] = {1, -1};
    alignas(4) uint8_t moved[sizeof numbers + 1];
    memcpy(moved + 1, numbers, sizeof numbers);
    const _SCH_TYPE_INFO type = number_type(OAK_INT32, 2);
    Writing writing;
    ASSERT_EQ(b_buffIncreaseSize(&writing.bytes, 100), sOKAY);
    for (const bool odd : {false, true}) {
        const void *place = odd ? static_cast<const void *>(moved + 1) : numbers;
        const OAK_VALUE array = array_at(OAK_INT32, place, 2);
        const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
            b_encoderReset(writing.encoder);
            return b_type_schema_pack_int32(&type, &array, writing.encoder);
        });
        EXPECT_EQ(injected != 0, odd && faults_are_injected());
        EXPECT_EQ(writing.text(), "0102000201");
    }
}

TEST(UnpackToBuff, NeedsMemoryForElementsAtOddAddressesAlone) {
    const std::vector<uint8_t> stream = unhex("0102000201");
    const _SCH_TYPE_INFO type = number_type(OAK_INT32, 2);
    Reading reading(stream);
    alignas(4) uint8_t record[12] = {};
    for (const size_t offset : {size_t{0}, size_t{1}}) {
        const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
            EXPECT_EQ(b_decoderSeek(reading.decoder, 0), sOKAY);
            return b_type_schema_unpack_to_buff_int32(&type, record + offset, nullptr,
                                                      reading.decoder);
        });
        EXPECT_EQ(injected != 0, offset != 0 && faults_are_injected());
        EXPECT_EQ(hex(record + offset, 8), "01000000ffffffff");
    }
}

// ---- Round trips --------------------------------------------------------------------------------

template <class Native>
void expect_round_trips(OAK_TYPE code, const std::vector<Native> &numbers) {
    for (const Native number : numbers) {
        const _SCH_TYPE_INFO type = number_type(code);
        const Unpacked read(type, packed(type, scalar(code, number)));
        ASSERT_EQ(read.rc, sOKAY);
        EXPECT_EQ(memcmp(&read.value.vt, &number, sizeof number), 0) << code;
    }
}

template <class Native>
std::vector<Native> around_powers_of_two() {
    std::vector<Native> numbers;
    for (unsigned bit = 0; bit < 8 * sizeof(Native); ++bit) {
        const uint64_t power = UINT64_C(1) << bit;
        for (const uint64_t near : {power - 1, power, power + 1}) {
            numbers.push_back(static_cast<Native>(near));
            numbers.push_back(static_cast<Native>(0 - near));
        }
    }
    return numbers;
}

TEST(Stream, CarriesEveryPowerOfTwoAndItsNeighbours) {
    expect_round_trips(OAK_INT8, around_powers_of_two<int8_t>());
    expect_round_trips(OAK_UINT8, around_powers_of_two<uint8_t>());
    expect_round_trips(OAK_INT16, around_powers_of_two<int16_t>());
    expect_round_trips(OAK_UINT16, around_powers_of_two<uint16_t>());
    expect_round_trips(OAK_INT32, around_powers_of_two<int32_t>());
    expect_round_trips(OAK_UINT32, around_powers_of_two<uint32_t>());
    expect_round_trips(OAK_INT64, around_powers_of_two<int64_t>());
    expect_round_trips(OAK_UINT64, around_powers_of_two<uint64_t>());
    expect_round_trips(OAK_ROWID, around_powers_of_two<uint64_t>());
    expect_round_trips(OAK_DATE, around_powers_of_two<uint32_t>());
    expect_round_trips(OAK_TIME, around_powers_of_two<uint32_t>());
}

TEST(Stream, CarriesEveryBitOfFloatingNumbers) {
    expect_round_trips<double>(OAK_DOUBLE,
                               {0.0, -0.0, 0.1, -1e300, std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::denorm_min()});
    expect_round_trips<float>(OAK_FLOAT, {0.0f, -0.0f, 0.1f, std::numeric_limits<float>::infinity(),
                                          std::numeric_limits<float>::quiet_NaN(),
                                          std::numeric_limits<float>::denorm_min()});
}

TEST(Stream, CarriesZonedTimesAndUuids) {
    const Unpacked moment(descriptor(OAK_TIMESTAMPTZ),
                          packed(descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, &kMoment)));
    ASSERT_EQ(moment.rc, sOKAY);
    EXPECT_EQ(moment.value.vt.tszv->date, kMoment.date);
    EXPECT_EQ(moment.value.vt.tszv->time, kMoment.time);
    EXPECT_EQ(moment.value.vt.tszv->tz, kMoment.tz);
    const Unpacked uuid(descriptor(OAK_UUID),
                        packed(descriptor(OAK_UUID), pointed(OAK_UUID, &kUuid)));
    ASSERT_EQ(uuid.rc, sOKAY);
    EXPECT_EQ(memcmp(uuid.value.vt.uuid, &kUuid, sizeof kUuid), 0);
}

TEST(Stream, CarriesRandomArrays) {
    Random random(41);
    for (int round = 0; round < 50; ++round) {
        std::vector<int64_t> numbers(1 + random.below(40));
        for (int64_t &number : numbers) {
            number = static_cast<int64_t>(random.next() >> random.below(64));
        }
        const _SCH_TYPE_INFO type = number_type(OAK_INT64, static_cast<uint16_t>(numbers.size()));
        const std::string stream =
            packed(type, array_at(OAK_INT64, numbers.data(), numbers.size()));
        const Unpacked read(type, stream);
        ASSERT_EQ(read.rc, sOKAY);
        EXPECT_EQ(memcmp(read.value.vt.pv, numbers.data(), numbers.size() * 8), 0);
    }
}

} // namespace
