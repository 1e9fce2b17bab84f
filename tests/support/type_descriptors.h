// Column types and their values for the tests of the type operations. A
// descriptor has the byte length that a finalized table would give it.
#ifndef TYPE_DESCRIPTORS_H
#define TYPE_DESCRIPTORS_H

#include <cstring>

#include "schema_internal.h"
#include "types.h"
#include "value.h"

namespace oaktest {

inline _SCH_TYPE_INFO descriptor(OAK_TYPE type) {
    _SCH_TYPE_INFO info{};
    info.type = type;
    info.type_info = b_typeGetInfo(type);
    info.byte_len = static_cast<uint16_t>(b_typeGetLength(type));
    return info;
}

/// A scalar for `elems` 0, else an array.
inline _SCH_TYPE_INFO number_type(OAK_TYPE type, uint16_t elems = 0) {
    _SCH_TYPE_INFO info = descriptor(type);
    info.elems = elems;
    info.byte_len = static_cast<uint16_t>(b_typeGetLength(type) * (elems == 0 ? 1u : elems));
    return info;
}

inline _SCH_TYPE_INFO decimal_type(uint8_t prec, uint8_t scale) {
    _SCH_TYPE_INFO info = descriptor(OAK_BCD);
    info.x.d = {prec, scale};
    return info;
}

/// `len` bytes, terminator included.
inline _SCH_TYPE_INFO text_type(uint16_t len, OAK_TYPE type = OAK_CHAR) {
    _SCH_TYPE_INFO info = descriptor(type);
    info.x.c.len = len;
    info.byte_len = len;
    return info;
}

inline _SCH_TYPE_INFO binary_type(uint16_t len) {
    _SCH_TYPE_INFO info = descriptor(OAK_BINARY);
    info.x.b.len = len;
    info.byte_len = len;
    return info;
}

/// `len` bytes and the two of their length.
inline _SCH_TYPE_INFO varbinary_type(uint16_t len) {
    _SCH_TYPE_INFO info = descriptor(OAK_VARBINARY);
    info.x.b.len = len;
    info.byte_len = static_cast<uint16_t>(len + 2);
    return info;
}

// ---- Values of such columns ---------------------------------------------------------

inline OAK_VALUE of_type(OAK_TYPE type) {
    OAK_VALUE value;
    oak_valueInitWithStatusAndType(&value, vsOKAY, type);
    return value;
}

template <class Native>
OAK_VALUE scalar(OAK_TYPE type, Native number) {
    OAK_VALUE value = of_type(type);
    memcpy(&value.vt, &number, sizeof number);
    return value;
}

/// A payload behind a pointer, borrowed.
inline OAK_VALUE pointed(OAK_TYPE type, const void *payload, size_t len = 0) {
    OAK_VALUE value = of_type(type);
    value.vt.pv = payload;
    value.len = len;
    return value;
}

/// An array, borrowed.
inline OAK_VALUE array_at(OAK_TYPE type, const void *elements, size_t count) {
    OAK_VALUE value = pointed(type, elements);
    value.elts = static_cast<uint32_t>(count);
    return value;
}

} // namespace oaktest

#endif
