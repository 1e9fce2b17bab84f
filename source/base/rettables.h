/* The constant tables of status codes and of their groups.
 *
 * Law: one row for every enumerator of OAK_RETCODE, none for anything else.
 * The tables are constant data: nothing builds them, locks them or frees them,
 * and any thread may read them at any time. To look a code up, use the
 * functions of errorapi.h; read the tables themselves to walk over all codes.
 *
 *     for (size_t i = 0; i < no_oak_errors; ++i) {
 *         puts(oak_errors[i].name);
 *     }
 */
#ifndef OAK_RETTABLES_H
#define OAK_RETTABLES_H

#include "oakretcodetypes.h"

OAK_C_BEGIN

/* How many rows each table has, for declarations that need a constant. */
enum { OAK_ERROR_ROWS = 615, OAK_ERRGROUP_ROWS = 18 };

/* One status code. */
typedef struct OAK_ERRDEFN {
    const char *const name;     /* as spelled in the enumeration: "eNOMEMORY" */
    const OAK_RETCODE code;     /* the code */
    const char *const sqlstate; /* five characters, or null for a code without one */
    const char *const descr;    /* one line of English, without a newline */
} OAK_ERRDEFN;

/* One group of codes. In a status group `firstcode` is the smallest code; in an
 * error group it is the one nearest to zero, so that it is the greater of the
 * two wherever the group has more than one row. */
typedef struct OAK_ERRGROUP {
    const char *const name;      /* "general", "sql", "q/a" ... */
    const OAK_RETCODE firstcode; /* where the group begins */
    const OAK_RETCODE lastcode;  /* where it ends; every number between is a code */
} OAK_ERRGROUP;

/* All codes: the 43 that are not negative first (29000, then 10000 to 10040,
 * then 0), then the negative ones in strictly descending order. No terminator. */
extern OAK_API const OAK_ERRDEFN oak_errors[OAK_ERROR_ROWS];
extern OAK_API const size_t no_oak_errors;

/* The groups in the order in which their codes stand in oak_errors. */
extern OAK_API const OAK_ERRGROUP oak_errgroups[OAK_ERRGROUP_ROWS];
extern OAK_API const size_t no_oak_errgroups;

OAK_C_END

#endif
