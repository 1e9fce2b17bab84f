/* The catalog reader: from a catalog's JSON text to a finalized schema.
 *
 * Law: a catalog is one object whose first pair, "database", holds the members
 * of docs/formats.md. Names and words compare without regard to case; a member
 * that is unknown, stands twice or has a value of another kind is refused. What
 * earlier members set is there for later ones: ids come first in their objects,
 * capacities before the lists that they size, drawers and domains before tables.
 * What follows the database object is not looked at.
 *
 * Memory follows the text: capacities that are far out of proportion to the
 * length of the text are refused. Reading belongs to one thread. */
#ifndef SCHEMA_LOAD_H
#define SCHEMA_LOAD_H

#include "oaktypes.h"
#include "schema_handles.h"

OAK_C_BEGIN

/* Where the reader stood when it refused a catalog, and why. */
#define SCH_LOAD_PATH_SIZE 256
typedef struct SCH_LOAD_WHERE {
    uint32_t line;                 /* from 1; 0 when the text was not reached */
    uint32_t column;               /* characters read of that line */
    char path[SCH_LOAD_PATH_SIZE]; /* the member, as "database.tables[1].columns[0].width" */
    const char *reason;            /* a constant text; null when the status says it all */
} SCH_LOAD_WHERE;

/* Reads a catalog and hands out its schema, which the caller owns and gives back
 * with sch_destroy.
 *   fh      an open file, read from its start; null reads `buffer`
 *   buffer  the text, with its terminator
 *   unicode_enabled  false stores the wide types "wchar" and "wvarchar" in their
 *           UTF-8 forms
 * On failure nothing is handed out and all is released.
 * sOKAY            the schema is finalized
 * eBADCAT          the text is no catalog, or contradicts itself; a failed
 *                  allocation inside an object arrives as this too
 * eSYNTAX, eBADREAD  as the JSON reader and the file fail before the first pair
 * eNOTIMPLEMENTED  a default of a type that has none
 * eLOCALEMISMATCH  two locales
 * eNOMEMORY        no schema or reader could be made
 * eINVNULLARG      `psch` is null, or both sources are */
OAK_API OAK_RETCODE sch_read_database_schema(SCH_INFO *psch, OSL_FH fh, const char *buffer,
                                             OAK_BOOL_T unicode_enabled);

/* The same, and tells in `where` (optional) where a refused catalog stands. */
OAK_API OAK_RETCODE sch_read_database_schema_at(SCH_INFO *psch, OSL_FH fh, const char *buffer,
                                                OAK_BOOL_T unicode_enabled, SCH_LOAD_WHERE *where);

OAK_C_END

#endif
