// Hostile streams into the LZMA decoder; and every input compressed must come
// back as it was.
#include <cstring>

#include "lzma.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    LZMA lzma = nullptr;
    if (tag == nullptr || b_lzmaCreate(&lzma) != sOKAY) {
        __builtin_trap();
    }
    OAK_BUFFER input, stream, output;
    b_buffInit(&input, tag);
    b_buffInit(&stream, tag);
    b_buffInit(&output, tag);
    b_buffSetStatic(&input, data, size);
    const OAK_RETCODE status = b_lzmaDecompress(lzma, &input, &output);
    if (status != sOKAY && status != sEOS && status != sNOTFOUND && status != eINVVARINT &&
        status != eDBCORRUPTED) {
        __builtin_trap();
    }
    if (b_lzmaCompress(lzma, &input, &stream) != sOKAY ||
        b_lzmaDecompress(lzma, &stream, &output) != sOKAY || output.len != size ||
        (size != 0 && std::memcmp(output.data, data, size) != 0)) {
        __builtin_trap();
    }
    b_lzmaDestroy(lzma);
    OSL_FREE_TAG(tag);
    return 0;
}
