/* One-character input over a text in memory or an open file.
 *
 * Law: an input hands out bytes one after the other and 0 at the end, and goes
 * on giving 0. It borrows its text or its file: neither is copied, closed or
 * freed, and both must outlive it. An input belongs to one thread at a time.
 *
 * A zero byte inside the text reads like the end, but reading goes on behind
 * it; whoever cares compares positions.
 *
 *     OAK_INPUT_OBJ input;
 *     if (b_inputCreateFromMemory(&input, text, size, tag) == sOKAY) {
 *         B_CHAR ch;
 *         while (b_inputRead(input, &ch) == sOKAY && ch != 0) { ... }
 *         b_inputClose(input);
 *     }
 *
 * Choose memory for what is already there, a file for what may be large: a
 * file input holds 1024 bytes of it at a time. */
#ifndef INPUT_H
#define INPUT_H

#include "osltypes.h"

OAK_C_BEGIN

/* One byte of input, or 0 at the end. */
typedef uint32_t B_CHAR;

typedef struct OAK_INPUT *OAK_INPUT_OBJ;
typedef const struct OAK_INPUT *OAK_INPUT_OBJ_C;

/* A place in an input to which it can be set back; it belongs to the input that
 * made it. */
typedef union OAK_REWIND_POINT *OAK_REWIND_POINT_OBJ;

/* Opens an input over `size` bytes at `buffer`, which are borrowed and need no
 * terminator. `buffer` may be null when `size` is 0. The object lives under
 * `tag`.
 * eINVNULLARG: `pObj` is null, or `buffer` is null with a size above 0.
 * eNOMEMORY: the object could not be allocated. */
OAK_API OAK_RETCODE b_inputCreateFromMemory(OAK_INPUT_OBJ *pObj, const uint8_t *buffer, size_t size,
                                            OSL_MEMTAG tag);

/* Opens an input over an open file from the file's current offset to its
 * present end. The handle is borrowed and must stay open. The object lives under
 * `tag`.
 * eINVNULLARG: `pObj` or `file` is null.
 * eNOMEMORY: the object could not be allocated.
 * Any failure of asking for the file's offset is returned as it stands. */
OAK_API OAK_RETCODE b_inputCreateFromFile(OAK_INPUT_OBJ *pObj, OSL_FH file, OSL_MEMTAG tag);

/* Reads the next byte into `*ch`; 0 at the end, with sOKAY.
 * eINVNULLARG: an argument is null.
 * eBADREAD: the file gave less than its size promised; the place is unchanged
 * and the read can be tried again. */
OAK_API OAK_RETCODE b_inputRead(OAK_INPUT_OBJ obj, B_CHAR *ch);

/* Sets the input back to `rewindPoint`, or to its start when that is null.
 * eINVNULLARG: `obj` is null. */
OAK_API OAK_RETCODE b_inputRewind(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ rewindPoint);

/* Hands out the present place in `*pRewindPoint`. The point is one block under
 * the input's tag; it may be used any number of times, and goes with the tag.
 * eINVNULLARG: an argument is null.
 * eNOMEMORY: the point could not be allocated. */
OAK_API OAK_RETCODE b_inputCreateRewindPoint(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ *pRewindPoint);

/* Frees the object, not what it reads from. Null is accepted. */
OAK_API void b_inputClose(OAK_INPUT_OBJ obj);

OAK_C_END

#endif
