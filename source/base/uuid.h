/* UUIDs of RFC 4122: random ones (version 4), and their text.
 *
 * Law: the 16 bytes of an OAK_UUID_T lie in memory in the order of the text, so
 * memcmp orders UUIDs as their texts do. The one state is the process's random
 * stream, made at the first creation; every function may run on any thread.
 * Nothing here allocates but that first creation.
 *
 * Text: xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx in lower case, 36 characters, or 38
 * with braces around it. */
#ifndef UUID_H
#define UUID_H

#include "oakuuidtypes.h"
#include "osltypes.h"

OAK_C_BEGIN

/* Bytes of the text, terminator included: without and with braces. */
enum { OAK_UUID_TEXT_SIZE = 37, OAK_UUID_BRACED_TEXT_SIZE = 39 };

/* Fills *uuid with a new random UUID. No two threads, processes, nor a process and
 * its fork, get the same. Where the random stream cannot be made (memory is
 * exhausted), *uuid stays as it was; null does nothing. */
OAK_API void oak_uuidCreate(OAK_UUID_T *uuid);

/* Bytes of the text with its terminator: 37, or 39 with braces. All ones for null. */
OAK_API size_t oak_uuidStrLen(const OAK_UUID_T *uuid, OAK_BOOL_T braces);

/* Writes the text into `str` of `len` bytes, terminated; a null `str` is only compared
 * in length. sTRUNCATE: `len` is below oak_uuidStrLen; what fits is there. eINVNULLARG:
 * null `uuid`. */
OAK_API OAK_RETCODE oak_uuidToString(const OAK_UUID_T *uuid, char *str, size_t len,
                                     OAK_BOOL_T braces);

/* Emits the text, without a terminator, through `fcn`, whose failure ends the run
 * and is returned. eINVNULLARG: null `uuid` or `fcn`. */
OAK_API OAK_RETCODE b_uuidFormat(const OAK_UUID_T *uuid, OAK_BOOL_T braces, OAK_OUTPUT_FCN fcn,
                                 OAK_OUTPUT_CTX ctx);

/* Reads a text in either case. Blanks may lead; behind the UUID they may stand only
 * where braces enclose it. eINVNULLARG: a null pointer. eOSL_INVUUID: any other text;
 * *uuid stays as it was. */
OAK_API OAK_RETCODE oak_uuidFromString(const char *str, OAK_UUID_T *uuid);

OAK_C_END

#endif
