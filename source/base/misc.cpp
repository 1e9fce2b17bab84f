// Small helpers of the text side.
#include "misc.h"

#include <cstring>

OAK_RETCODE b_allocMemoryOrSetNull(size_t tSize, void *pvData, OSL_MEMTAG tag) {
    if (pvData == nullptr) {
        return eINVNULLARG;
    }
    void *block = nullptr;
    if (tSize != 0) {
        const OAK_RETCODE rc =
            osl_getMem_rc(tSize, tag, OSL_MEM_ZERO, nullptr, &block, __FILE__, __LINE__);
        if (rc != sOKAY) {
            return rc;
        }
    }
    std::memcpy(pvData, &block, sizeof block); // a pointer of any type may stand there
    return sOKAY;
}
