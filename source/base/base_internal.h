// Internal to the library: how damage is raised, and what the bits of a type code say.
#ifndef BASE_INTERNAL_H
#define BASE_INTERNAL_H

#include "oakretcodetypes.h"
#include "oaktypes.h"

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

namespace oak {

/// The class of a type: OAK_TYPE_CLASS_TEXT and kin.
constexpr unsigned type_class(OAK_TYPE type) {
    return static_cast<unsigned>(type) & OAK_TYPE_CLASS_MASK;
}

constexpr bool is_large_object(OAK_TYPE type) {
    return (static_cast<unsigned>(type) & OAK_TYPE_LARGE_OBJECT) != 0;
}

} // namespace oak

#endif
