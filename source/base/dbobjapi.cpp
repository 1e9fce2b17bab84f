// The header, compression and padding of stored objects. Rests on the LZMA
// coder and the buffer; called by the upper layers that read and write drawers.
#include "dbobjapi.h"

namespace {

constexpr uint32_t kMethodMask = 15;
constexpr uint32_t kFormatMask = 240;

bool is_compressed(uint32_t method) {
    return method == OAK_COMPRESS_LZMA || method == OAK_COMPRESS_ZERO;
}

OAK_RETCODE emit_body(LZMA compress_info, OAK_COMPRESS_METHOD method, const OAK_BUFFER *src,
                      OAK_BUFFER *dst) {
    if (method == OAK_COMPRESS_NONE) {
        return b_buffCopy(src, dst);
    }
    if (is_compressed(static_cast<uint32_t>(method))) {
        return b_lzmaCompress(compress_info, src, dst);
    }
    return eSYS_ERROR;
}

// Deciphers the whole object. It works in place, so a view is copied first.
OAK_RETCODE decipher(OAK_BUFFER *buffer, OAK_ENCRYPT_C enc_in) {
    const OAK_RETCODE status = b_buffDuplicate(buffer);
    if (status != sOKAY) {
        return status;
    }
    return enc_in->decFcn(enc_in->data, buffer->data, buffer->len);
}

OAK_RETCODE convert_in(OAK_BUFFER *dst, OAK_BUFFER *buffer, OAK_ENCRYPT_C enc_in,
                       OAK_ITEM_FORMAT *item_format, LZMA compress_info) {
    if (buffer->len == 0) {
        return sOKAY;
    }
    buffer->pos = 0;
    dst->len = 0;
    if (enc_in != nullptr) {
        const OAK_RETCODE status = decipher(buffer, enc_in);
        if (status != sOKAY) {
            return status;
        }
    }
    return obj_decompress(compress_info, buffer, dst, item_format);
}

} // namespace

OAK_RETCODE obj_compress(LZMA compressInfo, OAK_COMPRESS_METHOD method, uint32_t rowCompressMinSize,
                         OAK_ITEM_FORMAT itemFormat, const OAK_BUFFER *src, OAK_BUFFER *dst) {
    if (src == nullptr || dst == nullptr) {
        return eINVNULLARG;
    }
    const OAK_COMPRESS_METHOD in_force = src->len < rowCompressMinSize ? OAK_COMPRESS_NONE : method;
    OAK_RETCODE status =
        b_buffEmitByte(dst, static_cast<uint32_t>(in_force) | static_cast<uint32_t>(itemFormat));
    if (status != sOKAY) {
        return status;
    }
    status = emit_body(compressInfo, in_force, src, dst);
    return status == sOKAY ? b_buffPad(dst, OAK_OBJ_PADDING) : status;
}

OAK_RETCODE obj_convert_in(OAK_BUFFER *dst, OAK_BUFFER *buffer, OAK_ENCRYPT_C enc_in,
                           OAK_ITEM_FORMAT *item_format, LZMA compress_info) {
    if (dst == nullptr || buffer == nullptr || item_format == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE status = convert_in(dst, buffer, enc_in, item_format, compress_info);
    dst->pos = 0;
    return status;
}

OAK_RETCODE obj_decompress(LZMA compress_info, OAK_BUFFER *src, OAK_BUFFER *dst,
                           OAK_ITEM_FORMAT *item_format) {
    if (src == nullptr || dst == nullptr || item_format == nullptr) {
        return eINVNULLARG;
    }
    uint32_t header = 0;
    OAK_RETCODE status = osl_vintDecodeUInt32(b_buffInputByte, src, &header);
    if (status != sOKAY) {
        return status;
    }
    const uint32_t method = header & kMethodMask;
    if (is_compressed(method)) {
        status = b_lzmaDecompress(compress_info, src, dst);
    } else {
        status = method == OAK_COMPRESS_NONE ? b_buffCopy(src, dst) : eSYS_ERROR;
    }
    if (status == sOKAY) {
        *item_format = static_cast<OAK_ITEM_FORMAT>(header & kFormatMask);
    }
    return status;
}
