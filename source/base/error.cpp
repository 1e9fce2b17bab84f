// Error handles: recording a report, showing it to the handlers, logging it,
// and leaving by a jump to a catch scope; and the console functions. Rests on
// the look-ups of errorapi and on the platform's memory and streams. Called by
// the row code in this library, and by every layer above it.
//
// The order of a report is settled, and callers depend on it: what happened is
// recorded before anybody is asked; the system handler comes before the code is
// stored and the user's after it is logged, so that a user's handler changes
// what the caller sees and never what the handle remembers; the clean-up runs
// only where no scope takes over; the scope is gone before its owner is
// reached, so that an error in the owner's repair goes one scope further out.
//
// oakErrorEx and the catch functions leave by longjmp. No frame of this file
// holds anything that would have to be destroyed on the way.
#include "error.h"

#include "error_internal.h"

namespace {

constexpr char kThisFile[] = "error.cpp"; // for reports that arise in here

// ---- Texts of the handle ---------------------------------------------------

OAK_RETCODE copy_text(const char *source, OSL_MEMTAG tag, char **pCopy) {
    if (tag == nullptr) {
        return eINVNULLARG;
    }
    void *copy = nullptr;
    const OAK_RETCODE rc = osl_getMem_rc(0, tag, OSL_MEM_STRING, source, &copy, __FILE__, __LINE__);
    if (rc == sOKAY) {
        *pCopy = static_cast<char *>(copy);
    }
    return rc;
}

// The old text goes after the copy is made: a caller may hand back the very text
// that the handle gave it. A failure leaves the old text.
OAK_RETCODE replace_text(OAK_ERR hErr, char **text, const char *source) {
    char *const old = *text;
    const OAK_RETCODE rc = copy_text(source, hErr->tag, text);
    if (rc == sOKAY) {
        OSL_FREE(old, hErr->tag);
    }
    return rc;
}

void empty_text(char *text) {
    if (text != nullptr) {
        *text = '\0';
    }
}

// ---- The catch stack -------------------------------------------------------

// Takes the innermost scope off the stack and returns its mark, or null.
jmp_buf *popCatch(OAK_ERR hErr) {
    catch_stack *const top = hErr->errcatch;
    if (top == nullptr) {
        return nullptr;
    }
    jmp_buf *const errjump = top->errjump;
    hErr->errcatch = top->next;
    OSL_FREE(top, hErr->tag);
    return errjump;
}

OAK_RETCODE push_scope(OAK_ERR hErr, jmp_buf *errjump) {
    void *block = nullptr;
    const OAK_RETCODE rc = osl_getMem_rc(sizeof(catch_stack), hErr->tag, OSL_MEM_ZERO, nullptr,
                                         &block, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    catch_stack *const scope = static_cast<catch_stack *>(block);
    scope->next = hErr->errcatch;
    scope->errjump = errjump;
    hErr->errcatch = scope;
    return sOKAY;
}

OAK_RETCODE report_empty_stack(OAK_ERR hErr) {
    return oakErrorEx(hErr, eSYS_ERRCATCH, nullptr, nullptr, 0, 0, kThisFile, __LINE__);
}

// ---- The log ---------------------------------------------------------------

void log_change(OAK_ERR hErr, const char *who, OAK_RETCODE from, OAK_RETCODE to) {
    if (hErr->logfile != nullptr) {
        osl_fprintf(hErr->logfile, "%s changed code from %d to %d\n", who, from, to);
    }
}

// The blanks between the pieces are those of the log's readers: a text that is
// there but empty still leaves its dash.
void log_error(OAK_ERR hErr) {
    OSL_FILE_STREAM const log = hErr->logfile;
    if (log == nullptr) {
        return;
    }
    const OAK_ERRDEFN *const row = ErrorLookup(hErr->status);
    if (row != nullptr) {
        osl_fprintf(log, "Error %d (%s): %s ", hErr->status, row->name, row->descr);
    } else {
        osl_fprintf(log, "Bad (undefined) error code %d ", hErr->status);
    }
    if (hErr->info != nullptr) {
        osl_fprintf(log, " - %s ", hErr->info);
    }
    if (hErr->fcnid != nullptr) {
        osl_fprintf(log, "in function %s ", hErr->fcnid);
    }
    if (hErr->file != nullptr && hErr->file[0] != '\0') {
        osl_fprintf(log, " occurred at line %d in file %s", hErr->line, hErr->file);
    }
    osl_fprintf(log, "\n");
}

// ---- The steps of a report -------------------------------------------------

// Makes the copies of a report's texts, one after another up to the first that
// fails, in place of the old ones, which the caller frees.
OAK_RETCODE copy_texts(OAK_ERR hErr, const char *errinfo, const char *errfile, const char *filenm,
                       int32_t lineno) {
    OAK_RETCODE rc = sOKAY;
    if (errfile != nullptr) {
        rc = copy_text(errfile, hErr->tag, &hErr->errfile);
    }
    if (rc == sOKAY && errinfo != nullptr) {
        rc = copy_text(errinfo, hErr->tag, &hErr->info);
    }
    if (rc == sOKAY && filenm != nullptr) {
        rc = copy_text(filenm, hErr->tag, &hErr->file);
        hErr->line = rc == sOKAY ? lineno : hErr->line;
    }
    return rc;
}

void free_replaced(OAK_ERR hErr, char *old, const char *now) {
    if (old != now) {
        OSL_FREE(old, hErr->tag);
    }
}

// Takes over the texts of a report. One that cannot be copied ends the copying
// and keeps what was there; a report without info empties the old one even so.
// The old texts go last: a report may pass any of them on, also in another place.
OAK_RETCODE record_texts(OAK_ERR hErr, const char *errinfo, const char *errfile, const char *filenm,
                         int32_t lineno) {
    char *const old_errfile = hErr->errfile;
    char *const old_info = hErr->info;
    char *const old_file = hErr->file;
    const OAK_RETCODE rc = copy_texts(hErr, errinfo, errfile, filenm, lineno);
    if (errinfo == nullptr) {
        empty_text(hErr->info);
    }
    free_replaced(hErr, old_errfile, hErr->errfile);
    free_replaced(hErr, old_info, hErr->info);
    free_replaced(hErr, old_file, hErr->file);
    return rc;
}

// Returns the code that goes on: the handler's, unless that is sOKAY.
OAK_RETCODE ask_system_handler(OAK_ERR hErr, OAK_RETCODE retcode) {
    if (hErr->syshandler == nullptr) {
        return retcode;
    }
    const OAK_RETCODE changed = hErr->syshandler(hErr, retcode, hErr->sysdata);
    if (changed == sOKAY) {
        return retcode;
    }
    log_change(hErr, "system handler", retcode, changed);
    return changed;
}

// Returns the code that travels on. The user's handler can make an error
// harmless, but cannot make it a success.
OAK_RETCODE ask_user_handler(OAK_ERR hErr, OAK_RETCODE retcode) {
    if (hErr->userhandler == nullptr) {
        return retcode;
    }
    const OAK_RETCODE changed = hErr->userhandler(hErr, retcode, hErr->userdata);
    if (changed == retcode) {
        return retcode;
    }
    log_change(hErr, "user handler", retcode, changed);
    return changed != sOKAY ? changed : sIGNORE;
}

const char *group_name(OAK_RETCODE status) {
    for (const OAK_ERRGROUP &group : oak_errgroups) {
        if (group.firstcode <= status && status <= group.lastcode) {
            return group.name;
        }
    }
    return nullptr;
}

} // namespace

// ---- Life ------------------------------------------------------------------

OAK_RETCODE oakErrorOpen(OSL_MEMTAG tag, OAK_ERR *pHErr) {
    if (pHErr == nullptr) {
        return eINVNULLARG;
    }
    *pHErr = nullptr;
    OSL_MEMTAG const home = tag != nullptr ? tag : OSL_CREATE_TAG();
    if (home == nullptr) {
        return eNOMEMORY;
    }
    void *block = nullptr;
    const OAK_RETCODE rc =
        osl_getMem_rc(sizeof(_ERR_INFO), home, OSL_MEM_ZERO, nullptr, &block, __FILE__, __LINE__);
    if (rc != sOKAY) {
        if (tag == nullptr) {
            OSL_FREE_TAG(home);
        }
        return rc;
    }
    OAK_ERR const hErr = static_cast<OAK_ERR>(block);
    hErr->tag = home;
    hErr->usertag = tag != nullptr ? OAK_TRUE : OAK_FALSE;
    *pHErr = hErr;
    return sOKAY;
}

// `errfile` and `sqlstate` stay in the caller's tag: they may have been handed
// out, and go when that tag goes.
OAK_RETCODE oakErrorClose(OAK_ERR hErr) {
    if (hErr == nullptr) {
        return eINVNULLARG;
    }
    if (hErr->erractive == OAK_TRUE) {
        return eSYS_ERRACTIVE;
    }
    if (hErr->logfile != nullptr) {
        osl_fclose(hErr->logfile);
    }
    OSL_MEMTAG const tag = hErr->tag;
    if (hErr->usertag == OAK_FALSE) {
        OSL_FREE_TAG(tag);
        return sOKAY;
    }
    OSL_FREE(hErr->info, tag);
    OSL_FREE(hErr->fcnid, tag);
    OSL_FREE(hErr->file, tag);
    while (popCatch(hErr) != nullptr) {
    }
    OSL_FREE(hErr, tag);
    return sOKAY;
}

// ---- Handlers --------------------------------------------------------------

void oakErrorSetCleanup(OAK_ERR hErr, OAK_ERRCLEANUP cleanupfcn, void *cleanupdata) {
    if (hErr != nullptr) {
        hErr->cleanup = cleanupfcn;
        hErr->cleanupdata = cleanupdata;
    }
}

void oakErrorRunCleanup(OAK_ERR hErr) {
    if (hErr != nullptr && hErr->cleanup != nullptr) {
        hErr->cleanup(hErr->cleanupdata);
    }
}

void oakErrorSetUserHandler(OAK_ERR hErr, OAK_ERRHANDLER errorfcn, void *errordata) {
    if (hErr != nullptr) {
        hErr->userhandler = errorfcn;
        hErr->userdata = errordata;
    }
}

void oakErrorSetUserHandlerData(OAK_ERR hErr, void *errordata) {
    if (hErr != nullptr) {
        hErr->userdata = errordata;
    }
}

void oakErrorSetSysHandler(OAK_ERR hErr, OAK_ERRHANDLER errorfcn, void *errordata) {
    if (hErr != nullptr) {
        hErr->syshandler = errorfcn;
        hErr->sysdata = errordata;
    }
}

void oakErrorSetLogFile(OAK_ERR hErr, OSL_FILE_STREAM stream) {
    if (hErr != nullptr) {
        hErr->logfile = stream;
    }
}

// ---- Catch scopes ----------------------------------------------------------

// A name that finds no memory is reported with the new scope in place, so the
// report jumps to `errjump`.
OAK_RETCODE oakErrorCatchPush(OAK_ERR hErr, jmp_buf *errjump, const char *pFcnID) {
    if (hErr == nullptr || errjump == nullptr) {
        return eINVNULLARG;
    }
    OAK_RETCODE rc = push_scope(hErr, errjump);
    if (rc == sOKAY && pFcnID != nullptr) {
        rc = replace_text(hErr, &hErr->fcnid, pFcnID);
    }
    if (rc == sOKAY) {
        return sOKAY;
    }
    return oakErrorEx(hErr, rc, nullptr, nullptr, 0, 0, kThisFile, __LINE__);
}

OAK_RETCODE oakErrorCatchPop(OAK_ERR hErr) {
    if (hErr == nullptr) {
        return eINVNULLARG;
    }
    return popCatch(hErr) != nullptr ? sOKAY : report_empty_stack(hErr);
}

OAK_RETCODE oakErrorCatchPopAndThrow(OAK_ERR hErr, OAK_RETCODE rc) {
    if (hErr == nullptr) {
        return eINVNULLARG;
    }
    jmp_buf *const errjump = popCatch(hErr);
    if (errjump == nullptr) {
        return report_empty_stack(hErr);
    }
    longjmp(*errjump, rc);
}

// ---- Reporting -------------------------------------------------------------

OAK_RETCODE oakErrorEx(OAK_ERR hErr, OAK_RETCODE retcode, const char *errinfo, const char *errfile,
                       int32_t errline, int32_t errcolumn, const char *filenm, int32_t lineno) {
    if (hErr == nullptr || hErr->erractive == OAK_TRUE) {
        return retcode;
    }
    ++hErr->callcount;
    hErr->errline = errline;
    hErr->errcolumn = errcolumn;
    const OAK_RETCODE rc = record_texts(hErr, errinfo, errfile, filenm, lineno);
    if (rc != sOKAY) {
        log_change(hErr, "failed to allocate memory and ", retcode, rc);
        retcode = rc;
    }

    hErr->erractive = OAK_TRUE;
    retcode = ask_system_handler(hErr, retcode);
    hErr->status = retcode;
    if (retcode >= sOKAY) {
        hErr->erractive = OAK_FALSE;
        return retcode;
    }
    log_error(hErr);
    retcode = ask_user_handler(hErr, retcode);
    if (hErr->errcatch == nullptr) {
        oakErrorRunCleanup(hErr);
    }
    jmp_buf *const errjump = popCatch(hErr);
    hErr->erractive = OAK_FALSE;
    if (errjump != nullptr) {
        longjmp(*errjump, retcode);
    }
    return retcode;
}

void oakErrorSetStatus(OAK_ERR hErr, OAK_RETCODE retcode) {
    if (hErr != nullptr) {
        hErr->status = retcode;
        hErr->errline = 0;
        hErr->errcolumn = 0;
        empty_text(hErr->info);
    }
}

void oakErrorSetSqlstate(OAK_ERR hErr, const char *sqlstate) {
    if (hErr == nullptr) {
        return;
    }
    char *const old = hErr->sqlstate;
    hErr->sqlstate = nullptr;
    if (sqlstate != nullptr) {
        OAK_IGNORE_STATUS(copy_text(sqlstate, hErr->tag, &hErr->sqlstate),
                          "an exhausted tag leaves null");
    }
    OSL_FREE(old, hErr->tag);
}

// ---- Reading back ----------------------------------------------------------

OAK_RETCODE oakErrorStat(OAK_ERR hErr) {
    return hErr != nullptr ? hErr->status : eINVNULLARG;
}

const char *oakErrorGetSqlstate(OAK_ERR hErr) {
    return hErr != nullptr ? hErr->sqlstate : nullptr;
}

OAK_RETCODE oakGetErrorStat(OAK_ERR hErr, ERR_STAT *pES, OSL_MEMTAG tag) {
    if (hErr == nullptr || pES == nullptr) {
        return eINVNULLARG;
    }
    pES->code = hErr->status;
    pES->rowno = hErr->errline;
    pES->colno = hErr->errcolumn;
    OAK_RETCODE rc = sOKAY;
    if (hErr->info != nullptr) {
        rc = copy_text(hErr->info, tag, &pES->info);
    }
    if (rc == sOKAY && hErr->fcnid != nullptr) {
        rc = copy_text(hErr->fcnid, tag, &pES->fcnId);
    }
    return rc;
}

void oakErrorFileAndPosition(OAK_ERR hErr, const char **ppErrFile, int32_t *pLine,
                             int32_t *pColumn) {
    if (hErr != nullptr) {
        store_if_wanted<const char *>(ppErrFile, hErr->errfile);
        store_if_wanted(pLine, hErr->errline);
        store_if_wanted(pColumn, hErr->errcolumn);
    }
}

// The group is sought with the first code as the lower bound, which it is in
// the status groups and in those of a single row. So an error of any other group
// has no group here, and callers that print one for errors do without.
OAK_RETCODE oakErrorInfoEx(OAK_ERR hErr, const char **ppErrMsg, const char **ppErrInfo,
                           const char **ppErrName, const char **ppFcnID, const char **ppSubsys,
                           const char **ppFilenm, int32_t *pLineno) {
    if (hErr == nullptr) {
        return eINVNULLARG;
    }
    const OAK_ERRDEFN *const row = ErrorLookup(hErr->status);
    if (row == nullptr) {
        return eSYS_BADERRCODE;
    }
    const bool has_info = hErr->info != nullptr && hErr->info[0] != '\0';
    store_if_wanted(ppErrMsg, row->descr);
    store_if_wanted<const char *>(ppErrInfo, has_info ? hErr->info : nullptr);
    store_if_wanted(ppErrName, row->name);
    store_if_wanted<const char *>(ppFcnID, hErr->fcnid);
    store_if_wanted(ppSubsys, group_name(hErr->status));
    store_if_wanted<const char *>(ppFilenm, hErr->file);
    store_if_wanted(pLineno, hErr->line);
    return hErr->status;
}

// ---- Console messages ------------------------------------------------------

#define OAK_DISPLAY(name, print, afterwards)                                                       \
    void name(uint16_t verboseLevelRequired, uint16_t verboseLevel, const char *format, ...) {     \
        if (verboseLevel >= verboseLevelRequired) {                                                \
            va_list args;                                                                          \
            va_start(args, format);                                                                \
            print(format, args);                                                                   \
            va_end(args);                                                                          \
            afterwards;                                                                            \
        }                                                                                          \
    }

OAK_DISPLAY(DisplayMessage, osl_printfV, static_cast<void>(0))
OAK_DISPLAY(DisplayMessageNow, osl_printfV, osl_flush())
OAK_DISPLAY(DisplayError, osl_printfErrV, static_cast<void>(0))
OAK_DISPLAY(DisplayErrorNow, osl_printfErrV, osl_flushErr())
#undef OAK_DISPLAY
