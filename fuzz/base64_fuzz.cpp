// Base 64 over hostile text: decoding ends with a status and never yields more than
// three bytes for four characters; any bytes encode to text that decodes to them, but
// for the last byte of a full last group, which stays behind.
#include <cstdint>
#include <cstring>

#include "base64.h"

namespace {

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

OAK_RETCODE decode(const void *text, size_t size, OAK_BUFFER *output) {
    OAK_BUFFER input;
    b_buffInit(&input, OSL_TAG_PROCESS);
    b_buffSetStatic(&input, text, size);
    return b_base64DecodeFcn(b_buffInputByte, &input, b_buffEmitByte, output);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    OAK_BUFFER text;
    OAK_BUFFER bytes;
    b_buffInit(&text, OSL_TAG_PROCESS);
    b_buffInit(&bytes, OSL_TAG_PROCESS);

    const OAK_RETCODE hostile = decode(data, size, &bytes);
    require(hostile == sOKAY || hostile == eRANGE);
    require(bytes.len <= size / 4 * 3 + 3);

    b_buffReset(&bytes);
    require(b_base64EncodeToBuffer(data, size, &text) == sOKAY);
    const bool full = size % 3 == 0 && size > 0;
    require(decode(text.data, text.len, &bytes) == (full ? eRANGE : sOKAY));
    require(bytes.len == (full ? size - 1 : size));
    require(bytes.len == 0 || std::memcmp(bytes.data, data, bytes.len) == 0);

    b_buffTerm(&text);
    b_buffTerm(&bytes);
    return 0;
}
