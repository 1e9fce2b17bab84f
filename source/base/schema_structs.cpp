// Getters and setters of the schema's objects.
//
// A plain member has one line in the lists of its object: GETTER and its kin
// stamp out the function. What does more than read or store a field is written
// out between the lists, in the order of the header.
//
// Setters that can fail do what can fail first, so that the object stays as it
// was. Lists that point back (a column's keys and references, a table's owners)
// are kept in step with every change of what they mirror.
#include "schema_structs.h"

#include <limits>

#include "schema.h"
#include "schema_internal.h"
#include "schema_sysfiles.h"
#include "schema_words.h"
#include "value.h"

using namespace oak::schema;

// ---- The shapes of plain members ---------------------------------------------

#define GETTER(Result, function, Handle, expression)                                               \
    Result function(Handle object) {                                                               \
        return object->expression;                                                                 \
    }

// A getter that goes through a helper: the index of an object, the word of a
// number.
#define GETTER_OF(Result, function, Handle, expression)                                            \
    Result function(Handle object) {                                                               \
        return expression;                                                                         \
    }

#define SETTER(function, Handle, Value, member)                                                    \
    OAK_RETCODE function(Handle object, Value val) {                                               \
        const OAK_RETCODE rc = changeable(object);                                                 \
        if (rc == sOKAY) {                                                                         \
            object->member = val;                                                                  \
        }                                                                                          \
        return rc;                                                                                 \
    }

#define TEXT_SETTER(function, Handle, member)                                                      \
    OAK_RETCODE function(Handle object, const char *val) {                                         \
        const OAK_RETCODE rc = changeable(object);                                                 \
        return rc == sOKAY ? sch_string_input(val, &object->member, OAK_TRUE, tag_of(object))      \
                           : rc;                                                                   \
    }

// The capacity of an array.
#define SIZE_SETTER(function, Handle, Index, capacity, array)                                      \
    OAK_RETCODE function(Handle object, Index val) {                                               \
        OAK_RETCODE rc = changeable(object);                                                       \
        if (rc == sOKAY) {                                                                         \
            rc = resize(&object->array, object->capacity, val, tag_of(object));                    \
        }                                                                                          \
        if (rc == sOKAY) {                                                                         \
            object->capacity = val;                                                                \
        }                                                                                          \
        return rc;                                                                                 \
    }

// A limit of indexes, which stays within the capacity.
#define LIMIT_SETTER(function, Handle, Index, limit, capacity)                                     \
    OAK_RETCODE function(Handle object, Index val) {                                               \
        const OAK_RETCODE rc = changeable(object);                                                 \
        if (rc != sOKAY) {                                                                         \
            return rc;                                                                             \
        }                                                                                          \
        if (val > object->capacity) {                                                              \
            return eRANGE;                                                                         \
        }                                                                                          \
        object->limit = val;                                                                       \
        return sOKAY;                                                                              \
    }

namespace {

// ---- Types -------------------------------------------------------------------

/// How a type is stored where wide text is not native.
OAK_TYPE stored_type(OAK_TYPE type, OAK_BOOL_T unicode_enabled) {
    if (!unicode_enabled && type == OAK_WVARCHAR) {
        return OAK_WVARCHAR_UTF8;
    }
    return !unicode_enabled && type == OAK_WCHAR ? OAK_WCHAR_UTF8 : type;
}

/// One of the texts in the operations table; null while no type is set.
const char *type_info_text(SCH_TYPE_INFO_C pi, const char *OAK_TYPE_INFO::*text) {
    return pi->type_info != nullptr ? pi->type_info->*text : nullptr;
}

template <class Number>
OAK_RETCODE store_length(uint32_t val, Number *place) {
    if (val > std::numeric_limits<Number>::max()) {
        return eRANGE;
    }
    *place = static_cast<Number>(val);
    return sOKAY;
}

// ---- Drawers -----------------------------------------------------------------

/// A type as a set of types; no set for a number that is no type.
constexpr unsigned drawer_type_bit(OAK_DRAWER_TYPE type) {
    return type >= OAK_DRAWER_BTREE && type <= OAK_DRAWER_RTREE ? 1u << static_cast<unsigned>(type)
                                                                : 0u;
}

constexpr unsigned kKeyDrawerTypes = drawer_type_bit(OAK_DRAWER_BTREE) |
                                     drawer_type_bit(OAK_DRAWER_HASH) |
                                     drawer_type_bit(OAK_DRAWER_RTREE);

bool is_of_type(SCH_DRAWER_INFO_C di, unsigned types) {
    return (drawer_type_bit(di->type) & types) != 0;
}

/// The drawer `id` if it is of one of the types and names the given source.
SCH_DRAWER_INFO find_drawer_of(SCH_TBL_INFO_C ti, OAK_DRAWER id, unsigned types, OAK_INDEX item) {
    SCH_DRAWER_INFO di = sch_drawer(ti->sch, id);
    const bool fits =
        di != nullptr && is_of_type(di, types) && di->src_tblid == ti->ndx && di->src_id == item;
    return fits ? di : nullptr;
}

/// Links an object and its drawer both ways; null takes the drawer away. An
/// earlier drawer forgets the object.
template <class Record>
void link_drawer(Record *object, SCH_DRAWER_INFO di) {
    if (object->drawer != nullptr && object->drawer->obj.any == object) {
        object->drawer->obj.any = nullptr;
    }
    object->drawer = di;
    if (di != nullptr) {
        di->obj.any = object;
    }
}

/// The object that a drawer of one of the types stores.
template <class Record>
Record *object_of(SCH_DRAWER_INFO_C di, unsigned types, Record *object) {
    return is_of_type(di, types) ? object : nullptr;
}

// ---- References --------------------------------------------------------------

/// Opens a place among the table's owners.
OAK_RETCODE grow_owners(SCH_TBL_INFO ti) {
    constexpr unsigned kStep = 5;
    if (ti->next_own < ti->max_owns) {
        return sOKAY;
    }
    if (ti->next_own == OAK_INDEX_NONE) {
        return eRANGE;
    }
    const unsigned wanted = std::min<unsigned>(ti->next_own + kStep, OAK_INDEX_NONE);
    return sch_tbl_set_max_owners(ti, static_cast<OAK_REF_INDEX>(wanted));
}

/// Leaves the table that a reference referred to until now.
void leave_owner(SCH_REF_INFO ri) {
    SCH_TBL_INFO ti = ri->reftab;
    if (ti != nullptr && entry(ti->owners, ti->max_owns, ri->owner_ndx) == ri) {
        ti->owners[ri->owner_ndx] = nullptr;
        lower(&ti->num_owns);
    }
}

/// Puts a record into the list of its new column and takes it out of that of its
/// old one; only then does `*place` change.
template <class Record, class Index>
OAK_RETCODE move_to_column(SCH_COL_INFO *place, SCH_COL_INFO ci, Record *item,
                           Record **_SCH_COL_INFO::*list, Index _SCH_COL_INFO::*count) {
    if (*place == ci) {
        return sOKAY;
    }
    OSL_MEMTAG tag = tag_of(ci);
    const OAK_RETCODE rc = append(&(ci->*list), &(ci->*count), item, tag);
    if (rc != sOKAY) {
        return rc;
    }
    if (*place != nullptr) {
        remove_from(&((*place)->*list), &((*place)->*count), item, tag);
    }
    *place = ci;
    return sOKAY;
}

/// Forgets the referencing columns and their values.
void clear_ref_cols(SCH_REF_INFO ri) {
    OSL_MEMTAG tag = tag_of(ri);
    for (OAK_COL_INDEX n = 0; n < ri->num_cols; ++n) {
        if (SCH_COL_INFO ci = ri->cols[n]; ci != nullptr) {
            remove_from(&ci->refs, &ci->num_refs, ri, tag);
        }
    }
    release(&ri->cols, tag);
    release(&ri->ref_col_vals, tag);
    ri->num_cols = 0;
}

void clear_sort_cols(SCH_REF_INFO ri) {
    OSL_MEMTAG tag = tag_of(ri);
    for (OAK_COL_INDEX n = 0; n < ri->num_sort_cols; ++n) {
        if (SCH_COL_INFO ci = ri->sort_cols[n].col; ci != nullptr) {
            remove_from(&ci->sortrefs, &ci->num_sortrefs, ri, tag);
        }
    }
    release(&ri->sort_cols, tag);
    ri->num_sort_cols = 0;
}

/// A table that can be referred to; the system table cannot.
SCH_TBL_INFO referable_table(SCH_INFO_C sch, OAK_TBL_INDEX id) {
    return id != 0 ? sch_find_table_by_ndx(sch, id) : nullptr;
}

} // namespace

// ---- Helpers of the setters --------------------------------------------------

OAK_RETCODE sch_new_size_input(uint32_t curr_items, uint32_t new_items, size_t item_size,
                               void **ptr, OSL_MEMTAG tag) {
    if (ptr == nullptr) {
        return eINVNULLARG;
    }
    if (new_items == curr_items) {
        return sOKAY;
    }
    if (new_items < curr_items) {
        return eRANGE;
    }
    void *block = nullptr;
    const OAK_RETCODE rc =
        osl_extendMem_rc(*ptr, new_items * item_size, tag, OSL_MEM_ZERO,
                         (new_items - curr_items) * item_size, nullptr, &block, __FILE__, __LINE__);
    if (rc == sOKAY) {
        *ptr = block;
    }
    return rc;
}

OAK_RETCODE sch_string_input(const char *val, const char **pstr, OAK_BOOL_T, OSL_MEMTAG tag) {
    if (pstr == nullptr) {
        return eINVNULLARG;
    }
    void *copy = nullptr;
    if (val != nullptr) {
        const OAK_RETCODE rc =
            osl_getMem_rc(0, tag, OSL_MEM_STRING, val, &copy, __FILE__, __LINE__);
        if (rc != sOKAY) {
            return rc;
        }
    }
    release(pstr, tag);
    *pstr = static_cast<const char *>(copy);
    return sOKAY;
}

// ---- Schema ------------------------------------------------------------------

GETTER(const char *, sch_name, SCH_INFO_C, name)
GETTER(uint32_t, sch_catver, SCH_INFO_C, catver)
GETTER(uint32_t, sch_dbver, SCH_INFO_C, dbver)
GETTER(OSL_LOCALE, sch_locale, SCH_INFO_C, locale)
GETTER(const char *, sch_locale_text, SCH_INFO_C, locale_text)
GETTER(OAK_ENC_TYPE, sch_encryption, SCH_INFO_C, encryption)
GETTER(OAK_DRAWER, sch_max_drawer, SCH_INFO_C, max_drawer)
GETTER(OAK_DRAWER, sch_num_drawers, SCH_INFO_C, num_drawers)
GETTER(OAK_DRAWER, sch_next_drawer, SCH_INFO_C, next_drawer)
GETTER(OAK_DOM_INDEX, sch_num_domains, SCH_INFO_C, num_domains)
GETTER(OAK_DOM_INDEX, sch_next_domain, SCH_INFO_C, next_domain)
GETTER(OAK_TBL_INDEX, sch_max_table, SCH_INFO_C, max_table)
GETTER(OAK_TBL_INDEX, sch_next_table, SCH_INFO_C, next_table)
GETTER(uint32_t, sch_num_refs, SCH_INFO_C, num_refs)
GETTER(OSL_MEMTAG, sch_tag, SCH_INFO_C, tag)

const char *sch_encryption_text(SCH_INFO_C sch) {
    const char *word = word_of(encryption_items, sch->encryption);
    return sch->encryption == OAK_ENC_DEFAULT ? "default" : word;
}

OAK_INDEX sch_ndx(SCH_INFO_C) {
    return 0;
}

OAK_DRAWER sch_num_user_drawers(SCH_INFO_C sch) {
    return sch->num_drawers - std::min<OAK_DRAWER>(sch->num_drawers, OAK_DRAWER_RESERVED);
}

OAK_TBL_INDEX sch_num_tables(SCH_INFO_C sch) {
    return sch != nullptr ? sch->num_tables : OAK_TBL_INDEX{0};
}

OAK_TBL_INDEX sch_num_user_tables(SCH_INFO_C sch) {
    const OAK_TBL_INDEX all = sch_num_tables(sch);
    return static_cast<OAK_TBL_INDEX>(all - (all > 0));
}

TEXT_SETTER(sch_set_name, SCH_INFO, name)
SETTER(sch_set_catver, SCH_INFO, uint32_t, catver)
SETTER(sch_set_dbver, SCH_INFO, uint32_t, dbver)
SETTER(sch_set_encryption, SCH_INFO, OAK_ENC_TYPE, encryption)

OAK_RETCODE sch_set_locale(SCH_INFO sch, const char *val) {
    constexpr int32_t kCollate = 8;
    if (sch == nullptr || val == nullptr) {
        return eINVNULLARG;
    }
    if (sch->locale_text != nullptr) {
        return strcmp(sch->locale_text, val) == 0 ? sOKAY : eLOCALEMISMATCH;
    }
    OSL_LOCALE locale = osl_createlocale(kCollate, val);
    if (locale == nullptr) {
        return eINVLOCALE;
    }
    const OAK_RETCODE rc = sch_string_input(val, &sch->locale_text, OAK_TRUE, sch->tag);
    if (rc != sOKAY) {
        osl_freelocale(locale);
        return rc;
    }
    sch->locale = locale;
    sch->use_locale = OAK_TRUE;
    return sOKAY;
}

// No array stands behind the capacity of the drawers: theirs is packed.
OAK_RETCODE sch_set_max_drawer(SCH_INFO sch, OAK_DRAWER val) {
    if (sch == nullptr) {
        return eINVNULLARG;
    }
    if (val < sch->max_drawer) {
        return eRANGE;
    }
    sch->max_drawer = val;
    return sOKAY;
}

SIZE_SETTER(sch_set_max_table, SCH_INFO, OAK_TBL_INDEX, max_table, tables)
SIZE_SETTER(sch_set_next_domain, SCH_INFO, OAK_DOM_INDEX, next_domain, domains)
LIMIT_SETTER(sch_set_next_drawer, SCH_INFO, OAK_DRAWER, next_drawer, max_drawer)
LIMIT_SETTER(sch_set_next_table, SCH_INFO, OAK_TBL_INDEX, next_table, max_table)
SETTER(sch_set_num_drawers, SCH_INFO, OAK_DRAWER, num_drawers)
SETTER(sch_set_num_domains, SCH_INFO, OAK_DOM_INDEX, num_domains)

OAK_RETCODE sch_set_num_tables(SCH_INFO sch, OAK_TBL_INDEX val) {
    if (sch == nullptr) {
        return eINVNULLARG;
    }
    sch->num_tables = val;
    release(&sch->tablesByName, sch->tag);
    sch->tablesByNameUsed = 0;
    return sOKAY;
}

// ---- Type --------------------------------------------------------------------

GETTER_OF(const char *, sch_type_catalog_text, SCH_TYPE_INFO_C,
          word_of(data_type_items, object->type))
GETTER_OF(const char *, sch_type_ddl_text, SCH_TYPE_INFO_C,
          type_info_text(object, &OAK_TYPE_INFO::ddl_type_text))
GETTER_OF(const char *, sch_type_sql_text, SCH_TYPE_INFO_C,
          type_info_text(object, &OAK_TYPE_INFO::sql_type_text))
GETTER_OF(const char *, sch_type_text, SCH_TYPE_INFO_C,
          type_info_text(object, &OAK_TYPE_INFO::field_type_text))

// The operations are those of the type as given, not as stored; both have the
// same ones.
OAK_RETCODE sch_type_set_data_type(SCH_TYPE_INFO pi, OAK_TYPE type, OAK_BOOL_T unicode_enabled) {
    const OAK_RETCODE rc = changeable(pi);
    if (rc != sOKAY) {
        return rc;
    }
    pi->type = stored_type(type, unicode_enabled);
    pi->type_info = b_typeGetInfoEx(type, unicode_enabled);
    if (type_class(type) == OAK_TYPE_CLASS_TEXT) {
        pi->x.c.locale = pi->sch->locale;
        pi->x.c.use_locale = pi->sch->use_locale;
    }
    return sOKAY;
}

OAK_RETCODE sch_type_set_elems(SCH_TYPE_INFO pi, uint16_t val) {
    const OAK_RETCODE rc = changeable(pi);
    if (rc != sOKAY) {
        return rc;
    }
    const unsigned kind = type_class(pi->type);
    if (kind < OAK_TYPE_CLASS_BOOL || kind > OAK_TYPE_CLASS_FLOAT) {
        return eBADCAT;
    }
    pi->elems = val;
    return sOKAY;
}

OAK_RETCODE sch_type_set_length(SCH_TYPE_INFO pi, uint32_t val) {
    const OAK_RETCODE rc = changeable(pi);
    if (rc != sOKAY) {
        return rc;
    }
    if (is_large_object(pi->type) || pi->type == OAK_DATE) {
        return eBADCAT;
    }
    switch (type_class(pi->type)) {
        case OAK_TYPE_CLASS_TEXT:
            return store_length(val, &pi->x.c.len);
        case OAK_TYPE_CLASS_BINARY:
            return store_length(val, &pi->x.b.len);
        case OAK_TYPE_CLASS_DECIMAL:
            return store_length(val, &pi->x.d.prec);
        case OAK_TYPE_CLASS_DATETIME:
            return store_length(val, &pi->x.t.prec);
        default:
            return eBADCAT;
    }
}

OAK_RETCODE sch_type_set_scale(SCH_TYPE_INFO pi, uint8_t val) {
    const OAK_RETCODE rc = changeable(pi);
    if (rc != sOKAY) {
        return rc;
    }
    if (type_class(pi->type) != OAK_TYPE_CLASS_DECIMAL) {
        return eBADCAT;
    }
    pi->x.d.scale = val;
    return sOKAY;
}

SETTER(sch_type_set_use_locale, SCH_TYPE_INFO, OAK_BOOL_T, x.c.use_locale)
SETTER(sch_type_set_locale, SCH_TYPE_INFO, OSL_LOCALE, x.c.locale)
TEXT_SETTER(sch_type_set_check_str, SCH_TYPE_INFO, check_str)
TEXT_SETTER(sch_type_set_check_name, SCH_TYPE_INFO, check_name)

// ---- Domain ------------------------------------------------------------------

GETTER(OAK_DOM_INDEX, sch_dom_ndx, SCH_DOMAIN_INFO_C, ndx)
GETTER(const char *, sch_dom_name, SCH_DOMAIN_INFO_C, name)
GETTER_OF(const OAK_VALUE *, sch_dom_def, SCH_DOMAIN_INFO_C, &object->def)
GETTER(const char *, sch_dom_defstr, SCH_DOMAIN_INFO_C, defstr)
GETTER(const char *, sch_dom_format, SCH_DOMAIN_INFO_C, format)
GETTER(uint16_t, sch_dom_width, SCH_DOMAIN_INFO_C, width)
GETTER_OF(SCH_TYPE_INFO, sch_dom_type, SCH_DOMAIN_INFO_C, &own_handle(object)->type)
GETTER_OF(SCH_TYPE_INFO_C, sch_dom_type_c, SCH_DOMAIN_INFO_C, &object->type)
GETTER(OAK_TYPE, sch_dom_data_type, SCH_DOMAIN_INFO_C, type.type)
GETTER(const char *, sch_dom_check_str, SCH_DOMAIN_INFO_C, type.check_str)
GETTER(const char *, sch_dom_check_name, SCH_DOMAIN_INFO_C, type.check_name)

TEXT_SETTER(sch_dom_set_name, SCH_DOMAIN_INFO, name)
SETTER(sch_dom_set_width, SCH_DOMAIN_INFO, uint16_t, width)
TEXT_SETTER(sch_dom_set_format, SCH_DOMAIN_INFO, format)

// ---- Drawer ------------------------------------------------------------------

GETTER(OAK_DRAWER, sch_drawer_id, SCH_DRAWER_INFO_C, ndx)
GETTER(OAK_DRAWER_TYPE, sch_drawer_type, SCH_DRAWER_INFO_C, type)
GETTER_OF(const char *, sch_drawer_type_text, SCH_DRAWER_INFO_C,
          sch_get_drawer_type_string(object->type))
GETTER(OAK_BOOL_T, sch_drawer_compact, SCH_DRAWER_INFO_C, compact)
GETTER(OAK_TBL_INDEX, sch_drawer_src_table_id, SCH_DRAWER_INFO_C, src_tblid)
GETTER(OAK_INDEX, sch_drawer_src_ndx, SCH_DRAWER_INFO_C, src_id)
GETTER_OF(SCH_TBL_INFO, sch_drawer_table, SCH_DRAWER_INFO_C,
          object_of(object, drawer_type_bit(OAK_DRAWER_TABLE), object->obj.ti))
GETTER_OF(SCH_KEY_INFO, sch_drawer_key, SCH_DRAWER_INFO_C,
          object_of(object, kKeyDrawerTypes, object->obj.ki))
GETTER_OF(SCH_REF_INFO, sch_drawer_ref, SCH_DRAWER_INFO_C,
          object_of(object, drawer_type_bit(OAK_DRAWER_REF), object->obj.ri))
GETTER_OF(SCH_COL_INFO, sch_drawer_blob_col, SCH_DRAWER_INFO_C,
          object_of(object, drawer_type_bit(OAK_DRAWER_BLOB), object->obj.ci))

const char *sch_get_drawer_type_string(OAK_DRAWER_TYPE type) {
    return word_of(drawer_type_items, type);
}

const char *sch_get_item_format_string(OAK_ITEM_FORMAT format) {
    return word_of(item_format_items, format);
}

SETTER(sch_drawer_set_source_table, SCH_DRAWER_INFO, OAK_TBL_INDEX, src_tblid)
SETTER(sch_drawer_set_source_item, SCH_DRAWER_INFO, OAK_INDEX, src_id)

// The object is read by the type, so it does not survive a change of type.
OAK_RETCODE sch_drawer_set_type(SCH_DRAWER_INFO di, OAK_DRAWER_TYPE val) {
    const OAK_RETCODE rc = changeable(di);
    if (rc == sOKAY && di->type != val) {
        di->type = val;
        di->obj.any = nullptr;
    }
    return rc;
}

// ---- Table -------------------------------------------------------------------

GETTER(OAK_TBL_INDEX, sch_tbl_index, SCH_TBL_INFO_C, ndx)
GETTER(OAK_TBL_INDEX, sch_tbl_offset, SCH_TBL_INFO_C, offset)
GETTER_OF(OAK_INDEX, sch_tbl_sch_ndx, SCH_TBL_INFO_C, sch_ndx(object->sch))
GETTER(SCH_INFO, sch_tbl_schema, SCH_TBL_INFO_C, sch)
GETTER(const char *, sch_tbl_name, SCH_TBL_INFO_C, name)
GETTER(const char *, sch_tbl_check_str, SCH_TBL_INFO_C, check_str)
GETTER(const char *, sch_tbl_check_name, SCH_TBL_INFO_C, check_name)
GETTER(OAK_TABLE_TYPE, sch_tbl_type, SCH_TBL_INFO_C, type)
GETTER_OF(const char *, sch_tbl_type_text, SCH_TBL_INFO_C, word_of(table_type_items, object->type))
GETTER_OF(OAK_BOOL_T, sch_tbl_circular, SCH_TBL_INFO_C,
          object->type == OAK_TABLE_CIRCULAR ? OAK_TRUE : OAK_FALSE)
GETTER(OAK_SLOT, sch_tbl_max_rows, SCH_TBL_INFO_C, max_rows)
GETTER_OF(OAK_DRAWER, sch_tbl_drawer, SCH_TBL_INFO_C, number_or_none(object->drawer))
GETTER(SCH_DRAWER_INFO, sch_tbl_drawer_info, SCH_TBL_INFO_C, drawer)
GETTER(uint32_t, sch_tbl_byte_len, SCH_TBL_INFO_C, byte_len)
GETTER(OAK_HAS_VALUE_OFFSET, sch_tbl_has_value_offset, SCH_TBL_INFO_C, has_value_off)
GETTER(SCH_KEY_INFO, sch_tbl_primary_key, SCH_TBL_INFO_C, pkey)
GETTER(SCH_TRIG_INFO, sch_tbl_triggers, SCH_TBL_INFO_C, triggers)
GETTER(OAK_DRAWER, sch_tbl_num_drawers, SCH_TBL_INFO_C, num_drawers)
GETTER(OAK_COL_INDEX, sch_tbl_num_cols, SCH_TBL_INFO_C, num_cols)
GETTER(OAK_COL_INDEX, sch_tbl_next_col, SCH_TBL_INFO_C, next_col)
GETTER(OAK_COL_INDEX, sch_tbl_max_cols, SCH_TBL_INFO_C, max_col)
GETTER(OAK_KEY_INDEX, sch_tbl_num_keys, SCH_TBL_INFO_C, num_keys)
GETTER(OAK_KEY_INDEX, sch_tbl_next_key, SCH_TBL_INFO_C, next_key)
GETTER(OAK_KEY_INDEX, sch_tbl_max_keys, SCH_TBL_INFO_C, max_keys)
GETTER(OAK_KEY_INDEX, sch_tbl_num_avls, SCH_TBL_INFO_C, num_avls)
GETTER(OAK_KEY_INDEX, sch_tbl_next_avl, SCH_TBL_INFO_C, next_avl)
GETTER(OAK_KEY_INDEX, sch_tbl_max_avls, SCH_TBL_INFO_C, max_avls)
GETTER(OAK_REF_INDEX, sch_tbl_num_refs, SCH_TBL_INFO_C, num_refs)
GETTER(OAK_REF_INDEX, sch_tbl_next_ref, SCH_TBL_INFO_C, next_ref)
GETTER(OAK_REF_INDEX, sch_tbl_num_owners, SCH_TBL_INFO_C, num_owns)
GETTER(OAK_REF_INDEX, sch_tbl_next_owner, SCH_TBL_INFO_C, next_own)
GETTER(OAK_REF_INDEX, sch_tbl_max_owner, SCH_TBL_INFO_C, max_owns)

SCH_DRAWER_INFO sch_tbl_related_drawer(SCH_TBL_INFO_C ti, OAK_DRAWER n) {
    return entry(ti->drawers, ti->max_drawers, n);
}

TEXT_SETTER(sch_tbl_set_name, SCH_TBL_INFO, name)
TEXT_SETTER(sch_tbl_set_check_str, SCH_TBL_INFO, check_str)
TEXT_SETTER(sch_tbl_set_check_name, SCH_TBL_INFO, check_name)
SETTER(sch_tbl_set_type, SCH_TBL_INFO, OAK_TABLE_TYPE, type)
SETTER(sch_tbl_set_max_rows, SCH_TBL_INFO, OAK_SLOT, max_rows)
SETTER(sch_tbl_set_offset, SCH_TBL_INFO, OAK_TBL_INDEX, offset)

OAK_RETCODE sch_tbl_set_drawer(SCH_TBL_INFO ti, OAK_DRAWER drawer) {
    const OAK_RETCODE rc = changeable(ti);
    if (rc != sOKAY || drawer == OAK_DRAWER_NONE) {
        return rc;
    }
    SCH_DRAWER_INFO di = find_drawer_of(ti, drawer, drawer_type_bit(OAK_DRAWER_TABLE), ti->ndx);
    if (di == nullptr) {
        return eBADCAT;
    }
    link_drawer(ti, di);
    return sOKAY;
}

SETTER(sch_tbl_set_num_cols, SCH_TBL_INFO, OAK_COL_INDEX, num_cols)
SETTER(sch_tbl_set_next_col, SCH_TBL_INFO, OAK_COL_INDEX, next_col)
SETTER(sch_tbl_set_num_keys, SCH_TBL_INFO, OAK_KEY_INDEX, num_keys)
SETTER(sch_tbl_set_next_key, SCH_TBL_INFO, OAK_KEY_INDEX, next_key)
SETTER(sch_tbl_set_num_avls, SCH_TBL_INFO, OAK_KEY_INDEX, num_avls)
SETTER(sch_tbl_set_next_avl, SCH_TBL_INFO, OAK_KEY_INDEX, next_avl)
SETTER(sch_tbl_set_num_refs, SCH_TBL_INFO, OAK_REF_INDEX, num_refs)
SETTER(sch_tbl_set_num_owners, SCH_TBL_INFO, OAK_REF_INDEX, num_owns)
SETTER(sch_tbl_set_next_owner, SCH_TBL_INFO, OAK_REF_INDEX, next_own)
SIZE_SETTER(sch_tbl_set_max_cols, SCH_TBL_INFO, OAK_COL_INDEX, max_col, cols)
SIZE_SETTER(sch_tbl_set_max_keys, SCH_TBL_INFO, OAK_KEY_INDEX, max_keys, keys)
SIZE_SETTER(sch_tbl_set_max_avls, SCH_TBL_INFO, OAK_KEY_INDEX, max_avls, avls)
SIZE_SETTER(sch_tbl_set_max_owners, SCH_TBL_INFO, OAK_REF_INDEX, max_owns, owners)

OAK_RETCODE sch_tbl_set_next_ref(SCH_TBL_INFO ti, OAK_REF_INDEX val) {
    const OAK_RETCODE rc = changeable(ti);
    if (rc == sOKAY && resize(&ti->refs, ti->next_ref, val, tag_of(ti)) == sOKAY) {
        ti->next_ref = val;
    }
    return rc;
}

// ---- Column ------------------------------------------------------------------

GETTER(OAK_COL_INDEX, sch_col_ndx, SCH_COL_INFO_C, ndx)
GETTER_OF(OAK_TBL_INDEX, sch_col_tbl_ndx, SCH_COL_INFO_C, index_or_none(object->table))
GETTER(SCH_TBL_INFO, sch_col_table, SCH_COL_INFO_C, table)
GETTER(const char *, sch_col_name, SCH_COL_INFO_C, name)
GETTER(SCH_DOMAIN_INFO, sch_col_domain, SCH_COL_INFO_C, domain)
GETTER_OF(SCH_TYPE_INFO, sch_col_type, SCH_COL_INFO_C, effective_type(own_handle(object)))
GETTER_OF(SCH_TYPE_INFO_C, sch_col_type_c, SCH_COL_INFO_C, effective_type(object))
GETTER_OF(OAK_TYPE, sch_col_data_type, SCH_COL_INFO_C, effective_type(object)->type)
GETTER_OF(const char *, sch_col_data_type_text, SCH_COL_INFO_C,
          object->domain != nullptr ? object->domain->name : sch_type_text(&object->type))
GETTER_OF(uint16_t, sch_col_num_elems, SCH_COL_INFO_C, effective_type(object)->elems)
GETTER_OF(uint32_t, sch_col_length, SCH_COL_INFO_C, sch_type_length(effective_type(object)))
GETTER_OF(uint32_t, sch_col_byte_len, SCH_COL_INFO_C, effective_type(object)->byte_len)
GETTER_OF(uint8_t, sch_col_prec, SCH_COL_INFO_C, sch_type_prec(effective_type(object)))
GETTER_OF(uint8_t, sch_col_scale, SCH_COL_INFO_C, sch_type_scale(effective_type(object)))
GETTER_OF(OAK_BOOL_T, sch_col_is_lob, SCH_COL_INFO_C,
          is_large_object(effective_type(object)->type) ? OAK_TRUE : OAK_FALSE)
GETTER_OF(const char *, sch_col_check_str, SCH_COL_INFO_C, effective_type(object)->check_str)
GETTER_OF(const char *, sch_col_check_name, SCH_COL_INFO_C, effective_type(object)->check_name)
GETTER(uint16_t, sch_col_usage, SCH_COL_INFO_C, usage)
GETTER(OAK_BOOL_T, sch_col_not_null, SCH_COL_INFO_C, not_null)
GETTER(const char *, sch_col_not_null_cname, SCH_COL_INFO_C, not_null_cname)
GETTER(uint32_t, sch_col_offset, SCH_COL_INFO_C, ptr)
GETTER(OAK_HAS_VALUE_OFFSET, sch_col_has_value_offset, SCH_COL_INFO_C, has_value_off)
GETTER(OAK_KEY_INDEX, sch_col_key_ndx, SCH_COL_INFO_C, keyid)
GETTER(SCH_KEY_INFO, sch_col_key, SCH_COL_INFO_C, key)
GETTER(SCH_REF_INFO, sch_col_ref, SCH_COL_INFO_C, ref)
GETTER(SCH_TBL_INFO, sch_col_reftab, SCH_COL_INFO_C, reftab)
GETTER(SCH_COL_INFO, sch_col_refcol, SCH_COL_INFO_C, refcol)
GETTER(SCH_DRAWER_INFO, sch_col_lob_drawer, SCH_COL_INFO_C, drawer)
GETTER_OF(OAK_DRAWER, sch_col_lob_drawer_ndx, SCH_COL_INFO_C, number_or_none(object->drawer))

const char *sch_col_defstr(SCH_COL_INFO_C ci) {
    return ci->defstr == nullptr && ci->domain != nullptr ? ci->domain->defstr : ci->defstr;
}

const OAK_VALUE *sch_col_def(SCH_COL_INFO_C ci) {
    if (ci->def.status != vsNOVAL) {
        return &ci->def;
    }
    return ci->domain != nullptr ? &ci->domain->def : nullptr;
}

const char *sch_col_format(SCH_COL_INFO_C ci) {
    return ci->format == nullptr && ci->domain != nullptr ? ci->domain->format : ci->format;
}

uint16_t sch_col_width(SCH_COL_INFO_C ci) {
    return ci->width == 0 && ci->domain != nullptr ? ci->domain->width : ci->width;
}

OAK_BOOL_T sch_col_is_pkey_elem(SCH_COL_INFO_C ci) {
    SCH_KEY_INFO_C pkey = ci->table->pkey;
    return pkey != nullptr && is_element(pkey, ci) ? OAK_TRUE : OAK_FALSE;
}

OAK_BOOL_T sch_col_nullable(SCH_COL_INFO_C ci) {
    return !ci->not_null && !sch_col_is_pkey_elem(ci) ? OAK_TRUE : OAK_FALSE;
}

TEXT_SETTER(sch_col_set_name, SCH_COL_INFO, name)
SETTER(sch_col_set_width, SCH_COL_INFO, uint16_t, width)
TEXT_SETTER(sch_col_set_format, SCH_COL_INFO, format)
SETTER(sch_col_set_usage, SCH_COL_INFO, uint16_t, usage)

OAK_RETCODE sch_col_set_not_null(SCH_COL_INFO ci, const char *val) {
    OAK_RETCODE rc = changeable(ci);
    if (rc == sOKAY && val != nullptr) {
        rc = sch_string_input(val, &ci->not_null_cname, OAK_TRUE, tag_of(ci));
    }
    if (rc == sOKAY) {
        ci->not_null = OAK_TRUE;
    }
    return rc;
}

OAK_RETCODE sch_col_drop_not_null(SCH_COL_INFO ci) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc == sOKAY) {
        ci->not_null = OAK_FALSE;
        release(&ci->not_null_cname, tag_of(ci));
    }
    return rc;
}

OAK_RETCODE sch_col_set_domain(SCH_COL_INFO ci, OAK_DOM_INDEX id) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_DOMAIN_INFO mi = sch_domain(ci->table->sch, id);
    if (ci->type.type != OAK_NOVAL || mi == nullptr) {
        return eBADCAT;
    }
    ci->domain = mi;
    return sOKAY;
}

OAK_RETCODE sch_col_set_blob_drawer(SCH_COL_INFO ci, OAK_DRAWER id) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY) {
        return rc;
    }
    if (id >= ci->table->sch->next_drawer) {
        return eRANGE;
    }
    SCH_DRAWER_INFO di = sch_drawer(ci->table->sch, id);
    if (di == nullptr || di->type != OAK_DRAWER_BLOB || is_system_drawer(id)) {
        return eBADCAT;
    }
    link_drawer(ci, di);
    return sOKAY;
}

OAK_RETCODE sch_col_set_key(SCH_COL_INFO ci, OAK_KEY_INDEX id) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_KEY_INFO ki = nullptr;
    if (id != OAK_INDEX_NONE) {
        if (id >= ci->table->next_key) {
            return eRANGE;
        }
        ki = sch_get_key_by_index(ci->table, id);
        if (ki == nullptr) {
            return eBADCAT;
        }
    }
    ci->keyid = id;
    ci->key = ki;
    return sOKAY;
}

OAK_RETCODE sch_col_set_ref(SCH_COL_INFO ci, OAK_REF_INDEX id) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY) {
        return rc;
    }
    if (id >= ci->table->next_ref) {
        return eRANGE;
    }
    SCH_REF_INFO ri = sch_get_ref_by_index(ci->table, id);
    if (ri == nullptr) {
        return eBADCAT;
    }
    ci->ref = ri;
    refresh_row_columns(ci->table);
    return sOKAY;
}

OAK_RETCODE sch_col_set_reftab(SCH_COL_INFO ci, OAK_TBL_INDEX id) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY) {
        return rc;
    }
    if (id >= ci->table->sch->next_table) {
        return eRANGE;
    }
    SCH_TBL_INFO ti = referable_table(ci->table->sch, id);
    if (ti == nullptr) {
        return eBADCAT;
    }
    ci->reftab = ti;
    return sOKAY;
}

OAK_RETCODE sch_col_set_refcol(SCH_COL_INFO ci, OAK_COL_INDEX id) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY) {
        return rc;
    }
    if (ci->reftab == nullptr) {
        return eBADCAT;
    }
    if (id >= ci->reftab->max_col) {
        return eRANGE;
    }
    if (ci->reftab->cols[id] == nullptr) {
        return eBADCAT;
    }
    ci->refcol = ci->reftab->cols[id];
    return sOKAY;
}

// ---- Key and element ---------------------------------------------------------

GETTER(OAK_KEY_INDEX, sch_key_ndx, SCH_KEY_INFO_C, ndx)
GETTER_OF(OAK_TBL_INDEX, sch_key_tbl_ndx, SCH_KEY_INFO_C, index_or_none(object->table))
GETTER(SCH_TBL_INFO, sch_key_table, SCH_KEY_INFO_C, table)
GETTER(SCH_INFO, sch_key_schema, SCH_KEY_INFO_C, table->sch)
GETTER(const char *, sch_key_name, SCH_KEY_INFO_C, name)
GETTER(OAK_BOOL_T, sch_key_inline, SCH_KEY_INFO_C, inline_key)
GETTER(OAK_KEY_TYPE, sch_key_type, SCH_KEY_INFO_C, type)
GETTER_OF(const char *, sch_key_type_text, SCH_KEY_INFO_C, word_of(key_type_items, object->type))
GETTER(OAK_KEY_METHOD, sch_key_method, SCH_KEY_INFO_C, method)
GETTER_OF(const char *, sch_key_method_text, SCH_KEY_INFO_C,
          word_of(key_method_items, object->method))
GETTER(OAK_BOOL_T, sch_key_restr, SCH_KEY_INFO_C, restr)
GETTER(uint32_t, sch_key_refcount, SCH_KEY_INFO_C, refcount)
GETTER(SCH_DRAWER_INFO, sch_key_drawer, SCH_KEY_INFO_C, drawer)
GETTER_OF(OAK_DRAWER, sch_key_drawer_ndx, SCH_KEY_INFO_C, number_or_none(object->drawer))
GETTER(OAK_KEY_INDEX, sch_avl_index, SCH_KEY_INFO_C, avl_ndx)
GETTER(OAK_COL_INDEX, sch_key_num_elems, SCH_KEY_INFO_C, num_elems)
GETTER(uint32_t, sch_key_byte_len, SCH_KEY_INFO_C, byte_len)
GETTER(OAK_HAS_VALUE_OFFSET, sch_key_has_value_offset, SCH_KEY_INFO_C, has_value_off)

SCH_ELEM_INFO sch_key_elem(SCH_KEY_INFO_C ki, OAK_COL_INDEX n) {
    return n < ki->num_elems ? &ki->elems[n] : nullptr;
}

SCH_ELEM_INFO_C sch_key_elem_c(SCH_KEY_INFO_C ki, OAK_COL_INDEX n) {
    return n < ki->num_elems ? &ki->elems[n] : nullptr;
}

GETTER(OAK_COL_INDEX, sch_elem_index, SCH_ELEM_INFO_C, ndx)
GETTER(SCH_COL_INFO, sch_elem_col, SCH_ELEM_INFO_C, col)
GETTER_OF(OAK_COL_INDEX, sch_elem_col_index, SCH_ELEM_INFO_C, index_or_none(object->col))
GETTER(OAK_DIRECTION, sch_elem_dir, SCH_ELEM_INFO_C, dir)
GETTER_OF(const char *, sch_elem_dir_text, SCH_ELEM_INFO_C, word_of(direction_items, object->dir))
GETTER(uint32_t, sch_elem_offset, SCH_ELEM_INFO_C, ptr)
GETTER(OAK_HAS_VALUE_OFFSET, sch_elem_has_value_offset, SCH_ELEM_INFO_C, has_value_off)

TEXT_SETTER(sch_key_set_name, SCH_KEY_INFO, name)
SETTER(sch_key_set_method, SCH_KEY_INFO, OAK_KEY_METHOD, method)
SETTER(sch_key_set_refcount, SCH_KEY_INFO, uint32_t, refcount)
SETTER(sch_key_set_restr, SCH_KEY_INFO, OAK_BOOL_T, restr)

// The type is stored before the table is asked: a refused primary key is left
// with that type.
OAK_RETCODE sch_key_set_type(SCH_KEY_INFO ki, OAK_KEY_TYPE val) {
    const OAK_RETCODE rc = changeable(ki);
    if (rc != sOKAY) {
        return rc;
    }
    ki->type = val;
    if (val != OAK_KEY_TYPE_PRIMARY) {
        return sOKAY;
    }
    if (ki->table->pkey != nullptr) {
        return eBADCAT;
    }
    ki->table->pkey = ki;
    return sOKAY;
}

OAK_RETCODE sch_key_set_drawer(SCH_KEY_INFO ki, OAK_DRAWER drawer) {
    const OAK_RETCODE rc = changeable(ki);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_DRAWER_INFO di = nullptr;
    if (drawer != OAK_DRAWER_NONE) {
        di = find_drawer_of(ki->table, drawer, kKeyDrawerTypes, ki->ndx);
        if (di == nullptr) {
            return eBADCAT;
        }
    }
    link_drawer(ki, di);
    return sOKAY;
}

OAK_RETCODE sch_key_set_num_elems(SCH_KEY_INFO ki, OAK_COL_INDEX val) {
    OAK_RETCODE rc = changeable(ki);
    if (rc == sOKAY) {
        rc = resize(&ki->elems, ki->num_elems, val, tag_of(ki));
    }
    if (rc != sOKAY) {
        return rc;
    }
    for (OAK_COL_INDEX n = ki->num_elems; n < val; ++n) {
        ki->elems[n].ndx = n;
        ki->elems[n].key = ki;
    }
    ki->num_elems = val;
    return sOKAY;
}

OAK_RETCODE sch_elem_set_col(SCH_ELEM_INFO ei, OAK_COL_INDEX id) {
    const OAK_RETCODE rc = changeable(ei);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_KEY_INFO ki = ei->key;
    SCH_COL_INFO ci = entry(ki->table->cols, ki->table->max_col, id);
    if (ci == nullptr || (ei->col != ci && is_element(ki, ci))) {
        return eBADCAT;
    }
    return move_to_column(&ei->col, ci, ki, &_SCH_COL_INFO::keys, &_SCH_COL_INFO::num_keys);
}

SETTER(sch_elem_set_order, SCH_ELEM_INFO, OAK_DIRECTION, dir)

// ---- Reference and sort column -----------------------------------------------

GETTER(OAK_REF_INDEX, sch_ref_ndx, SCH_REF_INFO_C, ndx)
GETTER_OF(OAK_TBL_INDEX, sch_ref_tbl_ndx, SCH_REF_INFO_C, index_or_none(object->table))
GETTER(SCH_TBL_INFO, sch_ref_table, SCH_REF_INFO_C, table)
GETTER(SCH_INFO, sch_ref_schema, SCH_REF_INFO_C, table->sch)
GETTER(const char *, sch_ref_name, SCH_REF_INFO_C, name)
GETTER(SCH_TBL_INFO, sch_ref_owner, SCH_REF_INFO_C, reftab)
GETTER_OF(OAK_TBL_INDEX, sch_ref_owner_tbl_ndx, SCH_REF_INFO_C, index_or_none(object->reftab))
GETTER(OAK_REF_INDEX, sch_ref_owner_ndx, SCH_REF_INFO_C, owner_ndx)
GETTER(SCH_KEY_INFO, sch_ref_key, SCH_REF_INFO_C, refkey)
GETTER_OF(OAK_KEY_INDEX, sch_ref_key_index, SCH_REF_INFO_C, index_or_none(object->refkey))
GETTER(SCH_DRAWER_INFO, sch_ref_drawer, SCH_REF_INFO_C, drawer)
GETTER_OF(OAK_DRAWER, sch_ref_drawer_ndx, SCH_REF_INFO_C, number_or_none(object->drawer))
GETTER(OAK_REF_ACTION, sch_ref_on_update, SCH_REF_INFO_C, on_update)
GETTER(OAK_REF_ACTION, sch_ref_on_delete, SCH_REF_INFO_C, on_delete)
GETTER_OF(const char *, sch_ref_on_update_text, SCH_REF_INFO_C,
          word_of(ref_action_items, object->on_update))
GETTER_OF(const char *, sch_ref_on_delete_text, SCH_REF_INFO_C,
          word_of(ref_action_items, object->on_delete))
GETTER(OAK_BOOL_T, sch_ref_requires_write_for_update, SCH_REF_INFO_C, requires_write)
GETTER(OAK_COL_INDEX, sch_ref_num_cols, SCH_REF_INFO_C, num_cols)
GETTER(OAK_COLUMN_VALUE *, sch_ref_col_vals, SCH_REF_INFO_C, ref_col_vals)
GETTER(OAK_COL_INDEX, sch_ref_num_sort_cols, SCH_REF_INFO_C, num_sort_cols)
GETTER(uint32_t, sch_ref_sort_byte_len, SCH_REF_INFO_C, sort_byte_len)

SCH_COL_INFO sch_ref_col(SCH_REF_INFO_C ri, OAK_COL_INDEX n) {
    return entry(ri->cols, ri->num_cols, n);
}

SCH_SORT_INFO sch_ref_sort(SCH_REF_INFO_C ri, OAK_COL_INDEX n) {
    return n < ri->num_sort_cols ? &ri->sort_cols[n] : nullptr;
}

SCH_COL_INFO sch_ref_sort_col(SCH_REF_INFO_C ri, OAK_COL_INDEX n) {
    return n < ri->num_sort_cols ? ri->sort_cols[n].col : nullptr;
}

GETTER(OAK_COL_INDEX, sch_sort_index, SCH_SORT_INFO_C, ndx)
GETTER(SCH_COL_INFO, sch_sort_col, SCH_SORT_INFO_C, col)
GETTER_OF(OAK_COL_INDEX, sch_sort_col_index, SCH_SORT_INFO_C, index_or_none(object->col))
GETTER(SCH_REF_INFO, sch_sort_ref, SCH_SORT_INFO_C, ref)
GETTER(OAK_REF_INDEX, sch_sort_ref_index, SCH_SORT_INFO_C, ref->ndx)
GETTER(OAK_TBL_INDEX, sch_sort_table_index, SCH_SORT_INFO_C, ref->table->ndx)
GETTER(OAK_DIRECTION, sch_sort_dir, SCH_SORT_INFO_C, order)
GETTER_OF(const char *, sch_sort_dir_text, SCH_SORT_INFO_C, word_of(direction_items, object->order))
GETTER(uint32_t, sch_sort_offset, SCH_SORT_INFO_C, ptr)
GETTER(OAK_HAS_VALUE_OFFSET, sch_sort_has_value_offset, SCH_SORT_INFO_C, has_value_off)

TEXT_SETTER(sch_ref_set_name, SCH_REF_INFO, name)
SETTER(sch_ref_set_on_update, SCH_REF_INFO, OAK_REF_ACTION, on_update)
SETTER(sch_ref_set_on_delete, SCH_REF_INFO, OAK_REF_ACTION, on_delete)

OAK_RETCODE sch_ref_set_drawer(SCH_REF_INFO ri, OAK_DRAWER drawer) {
    const OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_DRAWER_INFO di =
        find_drawer_of(ri->table, drawer, drawer_type_bit(OAK_DRAWER_REF), ri->ndx);
    if (di == nullptr) {
        return eBADCAT;
    }
    link_drawer(ri, di);
    return sOKAY;
}

OAK_RETCODE sch_ref_set_reftab(SCH_REF_INFO ri, OAK_TBL_INDEX id) {
    OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_TBL_INFO ti = referable_table(ri->table->sch, id);
    if (ti == nullptr) {
        return eBADCAT;
    }
    rc = grow_owners(ti);
    if (rc != sOKAY) {
        return rc;
    }
    leave_owner(ri);
    ri->owner_ndx = ti->next_own;
    ri->reftab = ti;
    ti->owners[ti->next_own++] = ri;
    ++ti->num_owns;
    return sOKAY;
}

OAK_RETCODE sch_ref_set_refkey(SCH_REF_INFO ri, OAK_KEY_INDEX id) {
    const OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_KEY_INFO ki = ri->reftab != nullptr ? sch_get_key_by_index(ri->reftab, id) : nullptr;
    if (ki == nullptr) {
        return eBADCAT;
    }
    ri->refkey = ki;
    return sOKAY;
}

OAK_RETCODE sch_ref_set_num_cols(SCH_REF_INFO ri, OAK_COL_INDEX val) {
    OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_COL_INFO *cols = nullptr;
    OAK_COLUMN_VALUE *vals = nullptr;
    rc = get_records(val, tag_of(ri), &cols);
    if (rc == sOKAY) {
        rc = get_records(val, tag_of(ri), &vals);
    }
    if (rc != sOKAY) {
        OSL_FREE(cols, tag_of(ri));
        return rc;
    }
    clear_ref_cols(ri);
    ri->cols = cols;
    ri->ref_col_vals = vals;
    ri->num_cols = val;
    return sOKAY;
}

OAK_RETCODE sch_ref_set_num_sort_cols(SCH_REF_INFO ri, OAK_COL_INDEX val) {
    OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    _SCH_SORT_INFO *sort_cols = nullptr;
    rc = get_records(val, tag_of(ri), &sort_cols);
    if (rc != sOKAY) {
        return rc;
    }
    clear_sort_cols(ri);
    for (OAK_COL_INDEX n = 0; n < val; ++n) {
        sort_cols[n].ndx = n;
        sort_cols[n].ref = ri;
    }
    ri->sort_cols = sort_cols;
    ri->num_sort_cols = val;
    return sOKAY;
}

OAK_RETCODE sch_ref_set_col(SCH_REF_INFO ri, OAK_COL_INDEX col, OAK_COL_INDEX id) {
    OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_COL_INFO ci = entry(ri->table->cols, ri->table->max_col, id);
    if (col >= ri->num_cols || ri->reftab == nullptr || ci == nullptr) {
        return eBADCAT;
    }
    if (ri->cols[col] != ci && is_referencing(ri, ci)) {
        return eBADCAT;
    }
    rc = move_to_column(&ri->cols[col], ci, ri, &_SCH_COL_INFO::refs, &_SCH_COL_INFO::num_refs);
    if (rc == sOKAY) {
        ri->ref_col_vals[col].columnId = sch_col_constant(ci);
        oak_valueSetNoVal(&ri->ref_col_vals[col].value);
    }
    return rc;
}

// The bound is the count of live columns, not the limit of indexes.
OAK_RETCODE sch_ref_set_sort_col(SCH_REF_INFO ri, OAK_COL_INDEX col, OAK_COL_INDEX id) {
    const OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_TBL_INFO_C ti = ri->table;
    SCH_COL_INFO ci = entry(ti->cols, std::min(ti->num_cols, ti->max_col), id);
    if (col >= ri->num_sort_cols || ci == nullptr) {
        return eBADCAT;
    }
    SCH_SORT_INFO si = &ri->sort_cols[col];
    if (si->col != ci && is_sort_column(ri, ci)) {
        return eBADCAT;
    }
    return move_to_column(&si->col, ci, ri, &_SCH_COL_INFO::sortrefs, &_SCH_COL_INFO::num_sortrefs);
}

OAK_RETCODE sch_ref_set_sort_order(SCH_REF_INFO ri, OAK_COL_INDEX col, OAK_DIRECTION val) {
    const OAK_RETCODE rc = changeable(ri);
    if (rc != sOKAY) {
        return rc;
    }
    if (col >= ri->num_sort_cols) {
        return eBADCAT;
    }
    ri->sort_cols[col].order = val;
    return sOKAY;
}

// ---- Trigger -----------------------------------------------------------------

GETTER(const char *, sch_trig_name, SCH_TRIG_INFO_C, name)
GETTER(uint16_t, sch_trig_sqltrig, SCH_TRIG_INFO_C, sqltrig)
GETTER(uint64_t, sch_trig_crtime, SCH_TRIG_INFO_C, crtime)
GETTER(OAK_TRIG_TIMING, sch_trig_timing, SCH_TRIG_INFO_C, timing)
GETTER(OAK_TRIG_EVENT, sch_trig_event, SCH_TRIG_INFO_C, event)
GETTER(uint16_t, sch_trig_num_updcols, SCH_TRIG_INFO_C, num_updcols)
GETTER(OAK_TRC_INDEX, sch_trig_num_colrefs, SCH_TRIG_INFO_C, num_colrefs)

OAK_COL_INDEX sch_trig_updcol(SCH_TRIG_INFO_C trgi, uint16_t n) {
    return n < std::min(trgi->num_updcols, trgi->max_updcols) ? trgi->updcols[n] : OAK_INDEX_NONE;
}

SCH_TRIG_COL_INFO sch_trig_colref(SCH_TRIG_INFO_C trgi, OAK_TRC_INDEX n) {
    return n < std::min(trgi->num_colrefs, trgi->max_colrefs) ? &trgi->colrefs[n] : nullptr;
}

GETTER(OAK_COL_INDEX, sch_trigcol_colid, SCH_TRIG_COL_INFO_C, colid)
GETTER(uint16_t, sch_trigcol_varno, SCH_TRIG_COL_INFO_C, varno)
GETTER(OAK_TRIG_COL_REF, sch_trigcol_ref, SCH_TRIG_COL_INFO_C, ref)
GETTER(OAK_VALUE *, sch_trigcol_val, SCH_TRIG_COL_INFO_C, val)

SETTER(sch_trig_set_timing, SCH_TRIG_INFO, OAK_TRIG_TIMING, timing)
SETTER(sch_trig_set_event, SCH_TRIG_INFO, OAK_TRIG_EVENT, event)
SETTER(sch_trig_set_num_updcols, SCH_TRIG_INFO, uint16_t, num_updcols)
SETTER(sch_trig_set_num_colrefs, SCH_TRIG_INFO, OAK_TRC_INDEX, num_colrefs)

OAK_RETCODE sch_trig_set_updcol(SCH_TRIG_INFO trgi, uint16_t n, OAK_COL_INDEX val) {
    const OAK_RETCODE rc = changeable(trgi);
    if (rc != sOKAY) {
        return rc;
    }
    if (n >= std::min(trgi->num_updcols, trgi->max_updcols)) {
        return eRANGE;
    }
    trgi->updcols[n] = val;
    return sOKAY;
}

SETTER(sch_trigcol_set_ndx, SCH_TRIG_COL_INFO, OAK_TRC_INDEX, ndx)
SETTER(sch_trigcol_set_colid, SCH_TRIG_COL_INFO, OAK_COL_INDEX, colid)
SETTER(sch_trigcol_set_varno, SCH_TRIG_COL_INFO, uint16_t, varno)
SETTER(sch_trigcol_set_ref, SCH_TRIG_COL_INFO, OAK_TRIG_COL_REF, ref)
SETTER(sch_trigcol_set_val, SCH_TRIG_COL_INFO, OAK_VALUE *, val)
