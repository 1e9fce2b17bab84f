/* A pull reader for JSON: the caller asks for the next value of an array or the
 * next name-value pair of an object, and no tree is built.
 *
 * Law: b_jsonNextValue for the top value. After jvOBJECT, b_jsonNextPair until
 * jvEND; after jvARRAY, b_jsonNextValue until jvEND. What is opened inside is
 * walked to its end before the outer walk goes on. The reader keeps a stack of
 * the open containers, one entry a level, and no limit on nesting but memory;
 * nothing recurses. Names and strings are copies under the reader's own tag and
 * end with it. A reader belongs to one thread.
 *
 * The dialect is wider than the standard. Accepted besides plain JSON:
 *   - in an array a value may follow without a comma, and one comma may stand
 *     before "]";
 *   - in an object commas are never required, and any run of them may stand
 *     before a name;
 *   - names and strings without quotes are words (letters, digits, '_', '$',
 *     starting with a letter or '_'), folded to upper case; the words true,
 *     false and null are matched in any case, quoted or not they are names in
 *     the place of a name;
 *   - strings in apostrophes, adjacent doubled quotes for one, U&'...' literals,
 *     and the escapes of lex.h: an unknown one keeps its backslash ("\/" is two
 *     characters) and \u must be below 0100 and stands for one byte;
 *   - a sign, plus or minus, with white space behind it, before an integer and
 *     never before a real number; leading zeros; ".5" and "5." and "1e";
 *   - SQL comments.
 * Integers wrap in 64 bits. Text behind the top value is not looked at.
 *
 * eSYNTAX is the one word for bad input, and after a failure the reader is only
 * to be closed. */
#ifndef JSON_H
#define JSON_H

#include "input.h"

OAK_C_BEGIN

typedef enum OAK_JSON_VALTYPE OAK_INT32_ENUM {
    jvEND = -1,    /* the end of the container being walked */
    jvNOVAL = 0,   /* no value */
    jvSTRING = 1,  /* v.str */
    jvNUMBER = 2,  /* an integer, v.num */
    jvDOUBLE = 3,  /* a real number, v.dbl */
    jvBOOLEAN = 4, /* v.flag */
    jvOBJECT = 5,  /* an object was opened */
    jvARRAY = 6,   /* an array was opened */
    jvNULL = 7     /* the word null */
} OAK_JSON_VALTYPE;

typedef struct OAK_JSON_VAL {
    OAK_JSON_VALTYPE type;
    union {
        int64_t num;
        double dbl;
        const char *str; /* under the reader's tag */
        OAK_BOOL_T flag;
    } v;
} OAK_JSON_VAL;

typedef struct OAK_JSON_PAIR {
    const char *name; /* under the reader's tag */
    OAK_JSON_VAL value;
} OAK_JSON_PAIR;

typedef struct _OAK_JSON_DATA *OAK_JSON_OBJ;
typedef const struct _OAK_JSON_DATA *OAK_JSON_OBJ_C;

/* Opens a reader on `input`, which stays the caller's and is read no further
 * than the last value needs.
 * eINVNULLARG: an argument is null.
 * eNOMEMORY: the reader could not be made; nothing is left behind. */
OAK_API OAK_RETCODE b_jsonOpen(OAK_JSON_OBJ *pObj, OAK_INPUT_OBJ input);

/* Reads the next value of the array being walked, or the top value. Either
 * output may be null; without `val` no string is kept. jvEND at the end of the
 * array. In case of failure nothing is stored.
 * eINVNULLARG: `obj` is null.
 * eSYNTAX: something that is no value, or a bracket that closes no array.
 * eNOMEMORY: a string or the stack could not be allocated. */
OAK_API OAK_RETCODE b_jsonNextValue(OAK_JSON_OBJ obj, OAK_JSON_VALTYPE *type, OAK_JSON_VAL *val);

/* Reads the next name and its value of the object being walked. Either output
 * may be null; without `pair` nothing is kept. At the end of the object `type`
 * and the value's type are jvEND and `name` is null. In case of failure `name`
 * may hold the name that was read: `pair` always may be, and after a failure
 * with a name must be, handed to b_jsonFreePair or left to b_jsonClose.
 * eINVNULLARG: `obj` is null.
 * eSYNTAX: no object is being walked, or what follows is no pair.
 * eNOMEMORY: as above. */
OAK_API OAK_RETCODE b_jsonNextPair(OAK_JSON_OBJ obj, OAK_JSON_VALTYPE *type, OAK_JSON_PAIR *pair);

/* Frees the pair's name and, of a jvSTRING, its text, and clears both. A pair
 * that was freed, or that b_jsonNextPair has cleared, may be given again. */
OAK_API void b_jsonFreePair(OAK_JSON_OBJ_C obj, OAK_JSON_PAIR *pair);

/* Frees the reader and every name and string that it gave. Null is accepted. */
OAK_API void b_jsonClose(OAK_JSON_OBJ_C obj);

OAK_C_END

#endif
