// Lengths and offsets for fewer bytes per UTF-8 character.
//
// Each function lays out the columns, or the elements, up to the one asked for,
// with text lengths recomputed. The walk over a table's columns includes large
// objects, whose alignment counts here, though they take no bytes.
#include "schema_mult.h"

#include "schema.h"
#include "schema_internal.h"

namespace {

using namespace oak::schema;

/// True where the stored layout is the answer: it allows 4 bytes a character, and
/// the system table is laid out by hand.
bool is_stored(SCH_TBL_INFO_C ti, uint32_t multiplier) {
    return multiplier == OAK_UTF8_CHAR_BYTES ||
           (ti->name != nullptr && strcmp(ti->name, "_sys_files") == 0);
}

/// Types whose declared length counts 4 bytes a character and a terminator.
bool is_utf8_text(OAK_TYPE type) {
    return type == OAK_CHAR || type == OAK_VARCHAR || type == OAK_WCHAR_UTF8 ||
           type == OAK_WVARCHAR_UTF8;
}

uint32_t length_of(SCH_COL_INFO_C ci, uint32_t multiplier) {
    SCH_TYPE_INFO_C pi = effective_type(ci);
    if (!is_utf8_text(pi->type)) {
        return pi->byte_len;
    }
    const uint32_t characters = pi->byte_len > 0 ? (pi->byte_len - 1u) / OAK_UTF8_CHAR_BYTES : 0;
    return characters * multiplier + 1;
}

uint32_t place(Layout *layout, SCH_COL_INFO_C ci, uint32_t length) {
    return static_cast<uint32_t>(layout->place(alignment_of(ci), length));
}

/// Lays out the active columns of a table, or the elements of a key.
Layout layout_of(SCH_TBL_INFO_C ti, uint32_t multiplier, uint32_t *nullable) {
    Layout layout;
    for (SCH_COL_INFO_C ci = nullptr;
         (ci = sch_iterate_cols_active(ti, ci, OAK_FORWARD)) != nullptr;) {
        place(&layout, ci, length_of(ci, multiplier));
        *nullable += sch_col_nullable(ci) ? 1u : 0u;
    }
    return layout;
}

Layout layout_of(SCH_KEY_INFO_C ki, uint32_t multiplier, uint32_t *nullable) {
    Layout layout;
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        SCH_COL_INFO_C ci = ki->elems[n].col;
        place(&layout, ci, length_of(ci, multiplier));
        *nullable += sch_col_nullable(ci) ? 1u : 0u;
    }
    return layout;
}

/// The whole length: values, has-value bytes, and the padding of the end.
template <class Handle>
uint32_t total_length(Handle object, uint32_t multiplier) {
    uint32_t nullable = 0;
    Layout layout = layout_of(object, multiplier, &nullable);
    layout.end += nullable;
    return static_cast<uint32_t>(layout.aligned_end());
}

template <class Handle>
uint32_t values_end(Handle object, uint32_t multiplier) {
    uint32_t unused = 0;
    return static_cast<uint32_t>(layout_of(object, multiplier, &unused).end);
}

} // namespace

uint32_t sch_col_offset_ex(SCH_COL_INFO_C ci, uint32_t off, uint32_t multiplier,
                           uint32_t *col_length) {
    if (col_length != nullptr) {
        *col_length = length_of(ci, multiplier);
    }
    return static_cast<uint32_t>(osl_align(off, alignment_of(ci)));
}

uint32_t sch_tbl_byte_len_ex(SCH_TBL_INFO_C ti, uint32_t multiplier) {
    return is_stored(ti, multiplier) ? ti->byte_len : total_length(ti, multiplier);
}

uint32_t sch_key_byte_len_with_mult(SCH_KEY_INFO_C ki, uint32_t multiplier) {
    return is_stored(ki->table, multiplier) ? ki->byte_len : total_length(ki, multiplier);
}

uint32_t sch_col_offset_with_mult(SCH_COL_INFO_C ci, uint32_t multiplier, uint32_t *col_length) {
    if (is_stored(ci->table, multiplier)) {
        return ci->ptr;
    }
    Layout layout;
    SCH_COL_INFO_C before = sch_iterate_cols_active(ci->table, nullptr, OAK_FORWARD);
    for (; before != nullptr && before != ci;
         before = sch_iterate_cols_active(ci->table, before, OAK_FORWARD)) {
        place(&layout, before, length_of(before, multiplier));
    }
    *col_length = length_of(ci, multiplier);
    return place(&layout, ci, *col_length);
}

uint32_t sch_elem_offset_with_mult(SCH_ELEM_INFO_C ei, uint32_t multiplier, uint32_t *col_length) {
    if (is_stored(ei->key->table, multiplier)) {
        return ei->ptr;
    }
    Layout layout;
    for (OAK_COL_INDEX n = 0; n < ei->ndx; ++n) {
        SCH_COL_INFO_C before = ei->key->elems[n].col;
        place(&layout, before, length_of(before, multiplier));
    }
    const uint32_t length = length_of(ei->col, multiplier);
    if (col_length != nullptr) {
        *col_length = length;
    }
    return place(&layout, ei->col, length);
}

uint32_t sch_tbl_has_value_offset_with_mult(SCH_TBL_INFO_C ti, uint32_t multiplier) {
    return is_stored(ti, multiplier) ? ti->has_value_off : values_end(ti, multiplier);
}

// Counts every element before this one, nullable or not: the test looks at the
// element asked for alone.
uint32_t sch_elem_has_value_offset_with_mult(SCH_ELEM_INFO_C ei, uint32_t multiplier) {
    if (is_stored(ei->key->table, multiplier)) {
        return ei->has_value_off;
    }
    const uint32_t before = ei->has_value_off != 0 ? ei->ndx : 0u;
    return values_end<SCH_KEY_INFO_C>(ei->key, multiplier) + before;
}
