/* Small helpers of the text side that have no better home. */
#ifndef MISC_H
#define MISC_H

#include "osltypes.h"

OAK_C_BEGIN

/* Allocates `tSize` zeroed bytes under `tag` and stores the block at `pvData`,
 * the address of a pointer of any type; a size of 0 stores null.
 * eINVNULLARG: `pvData` is null.
 * eNOMEMORY: the allocation failed; `*pvData` is unchanged. */
OAK_API OAK_RETCODE b_allocMemoryOrSetNull(size_t tSize, void *pvData, OSL_MEMTAG tag);

OAK_C_END

#endif
