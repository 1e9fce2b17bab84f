// Internal to the platform layer and its tests: what a debug build knows about
// live blocks. A build with NDEBUG has none of it and pays nothing.
#ifndef OSL_DEBUG_H
#define OSL_DEBUG_H

#ifndef NDEBUG

#include "osltypes.h"

OAK_C_BEGIN

// Sends a line "file:line: size bytes" for each block that is live under the tag,
// the newest first, through the callback, and returns how many there are. `size`
// is what was asked for last. The callback releases no block of the tag. A status
// other than sOKAY ends the sending, not the counting.
OAK_API uint64_t osl_leakReport(OSL_MEMTAG tag, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);

OAK_C_END

#endif
#endif
