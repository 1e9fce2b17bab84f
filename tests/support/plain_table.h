// A table of the schema as the plain decoder needs it, through the schema's
// public getters.
#ifndef PLAIN_TABLE_H
#define PLAIN_TABLE_H

#include "plain_decoder.h"
#include "schema.h"
#include "schema_iterate.h"
#include "schema_structs.h"
#include "schema_type.h"

namespace oaktest {

inline plain::Column plain_column(SCH_COL_INFO_C ci) {
    const SCH_TYPE_INFO_C type = sch_col_type_c(ci);
    plain::Column column;
    column.index = sch_col_ndx(ci);
    column.word = sch_type_catalog_text(type);
    column.named = sch_col_name(ci) != nullptr;
    column.nullable = sch_col_nullable(ci);
    column.foreign = sch_col_ref(ci) != nullptr;
    column.elems = sch_col_num_elems(ci);
    column.length = static_cast<unsigned>(sch_col_length(ci));
    if (column.word == "decimal") {
        column.prec = sch_col_prec(ci);
        column.scale = sch_col_scale(ci);
    }
    return column;
}

inline plain::Table plain_table(SCH_TBL_INFO_C ti) {
    plain::Table table;
    table.refs = sch_tbl_num_refs(ti);
    for (SCH_KEY_INFO_C ki = nullptr; (ki = sch_iterate_keys(ti, ki, OAK_FORWARD)) != nullptr;) {
        if (sch_key_method(ki) == OAK_KEY_METHOD_AVL && sch_key_num_elems(ki) > 0) {
            table.avl_numbers.push_back(sch_avl_index(ki));
        }
    }
    for (SCH_COL_INFO_C ci = nullptr; (ci = sch_iterate_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
        table.columns.push_back(plain_column(ci));
    }
    return table;
}

} // namespace oaktest

#endif
