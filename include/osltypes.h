/* The platform layer, libosl-14: memory, locks, threads, files, streams, text,
 * numbers, the clock and random bits. The base library reaches the operating
 * system through these functions and through nothing else.
 *
 * Law: every allocation is made under a tag and osl_freeTagMem frees all that
 * a tag holds. Tags 1 and 2 are process-wide and safe for any number of
 * threads; every other tag, pool, file, stream and generator belongs to one
 * thread at a time. `file` and `line` at the end of a call name the caller for
 * leak reports and change nothing else.
 * The exceptions are said where they stand: a random generator, and a pool
 * under a process-wide tag, are for any number of threads.
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
#define OSL_TAG_LZ      ((OSL_MEMTAG)(uintptr_t)2)

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

/* A bounded UTF-8 output buffer. Chars are bytes and elems are characters; `used`
 * is what is in the buffer, `needed` the whole text. After osl_utf8BuffTerm the
 * char counts include the terminator; needed_chars above size means that text
 * was cut. */
typedef struct OAK_OUTPUT_BUFF {
    char *buff; /* null: measure only */
    size_t size;
    size_t used_elems;
    size_t used_chars;
    size_t needed_elems;
    size_t needed_chars;
    OAK_BOOL_T done; /* a character did not fit: nothing more goes in */
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

/* ---- Start and stop ----------------------------------------------------
 *
 * The layer works without either. osl_init counts one more user and returns
 * sOKAY. osl_term counts one less; the last one ends the objects of
 * osl_globalGet, the newest first, and what then still stands is ended with the
 * process. No other thread may be using those objects at that moment. */
OAK_API OAK_RETCODE osl_init(void);
OAK_API void osl_term(void);

/* ---- Tags and memory ---------------------------------------------------
 *
 * A tag owns blocks: osl_freeTagMem frees all that it holds, so an object with
 * a tag of its own is destroyed by one call. Blocks are taken and released in a
 * few instructions without a lock; memory goes back to the system when the tag
 * dies. Every block is aligned to 16 bytes, one of size 0 included.
 *
 *     OSL_MEMTAG tag = OSL_CREATE_TAG();
 *     char *name = OSL_GET_STRING("oak", tag);
 *     OSL_FREE_TAG(tag);
 *
 * Each call without `_rc` returns what its twin hands out, or null. If the tag
 * has a jump buffer, osl_getMem and osl_extendMem jump to it with eNOMEMORY
 * instead when memory is exhausted; nothing else in the layer ever jumps.
 *
 * Statuses of the `_rc` forms, which set their output on sOKAY alone:
 * eNOMEMORY, memory is exhausted or the size is beyond what any machine has;
 * eINVNULLARG, a null tag, output, or source of a copy. */

/* A new tag, or null. `noMemoryExit` may be null; it must outlive the tag.
 * `kind` and the three reserved arguments change nothing. */
OAK_API OSL_MEMTAG osl_createTagEx(jmp_buf *noMemoryExit, OSL_ALLOCATOR kind, uint32_t reserved1,
                                   uint32_t reserved2, uint32_t reserved3, const char *file,
                                   int32_t line);
OAK_API OAK_RETCODE osl_createTagEx_rc(jmp_buf *noMemoryExit, OSL_ALLOCATOR kind,
                                       uint32_t reserved1, uint32_t reserved2, uint32_t reserved3,
                                       OSL_MEMTAG *pTag, const char *file, int32_t line);
/* Runs the destructors of the tag's pools, frees every block under the tag, and
 * the tag. A null tag and the process-wide tags are left as they are. `all` is
 * always 1. */
OAK_API void osl_freeTagMem(OSL_MEMTAG tag, int32_t all, const char *file, int32_t line);

/* A block of `size` bytes under the tag. `flags` is OSL_MEM_PLAIN (contents
 * undefined), OSL_MEM_ZERO, OSL_MEM_COPY (`size` bytes of `source`) or
 * OSL_MEM_STRING (the text at `source` with its terminator, whatever `size`);
 * anything else acts as OSL_MEM_PLAIN. `source` is read by the copies alone. */
OAK_API void *osl_getMem(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source,
                         const char *file, int32_t line);
OAK_API OAK_RETCODE osl_getMem_rc(size_t size, OSL_MEMTAG tag, uint32_t flags, const void *source,
                                  void **ppBlock, const char *file, int32_t line);
/* The block `old` with room for `newSize` bytes, its contents kept, perhaps
 * elsewhere; `old` is then no longer valid. A null `old` makes it osl_getMem. On
 * failure `old` stands as it was. With OSL_MEM_ZERO the last `added` bytes of the
 * new size are zeroed. With OSL_MEM_STRING the block is replaced by a copy of the
 * text at `source`, which may lie in the old block; the sizes are then not
 * looked at. Cost: extending by a constant again and again copies O(final size)
 * bytes in all, since true capacities grow geometrically behind the sizes. */
OAK_API void *osl_extendMem(void *old, size_t newSize, OSL_MEMTAG tag, uint32_t flags, size_t added,
                            const void *source, const char *file, int32_t line);
OAK_API OAK_RETCODE osl_extendMem_rc(void *old, size_t newSize, OSL_MEMTAG tag, uint32_t flags,
                                     size_t added, const void *source, void **ppBlock,
                                     const char *file, int32_t line);
/* Releases a block to the tag that it was taken from. Null is allowed. */
OAK_API void osl_freeMem(void *block, OSL_MEMTAG tag, const char *file, int32_t line);

/* `size` rounded up to a multiple of 8. */
OAK_API size_t osl_alignBufferSize(size_t size);
/* `offset` rounded up to the boundary of the kind: 1, 2, 4 or 8 bytes. */
OAK_API size_t osl_align(size_t offset, ALIGN_TYPE kind);

/* The calls as they are nearly always written. */
#define OSL_CREATE_TAG()        osl_createTagEx(NULL, BLOCK_ALLOCATOR, 0, 0, 0, __FILE__, __LINE__)
#define OSL_FREE_TAG(tag)       osl_freeTagMem((tag), 1, __FILE__, __LINE__)
#define OSL_GET(size, tag)      osl_getMem((size), (tag), OSL_MEM_PLAIN, NULL, __FILE__, __LINE__)
#define OSL_GET_ZERO(size, tag) osl_getMem((size), (tag), OSL_MEM_ZERO, NULL, __FILE__, __LINE__)
#define OSL_GET_COPY(source, size, tag)                                                            \
    osl_getMem((size), (tag), OSL_MEM_COPY, (source), __FILE__, __LINE__)
#define OSL_GET_STRING(source, tag)                                                                \
    osl_getMem(0, (tag), OSL_MEM_STRING, (source), __FILE__, __LINE__)
#define OSL_FREE(block, tag) osl_freeMem((block), (tag), __FILE__, __LINE__)

/* ---- Pools -------------------------------------------------------------
 *
 * A pool keeps the blocks that are put back, contents and all, and hands them
 * out again; it dies with its tag. Choose one for objects that are dear to
 * construct, or that come and go in great numbers at one size. A pool under a
 * process-wide tag may be shared by threads, as the tag may; it never dies. */

/* A new pool under the tag. `constructor` (user data, block) runs when a block is
 * first made, not on reuse; `destructor` runs over every block that was made when
 * the tag is freed. Either may be null. `kind` and `reserved` change nothing.
 * sOKAY; eNOMEMORY; eINVNULLARG, a null tag or output. */
OAK_API OAK_RETCODE osl_poolCreateEx(OSL_MEMTAG tag, OSL_POOL_KIND kind, uint32_t reserved,
                                     OSL_POOL_FCN constructor, OSL_POOL_FCN destructor, void *user,
                                     OSL_POOL *pPool);
/* A block of `size` bytes, 16-byte aligned; null when memory is exhausted. A
 * returned block of the same size is preferred and comes as it was put back.
 * OSL_MEM_ZERO zeroes a new block before its constructor runs, and a reused one
 * if the pool has no constructor. O(1) for a pool of one size. */
OAK_API void *osl_poolGetMem(OSL_POOL pool, size_t size, uint32_t flags, uint32_t reserved,
                             const char *file, int32_t line);
/* Returns a block to the pool that it came from. Null is allowed. */
OAK_API void osl_poolPut(OSL_POOL pool, void *block);

/* ---- Process globals --------------------------------------------------- */

/* Hands out the process's object of the name. The first call for a name makes a
 * zeroed block of `size` bytes and runs `init` over it, safely against concurrent
 * first calls; later calls hand out the same block. `term` runs over it when the
 * layer stops. Either function may be null; `init` may ask for other names. The
 * name is copied. sOKAY; eNOMEMORY; what `init` returned, if not sOKAY, and then
 * there is no object; eINVARG, the object is smaller than `size`; eINVNULLARG. */
OAK_API OAK_RETCODE osl_globalGet(const char *name, size_t size, OSL_GLOBAL_INIT_FCN init,
                                  OSL_GLOBAL_TERM_FCN term, void **ppData);

/* ---- Locks and events --------------------------------------------------
 *
 * A mutex is locked by one thread at a time and is not recursive. An event is a
 * flag to wait for: osl_syncStart lowers it, osl_syncResume raises it and wakes
 * all that wait, osl_syncWait returns at once while it is raised. So a signal
 * between arming and waiting is not lost. With OSL_SEM_NONE every call but the
 * wait does nothing, so a container without a lock needs no tests. */

enum { OSL_SYNC_MUTEX = 1, OSL_SYNC_EVENT = 2 };
/* A new mutex or event (lowered); OSL_SEM_NONE when resources are exhausted or
 * the kind is neither. osl_syncDelete destroys it; nobody may be using it. */
OAK_API OSL_SEM osl_syncCreate_check(uint32_t kind, const char *file, int32_t line);
OAK_API void osl_syncDelete(OSL_SEM sem);
/* Locks and unlocks a mutex. */
OAK_API void osl_syncEnterExcl(OSL_SEM mutex);
OAK_API void osl_syncExitExcl(OSL_SEM mutex);
/* Lowers and raises an event. */
OAK_API void osl_syncStart(OSL_SEM event);
OAK_API void osl_syncResume(OSL_SEM event);
/* Waits until the event is raised, at most `timeoutMillis` milliseconds (by a
 * clock that nobody sets), without limit for OSL_WAIT_FOREVER. sOKAY, it is
 * raised; sTIMEOUT; eOSL_DEADLOCK, there is no event that could end the wait. */
OAK_API OAK_RETCODE osl_syncWait(OSL_SEM event, uint64_t timeoutMillis);
/* Sleeps for so many milliseconds, whatever signals come. */
OAK_API void osl_sleep(uint64_t millis);

/* ---- Threads ----------------------------------------------------------- */

/* Starts a thread that runs `fcn` (`arg`). `stackSize` is in bytes and rounded up
 * to what the system takes, 0 for the default. `name` may be null; its first 15
 * bytes are shown by the system's tools. `thread` is filled: a thread that was
 * started has an id other than 0. sOKAY; eOSL_FAILURE, no thread could be
 * started; eINVNULLARG, no function or no record. */
OAK_API OAK_RETCODE osl_threadBeginEx(OSL_THREAD_FCN fcn, size_t stackSize, void *arg,
                                      osl_thread_t *thread, uint32_t reserved, const char *name);
/* Waits for the thread to end, stores what its function returned in `rc`, and
 * releases all that its start made; the id becomes 0. An id of 0 is no thread:
 * nothing happens. Every thread that was started is joined once. */
OAK_API void osl_threadJoin(osl_thread_t *thread);
/* The calling thread's id, as in osl_thread_t, and the process's. */
OAK_API uint64_t osl_threadId(void);
OAK_API uint64_t osl_get_pid(void);

/* ---- Files -------------------------------------------------------------
 *
 * Names are paths in the system's encoding. No handle is inherited by a program
 * that the process starts, and no call ends early because of a signal. Statuses:
 * sOKAY; eNOFILE, there is no such file or directory; eFILEIO, the system refused
 * otherwise; eINVNULLARG, a null name. Extra flags are accepted and change
 * nothing. */

enum { OSL_OPEN_READ = 0, OSL_OPEN_CREATE = 66, OSL_OPEN_TRUNCATE = 578 };
enum { OSL_SEEK_START = 0, OSL_SEEK_CURRENT = 1 };
#define OSL_READ_ERROR UINT32_MAX

/* Opens a file; null on failure. A file that is made has mode 0666 less the
 * umask. A name from osl_fileCreateTmpName, known by its ending, is made with
 * mode 0600 and refused where it is a symbolic link. */
OAK_API OSL_FH osl_fileOpen(const char *name, int32_t openFlags, uint16_t extraFlags);
/* Closes the file and gives up its lock. Null is allowed. */
OAK_API void osl_fileClose(OSL_FH fh);
/* Reads up to `count` bytes at the file's position and moves it. Returns how many
 * were read, fewer than `count` only at the end of the file or before an error; 0
 * at the end; OSL_READ_ERROR if an error came before the first byte. */
OAK_API uint32_t osl_fileRead(OSL_FH fh, void *buffer, uint32_t count);
/* Writes at the file's position and moves it. Returns how many bytes were
 * written; fewer than `count` is a failure. */
OAK_API uint32_t osl_fileWrite(OSL_FH fh, const void *buffer, uint32_t count);
/* Moves the position to `offset` bytes from the origin; from OSL_SEEK_CURRENT the
 * offset may be a negative number in two's complement. The new position goes to
 * `pResult`, which may be null. sOKAY; eFILEIO; eINVARG, another origin. */
OAK_API OAK_RETCODE osl_fileSeek(OSL_FH fh, OSL_FILE_OFFSET offset, int32_t origin,
                                 OSL_FILE_OFFSET *pResult);
/* Read and write at an offset, with the results of osl_fileRead and
 * osl_fileWrite; the file's position stays where it is. */
OAK_API uint32_t osl_fileSeekRead(OSL_FH fh, OSL_FILE_OFFSET offset, void *buffer, uint32_t count);
OAK_API uint32_t osl_fileSeekWrite(OSL_FH fh, OSL_FILE_OFFSET offset, const void *buffer,
                                   uint32_t count);
/* Cuts the file, or extends it with zeros, to `size` bytes. sOKAY; eFILEIO. */
OAK_API OAK_RETCODE osl_fileSetSize(OSL_FH fh, OSL_FILE_OFFSET size);
/* The file's length in bytes, 0 if it cannot be told. */
OAK_API OSL_FILE_OFFSET osl_fileLength(OSL_FH fh);
/* Takes the exclusive lock on the file, without waiting. It belongs to the open
 * file, so that another handle is refused in the same process too. sOKAY, the
 * lock is held; eFILEINUSE, by another handle; eFILEIO. */
OAK_API OAK_RETCODE osl_fileLock(OSL_FH fh);
/* Gives the lock up. sOKAY, also without one; eFILEIO. */
OAK_API OAK_RETCODE osl_fileUnlock(OSL_FH fh);
/* Removes a file by its name. */
OAK_API OAK_RETCODE osl_fileRemove(const char *name);
OAK_API OAK_RETCODE osl_fileRemoveEx(const char *name, uint16_t extraFlags);
/* sOKAY if the file exists, eNOFILE if not. */
OAK_API OAK_RETCODE osl_fileValidate(const char *name);
/* Whether the path exists; if so, `pIsDir`, which may be null, tells whether it is
 * a directory. */
OAK_API OAK_BOOL_T osl_fileValidateEx(const char *name, uint32_t reserved, OAK_BOOL_T *pIsDir);
/* A name for a temporary file, new under the tag: in the directory that TMPDIR
 * names, else in /tmp, beginning with the prefix, with 128 random bits. The
 * counter, which may be null, is part of the name and goes up by one. Nothing is
 * made on disk. Null when memory or random bits cannot be had. */
OAK_API char *osl_fileCreateTmpName(uint32_t *counter, const char *prefix, uint32_t reserved1,
                                    uint32_t reserved2, OSL_MEMTAG tag);
/* The absolute form of a path, new under the tag, without empty components, "."
 * and ".."; nothing needs to exist there. Null when memory is exhausted or the
 * path is null. */
OAK_API char *osl_fullpathEx(const char *path, OSL_MEMTAG tag);
/* Makes a directory, mode 0777 less the umask (eMKDIR if that fails), and removes
 * an empty one. */
OAK_API OAK_RETCODE osl_dirCreate(const char *name);
OAK_API OAK_RETCODE osl_dirRemove(const char *name);

/* ---- Streams and printing ----------------------------------------------
 *
 * Formats are those of the standard's printf. Numbers are printed with a point
 * and without grouping whatever the process's locale, here and below. The
 * functions that print return the count of bytes, negative on failure. */

#define OSL_PRINTF_LIKE(text, first) __attribute__((format(printf, text, first)))

/* Opens a text file, mode "r" or "w"; null on failure. */
OAK_API OSL_FILE_STREAM osl_fopen(const char *name, const char *mode, uint32_t reserved);
/* One of the process's own streams, "stdout", "stderr" or "stdin"; else null. */
OAK_API OSL_FILE_STREAM osl_fopenStd(const char *which);
/* Closes the stream; the process's own are flushed and stay open. Null is allowed. */
OAK_API void osl_fclose(OSL_FILE_STREAM stream);
OAK_API int32_t osl_fprintf(OSL_FILE_STREAM stream, const char *format, ...) OSL_PRINTF_LIKE(2, 3);
/* Print to standard output and to standard error. */
OAK_API int32_t osl_log(const char *format, ...) OSL_PRINTF_LIKE(1, 2);
OAK_API int32_t osl_log_err(const char *format, ...) OSL_PRINTF_LIKE(1, 2);
OAK_API int32_t osl_printfV(const char *format, va_list args) OSL_PRINTF_LIKE(1, 0);
OAK_API int32_t osl_printfErrV(const char *format, va_list args) OSL_PRINTF_LIKE(1, 0);
/* Flush standard output and standard error. */
OAK_API void osl_flush(void);
OAK_API void osl_flushErr(void);

/* ---- Text -------------------------------------------------------------- */

/* A new formatted text under the tag, null on failure. The `_rc` form sets its
 * output on sOKAY alone; eNOMEMORY; eINVARG, a format that cannot be printed;
 * eINVNULLARG. None of these jumps. */
OAK_API char *osl_makeStrV(const char *file, int32_t line, OSL_MEMTAG tag, const char *format,
                           va_list args) OSL_PRINTF_LIKE(4, 0);
OAK_API char *osl_makeStrVA(const char *file, int32_t line, OSL_MEMTAG tag, const char *format, ...)
    OSL_PRINTF_LIKE(4, 5);
OAK_API OAK_RETCODE osl_makeStrVA_rc(const char *file, int32_t line, char **pText, OSL_MEMTAG tag,
                                     const char *format, ...) OSL_PRINTF_LIKE(5, 6);
/* The text `old`, a block under the tag, extended by the formatted text, perhaps
 * elsewhere; a null `old` acts as empty. The arguments may point into `old`. On
 * failure (null, or a status as above) `old` stands and is still the caller's.
 * Cost: building a text of n bytes by appending copies O(n), and each step
 * measures the old text. */
OAK_API char *osl_appendStrVA(const char *file, int32_t line, OSL_MEMTAG tag, char *old,
                              const char *format, ...) OSL_PRINTF_LIKE(5, 6);
OAK_API OAK_RETCODE osl_appendStrVA_rc(const char *file, int32_t line, char **pText, OSL_MEMTAG tag,
                                       char *old, const char *format, ...) OSL_PRINTF_LIKE(6, 7);
/* The standard's snprintf: prints at most `size` bytes, terminator included, and
 * returns the length of the whole text; (null, 0, ...) measures. */
OAK_API int32_t osl_snprintf(char *buffer, size_t size, const char *format, ...)
    OSL_PRINTF_LIKE(3, 4);
/* Send a formatted text, or a text as it stands, through the callback, a byte a
 * call; osl_emitCharAsUtf8, which takes characters, is given the characters of the
 * UTF-8. sOKAY; what the callback returned, if not sOKAY, which ends the run;
 * eNOMEMORY, a long formatted text; eINVARG, a format that cannot be printed;
 * eINVNULLARG. */
OAK_API OAK_RETCODE osl_fnprintf(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *format, ...)
    OSL_PRINTF_LIKE(3, 4);
OAK_API OAK_RETCODE osl_outputString(OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx, const char *text);
/* Copies as much of the text as fits `size` bytes, terminator included, and
 * returns the destination, always terminated unless `size` is 0. A null source is
 * empty. */
OAK_API char *osl_strncpyZ(char *destination, const char *source, size_t size);
/* Splits the text in place at every byte that is in `delimiters`, strictly: two in
 * a row enclose an empty token, and an empty text is one empty token. The tokens
 * point into the text; their array is one block under tag 1, which the caller
 * releases. sOKAY; eNOMEMORY, the text is untouched; eINVNULLARG. */
OAK_API OAK_RETCODE osl_tokenize(char *text, const char *delimiters, char ***pTokens,
                                 uint32_t *pCount, uint32_t reserved1, uint32_t reserved2);

/* ---- Numbers ----------------------------------------------------------- */

/* The number that the text is: white space, one sign, digits, a point that may
 * have nothing behind it, and for the floating forms a fraction and an exponent.
 * sOKAY; eRANGE, no digits, anything behind the number, or more than the type
 * holds (for osl_atoui64 also a minus), and nothing is stored; eINVNULLARG. A
 * floating number too small for its type is sOKAY with what is nearest. */
OAK_API OAK_RETCODE osl_atoi64(const char *text, int64_t *pValue);
OAK_API OAK_RETCODE osl_atoui64(const char *text, uint64_t *pValue);
OAK_API OAK_RETCODE osl_strtod(const char *text, double *pValue);
OAK_API OAK_RETCODE osl_strtof(const char *text, float *pValue);
/* The number at the front of the text as the standard's atof reads it in the C
 * locale; 0 if there is none. */
OAK_API double osl_atof(const char *text);
/* 0 to 15; 255 for what is no hexadecimal digit. */
OAK_API uint8_t osl_hexdigit(char ch);
/* Whether the value is a NaN; the whole number at or above it, at or below it. */
OAK_API OAK_BOOL_T osl_isnan(double value);
OAK_API OAK_BOOL_T osl_isnanf(float value);
OAK_API float osl_ceilf(float value);
OAK_API float osl_floorf(float value);
/* True for a finite value; else the kind goes to `pKind`, which may be null. */
OAK_API OAK_BOOL_T osl_validateDouble(OAK_FP_TYPE *pKind, double value);
OAK_API OAK_BOOL_T osl_validateFloat(OAK_FP_TYPE *pKind, float value);
/* The position of the highest set bit, from 1: 4 and 7 give 3, 8 gives 4, 0 gives 0. */
OAK_API uint32_t osl_bitFirstSet(uint32_t value);

/* ---- UTF-8 and locales -------------------------------------------------
 *
 * Surrogates and numbers above 0x10FFFF are no code points. */

/* Writes the code point with a terminator, at most 5 bytes, and returns the
 * buffer; an empty text for what is no code point or does not fit. */
OAK_API char *osl_uchar_to_utf8(uint32_t codePoint, char *buffer, size_t size);
/* Writes the code point without a terminator into at least 6 bytes; returns how
 * many were written, 0 for what is no code point. */
OAK_API uint32_t osl_utf8_codes(uint32_t codePoint, uint8_t *buffer);
/* Begins an output buffer on `size` bytes; null and 0 to measure only. */
OAK_API void osl_utf8BuffInit(OAK_OUTPUT_BUFF *out, char *buffer, size_t size);
/* The output function of an OAK_OUTPUT_BUFF: appends a code point. Once a
 * character does not fit, nothing more goes in, room for the terminator being
 * kept, and the counting goes on with sOKAY. eINVUTF, no code point; nothing is
 * counted. */
OAK_API OAK_RETCODE osl_emitCharAsUtf8(OAK_OUTPUT_CTX out, uint32_t codePoint);
/* Terminates the text and counts the terminator; called once, at the end. */
OAK_API void osl_utf8BuffTerm(OAK_OUTPUT_BUFF *out);
/* A locale by name, with the categories of the mask (8 is collation), for
 * strcoll_l and its like; null if the machine has none of that name. */
OAK_API OSL_LOCALE osl_createlocale(int32_t categoryMask, const char *name);
/* Frees a locale. Null is allowed. */
OAK_API void osl_freelocale(OSL_LOCALE locale);
/* Non-zero if the locale's text is UTF-8: by the name's part behind the point, or
 * by asking the system where there is none. */
OAK_API int32_t osl_locale_validate_utf8(const char *localeName);

/* ---- Varying integers --------------------------------------------------
 *
 * LEB128: seven bits a byte, least significant group first, bit 0x80 set on every
 * byte but the last; at most ten bytes. */

/* Emits the shortest form byte by byte. sOKAY; what the callback returned, if not
 * sOKAY; eINVNULLARG. */
OAK_API OAK_RETCODE osl_vintEncodeUIntmax(uintmax_t value, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
/* Read one back, longer forms of at most ten bytes included, and never a byte
 * more. sOKAY; eINVVARINT, more than 64 bits or ten bytes; eRANGE, more than the
 * destination holds; what the callback returned, if not sOKAY; eINVNULLARG. The
 * destination is set on sOKAY alone. */
OAK_API OAK_RETCODE osl_vintDecodeUIntmax(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, uintmax_t *pValue);
OAK_API OAK_RETCODE osl_vintDecodeUInt32(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, uint32_t *pValue);
OAK_API OAK_RETCODE osl_vintDecodeSize_t(OAK_INPUT_FCN fcn, OAK_INPUT_CTX ctx, size_t *pValue);
/* Map signed numbers to unsigned ones so that small magnitudes stay small: 0, -1,
 * 1, -2 become 0, 1, 2, 3; and back. */
OAK_API uintmax_t osl_vintConvertToUnsigned(intmax_t value);
OAK_API intmax_t osl_vintConvertToSigned(uintmax_t value);

/* ---- Stored byte order -------------------------------------------------
 *
 * Each turns the value between the host's order and the stored one, which is
 * big-endian, in place; it is its own inverse. The pointer need not be aligned. */
OAK_API void osl_swaporderInt16(int16_t *value);
OAK_API void osl_swaporderUInt16(uint16_t *value);
OAK_API void osl_swaporderInt32(int32_t *value);
OAK_API void osl_swaporderUInt32(uint32_t *value);
OAK_API void osl_swaporderInt64(int64_t *value);
OAK_API void osl_swaporderUInt64(uint64_t *value);
OAK_API void osl_swaporderFloat(float *value);
OAK_API void osl_swaporderDouble(double *value);

/* ---- Time and random bits ---------------------------------------------- */

/* The time now in UTC, broken down, and its fraction in ten-thousandths of a
 * second, 0 to 9999. Either pointer may be null. */
OAK_API void osl_timeUTC(struct tm *utc, uint16_t *pTenThousandths);
/* Nanoseconds since 1970-01-01T00:00:00Z. */
OAK_API uint64_t osl_timeNanoSecs(void);
/* A seed from the clock. */
OAK_API uint32_t osl_seed(void);
/* A generator of random bits, null when memory is exhausted. Any number of threads
 * may draw from one. The seed is mixed with the system's random bits and so does
 * not determine what is drawn: no two processes, nor a process and its fork, draw
 * the same. Not for secrets. */
OAK_API OSL_RAND osl_randCreate(uint32_t seed);
OAK_API uint64_t osl_randGetUInt64(OSL_RAND generator);
/* Frees the generator. Null is allowed. */
OAK_API void osl_randDestroy(OSL_RAND generator);

OAK_C_END

#endif
