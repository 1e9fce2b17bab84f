// Hostile catalogs. Where one loads, its schema is walked by every iterator and
// getter, its names and constants are looked up, its tables are laid out again and
// hold an empty row in both item formats, and it is taken apart by drops.
//
// An input is a catalog's text. One whose first byte is above 127 is a list of edits
// of the rich catalog, four bytes each, so that catalogs that fit together but for a
// number, a word or a missing piece are tried as well.
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "row_fuzz.h"
#include "schema_drop.h"
#include "schema_layout.h"
#include "schema_mult.h"

using namespace rowfuzz;

namespace {

// What getters hand out is read, so that a sanitizer sees where it leads.
volatile uint64_t touched;

void touch(const char *text) {
    touched = touched + (text != nullptr ? std::strlen(text) : 0);
}
void touch(uint64_t number) {
    touched = touched + number;
}

void read_type(SCH_TYPE_INFO_C pi) {
    touch(sch_type_data_type(pi) + sch_type_num_elems(pi));
    touch(sch_type_length(pi));
    touch(sch_type_byte_len(pi));
    touch(sch_type_check_str(pi));
    touch(sch_type_check_name(pi));
    touch(sch_type_catalog_text(pi));
    if (pi->type_info != nullptr) {
        touch(sch_type_ddl_text(pi));
        touch(sch_type_sql_text(pi));
        touch(sch_type_text(pi));
    }
}

void read_default(const OAK_VALUE *def, SCH_COL_INFO_C ci) {
    OAK_VALUE length_of = *def;
    touch(static_cast<uint64_t>(length_of.status));
    if (def->status == vsOKAY && ci != nullptr && def->type == sch_col_data_type(ci)) {
        size_t ignored = 0;
        const auto swallow = [](OAK_OUTPUT_CTX, uint32_t) { return sOKAY; };
        if (sch_col_num_elems(ci) == 0 && def->type != OAK_VARBINARY && def->type != OAK_BINARY) {
            OAK_IGNORE_STATUS(sch_col_tostring_fcn(ci, def, 0, 0, swallow, &ignored),
                              "large objects have no text");
        }
    }
}

void read_drawer(SCH_DRAWER_INFO_C di) {
    touch(sch_drawer_id(di) + sch_drawer_src_table_id(di) + sch_drawer_src_ndx(di));
    touch(sch_drawer_type_text(di));
    touch(sch_drawer_compact(di));
    const SCH_TBL_INFO ti = sch_drawer_table(di);
    const SCH_KEY_INFO ki = sch_drawer_key(di);
    const SCH_REF_INFO ri = sch_drawer_ref(di);
    const SCH_COL_INFO ci = sch_drawer_blob_col(di);
    touch(ti != nullptr ? sch_tbl_name(ti) : nullptr);
    touch(ki != nullptr ? sch_key_name(ki) : nullptr);
    touch(ri != nullptr ? sch_ref_name(ri) : nullptr);
    touch(ci != nullptr ? sch_col_name(ci) : nullptr);
}

void read_column(SCH_INFO_C sch, SCH_COL_INFO_C ci) {
    require(sch_find_col_by_constant(sch, sch_col_constant(ci)) == ci ||
            sch_col_name(ci) == nullptr || sch_col_ndx(ci) > 0x7fff ||
            sch_col_tbl_ndx(ci) > 0x7fff);
    read_type(sch_col_type_c(ci));
    touch(sch_col_name(ci));
    touch(sch_col_not_null_cname(ci));
    touch(sch_col_defstr(ci));
    touch(sch_col_format(ci));
    touch(sch_col_check_str(ci));
    touch(sch_col_check_name(ci));
    touch(sch_col_width(ci) + sch_col_usage(ci) + sch_col_key_ndx(ci) + sch_col_offset(ci));
    touch(sch_col_lob_drawer_ndx(ci));
    if (sch_col_def(ci) != nullptr) {
        read_default(sch_col_def(ci), ci);
    }
    if (sch_col_ref(ci) != nullptr) {
        touch(sch_ref_name(sch_col_ref(ci)));
    }
    if (sch_col_reftab(ci) != nullptr && sch_col_refcol(ci) != nullptr) {
        touch(sch_tbl_name(sch_col_reftab(ci)));
        touch(sch_col_name(sch_col_refcol(ci)));
    }
    for (SCH_KEY_INFO ki = nullptr; (ki = sch_iterate_col_keys(ci, ki, OAK_FORWARD)) != nullptr;) {
        require(sch_key_table(ki) == sch_col_table(ci));
    }
    for (SCH_REF_INFO ri = nullptr; (ri = sch_iterate_col_refs(ci, ri, OAK_REVERSE)) != nullptr;) {
        touch(sch_ref_name(ri));
    }
    for (SCH_REF_INFO ri = nullptr;
         (ri = sch_iterate_sortcol_refs(ci, ri, OAK_FORWARD)) != nullptr;) {
        touch(sch_ref_name(ri));
    }
}

/// A place of the table lies within its column data.
void check_place(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci) {
    if (sch_col_name(ci) == nullptr) {
        return;
    }
    const uint64_t length = sch_tbl_byte_len(ti);
    require(sch_col_is_lob(ci) ||
            uint64_t{sch_col_offset(ci)} + sch_col_byte_len(ci) <= sch_tbl_has_value_offset(ti));
    require(sch_col_has_value_offset(ci) == 0 || sch_col_has_value_offset(ci) < length);
}

void read_key(SCH_INFO_C sch, SCH_KEY_INFO_C ki) {
    require(sch_find_key_by_constant(sch, sch_key_constant(ki)) == ki || sch_key_ndx(ki) > 0x7fff ||
            sch_key_tbl_ndx(ki) > 0x7fff);
    char text[64];
    touch(sch_key_name(ki));
    touch(sch_key_type_text(ki));
    touch(sch_key_method_text(ki));
    touch(sch_key_refcount(ki) + sch_key_drawer_ndx(ki) + sch_key_inline(ki));
    OAK_IGNORE_STATUS(sch_key_enum_text(ki, text, sizeof text), "may be cut");
    OAK_IGNORE_STATUS(sch_key_data_type_text(ki, OAK_TRUE, text, sizeof text), "may be cut");
    touch(sch_key_byte_len_with_mult(ki, 1));
    for (SCH_ELEM_INFO ei = nullptr;
         (ei = sch_iterate_key_elems(ki, ei, OAK_FORWARD)) != nullptr;) {
        require(sch_elem_offset(ei) + sch_col_byte_len(sch_elem_col(ei)) <= sch_key_byte_len(ki));
        require(sch_elem_has_value_offset(ei) == 0 ||
                sch_elem_has_value_offset(ei) < sch_key_byte_len(ki));
        touch(sch_elem_dir_text(ei));
    }
}

void read_ref(SCH_INFO_C sch, SCH_REF_INFO_C ri) {
    require(sch_find_ref_by_constant(sch, sch_ref_constant(ri)) == ri || sch_ref_ndx(ri) > 0x7fff ||
            sch_ref_tbl_ndx(ri) > 0x7fff);
    char text[64];
    touch(sch_ref_name(ri));
    touch(sch_ref_on_update_text(ri));
    touch(sch_ref_on_delete_text(ri));
    touch(sch_ref_drawer_ndx(ri) + sch_ref_key_index(ri) + sch_ref_owner_tbl_ndx(ri));
    touch(sch_ref_name_default(ri));
    OAK_IGNORE_STATUS(sch_ref_enum_text(ri, text, sizeof text), "may be cut");
    for (SCH_COL_INFO ci = nullptr; (ci = sch_iterate_ref_cols(ri, ci, OAK_FORWARD)) != nullptr;) {
        touch(sch_col_name(ci));
    }
    // The sort columns of references beyond the count are not laid out.
    const bool is_laid_out = sch_ref_ndx(ri) < sch_tbl_num_refs(sch_ref_table(ri));
    for (SCH_SORT_INFO si = nullptr;
         (si = sch_iterate_sort_cols(ri, si, OAK_REVERSE)) != nullptr;) {
        touch(sch_sort_dir_text(si));
        require(!is_laid_out || sch_sort_offset(si) + sch_col_byte_len(sch_sort_col(si)) <=
                                    sch_ref_sort_byte_len(ri));
    }
}

/// An empty row, read, written and brought to the other form.
void check_empty_row(SCH_TBL_INFO_C ti) {
    constexpr uint32_t kMostBytes = 1 << 20;
    OAK_ROW_BUFFER_INFO layout;
    sch_tbl_get_buffer_info(ti, &layout);
    if (layout.row_buffer_size > kMostBytes) {
        return;
    }
    Bench bench(ti), second(ti);
    const uint8_t nothing[] = {0, 0, 0};
    Bytes stream, image;
    require(bench.read(row_unpack_compact, nothing, sizeof nothing) == sOKAY);
    // Columns that fall on a rowid or behind a join are restored: not all is NULL.
    const OAK_RETCODE rc = bench.write(row_pack_compact, &stream);
    require(rc == sOKAY);
    require(second.read(row_unpack_compact, stream) == sOKAY);
    require(bench.write(row_pack_expanded, &image) == sOKAY);
    require(image.size() == sizeof(size_t) + layout.row_buffer_size);
}

void read_table(SCH_INFO_C sch, SCH_TBL_INFO ti) {
    char text[64];
    OAK_TBL_INDEX ndx = 0;
    require(sch_find_table_by_ndx(sch, sch_tbl_index(ti)) == ti);
    if (sch_tbl_name(ti) != nullptr) {
        touch(sch_find_table_by_name(sch, sch_tbl_name(ti), &ndx) != nullptr);
    }
    touch(sch_tbl_check_str(ti));
    touch(sch_tbl_check_name(ti));
    touch(sch_tbl_type_text(ti));
    touch(sch_tbl_max_rows(ti) + sch_tbl_drawer(ti) + sch_tbl_offset(ti));
    touch(sch_tbl_byte_len_ex(ti, 1));
    touch(sch_tbl_has_value_offset_with_mult(ti, 2));
    OAK_IGNORE_STATUS(sch_tbl_enum_text(ti, text, sizeof text), "may be cut");
    for (SCH_COL_INFO ci = nullptr; (ci = sch_iterate_cols(ti, ci, OAK_FORWARD)) != nullptr;) {
        read_column(sch, ci);
        check_place(ti, ci);
        OAK_IGNORE_STATUS(sch_col_enum_text(ci, text, sizeof text), "may be cut");
    }
    for (const auto iterate : {sch_iterate_cols_active, sch_iterate_lob_cols}) {
        for (SCH_COL_INFO ci = nullptr; (ci = iterate(ti, ci, OAK_REVERSE)) != nullptr;) {
            touch(sch_col_data_type_text(ci));
        }
    }
    for (SCH_KEY_INFO ki = nullptr; (ki = sch_iterate_keys(ti, ki, OAK_FORWARD)) != nullptr;) {
        read_key(sch, ki);
    }
    for (SCH_REF_INFO ri = nullptr; (ri = sch_iterate_refs(ti, ri, OAK_FORWARD)) != nullptr;) {
        read_ref(sch, ri);
    }
    for (SCH_REF_INFO ri = nullptr; (ri = sch_iterate_refs(ti, ri, OAK_REVERSE)) != nullptr;) {
        touch(sch_ref_ndx(ri));
    }
    for (SCH_REF_INFO ri = nullptr;
         (ri = sch_iterate_ref_owners(ti, ri, OAK_FORWARD)) != nullptr;) {
        touch(sch_ref_name(ri));
    }
    for (SCH_DRAWER_INFO di = nullptr;
         (di = sch_iterate_table_drawers(ti, di, OAK_FORWARD)) != nullptr;) {
        read_drawer(di);
    }
    check_empty_row(ti);
}

void read_schema(SCH_INFO_C sch) {
    touch(sch_name(sch));
    touch(sch_locale_text(sch));
    touch(sch_encryption_text(sch));
    touch(sch_num_user_tables(sch) + sch_num_user_drawers(sch) + sch_num_refs(sch));
    for (SCH_DRAWER_INFO di = nullptr;
         (di = sch_iterate_all_drawers(sch, di, OAK_FORWARD)) != nullptr;) {
        require(sch_drawer(sch, sch_drawer_id(di)) == di);
        read_drawer(di);
    }
    for (SCH_DRAWER_INFO di = nullptr;
         (di = sch_iterate_user_drawers(sch, di, OAK_REVERSE)) != nullptr;) {
        read_drawer(di);
    }
    for (SCH_DOMAIN_INFO mi = nullptr;
         (mi = sch_iterate_domains(sch, mi, OAK_FORWARD)) != nullptr;) {
        touch(sch_dom_name(mi));
        touch(sch_dom_format(mi));
        touch(sch_dom_defstr(mi));
        read_type(sch_dom_type_c(mi));
        read_default(sch_dom_def(mi), nullptr);
    }
    for (SCH_TBL_INFO ti = nullptr; (ti = sch_iterate_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        read_table(sch, ti);
    }
    for (SCH_KEY_INFO ki = nullptr; (ki = sch_iterate_all_keys(sch, ki, OAK_FORWARD)) != nullptr;) {
        if (sch_key_name(ki) != nullptr) {
            require(sch_find_key_by_name(sch, sch_key_name(ki)) != nullptr);
        }
    }
    for (SCH_COL_INFO ci = nullptr;
         (ci = sch_iterate_all_lob_cols(sch, ci, OAK_FORWARD)) != nullptr;) {
        require(sch_col_is_lob(ci));
    }
}

/// Takes the schema apart: the last column of each table, its references and keys,
/// then the tables and what domains are left.
void drop_all(SCH_INFO sch) {
    for (SCH_TBL_INFO ti = nullptr; (ti = sch_iterate_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        for (OAK_REF_INDEX i = 0; i < sch_tbl_next_ref(ti); ++i) {
            OAK_IGNORE_STATUS(sch_ref_drop(ti, i), "what can be dropped is");
        }
        for (uint32_t i = 0; i < sch_tbl_next_key(ti); ++i) {
            if (SCH_KEY_INFO ki = sch_get_key_by_index(ti, static_cast<OAK_KEY_INDEX>(i))) {
                sch_key_drop_fcn(ki);
            }
        }
        if (SCH_COL_INFO ci = sch_iterate_cols_active(ti, nullptr, OAK_REVERSE)) {
            require(sch_tbl_col_drop(ci) == sOKAY);
        }
        if (sch_tbl_finalize(ti, OAK_FALSE) == sOKAY) {
            read_table(sch, ti);
        }
    }
    for (OAK_TBL_INDEX i = 1; i < sch_next_table(sch); ++i) {
        if (SCH_TBL_INFO ti = sch_find_table_by_ndx(sch, i)) {
            OAK_IGNORE_STATUS(sch_tbl_drawers_drop(ti), "it may have none");
            require(sch_tbl_drop(ti) == sOKAY);
        }
    }
    for (uint32_t i = 0; i < sch_next_domain(sch); ++i) {
        if (SCH_DOMAIN_INFO mi = sch_domain(sch, static_cast<OAK_DOM_INDEX>(i))) {
            OAK_IGNORE_STATUS(sch_dom_drop(mi), "one in use stays");
        }
    }
}

// ---- Edits of the rich catalog ------------------------------------------------------

using Tokens = std::vector<std::string>;

/// Strings, numbers and words, and each other character by itself.
Tokens tokens_of(const std::string &text) {
    Tokens tokens;
    for (size_t at = 0; at < text.size();) {
        size_t end = at + 1;
        const auto is_word = [&text](size_t i) {
            return std::isalnum(static_cast<unsigned char>(text[i])) != 0 || text[i] == '-';
        };
        if (text[at] == '"') {
            end = text.find('"', at + 1) + 1;
        } else if (is_word(at)) {
            while (end < text.size() && is_word(end)) {
                ++end;
            }
        }
        if (std::isspace(static_cast<unsigned char>(text[at])) == 0) {
            tokens.push_back(text.substr(at, end - at));
        }
        at = end;
    }
    return tokens;
}

/// The token behind the value that begins at `at`.
size_t end_of_value(const Tokens &tokens, size_t at) {
    int depth = 0;
    while (at < tokens.size()) {
        const std::string &token = tokens[at++];
        depth += token == "{" || token == "[" ? 1 : token == "}" || token == "]" ? -1 : 0;
        if (depth <= 0) {
            break;
        }
    }
    return at;
}

/// Takes out the tokens of a member or an element with the comma that parts it.
void erase(Tokens *tokens, size_t begin, size_t end) {
    const auto place = [tokens](size_t i) { return tokens->begin() + static_cast<long>(i); };
    if (end < tokens->size() && (*tokens)[end] == ",") {
        ++end;
    } else if ((*tokens)[begin - 1] == ",") {
        --begin;
    }
    tokens->erase(place(begin), place(end));
}

std::string changed_number(const std::string &old, uint8_t choice) {
    static const char *const numbers[] = {"0",   "1",     "2",          "3",     "-1",
                                          "255", "65534", "4294967295", "65535", "9"};
    const bool quoted = old[0] == '"';
    const long number = std::atol(old.c_str() + (quoted ? 1 : 0));
    std::string text;
    if (choice < 64) {
        text = std::to_string(number + static_cast<int>(choice) - 32);
    } else {
        text = numbers[choice % std::size(numbers)];
    }
    return quoted ? '"' + text + '"' : text;
}

/// A number becomes another, a string one that stands elsewhere; or a member or
/// element goes, or stands twice.
void edit(Tokens *tokens, size_t at, uint8_t operation, uint8_t choice) {
    at %= tokens->size();
    std::string &token = (*tokens)[at];
    const char first = token[token[0] == '"' ? 1 : 0];
    const auto place = [tokens](size_t i) { return tokens->begin() + static_cast<long>(i); };
    switch (operation % 4) {
        case 0:
        case 1:
            if (std::isdigit(static_cast<unsigned char>(first)) != 0) {
                token = changed_number(token, choice);
            } else if (token[0] == '"') {
                const std::string &other = (*tokens)[(at * 31 + choice * 17u) % tokens->size()];
                token = other[0] == '"' ? other : token;
            }
            break;
        case 2:
            if (at > 0 && at + 1 < tokens->size() && (*tokens)[at + 1] == ":") {
                erase(tokens, at, end_of_value(*tokens, at + 2));
            } else if (at > 0 && token == "{") {
                erase(tokens, at, end_of_value(*tokens, at));
            }
            break;
        default:
            if (token == "{" && at > 0 && tokens->size() < 20000) {
                const Tokens copy(place(at), place(end_of_value(*tokens, at)));
                tokens->insert(place(at), copy.begin(), copy.end());
            }
            break;
    }
}

std::string edited_catalog(const uint8_t *data, size_t size) {
    static const Tokens rich = tokens_of(kRichCatalog);
    Tokens tokens = rich;
    for (size_t i = 0; i + 4 <= size; i += 4) {
        edit(&tokens, data[i] | static_cast<size_t>(data[i + 1]) << 8, data[i + 2], data[i + 3]);
    }
    std::string text;
    for (const std::string &token : tokens) {
        text += token + " ";
    }
    return text;
}

std::string catalog_of(const uint8_t *data, size_t size) {
    if (size > 0 && data[0] > 127) {
        return edited_catalog(data + 1, size - 1);
    }
    return std::string(reinterpret_cast<const char *>(data), size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text = catalog_of(data, size);
    SCH_INFO schema = nullptr;
    SCH_LOAD_WHERE where;
    std::memset(&where, 0xee, sizeof where);
    const OAK_RETCODE rc =
        sch_read_database_schema_at(&schema, nullptr, text.c_str(), OAK_FALSE, &where);
    require((rc == sOKAY) == (schema != nullptr));
    require(std::memchr(where.path, 0, sizeof where.path) != nullptr);
    if (rc != sOKAY) {
        require(rc < sOKAY && rc != eNOMEMORY);
        return 0;
    }
    read_schema(schema);
    drop_all(schema);
    sch_destroy(schema);
    return 0;
}
