// Removing objects from a schema.
//
// What is freed here may be pointed at from several places: a drawer by its
// owner and by the table's list, a reference by its columns and by the table
// referred to, a table by the references and foreign key columns of other
// tables. Each release clears all of these first. Drops are rare, so the drawers
// are cleared by a walk over the schema instead of by a list of users.
//
// What a drop frees selectively is freed; the rest (column records of a dropped
// table, the values of a dropped reference) is left to the schema's tag.
#include "schema_drop.h"

#include "schema.h"
#include "schema_fcns.h"
#include "schema_internal.h"

namespace {

using namespace oak::schema;

// ---- Drawers -----------------------------------------------------------------

/// Clears a pointer to a drawer.
void forget(SCH_DRAWER_INFO *place, SCH_DRAWER_INFO_C di) {
    if (*place == di) {
        *place = nullptr;
    }
}

/// Clears every pointer to a drawer in a table and its objects. A large object's
/// drawer may belong to several columns, since its source is not compared.
void forget_in_table(SCH_TBL_INFO ti, SCH_DRAWER_INFO_C di) {
    forget(&ti->drawer, di);
    for (OAK_DRAWER n = 0; n < ti->max_drawers; ++n) {
        forget(&ti->drawers[n], di);
    }
    for (SCH_KEY_INFO ki = nullptr; (ki = sch_iterate_keys(ti, ki, OAK_FORWARD)) != nullptr;) {
        forget(&ki->drawer, di);
    }
    for (SCH_REF_INFO ri = nullptr; (ri = sch_iterate_refs(ti, ri, OAK_FORWARD)) != nullptr;) {
        forget(&ri->drawer, di);
    }
    for (SCH_COL_INFO ci = nullptr; (ci = sch_iterate_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
        forget(&ci->drawer, di);
    }
}

/// Takes a drawer out of the schema and frees it.
void release_drawer(SCH_INFO sch, SCH_DRAWER_INFO di) {
    for (SCH_TBL_INFO ti = nullptr; (ti = sch_iterate_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        forget_in_table(ti, di);
    }
    const OAK_DRAWER position = drawer_position(sch, di->ndx);
    std::copy(sch->drawers + position + 1, sch->drawers + sch->drawers_used,
              sch->drawers + position);
    --sch->drawers_used;
    lower(&sch->num_drawers);
    OSL_FREE(di, sch->tag);
}

/// Drops the drawer of a key, reference or column, if it has one; its table
/// counts one less in its list.
void drop_drawer_of(SCH_TBL_INFO ti, SCH_DRAWER_INFO di) {
    if (di == nullptr) {
        return;
    }
    if (position_in(ti->drawers, ti->max_drawers, di) < ti->max_drawers) {
        lower(&ti->num_drawers);
    }
    release_drawer(ti->sch, di);
}

/// Makes a drawer that stays forget an object that goes.
void orphan(SCH_DRAWER_INFO di, const void *object) {
    if (di != nullptr && di->obj.any == object) {
        di->obj.any = nullptr;
    }
}

// ---- Keys --------------------------------------------------------------------

/// Takes the key out of the lists of its columns. A column that does not list it
/// loses its last entry all the same.
void leave_element_columns(SCH_KEY_INFO ki) {
    for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
        SCH_COL_INFO ci = ki->elems[n].col;
        if (ci != nullptr && ci->num_keys > 0) {
            const OAK_KEY_INDEX last = static_cast<OAK_KEY_INDEX>(ci->num_keys - 1);
            const OAK_KEY_INDEX found = position_in(ci->keys, ci->num_keys, ki);
            remove_at(&ci->keys, &ci->num_keys, std::min(found, last), tag_of(ki));
        }
    }
}

/// Clears what points at a key: the table's primary key, columns tied to it, and
/// references that refer to it.
void forget_key(SCH_KEY_INFO_C ki) {
    SCH_TBL_INFO ti = ki->table;
    if (ti->pkey == ki) {
        ti->pkey = nullptr;
    }
    for (SCH_COL_INFO ci = nullptr; (ci = sch_iterate_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
        if (ci->key == ki) {
            ci->key = nullptr;
            ci->keyid = OAK_INDEX_NONE;
        }
    }
    for (OAK_REF_INDEX n = 0; n < owner_limit(ti); ++n) {
        if (SCH_REF_INFO ri = ti->owners[n]; ri != nullptr && ri->refkey == ki) {
            ri->refkey = nullptr;
        }
    }
}

/// Frees what a key holds.
void empty_key(SCH_KEY_INFO ki) {
    OSL_MEMTAG tag = tag_of(ki);
    release(&ki->elems, tag);
    ki->num_elems = 0;
    release(&ki->type_text, tag);
    release(&ki->name, tag);
}

// ---- References --------------------------------------------------------------

/// The reference leaves its referencing columns. A column may also name it as its
/// reference without being one of them.
void leave_columns(SCH_REF_INFO ri) {
    for (OAK_COL_INDEX n = 0; n < ri->num_cols; ++n) {
        SCH_COL_INFO ci = ri->cols[n];
        if (ci == nullptr) {
            continue;
        }
        remove_from(&ci->refs, &ci->num_refs, ri, tag_of(ri));
        if (ci->num_refs == 0) {
            ci->usage = static_cast<uint16_t>(ci->usage & ~OAK_COL_USAGE_REF);
        }
        ci->refcol = nullptr;
        ci->reftab = nullptr;
    }
    for (SCH_COL_INFO ci = nullptr;
         (ci = sch_iterate_cols(ri->table, ci, OAK_FORWARD)) != nullptr;) {
        if (ci->ref == ri) {
            ci->ref = nullptr;
        }
    }
    refresh_row_columns(ri->table);
}

/// The reference leaves its sort columns. The sort bit of the usage is cleared on
/// the referencing columns at the same positions, once nothing sorts on them; a
/// sort column that is no such column keeps its bit.
void leave_sort_columns(SCH_REF_INFO ri) {
    for (OAK_COL_INDEX n = 0; n < ri->num_sort_cols; ++n) {
        if (SCH_COL_INFO ci = ri->sort_cols[n].col; ci != nullptr) {
            remove_from(&ci->sortrefs, &ci->num_sortrefs, ri, tag_of(ri));
        }
    }
    const OAK_COL_INDEX positions = std::min(ri->num_sort_cols, ri->num_cols);
    for (OAK_COL_INDEX n = 0; n < positions; ++n) {
        if (SCH_COL_INFO ci = ri->cols[n]; ci != nullptr && ci->num_sortrefs == 0) {
            ci->usage = static_cast<uint16_t>(ci->usage & ~OAK_COL_USAGE_SORT);
        }
    }
}

/// Frees the payload of the first column value, by the type of the first sort
/// column; the others have nothing left to free. A value of another type than
/// that is only cleared.
void clear_first_value(SCH_REF_INFO ri) {
    if (ri->num_sort_cols == 0 || ri->ref_col_vals == nullptr) {
        return;
    }
    OAK_VALUE &value = ri->ref_col_vals[0].value;
    SCH_COL_INFO_C ci = ri->sort_cols[0].col;
    SCH_TYPE_INFO_C pi = ci != nullptr ? effective_type(ci) : nullptr;
    if (pi != nullptr && pi->type == value.type && pi->type_info != nullptr) {
        sch_col_free_fcn(ci, &value, tag_of(ri));
    }
    value.status = vsNOVAL;
}

/// The reference leaves the table that it refers to.
void leave_owners(SCH_REF_INFO_C ri) {
    SCH_TBL_INFO ti = ri->reftab;
    if (ti != nullptr && entry(ti->owners, owner_limit(ti), ri->owner_ndx) == ri) {
        ti->owners[ri->owner_ndx] = nullptr;
        lower(&ti->num_owns);
    }
}

void drop_reference(SCH_REF_INFO ri) {
    SCH_TBL_INFO ti = ri->table;
    OSL_MEMTAG tag = tag_of(ri);
    drop_drawer_of(ti, ri->drawer);
    leave_columns(ri);
    leave_sort_columns(ri);
    clear_first_value(ri);
    leave_owners(ri);
    OSL_FREE(ri->cols, tag);
    OSL_FREE(ri->sort_cols, tag);
    release(&ri->name, tag);
    ti->refs[ri->ndx] = nullptr;
    lower(&ti->num_refs);
    OSL_FREE(ri, tag);
}

// ---- Tables ------------------------------------------------------------------

/// Frees the table's keys; their drawers stay.
void free_keys(SCH_TBL_INFO ti) {
    for (OAK_KEY_INDEX ndx = 0; ndx < ti->max_keys; ++ndx) {
        SCH_KEY_INFO ki = ti->keys[ndx];
        if (ki != nullptr) {
            orphan(ki->drawer, ki);
            forget_key(ki);
            empty_key(ki);
            release(&ti->keys[ndx], tag_of(ti));
            lower(&ti->num_keys);
        }
    }
}

/// References of other tables that refer to this one, and their columns, refer to
/// nothing from now on.
void forget_referred_table(SCH_TBL_INFO ti) {
    for (OAK_REF_INDEX n = 0; n < owner_limit(ti); ++n) {
        SCH_REF_INFO ri = ti->owners[n];
        if (ri == nullptr) {
            continue;
        }
        ri->reftab = nullptr;
        ri->refkey = nullptr;
    }
    for (SCH_TBL_INFO other = nullptr;
         (other = sch_iterate_tables(ti->sch, other, OAK_FORWARD)) != nullptr;) {
        for (SCH_COL_INFO ci = nullptr;
             (ci = sch_iterate_cols(other, ci, OAK_FORWARD)) != nullptr;) {
            if (ci->reftab == ti) {
                ci->reftab = nullptr;
                ci->refcol = nullptr;
            }
        }
    }
}

/// Makes the drawers that stay forget the table and its large objects.
void orphan_drawers(SCH_TBL_INFO ti) {
    orphan(ti->drawer, ti);
    for (SCH_COL_INFO ci = nullptr; (ci = sch_iterate_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
        orphan(ci->drawer, ci);
    }
}

void free_table(SCH_TBL_INFO ti) {
    OSL_MEMTAG tag = tag_of(ti);
    release(&ti->name, tag);
    release(&ti->check_str, tag);
    release(&ti->check_name, tag);
    OSL_FREE(ti->cols, tag);
    OSL_FREE(ti->active_ndx, tag);
    OSL_FREE(ti->row_columns, tag);
    OSL_FREE(ti->keys, tag);
    OSL_FREE(ti->refs, tag);
    OSL_FREE(ti->avls, tag);
    OSL_FREE(ti->owners, tag);
    OSL_FREE(ti->drawers, tag);
    OSL_FREE(ti, tag);
}

/// True when a column of a user table, live or dropped, has the domain.
bool is_used(SCH_DOMAIN_INFO_C mi) {
    for (SCH_TBL_INFO_C ti = nullptr;
         (ti = sch_iterate_tables(mi->sch, ti, OAK_FORWARD)) != nullptr;) {
        for (OAK_COL_INDEX ndx = 0; ndx < ti->max_col; ++ndx) {
            if (ti->cols[ndx] != nullptr && ti->cols[ndx]->domain == mi) {
                return true;
            }
        }
    }
    return false;
}

/// The column keeps the domain's type, without its check, and leaves the domain.
void leave_domain(SCH_COL_INFO ci) {
    SCH_DOMAIN_INFO mi = ci->domain;
    if (mi == nullptr) {
        return;
    }
    ci->type = mi->type;
    ci->type.check_str = nullptr;
    ci->type.check_name = nullptr;
    ci->domain = nullptr;
    OAK_IGNORE_STATUS(sch_dom_drop(mi), "a domain still in use stays");
}

} // namespace

OAK_RETCODE sch_tbl_drop(SCH_TBL_INFO ti) {
    const OAK_RETCODE rc = changeable(ti);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_INFO sch = ti->sch;
    if (ti->ndx >= sch->next_table) {
        return eRANGE;
    }
    for (OAK_REF_INDEX id = 0; id < ti->next_ref; ++id) {
        OAK_IGNORE_STATUS(sch_ref_drop(ti, id), "the index is below the limit");
    }
    free_keys(ti);
    forget_referred_table(ti);
    orphan_drawers(ti);
    sch->tables[ti->ndx] = nullptr;
    lower(&sch->num_tables);
    free_table(ti);
    discard_caches(sch);
    return sOKAY;
}

OAK_RETCODE sch_tbl_drawers_drop(SCH_TBL_INFO_C ti) {
    OAK_RETCODE rc = changeable(ti);
    if (rc != sOKAY) {
        return rc;
    }
    SCH_TBL_INFO table = own_handle(ti);
    if (sch_tbl_drawer(ti) < ti->sch->next_drawer) {
        release_drawer(ti->sch, ti->drawer);
    } else {
        rc = eRANGE;
    }
    for (OAK_DRAWER n = 1; n < ti->max_drawers; ++n) {
        if (ti->drawers[n] != nullptr) {
            release_drawer(ti->sch, ti->drawers[n]);
        }
    }
    release(&table->drawers, tag_of(ti));
    table->num_drawers = table->max_drawers = 0;
    return rc;
}

OAK_RETCODE sch_tbl_col_drop(SCH_COL_INFO ci) {
    const OAK_RETCODE rc = changeable(ci);
    if (rc != sOKAY || ci->name == nullptr) {
        return rc;
    }
    OSL_MEMTAG tag = tag_of(ci);
    if (ci->not_null) {
        release(&ci->not_null_cname, tag);
    }
    release(&ci->name, tag);
    drop_drawer_of(ci->table, ci->drawer);
    leave_domain(ci);
    lower(&ci->table->num_cols);
    refresh_row_columns(ci->table);
    discard_caches(ci->table->sch);
    return sOKAY;
}

void sch_key_drop_fcn(SCH_KEY_INFO ki) {
    if (changeable(ki) != sOKAY) {
        return;
    }
    SCH_TBL_INFO ti = ki->table;
    drop_drawer_of(ti, ki->drawer);
    leave_element_columns(ki);
    forget_key(ki);
    empty_key(ki);
    discard_caches(ti->sch);
    if (ki->method == OAK_KEY_METHOD_AVL) {
        if (entry(ti->avls, ti->max_avls, ki->avl_ndx) == ki) {
            ti->avls[ki->avl_ndx] = nullptr;
            lower(&ti->num_avls);
        }
        return;
    }
    lower(&ti->num_keys);
    ti->keys[ki->ndx] = nullptr;
    OSL_FREE(ki, tag_of(ti));
}

OAK_RETCODE sch_ref_drop(SCH_TBL_INFO ti, OAK_REF_INDEX id) {
    const OAK_RETCODE rc = changeable(ti);
    if (rc != sOKAY) {
        return rc;
    }
    if (id >= ti->next_ref) {
        return eRANGE;
    }
    if (ti->refs[id] != nullptr) {
        drop_reference(ti->refs[id]);
    }
    return sOKAY;
}

OAK_RETCODE sch_dom_drop(SCH_DOMAIN_INFO_C mi) {
    const OAK_RETCODE rc = changeable(mi);
    if (rc != sOKAY || is_used(mi)) {
        return rc;
    }
    SCH_INFO sch = mi->sch;
    SCH_DOMAIN_INFO domain = own_handle(mi);
    sch->domains[mi->ndx] = nullptr;
    lower(&sch->num_domains);
    release(&domain->defstr, sch->tag);
    release(&domain->format, sch->tag);
    release(&domain->name, sch->tag);
    OSL_FREE(domain, sch->tag);
    return sOKAY;
}

OAK_RETCODE sch_trig_drop(SCH_TBL_INFO ti, const char *name) {
    if (name == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE rc = changeable(ti);
    if (rc != sOKAY) {
        return rc;
    }
    for (SCH_TRIG_INFO *place = &ti->triggers; *place != nullptr; place = &(*place)->next) {
        if (compare_names((*place)->name, name) == 0) {
            *place = (*place)->next;
            return sOKAY;
        }
    }
    return eNOTFOUND;
}
