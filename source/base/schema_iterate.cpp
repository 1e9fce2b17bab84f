// The iterators of a schema.
//
// Four shapes serve all of them. An array with holes is walked by the index of
// the object before. Records by value are walked by their position. A list of
// related objects has no position in the object, so the object before is
// searched. The schema's drawers lie packed and are found by number. The two
// schema-wide lists alone keep their place themselves.
#include "schema_iterate.h"

#include <iterator>

#include "schema_internal.h"
#include "schema_sysfiles.h"

namespace {

using namespace oak::schema;

// ---- The shapes --------------------------------------------------------------

/// The next entry of `array` that is no hole, within `first` to `limit` - 1; the
/// walk begins at an end when `previous` is null.
template <class Record>
Record *next_entry(Record *const *array, uint32_t first, uint32_t limit, const Record *previous,
                   uint32_t position, OAK_DIRECTION dir) {
    if (dir == OAK_FORWARD) {
        for (uint32_t n = previous != nullptr ? position + 1 : first; n < limit; ++n) {
            if (array[n] != nullptr) {
                return array[n];
            }
        }
        return nullptr;
    }
    for (uint32_t n = previous != nullptr ? std::min(position, limit) : limit; n > first;) {
        if (array[--n] != nullptr) {
            return array[n];
        }
    }
    return nullptr;
}

/// The position of the object before, 0 when there is none.
template <class Record>
uint32_t index_of(const Record *previous) {
    return previous != nullptr ? previous->ndx : 0;
}

/// The position after, or before, another; `limit` or above is past the end.
/// Beginning in reverse at an empty array is past the end too.
uint32_t next_position(bool begins, uint32_t position, uint32_t limit, OAK_DIRECTION dir) {
    if (dir == OAK_FORWARD) {
        return begins ? 0 : position + 1;
    }
    return (begins ? limit : position) - 1;
}

/// A walk by position without holes.
template <class Record>
Record *next_record(Record *records, uint32_t count, const Record *previous, OAK_DIRECTION dir) {
    const uint32_t n = next_position(previous == nullptr, index_of(previous), count, dir);
    return n < count ? &records[n] : nullptr;
}

/// A walk over a list that has to be searched for the object before; one that is
/// not there ends the walk.
template <class Record, class Index>
Record *next_listed(Record *const *list, Index count, const Record *previous, OAK_DIRECTION dir) {
    const Index position = position_in(list, count, previous);
    if (previous != nullptr && position == count) {
        return nullptr;
    }
    return entry(list, count, next_position(previous == nullptr, position, count, dir));
}

/// The first object of a walk that passes the filter.
template <class Parent, class Record, class Filter>
Record *next_that(Record *(*walk)(Parent, const Record *, OAK_DIRECTION), Parent parent,
                  const Record *previous, OAK_DIRECTION dir, Filter passes) {
    Record *object = walk(parent, previous, dir);
    while (object != nullptr && !passes(object)) {
        object = walk(parent, object, dir);
    }
    return object;
}

// ---- Drawers of a schema -----------------------------------------------------

/// The next drawer with a number from `first` and below the schema's limit. In
/// reverse `first` itself is not delivered: the walk ends when it gets there.
SCH_DRAWER_INFO next_drawer(SCH_INFO_C sch, OAK_DRAWER first, SCH_DRAWER_INFO_C previous,
                            OAK_DIRECTION dir) {
    if (dir == OAK_FORWARD) {
        const OAK_DRAWER from = previous != nullptr ? previous->ndx + 1 : first;
        SCH_DRAWER_INFO di = entry(sch->drawers, sch->drawers_used, drawer_position(sch, from));
        return di != nullptr && di->ndx < sch->next_drawer ? di : nullptr;
    }
    const OAK_DRAWER below = previous != nullptr ? previous->ndx : sch->next_drawer;
    const OAK_DRAWER position = drawer_position(sch, below);
    SCH_DRAWER_INFO di = position > 0 ? sch->drawers[position - 1] : nullptr;
    return di != nullptr && di->ndx > first ? di : nullptr;
}

// ---- Lists of a schema -------------------------------------------------------

/// A step in a list that keeps its own place.
template <class Record>
Record *next_in(B_LL list, const Record *previous, OAK_DIRECTION dir) {
    void *item = nullptr;
    if (dir == OAK_FORWARD) {
        item = previous == nullptr ? b_llFirst(list) : b_llNext(list);
    } else {
        item = previous == nullptr ? b_llLast(list) : b_llPrev(list);
    }
    return static_cast<Record *>(item);
}

OAK_RETCODE add_keys(SCH_INFO_C sch, B_LL list) {
    OAK_RETCODE rc = sOKAY;
    for (SCH_TBL_INFO_C ti = nullptr; (ti = sch_iterate_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        for (SCH_KEY_INFO ki = nullptr;
             rc == sOKAY && (ki = sch_iterate_keys(ti, ki, OAK_FORWARD)) != nullptr;) {
            rc = b_llAddTail(list, ki);
        }
    }
    return rc;
}

OAK_RETCODE add_lob_columns(SCH_INFO_C sch, B_LL list) {
    OAK_RETCODE rc = sOKAY;
    for (SCH_TBL_INFO_C ti = nullptr;
         (ti = sch_iterate_all_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        for (SCH_COL_INFO ci = nullptr;
             rc == sOKAY && (ci = sch_iterate_lob_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
            rc = ci->name != nullptr ? b_llAddTail(list, ci) : sOKAY;
        }
    }
    return rc;
}

/// Replaces the list at `place` by a new one; a failure leaves none.
OAK_RETCODE build_list(SCH_INFO sch, B_LL *place, OAK_RETCODE (*fill)(SCH_INFO_C, B_LL)) {
    b_llDestroy(*place);
    *place = nullptr;
    OAK_RETCODE rc = b_llCreate(OAK_FALSE, sch->tag, place);
    if (rc != sOKAY) {
        return rc;
    }
    rc = fill(sch, *place);
    if (rc != sOKAY) {
        b_llDestroy(*place);
        *place = nullptr;
    }
    return rc;
}

} // namespace

// ---- Of a schema -------------------------------------------------------------

SCH_TBL_INFO sch_iterate_tables(SCH_INFO_C sch, SCH_TBL_INFO_C ti, OAK_DIRECTION dir) {
    constexpr uint32_t kFirstUserTable = 1;
    return sch != nullptr
               ? next_entry(sch->tables, kFirstUserTable, sch->next_table, ti, index_of(ti), dir)
               : nullptr;
}

SCH_TBL_INFO sch_iterate_all_tables(SCH_INFO_C sch, SCH_TBL_INFO_C ti, OAK_DIRECTION dir) {
    if (sch == nullptr) {
        return ti == nullptr ? system_table() : nullptr;
    }
    return next_entry(sch->tables, 0, sch->next_table, ti, index_of(ti), dir);
}

SCH_DOMAIN_INFO sch_iterate_domains(SCH_INFO_C sch, SCH_DOMAIN_INFO_C mi, OAK_DIRECTION dir) {
    const OAK_DOM_INDEX limit = std::min(sch->num_domains, sch->next_domain);
    return next_entry(sch->domains, 0, limit, mi, index_of(mi), dir);
}

SCH_DRAWER_INFO sch_iterate_user_drawers(SCH_INFO_C sch, SCH_DRAWER_INFO_C di, OAK_DIRECTION dir) {
    return next_drawer(sch, OAK_DRAWER_RESERVED, di, dir);
}

SCH_DRAWER_INFO sch_iterate_all_drawers(SCH_INFO_C sch, SCH_DRAWER_INFO_C di, OAK_DIRECTION dir) {
    return sch != nullptr ? next_drawer(sch, kFirstSystemDrawer, di, dir)
                          : sch_iterate_system_drawers(sch, di, dir);
}

SCH_DRAWER_INFO sch_iterate_system_drawers(SCH_INFO_C, SCH_DRAWER_INFO_C di, OAK_DIRECTION dir) {
    constexpr uint32_t kCount = std::size(_SysFilesDrawers);
    const uint32_t position = di != nullptr ? di->ndx - kFirstSystemDrawer : 0;
    return entry(_SysFilesDrawers, kCount, next_position(di == nullptr, position, kCount, dir));
}

SCH_KEY_INFO sch_iterate_all_keys(SCH_INFO_C sch, SCH_KEY_INFO_C ki, OAK_DIRECTION dir) {
    if (sch == nullptr ||
        (sch->llKeys == nullptr && sch_create_key_list(own_handle(sch)) != sOKAY)) {
        return nullptr;
    }
    return next_in(sch->llKeys, ki, dir);
}

SCH_COL_INFO sch_iterate_all_lob_cols(SCH_INFO_C sch, SCH_COL_INFO_C ci, OAK_DIRECTION dir) {
    if (sch == nullptr) {
        return ci == nullptr ? own_handle(&_SysFilesColBlob) : nullptr;
    }
    SCH_INFO owner = own_handle(sch);
    if (sch->llBlobCols == nullptr &&
        build_list(owner, &owner->llBlobCols, add_lob_columns) != sOKAY) {
        return nullptr;
    }
    return next_in(sch->llBlobCols, ci, dir);
}

OAK_RETCODE sch_create_key_list(SCH_INFO sch) {
    return sch != nullptr ? build_list(sch, &sch->llKeys, add_keys) : eINVNULLARG;
}

// ---- Of a table --------------------------------------------------------------

SCH_DRAWER_INFO sch_iterate_table_drawers(SCH_TBL_INFO_C ti, SCH_DRAWER_INFO_C di,
                                          OAK_DIRECTION dir) {
    const OAK_DRAWER limit = std::min(ti->num_drawers, ti->max_drawers);
    return next_entry(ti->drawers, 0, limit, di, di != nullptr ? di->tbl_ndx : 0, dir);
}

SCH_COL_INFO sch_iterate_cols(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci, OAK_DIRECTION dir) {
    return next_entry(ti->cols, 0, column_limit(ti), ci, index_of(ci), dir);
}

SCH_COL_INFO sch_iterate_cols_active(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci, OAK_DIRECTION dir) {
    return next_that(sch_iterate_cols, ti, ci, dir,
                     [](SCH_COL_INFO_C col) { return col->name != nullptr; });
}

SCH_COL_INFO sch_iterate_non_lob_cols(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci, OAK_DIRECTION dir) {
    return next_that(sch_iterate_cols, ti, ci, dir, [](SCH_COL_INFO_C col) {
        return !is_large_object(effective_type(col)->type);
    });
}

SCH_COL_INFO sch_iterate_lob_cols(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci, OAK_DIRECTION dir) {
    return next_that(sch_iterate_cols, ti, ci, dir,
                     [](SCH_COL_INFO_C col) { return is_large_object(effective_type(col)->type); });
}

SCH_KEY_INFO sch_iterate_keys(SCH_TBL_INFO_C ti, SCH_KEY_INFO_C ki, OAK_DIRECTION dir) {
    return next_entry(ti->keys, 0, key_limit(ti), ki, index_of(ki), dir);
}

SCH_KEY_INFO sch_iterate_keys_active(SCH_TBL_INFO_C ti, SCH_KEY_INFO_C ki, OAK_DIRECTION dir) {
    return next_that(sch_iterate_keys, ti, ki, dir,
                     [](SCH_KEY_INFO_C key) { return key->name != nullptr; });
}

// In reverse the entries at or above the number of references are taken as they
// stand, so a hole there ends the walk.
SCH_REF_INFO sch_iterate_refs(SCH_TBL_INFO_C ti, SCH_REF_INFO_C ri, OAK_DIRECTION dir) {
    if (dir != OAK_FORWARD) {
        const uint32_t n = next_position(ri == nullptr, index_of(ri), ti->next_ref, dir);
        if (n >= ti->num_refs) {
            return entry(ti->refs, ti->next_ref, n);
        }
    }
    return next_entry(ti->refs, 0, ti->next_ref, ri, index_of(ri), dir);
}

SCH_REF_INFO sch_iterate_ref_owners(SCH_TBL_INFO_C ti, SCH_REF_INFO_C ri, OAK_DIRECTION dir) {
    const OAK_REF_INDEX limit = std::min(ti->num_owns, ti->max_owns);
    const uint32_t position = ri != nullptr ? ri->owner_ndx : 0;
    return entry(ti->owners, limit, next_position(ri == nullptr, position, limit, dir));
}

SCH_TRIG_INFO sch_iterate_all_triggers(SCH_TBL_INFO_C ti, SCH_TRIG_INFO_C trgi, OAK_DIRECTION) {
    return trgi != nullptr ? trgi->next : ti->triggers;
}

SCH_TRIG_INFO sch_iterate_triggers(SCH_TBL_INFO_C ti, SCH_TRIG_INFO_C trgi, OAK_TRIG_TIMING timing,
                                   OAK_TRIG_EVENT event) {
    return next_that(sch_iterate_all_triggers, ti, trgi, OAK_FORWARD,
                     [timing, event](SCH_TRIG_INFO_C trigger) {
                         return trigger->event == event &&
                                (timing == OAK_TRIG_WHENEVER || trigger->timing == timing);
                     });
}

// ---- Of a column, a key, a reference, a trigger ------------------------------

SCH_KEY_INFO sch_iterate_col_keys(SCH_COL_INFO_C ci, SCH_KEY_INFO_C ki, OAK_DIRECTION dir) {
    return next_listed(ci->keys, ci->num_keys, ki, dir);
}

SCH_REF_INFO sch_iterate_col_refs(SCH_COL_INFO_C ci, SCH_REF_INFO_C ri, OAK_DIRECTION dir) {
    return next_listed(ci->refs, ci->num_refs, ri, dir);
}

SCH_REF_INFO sch_iterate_sortcol_refs(SCH_COL_INFO_C ci, SCH_REF_INFO_C ri, OAK_DIRECTION dir) {
    return next_listed(ci->sortrefs, ci->num_sortrefs, ri, dir);
}

SCH_ELEM_INFO sch_iterate_key_elems(SCH_KEY_INFO_C ki, SCH_ELEM_INFO_C ei, OAK_DIRECTION dir) {
    return next_record(ki->elems, ki->num_elems, ei, dir);
}

SCH_COL_INFO sch_iterate_ref_cols(SCH_REF_INFO_C ri, SCH_COL_INFO_C ci, OAK_DIRECTION dir) {
    return next_listed(ri->cols, ri->num_cols, ci, dir);
}

SCH_SORT_INFO sch_iterate_sort_cols(SCH_REF_INFO_C ri, SCH_SORT_INFO_C si, OAK_DIRECTION dir) {
    return next_record(ri->sort_cols, ri->num_sort_cols, si, dir);
}

// The place of a column reference is its place in the array; its `ndx` is its
// maker's to choose.
SCH_TRIG_COL_INFO sch_iterate_trig_cols(SCH_TRIG_INFO_C trgi, SCH_TRIG_COL_INFO_C tcol,
                                        OAK_TRIG_COL_REF ref) {
    const OAK_TRC_INDEX limit = std::min(trgi->num_colrefs, trgi->max_colrefs);
    auto n = tcol != nullptr ? static_cast<OAK_TRC_INDEX>(tcol - trgi->colrefs + 1) : 0;
    for (; n < limit; ++n) {
        if (ref == OAK_TRIG_OLDNEW || trgi->colrefs[n].ref == ref) {
            return &trgi->colrefs[n];
        }
    }
    return nullptr;
}
