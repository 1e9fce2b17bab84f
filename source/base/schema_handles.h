/* The opaque handles of the schema's objects.
 *
 * Law: a schema object is reached through its handle alone; the records behind
 * the handles belong to the schema. The handle X_C is the read-only twin of X:
 * what takes an X_C changes nothing. A handle owns nothing and dies with its
 * schema.
 *
 * Rests on nothing. The type tables (oakvaluetypes.h), the schema's own headers
 * and the item formats include it, so that the lower layers can name a column's
 * type without seeing the schema. */
#ifndef SCHEMA_HANDLES_H
#define SCHEMA_HANDLES_H

/* Declares a handle and its read-only twin. */
#define SCHEMA_HANDLE(name)                                                                        \
    typedef struct _##name *name;                                                                  \
    typedef const struct _##name *name##_C

SCHEMA_HANDLE(SCH_INFO);          /* a database's schema */
SCHEMA_HANDLE(SCH_TYPE_INFO);     /* the type of a column or a domain */
SCHEMA_HANDLE(SCH_DOMAIN_INFO);   /* a named type that columns share */
SCHEMA_HANDLE(SCH_TBL_INFO);      /* a table */
SCHEMA_HANDLE(SCH_COL_INFO);      /* a column */
SCHEMA_HANDLE(SCH_KEY_INFO);      /* a key of a table */
SCHEMA_HANDLE(SCH_ELEM_INFO);     /* a column's part in a key */
SCHEMA_HANDLE(SCH_REF_INFO);      /* a reference from one table to another */
SCHEMA_HANDLE(SCH_SORT_INFO);     /* a column's part in a reference's order */
SCHEMA_HANDLE(SCH_DRAWER_INFO);   /* a unit of storage */
SCHEMA_HANDLE(SCH_TRIG_INFO);     /* a trigger */
SCHEMA_HANDLE(SCH_TRIG_COL_INFO); /* a column that a trigger names */

#undef SCHEMA_HANDLE

#endif
