// Finalization: offsets, has-value bytes, lengths, drawer lists, buffer
// descriptors and the names that are made from names.
//
// A table is finalized in passes, each of which needs what the one before left:
// column lengths and offsets, has-value bytes, keys (whose buffers are made of
// column lengths), sort columns, the list of drawers, the index of live columns,
// the row buffer. Key buffers are laid out a first time when a key is finalized,
// while column lengths may still be unknown, and again with the table.
//
// Offsets are reckoned in 64 bits and the last one is tested before it is stored:
// the longest columns that a table can declare come within a few bytes of 32 bits
// in sum.
#include "schema_layout.h"

#include "schema.h"
#include "schema_internal.h"

namespace {

using namespace oak::schema;

// ---- Lengths by type ---------------------------------------------------------

enum class Length : uint8_t {
    per_element, // `bytes` for each element
    fixed,       // `bytes`
    declared,    // the declared length and `bytes` more
    none         // no place in the column data
};

struct TypeLength {
    OAK_TYPE type;
    Length rule;
    uint16_t bytes;
};

constexpr TypeLength kTypeLengths[] = {
    {OAK_BOOL, Length::per_element, 4},
    {OAK_INT8, Length::per_element, 1},
    {OAK_UINT8, Length::per_element, 1},
    {OAK_INT16, Length::per_element, 2},
    {OAK_UINT16, Length::per_element, 2},
    {OAK_INT32, Length::per_element, 4},
    {OAK_UINT32, Length::per_element, 4},
    {OAK_INT64, Length::per_element, 8},
    {OAK_UINT64, Length::per_element, 8},
    {OAK_FLOAT, Length::per_element, 4},
    {OAK_DOUBLE, Length::per_element, 8},
    {OAK_BCD, Length::fixed, 37},
    {OAK_DATE, Length::fixed, 4},
    {OAK_TIME, Length::fixed, 4},
    {OAK_TIMETZ, Length::fixed, 8},
    {OAK_TIMESTAMP, Length::fixed, 8},
    {OAK_TIMESTAMPTZ, Length::fixed, 12},
    {OAK_ROWID, Length::fixed, 8},
    {OAK_UUID, Length::fixed, 16},
    {OAK_CHAR, Length::declared, 0},
    {OAK_VARCHAR, Length::declared, 0},
    {OAK_WCHAR, Length::declared, 0},
    {OAK_WCHAR_UTF8, Length::declared, 0},
    {OAK_WVARCHAR, Length::declared, 0},
    {OAK_WVARCHAR_UTF8, Length::declared, 0},
    {OAK_BINARY, Length::declared, 0},
    {OAK_VARBINARY, Length::declared, 2},
    {OAK_BLOB, Length::none, 0},
    {OAK_CLOB, Length::none, 0},
    {OAK_WCLOB, Length::none, 0},
    {OAK_WCLOB_UTF8, Length::none, 0},
};

uint32_t length_by_rule(const TypeLength &row, SCH_TYPE_INFO_C pi) {
    switch (row.rule) {
        case Length::per_element:
            return row.bytes * std::max<uint32_t>(pi->elems, 1);
        case Length::declared:
            return sch_type_length(pi) + row.bytes;
        default:
            return row.bytes;
    }
}

OAK_RETCODE set_type_length(SCH_TYPE_INFO pi) {
    for (const TypeLength &row : kTypeLengths) {
        if (row.type == pi->type) {
            const uint32_t length = length_by_rule(row, pi);
            if (length > UINT16_MAX) {
                return eBADCAT;
            }
            pi->byte_len = static_cast<uint16_t>(length);
            return sOKAY;
        }
    }
    return eBADCAT;
}

/// True for types whose values hold native wide characters.
bool is_native_wide(SCH_COL_INFO_C ci) {
    const OAK_TYPE type = effective_type(ci)->type;
    return type == OAK_WCHAR || type == OAK_WVARCHAR;
}

/// Marks a drawer whose items hold native wide characters.
void mark_wide(SCH_DRAWER_INFO di, SCH_COL_INFO_C ci) {
    if (di != nullptr && is_native_wide(ci)) {
        di->compact = OAK_TRUE;
    }
}

/// A column that can be laid out: it is there and its type is known.
bool has_known_type(SCH_COL_INFO_C ci) {
    return ci != nullptr && effective_type(ci)->type_info != nullptr;
}

// ---- Columns -----------------------------------------------------------------

OAK_RETCODE check_limits(SCH_TBL_INFO_C ti) {
    const bool fits =
        ti->next_col <= ti->max_col && ti->next_key <= ti->max_keys && ti->num_refs <= ti->next_ref;
    return fits ? sOKAY : eBADCAT;
}

/// The named column at an index, null for a hole or a dropped one.
SCH_COL_INFO named_column(SCH_TBL_INFO_C ti, OAK_COL_INDEX ndx) {
    SCH_COL_INFO ci = ti->cols[ndx];
    return ci != nullptr && ci->name != nullptr ? ci : nullptr;
}

OAK_RETCODE place_column(SCH_COL_INFO ci, Layout *layout) {
    SCH_TYPE_INFO pi = effective_type(ci);
    const OAK_RETCODE rc = set_type_length(pi);
    if (rc != sOKAY) {
        return rc;
    }
    if (pi->type_info == nullptr) {
        return eBADCAT;
    }
    if (!is_large_object(pi->type)) {
        ci->ptr = static_cast<uint32_t>(layout->place(pi->type_info->ext_align, pi->byte_len));
    }
    return sOKAY;
}

OAK_RETCODE place_values(SCH_TBL_INFO ti, Layout *layout) {
    for (OAK_COL_INDEX ndx = 0; ndx < ti->max_col; ++ndx) {
        if (SCH_COL_INFO ci = named_column(ti, ndx); ci != nullptr) {
            const OAK_RETCODE rc = place_column(ci, layout);
            if (rc != sOKAY) {
                return rc;
            }
            mark_wide(ti->drawer, ci);
        }
    }
    return sOKAY;
}

/// Gives each nullable column its byte behind the values, large objects too.
void place_has_value_bytes(SCH_TBL_INFO ti, Layout *layout) {
    for (OAK_COL_INDEX ndx = 0; ndx < ti->max_col; ++ndx) {
        if (SCH_COL_INFO ci = named_column(ti, ndx); ci != nullptr) {
            const bool nullable = sch_col_nullable(ci);
            ci->has_value_off = nullable ? static_cast<uint32_t>(layout->end++) : 0;
        }
    }
}

OAK_RETCODE layout_columns(SCH_TBL_INFO ti) {
    Layout layout;
    const OAK_RETCODE rc = place_values(ti, &layout);
    if (rc != sOKAY) {
        return rc;
    }
    const uint64_t values_end = layout.end;
    place_has_value_bytes(ti, &layout);
    if (layout.aligned_end() > UINT32_MAX) {
        return eBADCAT;
    }
    ti->has_value_off = static_cast<OAK_HAS_VALUE_OFFSET>(values_end);
    ti->byte_len = static_cast<uint32_t>(layout.aligned_end());
    return sOKAY;
}

// ---- Keys --------------------------------------------------------------------

OAK_RETCODE check_elements(SCH_KEY_INFO_C ki) {
    const bool complete = std::all_of(ki->elems, ki->elems + ki->num_elems,
                                      [](const _SCH_ELEM_INFO &ei) { return ei.col != nullptr; });
    return complete ? sOKAY : eBADCAT;
}

/// Lays out the key buffer; an element without a column or type is passed over.
OAK_RETCODE layout_key(SCH_KEY_INFO ki) {
    Layout layout;
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        _SCH_ELEM_INFO &ei = ki->elems[n];
        if (has_known_type(ei.col)) {
            ei.ptr = static_cast<uint32_t>(
                layout.place(alignment_of(ei.col), effective_type(ei.col)->byte_len));
        }
    }
    const uint64_t values_end = layout.end;
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        _SCH_ELEM_INFO &ei = ki->elems[n];
        const bool nullable = ei.col != nullptr && sch_col_nullable(ei.col);
        ei.has_value_off = nullable ? static_cast<uint32_t>(layout.end++) : 0;
    }
    if (layout.aligned_end() > UINT32_MAX) {
        return eBADCAT;
    }
    ki->has_value_off = static_cast<OAK_HAS_VALUE_OFFSET>(values_end);
    ki->byte_len = static_cast<uint32_t>(layout.aligned_end());
    return sOKAY;
}

/// What finalizing a key and finalizing its table have in common.
OAK_RETCODE complete_key(SCH_KEY_INFO ki) {
    OAK_RETCODE rc = layout_key(ki);
    if (rc != sOKAY) {
        return rc;
    }
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        mark_wide(ki->drawer, ki->elems[n].col);
    }
    rc = sch_key_finalize_name(ki);
    if (rc == sOKAY && ki->method == OAK_KEY_METHOD_HASH) {
        sch_bucket_generate_buffer_info(ki);
    }
    return rc;
}

OAK_RETCODE finalize_keys(SCH_TBL_INFO ti) {
    OAK_RETCODE rc = sOKAY;
    for (SCH_KEY_INFO ki = nullptr;
         rc == sOKAY && (ki = sch_iterate_keys(ti, ki, OAK_FORWARD)) != nullptr;) {
        if (ki->num_elems > 0) {
            rc = check_elements(ki);
            if (rc == sOKAY) {
                rc = complete_key(ki);
            }
        }
    }
    return rc;
}

/// Opens a place for the next AVL number.
OAK_RETCODE grow_avls(SCH_TBL_INFO ti) {
    constexpr unsigned kStep = 5;
    if (ti->next_avl < ti->max_avls) {
        return sOKAY;
    }
    if (ti->next_avl == OAK_INDEX_NONE) {
        return eRANGE;
    }
    const unsigned wanted = std::min<unsigned>(ti->next_avl + kStep, OAK_INDEX_NONE);
    return sch_tbl_set_max_avls(ti, static_cast<OAK_KEY_INDEX>(wanted));
}

/// Gives an AVL key its number. A key without elements takes up a number, but
/// is neither stored nor counted.
OAK_RETCODE number_avl_key(SCH_KEY_INFO ki) {
    SCH_TBL_INFO ti = ki->table;
    const OAK_RETCODE rc = grow_avls(ti);
    if (rc != sOKAY) {
        return rc;
    }
    ki->avl_ndx = ti->next_avl++;
    ti->avls[ki->avl_ndx] = ki->num_elems > 0 ? ki : nullptr;
    ti->num_avls = static_cast<OAK_KEY_INDEX>(ti->num_avls + (ki->num_elems > 0));
    return sOKAY;
}

// ---- References --------------------------------------------------------------

OAK_RETCODE check_sort_columns(SCH_REF_INFO_C ri) {
    const bool complete = std::all_of(ri->sort_cols, ri->sort_cols + ri->num_sort_cols,
                                      [](const _SCH_SORT_INFO &si) { return si.col != nullptr; });
    return complete ? sOKAY : eBADCAT;
}

/// Lays out the sort buffer. Unlike a key's, it is not aligned at its end, and an
/// element of the primary key that is not declared NOT NULL has a has-value byte.
OAK_RETCODE layout_sort_columns(SCH_REF_INFO ri) {
    Layout layout;
    for (OAK_COL_INDEX n = 0; n < ri->num_sort_cols; ++n) {
        _SCH_SORT_INFO &si = ri->sort_cols[n];
        if (!has_known_type(si.col)) {
            return eBADCAT;
        }
        si.ptr = static_cast<uint32_t>(
            layout.place(alignment_of(si.col), effective_type(si.col)->byte_len));
        mark_wide(ri->drawer, si.col);
    }
    for (OAK_COL_INDEX n = 0; n < ri->num_sort_cols; ++n) {
        _SCH_SORT_INFO &si = ri->sort_cols[n];
        si.has_value_off = si.col->not_null ? 0 : static_cast<uint32_t>(layout.end++);
    }
    if (layout.end > UINT32_MAX) {
        return eBADCAT;
    }
    ri->sort_byte_len = static_cast<uint32_t>(layout.end);
    return sOKAY;
}

/// Goes by the number of references, not by the limit of their indexes.
OAK_RETCODE finalize_sort_columns(SCH_TBL_INFO ti) {
    OAK_RETCODE rc = sOKAY;
    for (OAK_REF_INDEX n = 0; rc == sOKAY && n < ti->num_refs; ++n) {
        if (ti->refs[n] != nullptr) {
            rc = layout_sort_columns(ti->refs[n]);
        }
    }
    return rc;
}

// ---- The table's drawers and live columns ------------------------------------

/// Calls `visit` for each drawer of the table: its own, those of the keys, of the
/// references and of the large objects, in index order.
template <class Visit>
void visit_drawers(SCH_TBL_INFO_C ti, Visit visit) {
    const auto visit_existing = [&visit](SCH_DRAWER_INFO di) {
        if (di != nullptr) {
            visit(di);
        }
    };
    visit_existing(ti->drawer);
    for (SCH_KEY_INFO_C ki = nullptr; (ki = sch_iterate_keys(ti, ki, OAK_FORWARD)) != nullptr;) {
        visit_existing(ki->drawer);
    }
    for (SCH_REF_INFO_C ri = nullptr; (ri = sch_iterate_refs(ti, ri, OAK_FORWARD)) != nullptr;) {
        visit_existing(ri->drawer);
    }
    for (SCH_COL_INFO_C ci = nullptr;
         (ci = sch_iterate_lob_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
        visit_existing(ci->drawer);
    }
}

OAK_RETCODE collect_drawers(SCH_TBL_INFO ti) {
    OAK_DRAWER count = 0;
    visit_drawers(ti, [&count](SCH_DRAWER_INFO) { ++count; });
    SCH_DRAWER_INFO *drawers = nullptr;
    const OAK_RETCODE rc = get_records(count, tag_of(ti), &drawers);
    if (rc != sOKAY) {
        return rc;
    }
    OAK_DRAWER position = 0;
    visit_drawers(ti, [drawers, &position](SCH_DRAWER_INFO di) {
        di->tbl_ndx = position;
        drawers[position++] = di;
    });
    release(&ti->drawers, tag_of(ti));
    ti->drawers = drawers;
    ti->num_drawers = ti->max_drawers = count;
    return sOKAY;
}

OAK_RETCODE fill_active_index(SCH_TBL_INFO ti) {
    OAK_COL_INDEX found = 0;
    for (OAK_COL_INDEX ndx = 0; ndx < ti->max_col; ++ndx) {
        if (named_column(ti, ndx) != nullptr) {
            if (found == ti->num_cols) {
                return eBADCAT;
            }
            ti->active_ndx[found++] = ndx;
        }
    }
    return found == ti->num_cols ? sOKAY : eBADCAT;
}

/// Without dropped columns a column's index is its position among the live ones,
/// and there is no such index.
OAK_RETCODE index_active_columns(SCH_TBL_INFO ti) {
    release(&ti->active_ndx, tag_of(ti));
    if (ti->num_cols >= ti->next_col) {
        return sOKAY;
    }
    // One entry more than columns: a table whose columns were all dropped has an
    // index too, an empty one.
    const OAK_RETCODE rc = get_records(ti->num_cols + 1u, tag_of(ti), &ti->active_ndx);
    return rc == sOKAY ? fill_active_index(ti) : rc;
}

OAK_RETCODE list_row_columns(SCH_TBL_INFO ti) {
    SCH_ROW_COLUMN *columns = nullptr;
    const OAK_RETCODE rc = get_records(ti->num_cols, tag_of(ti), &columns);
    if (rc == sOKAY) {
        release(&ti->row_columns, tag_of(ti));
        ti->row_columns = columns;
        ti->num_row_columns = ti->num_cols;
        refresh_row_columns(ti);
    }
    return rc;
}

// ---- Names -------------------------------------------------------------------

const char *text_or_empty(const char *text) {
    return text != nullptr ? text : "";
}

/// The names of the key's columns, joined by "_", in a new text.
OAK_RETCODE join_column_names(SCH_KEY_INFO_C ki, const char **out) {
    size_t size = 0;
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        size += strlen(text_or_empty(ki->elems[n].col->name)) + 1;
    }
    void *block = nullptr;
    const OAK_RETCODE rc =
        osl_getMem_rc(size, tag_of(ki), OSL_MEM_PLAIN, nullptr, &block, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    char *end = static_cast<char *>(block);
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        end = stpcpy(end, text_or_empty(ki->elems[n].col->name));
        *end++ = '_';
    }
    end[-1] = '\0';
    *out = static_cast<const char *>(block);
    return sOKAY;
}

/// Turns the ASCII letters of a symbol to upper case, whatever the locale.
void to_upper(char *text) {
    for (; *text != '\0'; ++text) {
        if (*text >= 'a' && *text <= 'z') {
            *text = static_cast<char>(*text - 'a' + 'A');
        }
    }
}

/// What became of a symbol text of `length` bytes.
OAK_RETCODE finish_symbol(char *text, size_t size, int32_t length, OAK_BOOL_T upper_case) {
    if (length < 0 || static_cast<size_t>(length) >= size) {
        return sTRUNCATE;
    }
    if (upper_case) {
        to_upper(text);
    }
    return sOKAY;
}

} // namespace

// ---- Finalization ------------------------------------------------------------

OAK_RETCODE sch_col_finalize(SCH_COL_INFO ci) {
    if (ci == nullptr) {
        return eINVNULLARG;
    }
    if (ci->table == nullptr || ci->table->sch == nullptr) {
        return eBADCAT;
    }
    const OAK_TYPE type = effective_type(ci)->type;
    if (ci->domain == nullptr && type == OAK_NOVAL) {
        return eBADCAT;
    }
    return is_large_object(type) == (ci->drawer != nullptr) ? sOKAY : eBADCAT;
}

OAK_RETCODE sch_tbl_finalize(SCH_TBL_INFO ti, OAK_BOOL_T) {
    constexpr OAK_RETCODE (*kPasses[])(SCH_TBL_INFO) = {layout_columns,        finalize_keys,
                                                        finalize_sort_columns, collect_drawers,
                                                        index_active_columns,  list_row_columns};
    OAK_RETCODE rc = changeable(ti);
    if (rc == sOKAY) {
        rc = check_limits(ti);
    }
    for (const auto pass : kPasses) {
        if (rc != sOKAY) {
            return rc;
        }
        rc = pass(ti);
    }
    if (rc == sOKAY) {
        sch_tbl_generate_buffer_info(ti);
    }
    return rc;
}

OAK_RETCODE sch_key_finalize(SCH_KEY_INFO ki) {
    OAK_RETCODE rc = changeable(ki);
    if (rc == sOKAY) {
        rc = check_elements(ki);
    }
    if (rc == sOKAY && ki->method == OAK_KEY_METHOD_AVL) {
        rc = number_avl_key(ki);
    }
    return rc == sOKAY ? complete_key(ki) : rc;
}

void sch_key_finalize_offsets(SCH_KEY_INFO ki) {
    if (changeable(ki) == sOKAY) {
        OAK_IGNORE_STATUS(layout_key(ki), "a key that is too long fails with its table");
    }
}

OAK_RETCODE sch_key_finalize_name(SCH_KEY_INFO ki) {
    OAK_RETCODE rc = changeable(ki);
    if (rc != sOKAY || ki->name != nullptr || ki->num_elems == 0) {
        return rc;
    }
    rc = check_elements(ki);
    if (rc != sOKAY) {
        return rc;
    }
    const char *name = nullptr;
    rc = join_column_names(ki, &name);
    if (rc == sOKAY) {
        ki->name = name;
        ki->inline_key = OAK_TRUE;
    }
    return rc;
}

OAK_RETCODE sch_ref_finalize(SCH_REF_INFO ri) {
    OAK_RETCODE rc = changeable(ri);
    if (rc == sOKAY) {
        rc = check_sort_columns(ri);
    }
    if (rc == sOKAY) {
        rc = sch_ref_finalize_name(ri);
    }
    if (rc != sOKAY) {
        return rc;
    }
    for (OAK_COL_INDEX n = 0; n < ri->num_cols; ++n) {
        if (ri->cols[n] != nullptr) {
            rc = sch_col_set_ref(ri->cols[n], ri->ndx);
        }
    }
    return rc;
}

OAK_RETCODE sch_ref_finalize_name(SCH_REF_INFO ri) {
    OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY || ri->name != nullptr || ri->num_cols == 0) {
        return rc;
    }
    if (ri->cols[0] == nullptr) {
        return eBADCAT;
    }
    char *name = nullptr;
    rc = osl_makeStrVA_rc(__FILE__, __LINE__, &name, tag_of(ri), "%s_%s",
                          text_or_empty(ri->table->name), text_or_empty(ri->cols[0]->name));
    if (rc == sOKAY) {
        ri->name = name;
    }
    return rc;
}

// The sort columns are walked once for all referencing columns: what one of them
// was compared with, the next does not see again.
void sch_ref_finalize_locking(SCH_REF_INFO ri) {
    if (changeable(ri) != sOKAY) {
        return;
    }
    if (ri->on_update != OAK_REF_ACTION_CASCADE) {
        ri->requires_write = ri->on_update == OAK_REF_ACTION_SET_NULL ? OAK_TRUE : OAK_FALSE;
        return;
    }
    OAK_COL_INDEX sort = 0;
    for (OAK_COL_INDEX n = 0; n < ri->num_cols && !ri->requires_write; ++n) {
        SCH_COL_INFO_C ci = ri->cols[n];
        if (ci != nullptr && (ci->usage & OAK_COL_USAGE_KEY) != 0) {
            ri->requires_write = OAK_TRUE;
        }
        while (ci != nullptr && sort < ri->num_sort_cols && !ri->requires_write) {
            ri->requires_write = ri->sort_cols[sort++].col == ci ? OAK_TRUE : OAK_FALSE;
        }
    }
}

OAK_BOOL_T sch_ref_name_default(SCH_REF_INFO_C ri) {
    SCH_COL_INFO_C first = sch_ref_col(ri, 0);
    if (ri->name == nullptr || first == nullptr) {
        return OAK_FALSE;
    }
    const char *table = text_or_empty(ri->table->name);
    const size_t length = strlen(table);
    const bool same = strncasecmp(ri->name, table, length) == 0 && ri->name[length] == '_' &&
                      compare_names(ri->name + length + 1, first->name) == 0;
    return same ? OAK_TRUE : OAK_FALSE;
}

// ---- Buffer descriptors ------------------------------------------------------

void sch_tbl_generate_buffer_info(SCH_TBL_INFO ti) {
    // Sizes of one AVL record, one join record and one status word, as stored.
    constexpr size_t kAvlBytes = 24;
    constexpr size_t kJoinBytes = 8;
    constexpr size_t kStatusBytes = 4;
    if (changeable(ti) != sOKAY) {
        return;
    }
    OAK_ROW_BUFFER_INFO &info = ti->bufferInfo;
    info.num_avls = ti->num_avls;
    info.num_refs = ti->num_refs;
    info.num_cols = ti->num_cols;
    info.avl_offset = 0;
    info.ref_offset = osl_alignBufferSize(kAvlBytes * info.num_avls);
    info.col_status_offset = osl_alignBufferSize(info.ref_offset + kJoinBytes * info.num_refs);
    info.col_data_offset =
        osl_alignBufferSize(info.col_status_offset + kStatusBytes * info.num_cols);
    info.col_data_size = ti->byte_len;
    info.row_buffer_size = info.col_data_offset + info.col_data_size;
}

void sch_bucket_generate_buffer_info(SCH_KEY_INFO ki) {
    // Sizes of one entry record and one slot, as stored.
    constexpr size_t kEntryBytes = 40;
    constexpr size_t kSlotBytes = sizeof(OAK_SLOT);
    if (changeable(ki) != sOKAY) {
        return;
    }
    OAK_BUCKET_BUFFER_INFO &info = ki->bufferInfo.bucket;
    info.key_byte_len = ki->byte_len;
    info.bucket_len = osl_alignBufferSize(OAK_BUCKET_ENTRIES * kEntryBytes);
    info.data_len = osl_alignBufferSize(OAK_BUCKET_ENTRIES * info.key_byte_len);
    info.id_len = osl_alignBufferSize(OAK_BUCKET_ENTRIES * kSlotBytes);
    info.buffer_len = info.bucket_len + info.data_len + info.id_len;
}

void sch_tbl_get_buffer_info(SCH_TBL_INFO_C ti, OAK_ROW_BUFFER_INFO *info) {
    *info = ti->bufferInfo;
}

void sch_bucket_get_buffer_info(SCH_KEY_INFO_C ki, OAK_BUCKET_BUFFER_INFO *info) {
    *info = ki->bufferInfo.bucket;
}

// ---- Symbol texts ------------------------------------------------------------

OAK_RETCODE sch_tbl_enum_text(SCH_TBL_INFO_C ti, char *text, size_t size) {
    if (ti == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    const int32_t length = osl_snprintf(text, size, "TABLE_%s", text_or_empty(ti->name));
    return finish_symbol(text, size, length, OAK_TRUE);
}

OAK_RETCODE sch_col_enum_text(SCH_COL_INFO_C ci, char *text, size_t size) {
    if (ci == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    const int32_t length = osl_snprintf(text, size, "COL_%s_%s", text_or_empty(ci->table->name),
                                        text_or_empty(ci->name));
    return finish_symbol(text, size, length, OAK_TRUE);
}

OAK_RETCODE sch_key_enum_text(SCH_KEY_INFO_C ki, char *text, size_t size) {
    if (ki == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    const int32_t length = osl_snprintf(text, size, "KEY_%s_%s", text_or_empty(ki->table->name),
                                        text_or_empty(ki->name));
    return finish_symbol(text, size, length, OAK_TRUE);
}

OAK_RETCODE sch_ref_enum_text(SCH_REF_INFO_C ri, char *text, size_t size) {
    if (ri == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    const int32_t length = osl_snprintf(text, size, "REF_%s", text_or_empty(ri->name));
    return finish_symbol(text, size, length, OAK_TRUE);
}

OAK_RETCODE sch_key_data_type_text(SCH_KEY_INFO_C ki, OAK_BOOL_T upperCase, char *text,
                                   size_t byteLen) {
    if (ki == nullptr || text == nullptr) {
        return eINVNULLARG;
    }
    const int32_t length = osl_snprintf(text, byteLen, "%s_%s_KEY", text_or_empty(ki->table->name),
                                        text_or_empty(ki->name));
    return finish_symbol(text, byteLen, length, upperCase);
}
