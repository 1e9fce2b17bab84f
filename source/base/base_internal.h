// Internal to the library: how damage is raised.
#ifndef BASE_INTERNAL_H
#define BASE_INTERNAL_H

#include "oakretcodetypes.h"

// A status that says that something from outside is damaged (eDBCORRUPTED,
// eBADCAT, eSYNTAX) is raised through OAK_DAMAGED, so that a debugger has one
// line to stop at; in a release build it is the status alone.
#ifdef NDEBUG
#define OAK_DAMAGED(status) (status)
#else
inline __attribute__((noinline)) OAK_RETCODE oak_damage_raised(OAK_RETCODE status) {
    return status; // stop here
}
#define OAK_DAMAGED(status) oak_damage_raised(status)
#endif

#endif
