/* B_STR: a text that grows by appending, with an optional jump out of a failed
 * allocation, for writers that append in a hundred places.
 *
 * Law: with a jump buffer set, an append or b_strString that finds no memory
 * does not return: it jumps there with eNOMEMORY as the value. Frames between
 * that point and the call are not unwound, so none may hold a lock, a file or
 * an object with a destructor; what was appended before stays valid. Room is
 * kept in multiples of 256 bytes. One thread at a time. */
#ifndef STR_H
#define STR_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct b_str *B_STR;
typedef const struct b_str *B_STR_C;

/* An empty string under `tag`. With a null tag it makes a tag of its own, to
 * which `jmpbuf` is attached, and b_strDestroy frees that tag whole. `jmpbuf`
 * may be null. Never jumps. eINVNULLARG without `pString`, eNOMEMORY. */
OAK_API OAK_RETCODE b_strCreate(B_STR *pString, jmp_buf *jmpbuf, OSL_MEMTAG tag);
/* Null is allowed. */
OAK_API void b_strDestroy(B_STR string);
/* Empties the string, its room kept, and sets another jump buffer, or none. */
OAK_API void b_strReset(B_STR string, jmp_buf *jmpbuf);
/* Appends `length` bytes of `text`, which may not lie in the string itself.
 * eINVNULLARG; eNOMEMORY without a jump buffer, the string then being as before. */
OAK_API OAK_RETCODE b_strAppend(B_STR string, const char *text, size_t length);
/* Bytes appended so far, without a terminator. */
OAK_API size_t b_strSize(B_STR_C string);
/* The text with a terminator, which b_strSize does not count; it holds until
 * the next append. Null when memory ends and no jump buffer is set. */
OAK_API const char *b_strString(B_STR string);
/* The byte at `index`, 0 from b_strSize on. */
OAK_API char b_strChar(B_STR_C string, size_t index);

OAK_C_END

#endif
