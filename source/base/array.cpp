// B_ARRAY (array.h). Rests on the platform's memory.
#include "array.h"

#include <cstring>

#include "container_internal.h"

namespace {
constexpr uint32_t kGrowth = 4;
}

struct _B_ARRAY {
    uint32_t size;  // entries there is room for
    uint32_t count; // entries in use
    const void **arr;
    OSL_MEMTAG tag;
};

namespace {

OAK_RETCODE make_room(B_ARRAY array) {
    if (array->count < array->size) {
        return sOKAY;
    }
    if (array->size > UINT32_MAX - kGrowth) {
        return eNOMEMORY;
    }
    const OAK_RETCODE rc = oak::extend_zeroed(array->size, size_t{array->size} + kGrowth,
                                              array->tag, &array->arr, __FILE__, __LINE__);
    if (rc == sOKAY) {
        array->size += kGrowth;
    }
    return rc;
}

void hand_out_index(uint32_t index, uint32_t *pIndex) {
    if (pIndex != nullptr) {
        *pIndex = index;
    }
}

/// Takes back the visits of the entries from `last` down to 0.
void undo_visits(B_ARRAY_C array, uint32_t last, B_ARR_UNDO_FCN undo, void *ctx) {
    for (uint32_t i = last + 1; i > 0; --i) {
        undo(array->arr[i - 1], ctx);
    }
}

} // namespace

OAK_RETCODE b_arrCreate(OSL_MEMTAG tag, B_ARRAY *pArray) {
    if (pArray == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = oak::get_zeroed(1, tag, pArray, __FILE__, __LINE__);
    if (rc == sOKAY) {
        (*pArray)->tag = tag;
    }
    return rc;
}

void b_arrDestroy(B_ARRAY array) {
    if (array != nullptr) {
        OSL_FREE(array->arr, array->tag);
        OSL_FREE(array, array->tag);
    }
}

uint32_t b_arrCount(B_ARRAY_C array) {
    return array != nullptr ? array->count : 0;
}

OAK_RETCODE b_arrAdd(B_ARRAY array, const void *item, uint32_t *pIndex) {
    if (array == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = make_room(array);
    if (rc != sOKAY) {
        return rc;
    }
    array->arr[array->count] = item;
    hand_out_index(array->count++, pIndex);
    return sOKAY;
}

OAK_RETCODE b_arrGetIndex(B_ARRAY_C array, const void *item, uint32_t *pIndex) {
    if (array == nullptr) {
        return eINVNULLARG;
    }
    for (uint32_t i = 0; i < array->count; ++i) {
        if (array->arr[i] == item) {
            hand_out_index(i, pIndex);
            return sOKAY;
        }
    }
    return sNOTFOUND;
}

OAK_RETCODE b_arrLookup(B_ARRAY_C array, uint32_t index, const void **pItem) {
    if (array == nullptr || pItem == nullptr) {
        return eINVNULLARG;
    }
    if (index >= array->count) {
        return sNOTFOUND;
    }
    *pItem = array->arr[index];
    return sOKAY;
}

OAK_RETCODE b_arrRemove(B_ARRAY array, uint32_t index) {
    if (array == nullptr) {
        return eINVNULLARG;
    }
    if (index >= array->count) {
        return sNOTFOUND;
    }
    --array->count;
    std::memmove(&array->arr[index], &array->arr[index + 1],
                 (array->count - index) * sizeof(array->arr[0]));
    return sOKAY;
}

void b_arrClear(B_ARRAY array) {
    for (uint32_t i = 0; array != nullptr && i < array->count; ++i) {
        array->arr[i] = nullptr;
    }
}

OAK_RETCODE b_arrFind(B_ARRAY_C array, B_ARR_FCN fcn, void *ctx, uint32_t *pIndex) {
    if (array == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    for (uint32_t i = 0; i < array->count; ++i) {
        const OAK_RETCODE rc = fcn(array->arr[i], ctx);
        if (rc == sOKAY) {
            hand_out_index(i, pIndex);
        }
        if (rc != sNOTFOUND) {
            return rc;
        }
    }
    return sNOTFOUND;
}

OAK_RETCODE b_arrIterate(B_ARRAY_C array, B_ARR_FCN fcn, B_ARR_UNDO_FCN undo, void *ctx) {
    if (array == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    for (uint32_t i = 0; i < array->count; ++i) {
        const OAK_RETCODE rc = fcn(array->arr[i], ctx);
        if (rc != sOKAY) {
            if (undo != nullptr) {
                undo_visits(array, i, undo, ctx);
            }
            return rc;
        }
    }
    return sOKAY;
}
