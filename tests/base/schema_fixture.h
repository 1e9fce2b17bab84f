// What the tests of the schema share: a schema that must be gone at the end, the
// building of its objects in one call each, a text of everything that a schema
// holds, and the sweep that fails each allocation of a single change.
#ifndef SCHEMA_FIXTURE_H
#define SCHEMA_FIXTURE_H

#include <sstream>
#include <string>
#include <vector>

#include "schema.h"
#include "schema_internal.h"
#include "test_support.h"

namespace oaktest {

// ---- A schema and its objects ------------------------------------------------

class Schema {
  public:
    Schema() { EXPECT_EQ(sch_create(&sch_), sOKAY); }
    ~Schema() { sch_destroy(sch_); }
    Schema(const Schema &) = delete;
    Schema &operator=(const Schema &) = delete;
    operator SCH_INFO() const { return sch_; }
    SCH_INFO get() const { return sch_; }
    SCH_INFO operator->() const { return sch_; }

    /// A counted table with room for 16 columns, 8 keys and 8 references.
    SCH_TBL_INFO table(OAK_TBL_INDEX id, const char *name) {
        EXPECT_EQ(sch_set_max_table(sch_, std::max<OAK_TBL_INDEX>(sch_->max_table, id + 1)), sOKAY);
        EXPECT_EQ(sch_set_next_table(sch_, std::max<OAK_TBL_INDEX>(sch_->next_table, id + 1)),
                  sOKAY);
        SCH_TBL_INFO ti = nullptr;
        EXPECT_EQ(sch_tbl_create(sch_, id, &ti), sOKAY);
        EXPECT_EQ(sch_set_num_tables(sch_, static_cast<OAK_TBL_INDEX>(sch_->num_tables + 1)),
                  sOKAY);
        EXPECT_EQ(sch_tbl_set_name(ti, name), sOKAY);
        EXPECT_EQ(sch_tbl_set_max_cols(ti, 16), sOKAY);
        EXPECT_EQ(sch_tbl_set_max_keys(ti, 8), sOKAY);
        EXPECT_EQ(sch_tbl_set_next_ref(ti, 8), sOKAY);
        return ti;
    }

    /// A counted domain; there is room for 8.
    SCH_DOMAIN_INFO domain(OAK_DOM_INDEX id, const char *name, OAK_TYPE type, uint32_t length = 0) {
        EXPECT_EQ(sch_set_next_domain(sch_, 8), sOKAY);
        SCH_DOMAIN_INFO mi = nullptr;
        EXPECT_EQ(sch_dom_create(sch_, id, &mi), sOKAY);
        EXPECT_EQ(sch_set_num_domains(sch_, static_cast<OAK_DOM_INDEX>(sch_->num_domains + 1)),
                  sOKAY);
        EXPECT_EQ(sch_dom_set_name(mi, name), sOKAY);
        set_type(sch_dom_type(mi), type, length, 0);
        return mi;
    }

    /// A counted drawer.
    SCH_DRAWER_INFO drawer(OAK_DRAWER id, OAK_DRAWER_TYPE type, OAK_TBL_INDEX table,
                           OAK_INDEX item) {
        EXPECT_EQ(sch_set_max_drawer(sch_, std::max(sch_->max_drawer, id + 1)), sOKAY);
        EXPECT_EQ(sch_set_next_drawer(sch_, std::max(sch_->next_drawer, id + 1)), sOKAY);
        EXPECT_EQ(sch_set_num_drawers(sch_, sch_->num_drawers + 1), sOKAY);
        SCH_DRAWER_INFO di = nullptr;
        EXPECT_EQ(sch_drawer_create(sch_, id, &di), sOKAY);
        EXPECT_EQ(sch_drawer_set_type(di, type), sOKAY);
        EXPECT_EQ(sch_drawer_set_source_table(di, table), sOKAY);
        EXPECT_EQ(sch_drawer_set_source_item(di, item), sOKAY);
        return di;
    }

    static void set_type(SCH_TYPE_INFO pi, OAK_TYPE type, uint32_t length, uint16_t elems) {
        EXPECT_EQ(sch_type_set_data_type(pi, type, OAK_TRUE), sOKAY);
        if (length != 0) {
            EXPECT_EQ(sch_type_set_length(pi, length), sOKAY);
        }
        if (elems != 0) {
            EXPECT_EQ(sch_type_set_elems(pi, elems), sOKAY);
        }
    }

    /// A counted column; without a type when `type` is OAK_NOVAL.
    static SCH_COL_INFO column(SCH_TBL_INFO ti, OAK_COL_INDEX id, const char *name, OAK_TYPE type,
                               uint32_t length = 0, uint16_t elems = 0) {
        SCH_COL_INFO ci = nullptr;
        EXPECT_EQ(sch_col_create(ti, id, &ci), sOKAY);
        EXPECT_EQ(sch_col_set_name(ci, name), sOKAY);
        if (type != OAK_NOVAL) {
            set_type(sch_col_type(ci), type, length, elems);
        }
        EXPECT_EQ(sch_tbl_set_num_cols(ti, static_cast<OAK_COL_INDEX>(ti->num_cols + 1)), sOKAY);
        EXPECT_EQ(sch_tbl_set_next_col(ti, std::max<OAK_COL_INDEX>(ti->next_col, id + 1)), sOKAY);
        return ci;
    }

    /// The same, declared NOT NULL.
    static SCH_COL_INFO not_null_column(SCH_TBL_INFO ti, OAK_COL_INDEX id, const char *name,
                                        OAK_TYPE type, uint32_t length = 0, uint16_t elems = 0) {
        SCH_COL_INFO ci = column(ti, id, name, type, length, elems);
        EXPECT_EQ(sch_col_set_not_null(ci, nullptr), sOKAY);
        return ci;
    }

    /// A counted key over columns, nameless when `name` is null.
    static SCH_KEY_INFO key(SCH_TBL_INFO ti, OAK_KEY_INDEX id, const char *name, OAK_KEY_TYPE type,
                            OAK_KEY_METHOD method, const std::vector<OAK_COL_INDEX> &cols) {
        SCH_KEY_INFO ki = nullptr;
        EXPECT_EQ(sch_key_create(ti, id, &ki), sOKAY);
        EXPECT_EQ(sch_key_set_name(ki, name), sOKAY);
        EXPECT_EQ(sch_key_set_type(ki, type), sOKAY);
        EXPECT_EQ(sch_key_set_method(ki, method), sOKAY);
        EXPECT_EQ(sch_key_set_num_elems(ki, static_cast<OAK_COL_INDEX>(cols.size())), sOKAY);
        for (OAK_COL_INDEX n = 0; n < cols.size(); ++n) {
            EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, n), cols[n]), sOKAY);
            EXPECT_EQ(sch_elem_set_order(sch_key_elem(ki, n), OAK_FORWARD), sOKAY);
        }
        EXPECT_EQ(sch_tbl_set_num_keys(ti, static_cast<OAK_KEY_INDEX>(ti->num_keys + 1)), sOKAY);
        EXPECT_EQ(sch_tbl_set_next_key(ti, std::max<OAK_KEY_INDEX>(ti->next_key, id + 1)), sOKAY);
        return ki;
    }

    /// A counted reference to a table over columns, with sort columns.
    static SCH_REF_INFO reference(SCH_TBL_INFO ti, OAK_REF_INDEX id, const char *name,
                                  OAK_TBL_INDEX target, const std::vector<OAK_COL_INDEX> &cols,
                                  const std::vector<OAK_COL_INDEX> &sort_cols = {}) {
        SCH_REF_INFO ri = nullptr;
        EXPECT_EQ(sch_ref_create(ti, id, &ri), sOKAY);
        EXPECT_EQ(sch_ref_set_name(ri, name), sOKAY);
        EXPECT_EQ(sch_ref_set_reftab(ri, target), sOKAY);
        EXPECT_EQ(sch_ref_set_num_cols(ri, static_cast<OAK_COL_INDEX>(cols.size())), sOKAY);
        for (OAK_COL_INDEX n = 0; n < cols.size(); ++n) {
            EXPECT_EQ(sch_ref_set_col(ri, n, cols[n]), sOKAY);
        }
        EXPECT_EQ(sch_ref_set_num_sort_cols(ri, static_cast<OAK_COL_INDEX>(sort_cols.size())),
                  sOKAY);
        for (OAK_COL_INDEX n = 0; n < sort_cols.size(); ++n) {
            EXPECT_EQ(sch_ref_set_sort_col(ri, n, sort_cols[n]), sOKAY);
            EXPECT_EQ(sch_ref_set_sort_order(ri, n, OAK_FORWARD), sOKAY);
        }
        EXPECT_EQ(sch_tbl_set_num_refs(ti, static_cast<OAK_REF_INDEX>(ti->num_refs + 1)), sOKAY);
        return ri;
    }

  private:
    SCH_INFO sch_ = nullptr;
};

// ---- Everything that a schema holds, as a text -------------------------------

class Dump {
  public:
    static std::string of(SCH_INFO_C sch) {
        Dump dump;
        dump.schema(sch);
        return dump.out_.str();
    }

  private:
    template <class... Values>
    void line(const char *what, const Values &...values) {
        out_ << what;
        ((out_ << ' ' << values), ...);
        out_ << '\n';
    }
    static const char *text(const char *value) { return value != nullptr ? value : "-"; }
    /// Objects are told apart by their address.
    static const void *at(const void *object) { return object; }

    void type(const _SCH_TYPE_INFO &pi) {
        line("type", pi.type, pi.elems, pi.byte_len, text(pi.check_str), text(pi.check_name),
             at(pi.type_info), at(pi.sch), pi.x.c.len, pi.x.c.use_locale, at(pi.x.c.locale));
    }

    void schema(SCH_INFO_C sch) {
        line("schema", text(sch->name), sch->use_locale, text(sch->locale_text), at(sch->locale),
             sch->catver, sch->dbver, sch->encryption, sch->max_drawer, sch->num_drawers,
             sch->next_drawer, sch->num_domains, sch->next_domain, sch->max_table, sch->num_tables,
             sch->next_table, sch->num_refs);
        for (OAK_DRAWER n = 0; n < sch->drawers_used; ++n) {
            drawer(sch->drawers[n]);
        }
        for (OAK_DOM_INDEX n = 0; n < sch->next_domain; ++n) {
            line("domain place", n, at(sch->domains[n]));
            if (sch->domains[n] != nullptr) {
                domain(sch->domains[n]);
            }
        }
        for (OAK_TBL_INDEX n = 0; n < sch->max_table; ++n) {
            line("table place", n, at(sch->tables[n]));
            if (sch->tables[n] != nullptr) {
                table(sch->tables[n]);
            }
        }
    }

    void drawer(SCH_DRAWER_INFO_C di) {
        line("drawer", di->ndx, di->tbl_ndx, at(di->sch), di->type, at(di->obj.any), di->compact,
             di->src_tblid, di->src_id);
    }

    void domain(SCH_DOMAIN_INFO_C mi) {
        line("domain", mi->ndx, text(mi->name), mi->def.status, text(mi->defstr), mi->width,
             text(mi->format));
        type(mi->type);
    }

    void table(SCH_TBL_INFO_C ti) {
        line("table", ti->ndx, text(ti->name), text(ti->check_str), text(ti->check_name), ti->type,
             ti->max_rows, at(ti->drawer), ti->num_cols, ti->next_col, ti->max_col, ti->max_keys,
             ti->num_keys, ti->next_key, at(ti->pkey), ti->num_refs, ti->next_ref, ti->num_avls,
             ti->max_avls, ti->next_avl, ti->num_drawers, ti->max_drawers, ti->num_owns,
             ti->max_owns, ti->next_own, ti->has_value_off, ti->byte_len,
             ti->bufferInfo.row_buffer_size, ti->offset, at(ti->triggers), at(ti->active_ndx));
        each("column", ti->cols, ti->max_col, &Dump::column);
        each("key", ti->keys, ti->max_keys, &Dump::key);
        each("reference", ti->refs, ti->next_ref, &Dump::reference);
        places("avl", ti->avls, ti->max_avls);
        places("owner", ti->owners, ti->max_owns);
        places("table drawer", ti->drawers, ti->max_drawers);
    }

    void column(SCH_COL_INFO_C ci) {
        line("column", ci->ndx, text(ci->name), ci->not_null, text(ci->not_null_cname),
             at(ci->domain), ci->def.status, text(ci->defstr), ci->width, text(ci->format),
             ci->keyid, at(ci->key), ci->usage, at(ci->drawer), at(ci->ref), at(ci->reftab),
             at(ci->refcol), ci->ptr, ci->has_value_off);
        type(ci->type);
        places("column key", ci->keys, ci->num_keys);
        places("column reference", ci->refs, ci->num_refs);
        places("column sort reference", ci->sortrefs, ci->num_sortrefs);
    }

    void key(SCH_KEY_INFO_C ki) {
        line("key", ki->ndx, text(ki->name), ki->type, ki->method, ki->restr, at(ki->drawer),
             ki->num_elems, ki->refcount, ki->byte_len, ki->has_value_off, ki->inline_key,
             ki->avl_ndx, ki->bufferInfo.bucket.buffer_len);
        for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
            const _SCH_ELEM_INFO &ei = ki->elems[n];
            line("element", ei.ndx, at(ei.key), at(ei.col), ei.dir, ei.ptr, ei.has_value_off);
        }
    }

    void reference(SCH_REF_INFO_C ri) {
        line("reference", ri->ndx, ri->owner_ndx, text(ri->name), at(ri->reftab), at(ri->refkey),
             at(ri->drawer), ri->on_update, ri->on_delete, ri->num_cols, ri->num_sort_cols,
             ri->sort_byte_len, ri->requires_write);
        for (OAK_COL_INDEX n = 0; n < ri->num_cols; ++n) {
            line("referencing", at(ri->cols[n]), ri->ref_col_vals[n].columnId,
                 ri->ref_col_vals[n].value.status);
        }
        for (OAK_COL_INDEX n = 0; n < ri->num_sort_cols; ++n) {
            const _SCH_SORT_INFO &si = ri->sort_cols[n];
            line("sort", si.ndx, at(si.ref), at(si.col), si.order, si.ptr, si.has_value_off);
        }
    }

    template <class Record>
    void places(const char *what, Record *const *list, uint32_t count) {
        for (uint32_t n = 0; n < count; ++n) {
            line(what, n, at(list[n]));
        }
    }
    template <class Record>
    void each(const char *what, Record *const *list, uint32_t count,
              void (Dump::*dump)(const Record *)) {
        places(what, list, count);
        for (uint32_t n = 0; n < count; ++n) {
            if (list[n] != nullptr) {
                (this->*dump)(list[n]);
            }
        }
    }

    std::ostringstream out_;
};

// ---- The sweep of one change -------------------------------------------------

/// Builds a schema, makes the n-th allocation of `change` fail, and asserts that
/// the status is eNOMEMORY and that the schema holds what it held before; for n
/// from 1 until no allocation fails. `change` finds its objects in the schema
/// that it is given.
inline void sweep_change(const std::function<void(Schema &)> &build,
                         const std::function<OAK_RETCODE(Schema &)> &change) {
#ifdef OSL_FAULT_INJECTION
    for (uint64_t nth = 1;; ++nth) {
        const Live live = Live::now();
        uint64_t injected = 0;
        {
            Schema sch;
            build(sch);
            const std::string before = Dump::of(sch);
            osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
            const OAK_RETCODE status = change(sch);
            injected = osl_faultDisarm(OSL_FAULT_MEMORY);
            EXPECT_EQ(status, injected > 0 ? eNOMEMORY : sOKAY) << "allocation " << nth;
            if (injected > 0) {
                EXPECT_EQ(Dump::of(sch), before) << "allocation " << nth;
            }
        }
        EXPECT_EQ(Live::now(), live);
        if (injected == 0 || ::testing::Test::HasFailure()) {
            EXPECT_GT(nth, 1u) << "the change allocates nothing";
            return;
        }
    }
#else
    Schema sch;
    build(sch);
    EXPECT_EQ(change(sch), sOKAY);
#endif
}

} // namespace oaktest

#endif
