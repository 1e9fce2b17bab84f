/* Error handles: the last status of a database, server or row handle, the text
 * that goes with it, where it happened, and what is done when it happens; and
 * the console functions of the tools.
 *
 * Law: oakErrorEx is the one way to report. It records the error, shows it to
 * the handlers, writes the log line, and then either returns the code or leaves
 * by a jump to the innermost catch scope. While handlers run, the handle is
 * active: a report on it returns its code and does nothing else, and closing it
 * is refused. A null handle is no fault to oakErrorEx, which returns the code
 * that it was given.
 *
 * A handle belongs to one thread at a time. All its memory lies in its tag: the
 * caller's, or one of its own. Texts that it hands out belong to it and hold
 * until the next report on it, or until it is closed.
 *
 * A catch scope:
 *
 *     jmp_buf here;                        // lives as long as the scope
 *     OAK_RETCODE rc = (OAK_RETCODE)setjmp(here);
 *     if (rc == sOKAY) {
 *         rc = oakErrorCatchPush(hErr, &here, "load_table");
 *         ...                              // a report in here jumps to setjmp
 *         rc = oakErrorCatchPop(hErr);
 *     } else {
 *         ...                              // the scope is gone already
 *     }
 *
 * The jump unwinds nothing: what the abandoned frames hold must lie in a tag or
 * be released where the jump lands. No frame between may hold an object with a
 * destructor, and a local that is changed after setjmp and read after the jump
 * must be volatile.
 *
 * Contents: types; life; handlers; catch scopes; reporting; reading back;
 * console messages. */
#ifndef OAK_ERROR_H
#define OAK_ERROR_H

#include <setjmp.h>

#include "osltypes.h"

OAK_C_BEGIN

/* ---- Types ------------------------------------------------------------- */

typedef struct _ERR_INFO *OAK_ERR;

/* Sees a report and may change its code; see oakErrorEx for what its result
 * means. `data` is the pointer that was set with it. */
typedef OAK_RETCODE (*OAK_ERRHANDLER)(OAK_ERR hErr, OAK_RETCODE retcode, void *data);

/* Brings the owner of a handle into order after an error that nobody caught. */
typedef void (*OAK_ERRCLEANUP)(void *data);

/* A status as it is handed to a caller, who may chain several. */
typedef struct ERR_STAT_S {
    OAK_RETCODE code;        /* the code */
    int64_t rowno;           /* line or row in the input, 0 for none */
    int32_t colno;           /* column in the input, 0 for none */
    const char *srcfile;     /* not filled by oakGetErrorStat */
    int32_t srcline;         /* not filled by oakGetErrorStat */
    int32_t srccol;          /* not filled by oakGetErrorStat */
    char *info;              /* in the caller's tag */
    char *fcnId;             /* in the caller's tag */
    struct ERR_STAT_S *next; /* the caller's; not filled by oakGetErrorStat */
} ERR_STAT_S;

typedef ERR_STAT_S ERR_STAT;

/* ---- Life -------------------------------------------------------------- */

/* Creates a handle with status sOKAY and nothing set.
 *   tag     where the handle and all its texts are allocated; null lets it make
 *           a tag of its own, which goes with it
 *   pHErr   receives the handle, null on failure
 * sOKAY        the handle is open
 * eNOMEMORY    memory is exhausted; nothing is left behind
 * eINVNULLARG  `pHErr` is null */
OAK_API OAK_RETCODE oakErrorOpen(OSL_MEMTAG tag, OAK_ERR *pHErr);

/* Destroys a handle and closes its log. Under the caller's tag the copies of
 * the input's name and of the SQLSTATE stay in that tag until it goes, so that
 * what oakErrorFileAndPosition and oakErrorGetSqlstate handed out stays good.
 * sOKAY           the handle is gone
 * eSYS_ERRACTIVE  the handle's handlers are running; nothing is closed
 * eINVNULLARG     `hErr` is null */
OAK_API OAK_RETCODE oakErrorClose(OAK_ERR hErr);

/* ---- Handlers ---------------------------------------------------------- */
/* These store what they are given, null to have none; a null handle is passed
 * over. They may be called from a handler, and hold from the next use on. */

/* The clean-up function, called after an error that no scope catches. */
OAK_API void oakErrorSetCleanup(OAK_ERR hErr, OAK_ERRCLEANUP cleanupfcn, void *cleanupdata);

/* Calls the clean-up function with its pointer, if there is one. */
OAK_API void oakErrorRunCleanup(OAK_ERR hErr);

/* The user's handler, which sees errors after they are recorded and logged. */
OAK_API void oakErrorSetUserHandler(OAK_ERR hErr, OAK_ERRHANDLER errorfcn, void *errordata);

/* The pointer of the user's handler alone. */
OAK_API void oakErrorSetUserHandlerData(OAK_ERR hErr, void *errordata);

/* The handler of the layer that owns the handle, which sees every report,
 * statuses included, before it is recorded. */
OAK_API void oakErrorSetSysHandler(OAK_ERR hErr, OAK_ERRHANDLER errorfcn, void *errordata);

/* The stream that reports are logged to. The handle closes it when it is
 * closed itself; a stream that is replaced goes back to the caller unclosed. */
OAK_API void oakErrorSetLogFile(OAK_ERR hErr, OSL_FILE_STREAM stream);

/* ---- Catch scopes ------------------------------------------------------ */

/* Pushes a scope: the next error on the handle jumps to `errjump`.
 *   errjump   the caller's mark, which must live as long as the scope
 *   pFcnID    the name of the catching function, copied into the handle; null
 *             keeps the name that it has
 * sOKAY        the scope is on the stack
 * eINVNULLARG  `hErr` or `errjump` is null
 * eNOMEMORY is reported through oakErrorEx. When it is the name that finds no
 * memory, the new scope is on the stack already and the report jumps to it. */
OAK_API OAK_RETCODE oakErrorCatchPush(OAK_ERR hErr, jmp_buf *errjump, const char *pFcnID);

/* Pops the innermost scope, whose work ended without an error.
 * sOKAY        the scope is gone
 * eINVNULLARG  `hErr` is null
 * An empty stack is reported as eSYS_ERRCATCH through oakErrorEx, whose result
 * is returned. */
OAK_API OAK_RETCODE oakErrorCatchPop(OAK_ERR hErr);

/* Pops the innermost scope and jumps to it with `rc`; neither handlers nor log
 * see it and the handle's status stays. A jump cannot deliver zero: sOKAY
 * arrives as 1. Returns only with an empty stack, as oakErrorCatchPop does. */
OAK_API OAK_RETCODE oakErrorCatchPopAndThrow(OAK_ERR hErr, OAK_RETCODE rc);

/* ---- Reporting --------------------------------------------------------- */

/* Reports a code.
 *   errinfo     free text, copied; null empties the one that is there
 *   errfile     the name of the input in which the error lies, copied; null
 *               keeps the one that is there
 *   errline     line or row in that input, 0 for none
 *   errcolumn   column in that input, 0 for none
 *   filenm      the reporting source file, copied; null keeps what is there,
 *               the line too
 *   lineno      the line in that source file
 * The system handler sees every report and may replace the code; its sOKAY
 * leaves the code alone. A code that is not negative is then recorded and
 * returned, and nothing else happens. An error is recorded and logged; the
 * user's handler may replace the code that travels on, though not what is
 * recorded, and its sOKAY becomes sIGNORE. Then, with a scope on the stack, the
 * innermost one is popped and the function jumps there with the code; with none
 * the clean-up function runs and the code is returned.
 * A text that cannot be copied turns the report into one of eNOMEMORY. */
OAK_API OAK_RETCODE oakErrorEx(OAK_ERR hErr, OAK_RETCODE retcode, const char *errinfo,
                               const char *errfile, int32_t errline, int32_t errcolumn,
                               const char *filenm, int32_t lineno);

/* Records a code without reporting it: positions 0, no info, no handler. */
OAK_API void oakErrorSetStatus(OAK_ERR hErr, OAK_RETCODE retcode);

/* Sets the SQLSTATE that overrides the one of the code's row; a copy is kept,
 * null clears it, and an exhausted tag leaves null. */
OAK_API void oakErrorSetSqlstate(OAK_ERR hErr, const char *sqlstate);

/* ---- Reading back ------------------------------------------------------ */

/* Returns the code recorded last; eINVNULLARG for a null handle. */
OAK_API OAK_RETCODE oakErrorStat(OAK_ERR hErr);

/* Returns the SQLSTATE of oakErrorSetSqlstate, null when none is set. */
OAK_API const char *oakErrorGetSqlstate(OAK_ERR hErr);

/* Fills `pES` with the code, the position in the input, and copies of the info
 * and of the catching function's name, each only if the handle has one.
 *   tag   where the two copies are allocated
 * sOKAY        filled
 * eINVNULLARG  `hErr` or `pES` is null
 * eNOMEMORY    `tag` is exhausted; code, position and perhaps info are set */
OAK_API OAK_RETCODE oakGetErrorStat(OAK_ERR hErr, ERR_STAT *pES, OSL_MEMTAG tag);

/* Hands out the position in the input: its name, line and column. Each of the
 * three may be null. */
OAK_API void oakErrorFileAndPosition(OAK_ERR hErr, const char **ppErrFile, int32_t *pLine,
                                     int32_t *pColumn);

/* Hands out the last report; each argument may be null.
 *   ppErrMsg    the description of the code
 *   ppErrInfo   the free text, null when there is none or it is empty
 *   ppErrName   the name of the code
 *   ppFcnID     the function that last pushed a named scope, or null
 *   ppSubsys    the group of the code for statuses, "ok" and "fail"; null for
 *               all other errors, whose groups run downwards
 *   ppFilenm    the source file of the last report that named one, or null
 *   pLineno     the line in that file
 * Returns the status recorded; eSYS_BADERRCODE when there is no such code, and
 * eINVNULLARG for a null handle: nothing is stored then. */
OAK_API OAK_RETCODE oakErrorInfoEx(OAK_ERR hErr, const char **ppErrMsg, const char **ppErrInfo,
                                   const char **ppErrName, const char **ppFcnID,
                                   const char **ppSubsys, const char **ppFilenm, int32_t *pLineno);

/* ---- Console messages -------------------------------------------------- */
/* Print when `verboseLevel` is at least `verboseLevelRequired`: messages to
 * standard output, errors to standard error; the Now forms flush. */

OAK_API void DisplayMessage(uint16_t verboseLevelRequired, uint16_t verboseLevel,
                            const char *format, ...) OSL_PRINTF_LIKE(3, 4);
OAK_API void DisplayMessageNow(uint16_t verboseLevelRequired, uint16_t verboseLevel,
                               const char *format, ...) OSL_PRINTF_LIKE(3, 4);
OAK_API void DisplayError(uint16_t verboseLevelRequired, uint16_t verboseLevel, const char *format,
                          ...) OSL_PRINTF_LIKE(3, 4);
OAK_API void DisplayErrorNow(uint16_t verboseLevelRequired, uint16_t verboseLevel,
                             const char *format, ...) OSL_PRINTF_LIKE(3, 4);

OAK_C_END

#endif
