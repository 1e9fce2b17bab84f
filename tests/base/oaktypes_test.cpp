// The records and numbers that the interface shares with callers in other languages:
// every field at its place, in the order in which it is told, and every number.
#include <cstddef>
#include <iterator>
#include <type_traits>

#include "base64.h"
#include "berror_legacy.h"
#include "btree.h"
#include "error_internal.h"
#include "hashfcn.h"
#include "oakvaluetypes.h"
#include "stack.h"
#include "test_support.h"
#include "thrpool.h"
#include "types.h"

namespace {

// A field and where it lies.
struct Field {
    const char *name;
    size_t at;
    size_t expected;
};
#define FIELD(record, field, expected)                                                             \
    { #record "." #field, offsetof(record, field), expected }

template <size_t Count>
void expect_layout(const Field (&fields)[Count]) {
    for (const Field &field : fields) {
        EXPECT_EQ(field.at, field.expected) << field.name;
    }
}

TEST(InterfaceRecords, OfStatusTables) {
    expect_layout({FIELD(OAK_ERRDEFN, name, 0), FIELD(OAK_ERRDEFN, code, 8),
                   FIELD(OAK_ERRDEFN, sqlstate, 16), FIELD(OAK_ERRDEFN, descr, 24),
                   FIELD(OAK_ERRGROUP, name, 0), FIELD(OAK_ERRGROUP, firstcode, 8),
                   FIELD(OAK_ERRGROUP, lastcode, 12), FIELD(OAK_ERROR, sStatus, 0),
                   FIELD(OAK_ERROR, name, 8), FIELD(OAK_ERROR, errorstring, 16)});
}

TEST(InterfaceRecords, OfErrorHandles) {
    expect_layout({FIELD(ERR_STAT_S, code, 0), FIELD(ERR_STAT_S, rowno, 8),
                   FIELD(ERR_STAT_S, colno, 16), FIELD(ERR_STAT_S, srcfile, 24),
                   FIELD(ERR_STAT_S, srcline, 32), FIELD(ERR_STAT_S, srccol, 36),
                   FIELD(ERR_STAT_S, info, 40), FIELD(ERR_STAT_S, fcnId, 48),
                   FIELD(ERR_STAT_S, next, 56)});
    expect_layout({FIELD(_ERR_INFO, status, 0),       FIELD(_ERR_INFO, callcount, 8),
                   FIELD(_ERR_INFO, info, 16),        FIELD(_ERR_INFO, fcnid, 24),
                   FIELD(_ERR_INFO, file, 32),        FIELD(_ERR_INFO, line, 40),
                   FIELD(_ERR_INFO, errfile, 48),     FIELD(_ERR_INFO, errline, 56),
                   FIELD(_ERR_INFO, errcolumn, 60),   FIELD(_ERR_INFO, sqlstate, 64),
                   FIELD(_ERR_INFO, syshandler, 72),  FIELD(_ERR_INFO, sysdata, 80),
                   FIELD(_ERR_INFO, userhandler, 88), FIELD(_ERR_INFO, userdata, 96),
                   FIELD(_ERR_INFO, cleanup, 104),    FIELD(_ERR_INFO, cleanupdata, 112),
                   FIELD(_ERR_INFO, erractive, 120),  FIELD(_ERR_INFO, errcatch, 128),
                   FIELD(_ERR_INFO, logfile, 136),    FIELD(_ERR_INFO, usertag, 144),
                   FIELD(_ERR_INFO, tag, 152),        FIELD(catch_stack, next, 0),
                   FIELD(catch_stack, errjump, 8)});
}

TEST(InterfaceRecords, OfValues) {
    expect_layout({FIELD(OAK_COLUMN_VALUE, columnId, 0), FIELD(OAK_COLUMN_VALUE, value, 8)});
    EXPECT_EQ(sizeof(OAK_COLUMN_VALUE), 48u);
    // Every member begins where the payload begins.
    expect_layout(
        {FIELD(OAK_COLUMN, err, 0),  FIELD(OAK_COLUMN, bv, 0),   FIELD(OAK_COLUMN, i8v, 0),
         FIELD(OAK_COLUMN, u8v, 0),  FIELD(OAK_COLUMN, i16v, 0), FIELD(OAK_COLUMN, u16v, 0),
         FIELD(OAK_COLUMN, i32v, 0), FIELD(OAK_COLUMN, u32v, 0), FIELD(OAK_COLUMN, i64v, 0),
         FIELD(OAK_COLUMN, u64v, 0), FIELD(OAK_COLUMN, ridv, 0), FIELD(OAK_COLUMN, fv, 0),
         FIELD(OAK_COLUMN, dv, 0),   FIELD(OAK_COLUMN, cv, 0),   FIELD(OAK_COLUMN, wcv, 0),
         FIELD(OAK_COLUMN, pv, 0),   FIELD(OAK_COLUMN, dtv, 0),  FIELD(OAK_COLUMN, tmv, 0),
         FIELD(OAK_COLUMN, tsv, 0),  FIELD(OAK_COLUMN, tmzv, 0), FIELD(OAK_COLUMN, tszv, 0),
         FIELD(OAK_COLUMN, uuid, 0), FIELD(OAK_COLUMN, bcd, 0),  FIELD(OAK_COLUMN, ba, 0),
         FIELD(OAK_COLUMN, da, 0)});
    static_assert(std::is_same_v<decltype(OAK_COLUMN::ridv), uint64_t>);
    static_assert(std::is_same_v<decltype(OAK_COLUMN::ba), OAK_BOOL_T *>);
    EXPECT_EQ(OAK_LT, -1);
    EXPECT_EQ(OAK_EQ, 0);
    EXPECT_EQ(OAK_GT, 1);
}

TEST(InterfaceRecords, OfTypes) {
    expect_layout({FIELD(B_TYPE_INFO, type, 0), FIELD(B_TYPE_INFO, str, 8),
                   FIELD(B_TYPE_INFO, prec, 16), FIELD(B_TYPE_INFO, displaySize, 18),
                   FIELD(B_TYPE_INFO, len, 24)});
    expect_layout(
        {FIELD(OAK_TYPE_INFO, ext_align, 0), FIELD(OAK_TYPE_INFO, enum_name, 8),
         FIELD(OAK_TYPE_INFO, field_type_text, 16), FIELD(OAK_TYPE_INFO, ddl_type_text, 24),
         FIELD(OAK_TYPE_INFO, sql_type_text, 32), FIELD(OAK_TYPE_INFO, objc_field_type_text, 40),
         FIELD(OAK_TYPE_INFO, objc_field_array_type_text, 48), FIELD(OAK_TYPE_INFO, tostring, 56),
         FIELD(OAK_TYPE_INFO, fromstring, 64), FIELD(OAK_TYPE_INFO, cmp, 72),
         FIELD(OAK_TYPE_INFO, hashfcn, 80), FIELD(OAK_TYPE_INFO, copy_fcn, 88),
         FIELD(OAK_TYPE_INFO, copy_to_buff_fcn, 96), FIELD(OAK_TYPE_INFO, copy_from_buff_fcn, 104),
         FIELD(OAK_TYPE_INFO, assign_from_buff_fcn, 112), FIELD(OAK_TYPE_INFO, pack_fcn, 120),
         FIELD(OAK_TYPE_INFO, unpack_fcn, 128), FIELD(OAK_TYPE_INFO, unpack_to_buff_fcn, 136),
         FIELD(OAK_TYPE_INFO, free_fcn, 144)});
    EXPECT_EQ(B_TYPE_TEXT_BASE64, 0x40);
    EXPECT_EQ(B_TYPE_TEXT_DISCARD, 0x80);
    EXPECT_EQ(sizeof(OAK_HAS_VALUE_T), 1u);
}

// Each code is made of its class and what refines it; the classes are what code tests.
TEST(TypeCodes, AreMadeOfClassAndForm) {
    const struct {
        OAK_TYPE type;
        int form; // 0x0700: width or form
        int type_class;
        bool varying;
        bool large;
        bool is_unsigned;
    } rows[] = {
        {OAK_NOVAL, 0, 0, false, false, false},       {OAK_BOOL, 0, 1, false, false, true},
        {OAK_INT8, 0, 2, false, false, false},        {OAK_UINT8, 0, 2, false, false, true},
        {OAK_INT16, 1, 2, false, false, false},       {OAK_UINT16, 1, 2, false, false, true},
        {OAK_INT32, 2, 2, false, false, false},       {OAK_UINT32, 2, 2, false, false, true},
        {OAK_INT64, 3, 2, false, false, false},       {OAK_UINT64, 3, 2, false, false, true},
        {OAK_FLOAT, 2, 3, false, false, false},       {OAK_DOUBLE, 3, 3, false, false, false},
        {OAK_DATE, 1, 4, false, false, false},        {OAK_TIME, 2, 4, false, false, false},
        {OAK_TIMESTAMP, 3, 4, false, false, false},   {OAK_TIMETZ, 4, 4, false, false, false},
        {OAK_TIMESTAMPTZ, 5, 4, false, false, false}, {OAK_BCD, 0, 5, false, false, false},
        {OAK_BINARY, 0, 6, false, false, false},      {OAK_VARBINARY, 0, 6, true, false, false},
        {OAK_BLOB, 0, 6, false, true, false},         {OAK_ROWID, 0, 7, false, false, false},
        {OAK_CHAR, 0, 8, false, false, false},        {OAK_WCHAR, 1, 8, false, false, false},
        {OAK_WCHAR_UTF8, 2, 8, false, false, false},  {OAK_VARCHAR, 0, 8, true, false, false},
        {OAK_WVARCHAR, 1, 8, true, false, false},     {OAK_WVARCHAR_UTF8, 2, 8, true, false, false},
        {OAK_CLOB, 0, 8, false, true, false},         {OAK_WCLOB, 1, 8, false, true, false},
        {OAK_WCLOB_UTF8, 2, 8, false, true, false},   {OAK_UUID, 0, 9, false, false, false},
    };
    static_assert(std::size(rows) == 32);
    for (const auto &row : rows) {
        EXPECT_EQ(row.type, (row.type_class | row.form << 8 | (row.varying ? 0x0800 : 0) |
                             (row.large ? 0x1000 : 0) | (row.is_unsigned ? 0x8000 : 0)))
            << row.type;
        EXPECT_EQ(int32_t{row.type} & OAK_TYPE_CLASS_MASK, row.type_class);
        EXPECT_EQ((int32_t{row.type} & OAK_TYPE_LARGE_OBJECT) != 0, row.large);
    }
    // References and markers tell themselves apart by 0x00F0 and 0xF000.
    for (const OAK_TYPE type : {OAK_SUBQUERY, OAK_OUTERREF, OAK_PARAMREF, OAK_OAKVALUE, OAK_AUTOGEN,
                                OAK_PROCVAR, OAK_ZERODIV, OAK_RESULTCOL, OAK_COLREF, OAK_DEFAULT,
                                OAK_DEFAULT_AUTO, OAK_DEFAULT_CURRENT, OAK_DEFAULT_CURRDATE,
                                OAK_DEFAULT_CURRTIME, OAK_DEFAULT_CURRTIMESTAMP, OAK_GLOBALVAR}) {
        EXPECT_EQ(int32_t{type} & OAK_TYPE_CLASS_MASK, 11) << type;
        EXPECT_EQ(type & 0x0F00, 0) << type;
    }
}

TEST(InterfaceRecords, OfContainers) {
    expect_layout(
        {FIELD(B_QUEMSG_S, next, 0), FIELD(B_QUEUE, head, 0), FIELD(B_QUEUE, tail, 8),
         FIELD(B_QUEUE, entrySem, 16), FIELD(B_QUEUE, mtSem, 24), FIELD(B_QUEUE, exclSem, 32),
         FIELD(B_QUEUE, count, 40), FIELD(B_QUEUE, status, 44), FIELD(B_THRPOOL_JOB_S, queMsg, 0),
         FIELD(B_THRPOOL_JOB_S, fcn, 8), FIELD(B_THRPOOL_JOB_S, rc, 16),
         FIELD(B_THRPOOL_THREAD_S, thrPool, 0), FIELD(B_THRPOOL_THREAD_S, thread, 8),
         FIELD(B_THRPOOL, numThreads, 0), FIELD(B_THRPOOL, maxThreads, 4),
         FIELD(B_THRPOOL, queue, 8), FIELD(B_THRPOOL, tag, 56), FIELD(B_THRPOOL, threads, 64)});
    EXPECT_EQ(B_QUEUE_OPEN, 0);
    EXPECT_EQ(B_QUEUE_CLOSED, 1);
    EXPECT_EQ(B_STACK_SYNC, 1);
    EXPECT_EQ(B_BT_SYNC, 1);
    EXPECT_EQ(BT_RETURN_NONE, 0);
    EXPECT_EQ(BT_RETURN_NEXT, 1);
    EXPECT_EQ(BT_RETURN_PREV, 2);
}

TEST(InterfaceRecords, OfByteHelpers) {
    expect_layout({FIELD(B_HASHCTX, offset, 0), FIELD(B_HASHCTX, hash, 8),
                   FIELD(OAK_BUFFER, data, 0), FIELD(OAK_BUFFER, size, 8),
                   FIELD(OAK_BUFFER, len, 16), FIELD(OAK_BUFFER, pos, 24),
                   FIELD(OAK_BUFFER, tag, 32), FIELD(B_BASE64, bits, 0),
                   FIELD(B_BASE64, numbits, 2), FIELD(B_BASE64, done, 4), FIELD(B_BASE64, pos, 8),
                   FIELD(B_BASE64, fcn, 16), FIELD(B_BASE64, ctx, 24)});
    EXPECT_EQ(std::size(hashNumbers), 256u);
    EXPECT_EQ(std::size(hashNumbers[0]), 8u);
}

} // namespace
