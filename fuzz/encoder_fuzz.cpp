// The decoder over hostile bytes: the first eight bytes choose what is read, the
// rest is the stream. Invariants: reading straight from the buffer and reading
// through a callback tell the same, nothing is written outside the outputs, the
// position never passes the end, and what was read well writes back to bytes that
// read the same.
#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "buff.h"
#include "encoder.h"
#include "encoder_internal.h"

namespace {

constexpr size_t kSteps = 8;
constexpr uint32_t kElements = 16;
constexpr uint8_t kGuard = 0xC5;

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

OAK_RETCODE input_indirectly(OAK_INPUT_CTX ctx, uint32_t *byte) {
    return b_buffInputByte(ctx, byte);
}

/// What one step told.
struct Told {
    OAK_RETCODE rc = sOKAY;
    uint64_t number = 0;
    alignas(8) uint8_t bytes[kElements * sizeof(double) + 8];
    size_t text_length = 0;

    Told() { std::memset(bytes, kGuard, sizeof(bytes)); }
    bool same_as(const Told &other) const {
        return rc == other.rc && number == other.number && text_length == other.text_length &&
               std::memcmp(bytes, other.bytes, sizeof(bytes)) == 0;
    }
    bool guarded() const {
        for (size_t i = sizeof(bytes) - 8; i < sizeof(bytes); ++i) {
            if (bytes[i] != kGuard) {
                return false;
            }
        }
        return true;
    }
};

template <class Element>
OAK_RETCODE read_number(OAK_RETCODE (*decode)(B_DECODER, Element *), B_DECODER decoder,
                        uint64_t *number) {
    Element value = 0;
    const OAK_RETCODE rc = decode(decoder, &value);
    *number = static_cast<uint64_t>(value);
    return rc;
}

OAK_RETCODE read_text(B_DECODER decoder, Told *told) {
    char *text = nullptr;
    uint32_t length = 0;
    const OAK_RETCODE rc = b_decoderDecodeString(decoder, &text, &length, OSL_TAG_PROCESS);
    require((text != nullptr) == (rc == sOKAY));
    if (rc == sOKAY) {
        require(text[length - 1] == '\0');
        told->text_length = length;
        std::memcpy(told->bytes, text, length < 64 ? length : 64);
    }
    OSL_FREE(text, OSL_TAG_PROCESS);
    return rc;
}

OAK_RETCODE read_new_array(B_DECODER decoder) {
    int16_t *array = nullptr;
    const OAK_RETCODE rc = b_decoderDecodeInt16Array(decoder, kElements, &array, OSL_TAG_PROCESS);
    require((array != nullptr) == (rc == sOKAY));
    OSL_FREE(array, OSL_TAG_PROCESS);
    return rc;
}

Told read_step(B_DECODER decoder, uint8_t step) {
    Told told;
    switch (step % 10) {
        case 0:
            told.rc = read_number(b_decoderDecodeUint64, decoder, &told.number);
            break;
        case 1:
            told.rc = read_number(b_decoderDecodeInt32, decoder, &told.number);
            break;
        case 2:
            told.rc = read_number(b_decoderDecodeUint8, decoder, &told.number);
            break;
        case 3:
            told.rc = read_text(decoder, &told);
            break;
        case 4:
            told.rc = decoderDecodeStringBounded(decoder, reinterpret_cast<char *>(told.bytes),
                                                 kElements, nullptr);
            break;
        case 5:
            told.rc = b_decoderDecodeBytes(decoder, told.bytes, step / 10);
            break;
        case 6:
            told.rc = b_decoderDecodeUint64ArrayBuffer(decoder, kElements,
                                                       reinterpret_cast<uint64_t *>(told.bytes));
            break;
        case 7:
            told.rc = b_decoderDecodeDoubleArrayBuffer(decoder, kElements,
                                                       reinterpret_cast<double *>(told.bytes));
            break;
        case 8:
            told.rc = b_decoderDecodeInt8ArrayBuffer(decoder, kElements,
                                                     reinterpret_cast<int8_t *>(told.bytes));
            break;
        default:
            told.rc = read_new_array(decoder);
            break;
    }
    require(told.guarded());
    return told;
}

/// A number that was read comes back from what the encoder writes for it.
void write_back(uint64_t number) {
    OAK_BUFFER buffer;
    b_buffInit(&buffer, OSL_TAG_PROCESS);
    _B_ENCODER encoder = {b_buffEmitByte, nullptr, &buffer, OSL_TAG_PROCESS};
    _B_DECODER decoder = {b_buffInputByte, nullptr, &buffer, OSL_TAG_PROCESS};
    uint64_t again = 0;
    require(b_encoderEncodeUint64(&encoder, number) == sOKAY);
    require(b_decoderDecodeUint64(&decoder, &again) == sOKAY);
    require(again == number && buffer.pos == buffer.len);
    b_buffTerm(&buffer);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < kSteps) {
        return 0;
    }
    OAK_BUFFER direct;
    OAK_BUFFER callback;
    for (OAK_BUFFER *buffer : {&direct, &callback}) {
        b_buffInit(buffer, OSL_TAG_PROCESS);
        b_buffSetStatic(buffer, data + kSteps, size - kSteps);
    }
    _B_DECODER ways[] = {{b_buffInputByte, nullptr, &direct, OSL_TAG_PROCESS},
                         {input_indirectly, nullptr, &callback, OSL_TAG_PROCESS}};
    for (size_t step = 0; step < kSteps; ++step) {
        const Told told = read_step(&ways[0], data[step]);
        require(told.same_as(read_step(&ways[1], data[step])));
        require(direct.pos == callback.pos && direct.pos <= direct.len);
        if (told.rc == sOKAY) {
            write_back(told.number);
        }
    }
    return 0;
}
