// Values between owners and record buffers: copy, copy_to_buff, copy_from_buff,
// assign_from_buff and free. Rests on the column's type and the platform's
// memory; called by the column operations for every row and key.
//
// The families differ by where the payload lies: numbers and their arrays; fixed
// records in the payload; fixed records behind a pointer; texts, binaries and
// large objects, each with a rule of its own for the length.
#include "oakvaluetypes_internal.h"

#include <type_traits>

using namespace typeops;

namespace {

// Characters in a text column take this many bytes in its declared length.
constexpr size_t BYTES_PER_CHARACTER = 4;

// ---- Moving bytes -------------------------------------------------------------------

// A new, zeroed block of `len` bytes with what the source has of them: all when
// `buffsize` is 0, else at most `buffsize`, and fewer than `len` are sTRUNCATE.
OAK_RETCODE copyMemory(const void *buff, size_t buffsize, const void **pptr, size_t len,
                       OSL_MEMTAG tag) {
    if (buff == nullptr) {
        return eINVNULLARG;
    }
    const bool cut = buffsize != 0 && buffsize < len;
    void *block = OSL_GET_ZERO(len, tag);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    memcpy(block, buff, cut ? buffsize : len);
    *pptr = block;
    return cut ? sTRUNCATE : sOKAY;
}

// `len` bytes of a payload, of which the source has `available` and zero bytes
// follow, into a record buffer with the room `*size` (0: not limited).
OAK_RETCODE copy_to_buff(void *dst, size_t *size, const void *src, size_t available, size_t len) {
    const bool cut = size != nullptr && *size != 0 && *size < len;
    const size_t count = cut ? *size : len;
    if (dst != nullptr && available != 0 && src == nullptr) {
        return eINVNULLARG;
    }
    if (dst != nullptr) {
        store_padded(dst, src, available, count);
    }
    if (size != nullptr) {
        *size = count;
    }
    return cut ? sTRUNCATE : sOKAY;
}

// True when the caller tells how much room a record buffer has.
bool room_is_told(const size_t *size) {
    return size != nullptr && *size != 0;
}

// A buffer of `size` bytes (0: not limited) that does not hold the whole form.
bool too_short(size_t size, size_t len) {
    return size != 0 && size < len;
}

// Nothing may be allocated for the value: it ends as one without a value.
void leave_out(OAK_VALUE *dst) {
    dst->status = vsNOVAL;
    dst->vt.pv = nullptr;
}

// ---- Numbers --------------------------------------------------------------------------

// The elements of a copy that is whole in its column, cut to `maxExtraBytes`. A
// source with fewer elements than the column leaves zeros behind them.
template <class Element>
OAK_RETCODE copy_array(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const Elements &source,
                       size_t maxExtraBytes, OSL_MEMTAG tag) {
    const size_t bytes = dst->elts * sizeof(Element);
    if (bytes > sch_type_byte_len(pi)) {
        return eBADDATALEN;
    }
    if (maxExtraBytes == 0) {
        leave_out(dst);
        return sOKAY;
    }
    const bool cut = bytes > maxExtraBytes;
    const size_t kept = cut ? maxExtraBytes / sizeof(Element) : dst->elts;
    if (kept == 0) {
        return eBADDATALEN;
    }
    const OAK_RETCODE rc = copyMemory(source.place, source.count * sizeof(Element), &dst->vt.pv,
                                      kept * sizeof(Element), tag);
    if (rc < sOKAY) {
        return rc;
    }
    dst->elts = static_cast<uint32_t>(kept);
    return cut ? sTRUNCATE : sOKAY;
}

template <class Traits>
OAK_RETCODE copy_arrayable(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const OAK_VALUE *src,
                           size_t maxExtraBytes, OSL_MEMTAG tag) {
    using Element = typename Traits::Element;
    const Elements source = elements_of(src);
    if (source.place == nullptr) {
        return eINVNULLARG;
    }
    set_head(dst, Traits::count_of_column ? sch_type_num_elems(pi) : src->elts);
    if (dst->elts != 0) {
        return copy_array<Element>(pi, dst, source, maxExtraBytes, tag);
    }
    const auto element = load_element<Element>(source, 0); // `dst` may be the source
    store_inline(dst, &element, sizeof element);
    return sOKAY;
}

template <class Traits>
OAK_RETCODE arrayable_to_buff(SCH_TYPE_INFO_C pi, void *dst, size_t *size, const OAK_VALUE *src) {
    const Elements source = elements_of(src);
    if (source.place == nullptr) {
        return eINVNULLARG;
    }
    const size_t bytes = source.count * sizeof(typename Traits::Element);
    const size_t byte_len = sch_type_byte_len(pi);
    if (bytes > byte_len) {
        return eBADDATALEN;
    }
    return copy_to_buff(dst, size, source.place, bytes, byte_len);
}

// A scalar into the payload itself.
OAK_RETCODE inline_from_buff(OAK_VALUE *dst, const void *buff, size_t size, size_t len) {
    if (too_short(size, len)) {
        return sTRUNCATE;
    }
    store_inline(dst, buff, len);
    return sOKAY;
}

// A payload that stays in the buffer.
OAK_RETCODE shared_from_buff(OAK_VALUE *dst, const void *buff, size_t size, size_t len) {
    if (too_short(size, len)) {
        return sTRUNCATE;
    }
    dst->vt.pv = buff;
    return sOKAY;
}

template <class Traits>
OAK_RETCODE arrayable_from_buff(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff, size_t size,
                                OSL_MEMTAG tag) {
    constexpr size_t width = sizeof(typename Traits::Element);
    set_head(dst, sch_type_num_elems(pi));
    return dst->elts == 0 ? inline_from_buff(dst, buff, size, width)
                          : copyMemory(buff, size, &dst->vt.pv, dst->elts * width, tag);
}

template <class Traits>
OAK_RETCODE arrayable_assigned(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff, size_t size) {
    constexpr size_t width = sizeof(typename Traits::Element);
    set_head(dst, sch_type_num_elems(pi));
    return dst->elts == 0 ? inline_from_buff(dst, buff, size, width)
                          : shared_from_buff(dst, buff, size, dst->elts * width);
}

// ---- Fixed records ----------------------------------------------------------------------

OAK_RETCODE copy_inline(OAK_VALUE *dst, const OAK_VALUE *src) {
    const OAK_COLUMN payload = src->vt;
    set_head(dst, 0);
    dst->vt = payload;
    return sOKAY;
}

// A decimal keeps the length that its source says it has; the others have none.
template <class Traits>
OAK_RETCODE copy_pointed(OAK_VALUE *dst, const OAK_VALUE *src, OSL_MEMTAG tag) {
    if (src->vt.pv == nullptr) {
        return eINVNULLARG;
    }
    const size_t len = std::is_same_v<Traits, bcd_traits> ? src->len : 0;
    const void *block = new_fixed<Traits>(src->vt.pv, tag);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    set_head(dst, 0);
    dst->len = len;
    dst->vt.pv = block;
    return sOKAY;
}

OAK_RETCODE bcd_to_buff(void *dst, size_t *size, const OAK_VALUE *src) {
    const size_t bytes = (src->elts == 0 ? 1 : src->elts) * bcd_traits::size;
    return copy_to_buff(dst, size, src->vt.pv, bytes, bytes);
}

// ---- Text: what a column accepts -----------------------------------------------------------

bool is_continuation(uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

// How many continuation bytes follow a lead byte, -1 for a byte that leads nothing.
int continuations_after(uint8_t lead) {
    if (lead < 0x80) {
        return 0;
    }
    if ((lead & 0xE0) == 0xC0) {
        return 1;
    }
    if ((lead & 0xF0) == 0xE0) {
        return 2;
    }
    return (lead & 0xF8) == 0xF0 ? 3 : -1;
}

// Counts the characters of a text; false when a lead byte does not have its
// continuation bytes. The form alone counts, not the code points.
bool count_characters(const uint8_t *text, size_t length, size_t *characters) {
    size_t count = 0;
    for (size_t i = 0; i < length; ++count) {
        int missing = continuations_after(text[i++]);
        if (missing < 0) {
            return false;
        }
        for (; missing > 0; --missing, ++i) {
            if (i == length || !is_continuation(text[i])) {
                return false;
            }
        }
    }
    *characters = count;
    return true;
}

bool schema_wants_utf8(SCH_TYPE_INFO_C pi) {
    const char *locale = sch_type_locale_text(pi);
    return locale != nullptr && osl_locale_validate_utf8(locale) != 0;
}

OAK_RETCODE check_utf8(SCH_TYPE_INFO_C pi, const void *text, size_t length) {
    size_t characters = 0;
    if (!count_characters(static_cast<const uint8_t *>(text), length, &characters)) {
        return eINVUTF;
    }
    return characters > (sch_type_byte_len(pi) - 1) / BYTES_PER_CHARACTER ? eSTRTOOLONG : sOKAY;
}

// The length with terminator of a value's text.
size_t text_length(const OAK_VALUE *value) {
    return value->len != 0 ? value->len : strlen(value->vt.cv) + 1;
}

OAK_RETCODE check_text(SCH_TYPE_INFO_C pi, const OAK_VALUE *src, size_t len) {
    if (len > sch_type_byte_len(pi)) {
        return eBADDATALEN;
    }
    if (!schema_wants_utf8(pi)) {
        return sOKAY;
    }
    return check_utf8(pi, src->vt.cv, strnlen(src->vt.cv, len - 1));
}

// ---- Texts, binaries, large objects ----------------------------------------------------------

// The first `len` bytes of a payload, of which the source has `available`, cut to
// `maxExtraBytes`. `dst` begins as a value with that length.
OAK_RETCODE copy_run(OAK_VALUE *dst, const OAK_VALUE *src, size_t available, size_t len,
                     size_t maxExtraBytes, OSL_MEMTAG tag) {
    const size_t kept = len > maxExtraBytes ? maxExtraBytes : len;
    const void *block = nullptr;
    if (kept != 0) {
        const OAK_RETCODE rc = copyMemory(src->vt.pv, available, &block, kept, tag);
        if (rc < sOKAY) {
            return rc;
        }
    }
    set_head(dst, 0);
    dst->len = kept;
    dst->vt.pv = block;
    return kept < len ? sTRUNCATE : sOKAY;
}

// The same where nothing may be allocated: no value then, and that is no failure.
OAK_RETCODE copy_run_or_leave_out(OAK_VALUE *dst, const OAK_VALUE *src, size_t available,
                                  size_t len, size_t maxExtraBytes, OSL_MEMTAG tag) {
    if (maxExtraBytes == 0) {
        set_head(dst, 0);
        leave_out(dst);
        return sOKAY;
    }
    return copy_run(dst, src, available, len, maxExtraBytes, tag);
}

OAK_RETCODE copy_utf8(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const OAK_VALUE *src,
                      size_t maxExtraBytes, OSL_MEMTAG tag) {
    if (src->vt.cv == nullptr) {
        return eINVNULLARG;
    }
    const size_t len = text_length(src);
    OAK_RETCODE rc = check_text(pi, src, len);
    if (rc != sOKAY) {
        return rc;
    }
    rc = copy_run_or_leave_out(dst, src, 0, len, maxExtraBytes, tag);
    if (rc == sTRUNCATE) {
        auto *copy = static_cast<char *>(const_cast<void *>(dst->vt.pv)); // its own block
        copy[dst->len - 1] = '\0';
    }
    return rc;
}

// The column's length, whatever the value's: a shorter value goes on in zeros.
OAK_RETCODE copy_binary(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const OAK_VALUE *src,
                        size_t maxExtraBytes, OSL_MEMTAG tag) {
    if (src->len > sch_type_byte_len(pi)) {
        return eBADDATALEN;
    }
    return copy_run_or_leave_out(dst, src, binary_bytes_at_hand(pi, src), sch_type_length(pi),
                                 maxExtraBytes, tag);
}

void set_empty(OAK_VALUE *dst) {
    set_head(dst, 0);
    dst->vt.pv = nullptr;
}

OAK_RETCODE copy_varbinary(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const OAK_VALUE *src,
                           size_t maxExtraBytes, OSL_MEMTAG tag) {
    if (src->len == 0) {
        set_empty(dst);
        return sOKAY;
    }
    if (src->len > sch_type_byte_len(pi)) {
        return eBADDATALEN;
    }
    return copy_run_or_leave_out(dst, src, src->len, src->len, maxExtraBytes, tag);
}

// No upper limit from the type: a large object's bytes lie apart from the row.
OAK_RETCODE copy_lob(OAK_VALUE *dst, const OAK_VALUE *src, size_t maxExtraBytes, OSL_MEMTAG tag) {
    if (src->len == 0) {
        set_empty(dst);
        return sOKAY;
    }
    return copy_run(dst, src, src->len, src->len, maxExtraBytes, tag);
}

// Where the caller does not tell the room, the column's own is what there is.
bool overflows_column(SCH_TYPE_INFO_C pi, const size_t *size, size_t len) {
    const size_t byte_len = sch_type_byte_len(pi);
    return !room_is_told(size) && byte_len != 0 && len > byte_len;
}

OAK_RETCODE utf8_to_buff(SCH_TYPE_INFO_C pi, void *dst, size_t *size, const OAK_VALUE *src) {
    if (src->vt.cv == nullptr) {
        return eINVNULLARG;
    }
    const size_t len = text_length(src);
    if (dst != nullptr && overflows_column(pi, size, len)) {
        return eBADDATALEN;
    }
    return copy_to_buff(dst, size, src->vt.cv, len, len);
}

OAK_RETCODE binary_to_buff(SCH_TYPE_INFO_C pi, void *dst, size_t *size, const OAK_VALUE *src) {
    const size_t len = src->len != 0 ? src->len : sch_type_length(pi);
    if (dst != nullptr && overflows_column(pi, size, len)) {
        return eBADDATALEN;
    }
    return copy_to_buff(dst, size, src->vt.pv, len, len);
}

// The 16-bit length goes first, and is that of the value even where the room cuts
// its bytes. Room for the length alone takes it, and any byte is then too much;
// less than that takes nothing, and here 0 is no room and not any.
OAK_RETCODE varbinary_to_buff(SCH_TYPE_INFO_C pi, void *dst, size_t *size, const OAK_VALUE *src) {
    if (src->len > UINT16_MAX) {
        return eBADDATALEN;
    }
    const auto length = static_cast<uint16_t>(src->len);
    const bool measures = dst == nullptr && !room_is_told(size);
    if (size != nullptr && *size < sizeof length && !measures) {
        return sTRUNCATE;
    }
    if (dst != nullptr && overflows_column(pi, size, sizeof length + length)) {
        return eBADDATALEN;
    }
    const size_t room = room_is_told(size) ? *size - sizeof length : length;
    const size_t count = room < length ? room : length;
    if (dst != nullptr && count != 0 && src->vt.pv == nullptr) {
        return eINVNULLARG;
    }
    if (dst != nullptr) {
        memcpy(dst, &length, sizeof length);
        store_padded(static_cast<uint8_t *>(dst) + sizeof length, src->vt.pv, count, count);
    }
    if (size != nullptr) {
        *size = sizeof length + count;
    }
    return count < length ? sTRUNCATE : sOKAY;
}

// ---- Values in buffers: where their payload lies ----------------------------------------------

// The payload of a value in a record buffer.
struct Found {
    const void *place;
    size_t len;
};

// A text up to its terminator, which must lie within `size` bytes (0: not limited).
OAK_RETCODE find_utf8(SCH_TYPE_INFO_C, const void *buff, size_t size, Found *found) {
    const char *text = static_cast<const char *>(buff);
    const size_t length = size == 0 ? strlen(text) : strnlen(text, size);
    if (size != 0 && length == size) {
        return eBADDATALEN;
    }
    *found = {buff, length + 1};
    return sOKAY;
}

OAK_RETCODE find_varbinary(SCH_TYPE_INFO_C, const void *buff, size_t size, Found *found) {
    if (size != 0 && size < sizeof(uint16_t)) {
        return eBADDATALEN;
    }
    const size_t len = load<uint16_t>(buff);
    if (size != 0 && size - sizeof(uint16_t) < len) {
        return eBADDATALEN;
    }
    *found = {static_cast<const uint8_t *>(buff) + sizeof(uint16_t), len};
    return sOKAY;
}

using FindRule = OAK_RETCODE (*)(SCH_TYPE_INFO_C pi, const void *buff, size_t size, Found *found);

void set_found(OAK_VALUE *dst, const Found &found) {
    set_head(dst, 0);
    dst->len = found.len;
    dst->vt.pv = found.len == 0 ? nullptr : found.place;
}

// The value shares the buffer.
OAK_RETCODE run_assigned(FindRule find, SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff,
                         size_t size) {
    Found found;
    const OAK_RETCODE rc = find(pi, buff, size, &found);
    if (rc == sOKAY) {
        set_found(dst, found);
    }
    return rc;
}

// The value gets a copy.
OAK_RETCODE run_from_buff(FindRule find, SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff,
                          size_t size, OSL_MEMTAG tag) {
    Found found;
    OAK_RETCODE rc = find(pi, buff, size, &found);
    if (rc == sOKAY && found.len != 0) {
        rc = copyMemory(found.place, 0, &found.place, found.len, tag);
    }
    if (rc == sOKAY) {
        set_found(dst, found);
    }
    return rc;
}

// A large object takes the whole buffer; without a size there is no value.
OAK_RETCODE lob_assigned(OAK_VALUE *dst, const void *buff, size_t size) {
    if (dst == nullptr || (buff == nullptr && size != 0)) {
        return eINVNULLARG;
    }
    set_found(dst, {buff, size});
    if (size == 0) {
        dst->status = vsNOVAL;
    }
    return sOKAY;
}

OAK_RETCODE lob_from_buff(OAK_VALUE *dst, const void *buff, size_t size, OSL_MEMTAG tag) {
    const void *copy = nullptr;
    if (dst != nullptr && size != 0) {
        const OAK_RETCODE rc = copyMemory(buff, 0, &copy, size, tag);
        if (rc != sOKAY) {
            return rc;
        }
    }
    return lob_assigned(dst, copy, size);
}

OAK_RETCODE binary_assigned(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff, size_t size) {
    set_head(dst, 0);
    dst->len = sch_type_length(pi);
    return shared_from_buff(dst, buff, size, dst->len);
}

OAK_RETCODE binary_from_buff(SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff, size_t size,
                             OSL_MEMTAG tag) {
    set_head(dst, 0);
    dst->len = sch_type_length(pi);
    return copyMemory(buff, size, &dst->vt.pv, dst->len, tag);
}

OAK_RETCODE inline_record_from_buff(OAK_VALUE *dst, const void *buff, size_t size, size_t len) {
    set_head(dst, 0);
    return inline_from_buff(dst, buff, size, len);
}

template <class Traits>
OAK_RETCODE pointed_assigned(OAK_VALUE *dst, const void *buff, size_t size) {
    set_head(dst, 0);
    return shared_from_buff(dst, buff, size, Traits::size);
}

template <class Traits>
OAK_RETCODE pointed_from_buff(OAK_VALUE *dst, const void *buff, size_t size, OSL_MEMTAG tag) {
    set_head(dst, 0);
    return copyMemory(buff, size, &dst->vt.pv, Traits::size, tag);
}

// ---- Freeing ------------------------------------------------------------------------------------

void free_payload(OAK_VALUE *col, OSL_MEMTAG tag, bool owned) {
    if (col != nullptr && owned) {
        OSL_FREE(const_cast<void *>(col->vt.pv), tag);
        col->vt.pv = nullptr;
    }
}

} // namespace

// ---- Families -------------------------------------------------------------------------

#define COPY(type, call)                                                                           \
    OAK_RETCODE b_type_schema_copy_##type(                                                         \
        [[maybe_unused]] SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const OAK_VALUE *src,                 \
        [[maybe_unused]] size_t maxExtraBytes, [[maybe_unused]] OSL_MEMTAG tag) {                  \
        return dst == nullptr || src == nullptr ? eINVNULLARG : call;                              \
    }
#define TO_BUFF(type, call)                                                                        \
    OAK_RETCODE b_type_schema_copy_to_buff_##type([[maybe_unused]] SCH_TYPE_INFO_C pi, void *dst,  \
                                                  size_t *size, const OAK_VALUE *src) {            \
        return src == nullptr ? eINVNULLARG : call;                                                \
    }
#define FROM_BUFF(type, call)                                                                      \
    OAK_RETCODE b_type_schema_copy_from_buff_##type([[maybe_unused]] SCH_TYPE_INFO_C pi,           \
                                                    OAK_VALUE *dst, const void *buff, size_t size, \
                                                    [[maybe_unused]] OSL_MEMTAG tag) {             \
        return dst == nullptr || buff == nullptr ? eINVNULLARG : call;                             \
    }
#define ASSIGN(type, call)                                                                         \
    OAK_RETCODE b_type_schema_assign_from_buff_##type(                                             \
        [[maybe_unused]] SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff, size_t size) {      \
        return dst == nullptr || buff == nullptr ? eINVNULLARG : call;                             \
    }
#define FREE(type, owned)                                                                          \
    void b_type_schema_free_##type(OAK_VALUE *col, OSL_MEMTAG tag) {                               \
        free_payload(col, tag, owned);                                                             \
    }

// ---- Numbers ---------------------------------------------------------------------------

#define STORE_ARRAYABLE(type)                                                                      \
    COPY(type, copy_arrayable<type##_traits>(pi, dst, src, maxExtraBytes, tag))                    \
    TO_BUFF(type, arrayable_to_buff<type##_traits>(pi, dst, size, src))                            \
    FROM_BUFF(type, arrayable_from_buff<type##_traits>(pi, dst, buff, size, tag))                  \
    ASSIGN(type, arrayable_assigned<type##_traits>(pi, dst, buff, size))                           \
    FREE(type, col != nullptr && col->elts != 0)
B_TYPE_LIST_ARRAYABLE(STORE_ARRAYABLE)

// ---- Fixed records in the payload --------------------------------------------------------

#define STORE_INLINE(type)                                                                         \
    COPY(type, copy_inline(dst, src))                                                              \
    TO_BUFF(type, copy_to_buff(dst, size, &src->vt, type##_traits::used, type##_traits::size))     \
    FROM_BUFF(type, inline_record_from_buff(dst, buff, size, type##_traits::size))                 \
    ASSIGN(type, inline_record_from_buff(dst, buff, size, type##_traits::size))
STORE_INLINE(date)
STORE_INLINE(time)
STORE_INLINE(timetz)
STORE_INLINE(timestamp)

// ---- Fixed records behind a pointer --------------------------------------------------------

#define STORE_POINTED(type)                                                                        \
    COPY(type, copy_pointed<type##_traits>(dst, src, tag))                                         \
    FROM_BUFF(type, pointed_from_buff<type##_traits>(dst, buff, size, tag))                        \
    ASSIGN(type, pointed_assigned<type##_traits>(dst, buff, size))
STORE_POINTED(timestamptz)
STORE_POINTED(uuid)
STORE_POINTED(bcd)
TO_BUFF(timestamptz,
        copy_to_buff(dst, size, src->vt.pv, timestamptz_traits::used, timestamptz_traits::size))
TO_BUFF(uuid, copy_to_buff(dst, size, src->vt.pv, uuid_traits::used, uuid_traits::size))
TO_BUFF(bcd, bcd_to_buff(dst, size, src))
FREE(uuid, true)
FREE(bcd, true)

// ---- Texts and binaries ----------------------------------------------------------------------

COPY(utf8, copy_utf8(pi, dst, src, maxExtraBytes, tag))
TO_BUFF(utf8, utf8_to_buff(pi, dst, size, src))
FROM_BUFF(utf8, run_from_buff(find_utf8, pi, dst, buff, size, tag))
ASSIGN(utf8, run_assigned(find_utf8, pi, dst, buff, size))
FREE(utf8, true)

COPY(binary, copy_binary(pi, dst, src, maxExtraBytes, tag))
TO_BUFF(binary, binary_to_buff(pi, dst, size, src))
FROM_BUFF(binary, binary_from_buff(pi, dst, buff, size, tag))
ASSIGN(binary, binary_assigned(pi, dst, buff, size))
FREE(binary, true)

COPY(varbinary, copy_varbinary(pi, dst, src, maxExtraBytes, tag))
TO_BUFF(varbinary, varbinary_to_buff(pi, dst, size, src))
FROM_BUFF(varbinary, run_from_buff(find_varbinary, pi, dst, buff, size, tag))
ASSIGN(varbinary, run_assigned(find_varbinary, pi, dst, buff, size))
FREE(varbinary, col != nullptr && col->len != 0)

// ---- Large objects
// -------------------------------------------------------------------------------

#define STORE_LOB(type)                                                                            \
    COPY(type, copy_lob(dst, src, maxExtraBytes, tag))                                             \
    OAK_RETCODE b_type_schema_copy_from_buff_##type(                                               \
        SCH_TYPE_INFO_C, OAK_VALUE *dst, const void *buff, size_t size, OSL_MEMTAG tag) {          \
        return lob_from_buff(dst, buff, size, tag);                                                \
    }                                                                                              \
    OAK_RETCODE b_type_schema_assign_from_buff_##type(SCH_TYPE_INFO_C, OAK_VALUE *dst,             \
                                                      const void *buff, size_t size) {             \
        return lob_assigned(dst, buff, size);                                                      \
    }                                                                                              \
    FREE(type, col != nullptr && col->len != 0)
B_TYPE_LIST_LOB(STORE_LOB)
