/* The table of type codes: name, precision, display width and byte length of
 * every type that has them.
 *
 * Law: the table is constant and its codes are unique; any thread can read it.
 * Nothing derives a size from the bits of a type code: sizes come from here.
 * The operations of the storable types stand in oakvaluetypes.h.
 *
 *     b_typeGetLength(OAK_INT32)        // 4
 *     b_typeGetStr(OAK_INT32)           // "OAK_INT32"
 *     b_typeDisplaySize(OAK_INT16, 3)   // 28: room for "ARRAY[-32768,...]" */
#ifndef TYPES_H
#define TYPES_H

#include "oaktypes.h"

OAK_C_BEGIN

typedef struct B_TYPE_INFO {
    OAK_TYPE type;
    const char *str;      /* the name of the code */
    int16_t prec;         /* digits; 0 where there are none */
    uint16_t displaySize; /* characters that a scalar takes as text */
    size_t len;           /* bytes of a value or an element; 0 where it varies */
} B_TYPE_INFO;

enum { B_TYPE_INFO_ROWS = 37 };

/* One row for each code that has them; the look-ups below search it. */
OAK_API extern const B_TYPE_INFO typeInfo[B_TYPE_INFO_ROWS];

/* The byte length of the type, 0 for a code without a row. */
OAK_API size_t b_typeGetLength(OAK_TYPE type);
/* The name of the type, an empty text for a code without a row. */
OAK_API const char *b_typeGetStr(OAK_TYPE type);
/* Characters that a value of the type takes as text: a scalar's width for
 * `elts` 0, otherwise room for "ARRAY[", the elements with a separator each and
 * "]". A decimal takes its greatest precision and 2, whatever `elts` is. 0 for
 * a code without a row. */
OAK_API uint32_t b_typeDisplaySize(OAK_TYPE type, uint32_t elts);
/* The digits of the type: for OAK_BCD the greatest precision of a decimal, 0
 * for a code without a row. */
OAK_API int16_t b_typePrecision(OAK_TYPE type);

OAK_C_END

#endif
