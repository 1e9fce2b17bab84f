// A row in buffer form from the fields of a CSV record. What all rows have in
// common, NULLs and constant defaults, is laid out once and copied for each row;
// then the fields are converted one by one into the block.
#include "row_builder.h"

#include <cstring>
#include <strings.h>

#include "bcd.h"
#include "datetime.h"
#include "schema_fcns.h"
#include "uuid.h"
#include "value.h"

namespace tools {

namespace {

constexpr size_t kShownText = 40; // bytes of a field that a message shows

std::string place_of(uint64_t line, const Column &column) {
    return "line " + std::to_string(line) + ", column '" + column.name + "': ";
}

Complaint refusal(const Column &column, const CsvField &field, OAK_RETCODE status,
                  const std::string &more) {
    return place_of(field.line, column) + status_text(status) + ": " + more;
}

// Digits behind the point may go: of a number read into an integer, and of a
// decimal beyond its column's scale. Nothing else may.
bool only_fraction_is_lost(const Column &column, OAK_RETCODE status) {
    const bool is_integer = class_of(column.type) == OAK_TYPE_CLASS_INTEGER;
    const bool is_value = column.kind == ColumnKind::plain || column.kind == ColumnKind::array;
    return (status == sTRUNCATE && is_integer && is_value) ||
           (column.kind == ColumnKind::decimal &&
            (status == sPRECISIONLOSS || status == sUNDERFLOW));
}

bool is_missing(const CsvField &field) {
    return field.length == 0 && !field.quoted;
}

OAK_RETCODE current_date(OAK_VALUE *value) {
    value->type = OAK_DATE;
    return oak_dateToday(0, &value->vt.dtv);
}

OAK_RETCODE current_time(OAK_TYPE type, OAK_VALUE *value) {
    value->type = type;
    return type == OAK_TIMETZ ? oak_timetzNow(0, &value->vt.tmzv) : oak_timeNow(0, &value->vt.tmv);
}

// `zoned` holds a timestamp with a zone, to which the value points.
OAK_RETCODE current_timestamp(OAK_TYPE type, OAK_VALUE *value, OAK_PACKED_TIMESTAMPTZ_T *zoned) {
    value->type = type;
    if (type != OAK_TIMESTAMPTZ) {
        return oak_timestampNow(0, &value->vt.tsv);
    }
    value->vt.tszv = zoned;
    return oak_timestamptzNow(0, zoned);
}

// The value that a default stands for; a keyword's is that of this moment, UTC.
OAK_RETCODE evaluate(const Column &column, const OAK_VALUE &def, OAK_VALUE *value,
                     OAK_PACKED_TIMESTAMPTZ_T *zoned) {
    *value = def;
    switch (def.type) {
        case OAK_DEFAULT_CURRDATE:
            return current_date(value);
        case OAK_DEFAULT_CURRTIME:
            return current_time(column.type, value);
        case OAK_DEFAULT_CURRTIMESTAMP:
            return current_timestamp(column.type, value, zoned);
        default:
            return sOKAY;
    }
}

} // namespace

RowBuilder::RowBuilder(SCH_TBL_INFO_C ti) : ti_(ti) {
    sch_tbl_get_buffer_info(ti, &layout_);
    for (const Column &column : columns_of(ti)) {
        targets_.push_back({column});
    }
    row_buffer_.resize(layout_.row_buffer_size / sizeof row_buffer_[0] + 1);
    row_.format = OAK_ROW_FORMAT_BUFFER;
    row_.ti = ti;
    row_.data_len = layout_.row_buffer_size;
    point();
}

void RowBuilder::point() {
    uint8_t *block = reinterpret_cast<uint8_t *>(row_buffer_.data());
    row_.row_data = block;
    row_.avls =
        layout_.num_avls != 0 ? reinterpret_cast<OAK_AVL *>(block + layout_.avl_offset) : nullptr;
    row_.joins =
        layout_.num_refs != 0 ? reinterpret_cast<OAK_JOIN *>(block + layout_.ref_offset) : nullptr;
    row_.data.b.col_status = reinterpret_cast<VAL_STATUS *>(block + layout_.col_status_offset);
    row_.data.b.col_data = block + layout_.col_data_offset;
}

// ---- The header -------------------------------------------------------------

Complaint RowBuilder::prepare(const std::vector<CsvField> &header) {
    Complaint complaint = find_columns(header);
    if (complaint.empty()) {
        complaint = set_defaults();
    }
    return complaint;
}

Complaint RowBuilder::find_columns(const std::vector<CsvField> &header) {
    header_fields_ = header.size();
    for (size_t i = 0; i < header.size(); ++i) {
        Target *found = nullptr;
        for (Target &target : targets_) {
            found = strcasecmp(target.column.name, header[i].text) == 0 ? &target : found;
        }
        const std::string named =
            "line " + std::to_string(header[i].line) + ": '" + header[i].text + "'";
        if (found == nullptr) {
            return named + " is no column of table '" + sch_tbl_name(ti_) + "'";
        }
        if (found->field != kNotInCsv) {
            return named + " is named twice";
        }
        found->field = i;
    }
    return {};
}

// Lays out the row of which every row begins as a copy.
Complaint RowBuilder::set_defaults() {
    for (Target &target : targets_) {
        const Column &column = target.column;
        row_.data.b.col_status[column.position] =
            column.has_value != 0 && column.kind != ColumnKind::foreign ? vsNULL : vsNOVAL;
        if (target.field == kNotInCsv) {
            if (Complaint complaint = set_default(&target); !complaint.empty()) {
                return complaint;
            }
        }
    }
    template_ = row_buffer_;
    return {};
}

Complaint RowBuilder::set_default(Target *target) {
    const Column &column = target->column;
    if (column.kind == ColumnKind::rowid) {
        return {};
    }
    const std::string default_of =
        std::string("column '") + column.name + "', which the CSV does not name: ";
    const OAK_VALUE *def = sch_col_def(column.info);
    if (def == nullptr || def->status != vsOKAY) {
        return column.nullable ? Complaint()
                               : default_of + status_text(eNOTNULL) + "; it has no default";
    }
    if (def->type == OAK_DEFAULT_AUTO) {
        target->generated = Generated::uuid;
        return {};
    }
    OAK_VALUE value;
    OAK_PACKED_TIMESTAMPTZ_T zoned;
    OAK_RETCODE status = evaluate(column, *def, &value, &zoned);
    if (status == sOKAY) {
        status = store(column, value);
    }
    const bool stored = status == sOKAY || only_fraction_is_lost(column, status);
    return stored ? Complaint() : default_of + "its default: " + status_text(status);
}

// ---- Records ----------------------------------------------------------------

Complaint RowBuilder::build(const std::vector<CsvField> &record, uint64_t line,
                            OAK_ROWID_T row_number) {
    if (record.size() != header_fields_) {
        return "line " + std::to_string(line) + ": " + counted(record.size(), "field") +
               " where the header has " + std::to_string(header_fields_);
    }
    std::memcpy(row_buffer_.data(), template_.data(), layout_.row_buffer_size);
    row_.rowid = row_number;
    for (const Target &target : targets_) {
        const bool is_given = target.field != kNotInCsv && !is_missing(record[target.field]);
        Complaint complaint =
            is_given
                ? set_field(target, record[target.field])
                : set_missing(target, target.field != kNotInCsv ? record[target.field].line : line);
        if (!complaint.empty()) {
            return complaint;
        }
    }
    return {};
}

void RowBuilder::mark(const Column &column) {
    row_.data.b.col_status[column.position] = vsOKAY;
    if (column.has_value != 0) {
        row_.data.b.col_data[column.has_value] = 1;
    }
}

// A column without a field, or with an empty one.
Complaint RowBuilder::set_missing(const Target &target, uint64_t line) {
    const Column &column = target.column;
    if (column.kind == ColumnKind::rowid) {
        row_set_rowid_column(row_.data.b.col_data + column.offset, row_.rowid);
        mark(column);
        return {};
    }
    if (target.generated == Generated::uuid) {
        return set_new_uuid(column, line);
    }
    const bool is_null = target.field != kNotInCsv;
    return is_null && !column.nullable ? place_of(line, column) + status_text(eNOTNULL)
                                       : Complaint();
}

Complaint RowBuilder::set_new_uuid(const Column &column, uint64_t line) {
    OAK_UUID_T uuid = {};
    oak_uuidCreate(&uuid);
    OAK_VALUE value;
    oak_valueInit(&value);
    OAK_RETCODE status = oak_valueSetUuid(&value, &uuid);
    status = status == sOKAY ? store(column, value) : status;
    return status == sOKAY ? Complaint() : place_of(line, column) + status_text(status);
}

Complaint RowBuilder::set_field(const Target &target, const CsvField &field) {
    const Column &column = target.column;
    if (column.kind == ColumnKind::large_object) {
        return refusal(column, field, eNOTIMPLEMENTED,
                       "a large object lies in a drawer of its own, not in its row");
    }
    if (column.kind == ColumnKind::foreign && !refers_to_rowid(column.info)) {
        return refusal(column, field, eNOTIMPLEMENTED,
                       "the value of a foreign key lies in the row referred to, and only a "
                       "reference to a row number is packed");
    }
    OAK_VALUE value{};
    OAK_RETCODE status = converter_.convert(column, field.text, field.length, &value);
    if (status == sOKAY || only_fraction_is_lost(column, status)) {
        const OAK_RETCODE stored = store(column, value);
        status = stored != sOKAY ? stored : status;
    }
    converter_.release(column, &value);
    if (status == sOKAY) {
        return {};
    }
    if (only_fraction_is_lost(column, status)) {
        note_fraction(column, field.line);
        return {};
    }
    return refusal(column, field, status, more_about(column, field, status));
}

// What the status alone does not say; the text where nothing else helps.
std::string RowBuilder::more_about(const Column &column, const CsvField &field,
                                   OAK_RETCODE status) const {
    if (converter_.detail()[0] != '\0') {
        return converter_.detail();
    }
    if (column.kind == ColumnKind::rowid) {
        return std::string("'") + field.text + "' is not the number of this row, " +
               std::to_string(row_.rowid) + "; an empty field stands for it";
    }
    if (status == sTRUNCATE && column.kind == ColumnKind::text) {
        return counted(field.length, "byte") + " where the column takes " +
               std::to_string(column.byte_len == 0 ? 0 : column.byte_len - 1);
    }
    const std::string text = field.text;
    return "'" + (text.size() > kShownText ? text.substr(0, kShownText) + "..." : text) + "'";
}

void RowBuilder::note_fraction(const Column &column, uint64_t line) {
    if (fractions_lost_++ == 0) {
        first_fraction_lost_ = "line " + std::to_string(line) + ", column '" + column.name + "'";
    }
}

// ---- Storing ----------------------------------------------------------------

OAK_RETCODE RowBuilder::store(const Column &column, const OAK_VALUE &value) {
    switch (column.kind) {
        case ColumnKind::rowid:
            return store_row_number(column, value);
        case ColumnKind::foreign:
            return store_join(column, value);
        case ColumnKind::large_object:
            return eNOTIMPLEMENTED;
        case ColumnKind::decimal:
            return store_decimal(column, value);
        default:
            return copy(column, value);
    }
}

// A column of no bytes has no room for anything; a binary without bytes stands
// there already, as the zeros of the empty row.
OAK_RETCODE RowBuilder::copy(const Column &column, const OAK_VALUE &value) {
    if (column.byte_len == 0) {
        return eBADDATALEN;
    }
    OAK_RETCODE status = sOKAY;
    if (column.kind != ColumnKind::binary || value.len != 0) {
        size_t room = column.byte_len;
        status = sch_col_copy_to_buff_fcn(column.info, row_.data.b.col_data + column.offset, &room,
                                          nullptr, &value);
    }
    if (status == sOKAY) {
        mark(column);
    }
    return status;
}

// Stores what a compact row would give back: the digits of the column's places.
OAK_RETCODE RowBuilder::store_decimal(const Column &column, const OAK_VALUE &value) {
    const uint8_t precision = sch_col_prec(column.info);
    const uint8_t scale = sch_col_scale(column.info);
    OAK_PACKED_BCD_T packed[OAK_PACKED_BCD_SIZE(OAK_BCD_MAX_DIGITS)];
    OAK_BCD_T fitted;
    const OAK_RETCODE fits = oak_bcdPack(value.vt.bcd, packed, precision, scale);
    if (fits < 0) {
        return fits;
    }
    OAK_RETCODE status = oak_bcdUnpack(packed, &fitted, precision, scale);
    if (status == sOKAY) {
        OAK_VALUE fitted_value = value;
        fitted_value.vt.bcd = &fitted;
        status = copy(column, fitted_value);
    }
    return status == sOKAY ? fits : status;
}

OAK_RETCODE RowBuilder::store_row_number(const Column &column, const OAK_VALUE &value) {
    if (value.vt.u64v != row_.rowid) {
        return eINVROWIDVAL;
    }
    row_set_rowid_column(row_.data.b.col_data + column.offset, row_.rowid);
    mark(column);
    return sOKAY;
}

// A foreign key column's own place stays empty, as a compact row leaves it.
OAK_RETCODE RowBuilder::store_join(const Column &column, const OAK_VALUE &value) {
    const OAK_REF_INDEX reference = sch_ref_ndx(sch_col_ref(column.info));
    if (reference >= layout_.num_refs || !refers_to_rowid(column.info)) {
        return eNOTIMPLEMENTED;
    }
    uint64_t owner = 0;
    if (value.type == OAK_UINT64 || value.type == OAK_ROWID) {
        owner = value.vt.u64v;
    } else {
        int64_t number = 0;
        const OAK_RETCODE status = oak_valueGetInt64(&value, &number);
        if (status != sOKAY) {
            return status;
        }
        owner = number > 0 ? static_cast<uint64_t>(number) : 0;
    }
    row_.joins[reference].owner = owner;
    return owner != 0 ? sOKAY : eRANGE;
}

} // namespace tools
