/* The platform layer, libosl-14: memory, locks, threads, files, streams, text,
 * numbers, the clock and random bits. The base library reaches the operating
 * system through these functions and through nothing else.
 *
 * Law: every allocation is made under a tag and osl_freeTagMem frees all that
 * a tag holds. Tags 1 and 2 are process-wide and safe for any number of
 * threads; every other tag, pool, file, stream and generator belongs to one
 * thread at a time. `file` and `line` at the end of a call name the caller for
 * leak reports and change nothing else.
 *
 * Contents: types; tags and memory; pools; process globals; locks and events;
 * threads; files; streams and printing; text; numbers; UTF-8 and locales;
 * varying integers; stored byte order; time and random bits. */
#ifndef OSLTYPES_H
#define OSLTYPES_H

#include <setjmp.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <time.h>

#include "oakretcodetypes.h"

OAK_C_BEGIN

/* ---- Types ------------------------------------------------------------- */

typedef enum OAK_BOOL_T OAK_INT32_ENUM { OAK_FALSE = 0, OAK_TRUE = 1 } OAK_BOOL_T;

typedef struct OSL_MEMTAG_S *OSL_MEMTAG;
typedef struct OSL_POOL_S *OSL_POOL;
typedef struct OSL_SEM_S *OSL_SEM;
typedef struct OSL_FH_S *OSL_FH;
typedef struct OSL_FILE_STREAM_S *OSL_FILE_STREAM;
typedef struct OSL_RAND_S *OSL_RAND;
typedef uint64_t OSL_FILE_OFFSET;

/* The C library's locale_t, by the name that strict C11 can see as well. */
typedef struct __locale_struct *OSL_LOCALE;

/* The two process-wide tags, which need no creation. */
#define OSL_TAG_PROCESS ((OSL_MEMTAG)(uintptr_t)1)
#define OSL_TAG_LZ ((OSL_MEMTAG)(uintptr_t)2)

/* The invalid lock or event: all ones. Records also hold it for "no lock". */
#define OSL_SEM_NONE ((OSL_SEM)(uintptr_t)UINTPTR_MAX)

/* A wait without limit. */
#define OSL_WAIT_FOREVER UINT64_MAX

typedef enum OSL_ALLOCATOR OAK_INT32_ENUM {
    BLOCK_ALLOCATOR = 0,
    LIST_ALLOCATOR = 1,
    STACK_ALLOCATOR = 2,
    LEGACY_ALLOCATOR = 3
} OSL_ALLOCATOR;

typedef enum OSL_POOL_KIND OAK_INT32_ENUM {
    OSL_POOL_FIXED_SIZE = 0,
    OSL_POOL_VAR_SIZE = 1
} OSL_POOL_KIND;

typedef enum OSL_FILE_MODE OAK_INT32_ENUM {
    OSL_FILE_MODE_UNKNOWN = 0,
    OSL_FILE_MODE_UTF8 = 1,
    OSL_FILE_MODE_UTF16 = 2
} OSL_FILE_MODE;

typedef enum ALIGN_TYPE OAK_INT32_ENUM {
    ALN_CHAR = 0,
    ALN_INT16 = 1,
    ALN_WCHAR = 2,
    ALN_INT32 = 3,
    ALN_FLOAT = 4,
    ALN_INT64 = 5,
    ALN_DOUBLE = 6
} ALIGN_TYPE;

typedef enum OAK_FP_TYPE OAK_INT32_ENUM {
    OAK_FP_POSITIVE_NAN = 1,
    OAK_FP_NEGATIVE_NAN = 2,
    OAK_FP_POSITIVE_INF = 3,
    OAK_FP_NEGATIVE_INF = 4
} OAK_FP_TYPE;

/* Flags of the allocating calls. */
enum {
    OSL_MEM_PLAIN = 1,  /* contents undefined */
    OSL_MEM_ZERO = 3,   /* zeroed (osl_extendMem: the added bytes) */
    OSL_MEM_COPY = 5,   /* `size` bytes copied from `source` */
    OSL_MEM_STRING = 13 /* the text at `source` with its terminator; size 0 */
};

/* Byte and character streams: contexts and callbacks. The context is the
 * callback's own affair. A status other than sOKAY ends the run. */
typedef void *OAK_OUTPUT_CTX;
typedef void *OAK_INPUT_CTX;
typedef OAK_RETCODE (*OAK_OUTPUT_FCN)(OAK_OUTPUT_CTX ctx, uint32_t ch);
typedef OAK_RETCODE (*OAK_BULK_OUTPUT_FCN)(OAK_OUTPUT_CTX ctx, const void *data, size_t size);
typedef OAK_RETCODE (*OAK_INPUT_FCN)(OAK_INPUT_CTX ctx, uint32_t *ch);
typedef OAK_RETCODE (*OAK_BULK_INPUT_FCN)(OAK_INPUT_CTX ctx, size_t requested, void *data,
                                          size_t *got);

/* A bounded UTF-8 output buffer. After osl_utf8BuffTerm the char counts
 * include the terminator; needed_chars above size means that text was cut. */
typedef struct OAK_OUTPUT_BUFF {
    char *buff;
    size_t size;
    size_t used_elems;
    size_t used_chars;
    size_t needed_elems;
    size_t needed_chars;
    OAK_BOOL_T done;
} OAK_OUTPUT_BUFF;

typedef OAK_RETCODE (*OSL_THREAD_FCN)(void *arg);

typedef struct osl_thread_t {
    uint64_t id;    /* the thread's identity */
    OAK_RETCODE rc; /* what the thread function returned; valid after osl_threadJoin */
} osl_thread_t;

/* The layer's stacks of standard output, standard error and log targets; the
 * library only carries a pointer to them. */
typedef struct OSL_FILE_INFO {
    const char *name;
    OSL_FILE_STREAM file;
    uint32_t count;
} OSL_FILE_INFO;

typedef struct _osl_file_entry {
    OSL_FILE_INFO *info;
    struct _osl_file_entry *next;
} _osl_file_entry;

typedef _osl_file_entry *OSL_FILE_STACK;

typedef struct _osllog_ctx {
    uint32_t magic;
    OSL_FILE_STACK osl_log_stack;
    OSL_FILE_STACK osl_stdout_stack;
    OSL_FILE_STACK osl_stderr_stack;
} _osllog_ctx;

typedef struct OSL_MOD_CTX_S {
    const char *name;
    void *OSData;
} OSL_MOD_CTX_S;

typedef void (*OSL_POOL_FCN)(void *user, void *block);
typedef OAK_RETCODE (*OSL_GLOBAL_INIT_FCN)(void *data);
typedef void (*OSL_GLOBAL_TERM_FCN)(void *data);

/* ---- Start and stop ---------------------------------------------------- */

OAK_API void osl_init(void);
OAK_API void osl_term(void);

/* ---- Tags and memory --------------------------------------------------- */

/* A new tag, null when memory is exhausted. With a jump buffer, osl_getMem and
 * osl_extendMem under the tag jump to it with eNOMEMORY when they fail; the
 * _rc forms never jump. `kind` and the three further arguments are accepted
 * and change nothing. */
OAK_API OSL_MEMTAG osl_createTagEx(jmp_buf *noMemoryExit, OSL_ALLOCATOR kind, uint32_t reserved1,
                                   uint32_t reserved2, uint32_t reserved3, const char *file,
                                   int32_t line);
OAK_API OAK_RETCODE osl_createTagEx_rc(jmp_buf *noMemoryExit, OSL_ALLOCATOR kind,
                                       uint32_t reserved1, uint32_t reserved2, uint32_t reserved3,
                                       OSL_MEMTAG *pTag, const char *file, int32_t line);
/* Frees every block under the tag, and the tag. `all` is always 1. */
OAK_API void osl_freeTagMem(OSL_MEMTAG tag, int32_t all, const char *file, int32_t line);

OAK_API void *osl_getMem(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source,
                         const char *file, int32_t line);
OAK_API OAK_RETCODE osl_getMem_rc(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source,
                                  void **ppBlock, const char *file, int32_t line);
OAK_API void *osl_extendMem(void *old, size_t newSize, OSL_MEMTAG tag, uint32_t flags, size_t added,
                            const void *source, const char *file, int32_t line);
OAK_API OAK_RETCODE osl_extendMem_rc(void *old, size_t newSize, OSL_MEMTAG tag, uint32_t flags,
                                     size_t added, const void *source, void **ppBlock,
                                     const char *file, int32_t line);
OAK_API void osl_freeMem(void *block, OSL_MEMTAG tag, const char *file, int32_t line);

OAK_API size_t osl_alignBufferSize(size_t size);
OAK_API size_t osl_align(size_t offset, ALIGN_TYPE kind);

/* The calls as they are nearly always written. */
#define OSL_CREATE_TAG() osl_createTagEx(NULL, BLOCK_ALLOCATOR, 0, 0, 0, __FILE__, __LINE__)
#define OSL_FREE_TAG(tag) osl_freeTagMem((tag), 1, __FILE__, __LINE__)
#define OSL_GET(size, tag) osl_getMem((size), (tag), OSL_MEM_PLAIN, NULL, __FILE__, __LINE__)
#define OSL_GET_ZERO(size, tag) osl_getMem((size), (tag), OSL_MEM_ZERO, NULL, __FILE__, __LINE__)
#define OSL_GET_COPY(source, size, tag) \
    osl_getMem((size), (tag), OSL_MEM_COPY, (source), __FILE__, __LINE__)
#define OSL_GET_STRING(source, tag) \
    osl_getMem(0, (tag), OSL_MEM_STRING, (source), __FILE__, __LINE__)
#define OSL_FREE(block, tag) osl_freeMem((block), (tag), __FILE__, __LINE__)

/* ---- Pools ------------------------------------------------------------- */

/* A pool of blocks of one size under a tag; it dies with the tag. The
 * constructor runs when a block is first made, not on reuse. */
OAK_API OAK_RETCODE osl_poolCreateEx(OSL_MEMTAG tag, OSL_POOL_KIND kind, uint32_t reserved,
                                     OSL_POOL_FCN constructor, OSL_POOL_FCN destructor, void *user,
                                     OSL_POOL *pPool);
OAK_API void *osl_poolGetMem(OSL_POOL pool, size_t size, uint32_t flags, uint32_t reserved,
                             const char *file, int32_t line);
OAK_API void osl_poolPut(OSL_POOL pool, void *block);

/* ---- Process globals --------------------------------------------------- */

OAK_API OAK_RETCODE osl_globalGet(const char *name, size_t size, OSL_GLOBAL_INIT_FCN init,
                                  OSL_GLOBAL_TERM_FCN term, void **ppData);

/* ---- Locks and events -------------------------------------------------- */

enum { OSL_SYNC_MUTEX = 1, OSL_SYNC_EVENT = 2 };
OAK_API OSL_SEM osl_syncCreate_check(uint32_t kind, const char *file, int32_t line);
OAK_API void osl_syncDelete(OSL_SEM sem);
OAK_API void osl_syncEnterExcl(OSL_SEM mutex);
OAK_API void osl_syncExitExcl(OSL_SEM mutex);
OAK_API void osl_syncStart(OSL_SEM event);
OAK_API void osl_syncResume(OSL_SEM event);
OAK_API OAK_RETCODE osl_syncWait(OSL_SEM event, uint64_t timeoutMillis);
OAK_API void osl_sleep(uint64_t millis);

/* ---- Threads ----------------------------------------------------------- */

OAK_API OAK_RETCODE osl_threadBeginEx(OSL_THREAD_FCN fcn, size_t stackSize, void *arg,
                                      osl_thread_t *thread, uint32_t reserved, const char *name);
OAK_API void osl_threadJoin(osl_thread_t *thread);
OAK_API uint64_t osl_threadId(void);
OAK_API uint64_t osl_get_pid(void);

/* ---- Files ------------------------------------------------------------- */

enum { OSL_OPEN_READ = 0, OSL_OPEN_CREATE = 66, OSL_OPEN_TRUNCATE = 578 };
enum { OSL_SEEK_START = 0, OSL_SEEK_CURRENT = 1 };
#define OSL_READ_ERROR UINT32_MAX

OAK_API OSL_FH osl_fileOpen(const char *name, int32_t openFlags, uint16_t extraFlags);
OAK_API void osl_fileClose(OSL_FH fh);
OAK_API uint32_t osl_fileRead(OSL_FH fh, void *buffer, uint32_t count);
OAK_API uint32_t osl_fileWrite(OSL_FH fh, const void *buffer, uint32_t count);
OAK_API OAK_RETCODE osl_fileSeek(OSL_FH fh, OSL_FILE_OFFSET offset, int32_t origin,
                                 OSL_FILE_OFFSET *pResult);
OAK_API uint32_t osl_fileSeekRead(OSL_FH fh, OSL_FILE_OFFSET offset, void *buffer, uint32_t count);
OAK_API uint32_t osl_fileSeekWrite(OSL_FH fh, OSL_FILE_OFFSET offset, const void *buffer,
                                   uint32_t count);
OAK_API OAK_RETCODE osl_fileSetSize(OSL_FH fh, OSL_FILE_OFFSET size);
OAK_API OSL_FILE_OFFSET osl_fileLength(OSL_FH fh);
OAK_API OAK_RETCODE osl_fileLock(OSL_FH fh);
OAK_API OAK_RETCODE osl_fileUnlock(OSL_FH fh);
OAK_API OAK_RETCODE osl_fileRemove(const char *name);
OAK_API OAK_RETCODE osl_fileRemoveEx(const char *name, uint16_t extraFlags);
OAK_API OAK_RETCODE osl_fileValidate(const char *name);
OAK_API OAK_BOOL_T osl_fileValidateEx(const char *name, uint32_t reserved, OAK_BOOL_T *pIsDir);
OAK_API char *osl_fileCreateTmpName(uint32_t *counter, const char *prefix, uint32_t reserved1,
                                    uint32_t reserved2, OSL_MEMTAG tag);
OAK_API char *osl_fullpathEx(const char *path, OSL_MEMTAG tag);
OAK_API OAK_RETCODE osl_dirCreate(const char *name);
OAK_API OAK_RETCODE osl_dirRemove(const char *name);

/* ---- Streams and printing ---------------------------------------------- */

#define OSL_PRINTF_LIKE(text, first) __attribute__((format(printf, text, first)))

OAK_API OSL_FILE_STREAM osl_fopen(const char *name, const char *mode, uint32_t reserved);
OAK_API OSL_FILE_STREAM osl_fopenStd(const char *which);
OAK_API void osl_fclose(OSL_FILE_STREAM stream);
OAK_API int32_t osl_fprintf(OSL_FILE_STREAM stream, const char *format, ...) OSL_PRINTF_LIKE(2, 3);
OAK_API int32_t osl_log(const char *format, ...) OSL_PRINTF_LIKE(1, 2);
OAK_API int32_t osl_log_err(const char *format, ...) OSL_PRINTF_LIKE(1, 2);
OAK_API int32_t osl_printfV(const char *format, va_list args) OSL_PRINTF_LIKE(1, 0);
OAK_API int32_t osl_printfErrV(const char *format, va_list args) OSL_PRINTF_LIKE(1, 0);
OAK_API void osl_flush(void);
OAK_API void osl_flushErr(void);

/* ---- Text -------------------------------------------------------------- */

OAK_API char *osl_makeStrV(const char *file, int32_t line, OSL_MEMTAG tag, const char *format,
                           va_list args) OSL_PRINTF_LIKE(4, 0);
OAK_API char *osl_makeStrVA(const char *file, int32_t line, OSL_MEMTAG tag, const char *format, ...)
    OSL_PRINTF_LIKE(4, 5);
OAK_API OAK_RETCODE osl_makeStrVA_rc(const char *file, int32_t line, char **pText, OSL_MEMTAG tag,
                                     const char *format, ...) OSL_PRINTF_LIKE(5, 6);
OAK_API char *osl_appendStrVA(const char *file, int32_t line, OSL_MEMTAG tag, char *old,
                              const char *format, ...) OSL_PRINTF_LIKE(5, 6);
OAK_API OAK_RETCODE osl_appendStrVA_rc(const char *file, int32_t line, char **pText, OSL_MEMTAG tag,
                                       char *old, const char *format, ...) OSL_PRINTF_LIKE(6, 7);
OAK_API int32_t osl_snprintf(char *buffer, size_t size, const char *format, ...)
    OSL_PRINTF_LIKE(3, 4);
OAK_API OAK_RETCODE osl_fnprintf(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *format, ...)
    OSL_PRINTF_LIKE(3, 4);
OAK_API OAK_RETCODE osl_outputString(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *text);
OAK_API char *osl_strncpyZ(char *destination, const char *source, size_t size);
OAK_API OAK_RETCODE osl_tokenize(char *text, const char *delimiters, char ***pTokens,
                                 uint32_t *pCount, uint32_t reserved1, uint32_t reserved2);

/* ---- Numbers ----------------------------------------------------------- */

OAK_API OAK_RETCODE osl_atoi64(const char *text, int64_t *pValue);
OAK_API OAK_RETCODE osl_atoui64(const char *text, uint64_t *pValue);
OAK_API OAK_RETCODE osl_strtod(const char *text, double *pValue);
OAK_API OAK_RETCODE osl_strtof(const char *text, float *pValue);
OAK_API double osl_atof(const char *text);
OAK_API uint8_t osl_hexdigit(char ch);
OAK_API OAK_BOOL_T osl_isnan(double value);
OAK_API OAK_BOOL_T osl_isnanf(float value);
OAK_API float osl_ceilf(float value);
OAK_API float osl_floorf(float value);
OAK_API OAK_BOOL_T osl_validateDouble(OAK_FP_TYPE *pKind, double value);
OAK_API OAK_BOOL_T osl_validateFloat(OAK_FP_TYPE *pKind, float value);
OAK_API uint32_t osl_bitFirstSet(uint32_t value);

/* ---- UTF-8 and locales ------------------------------------------------- */

OAK_API char *osl_uchar_to_utf8(uint32_t codePoint, char *buffer, size_t size);
OAK_API uint32_t osl_utf8_codes(uint32_t codePoint, uint8_t *buffer);
OAK_API void osl_utf8BuffInit(OAK_OUTPUT_BUFF *out, char *buffer, size_t size);
OAK_API OAK_RETCODE osl_emitCharAsUtf8(OAK_OUTPUT_CTX out, uint32_t codePoint);
OAK_API void osl_utf8BuffTerm(OAK_OUTPUT_BUFF *out);
OAK_API OSL_LOCALE osl_createlocale(int32_t categoryMask, const char *name);
OAK_API void osl_freelocale(OSL_LOCALE locale);
OAK_API int32_t osl_locale_validate_utf8(const char *localeName);

/* ---- Varying integers -------------------------------------------------- */

OAK_API OAK_RETCODE osl_vintEncodeUIntmax(uintmax_t value, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
OAK_API OAK_RETCODE osl_vintDecodeUIntmax(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, uintmax_t *pValue);
OAK_API OAK_RETCODE osl_vintDecodeUInt32(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, uint32_t *pValue);
OAK_API OAK_RETCODE osl_vintDecodeSize_t(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, size_t *pValue);
OAK_API uintmax_t osl_vintConvertToUnsigned(intmax_t value);
OAK_API intmax_t osl_vintConvertToSigned(uintmax_t value);

/* ---- Stored byte order ------------------------------------------------- */

OAK_API void osl_swaporderInt16(int16_t *value);
OAK_API void osl_swaporderUInt16(uint16_t *value);
OAK_API void osl_swaporderInt32(int32_t *value);
OAK_API void osl_swaporderUInt32(uint32_t *value);
OAK_API void osl_swaporderInt64(int64_t *value);
OAK_API void osl_swaporderUInt64(uint64_t *value);
OAK_API void osl_swaporderFloat(float *value);
OAK_API void osl_swaporderDouble(double *value);

/* ---- Time and random bits ---------------------------------------------- */

OAK_API void osl_timeUTC(struct tm *utc, uint16_t *pTenThousandths);
OAK_API uint64_t osl_timeNanoSecs(void);
OAK_API uint32_t osl_seed(void);
OAK_API OSL_RAND osl_randCreate(uint32_t seed);
OAK_API uint64_t osl_randGetUInt64(OSL_RAND generator);
OAK_API void osl_randDestroy(OSL_RAND generator);

OAK_C_END

#endif
