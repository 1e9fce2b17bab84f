// oakcatalog: shows what a catalog says once it is finalized: tables with the
// layout of their rows, keys, references and drawers. A catalog that is refused
// is told with the place and the reason.
#include "catalog_file.h"
#include "json_writer.h"
#include "text_table.h"

namespace tools {
namespace {

constexpr char kTool[] = "oakcatalog";

constexpr OAK_CMDLINE_OPT_A kOptions[] = {
    {"j", "json", nullptr, "Print one JSON object for programs"},
    {"t", "table", "s=NAME", "Show this table alone"},
    {"CATALOG", nullptr, "#=CATALOG", "The catalog, a JSON text; - for standard input"},
    {nullptr, nullptr, nullptr, nullptr},
};

constexpr char kDescription[] =
    "Shows the tables of a catalog: columns with type, length, default and their place in\n"
    "the row, keys, references, drawers and the row's length.";

// ---- Words ------------------------------------------------------------------

std::string or_dash(const char *text) {
    return text != nullptr && text[0] != '\0' ? text : "-";
}

std::string named(const char *name) {
    return name != nullptr ? name : "(without a name)";
}

std::string number_or_dash(uint64_t number, bool is_there) {
    return is_there ? std::to_string(number) : "-";
}

std::string drawer_text(OAK_DRAWER drawer) {
    return number_or_dash(drawer, drawer != OAK_DRAWER_NONE);
}

std::string type_name(SCH_COL_INFO_C ci) {
    std::string text = or_dash(sch_type_catalog_text(sch_col_type_c(ci)));
    if (sch_col_num_elems(ci) != 0) {
        text += '[' + std::to_string(sch_col_num_elems(ci)) + ']';
    }
    return text;
}

// Bytes of a text or binary; digits of a decimal, "10,2"; digits of a fraction
// of a second.
std::string length_text(SCH_COL_INFO_C ci) {
    if (class_of(sch_col_data_type(ci)) == OAK_TYPE_CLASS_DECIMAL) {
        return std::to_string(sch_col_prec(ci)) + ',' + std::to_string(sch_col_scale(ci));
    }
    const uint32_t length = sch_col_length(ci);
    return number_or_dash(length, length != 0);
}

std::string default_text(SCH_COL_INFO_C ci) {
    const char *text = sch_col_defstr(ci);
    const OAK_VALUE *value = sch_col_def(ci);
    if (text != nullptr) {
        return text[0] != '\0' ? text : "\"\"";
    }
    return value != nullptr && value->status == vsNULL ? "NULL" : "-";
}

std::string nullability(SCH_COL_INFO_C ci) {
    return sch_col_nullable(ci) == OAK_TRUE ? "null" : "not null";
}

std::string join(const std::vector<std::string> &texts, const char *separator) {
    std::string joined;
    for (const std::string &text : texts) {
        joined += (joined.empty() ? "" : separator) + text;
    }
    return joined;
}

// What else there is to say of a column.
std::string notes_of(SCH_COL_INFO_C ci) {
    std::vector<std::string> notes;
    if (sch_col_is_pkey_elem(ci) == OAK_TRUE) {
        notes.push_back("primary key");
    }
    if (const SCH_DOMAIN_INFO_C domain = sch_col_domain(ci)) {
        notes.push_back("domain " + named(sch_dom_name(domain)));
    }
    if (const SCH_REF_INFO_C reference = sch_col_ref(ci)) {
        const SCH_TBL_INFO_C owner = sch_col_reftab(ci);
        const SCH_COL_INFO_C referred = sch_col_refcol(ci);
        notes.push_back("reference " + named(sch_ref_name(reference)) + " to " +
                        named(owner != nullptr ? sch_tbl_name(owner) : nullptr) + "." +
                        named(referred != nullptr ? sch_col_name(referred) : nullptr));
    }
    if (sch_col_lob_drawer(ci) != nullptr) {
        notes.push_back("drawer " + drawer_text(sch_col_lob_drawer_ndx(ci)));
    }
    if (const char *check = sch_col_check_str(ci)) {
        notes.push_back(std::string("check (") + check + ")");
    }
    return join(notes, ", ");
}

std::string element_list(SCH_KEY_INFO_C ki) {
    std::vector<std::string> texts;
    each(sch_iterate_key_elems, ki, [&](SCH_ELEM_INFO_C ei) {
        texts.push_back(named(sch_col_name(sch_elem_col(ei))) + " " +
                        or_dash(sch_elem_dir_text(ei)));
    });
    return join(texts, ", ");
}

std::string reference_columns(SCH_REF_INFO_C ri) {
    std::vector<std::string> texts;
    for (OAK_COL_INDEX n = 0; n < sch_ref_num_cols(ri); ++n) {
        const SCH_COL_INFO_C ci = sch_ref_col(ri, n);
        texts.push_back(named(ci != nullptr ? sch_col_name(ci) : nullptr));
    }
    return join(texts, ", ");
}

std::string sort_list(SCH_REF_INFO_C ri) {
    std::vector<std::string> texts;
    each(sch_iterate_sort_cols, ri, [&](SCH_SORT_INFO_C si) {
        texts.push_back(named(sch_col_name(sch_sort_col(si))) + " " +
                        or_dash(sch_sort_dir_text(si)));
    });
    return texts.empty() ? "-" : join(texts, ", ");
}

const char *name_of(SCH_TBL_INFO_C ti) {
    return ti != nullptr ? sch_tbl_name(ti) : nullptr;
}

const char *name_of(SCH_KEY_INFO_C ki) {
    return ki != nullptr ? sch_key_name(ki) : nullptr;
}

// What a drawer stores.
std::string content_of(SCH_DRAWER_INFO_C di) {
    if (const SCH_TBL_INFO_C ti = sch_drawer_table(di)) {
        return "rows of " + named(sch_tbl_name(ti));
    }
    if (const SCH_KEY_INFO_C ki = sch_drawer_key(di)) {
        return "key " + named(sch_key_name(ki));
    }
    if (const SCH_REF_INFO_C ri = sch_drawer_ref(di)) {
        return "reference " + named(sch_ref_name(ri));
    }
    if (const SCH_COL_INFO_C ci = sch_drawer_blob_col(di)) {
        return "column " + named(sch_col_name(ci));
    }
    return "-";
}

// ---- For people -------------------------------------------------------------

void print_columns(SCH_TBL_INFO_C ti, std::string *out) {
    TextTable table(
        {"column", "type", ">length", "", "default", ">offset", ">bytes", ">has value", ""});
    each(sch_iterate_cols_active, ti, [&](SCH_COL_INFO_C ci) {
        const bool lies_in_row = sch_col_is_lob(ci) != OAK_TRUE;
        table.add({sch_col_name(ci), type_name(ci), length_text(ci), nullability(ci),
                   default_text(ci), number_or_dash(sch_col_offset(ci), lies_in_row),
                   number_or_dash(sch_col_byte_len(ci), lies_in_row),
                   number_or_dash(sch_col_has_value_offset(ci), sch_col_has_value_offset(ci) != 0),
                   notes_of(ci)});
    });
    table.print(out, 2);
}

void print_keys(SCH_TBL_INFO_C ti, std::string *out) {
    TextTable table({"key", "type", "method", "columns", ">bytes", ">drawer"});
    bool any = false;
    each(sch_iterate_keys, ti, [&](SCH_KEY_INFO_C ki) {
        any = true;
        table.add({named(sch_key_name(ki)), or_dash(sch_key_type_text(ki)),
                   or_dash(sch_key_method_text(ki)), element_list(ki),
                   std::to_string(sch_key_byte_len(ki)), drawer_text(sch_key_drawer_ndx(ki))});
    });
    if (any) {
        *out += '\n';
        table.print(out, 2);
    }
}

void print_references(SCH_TBL_INFO_C ti, std::string *out) {
    TextTable table(
        {"reference", "columns", "to", "by key", "on update", "on delete", "order", ">drawer"});
    bool any = false;
    each(sch_iterate_refs, ti, [&](SCH_REF_INFO_C ri) {
        any = true;
        table.add({named(sch_ref_name(ri)), reference_columns(ri),
                   named(name_of(sch_ref_owner(ri))), named(name_of(sch_ref_key(ri))),
                   or_dash(sch_ref_on_update_text(ri)), or_dash(sch_ref_on_delete_text(ri)),
                   sort_list(ri), drawer_text(sch_ref_drawer_ndx(ri))});
    });
    if (any) {
        *out += '\n';
        table.print(out, 2);
    }
}

void print_drawers(SCH_TBL_INFO_C ti, std::string *out) {
    TextTable table({">drawer", "type", "content"});
    bool any = false;
    each(sch_iterate_table_drawers, ti, [&](SCH_DRAWER_INFO_C di) {
        any = true;
        table.add(
            {std::to_string(sch_drawer_id(di)), or_dash(sch_drawer_type_text(di)), content_of(di)});
    });
    if (any) {
        *out += '\n';
        table.print(out, 2);
    }
}

void print_table(SCH_TBL_INFO_C ti, std::string *out) {
    OAK_ROW_BUFFER_INFO layout;
    sch_tbl_get_buffer_info(ti, &layout);
    *out += "table " + named(sch_tbl_name(ti)) + ", " + or_dash(sch_tbl_type_text(ti));
    if (sch_tbl_circular(ti) == OAK_TRUE) {
        *out += " with at most " + std::to_string(sch_tbl_max_rows(ti)) + " rows";
    }
    *out += ": a row has " + std::to_string(sch_tbl_byte_len(ti)) +
            " bytes of column data in a buffer of " + std::to_string(layout.row_buffer_size) + "\n";
    if (const char *check = sch_tbl_check_str(ti)) {
        *out += std::string("  check (") + check + ")\n";
    }
    *out += '\n';
    print_columns(ti, out);
    print_keys(ti, out);
    print_references(ti, out);
    print_drawers(ti, out);
    *out += '\n';
}

void print_database(SCH_INFO_C sch, std::string *out) {
    *out += "database " + named(sch_name(sch)) + ": catalog version " +
            std::to_string(sch_catver(sch)) + ", database version " +
            std::to_string(sch_dbver(sch)) + ", encryption " + or_dash(sch_encryption_text(sch)) +
            ", locale " + or_dash(sch_locale_text(sch)) + "\n\n";
}

// ---- For programs -----------------------------------------------------------

JsonWriter &member_drawer(JsonWriter &json, OAK_DRAWER drawer) {
    json.key("drawer");
    return drawer != OAK_DRAWER_NONE ? json.unsigned_number(drawer) : json.null();
}

JsonWriter &member_or_null(JsonWriter &json, const char *key, uint64_t number, bool is_there) {
    json.key(key);
    return is_there ? json.unsigned_number(number) : json.null();
}

void write_default(JsonWriter &json, SCH_COL_INFO_C ci) {
    const OAK_VALUE *value = sch_col_def(ci);
    json.member("default", sch_col_defstr(ci));
    json.member_boolean("default_null", value != nullptr && value->status == vsNULL);
}

void write_column(JsonWriter &json, SCH_COL_INFO_C ci) {
    const SCH_DOMAIN_INFO_C domain = sch_col_domain(ci);
    const SCH_REF_INFO_C reference = sch_col_ref(ci);
    const SCH_COL_INFO_C referred = sch_col_refcol(ci);
    const OAK_TYPE type = sch_col_data_type(ci);
    const bool is_decimal = class_of(type) == OAK_TYPE_CLASS_DECIMAL;
    const bool lies_in_row = sch_col_is_lob(ci) != OAK_TRUE;
    json.line().begin_object();
    json.member("name", sch_col_name(ci)).member_number("index", sch_col_ndx(ci));
    json.member("type", sch_type_catalog_text(sch_col_type_c(ci)));
    json.member_number("elements", sch_col_num_elems(ci));
    json.member_number("length", sch_col_length(ci));
    member_or_null(json, "precision", sch_col_prec(ci), is_decimal);
    member_or_null(json, "scale", sch_col_scale(ci), is_decimal);
    json.member_boolean("nullable", sch_col_nullable(ci) == OAK_TRUE);
    json.member_boolean("not_null", sch_col_not_null(ci) == OAK_TRUE);
    write_default(json, ci);
    member_or_null(json, "offset", sch_col_offset(ci), lies_in_row);
    json.member_number("bytes", sch_col_byte_len(ci));
    member_or_null(json, "has_value_offset", sch_col_has_value_offset(ci),
                   sch_col_has_value_offset(ci) != 0);
    json.member_boolean("primary_key", sch_col_is_pkey_elem(ci) == OAK_TRUE);
    json.member("domain", domain != nullptr ? sch_dom_name(domain) : nullptr);
    json.member("reference", reference != nullptr ? sch_ref_name(reference) : nullptr);
    json.member("refers_to_table", name_of(sch_col_reftab(ci)));
    json.member("refers_to_column", referred != nullptr ? sch_col_name(referred) : nullptr);
    member_drawer(json, sch_col_lob_drawer_ndx(ci));
    json.member("check", sch_col_check_str(ci));
    json.end_object();
}

void write_key(JsonWriter &json, SCH_KEY_INFO_C ki) {
    json.line().begin_object();
    json.member("name", sch_key_name(ki)).member_number("index", sch_key_ndx(ki));
    json.member("type", sch_key_type_text(ki)).member("method", sch_key_method_text(ki));
    json.member_number("bytes", sch_key_byte_len(ki));
    member_drawer(json, sch_key_drawer_ndx(ki));
    json.key("columns").begin_array();
    each(sch_iterate_key_elems, ki, [&](SCH_ELEM_INFO_C ei) {
        json.begin_object().member("name", sch_col_name(sch_elem_col(ei)));
        json.member("direction", sch_elem_dir_text(ei));
        json.member_number("offset", sch_elem_offset(ei));
        member_or_null(json, "has_value_offset", sch_elem_has_value_offset(ei),
                       sch_elem_has_value_offset(ei) != 0);
        json.end_object();
    });
    json.end_array().end_object();
}

void write_reference(JsonWriter &json, SCH_REF_INFO_C ri) {
    json.line().begin_object();
    json.member("name", sch_ref_name(ri)).member_number("index", sch_ref_ndx(ri));
    json.member("table", name_of(sch_ref_owner(ri))).member("key", name_of(sch_ref_key(ri)));
    json.member("on_update", sch_ref_on_update_text(ri));
    json.member("on_delete", sch_ref_on_delete_text(ri));
    member_drawer(json, sch_ref_drawer_ndx(ri));
    json.key("columns").begin_array();
    for (OAK_COL_INDEX n = 0; n < sch_ref_num_cols(ri); ++n) {
        const SCH_COL_INFO_C ci = sch_ref_col(ri, n);
        json.text_or_null(ci != nullptr ? sch_col_name(ci) : nullptr);
    }
    json.end_array().key("order").begin_array();
    each(sch_iterate_sort_cols, ri, [&](SCH_SORT_INFO_C si) {
        json.begin_object().member("name", sch_col_name(sch_sort_col(si)));
        json.member("direction", sch_sort_dir_text(si)).end_object();
    });
    json.end_array().end_object();
}

void write_drawer(JsonWriter &json, SCH_DRAWER_INFO_C di) {
    json.line().begin_object();
    json.member_number("number", sch_drawer_id(di)).member("type", sch_drawer_type_text(di));
    json.member("content", content_of(di)).end_object();
}

void write_row_layout(JsonWriter &json, SCH_TBL_INFO_C ti) {
    OAK_ROW_BUFFER_INFO layout;
    sch_tbl_get_buffer_info(ti, &layout);
    json.key("row").begin_object();
    json.member_number("column_bytes", sch_tbl_byte_len(ti));
    json.member_number("has_value_offset", sch_tbl_has_value_offset(ti));
    json.member_number("buffer_bytes", layout.row_buffer_size);
    json.member_number("column_data_offset", layout.col_data_offset);
    json.member_number("column_status_offset", layout.col_status_offset);
    json.member_number("references_offset", layout.ref_offset);
    json.member_number("avl_keys", layout.num_avls);
    json.end_object();
}

// Writes a list of a parent's objects under a key.
template <class Iterate, class Parent, class Object>
void write_list(JsonWriter &json, const char *key, Iterate iterate, Parent parent,
                void (*write)(JsonWriter &, Object)) {
    json.key(key).begin_array();
    each(iterate, parent, [&](Object object) { write(json, object); });
    json.end_array();
}

void write_table(JsonWriter &json, SCH_TBL_INFO_C ti) {
    json.line().begin_object();
    json.member("name", sch_tbl_name(ti)).member_number("index", sch_tbl_index(ti));
    json.member("type", sch_tbl_type_text(ti));
    member_or_null(json, "max_rows", sch_tbl_max_rows(ti), sch_tbl_circular(ti) == OAK_TRUE);
    member_drawer(json, sch_tbl_drawer(ti));
    json.member("check", sch_tbl_check_str(ti));
    write_row_layout(json, ti);
    write_list(json, "columns", sch_iterate_cols_active, ti, write_column);
    write_list(json, "keys", sch_iterate_keys, ti, write_key);
    write_list(json, "references", sch_iterate_refs, ti, write_reference);
    write_list(json, "drawers", sch_iterate_table_drawers, ti, write_drawer);
    json.end_object();
}

void write_database(JsonWriter &json, SCH_INFO_C sch) {
    json.key("database").begin_object();
    json.member("name", sch_name(sch)).member_number("catalog_version", sch_catver(sch));
    json.member_number("database_version", sch_dbver(sch));
    json.member("encryption", sch_encryption_text(sch)).member("locale", sch_locale_text(sch));
    json.end_object();
}

// ---- The run ----------------------------------------------------------------

// The one table, or all of the catalog's.
template <class Visit>
void each_table(SCH_INFO_C sch, SCH_TBL_INFO_C only, Visit visit) {
    if (only != nullptr) {
        visit(only);
    } else {
        each(sch_iterate_tables, sch, visit);
    }
}

void print_all(SCH_INFO_C sch, SCH_TBL_INFO_C only, std::string *out) {
    print_database(sch, out);
    each_table(sch, only, [&](SCH_TBL_INFO_C ti) { print_table(ti, out); });
}

void write_all(SCH_INFO_C sch, SCH_TBL_INFO_C only, std::string *out) {
    JsonWriter json(out);
    json.begin_object();
    write_database(json, sch);
    json.key("tables").begin_array();
    each_table(sch, only, [&](SCH_TBL_INFO_C ti) { write_table(json, ti); });
    json.line().end_array().end_object();
    *out += '\n';
}

Complaint run(const CommandLine &line) {
    CatalogFile catalog;
    Complaint complaint = catalog.read(line.value("CATALOG"));
    if (!complaint.empty()) {
        return complaint;
    }
    SCH_TBL_INFO_C only = nullptr;
    if (line.has("table")) {
        only = catalog.table(line.value("table"), &complaint);
    }
    if (!complaint.empty()) {
        return complaint;
    }
    Output output;
    const auto show = line.has("json") ? write_all : print_all;
    if (!line.quiet()) {
        show(catalog.schema(), only, &output.text());
    }
    return output.finish();
}

int main_of(int argc, char **argv) {
    const CommandLine line(argc, argv, kDescription, kOptions);
    if (line.exit_now()) {
        return line.exit_status();
    }
    const Complaint complaint = run(line);
    if (!complaint.empty()) {
        say(kTool, complaint);
    }
    return complaint.empty() ? kSuccess : kFailure;
}

} // namespace
} // namespace tools

int main(int argc, char **argv) {
    return tools::main_of(argc, argv);
}
