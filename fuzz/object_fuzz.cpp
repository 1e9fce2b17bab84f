// Hostile stored objects into the object reader.
#include "dbobjapi.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    LZMA lzma = nullptr;
    if (tag == nullptr || b_lzmaCreate(&lzma) != sOKAY) {
        __builtin_trap();
    }
    OAK_BUFFER stored, object;
    b_buffInit(&stored, tag);
    b_buffInit(&object, tag);
    b_buffSetStatic(&stored, data, size);
    OAK_ITEM_FORMAT format = OAK_ITEM_FORMAT_COMPACT;
    const OAK_RETCODE status = obj_convert_in(&object, &stored, nullptr, &format, lzma);
    if (object.pos != 0 || (status == sOKAY && (static_cast<uint32_t>(format) & 15) != 0)) {
        __builtin_trap();
    }
    b_lzmaDestroy(lzma);
    OSL_FREE_TAG(tag);
    return 0;
}
