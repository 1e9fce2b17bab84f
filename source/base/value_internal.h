// Internal to the values and conversions. The cores of the value module that
// the front door of conversion shares: they take what the exported functions
// have checked.
#ifndef VALUE_INTERNAL_H
#define VALUE_INTERNAL_H

#include "value.h"

// The bytes of a payload that has a length of its own, 0 for everything else
// and for vsNOVAL and vsNULL.
size_t valueLength(const OAK_VALUE *value);

// oak_valueCopyEx without its null checks.
OAK_RETCODE valueCopy(OAK_VALUE *destination, const OAK_VALUE *source, size_t maxLen,
                      OSL_MEMTAG tag);

#endif
