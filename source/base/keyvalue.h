/* Key-value strings, the text in which callers hand over configuration:
 * "docroot=/var/db;cache_size=64k;durability=consistent".
 *
 * Law: b_keyvalueCreate parses a string into an ordered map from keys to one or
 * more values, and nothing changes the map after that. Lookups and walks share
 * the map's cursor, so an object is for one thread at a time; during a walk the
 * callback may read from the object.
 *
 * Pairs are key=value with ';' between them, any number of times; a value is a
 * list of elements with ',' between them; the last pair of a key counts. A key
 * is a word or a quoted text. An element is a run of tokens:
 *   word          appended to the element
 *   quoted text   becomes the element
 *   number        becomes the element, an integer in plain digits, a real number
 *                 with six decimals ("1.5" is "1.500000")
 *   + -           behind a word appended; else the sign of a number that must
 *                 follow, which becomes the element, a plus being dropped
 *   .             appended
 *   ! # % & ( ) * / < = > ? @ [ \ ] ^ { } ~ | `     appended
 * So "a=1-2" has the value "-2", and "a=1 b=2" the value "2". Words are
 * letters, digits and _ $ . / : \ and keep their case. There are no comments.
 *
 * Statuses that several getters share:
 *   eINVNULLARG  the object, the key or a required output is null
 *   sNOTFOUND    the key is absent
 *   eVALUEISLIST the key has several values
 *   sKVNOVALUE   the value is empty */
#ifndef KEYVALUE_H
#define KEYVALUE_H

#include "osltypes.h"

OAK_C_BEGIN

typedef const struct b_keyvalue *B_KEYVALUE;

/* Compares two keys: strcmp or strcasecmp. */
typedef int (*B_KEYVALUE_CMP)(const char *left, const char *right);
/* A visitor of keys; any status but sOKAY ends the walk. */
typedef OAK_RETCODE (*B_KEYVALUE_ITERATE)(void *ctx, const char *key);
typedef OAK_RETCODE (*B_KEYVALUE_ITERATE_KEYS)(const void *ctx, B_KEYVALUE_CMP cmpfcn,
                                               const char *key);

/* Parses `str` into a new object with a memory tag of its own; null and "" give
 * an empty object. With `use_case` keys that differ in case are different. In
 * case of failure nothing is kept and `*pKV` is not set.
 * eINVNULLARG: `pKV` is null.
 * eINVKEYVALUE: a key that is neither word nor text, no '=' behind it, a token
 * that cannot stand in a value, an empty last element of a list.
 * eNOMEMORY: an allocation failed, or an element without any token ends at ','
 * ("a=,b"): settled, the same word for both. */
OAK_API OAK_RETCODE b_keyvalueCreate(const char *str, OAK_BOOL_T use_case, B_KEYVALUE *pKV);

/* Frees the object and all in it; null is accepted. Always sOKAY. */
OAK_API OAK_RETCODE b_keyvalueDestroy(B_KEYVALUE kv);

/* Copies the value into `value` of `value_len` bytes, terminator included;
 * without a buffer, or with `value_len` 0, nothing is copied.
 * sTRUNCATE: the text was cut to fit.
 * sKVNOVALUE: `value` is null, or the value is empty. */
OAK_API OAK_RETCODE b_keyvalueGetValue(B_KEYVALUE kv, const char *key, char *value,
                                       size_t value_len);

/* Copies the value under `tag` into `*value`, when `value` is given.
 * sKVNOVALUE: the value is empty; `*value` is null.
 * eNOMEMORY: the copy could not be allocated. */
OAK_API OAK_RETCODE b_keyvalueGetValueString(B_KEYVALUE kv, const char *key, OSL_MEMTAG tag,
                                             const char **value);

/* Reads a boolean word; the first nine characters count. With a null `value`
 * only the reading of the text is tried.
 * eINVOPTIONVALUE: the word is no boolean. */
OAK_API OAK_RETCODE b_keyvalueGetValueBoolean(B_KEYVALUE kv, const char *key, OAK_BOOL_T *value);

/* Yes, y, on, true, 1 are true; n, no, off, false, 0 are false, in any case.
 * `pval` may be null.
 * eINVNULLARG: `str` is null. eINVOPTIONVALUE: another word. */
OAK_API OAK_RETCODE b_keyvalueGetBooleanFromString(const char *str, OAK_BOOL_T *pval);

/* Read an integer. A letter k, m, g, t or p at the end, in either case, stands
 * for three, six, nine, twelve or fifteen zeros: "64k" is 64000. With a null
 * `value` the 64-bit forms stop when the key is found to have one value; the
 * narrower forms check the number too.
 * eRANGE: something behind the letter, no number, or out of the type's range.
 * eNOMEMORY: the scratch copy could not be allocated. */
OAK_API OAK_RETCODE b_keyvalueGetInt64Value(B_KEYVALUE kv, const char *key, int64_t *value);
OAK_API OAK_RETCODE b_keyvalueGetIntValue(B_KEYVALUE kv, const char *key, int32_t *value);
OAK_API OAK_RETCODE b_keyvalueGetInt16Value(B_KEYVALUE kv, const char *key, int16_t *value);
OAK_API OAK_RETCODE b_keyvalueGetUInt64Value(B_KEYVALUE kv, const char *key, uint64_t *value);
OAK_API OAK_RETCODE b_keyvalueGetUIntValue(B_KEYVALUE kv, const char *key, uint32_t *value);
OAK_API OAK_RETCODE b_keyvalueGetUInt16Value(B_KEYVALUE kv, const char *key, uint16_t *value);

/* Hands out the number of values and, when `pvalues` is given, an array of
 * copies in order of appearance, all under `tag`: the caller frees each text,
 * then the array. A single value is a list of one.
 * eNOMEMORY: nothing is handed out and nothing left behind. */
OAK_API OAK_RETCODE b_keyvalueGetValueList(B_KEYVALUE kv, const char *key, uint32_t *pnum_values,
                                           OSL_MEMTAG tag, char ***pvalues);

/* Call `fcn` with `ctx` for each key, in the map's order. The first status other
 * than sOKAY ends the walk and is returned.
 * eINVNULLARG: `kv` or `fcn` is null. */
OAK_API OAK_RETCODE b_keyvalueIterateKeys(B_KEYVALUE kv, const void *ctx,
                                          B_KEYVALUE_ITERATE_KEYS fcn);
OAK_API OAK_RETCODE b_keyvalueIterate(B_KEYVALUE kv, void *ctx, B_KEYVALUE_ITERATE fcn);

OAK_C_END

#endif
