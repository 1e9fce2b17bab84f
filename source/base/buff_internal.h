// Internal to the byte streams: appending a run of bytes to a buffer as its byte
// callback would, in one go.
#ifndef BUFF_INTERNAL_H
#define BUFF_INTERNAL_H

#include "buff.h"

namespace oak {

/// Appends `size` bytes; the buffer's fields are afterwards what `size` calls of
/// b_buffEmitByte would leave. When memory ends, what fits is appended first.
OAK_RETCODE buff_append_as_bytes(OAK_BUFFER *buffer, const uint8_t *data, size_t size);

} // namespace oak

#endif
