// The byte buffer (buff.h). Rests on the platform's memory; encoders, decoders,
// compression and the stored forms write into it and read from it.
//
// Two ways to grow, both visible in `size`. Byte by byte the buffer grows in
// steps of 16. The bulk calls make it exactly as large as what it then holds,
// even where it had been larger: lowering `size` gives nothing back, it only
// states what is used, and the platform keeps the room. Whether memory behind a
// block can be had without copying is the platform's affair, not reckoned here.
//
// A static buffer has data and a size of 0. The first write takes memory of the
// buffer's own and lets go of the view; that old contents are not carried over
// is settled behaviour, on which b_buffCopy's callers and the readers that point
// a used buffer at new bytes rely. Length and position then start at 0, so that
// no byte of the new block is ever read before it was written.
#include "buff.h"

#include <algorithm>
#include <cstring>

#include "buff_internal.h"

namespace {

constexpr size_t kByteStep = 16;

OAK_BUFFER *buffer_of(void *ctx) {
    return static_cast<OAK_BUFFER *>(ctx);
}

bool is_static(const OAK_BUFFER &buffer) {
    return buffer.data != nullptr && buffer.size == 0;
}

/// Bytes that a write keeps in front of what it adds.
size_t kept_length(const OAK_BUFFER &buffer) {
    return is_static(buffer) ? 0 : buffer.len;
}

/// Bytes from the position to the length.
size_t unread(const OAK_BUFFER &buffer) {
    return buffer.pos < buffer.len ? buffer.len - buffer.pos : 0;
}

/// Gives the buffer `newSize` bytes of its own, above 0. A static buffer is empty
/// afterwards, an owned one keeps its contents.
OAK_RETCODE buffRealloc(OAK_BUFFER *buffer, size_t newSize) {
    const bool letsGo = is_static(*buffer);
    void *block = nullptr;
    const OAK_RETCODE rc = osl_extendMem_rc(letsGo ? nullptr : buffer->data, newSize, buffer->tag,
                                            OSL_MEM_PLAIN, 0, nullptr, &block, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    if (letsGo) {
        buffer->len = 0;
        buffer->pos = 0;
    }
    buffer->data = static_cast<uint8_t *>(block);
    buffer->size = newSize;
    return sOKAY;
}

/// Makes room for one more byte.
OAK_RETCODE grow_by_step(OAK_BUFFER *buffer) {
    return buffRealloc(buffer, buffer->size + kByteStep);
}

/// Makes the buffer exactly large enough for `added` bytes behind what it keeps.
/// A total of 0 leaves it alone: a size of 0 would say that it is static.
OAK_RETCODE grow_exactly(OAK_BUFFER *buffer, size_t added) {
    const size_t kept = kept_length(*buffer);
    if (added > SIZE_MAX - kept) {
        return eNOMEMORY;
    }
    const size_t total = kept + added;
    if (total > buffer->size) {
        return buffRealloc(buffer, total);
    }
    if (total > 0) {
        buffer->size = total;
    }
    return sOKAY;
}

OAK_RETCODE append(OAK_BUFFER *buffer, const void *data, size_t size) {
    const OAK_RETCODE rc = grow_exactly(buffer, size);
    if (rc == sOKAY && size > 0) {
        std::memcpy(buffer->data + buffer->len, data, size);
        buffer->len += size;
    }
    return rc;
}

OAK_RETCODE emit_byte(OAK_BUFFER *buffer, uint32_t byte) {
    if (buffer->len >= buffer->size) [[unlikely]] {
        const OAK_RETCODE rc = grow_by_step(buffer);
        if (rc != sOKAY) {
            return rc;
        }
    }
    buffer->data[buffer->len++] = static_cast<uint8_t>(byte);
    return sOKAY;
}

/// Appends from an owned buffer, which may be the destination itself: where the
/// bytes lie is looked up after the destination has grown.
OAK_RETCODE append_from(const OAK_BUFFER *source, size_t length, OAK_BUFFER *destination) {
    const OAK_RETCODE rc = grow_exactly(destination, length);
    if (rc == sOKAY && length > 0) {
        std::memcpy(destination->data + destination->len, source->data + source->pos, length);
        destination->len += length;
    }
    return rc;
}

} // namespace

namespace oak {

OAK_RETCODE buff_append_as_bytes(OAK_BUFFER *buffer, const uint8_t *data, size_t size) {
    const size_t kept = kept_length(*buffer);
    const size_t room = buffer->size - std::min(kept, buffer->size);
    OAK_RETCODE rc = sOKAY;
    if (size > room) {
        const size_t steps = (size - room + kByteStep - 1) / kByteStep;
        rc = buffRealloc(buffer, buffer->size + steps * kByteStep);
    }
    const size_t fits = rc == sOKAY ? size : room;
    if (fits > 0) {
        std::memcpy(buffer->data + buffer->len, data, fits);
        buffer->len += fits;
    }
    return rc;
}

} // namespace oak

// ---- Life -------------------------------------------------------------------

void b_buffInit(OAK_BUFFER *buffer, OSL_MEMTAG tag) {
    if (buffer != nullptr) {
        *buffer = {};
        buffer->tag = tag;
    }
}

void b_buffTerm(OAK_BUFFER *buffer) {
    if (buffer != nullptr) {
        b_buffSetStatic(buffer, nullptr, 0);
    }
}

void b_buffReset(OAK_BUFFER *buffer) {
    if (buffer != nullptr) {
        buffer->len = 0;
        buffer->pos = 0;
    }
}

void b_buffSetStatic(OAK_BUFFER *buffer, const void *data, size_t length) {
    if (buffer == nullptr) {
        return;
    }
    if (buffer->size > 0) {
        OSL_FREE(buffer->data, buffer->tag);
    }
    buffer->data = static_cast<uint8_t *>(const_cast<void *>(data));
    buffer->size = 0;
    buffer->len = length;
    buffer->pos = 0;
}

size_t b_buffLength(const OAK_BUFFER *buffer) {
    return buffer != nullptr ? buffer->len : 0;
}

// ---- Room -------------------------------------------------------------------

OAK_RETCODE b_buffIncreaseSize(OAK_BUFFER *buffer, size_t newSize) {
    if (buffer == nullptr) {
        return eINVNULLARG;
    }
    return newSize > buffer->size ? buffRealloc(buffer, newSize) : sOKAY;
}

OAK_RETCODE b_buffExpand(OAK_BUFFER *buffer, size_t added) {
    if (buffer == nullptr) {
        return eINVNULLARG;
    }
    if (added > SIZE_MAX - buffer->size) {
        return eNOMEMORY;
    }
    return b_buffIncreaseSize(buffer, buffer->size + added);
}

// ---- Copies -----------------------------------------------------------------

OAK_RETCODE b_buffCopy(const OAK_BUFFER *source, OAK_BUFFER *destination) {
    return b_buffCopyPartial(source, SIZE_MAX, destination);
}

OAK_RETCODE b_buffCopyPartial(const OAK_BUFFER *source, size_t length, OAK_BUFFER *destination) {
    if (source == nullptr || destination == nullptr) {
        return eINVNULLARG;
    }
    length = std::min(length, unread(*source));
    if (!is_static(*source)) {
        return append_from(source, length, destination);
    }
    const uint8_t *view = source->data + source->pos;
    if (destination->len > 0) {
        return append(destination, view, length);
    }
    b_buffSetStatic(destination, view, length);
    return sOKAY;
}

OAK_RETCODE b_buffDuplicate(OAK_BUFFER *buffer) {
    if (buffer == nullptr) {
        return eINVNULLARG;
    }
    if (!is_static(*buffer)) {
        return sOKAY;
    }
    void *block = nullptr;
    if (buffer->len > 0) {
        const OAK_RETCODE rc = osl_getMem_rc(buffer->len, buffer->tag, OSL_MEM_COPY, buffer->data,
                                             &block, __FILE__, __LINE__);
        if (rc != sOKAY) {
            return rc;
        }
    }
    buffer->data = static_cast<uint8_t *>(block);
    buffer->size = buffer->len;
    return sOKAY;
}

// ---- Writing ----------------------------------------------------------------

OAK_RETCODE b_buffEmitByte(OAK_OUTPUT_CTX buffer, uint32_t byte) {
    return buffer != nullptr ? emit_byte(buffer_of(buffer), byte) : eINVNULLARG;
}

OAK_RETCODE b_buffEmitChar(OAK_OUTPUT_CTX buffer, uint32_t ch) {
    return buffer != nullptr ? emit_byte(buffer_of(buffer), ch) : eINVNULLARG;
}

OAK_RETCODE b_buffEmitBytesBulk(OAK_OUTPUT_CTX buffer, const void *data, size_t size) {
    if (buffer == nullptr || (data == nullptr && size > 0)) {
        return eINVNULLARG;
    }
    return append(buffer_of(buffer), data, size);
}

OAK_RETCODE b_buffEmitString(OAK_BUFFER *buffer, const char *text) {
    if (buffer == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    return append(buffer, text, std::strlen(text));
}

OAK_RETCODE b_buffAllocateBuffer(OAK_BUFFER *buffer, size_t length, void **pPlace) {
    if (buffer == nullptr || pPlace == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = grow_exactly(buffer, length);
    if (rc == sOKAY) {
        *pPlace = buffer->data + buffer->len;
        buffer->len += length;
    }
    return rc;
}

OAK_RETCODE b_buffPad(OAK_BUFFER *buffer, size_t multiple) {
    if (buffer == nullptr) {
        return eINVNULLARG;
    }
    if (multiple == 0) {
        return eINVARG;
    }
    const size_t over = buffer->len % multiple;
    if (over == 0) {
        return sOKAY;
    }
    if (multiple - over > SIZE_MAX - buffer->len) {
        return eNOMEMORY;
    }
    const size_t padded = buffer->len + (multiple - over);
    const OAK_RETCODE rc = b_buffIncreaseSize(buffer, padded);
    if (rc == sOKAY && buffer->len > 0) { // 0: a view was let go, and nothing is left to pad
        std::memset(buffer->data + buffer->len, 0, padded - buffer->len);
        buffer->len = padded;
    }
    return rc;
}

// ---- Reading ----------------------------------------------------------------

OAK_RETCODE b_buffInputByte(OAK_INPUT_CTX buffer, uint32_t *pByte) {
    if (buffer == nullptr || pByte == nullptr) {
        return eINVNULLARG;
    }
    OAK_BUFFER *source = buffer_of(buffer);
    if (source->pos >= source->len) {
        return eEOD;
    }
    *pByte = source->data[source->pos++];
    return sOKAY;
}

OAK_RETCODE b_buffInputBytesBulk(OAK_INPUT_CTX buffer, size_t requested, void *data, size_t *pGot) {
    if (buffer == nullptr || (data == nullptr && requested > 0)) {
        return eINVNULLARG;
    }
    OAK_BUFFER *source = buffer_of(buffer);
    const size_t got = std::min(requested, unread(*source));
    if (got > 0) {
        std::memcpy(data, source->data + source->pos, got);
        source->pos += got;
    }
    if (pGot != nullptr) {
        *pGot = got;
    }
    return got < requested ? eEOD : sOKAY;
}

OAK_RETCODE b_buffSeek(OAK_BUFFER *buffer, size_t position) {
    if (buffer == nullptr) {
        return eINVNULLARG;
    }
    if (position > buffer->len) {
        return eEOD;
    }
    buffer->pos = position;
    return sOKAY;
}
