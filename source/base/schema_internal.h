// Internal to the schema: the records behind the schema's handles.
//
// Law: nothing outside the schema's own sources (schema*.cpp) changes a field. Item
// formats read them, by schema_view_internal.h where a rule goes with a field.
// Every record and string of a schema lies under the schema's own tag, so that
// freeing the tag frees the schema; triggers and their arrays alone lie under
// the tag that their caller gave. Arrays of pointers are indexed by the
// object's own index and may hold null entries: holes left by drops or by
// indexes that were never used.
//
// All records are born zero-filled, so zero is every field's first value.
#ifndef SCHEMA_INTERNAL_H
#define SCHEMA_INTERNAL_H

#include <algorithm>
#include <cstring>
#include <strings.h>

#include "base_internal.h"
#include "ll.h"
#include "oakvaluetypes.h"
#include "schema_handles.h"
#include "schema_structs.h"
#include "schema_types.h"

namespace oak::schema {
using oak::is_large_object;
using oak::type_class;
} // namespace oak::schema

// ---- A column's or a domain's type -------------------------------------------

struct SCH_CHAR_COL_INFO {
    uint16_t len; // bytes, terminator included
    OAK_BOOL_T use_locale;
    OSL_LOCALE locale;
};

struct SCH_BINARY_COL_INFO {
    uint16_t len;
};

struct SCH_TIME_COL_INFO {
    uint8_t prec;
};

struct SCH_DECIMAL_COL_INFO {
    uint8_t prec;
    uint8_t scale;
};

struct _SCH_TYPE_INFO {
    OAK_TYPE type;          // 0: not set yet
    uint16_t elems;         // 0: a scalar
    uint16_t byte_len;      // in the column data; set by finalization
    const char *check_str;  // check expression
    const char *check_name; // its constraint name
    const OAK_TYPE_INFO *type_info;
    SCH_INFO sch; // null in the system table's columns
    union {       // by the class of `type`
        SCH_CHAR_COL_INFO c;
        SCH_BINARY_COL_INFO b;
        SCH_TIME_COL_INFO t;
        SCH_DECIMAL_COL_INFO d;
    } x;
};

// ---- The schema --------------------------------------------------------------

struct _SCH_INFO {
    const char *name;
    OAK_BOOL_T use_locale;   // a locale was set
    const char *locale_text; // its name as given
    OSL_LOCALE locale;
    uint32_t catver;
    uint32_t dbver;
    OAK_ENC_TYPE encryption;
    OAK_DRAWER max_drawer;  // drawer numbers lie below it
    OAK_DRAWER num_drawers; // as counted by the catalog, the 5 reserved included
    OAK_DRAWER next_drawer; // numbers in use lie below it
    OAK_DOM_INDEX num_domains;
    OAK_DOM_INDEX next_domain; // capacity of `domains`
    OAK_TBL_INDEX max_table;   // capacity of `tables`
    OAK_TBL_INDEX num_tables;  // system table included
    OAK_TBL_INDEX next_table;
    uint32_t num_columns; // nothing sets it; compared between schemas
    uint32_t num_refs;
    // Drawer numbers are 32 bits wide and may lie far apart, so this array
    // alone is packed: the drawers that exist, in ascending order of number.
    SCH_DRAWER_INFO *drawers;
    OAK_DRAWER drawers_used; // entries of `drawers`
    SCH_DOMAIN_INFO *domains;
    SCH_TBL_INFO *tables;       // entry 0 is the system table
    SCH_TBL_INFO *tablesByName; // user tables in the order of their names, lazy
    OAK_TBL_INDEX tablesByNameUsed;
    B_LL llBlobCols; // all large-object columns, lazy
    B_LL llKeys;     // all keys of user tables, lazy
    OSL_MEMTAG tag;  // the schema's own
};

struct _SCH_DOMAIN_INFO {
    OAK_DOM_INDEX ndx;
    SCH_INFO sch;
    const char *name;
    OAK_VALUE def;
    const char *defstr;
    uint16_t width;
    const char *format;
    _SCH_TYPE_INFO type;
};

struct _SCH_DRAWER_INFO {
    OAK_DRAWER ndx;     // number in the schema
    OAK_DRAWER tbl_ndx; // position in the table's `drawers`
    SCH_INFO sch;       // null in the system drawers
    OAK_DRAWER_TYPE type;
    union { // the object stored, by `type`; null until linked
        SCH_TBL_INFO ti;
        SCH_KEY_INFO ki;
        SCH_REF_INFO ri;
        SCH_COL_INFO ci;
        const void *any; // whichever it is
    } obj;
    OAK_BOOL_T compact; // items hold a native wide character
    OAK_TBL_INDEX src_tblid;
    OAK_INDEX src_id; // key, reference or column within the source table
};

// ---- A table -----------------------------------------------------------------

/// What becomes of a column in the compact stream of a row.
enum class StreamForm : uint8_t {
    // Scalars of these forms the item formats handle in place.
    int8,
    uint8,
    int16,
    uint16,
    int32, // booleans too, which take four bytes in a record buffer
    uint32,
    int64,
    uint64,
    float32,
    float64,
    timetz,
    timestamp,
    timestamptz,
    decimal,
    uuid,
    text,
    by_type,      // as the type's own operations write it
    large_object, // a mark in its place; all above are stored, all below never
    rowid,        // the row's own number
    foreign_key,  // reached through the join
    absent,       // no such column, or a dropped one
};

/// A column as rows see it, for each of them passes over every one.
struct SCH_ROW_COLUMN {
    SCH_COL_INFO_C ci;
    uint32_t ptr;
    OAK_HAS_VALUE_OFFSET has_value_off;
    OAK_COL_INDEX ndx;
    uint16_t byte_len;
    StreamForm form;
    uint8_t prec; // of a decimal
    uint8_t scale;
};
static_assert(sizeof(SCH_ROW_COLUMN) == 24);

struct _SCH_TBL_INFO {
    OAK_TBL_INDEX ndx;
    SCH_INFO sch; // null in the system table
    const char *name;
    const char *check_str;
    const char *check_name;
    OAK_TABLE_TYPE type;
    OAK_SLOT max_rows;
    SCH_DRAWER_INFO drawer;
    OAK_COL_INDEX num_cols; // live columns
    OAK_COL_INDEX next_col; // indexes in use lie below it
    OAK_COL_INDEX max_col;  // capacity of `cols`
    SCH_COL_INFO *cols;
    OAK_COL_INDEX *active_ndx; // live position to index, when columns were dropped
    OAK_KEY_INDEX max_keys;    // capacity of `keys`
    OAK_KEY_INDEX num_keys;
    OAK_KEY_INDEX next_key;
    SCH_KEY_INFO *keys;
    SCH_KEY_INFO pkey;
    OAK_REF_INDEX num_refs;
    OAK_REF_INDEX next_ref; // capacity of `refs` as well
    SCH_REF_INFO *refs;
    OAK_KEY_INDEX num_avls;
    OAK_KEY_INDEX max_avls; // capacity of `avls`
    OAK_KEY_INDEX next_avl;
    SCH_KEY_INFO *avls;
    OAK_DRAWER num_drawers;
    OAK_DRAWER max_drawers; // capacity of `drawers`: as many as finalization found
    SCH_DRAWER_INFO *drawers;
    OAK_REF_INDEX num_owns; // references from any table that point at this one
    OAK_REF_INDEX max_owns; // capacity of `owners`
    OAK_REF_INDEX next_own;
    SCH_REF_INFO *owners;
    OAK_HAS_VALUE_OFFSET has_value_off; // where the has-value bytes begin
    uint32_t byte_len;                  // column data of a row
    OAK_ROW_BUFFER_INFO bufferInfo;
    SCH_ROW_COLUMN *row_columns;   // by live position: what rows need of each column
    OAK_COL_INDEX num_row_columns; // `num_cols` of the last finalization
    OAK_TBL_INDEX nameNdx;         // position in `tablesByName`
    OAK_TBL_INDEX offset;          // position among live tables, from 1
    SCH_TRIG_INFO triggers;        // ascending by creation time
};

struct _SCH_COL_INFO {
    OAK_COL_INDEX ndx;
    SCH_TBL_INFO table;
    const char *name; // null: a dropped column
    OAK_BOOL_T not_null;
    const char *not_null_cname;
    _SCH_TYPE_INFO type; // unused while `domain` is set
    SCH_DOMAIN_INFO domain;
    OAK_VALUE def;
    const char *defstr;
    uint16_t width;
    const char *format;
    OAK_KEY_INDEX keyid; // OAK_INDEX_NONE without one
    SCH_KEY_INFO key;
    uint16_t usage; // OAK_COL_USAGE_KEY and kin
    SCH_DRAWER_INFO drawer;
    SCH_REF_INFO ref;    // of a foreign key column, with the table and
    SCH_TBL_INFO reftab; // column that it refers to
    SCH_COL_INFO refcol;
    OAK_KEY_INDEX num_keys;
    SCH_KEY_INFO *keys;
    OAK_REF_INDEX num_refs;
    SCH_REF_INFO *refs;
    OAK_REF_INDEX num_sortrefs;
    SCH_REF_INFO *sortrefs;
    uint32_t ptr;                       // where the value lies in the column data
    OAK_HAS_VALUE_OFFSET has_value_off; // of its has-value byte; 0: it has none
    uint32_t nameNdx;                   // nothing sets it
};

// ---- Keys and references -----------------------------------------------------

struct _SCH_ELEM_INFO {
    OAK_COL_INDEX ndx; // position in the key
    SCH_KEY_INFO key;
    SCH_COL_INFO col;
    OAK_DIRECTION dir;
    uint32_t ptr; // in the key buffer
    OAK_HAS_VALUE_OFFSET has_value_off;
};

struct _SCH_KEY_INFO {
    OAK_KEY_INDEX ndx;
    SCH_TBL_INFO table;
    const char *name;
    OAK_KEY_TYPE type;
    OAK_KEY_METHOD method;
    OAK_BOOL_T restr;
    SCH_DRAWER_INFO drawer;
    OAK_COL_INDEX num_elems;
    _SCH_ELEM_INFO *elems; // by value
    uint32_t refcount;
    uint32_t byte_len; // one key buffer
    OAK_HAS_VALUE_OFFSET has_value_off;
    union {
        OAK_BUCKET_BUFFER_INFO bucket; // of a hash key
    } bufferInfo;
    OAK_BOOL_T inline_key; // the name was generated
    const char *type_text; // nothing sets it
    OAK_KEY_INDEX avl_ndx; // position in the table's `avls`
};

struct _SCH_SORT_INFO {
    OAK_COL_INDEX ndx;
    SCH_REF_INFO ref;
    SCH_COL_INFO col;
    OAK_DIRECTION order;
    uint32_t ptr; // in the sort buffer
    OAK_HAS_VALUE_OFFSET has_value_off;
};

struct _SCH_REF_INFO {
    OAK_REF_INDEX ndx;       // in the holding table's `refs`
    OAK_REF_INDEX owner_ndx; // in the referred table's `owners`
    SCH_TBL_INFO table;      // the holding table
    const char *name;
    SCH_TBL_INFO reftab; // the table referred to
    SCH_KEY_INFO refkey; // its key referred to
    SCH_DRAWER_INFO drawer;
    OAK_REF_ACTION on_update;
    OAK_REF_ACTION on_delete;
    OAK_COL_INDEX num_cols;
    SCH_COL_INFO *cols; // null entries: not linked yet
    OAK_COL_INDEX num_sort_cols;
    _SCH_SORT_INFO *sort_cols; // by value
    uint32_t sort_byte_len;    // one sort buffer
    OAK_BOOL_T requires_write;
    OAK_COLUMN_VALUE *ref_col_vals; // one for each of `cols`
};

// ---- Triggers ----------------------------------------------------------------

struct _SCH_TRIG_COL_INFO {
    OAK_TRC_INDEX ndx;
    OAK_COL_INDEX colid;
    uint16_t varno;
    OAK_TRIG_COL_REF ref;
    OAK_VALUE *val;
};

struct _SCH_TRIG_INFO {
    SCH_TRIG_INFO next;
    const char *name;
    uint16_t sqltrig;
    uint64_t crtime;
    OAK_TRIG_TIMING timing;
    OAK_TRIG_EVENT event;
    uint16_t num_updcols;
    uint16_t max_updcols; // entries of `updcols`
    OAK_COL_INDEX *updcols;
    OAK_TRC_INDEX num_colrefs;
    OAK_TRC_INDEX max_colrefs;   // entries of `colrefs`
    _SCH_TRIG_COL_INFO *colrefs; // by value
};

// ---- What the schema's sources share -----------------------------------------

namespace oak::schema {

/// The type that counts: the domain's where the column has a domain.
inline SCH_TYPE_INFO effective_type(SCH_COL_INFO ci) {
    return ci->domain != nullptr ? &ci->domain->type : &ci->type;
}
inline SCH_TYPE_INFO_C effective_type(SCH_COL_INFO_C ci) {
    return effective_type(const_cast<SCH_COL_INFO>(ci));
}

/// The mutable handle behind a read-only one. Lookups and iterators take
/// read-only parents and hand out the object's own handle; the lazy caches are
/// filled under read-only handles; and some drops take one.
template <class Record>
Record *own_handle(const Record *object) {
    return const_cast<Record *>(object);
}

// Limits of the indexes in use. Counts and limits are set from outside, so no
// walk goes by them alone: none leaves the array.
inline OAK_COL_INDEX column_limit(SCH_TBL_INFO_C ti) {
    return std::min(ti->next_col, ti->max_col);
}
inline OAK_KEY_INDEX key_limit(SCH_TBL_INFO_C ti) {
    return std::min(ti->next_key, ti->max_keys);
}
inline OAK_REF_INDEX owner_limit(SCH_TBL_INFO_C ti) {
    return std::min(ti->next_own, ti->max_owns);
}

/// What stands at an index, null at or beyond the limit.
template <class Record>
Record *entry(Record *const *array, uint32_t limit, uint32_t ndx) {
    return ndx < limit ? array[ndx] : nullptr;
}

/// The object's index, or the number that means none.
template <class Record>
OAK_INDEX index_or_none(const Record *object) {
    return object != nullptr ? object->ndx : OAK_INDEX_NONE;
}
inline OAK_DRAWER number_or_none(SCH_DRAWER_INFO_C di) {
    return di != nullptr ? di->ndx : OAK_DRAWER_NONE;
}

// ---- May it be changed -------------------------------------------------------

// The records of the system table are constant and their `sch` is null: every
// setter, finalization and drop asks here first.
inline OAK_RETCODE changeable(const _SCH_INFO *sch) {
    return sch != nullptr ? sOKAY : eINVNULLARG;
}
inline OAK_RETCODE belongs_to(const _SCH_INFO *sch) {
    return sch != nullptr ? sOKAY : eBADCAT;
}
inline OAK_RETCODE changeable(const _SCH_TYPE_INFO *pi) {
    return pi != nullptr ? belongs_to(pi->sch) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_DOMAIN_INFO *mi) {
    return mi != nullptr ? belongs_to(mi->sch) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_DRAWER_INFO *di) {
    return di != nullptr ? belongs_to(di->sch) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_TBL_INFO *ti) {
    return ti != nullptr ? belongs_to(ti->sch) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_COL_INFO *ci) {
    return ci != nullptr ? changeable(ci->table) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_KEY_INFO *ki) {
    return ki != nullptr ? changeable(ki->table) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_ELEM_INFO *ei) {
    return ei != nullptr ? changeable(ei->key) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_REF_INFO *ri) {
    return ri != nullptr ? changeable(ri->table) : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_TRIG_INFO *trgi) {
    return trgi != nullptr ? sOKAY : eINVNULLARG;
}
inline OAK_RETCODE changeable(const _SCH_TRIG_COL_INFO *tci) {
    return tci != nullptr ? sOKAY : eINVNULLARG;
}

// ---- The schema's memory -----------------------------------------------------

inline OSL_MEMTAG tag_of(SCH_INFO_C sch) {
    return sch->tag;
}
inline OSL_MEMTAG tag_of(SCH_TYPE_INFO_C pi) {
    return pi->sch->tag;
}
inline OSL_MEMTAG tag_of(SCH_DOMAIN_INFO_C mi) {
    return mi->sch->tag;
}
inline OSL_MEMTAG tag_of(SCH_TBL_INFO_C ti) {
    return ti->sch->tag;
}
inline OSL_MEMTAG tag_of(SCH_COL_INFO_C ci) {
    return ci->table->sch->tag;
}
inline OSL_MEMTAG tag_of(SCH_KEY_INFO_C ki) {
    return ki->table->sch->tag;
}
inline OSL_MEMTAG tag_of(SCH_REF_INFO_C ri) {
    return ri->table->sch->tag;
}

/// A zeroed block for `count` records; null for none.
template <class Record>
OAK_RETCODE get_records(uint32_t count, OSL_MEMTAG tag, Record **out,
                        const char *file = __builtin_FILE(), int32_t line = __builtin_LINE()) {
    void *block = nullptr;
    if (count > 0) {
        const OAK_RETCODE rc =
            osl_getMem_rc(count * sizeof(Record), tag, OSL_MEM_ZERO, nullptr, &block, file, line);
        if (rc != sOKAY) {
            return rc;
        }
    }
    *out = static_cast<Record *>(block);
    return sOKAY;
}

/// sch_new_size_input for a typed array.
template <class Item>
OAK_RETCODE resize(Item **array, uint32_t have, uint32_t want, OSL_MEMTAG tag) {
    void *block = *array;
    const OAK_RETCODE rc = sch_new_size_input(have, want, sizeof(Item), &block, tag);
    if (rc == sOKAY) {
        *array = static_cast<Item *>(block);
    }
    return rc;
}

/// Frees a block or text and forgets it.
template <class Item>
void release(Item **place, OSL_MEMTAG tag) {
    OSL_FREE(const_cast<std::remove_const_t<Item> *>(*place), tag);
    *place = nullptr;
}

// ---- Lists of related objects ------------------------------------------------

/// Where `item` stands in a list; `count` when it does not.
template <class Record, class Index>
Index position_in(Record *const *list, Index count, const Record *item) {
    return static_cast<Index>(std::find(list, list + count, item) - list);
}

template <class Record, class Index>
OAK_RETCODE append(Record ***list, Index *count, Record *item, OSL_MEMTAG tag) {
    const OAK_RETCODE rc = resize(list, *count, *count + 1u, tag);
    if (rc == sOKAY) {
        (*list)[(*count)++] = item;
    }
    return rc;
}

/// Takes out the entry at a position of a list that has it; later entries move
/// down, and an empty list has no array.
template <class Record, class Index>
void remove_at(Record ***list, Index *count, Index position, OSL_MEMTAG tag) {
    std::copy(*list + position + 1, *list + *count, *list + position);
    --*count;
    if (*count == 0) {
        release(list, tag);
    }
}

/// Takes `item` out of a list if it is there.
template <class Record, class Index>
void remove_from(Record ***list, Index *count, const Record *item, OSL_MEMTAG tag) {
    const Index position = position_in(*list, *count, item);
    if (position < *count) {
        remove_at(list, count, position, tag);
    }
}

// A column belongs to a key or a reference exactly when it lists it.
inline bool is_element(SCH_KEY_INFO_C ki, SCH_COL_INFO_C ci) {
    if (ki->num_elems < ci->num_keys) { // the shorter list tells as well
        return std::any_of(ki->elems, ki->elems + ki->num_elems,
                           [ci](const _SCH_ELEM_INFO &ei) { return ei.col == ci; });
    }
    return position_in(ci->keys, ci->num_keys, ki) < ci->num_keys;
}
inline bool is_referencing(SCH_REF_INFO_C ri, SCH_COL_INFO_C ci) {
    return position_in(ci->refs, ci->num_refs, ri) < ci->num_refs;
}
inline bool is_sort_column(SCH_REF_INFO_C ri, SCH_COL_INFO_C ci) {
    return position_in(ci->sortrefs, ci->num_sortrefs, ri) < ci->num_sortrefs;
}

/// Lowers a count that comes from outside and may be too small.
template <class Count>
void lower(Count *count) {
    *count = static_cast<Count>(*count - (*count > 0));
}

// ---- Names -------------------------------------------------------------------

/// strcasecmp that takes an object without a name for one with an empty name.
inline int compare_names(const char *one, const char *other) {
    return strcasecmp(one != nullptr ? one : "", other != nullptr ? other : "");
}

// ---- Layout ------------------------------------------------------------------

/// Values laid one after another, each where its type's alignment allows. Offsets
/// are reckoned in 64 bits, so that no sum of long columns wraps.
struct Layout {
    uint64_t end = 0;            // where the next value would begin, not aligned
    ALIGN_TYPE align = ALN_CHAR; // the highest of all

    /// Lays a value down and returns its offset.
    uint64_t place(ALIGN_TYPE kind, uint32_t length) {
        const uint64_t offset = osl_align(end, kind);
        end = offset + length;
        align = std::max(align, kind);
        return offset;
    }

    uint64_t aligned_end() const { return osl_align(end, align); }
};

/// The alignment of a column's values; its type must be known.
inline ALIGN_TYPE alignment_of(SCH_COL_INFO_C ci) {
    return effective_type(ci)->type_info->ext_align;
}

// ---- Columns as rows see them ---------------------------------------------------

constexpr StreamForm stream_form(const _SCH_TYPE_INFO &type) {
    if (is_large_object(type.type)) {
        return StreamForm::large_object;
    }
    if (type.elems != 0) {
        return StreamForm::by_type;
    }
    switch (type.type) {
        case OAK_INT8:
            return StreamForm::int8;
        case OAK_UINT8:
            return StreamForm::uint8;
        case OAK_INT16:
            return StreamForm::int16;
        case OAK_UINT16:
            return StreamForm::uint16;
        case OAK_BOOL:
        case OAK_INT32:
            return StreamForm::int32;
        case OAK_UINT32:
        case OAK_DATE:
        case OAK_TIME:
            return StreamForm::uint32;
        case OAK_INT64:
            return StreamForm::int64;
        case OAK_UINT64:
            return StreamForm::uint64;
        case OAK_FLOAT:
            return StreamForm::float32;
        case OAK_DOUBLE:
            return StreamForm::float64;
        case OAK_TIMETZ:
            return StreamForm::timetz;
        case OAK_TIMESTAMP:
            return StreamForm::timestamp;
        case OAK_TIMESTAMPTZ:
            return StreamForm::timestamptz;
        case OAK_BCD:
            return StreamForm::decimal;
        case OAK_UUID:
            return StreamForm::uuid;
        case OAK_ROWID:
            return StreamForm::rowid;
        case OAK_CHAR:
        case OAK_VARCHAR:
        case OAK_WCHAR:
        case OAK_WCHAR_UTF8:
        case OAK_WVARCHAR:
        case OAK_WVARCHAR_UTF8:
            return StreamForm::text;
        default:
            return StreamForm::by_type;
    }
}

/// What rows need of a column; nothing for none and for a dropped one.
constexpr SCH_ROW_COLUMN row_column(SCH_COL_INFO_C ci) {
    SCH_ROW_COLUMN column{};
    if (ci == nullptr || ci->name == nullptr) {
        column.form = StreamForm::absent;
        return column;
    }
    const _SCH_TYPE_INFO &type = ci->domain != nullptr ? ci->domain->type : ci->type;
    column.ci = ci;
    column.ptr = ci->ptr;
    column.has_value_off = ci->has_value_off;
    column.ndx = ci->ndx;
    column.byte_len = type.byte_len;
    column.form = ci->ref != nullptr ? StreamForm::foreign_key : stream_form(type);
    if (column.form == StreamForm::decimal) {
        column.prec = type.x.d.prec;
        column.scale = type.x.d.scale;
    }
    return column;
}

/// Brings the list up to what the columns now are: after finalization, and after
/// whatever drops a column or makes or ends a foreign key column.
inline void refresh_row_columns(SCH_TBL_INFO ti) {
    for (OAK_COL_INDEX position = 0; position < ti->num_row_columns; ++position) {
        const OAK_COL_INDEX ndx = ti->active_ndx != nullptr ? ti->active_ndx[position] : position;
        ti->row_columns[position] = row_column(entry(ti->cols, column_limit(ti), ndx));
    }
}

// ---- Drawers -----------------------------------------------------------------

/// The position of the first drawer whose number is not below `id` in the
/// schema's packed array. Without holes that is `id` less the two unused
/// numbers, so that place is tried first.
inline OAK_DRAWER drawer_position(SCH_INFO_C sch, OAK_DRAWER id) {
    constexpr OAK_DRAWER kUnused = 2;
    if (id >= kUnused && id - kUnused < sch->drawers_used &&
        sch->drawers[id - kUnused]->ndx == id) {
        return id - kUnused;
    }
    const SCH_DRAWER_INFO *first = sch->drawers;
    const auto *place =
        std::lower_bound(first, first + sch->drawers_used, id,
                         [](SCH_DRAWER_INFO_C di, OAK_DRAWER number) { return di->ndx < number; });
    return static_cast<OAK_DRAWER>(place - first);
}

/// The caches that are built at first use go, because what they list changes.
void discard_caches(SCH_INFO sch);

} // namespace oak::schema

#endif
