// The catalog reader. Each kind of object has a table of its members: name, kind
// of value, handler; one routine, process_object, walks an object against its
// table. Most handlers are a setter of the schema with bounds in front of it,
// made by one template per kind of value. Rests on the JSON reader, the schema's
// setters and finalization; called by whoever opens a database.
//
// References and foreign keys point at tables that may come later, so their ids
// are kept in working records and linked in a final pass.
#include "schema_load.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "base_internal.h"
#include "json_internal.h"
#include "schema.h"
#include "schema_fcns.h"
#include "schema_layout.h"
#include "schema_structs.h"
#include "schema_words.h"

namespace {

using namespace oak::schema;

// ---- Working records --------------------------------------------------------

// A column's links, until the final pass.
struct SCHLOAD_COL {
    SCH_COL_INFO ci;
    OAK_REF_INDEX refid;
    OAK_TBL_INDEX reftabid;
    OAK_COL_INDEX refcolid;
    OAK_KEY_INDEX keyid;
};

// A reference's links, until the final pass.
struct SCHLOAD_REF {
    SCH_REF_INFO ri;
    OAK_TBL_INDEX tabid;
    OAK_KEY_INDEX keyid;
    OAK_COL_INDEX num_colids;
    OAK_COL_INDEX *colids;
};

struct SCHLOAD_TABLE {
    SCH_TBL_INFO ti;
    OAK_COL_INDEX num_cols;
    SCHLOAD_COL *cols;
    OAK_REF_INDEX num_refs;
    SCHLOAD_REF *refs;
};

// A step of the way to the member being read, in the frame that reads it.
struct PathNode {
    const PathNode *outer;
    const char *name; // of a pair; null for an element of a list
    uint32_t number;  // of the element
};

struct SCHLOAD {
    OSL_MEMTAG tag; // of the working records
    OAK_JSON_OBJ json;
    OAK_BOOL_T unicode_enabled;
    SCH_LOAD_WHERE *where;
    const PathNode *path; // the member being read, the innermost first
    size_t entries_left;  // how many array entries capacities may still ask for

    OAK_TBL_INDEX next_table;
    OAK_TBL_INDEX max_tables;
    SCHLOAD_TABLE *tables;

    // The objects being read; null outside of them.
    SCH_INFO sch;
    SCH_DRAWER_INFO di;
    SCH_DOMAIN_INFO mi;
    SCH_TYPE_INFO pi;
    SCH_TBL_INFO ti;
    SCH_COL_INFO ci;
    SCH_KEY_INFO ki;
    SCH_ELEM_INFO ei;
    SCH_REF_INFO ri;
    SCHLOAD_TABLE *curr_table;
    SCHLOAD_COL *curr_col;
    SCHLOAD_REF *curr_ref;
    OAK_TYPE type;       // what the column's domain or drawer told of its type
    OAK_COL_INDEX index; // position in the list being read
};

using SCHLOAD_FCN = OAK_RETCODE (*)(SCHLOAD &s, const OAK_JSON_VAL &value);

struct SCHLOAD_ELEM_ITEM {
    const char *name;
    OAK_JSON_VALTYPE type;
    SCHLOAD_FCN fcn;
};

constexpr size_t kMostItems = 64; // members of one kind of object, one bit each

OAK_RETCODE refuse(SCHLOAD &s, const char *reason) {
    s.where->reason = reason;
    return OAK_DAMAGED(eBADCAT);
}

// ---- The path of the member being read --------------------------------------

// Writes the nodes from the outermost on; returns where the text ends.
size_t write_path(const PathNode *node, char *text, size_t size) {
    if (node == nullptr) {
        return 0;
    }
    const size_t begin = write_path(node->outer, text, size);
    const char *dot = node->outer != nullptr ? "." : "";
    const int32_t length = node->name != nullptr
                               ? osl_snprintf(text + begin, size - begin, "%s%s", dot, node->name)
                               : osl_snprintf(text + begin, size - begin, "[%u]", node->number);
    const size_t wanted = length > 0 ? static_cast<size_t>(length) : 0;
    return wanted < size - begin ? begin + wanted : size - 1;
}

// Keeps the path of the first refusal; the text is made only then.
void remember_path(SCHLOAD &s) {
    if (s.where->path[0] == 0) {
        write_path(s.path, s.where->path, SCH_LOAD_PATH_SIZE);
    }
}

// ---- Generic walk -----------------------------------------------------------

const SCHLOAD_ELEM_ITEM *find_item(const SCHLOAD_ELEM_ITEM *items, size_t num_items,
                                   const char *name) {
    for (size_t i = 0; i < num_items; ++i) {
        if (is_word(items[i].name, name)) {
            return &items[i];
        }
    }
    return nullptr;
}

OAK_RETCODE process_pair(SCHLOAD &s, const OAK_JSON_PAIR &pair, const SCHLOAD_ELEM_ITEM *items,
                         size_t num_items, uint64_t &seen) {
    const SCHLOAD_ELEM_ITEM *item = find_item(items, num_items, pair.name);
    if (item == nullptr) {
        return refuse(s, "no member of this object has the name");
    }
    if (item->type != pair.value.type) {
        return refuse(s, "the value is of another kind than the member's");
    }
    const uint64_t bit = uint64_t{1} << (item - items);
    if ((seen & bit) != 0) {
        return refuse(s, "the member stands twice");
    }
    seen |= bit;
    return item->fcn != nullptr ? item->fcn(s, pair.value) : sOKAY;
}

// The two statuses that reach the caller unchanged from below; a positive one
// does not stop the reading.
OAK_RETCODE status_of_object(OAK_RETCODE status) {
    if (status >= sOKAY || status == eNOTIMPLEMENTED || status == eLOCALEMISMATCH) {
        return status;
    }
    return OAK_DAMAGED(eBADCAT);
}

// Walks the members of the object that was just opened.
OAK_RETCODE process_members(SCHLOAD &s, const SCHLOAD_ELEM_ITEM *items, size_t num_items) {
    PathNode node{s.path, nullptr, 0};
    uint64_t seen = 0;
    for (;;) {
        OAK_JSON_VALTYPE type = jvNOVAL;
        OAK_JSON_PAIR pair{};
        OAK_RETCODE status = b_jsonNextPair(s.json, &type, &pair);
        if (status == sOKAY && type == jvEND) {
            s.path = node.outer;
            return sOKAY;
        }
        node.name = pair.name;
        s.path = pair.name != nullptr ? &node : node.outer;
        if (status == sOKAY) {
            status = process_pair(s, pair, items, num_items, seen);
        }
        if (status < sOKAY) {
            remember_path(s);
        }
        b_jsonFreePair(s.json, &pair);
        if (status < sOKAY) {
            s.path = node.outer;
            return status_of_object(status);
        }
    }
}

template <size_t kCount>
OAK_RETCODE process_object(SCHLOAD &s, const SCHLOAD_ELEM_ITEM (&items)[kCount]) {
    static_assert(kCount <= kMostItems);
    return process_members(s, items, kCount);
}

// Reads the elements of the array that was just opened; each must be of `type`.
OAK_RETCODE process_array(SCHLOAD &s, OAK_JSON_VALTYPE type, SCHLOAD_FCN fcn) {
    PathNode node{s.path, nullptr, 0};
    OAK_RETCODE status = sOKAY;
    s.path = &node;
    for (; status >= sOKAY; ++node.number) {
        OAK_JSON_VALTYPE got = jvNOVAL;
        OAK_JSON_VAL value{};
        status = b_jsonNextValue(s.json, &got, &value);
        if (status == sOKAY && got == jvEND) {
            break;
        }
        if (status == sOKAY && got != type) {
            status = refuse(s, "the element is of another kind than the list's");
        }
        if (status == sOKAY) {
            status = fcn(s, value);
        }
        if (status < sOKAY) {
            remember_path(s);
        }
    }
    s.path = node.outer;
    return status >= sOKAY ? sOKAY : status;
}

// An array of objects: `kCurrent` is the object being read, none between them.
template <SCHLOAD_FCN kFcn, auto kCurrent>
OAK_RETCODE object_array(SCHLOAD &s, const OAK_JSON_VAL &) {
    const auto element = [](SCHLOAD &load, const OAK_JSON_VAL &value) {
        load.*kCurrent = nullptr;
        const OAK_RETCODE status = kFcn(load, value);
        load.*kCurrent = nullptr;
        return status;
    };
    return process_array(s, jvOBJECT, element);
}

// ---- Handlers by kind of value ----------------------------------------------

// A digit string: its first character must be a digit; what follows the number
// is not looked at.
OAK_RETCODE schload_get_num(const char *text, int64_t least, int64_t greatest, int64_t *number) {
    if (text == nullptr || std::isdigit(static_cast<unsigned char>(text[0])) == 0) {
        return eRANGE;
    }
    const long value = std::strtol(text, nullptr, 10);
    if (value < least || value > greatest) {
        return eRANGE;
    }
    *number = value;
    return sOKAY;
}

template <class Function>
struct SetterOf;
template <class Handle, class Value>
struct SetterOf<OAK_RETCODE (*)(Handle, Value)> {
    using Argument = Value;
};

// Calls a setter on the current object, which must be there.
template <auto kSetter, auto kTarget, class Value>
OAK_RETCODE set(SCHLOAD &s, Value value) {
    const auto target = s.*kTarget;
    if (target == nullptr) {
        return refuse(s, "the member stands before its object's id");
    }
    const OAK_RETCODE status = kSetter(target, value);
    if (status < sOKAY && s.where->reason == nullptr) {
        s.where->reason = "the value contradicts what the catalog said before";
    }
    return status;
}

OAK_RETCODE check_number(SCHLOAD &s, int64_t number, int64_t least, int64_t greatest) {
    return number >= least && number <= greatest ? sOKAY
                                                 : refuse(s, "the number is out of its bounds");
}

template <auto kSetter, auto kTarget, int64_t kLeast, int64_t kGreatest>
OAK_RETCODE number(SCHLOAD &s, const OAK_JSON_VAL &value) {
    using Argument = typename SetterOf<decltype(kSetter)>::Argument;
    const OAK_RETCODE status = check_number(s, value.v.num, kLeast, kGreatest);
    return status == sOKAY ? set<kSetter, kTarget>(s, static_cast<Argument>(value.v.num)) : status;
}

// The same for a number that comes as a string of digits.
template <auto kSetter, auto kTarget, int64_t kLeast, int64_t kGreatest>
OAK_RETCODE digits(SCHLOAD &s, const OAK_JSON_VAL &value) {
    using Argument = typename SetterOf<decltype(kSetter)>::Argument;
    int64_t number = 0;
    if (schload_get_num(value.v.str, kLeast, kGreatest, &number) != sOKAY) {
        return refuse(s, "the text is no number within its bounds");
    }
    return set<kSetter, kTarget>(s, static_cast<Argument>(number));
}

template <auto kSetter, auto kTarget>
OAK_RETCODE text(SCHLOAD &s, const OAK_JSON_VAL &value) {
    return set<kSetter, kTarget>(s, value.v.str);
}

template <auto kSetter, auto kTarget, auto &kItems>
OAK_RETCODE word(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const auto *item = item_of(kItems, value.v.str);
    return item != nullptr ? set<kSetter, kTarget>(s, item->value)
                           : refuse(s, "the word is none of the member's");
}

// "defNull": true makes the default NULL, false says nothing.
template <auto kSetter, auto kTarget>
OAK_RETCODE null_default(SCHLOAD &s, const OAK_JSON_VAL &value) {
    return value.v.flag ? set<kSetter, kTarget>(s, static_cast<const char *>(nullptr)) : sOKAY;
}

constexpr int64_t k16 = UINT16_MAX;
constexpr int64_t k32 = UINT32_MAX;

// ---- Capacities -------------------------------------------------------------

// Counts the entries that a capacity asks for against what a text of this
// length can be about.
OAK_RETCODE spend_entries(SCHLOAD &s, int64_t entries) {
    const auto wanted = static_cast<size_t>(entries);
    if (wanted > s.entries_left) {
        return refuse(s, "the capacities are out of proportion to the catalog's length");
    }
    s.entries_left -= wanted;
    return sOKAY;
}

template <auto kSetter, auto kTarget, int64_t kGreatest>
OAK_RETCODE capacity(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = check_number(s, value.v.num, 0, kGreatest);
    if (status == sOKAY) {
        status = spend_entries(s, value.v.num);
    }
    return status == sOKAY ? number<kSetter, kTarget, 0, kGreatest>(s, value) : status;
}

// A capacity that sizes an array of working records as well.
template <class Record>
OAK_RETCODE make_records(SCHLOAD &s, size_t count, Record **records) {
    if (count == 0) {
        return sOKAY;
    }
    *records = static_cast<Record *>(OSL_GET_ZERO(count * sizeof(Record), s.tag));
    return *records != nullptr ? sOKAY : eNOMEMORY;
}

OAK_RETCODE schload_maxtabs(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = capacity<sch_set_max_table, &SCHLOAD::sch, k16>(s, value);
    if (status == sOKAY) {
        s.max_tables = static_cast<OAK_TBL_INDEX>(value.v.num);
        status = make_records(s, s.max_tables, &s.tables);
    }
    return status;
}

OAK_RETCODE schload_nexttab(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = number<sch_set_next_table, &SCHLOAD::sch, 0, k16>(s, value);
    if (status == sOKAY) {
        s.next_table = static_cast<OAK_TBL_INDEX>(value.v.num);
    }
    return status;
}

OAK_RETCODE schload_maxcols(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = capacity<sch_tbl_set_max_cols, &SCHLOAD::ti, k16>(s, value);
    if (status != sOKAY) {
        return status;
    }
    SCHLOAD_TABLE &table = *s.curr_table;
    table.num_cols = static_cast<OAK_COL_INDEX>(value.v.num);
    status = make_records(s, table.num_cols, &table.cols);
    for (OAK_COL_INDEX i = 0; status == sOKAY && i < table.num_cols; ++i) {
        table.cols[i] =
            SCHLOAD_COL{nullptr, OAK_INDEX_NONE, OAK_INDEX_NONE, OAK_INDEX_NONE, OAK_INDEX_NONE};
    }
    return status;
}

OAK_RETCODE schload_maxrefs(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = capacity<sch_tbl_set_next_ref, &SCHLOAD::ti, k16>(s, value);
    if (status != sOKAY) {
        return status;
    }
    SCHLOAD_TABLE &table = *s.curr_table;
    table.num_refs = static_cast<OAK_REF_INDEX>(value.v.num);
    status = make_records(s, table.num_refs, &table.refs);
    for (OAK_REF_INDEX i = 0; status == sOKAY && i < table.num_refs; ++i) {
        table.refs[i] = SCHLOAD_REF{nullptr, OAK_INDEX_NONE, OAK_INDEX_NONE, 0, nullptr};
    }
    return status;
}

// ---- Drawers and domains ----------------------------------------------------

OAK_RETCODE schload_dwrid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = check_number(s, value.v.num, 0, k32 - 1);
    return status == sOKAY ? sch_drawer_create(s.sch, static_cast<OAK_DRAWER>(value.v.num), &s.di)
                           : status;
}

constexpr SCHLOAD_ELEM_ITEM drawer_items[] = {
    {"dwrid", jvNUMBER, schload_dwrid},
    {"tabid", jvSTRING, digits<sch_drawer_set_source_table, &SCHLOAD::di, 0, k16 - 1>},
    {"srcid", jvNUMBER, number<sch_drawer_set_source_item, &SCHLOAD::di, 0, k16 - 1>},
    {"type", jvSTRING, word<sch_drawer_set_type, &SCHLOAD::di, drawer_type_items>},
};

OAK_RETCODE require(SCHLOAD &s, bool there) {
    return there ? sOKAY : refuse(s, "the object has no id");
}

OAK_RETCODE schload_drawer(SCHLOAD &s, const OAK_JSON_VAL &) {
    const OAK_RETCODE status = process_object(s, drawer_items);
    return status == sOKAY ? require(s, s.di != nullptr) : status;
}

OAK_RETCODE schload_data_type(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const auto *item = item_of(data_type_items, value.v.str);
    if (item == nullptr) {
        return refuse(s, "there is no such data type");
    }
    return sch_type_set_data_type(s.pi, item->value, s.unicode_enabled);
}

constexpr SCHLOAD_ELEM_ITEM type_items[] = {
    {"data_type", jvSTRING, schload_data_type},
    {"noelts", jvNUMBER, number<sch_type_set_elems, &SCHLOAD::pi, 0, k16>},
    {"length", jvNUMBER, number<sch_type_set_length, &SCHLOAD::pi, 0, k16>},
    {"scale", jvNUMBER, number<sch_type_set_scale, &SCHLOAD::pi, 0, UINT8_MAX>},
    {"checkStr", jvSTRING, text<sch_type_set_check_str, &SCHLOAD::pi>},
    {"checkName", jvSTRING, text<sch_type_set_check_name, &SCHLOAD::pi>},
};

OAK_RETCODE process_type(SCHLOAD &s, SCH_TYPE_INFO type) {
    s.pi = type;
    const OAK_RETCODE status = process_object(s, type_items);
    s.pi = nullptr;
    return status;
}

OAK_RETCODE schload_dom_id(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    return status == sOKAY ? sch_dom_create(s.sch, static_cast<OAK_DOM_INDEX>(value.v.num), &s.mi)
                           : status;
}

OAK_RETCODE schload_dom_type(SCHLOAD &s, const OAK_JSON_VAL &) {
    return s.mi != nullptr ? process_type(s, sch_dom_type(s.mi)) : require(s, false);
}

constexpr SCHLOAD_ELEM_ITEM domain_items[] = {
    {"domid", jvNUMBER, schload_dom_id},
    {"name", jvSTRING, text<sch_dom_set_name, &SCHLOAD::mi>},
    {"type", jvOBJECT, schload_dom_type},
    {"width", jvNUMBER, number<sch_dom_set_width, &SCHLOAD::mi, 0, UINT8_MAX>},
    {"format", jvSTRING, text<sch_dom_set_format, &SCHLOAD::mi>},
    {"defValue", jvSTRING, text<sch_dom_set_default, &SCHLOAD::mi>},
    {"defNull", jvBOOLEAN, null_default<sch_dom_set_default, &SCHLOAD::mi>},
};

OAK_RETCODE schload_domain(SCHLOAD &s, const OAK_JSON_VAL &) {
    const OAK_RETCODE status = process_object(s, domain_items);
    return status == sOKAY ? require(s, s.mi != nullptr) : status;
}

// ---- Columns ----------------------------------------------------------------

OAK_RETCODE schload_colid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    if (status != sOKAY) {
        return status;
    }
    const auto id = static_cast<OAK_COL_INDEX>(value.v.num);
    if (s.curr_table == nullptr || id >= s.curr_table->num_cols) {
        return refuse(s, "the column's id is not below the table's maxcols");
    }
    status = sch_col_create(s.ti, id, &s.ci);
    if (status == sOKAY) {
        s.curr_col = &s.curr_table->cols[id];
        s.curr_col->ci = s.ci;
        s.type = OAK_NOVAL;
    }
    return status;
}

// An id that is kept for the final pass.
template <auto kCurrent, auto kMember>
OAK_RETCODE keep_id(SCHLOAD &s, int64_t id) {
    auto *record = s.*kCurrent;
    if (record == nullptr) {
        return require(s, false);
    }
    record->*kMember = static_cast<OAK_INDEX>(id);
    return sOKAY;
}

template <auto kCurrent, auto kMember>
OAK_RETCODE kept_number(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    return status == sOKAY ? keep_id<kCurrent, kMember>(s, value.v.num) : status;
}

template <auto kCurrent, auto kMember>
OAK_RETCODE kept_digits(SCHLOAD &s, const OAK_JSON_VAL &value) {
    int64_t id = 0;
    if (schload_get_num(value.v.str, 0, k16, &id) != sOKAY) {
        return refuse(s, "the text is no number within its bounds");
    }
    return keep_id<kCurrent, kMember>(s, id);
}

OAK_RETCODE schload_col_keyid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    if (status != sOKAY) {
        return status;
    }
    if (s.ti == nullptr || value.v.num >= sch_tbl_next_key(s.ti)) {
        return refuse(s, "the key's id is not below the table's nextkey");
    }
    return keep_id<&SCHLOAD::curr_col, &SCHLOAD_COL::keyid>(s, value.v.num);
}

// A large object has a drawer and only a large object has one; the drawer may
// stand before the domain or behind it.
OAK_RETCODE check_drawer_and_domain(SCHLOAD &s, OAK_TYPE type) {
    if (s.type != OAK_NOVAL && !oak::is_large_object(type)) {
        return refuse(s, "a column with a drawer is no large object");
    }
    return sOKAY;
}

OAK_RETCODE schload_col_domid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = digits<sch_col_set_domain, &SCHLOAD::ci, 0, k16>(s, value);
    if (status == sOKAY) {
        const OAK_TYPE type = sch_col_data_type(s.ci);
        status = check_drawer_and_domain(s, type);
        s.type = type;
    }
    return status;
}

OAK_RETCODE schload_col_dwrid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = check_drawer_and_domain(s, s.type);
    if (status != sOKAY) {
        return status;
    }
    if (s.type == OAK_NOVAL) {
        s.type = OAK_BLOB;
    }
    return number<sch_col_set_blob_drawer, &SCHLOAD::ci, 0, k32>(s, value);
}

// The low 16 bits of any number count.
OAK_RETCODE schload_col_usage(SCHLOAD &s, const OAK_JSON_VAL &value) {
    return set<sch_col_set_usage, &SCHLOAD::ci>(s, static_cast<uint16_t>(value.v.num));
}

OAK_RETCODE schload_col_type(SCHLOAD &s, const OAK_JSON_VAL &) {
    if (s.ci == nullptr) {
        return require(s, false);
    }
    if (sch_col_domain(s.ci) != nullptr) {
        return refuse(s, "the column has a domain already");
    }
    return process_type(s, sch_col_type(s.ci));
}

constexpr SCHLOAD_ELEM_ITEM column_items[] = {
    {"colid", jvNUMBER, schload_colid},
    {"name", jvSTRING, text<sch_col_set_name, &SCHLOAD::ci>},
    {"domid", jvSTRING, schload_col_domid},
    {"keyid", jvNUMBER, schload_col_keyid},
    {"refid", jvNUMBER, kept_number<&SCHLOAD::curr_col, &SCHLOAD_COL::refid>},
    {"r_tabid", jvSTRING, kept_digits<&SCHLOAD::curr_col, &SCHLOAD_COL::reftabid>},
    {"r_colid", jvSTRING, kept_digits<&SCHLOAD::curr_col, &SCHLOAD_COL::refcolid>},
    {"dwrid", jvNUMBER, schload_col_dwrid},
    {"usage", jvNUMBER, schload_col_usage},
    {"not_null", jvSTRING, text<sch_col_set_not_null, &SCHLOAD::ci>},
    {"width", jvNUMBER, number<sch_col_set_width, &SCHLOAD::ci, 0, UINT8_MAX>},
    {"format", jvSTRING, text<sch_col_set_format, &SCHLOAD::ci>},
    {"defValue", jvSTRING, text<sch_col_set_default, &SCHLOAD::ci>},
    {"defNull", jvBOOLEAN, null_default<sch_col_set_default, &SCHLOAD::ci>},
    {"type", jvOBJECT, schload_col_type},
};

OAK_RETCODE finished(SCHLOAD &s, OAK_RETCODE status) {
    return status >= sOKAY ? sOKAY : refuse(s, "what the object says does not fit together");
}

OAK_RETCODE schload_column(SCHLOAD &s, const OAK_JSON_VAL &) {
    s.curr_col = nullptr;
    OAK_RETCODE status = process_object(s, column_items);
    if (status == sOKAY) {
        status = require(s, s.ci != nullptr);
    }
    return status == sOKAY ? finished(s, sch_col_finalize(s.ci)) : status;
}

// ---- Keys -------------------------------------------------------------------

OAK_RETCODE schload_keyid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    return status == sOKAY ? sch_key_create(s.ti, static_cast<OAK_KEY_INDEX>(value.v.num), &s.ki)
                           : status;
}

OAK_RETCODE schload_key_restrict(SCHLOAD &s, const OAK_JSON_VAL &value) {
    return set<sch_key_set_restr, &SCHLOAD::ki>(s, value.v.flag);
}

constexpr SCHLOAD_ELEM_ITEM key_col_items[] = {
    {"colid", jvSTRING, digits<sch_elem_set_col, &SCHLOAD::ei, 0, k16>},
    {"order", jvSTRING, word<sch_elem_set_order, &SCHLOAD::ei, direction_items>},
};

OAK_RETCODE schload_key_col(SCHLOAD &s, const OAK_JSON_VAL &) {
    s.ei = s.ki != nullptr ? sch_key_elem(s.ki, s.index) : nullptr;
    if (s.ei == nullptr) {
        return refuse(s, "the list has more columns than nocols says");
    }
    ++s.index;
    return process_object(s, key_col_items);
}

OAK_RETCODE schload_key_cols(SCHLOAD &s, const OAK_JSON_VAL &value) {
    s.index = 0;
    return object_array<schload_key_col, &SCHLOAD::ei>(s, value);
}

constexpr SCHLOAD_ELEM_ITEM key_items[] = {
    {"keyid", jvNUMBER, schload_keyid},
    {"dwrid", jvNUMBER, number<sch_key_set_drawer, &SCHLOAD::ki, -1, k32>},
    {"name", jvSTRING, text<sch_key_set_name, &SCHLOAD::ki>},
    {"type", jvSTRING, word<sch_key_set_type, &SCHLOAD::ki, key_type_items>},
    {"method", jvSTRING, word<sch_key_set_method, &SCHLOAD::ki, key_method_items>},
    {"restrict", jvBOOLEAN, schload_key_restrict},
    {"refcount", jvNUMBER, number<sch_key_set_refcount, &SCHLOAD::ki, 0, INT64_MAX>},
    {"nocols", jvNUMBER, capacity<sch_key_set_num_elems, &SCHLOAD::ki, k16>},
    {"cols", jvARRAY, schload_key_cols},
};

OAK_RETCODE schload_key(SCHLOAD &s, const OAK_JSON_VAL &) {
    OAK_RETCODE status = process_object(s, key_items);
    if (status == sOKAY) {
        status = require(s, s.ki != nullptr);
    }
    return status == sOKAY ? finished(s, sch_key_finalize(s.ki)) : status;
}

// ---- References -------------------------------------------------------------

OAK_RETCODE schload_refid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    if (status != sOKAY) {
        return status;
    }
    const auto id = static_cast<OAK_REF_INDEX>(value.v.num);
    if (s.curr_table == nullptr || id >= s.curr_table->num_refs) {
        return refuse(s, "the reference's id is not below the table's maxrefs");
    }
    status = sch_ref_create(s.ti, id, &s.ri);
    if (status == sOKAY) {
        s.curr_ref = &s.curr_table->refs[id];
        s.curr_ref->ri = s.ri;
    }
    return status;
}

OAK_RETCODE schload_ref_nocols(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = capacity<sch_ref_set_num_cols, &SCHLOAD::ri, k16>(s, value);
    if (status != sOKAY) {
        return status;
    }
    SCHLOAD_REF &ref = *s.curr_ref;
    ref.num_colids = static_cast<OAK_COL_INDEX>(value.v.num);
    status = make_records(s, ref.num_colids, &ref.colids);
    for (OAK_COL_INDEX i = 0; status == sOKAY && i < ref.num_colids; ++i) {
        ref.colids[i] = OAK_INDEX_NONE;
    }
    return status;
}

OAK_RETCODE schload_ref_col(SCHLOAD &s, const OAK_JSON_VAL &value) {
    int64_t id = 0;
    if (s.curr_ref == nullptr || s.index >= s.curr_ref->num_colids) {
        return refuse(s, "the list has more columns than nocols says");
    }
    if (schload_get_num(value.v.str, 0, k16, &id) != sOKAY) {
        return refuse(s, "the text is no number within its bounds");
    }
    s.curr_ref->colids[s.index++] = static_cast<OAK_COL_INDEX>(id);
    return sOKAY;
}

OAK_RETCODE schload_ref_cols(SCHLOAD &s, const OAK_JSON_VAL &) {
    s.index = 0;
    return process_array(s, jvSTRING, schload_ref_col);
}

OAK_RETCODE set_sort_col(SCH_REF_INFO ri, uint32_t position_and_id) {
    return sch_ref_set_sort_col(ri, static_cast<OAK_COL_INDEX>(position_and_id >> 16),
                                static_cast<OAK_COL_INDEX>(position_and_id));
}

OAK_RETCODE schload_sort_colid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    int64_t id = 0;
    if (schload_get_num(value.v.str, 0, k16, &id) != sOKAY) {
        return refuse(s, "the text is no number within its bounds");
    }
    const uint32_t packed = static_cast<uint32_t>(s.index) << 16 | static_cast<uint32_t>(id);
    return set<set_sort_col, &SCHLOAD::ri>(s, packed);
}

OAK_RETCODE schload_sort_order(SCHLOAD &s, const OAK_JSON_VAL &value) {
    const auto *item = item_of(direction_items, value.v.str);
    if (item == nullptr || s.ri == nullptr) {
        return refuse(s, "the word is none of the member's");
    }
    return sch_ref_set_sort_order(s.ri, s.index, item->value);
}

constexpr SCHLOAD_ELEM_ITEM sort_col_items[] = {
    {"colid", jvSTRING, schload_sort_colid},
    {"order", jvSTRING, schload_sort_order},
};

OAK_RETCODE schload_ref_sortcol(SCHLOAD &s, const OAK_JSON_VAL &) {
    const OAK_RETCODE status = process_object(s, sort_col_items);
    ++s.index;
    return status;
}

OAK_RETCODE schload_ref_sortcols(SCHLOAD &s, const OAK_JSON_VAL &) {
    s.index = 0;
    return process_array(s, jvOBJECT, schload_ref_sortcol);
}

constexpr SCHLOAD_ELEM_ITEM ref_items[] = {
    {"refid", jvNUMBER, schload_refid},
    {"dwrid", jvNUMBER, number<sch_ref_set_drawer, &SCHLOAD::ri, 0, k32>},
    {"name", jvSTRING, text<sch_ref_set_name, &SCHLOAD::ri>},
    {"otabid", jvSTRING, kept_digits<&SCHLOAD::curr_ref, &SCHLOAD_REF::tabid>},
    {"pkeyid", jvSTRING, kept_digits<&SCHLOAD::curr_ref, &SCHLOAD_REF::keyid>},
    {"on_upd", jvSTRING, word<sch_ref_set_on_update, &SCHLOAD::ri, ref_action_items>},
    {"on_del", jvSTRING, word<sch_ref_set_on_delete, &SCHLOAD::ri, ref_action_items>},
    {"nocols", jvNUMBER, schload_ref_nocols},
    {"nosortcols", jvNUMBER, capacity<sch_ref_set_num_sort_cols, &SCHLOAD::ri, k16>},
    {"cols", jvARRAY, schload_ref_cols},
    {"sortcols", jvARRAY, schload_ref_sortcols},
};

OAK_RETCODE check_colids(SCHLOAD &s) {
    for (OAK_COL_INDEX i = 0; i < s.curr_ref->num_colids; ++i) {
        if (s.curr_ref->colids[i] == OAK_INDEX_NONE) {
            return refuse(s, "the reference has fewer columns than nocols says");
        }
    }
    return sOKAY;
}

OAK_RETCODE schload_ref(SCHLOAD &s, const OAK_JSON_VAL &) {
    s.curr_ref = nullptr;
    OAK_RETCODE status = process_object(s, ref_items);
    if (status == sOKAY) {
        status = require(s, s.curr_ref != nullptr);
    }
    if (status == sOKAY) {
        status = check_colids(s);
    }
    return status == sOKAY ? finished(s, sch_ref_finalize(s.ri)) : status;
}

// ---- Tables and the database ------------------------------------------------

OAK_RETCODE schload_tabid(SCHLOAD &s, const OAK_JSON_VAL &value) {
    OAK_RETCODE status = check_number(s, value.v.num, 0, k16);
    if (status != sOKAY) {
        return status;
    }
    const auto id = static_cast<OAK_TBL_INDEX>(value.v.num);
    if (id >= s.max_tables) {
        return refuse(s, "the table's id is not below maxtabs");
    }
    status = sch_tbl_create(s.sch, id, &s.ti);
    if (status == sOKAY) {
        s.curr_table = &s.tables[id];
        s.curr_table->ti = s.ti;
    }
    return status;
}

constexpr SCHLOAD_ELEM_ITEM table_items[] = {
    {"tabid", jvNUMBER, schload_tabid},
    {"dwrid", jvNUMBER, number<sch_tbl_set_drawer, &SCHLOAD::ti, -1, k32>},
    {"type", jvSTRING, word<sch_tbl_set_type, &SCHLOAD::ti, table_type_items>},
    {"name", jvSTRING, text<sch_tbl_set_name, &SCHLOAD::ti>},
    {"checkStr", jvSTRING, text<sch_tbl_set_check_str, &SCHLOAD::ti>},
    {"checkName", jvSTRING, text<sch_tbl_set_check_name, &SCHLOAD::ti>},
    {"maxrows", jvNUMBER, number<sch_tbl_set_max_rows, &SCHLOAD::ti, INT64_MIN, INT64_MAX>},
    {"nocols", jvNUMBER, number<sch_tbl_set_num_cols, &SCHLOAD::ti, 0, k16>},
    {"nextcol", jvNUMBER, number<sch_tbl_set_next_col, &SCHLOAD::ti, 0, k16>},
    {"maxcols", jvNUMBER, schload_maxcols},
    {"nokeys", jvNUMBER, number<sch_tbl_set_num_keys, &SCHLOAD::ti, 0, k16>},
    {"nextkey", jvNUMBER, number<sch_tbl_set_next_key, &SCHLOAD::ti, 0, k16>},
    {"maxkeys", jvNUMBER, capacity<sch_tbl_set_max_keys, &SCHLOAD::ti, k16>},
    {"norefs", jvNUMBER, number<sch_tbl_set_num_refs, &SCHLOAD::ti, 0, k16>},
    {"maxrefs", jvNUMBER, schload_maxrefs},
    {"columns", jvARRAY, object_array<schload_column, &SCHLOAD::ci>},
    {"keys", jvARRAY, object_array<schload_key, &SCHLOAD::ki>},
    {"refs", jvARRAY, object_array<schload_ref, &SCHLOAD::ri>},
};

OAK_RETCODE schload_table(SCHLOAD &s, const OAK_JSON_VAL &) {
    s.curr_table = nullptr;
    OAK_RETCODE status = process_object(s, table_items);
    if (status == sOKAY) {
        status = require(s, s.ti != nullptr);
    }
    return status == sOKAY ? finished(s, sch_tbl_finalize(s.ti, s.unicode_enabled)) : status;
}

constexpr SCHLOAD_ELEM_ITEM database_items[] = {
    {"catver", jvNUMBER, number<sch_set_catver, &SCHLOAD::sch, 0, k32>},
    {"dbver", jvNUMBER, number<sch_set_dbver, &SCHLOAD::sch, 0, k32>},
    {"name", jvSTRING, text<sch_set_name, &SCHLOAD::sch>},
    {"locale", jvSTRING, text<sch_set_locale, &SCHLOAD::sch>},
    {"encryption", jvSTRING, word<sch_set_encryption, &SCHLOAD::sch, encryption_items>},
    {"maxdrawers", jvNUMBER, number<sch_set_max_drawer, &SCHLOAD::sch, 0, k32>},
    {"nodrawers", jvNUMBER, number<sch_set_num_drawers, &SCHLOAD::sch, 0, k32>},
    {"nextdrawer", jvNUMBER, number<sch_set_next_drawer, &SCHLOAD::sch, 0, k32>},
    {"nodoms", jvNUMBER, number<sch_set_num_domains, &SCHLOAD::sch, 0, k16>},
    {"maxdoms", jvNUMBER, capacity<sch_set_next_domain, &SCHLOAD::sch, k16>},
    {"maxtabs", jvNUMBER, schload_maxtabs},
    {"notabs", jvNUMBER, number<sch_set_num_tables, &SCHLOAD::sch, 0, k16>},
    {"nexttab", jvNUMBER, schload_nexttab},
    {"drawers", jvARRAY, object_array<schload_drawer, &SCHLOAD::di>},
    {"domains", jvARRAY, object_array<schload_domain, &SCHLOAD::mi>},
    {"tables", jvARRAY, object_array<schload_table, &SCHLOAD::ti>},
};

OAK_RETCODE process_database(SCHLOAD &s) {
    const PathNode node{nullptr, "database", 0};
    s.path = &node;
    const OAK_RETCODE status = process_object(s, database_items);
    s.path = nullptr;
    if (status == sOKAY && sch_num_domains(s.sch) > sch_next_domain(s.sch)) {
        return refuse(s, "nodoms is above maxdoms");
    }
    return status;
}

// ---- The final pass ---------------------------------------------------------

OAK_RETCODE link_ref(const SCHLOAD_REF &ref) {
    OAK_RETCODE status = sch_ref_set_reftab(ref.ri, ref.tabid);
    if (status == sOKAY) {
        status = sch_ref_set_refkey(ref.ri, ref.keyid);
    }
    for (OAK_COL_INDEX i = 0; status == sOKAY && i < ref.num_colids; ++i) {
        status = sch_ref_set_col(ref.ri, i, ref.colids[i]);
    }
    if (status == sOKAY) {
        status = sch_ref_finalize_name(ref.ri);
    }
    if (status == sOKAY) {
        sch_ref_finalize_locking(ref.ri);
    }
    return status;
}

// A reference that fails does not stop the walk, and the status of the last one
// alone counts for the table: failures before it pass without notice. Catalogs
// that rely on this load.
OAK_RETCODE link_refs(const SCHLOAD_TABLE &table) {
    OAK_RETCODE status = sOKAY;
    for (OAK_REF_INDEX i = 0; i < table.num_refs; ++i) {
        if (table.refs[i].ri != nullptr) {
            status = link_ref(table.refs[i]);
        }
    }
    return status;
}

OAK_RETCODE link_foreign_key(const SCHLOAD_COL &col) {
    if (col.reftabid == OAK_INDEX_NONE || col.refcolid == OAK_INDEX_NONE) {
        return OAK_DAMAGED(eBADCAT);
    }
    OAK_RETCODE status = sch_col_set_ref(col.ci, col.refid);
    if (status == sOKAY) {
        status = sch_col_set_reftab(col.ci, col.reftabid);
    }
    return status == sOKAY ? sch_col_set_refcol(col.ci, col.refcolid) : status;
}

OAK_RETCODE link_col(const SCHLOAD_COL &col) {
    if (col.ci == nullptr) {
        return sOKAY;
    }
    OAK_RETCODE status = col.refid != OAK_INDEX_NONE ? link_foreign_key(col) : sOKAY;
    if (status == sOKAY && col.keyid != OAK_INDEX_NONE) {
        status = sch_col_set_key(col.ci, col.keyid);
    }
    return status;
}

OAK_RETCODE link_table(const SCHLOAD_TABLE &table, OAK_TBL_INDEX offset) {
    OAK_RETCODE status = sch_tbl_set_offset(table.ti, offset);
    if (status == sOKAY) {
        status = link_refs(table);
    }
    for (OAK_COL_INDEX i = 0; status == sOKAY && i < table.num_cols; ++i) {
        status = link_col(table.cols[i]);
    }
    return status;
}

OAK_RETCODE link_tables(SCHLOAD &s) {
    OAK_TBL_INDEX offset = 1;
    for (OAK_TBL_INDEX i = 0; i < s.next_table && i < s.max_tables; ++i) {
        if (s.tables[i].ti == nullptr) {
            continue;
        }
        const OAK_RETCODE status = link_table(s.tables[i], offset++);
        if (status != sOKAY) {
            const char *name = sch_tbl_name(s.tables[i].ti);
            OAK_IGNORE_STATUS(osl_snprintf(s.where->path, SCH_LOAD_PATH_SIZE, "database.tables: %s",
                                           name != nullptr ? name : "a table"),
                              "a long name is cut");
            s.where->reason = "a key or reference names what is not there";
            return status;
        }
    }
    sch_calc_num_refs(s.sch);
    return sOKAY;
}

// ---- The whole --------------------------------------------------------------

// The top object and its first pair, "database", with an object.
OAK_RETCODE open_database_object(SCHLOAD &s) {
    OAK_JSON_VALTYPE type = jvNOVAL;
    OAK_RETCODE status = b_jsonNextValue(s.json, &type, nullptr);
    if (status != sOKAY) {
        return status;
    }
    if (type != jvOBJECT) {
        return refuse(s, "the catalog is no object");
    }
    OAK_JSON_PAIR pair{};
    status = b_jsonNextPair(s.json, &type, &pair);
    const bool is_database = status == sOKAY && type == jvOBJECT && pair.name != nullptr &&
                             strcasecmp(pair.name, "database") == 0;
    b_jsonFreePair(s.json, &pair);
    if (status == sOKAY && !is_database) {
        return refuse(s, "the first pair is not \"database\" with an object");
    }
    return status;
}

OAK_RETCODE read_catalog(SCHLOAD &s) {
    OAK_RETCODE status = open_database_object(s);
    if (status == sOKAY) {
        status = process_database(s);
    }
    return status == sOKAY ? link_tables(s) : status;
}

// Reads from an open input into a new schema.
OAK_RETCODE load_from_input(SCHLOAD &s, OAK_INPUT_OBJ input) {
    OAK_RETCODE status = sch_create(&s.sch);
    if (status != sOKAY) {
        return status;
    }
    status = b_jsonOpen(&s.json, input);
    if (status == sOKAY) {
        status = read_catalog(s);
        s.where->line = b_lexGetLineNumber(s.json->hLex);
        s.where->column = static_cast<uint32_t>(b_lexGetCharacterNumber(s.json->hLex));
        b_jsonClose(s.json);
    }
    if (status != sOKAY) {
        sch_destroy(s.sch);
    }
    return status;
}

OAK_RETCODE open_input(OSL_FH fh, const char *buffer, OSL_MEMTAG tag, OAK_INPUT_OBJ *input,
                       size_t *length) {
    if (fh == nullptr) {
        *length = std::strlen(buffer);
        return b_inputCreateFromMemory(input, reinterpret_cast<const uint8_t *>(buffer), *length,
                                       tag);
    }
    *length = osl_fileLength(fh);
    const OAK_RETCODE status = osl_fileSeek(fh, 0, OSL_SEEK_START, nullptr);
    return status == sOKAY ? b_inputCreateFromFile(input, fh, tag) : status;
}

// How many array entries a catalog may ask for: plenty for headroom, and more
// with the length of the text.
size_t entry_allowance(size_t length) {
    constexpr size_t kBase = 1u << 20;
    constexpr size_t kEntriesPerByte = 16;
    return kBase + (length < SIZE_MAX / kEntriesPerByte / 2 ? length * kEntriesPerByte : 0);
}

OAK_RETCODE load(SCHLOAD &s, OSL_FH fh, const char *buffer) {
    s.tag = OSL_CREATE_TAG();
    if (s.tag == nullptr) {
        return eNOMEMORY;
    }
    OAK_INPUT_OBJ input = nullptr;
    size_t length = 0;
    OAK_RETCODE status = open_input(fh, buffer, s.tag, &input, &length);
    if (status == sOKAY) {
        s.entries_left = entry_allowance(length);
        status = load_from_input(s, input);
        b_inputClose(input);
    }
    OSL_FREE_TAG(s.tag);
    return status;
}

} // namespace

OAK_RETCODE sch_read_database_schema(SCH_INFO *psch, OSL_FH fh, const char *buffer,
                                     OAK_BOOL_T unicode_enabled) {
    return sch_read_database_schema_at(psch, fh, buffer, unicode_enabled, nullptr);
}

OAK_RETCODE sch_read_database_schema_at(SCH_INFO *psch, OSL_FH fh, const char *buffer,
                                        OAK_BOOL_T unicode_enabled, SCH_LOAD_WHERE *where) {
    if (psch == nullptr || (fh == nullptr && buffer == nullptr)) {
        return eINVNULLARG;
    }
    SCH_LOAD_WHERE scratch;
    SCHLOAD s{};
    s.where = where != nullptr ? where : &scratch;
    *s.where = SCH_LOAD_WHERE{};
    s.unicode_enabled = unicode_enabled;
    const OAK_RETCODE status = load(s, fh, buffer);
    if (status == sOKAY) {
        *psch = s.sch;
    }
    return status;
}
