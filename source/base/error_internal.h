// Internal to the error modules (errorapi, error) and their tests: the look-up
// of a row, optional outputs, and the record behind an error handle.
#ifndef OAK_ERROR_INTERNAL_H
#define OAK_ERROR_INTERNAL_H

#include "error.h"
#include "rettables.h"

// Returns the row of a code in oak_errors, or null. Every code of at least zero
// is found by a walk over the rows in front, every other one by bisection.
const OAK_ERRDEFN *ErrorLookup(OAK_RETCODE code);

// Stores through a pointer that the caller may leave null.
template <class T>
void store_if_wanted(T *destination, T value) {
    if (destination != nullptr) {
        *destination = value;
    }
}

// One scope of the catch stack, allocated in the handle's tag.
struct catch_stack {
    catch_stack *next; // the scope below
    jmp_buf *errjump;  // the caller's, in the caller's frame
};

// The record behind OAK_ERR. Texts are copies in `tag`.
struct _ERR_INFO {
    OAK_RETCODE status;         // the last code recorded
    uint64_t callcount;         // reports that oakErrorEx took up
    char *info;                 // free text; emptied, not freed, by a report without one
    char *fcnid;                // the function that last pushed a named scope
    char *file;                 // source file of the last report that named one
    int32_t line;               // the line in it
    char *errfile;              // the input in which the error lies
    int32_t errline;            // line or row in it, 0 for none
    int32_t errcolumn;          // column in it, 0 for none
    char *sqlstate;             // overrides the SQLSTATE of the code's row
    OAK_ERRHANDLER syshandler;  // sees every report
    void *sysdata;              //
    OAK_ERRHANDLER userhandler; // sees errors
    void *userdata;             //
    OAK_ERRCLEANUP cleanup;     // runs after an error without a scope
    void *cleanupdata;          //
    OAK_BOOL_T erractive;       // handlers are running
    catch_stack *errcatch;      // the innermost scope
    OSL_FILE_STREAM logfile;    // where reports are logged, or null
    OAK_BOOL_T usertag;         // `tag` is the caller's
    OSL_MEMTAG tag;             // where all of this is allocated
};

#endif
