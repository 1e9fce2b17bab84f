// Fault injection for tests: make the n-th request for a resource fail, and
// count what is live. Internal to the platform layer and to the tests; it is
// there only in builds with OSL_FAULT_INJECTION, and a release build has no
// trace of it. Process-wide and safe for several threads.
#ifndef OSL_FAULT_H
#define OSL_FAULT_H

#ifdef OSL_FAULT_INJECTION

#include "osltypes.h"

OAK_C_BEGIN

typedef enum OSL_FAULT_KIND OAK_INT32_ENUM {
    OSL_FAULT_MEMORY = 0, // osl_getMem, osl_extendMem, osl_poolGetMem, tags, pools
    OSL_FAULT_FILE = 1,   // open, read, write, seek, set size, lock, remove; streams, directories
    OSL_FAULT_SYNC = 2,   // osl_syncCreate_check
    OSL_FAULT_THREAD = 3, // osl_threadBeginEx
    OSL_FAULT_KINDS = 4
} OSL_FAULT_KIND;

// Arms the kind: its `nth` request from now on (1 is the next) fails, and with
// `forever` every later one too.
OAK_API void osl_faultArm(OSL_FAULT_KIND kind, uint64_t nth, OAK_BOOL_T forever);
// Disarms the kind and returns how many failures were injected since it was armed.
OAK_API uint64_t osl_faultDisarm(OSL_FAULT_KIND kind);

typedef enum OSL_LIVE_KIND OAK_INT32_ENUM {
    OSL_LIVE_TAGS = 0,
    OSL_LIVE_BLOCKS = 1, // blocks under every tag, pools and the pool blocks handed out included
    OSL_LIVE_FILES = 2,
    OSL_LIVE_SYNCS = 3,
    OSL_LIVE_THREADS = 4,
    OSL_LIVE_KINDS = 5
} OSL_LIVE_KIND;

// How many objects of the kind are live in the process.
OAK_API uint64_t osl_faultLive(OSL_LIVE_KIND kind);
// How many blocks are live under one tag.
OAK_API uint64_t osl_faultLiveUnderTag(OSL_MEMTAG tag);

OAK_C_END

#endif
#endif
