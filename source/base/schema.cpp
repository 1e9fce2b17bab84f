// Life, creators, triggers, identifiers and lookups of a schema.
//
// Objects are made at an index of their parent's array and found by that index;
// the drawers alone, whose numbers are 32 bits wide, lie packed in ascending
// order of number and are found by binary search. The lookup of tables by name
// stands in schema_names.cpp.
#include "schema.h"

#include <iterator>

#include "schema_internal.h"
#include "schema_sysfiles.h"

namespace {

using namespace oak::schema;

// ---- Creation ----------------------------------------------------------------

/// The system table's place in a new schema.
OAK_RETCODE install_system_table(SCH_INFO sch) {
    constexpr OAK_DRAWER kDrawers = std::size(_SysFilesDrawers);
    OAK_RETCODE rc = resize(&sch->drawers, 0, kDrawers, sch->tag);
    if (rc == sOKAY) {
        rc = sch_set_max_table(sch, 1);
    }
    if (rc != sOKAY) {
        return rc;
    }
    std::copy(std::begin(_SysFilesDrawers), std::end(_SysFilesDrawers), sch->drawers);
    sch->drawers_used = kDrawers;
    sch->max_drawer = sch->num_drawers = sch->next_drawer = OAK_DRAWER_RESERVED;
    sch->tables[0] = system_table();
    sch->num_tables = sch->next_table = 1;
    return sOKAY;
}

OAK_RETCODE create_schema(OSL_MEMTAG tag, SCH_INFO *out) {
    OAK_RETCODE rc = get_records(1, tag, out);
    if (rc == sOKAY) {
        (*out)->tag = tag;
        rc = install_system_table(*out);
    }
    return rc;
}

/// A new record at a free place of its parent's array.
template <class Record, class Index>
OAK_RETCODE create_at(Record **place, Index id, OSL_MEMTAG tag, Record **out) {
    if (*place != nullptr) {
        return eBADCAT;
    }
    Record *record = nullptr;
    const OAK_RETCODE rc = get_records(1, tag, &record);
    if (rc != sOKAY) {
        return rc;
    }
    record->ndx = id;
    *place = record;
    *out = record;
    return sOKAY;
}

/// What a creator below a table tests first.
OAK_RETCODE check_place(SCH_TBL_INFO ti, const void *out, uint32_t id, uint32_t capacity) {
    if (out == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = changeable(ti);
    return rc == sOKAY && id >= capacity ? eRANGE : rc;
}

/// Opens the place of a drawer in the packed array.
OAK_RETCODE insert_drawer(SCH_INFO sch, OAK_DRAWER position, SCH_DRAWER_INFO di) {
    const OAK_RETCODE rc =
        resize(&sch->drawers, sch->drawers_used, sch->drawers_used + 1, sch->tag);
    if (rc == sOKAY) {
        SCH_DRAWER_INFO *place = sch->drawers + position;
        std::copy_backward(place, sch->drawers + sch->drawers_used,
                           sch->drawers + sch->drawers_used + 1);
        *place = di;
        ++sch->drawers_used;
    }
    return rc;
}

/// The drawer of a number whether or not the number is below the limit.
SCH_DRAWER_INFO existing_drawer(SCH_INFO_C sch, OAK_DRAWER id) {
    SCH_DRAWER_INFO di = entry(sch->drawers, sch->drawers_used, drawer_position(sch, id));
    return di != nullptr && di->ndx == id ? di : nullptr;
}

// ---- Constants ---------------------------------------------------------------

enum : uint32_t {
    kIndexMask = 0x7fff,
    kKindMask = 0x18000,
    kColumnKind = 0,
    kKeyKind = 0x8000,
    kTableKind = 0x10000,
    kReferenceKind = 0x18000,
    kTableShift = 17
};

uint32_t constant(uint32_t kind, OAK_TBL_INDEX table, OAK_INDEX ndx) {
    return static_cast<uint32_t>(table) << kTableShift | (ndx & kIndexMask) | kind;
}

OAK_TBL_INDEX table_of(uint32_t id) {
    return static_cast<OAK_TBL_INDEX>(id >> kTableShift);
}

OAK_INDEX index_of(uint32_t id) {
    return static_cast<OAK_INDEX>(id & kIndexMask);
}

/// The highest index that holds a table; the index asked for when none can.
OAK_TBL_INDEX highest_table(SCH_INFO_C sch, OAK_TBL_INDEX wanted) {
    for (OAK_TBL_INDEX ndx = sch->next_table; ndx-- > 0;) {
        if (sch->tables[ndx] != nullptr) {
            return ndx;
        }
    }
    return wanted;
}

// ---- Keys by name ------------------------------------------------------------

struct KeySearch {
    const char *name;
    SCH_KEY_INFO found;
};

/// Ends the walk at the first key of the name.
OAK_RETCODE match_key_name(void *item, void *ctx) {
    KeySearch *search = static_cast<KeySearch *>(ctx);
    SCH_KEY_INFO ki = static_cast<SCH_KEY_INFO>(item);
    if (ki->name == nullptr || strcasecmp(ki->name, search->name) != 0) {
        return sOKAY;
    }
    search->found = ki;
    return sNOTFOUND;
}

} // namespace

void oak::schema::discard_caches(SCH_INFO sch) {
    release(&sch->tablesByName, sch->tag);
    sch->tablesByNameUsed = 0;
    b_llDestroy(sch->llKeys);
    sch->llKeys = nullptr;
    b_llDestroy(sch->llBlobCols);
    sch->llBlobCols = nullptr;
}

// ---- Life --------------------------------------------------------------------

OAK_RETCODE sch_create(SCH_INFO *psch) {
    if (psch == nullptr) {
        return eINVNULLARG;
    }
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    SCH_INFO sch = nullptr;
    const OAK_RETCODE rc = create_schema(tag, &sch);
    if (rc != sOKAY) {
        OSL_FREE_TAG(tag);
        return rc;
    }
    *psch = sch;
    return sOKAY;
}

void sch_destroy(SCH_INFO sch) {
    if (sch == nullptr) {
        return;
    }
    if (sch->locale != nullptr) {
        osl_freelocale(sch->locale);
    }
    OSL_FREE_TAG(sch->tag);
}

// ---- Creators ----------------------------------------------------------------

OAK_RETCODE sch_tbl_create(SCH_INFO sch, OAK_TBL_INDEX id, SCH_TBL_INFO *pti) {
    if (sch == nullptr || pti == nullptr) {
        return eINVNULLARG;
    }
    if (id > sch->next_table || id >= sch->max_table) {
        return eRANGE;
    }
    const OAK_RETCODE rc = create_at(&sch->tables[id], id, sch->tag, pti);
    if (rc == sOKAY) {
        (*pti)->sch = sch;
    }
    return rc;
}

OAK_RETCODE sch_drawer_create(SCH_INFO sch, OAK_DRAWER id, SCH_DRAWER_INFO *pdi) {
    if (sch == nullptr || pdi == nullptr) {
        return eINVNULLARG;
    }
    if (id > sch->next_drawer || id >= sch->max_drawer) {
        return eRANGE;
    }
    SCH_DRAWER_INFO di = existing_drawer(sch, id);
    OAK_RETCODE rc = create_at(&di, id, sch->tag, &di);
    if (rc != sOKAY) {
        return rc;
    }
    rc = insert_drawer(sch, drawer_position(sch, id), di);
    if (rc != sOKAY) {
        OSL_FREE(di, sch->tag);
        return rc;
    }
    di->sch = sch;
    *pdi = di;
    return sOKAY;
}

OAK_RETCODE sch_dom_create(SCH_INFO sch, OAK_DOM_INDEX id, SCH_DOMAIN_INFO *pmi) {
    if (sch == nullptr || pmi == nullptr) {
        return eINVNULLARG;
    }
    if (id >= sch->next_domain) {
        return eRANGE;
    }
    const OAK_RETCODE rc = create_at(&sch->domains[id], id, sch->tag, pmi);
    if (rc == sOKAY) {
        (*pmi)->sch = sch;
        (*pmi)->type.sch = sch;
        (*pmi)->def.status = vsNOVAL;
    }
    return rc;
}

OAK_RETCODE sch_col_create(SCH_TBL_INFO ti, OAK_COL_INDEX id, SCH_COL_INFO *pci) {
    OAK_RETCODE rc = check_place(ti, pci, id, ti != nullptr ? ti->max_col : 0u);
    if (rc == sOKAY) {
        rc = create_at(&ti->cols[id], id, tag_of(ti), pci);
    }
    if (rc == sOKAY) {
        (*pci)->table = ti;
        (*pci)->type.sch = ti->sch;
        (*pci)->keyid = OAK_INDEX_NONE;
        (*pci)->def.status = vsNOVAL;
    }
    return rc;
}

OAK_RETCODE sch_key_create(SCH_TBL_INFO ti, OAK_KEY_INDEX id, SCH_KEY_INFO *pki) {
    OAK_RETCODE rc = check_place(ti, pki, id, ti != nullptr ? ti->max_keys : 0u);
    if (rc == sOKAY) {
        rc = create_at(&ti->keys[id], id, tag_of(ti), pki);
    }
    if (rc == sOKAY) {
        (*pki)->table = ti;
    }
    return rc;
}

OAK_RETCODE sch_ref_create(SCH_TBL_INFO ti, OAK_REF_INDEX id, SCH_REF_INFO *pri) {
    OAK_RETCODE rc = check_place(ti, pri, id, ti != nullptr ? ti->next_ref : 0u);
    if (rc == sOKAY) {
        rc = create_at(&ti->refs[id], id, tag_of(ti), pri);
    }
    if (rc == sOKAY) {
        (*pri)->table = ti;
    }
    return rc;
}

// ---- Triggers ----------------------------------------------------------------

OAK_RETCODE sch_trig_allocate(const char *name, uint16_t sqltrig, uint64_t crtime,
                              SCH_TRIG_INFO *ptrgi, OSL_MEMTAG tag) {
    if (name == nullptr || ptrgi == nullptr) {
        return eINVNULLARG;
    }
    SCH_TRIG_INFO trgi = nullptr;
    OAK_RETCODE rc = get_records(1, tag, &trgi);
    if (rc != sOKAY) {
        return rc;
    }
    rc = sch_string_input(name, &trgi->name, OAK_TRUE, tag);
    if (rc != sOKAY) {
        OSL_FREE(trgi, tag);
        return rc;
    }
    trgi->sqltrig = sqltrig;
    trgi->crtime = crtime;
    *ptrgi = trgi;
    return sOKAY;
}

OAK_RETCODE sch_trig_alloc_updcols(SCH_TRIG_INFO trgi, OSL_MEMTAG tag) {
    OAK_RETCODE rc = changeable(trgi);
    if (rc == sOKAY) {
        rc = get_records(trgi->num_updcols, tag, &trgi->updcols);
    }
    if (rc == sOKAY) {
        trgi->max_updcols = trgi->num_updcols;
    }
    return rc;
}

OAK_RETCODE sch_trig_alloc_colrefs(SCH_TRIG_INFO trgi, OSL_MEMTAG tag) {
    OAK_RETCODE rc = changeable(trgi);
    if (rc == sOKAY) {
        rc = get_records(trgi->num_colrefs, tag, &trgi->colrefs);
    }
    if (rc == sOKAY) {
        trgi->max_colrefs = trgi->num_colrefs;
    }
    return rc;
}

OAK_RETCODE sch_trigcol_alloc_val(SCH_TRIG_COL_INFO tci, OSL_MEMTAG tag) {
    const OAK_RETCODE rc = changeable(tci);
    return rc == sOKAY ? get_records(1, tag, &tci->val) : rc;
}

OAK_RETCODE sch_trig_create(SCH_TBL_INFO ti, SCH_TRIG_INFO trgi) {
    if (trgi == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = changeable(ti);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_TRIG_INFO *place = &ti->triggers;
    while (*place != nullptr && (*place)->crtime <= trgi->crtime) {
        place = &(*place)->next;
    }
    trgi->next = *place;
    *place = trgi;
    return sOKAY;
}

// ---- Identifiers -------------------------------------------------------------

uint32_t sch_col_constant(SCH_COL_INFO_C ci) {
    return constant(kColumnKind, ci->table->ndx, ci->ndx);
}

uint32_t sch_key_constant(SCH_KEY_INFO_C ki) {
    return constant(kKeyKind, ki->table->ndx, ki->ndx);
}

uint32_t sch_tbl_constant(SCH_TBL_INFO_C ti) {
    return constant(kTableKind, 0, ti->ndx);
}

uint32_t sch_ref_constant(SCH_REF_INFO_C ri) {
    return constant(kReferenceKind, ri->table->ndx, ri->ndx);
}

// ---- Lookups: tables ---------------------------------------------------------

SCH_TBL_INFO sch_find_table(SCH_INFO_C sch, OAK_DRAWER drawer) {
    for (OAK_TBL_INDEX ndx = 0; ndx < sch->next_table; ++ndx) {
        SCH_TBL_INFO ti = sch->tables[ndx];
        if (ti != nullptr && ti->drawer != nullptr && ti->drawer->ndx == drawer) {
            return ti;
        }
    }
    return nullptr;
}

SCH_TBL_INFO sch_find_table_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX ndx) {
    return ndx == 0 ? system_table() : entry(sch->tables, sch->next_table, ndx);
}

SCH_TBL_INFO sch_table(SCH_INFO_C sch, OAK_TBL_INDEX ndx) {
    return sch_find_table_by_ndx(sch, ndx);
}

SCH_TBL_INFO sch_find_table_by_constant(SCH_INFO_C sch, uint32_t id, OAK_TBL_INDEX *pndx) {
    OAK_TBL_INDEX unused = 0;
    OAK_TBL_INDEX *out = pndx != nullptr ? pndx : &unused;
    if (id == kTableKind) {
        *out = 0;
        return system_table();
    }
    if ((id & kKindMask) != kTableKind) {
        *out = OAK_INDEX_NONE;
        return nullptr;
    }
    SCH_TBL_INFO ti = entry(sch->tables, sch->next_table, index_of(id));
    if (ti == nullptr) {
        *out = highest_table(sch, index_of(id));
    }
    return ti;
}

// ---- Lookups: columns, keys, references, domains, drawers --------------------

SCH_COL_INFO sch_find_col_by_name(SCH_TBL_INFO_C ti, const char *name) {
    const OAK_COL_INDEX limit = column_limit(ti);
    for (OAK_COL_INDEX ndx = 0; name != nullptr && ndx < limit; ++ndx) {
        SCH_COL_INFO ci = ti->cols[ndx];
        if (ci != nullptr && ci->name != nullptr && strcasecmp(ci->name, name) == 0) {
            return ci;
        }
    }
    return nullptr;
}

SCH_COL_INFO sch_find_col_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX table, OAK_COL_INDEX col) {
    SCH_TBL_INFO_C ti = sch_find_table_by_ndx(sch, table);
    SCH_COL_INFO ci = ti != nullptr ? sch_get_col_by_index(ti, col) : nullptr;
    return ci != nullptr && ci->name != nullptr ? ci : nullptr;
}

SCH_COL_INFO sch_find_col_by_constant(SCH_INFO_C sch, uint32_t id) {
    return (id & kKindMask) == kColumnKind ? sch_find_col_by_ndx(sch, table_of(id), index_of(id))
                                           : nullptr;
}

OAK_COL_INDEX sch_find_col_active_ndx(SCH_TBL_INFO_C ti, OAK_COL_INDEX ndx) {
    if (ti->active_ndx == nullptr) {
        return ndx;
    }
    const OAK_COL_INDEX *end = ti->active_ndx + ti->num_cols;
    const OAK_COL_INDEX *place = std::lower_bound<const OAK_COL_INDEX *>(ti->active_ndx, end, ndx);
    return place != end && *place == ndx ? static_cast<OAK_COL_INDEX>(place - ti->active_ndx)
                                         : OAK_INDEX_NONE;
}

SCH_KEY_INFO sch_find_key_by_name(SCH_INFO_C sch, const char *name) {
    if (sch == nullptr || name == nullptr ||
        (sch->llKeys == nullptr && sch_create_key_list(own_handle(sch)) != sOKAY)) {
        return nullptr;
    }
    KeySearch search = {name, nullptr};
    OAK_IGNORE_STATUS(b_llIterate(sch->llKeys, match_key_name, &search), "only ends the walk");
    return search.found;
}

SCH_KEY_INFO sch_find_key_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX table, OAK_KEY_INDEX key) {
    SCH_TBL_INFO_C ti = sch_find_table_by_ndx(sch, table);
    return ti != nullptr ? sch_get_key_by_index(ti, key) : nullptr;
}

SCH_KEY_INFO sch_find_key_by_constant(SCH_INFO_C sch, uint32_t id) {
    if (id == kKeyKind) {
        return own_handle(&_SysFilesNameKey);
    }
    return (id & kKindMask) == kKeyKind ? sch_find_key_by_ndx(sch, table_of(id), index_of(id))
                                        : nullptr;
}

SCH_REF_INFO sch_find_ref_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX table, OAK_REF_INDEX ref) {
    SCH_TBL_INFO_C ti = sch_find_table_by_ndx(sch, table);
    return ti != nullptr ? sch_get_ref_by_index(ti, ref) : nullptr;
}

SCH_REF_INFO sch_find_ref_by_constant(SCH_INFO_C sch, uint32_t id) {
    return (id & kKindMask) == kReferenceKind ? sch_find_ref_by_ndx(sch, table_of(id), index_of(id))
                                              : nullptr;
}

SCH_COL_INFO sch_get_col_by_index(SCH_TBL_INFO_C ti, OAK_COL_INDEX ndx) {
    return entry(ti->cols, column_limit(ti), ndx);
}

SCH_KEY_INFO sch_get_key_by_index(SCH_TBL_INFO_C ti, OAK_KEY_INDEX ndx) {
    return entry(ti->keys, key_limit(ti), ndx);
}

SCH_REF_INFO sch_get_ref_by_index(SCH_TBL_INFO_C ti, OAK_REF_INDEX ndx) {
    return entry(ti->refs, ti->next_ref, ndx);
}

SCH_DOMAIN_INFO sch_domain(SCH_INFO_C sch, OAK_DOM_INDEX ndx) {
    return entry(sch->domains, sch->next_domain, ndx);
}

SCH_DRAWER_INFO sch_drawer(SCH_INFO_C sch, OAK_DRAWER id) {
    if (is_system_drawer(id)) {
        return _SysFilesDrawers[id - kFirstSystemDrawer];
    }
    return id < sch->next_drawer ? existing_drawer(sch, id) : nullptr;
}

void sch_calc_num_refs(SCH_INFO sch) {
    uint32_t total = 0;
    for (SCH_TBL_INFO_C ti = nullptr;
         (ti = sch_iterate_all_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        total += ti->num_refs;
    }
    sch->num_refs = total;
}
