// The numbers and records of the platform's interface, which callers in other
// languages repeat: enumerations, flags, constant handles, field by field layouts.
#include <cstddef>

#include "test_support.h"

namespace {

TEST(PlatformTypes, HaveTheirNumbers) {
    const struct {
        const char *name;
        int64_t number;
        int64_t expected;
    } rows[] = {
        {"OAK_FALSE", OAK_FALSE, 0},
        {"OAK_TRUE", OAK_TRUE, 1},
        {"BLOCK_ALLOCATOR", BLOCK_ALLOCATOR, 0},
        {"LIST_ALLOCATOR", LIST_ALLOCATOR, 1},
        {"STACK_ALLOCATOR", STACK_ALLOCATOR, 2},
        {"LEGACY_ALLOCATOR", LEGACY_ALLOCATOR, 3},
        {"OSL_POOL_FIXED_SIZE", OSL_POOL_FIXED_SIZE, 0},
        {"OSL_POOL_VAR_SIZE", OSL_POOL_VAR_SIZE, 1},
        {"OSL_FILE_MODE_UNKNOWN", OSL_FILE_MODE_UNKNOWN, 0},
        {"OSL_FILE_MODE_UTF8", OSL_FILE_MODE_UTF8, 1},
        {"OSL_FILE_MODE_UTF16", OSL_FILE_MODE_UTF16, 2},
        {"ALN_CHAR", ALN_CHAR, 0},
        {"ALN_INT16", ALN_INT16, 1},
        {"ALN_WCHAR", ALN_WCHAR, 2},
        {"ALN_INT32", ALN_INT32, 3},
        {"ALN_FLOAT", ALN_FLOAT, 4},
        {"ALN_INT64", ALN_INT64, 5},
        {"ALN_DOUBLE", ALN_DOUBLE, 6},
        {"OAK_FP_POSITIVE_NAN", OAK_FP_POSITIVE_NAN, 1},
        {"OAK_FP_NEGATIVE_NAN", OAK_FP_NEGATIVE_NAN, 2},
        {"OAK_FP_POSITIVE_INF", OAK_FP_POSITIVE_INF, 3},
        {"OAK_FP_NEGATIVE_INF", OAK_FP_NEGATIVE_INF, 4},
        {"OSL_MEM_PLAIN", OSL_MEM_PLAIN, 1},
        {"OSL_MEM_ZERO", OSL_MEM_ZERO, 3},
        {"OSL_MEM_COPY", OSL_MEM_COPY, 5},
        {"OSL_MEM_STRING", OSL_MEM_STRING, 13},
        {"OSL_SYNC_MUTEX", OSL_SYNC_MUTEX, 1},
        {"OSL_SYNC_EVENT", OSL_SYNC_EVENT, 2},
        {"OSL_OPEN_READ", OSL_OPEN_READ, 0},
        {"OSL_OPEN_CREATE", OSL_OPEN_CREATE, 66},
        {"OSL_OPEN_TRUNCATE", OSL_OPEN_TRUNCATE, 578},
        {"OSL_SEEK_START", OSL_SEEK_START, 0},
        {"OSL_SEEK_CURRENT", OSL_SEEK_CURRENT, 1},
        {"OSL_READ_ERROR", OSL_READ_ERROR, INT64_C(4294967295)},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(row.number, row.expected) << row.name;
    }
    EXPECT_EQ(reinterpret_cast<uintptr_t>(OSL_TAG_PROCESS), 1u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(OSL_TAG_LZ), 2u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(OSL_SEM_NONE), UINTPTR_MAX);
    EXPECT_EQ(OSL_WAIT_FOREVER, UINT64_MAX);
}

TEST(PlatformTypes, HaveHandlesOfAPointerAndEnumerationsOf32Bits) {
    EXPECT_EQ(sizeof(OSL_MEMTAG), sizeof(void *));
    EXPECT_EQ(sizeof(OSL_POOL), sizeof(void *));
    EXPECT_EQ(sizeof(OSL_SEM), sizeof(void *));
    EXPECT_EQ(sizeof(OSL_FH), sizeof(void *));
    EXPECT_EQ(sizeof(OSL_FILE_STREAM), sizeof(void *));
    EXPECT_EQ(sizeof(OSL_RAND), sizeof(void *));
    EXPECT_EQ(sizeof(OSL_FILE_OFFSET), 8u);
    EXPECT_GT(OSL_FILE_OFFSET(-1), 0u); // unsigned
    EXPECT_EQ(sizeof(OAK_RETCODE), 4u);
    EXPECT_EQ(sizeof(OAK_BOOL_T), 4u);
    EXPECT_EQ(sizeof(ALIGN_TYPE), 4u);
    EXPECT_EQ(sizeof(OAK_FP_TYPE), 4u);
}

TEST(PlatformTypes, LayTheFieldsOfTheirRecordsOutInOrder) {
    EXPECT_EQ(offsetof(osl_thread_t, id), 0u);
    EXPECT_EQ(offsetof(osl_thread_t, rc), 8u);
    EXPECT_EQ(sizeof(osl_thread_t), 16u);

    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, buff), 0u);
    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, size), 8u);
    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, used_elems), 16u);
    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, used_chars), 24u);
    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, needed_elems), 32u);
    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, needed_chars), 40u);
    EXPECT_EQ(offsetof(OAK_OUTPUT_BUFF, done), 48u);

    EXPECT_EQ(offsetof(OSL_FILE_INFO, name), 0u);
    EXPECT_EQ(offsetof(OSL_FILE_INFO, file), 8u);
    EXPECT_EQ(offsetof(OSL_FILE_INFO, count), 16u);
    EXPECT_EQ(offsetof(_osl_file_entry, info), 0u);
    EXPECT_EQ(offsetof(_osl_file_entry, next), 8u);
    EXPECT_EQ(offsetof(_osllog_ctx, magic), 0u);
    EXPECT_EQ(offsetof(_osllog_ctx, osl_log_stack), 8u);
    EXPECT_EQ(offsetof(_osllog_ctx, osl_stdout_stack), 16u);
    EXPECT_EQ(offsetof(_osllog_ctx, osl_stderr_stack), 24u);
    EXPECT_EQ(offsetof(OSL_MOD_CTX_S, name), 0u);
    EXPECT_EQ(offsetof(OSL_MOD_CTX_S, OSData), 8u);
}

} // namespace
