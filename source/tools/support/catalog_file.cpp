// A catalog read from a file.
#include "catalog_file.h"

#include <strings.h>

#include "schema_load.h"

namespace tools {

namespace {

// Wide text is stored as UTF-8.
constexpr OAK_BOOL_T kNativeWideText = OAK_FALSE;

ColumnKind kind_of(SCH_COL_INFO_C ci) {
    if (sch_col_is_lob(ci) == OAK_TRUE) {
        return ColumnKind::large_object;
    }
    if (sch_col_ref(ci) != nullptr) {
        return ColumnKind::foreign;
    }
    if (sch_col_num_elems(ci) != 0) {
        return ColumnKind::array;
    }
    switch (class_of(sch_col_data_type(ci))) {
        case OAK_TYPE_CLASS_ROWID:
            return ColumnKind::rowid;
        case OAK_TYPE_CLASS_TEXT:
            return ColumnKind::text;
        case OAK_TYPE_CLASS_BINARY:
            return ColumnKind::binary;
        case OAK_TYPE_CLASS_DECIMAL:
            return ColumnKind::decimal;
        default:
            return ColumnKind::plain;
    }
}

std::string table_names(SCH_INFO_C schema) {
    std::string names;
    each(sch_iterate_tables, schema, [&](SCH_TBL_INFO_C ti) {
        const char *name = sch_tbl_name(ti);
        names += names.empty() ? "" : ", ";
        names += name != nullptr ? name : "(without a name)";
    });
    return names.empty() ? "there is none" : "there are: " + names;
}

} // namespace

Complaint CatalogFile::read(const char *name) {
    name_ = shown_name(name);
    std::string text;
    if (Complaint complaint = read_file(name, &text); !complaint.empty()) {
        return complaint;
    }
    SCH_LOAD_WHERE where = {};
    const OAK_RETCODE status =
        sch_read_database_schema_at(&schema_, nullptr, text.c_str(), kNativeWideText, &where);
    if (status == sOKAY) {
        return {};
    }
    Complaint complaint = name_ + ": " + status_text(status);
    if (where.line != 0) {
        complaint +=
            ": line " + std::to_string(where.line) + ", column " + std::to_string(where.column);
    }
    if (where.path[0] != '\0') {
        complaint += std::string(", at ") + where.path;
    }
    return where.reason != nullptr ? complaint + ": " + where.reason : complaint;
}

SCH_TBL_INFO_C CatalogFile::table(const char *name, Complaint *complaint) const {
    SCH_TBL_INFO_C ti = sch_find_table_by_name(schema_, name, nullptr);
    const SCH_TBL_INFO_C system_table = sch_get_sysfiles_table();
    if (ti == nullptr && strcasecmp(name, sch_tbl_name(system_table)) == 0) {
        ti = system_table;
    }
    if (ti == nullptr) {
        *complaint = name_ + ": no table '" + name + "'; " + table_names(schema_);
    }
    return ti;
}

Column column_of(SCH_COL_INFO_C ci) {
    return {ci,
            sch_col_name(ci),
            sch_col_data_type(ci),
            kind_of(ci),
            sch_find_col_active_ndx(sch_col_table(ci), sch_col_ndx(ci)),
            sch_col_offset(ci),
            sch_col_byte_len(ci),
            sch_col_has_value_offset(ci),
            sch_col_num_elems(ci),
            sch_col_nullable(ci) == OAK_TRUE};
}

std::vector<Column> columns_of(SCH_TBL_INFO_C ti) {
    std::vector<Column> columns;
    each(sch_iterate_cols_active, ti, [&](SCH_COL_INFO_C ci) { columns.push_back(column_of(ci)); });
    return columns;
}

bool refers_to_rowid(SCH_COL_INFO_C ci) {
    const SCH_COL_INFO_C referred = sch_col_refcol(ci);
    const int type_class = class_of(sch_col_data_type(ci));
    return referred != nullptr && sch_col_data_type(referred) == OAK_ROWID &&
           sch_ref_num_cols(sch_col_ref(ci)) == 1 &&
           (type_class == OAK_TYPE_CLASS_ROWID || type_class == OAK_TYPE_CLASS_INTEGER);
}

} // namespace tools
