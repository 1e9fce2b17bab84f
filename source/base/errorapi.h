/* Look-ups over the tables of status codes: by code, by name, by group.
 *
 * Law: pure functions over constant data. Nothing here allocates, locks, keeps
 * state or reports through an error handle; every text that is handed out is
 * constant and lives as long as the library. Safe for any number of threads.
 *
 * An unknown code has three different answers by design: oakErrorCodeDef says
 * eSYS_BADERRCODE, oakErrorDetails says eNOTFOUND, and the functions that
 * return a text have a text for it. An unknown group is the status sNOTFOUND.
 *
 * Cost: a code is found with at most 43 comparisons and ten probes; a name or
 * a group takes a walk over its table. */
#ifndef OAK_ERRORAPI_H
#define OAK_ERRORAPI_H

#include "oakretcodetypes.h"

OAK_C_BEGIN

/* ---- By code ----------------------------------------------------------- */

/* Hands out the description and the name of a code.
 *   retcode     the code
 *   ppErrMsg    receives the description; may be null
 *   ppErrName   receives the enumerator's name; may be null
 * sOKAY            both are stored
 * eSYS_BADERRCODE  there is no such code; nothing is stored */
OAK_API OAK_RETCODE oakErrorCodeDef(OAK_RETCODE retcode, const char **ppErrMsg,
                                    const char **ppErrName);

/* Returns the description of a code, or "<unknown error>" where there is no
 * such code. Never null. */
OAK_API const char *oakErrorString(OAK_RETCODE retcode);

/* Returns the five-character SQLSTATE of a code; null for a code that has none
 * (sOKAY is one of them), "RX000" where there is no such code. */
OAK_API const char *oakErrorSqlstate(OAK_RETCODE retcode);

/* Hands out the SQLSTATE and the description of a code.
 *   retcode    the code
 *   sqlState   receives the SQLSTATE, null for a code without one; may be null
 *   errDescr   receives the description; may be null
 * sOKAY      both are stored
 * eNOTFOUND  there is no such code; nothing is stored */
OAK_API OAK_RETCODE oakErrorDetails(OAK_RETCODE retcode, const char **sqlState,
                                    const char **errDescr);

/* ---- By name ----------------------------------------------------------- */

/* Finds a code by the name of its enumerator, in any mix of cases.
 *   name       "eNOMEMORY", "enomemory" ...
 *   pRetCode   receives the code; may be null
 * sOKAY            the code is stored
 * eSYS_BADERRCODE  no code has this name; nothing is stored
 * eINVNULLARG      `name` is null */
OAK_API OAK_RETCODE oakErrorCodeByName(const char *name, OAK_RETCODE *pRetCode);

/* Hands out where a group of codes begins and ends; see OAK_ERRGROUP for which
 * of the two is the greater.
 *   grname   the group's name in any mix of cases: "tfs", "SQL", "q/a" ...
 *   pFirst   receives the first code; may be null
 *   pLast    receives the last code; may be null
 * sOKAY        both are stored
 * sNOTFOUND    there is no such group (a status, not an error); nothing is stored
 * eINVNULLARG  `grname` is null */
OAK_API OAK_RETCODE oakErrorGroupRange(const char *grname, OAK_RETCODE *pFirst, OAK_RETCODE *pLast);

OAK_C_END

#endif
