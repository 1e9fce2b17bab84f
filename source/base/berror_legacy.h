/* The numbers that the previous generation of the engine used for its statuses:
 * their names and texts, and the map between them and OAK_RETCODE.
 *
 * Law: pure functions over constant data, safe for any number of threads. The
 * map is not one-to-one. 188 codes have a legacy number of their own and all
 * others share -901; several codes can share a number, and the way back then
 * yields one of them. A status keeps its sign both ways for the common ones:
 * S_NOTFOUND (2) is sNOTFOUND, S_EOS (1) is sEOS. */
#ifndef OAK_BERROR_LEGACY_H
#define OAK_BERROR_LEGACY_H

#include "oakretcodetypes.h"

OAK_C_BEGIN

enum { OAK_ERRORS_OLD_ROWS = 272 };

/* One legacy status. */
typedef struct OAK_ERROR {
    int32_t sStatus;         /* the legacy number */
    const char *name;        /* the legacy name: "S_NOSPACE" */
    const char *errorstring; /* one line of English; null in four rows */
} OAK_ERROR;

/* All legacy statuses by ascending number, -9021 to 27, with gaps. */
extern OAK_API const OAK_ERROR oak_errors_old[OAK_ERRORS_OLD_ROWS];

/* Returns the legacy number of a code; -901 (S_SYSERR) for every code without
 * one of its own, unknown codes included. */
OAK_API int32_t b_errorToLegacy(OAK_RETCODE rc);

/* Returns the code of a legacy number; eSYS_BADERRCODE for a number that the
 * map does not know, 98 of the table's rows among them. */
OAK_API OAK_RETCODE b_errorFromLegacy(int32_t legacy_rc);

/* Returns the name of a legacy number, or null for a number without a row.
 * At most nine probes. */
OAK_API const char *b_errorname(int32_t errnum);

/* Returns the text of a legacy number, or null for a number without a row and
 * for the four rows (-235 to -232) whose text stands in their name. */
OAK_API const char *b_errorstr(int32_t errnum);

OAK_C_END

#endif
