/* OAK_RETCODE: the status that every operation of the system returns.
 *
 * Law: zero is success; positive values are statuses (the call did its work,
 * or did not find what it looked for); negative values are errors. A positive
 * status never stops work. The codes stand in oakretcodelist.h; their names,
 * SQLSTATEs and texts are looked up with the functions of errorapi.h. */
#ifndef OAKRETCODETYPES_H
#define OAKRETCODETYPES_H

#include <stddef.h>
#include <stdint.h>

#include "oakretcodelist.h"

/* Every enumeration of the interface is a signed 32-bit number in both
 * languages; C++ says so, and in C the compilers agree. OAK_NODISCARD lets the
 * build find a status that nobody looked at. */
#ifdef __cplusplus
#define OAK_INT32_ENUM : int32_t
#define OAK_NODISCARD [[nodiscard]]
#define OAK_C_BEGIN   extern "C" {
#define OAK_C_END     }
#else
#define OAK_INT32_ENUM
#define OAK_NODISCARD
#define OAK_C_BEGIN
#define OAK_C_END
#endif

/* Marks a function that the shared libraries show to the world. */
#define OAK_API __attribute__((visibility("default")))

/* Drops a status on purpose; `why` is for the reader. */
#define OAK_IGNORE_STATUS(status, why) ((void)(status))

#define OAK_RETCODE_ENUMERATOR(name, code, sqlstate, descr) name = (code),
typedef enum OAK_NODISCARD OAK_RETCODE OAK_INT32_ENUM{
    OAK_RETCODE_LIST(OAK_RETCODE_ENUMERATOR)} OAK_RETCODE;
#undef OAK_RETCODE_ENUMERATOR

#endif
