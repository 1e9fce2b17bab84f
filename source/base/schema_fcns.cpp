// Column operations: the effective type, NULL and the has-value byte in one
// place, above the types' operations; and the parsing of defaults. Rests on the
// type tables, the conversions and the text readers of dates, decimals and
// UUIDs; called by the catalog reader, the item formats and the upper layers.
#include "schema_fcns.h"

#include <cfloat>
#include <cstring>
#include <strings.h>

#include "base_internal.h"
#include "bcd.h"
#include "convert.h"
#include "datetime_internal.h"
#include "oakvaluetypes.h"
#include "schema_structs.h"
#include "schema_view_internal.h"
#include "uuid.h"

using schema_view::type_of;

namespace {

constexpr OAK_HAS_VALUE_T kHasValue = 1;
constexpr uint8_t kNoHexDigit = 255;

// ---- Values -----------------------------------------------------------------

void set_has_value(SCH_COL_INFO_C ci, OAK_HAS_VALUE_T *hasValue, const OAK_VALUE *col) {
    if (hasValue != nullptr && ci->has_value_off != 0) {
        *hasValue = col->status == vsNULL ? 0 : kHasValue;
    }
}

// Sets the type, and NULL where the has-value byte says so; true for a value
// that is still to be taken from the buffer.
bool begin_from_buffer(SCH_COL_INFO_C ci, OAK_VALUE *col, const OAK_HAS_VALUE_T *hasValue) {
    col->type = type_of(ci)->type;
    const bool is_null = hasValue != nullptr && ci->has_value_off != 0 && *hasValue != kHasValue;
    col->status = is_null ? vsNULL : vsOKAY;
    return !is_null;
}

// What writing a value as text refuses before it looks at the value.
OAK_RETCODE check_printable(SCH_COL_INFO_C ci, const OAK_VALUE *val, uint32_t elem) {
    if (elem != 0 && elem >= type_of(ci)->elems) {
        return eRANGE;
    }
    return val->status == vsOKAY || val->status == vsNULL ? sOKAY : eINVARG;
}

// Bytes that a terminal does not show: control characters and the last one.
bool has_unprintable_byte(const char *text) {
    for (; text != nullptr && *text != 0; ++text) {
        const auto byte = static_cast<uint8_t>(*text);
        if (byte < 32 || byte > 254) {
            return true;
        }
    }
    return false;
}

// ---- Defaults ---------------------------------------------------------------

// What a default's parser works on.
struct Default {
    OAK_VALUE *value;
    const char *text;
    OSL_MEMTAG tag;
    bool of_column;
};

// The words that stand for a value found at insert time.
bool is_keyword(const Default &d, const char *word, OAK_TYPE type) {
    if (strcasecmp(d.text, word) != 0) {
        return false;
    }
    d.value->type = type;
    return true;
}

OAK_RETCODE setDefaultBool(const Default &d) {
    if (strcasecmp(d.text, "true") == 0) {
        d.value->vt.bv = OAK_TRUE;
        return sOKAY;
    }
    d.value->vt.bv = OAK_FALSE;
    return strcasecmp(d.text, "false") == 0 ? sOKAY : OAK_DAMAGED(eBADCAT);
}

template <class Number>
OAK_RETCODE set_narrow_signed(const Default &d, Number OAK_COLUMN::*member) {
    int64_t number = 0;
    if (osl_atoi64(d.text, &number) != sOKAY || number != static_cast<Number>(number)) {
        return OAK_DAMAGED(eBADCAT);
    }
    d.value->vt.*member = static_cast<Number>(number);
    return sOKAY;
}

template <class Number>
OAK_RETCODE set_narrow_unsigned(const Default &d, Number OAK_COLUMN::*member) {
    uint64_t number = 0;
    if (osl_atoui64(d.text, &number) != sOKAY || number != static_cast<Number>(number)) {
        return OAK_DAMAGED(eBADCAT);
    }
    d.value->vt.*member = static_cast<Number>(number);
    return sOKAY;
}

// A NaN passes.
OAK_RETCODE set_float(const Default &d) {
    const double number = osl_atof(d.text);
    if (number < -static_cast<double>(FLT_MAX) || number > static_cast<double>(FLT_MAX)) {
        return OAK_DAMAGED(eBADCAT);
    }
    d.value->vt.fv = static_cast<float>(number);
    return sOKAY;
}

// Nothing is tested: text that is no number is 0.
OAK_RETCODE set_double(const Default &d) {
    d.value->vt.dv = osl_atof(d.text);
    return sOKAY;
}

// Parses into a new record behind the value's pointer; a record whose text is
// refused is freed again and never reaches the value.
template <class Record, class Pointer, class Parse>
OAK_RETCODE set_behind_pointer(const Default &d, Pointer OAK_COLUMN::*member, Parse parse) {
    auto *record = static_cast<Record *>(OSL_GET_ZERO(sizeof(Record), d.tag));
    if (record == nullptr) {
        return eNOMEMORY;
    }
    const OAK_RETCODE status = parse(d.text, record);
    if (status < sOKAY) {
        OSL_FREE(record, d.tag);
        return status;
    }
    d.value->vt.*member = record;
    return status;
}

OAK_RETCODE setDefaultDecimal(const Default &d) {
    return set_behind_pointer<OAK_BCD_T>(
        d, &OAK_COLUMN::bcd, [](const char *text, OAK_BCD_T *bcd) -> OAK_RETCODE {
            const OAK_RETCODE status = oak_bcdFromString(text, bcd);
            return status < sOKAY ? OAK_DAMAGED(eBADCAT) : status;
        });
}

OAK_RETCODE setDefaultDate(const Default &d) {
    return is_keyword(d, "current_date", OAK_DEFAULT_CURRDATE)
               ? sOKAY
               : dt_dateFromString(d.text, OAK_YYYYMMDD, &d.value->vt.dtv);
}

OAK_RETCODE setDefaultTime(const Default &d) {
    const char *text = d.text;
    return is_keyword(d, "current_time", OAK_DEFAULT_CURRTIME)
               ? sOKAY
               : convertStringToTimePortion(&text, &d.value->vt.tmv);
}

OAK_RETCODE setDefaultTimetz(const Default &d) {
    return is_keyword(d, "current_time", OAK_DEFAULT_CURRTIME)
               ? sOKAY
               : dt_timetzFromString(d.text, &d.value->vt.tmzv);
}

OAK_RETCODE setDefaultTimestamp(const Default &d) {
    return is_keyword(d, "current_timestamp", OAK_DEFAULT_CURRTIMESTAMP)
               ? sOKAY
               : dt_timestampFromString(d.text, OAK_YYYYMMDD, &d.value->vt.tsv);
}

OAK_RETCODE setDefaultTimestamptz(const Default &d) {
    if (is_keyword(d, "current_timestamp", OAK_DEFAULT_CURRTIMESTAMP)) {
        return sOKAY;
    }
    return set_behind_pointer<OAK_PACKED_TIMESTAMPTZ_T>(
        d, &OAK_COLUMN::tszv, [](const char *text, OAK_PACKED_TIMESTAMPTZ_T *value) {
            return dt_timestamptzFromString(text, OAK_YYYYMMDD, value);
        });
}

OAK_RETCODE setDefaultUUID(const Default &d) {
    return is_keyword(d, "auto", OAK_DEFAULT_AUTO)
               ? sOKAY
               : set_behind_pointer<OAK_UUID_T>(d, &OAK_COLUMN::uuid, oak_uuidFromString);
}

// The engine assigns rowids: the column has no default of its own.
OAK_RETCODE set_rowid(const Default &d) {
    if (strcasecmp(d.text, "auto") != 0) {
        return OAK_DAMAGED(eBADCAT);
    }
    d.value->status = vsNOVAL;
    return sOKAY;
}

OAK_RETCODE setDefaultChar(const Default &d) {
    d.value->vt.cv = static_cast<const char *>(OSL_GET_STRING(d.text, d.tag));
    return d.value->vt.cv != nullptr ? sOKAY : eNOMEMORY;
}

OAK_RETCODE parse_hex(const char *text, uint8_t *bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t high = osl_hexdigit(text[2 * i]);
        const uint8_t low = osl_hexdigit(text[2 * i + 1]);
        if (high == kNoHexDigit || low == kNoHexDigit) {
            return OAK_DAMAGED(eBADCAT);
        }
        bytes[i] = static_cast<uint8_t>(high * 16 + low);
    }
    return sOKAY;
}

// Hexadecimal digits without a prefix; no digits are no bytes.
OAK_RETCODE parseBinaryDefault(const Default &d) {
    const size_t length = std::strlen(d.text);
    if (length % 2 != 0) {
        return OAK_DAMAGED(eBADCAT);
    }
    if (length == 0) {
        return sOKAY;
    }
    auto *bytes = static_cast<uint8_t *>(OSL_GET_ZERO(length / 2, d.tag));
    if (bytes == nullptr) {
        return eNOMEMORY;
    }
    const OAK_RETCODE status = parse_hex(d.text, bytes, length / 2);
    if (status != sOKAY) {
        OSL_FREE(bytes, d.tag);
        return status;
    }
    d.value->vt.pv = bytes;
    d.value->len = length / 2;
    return sOKAY;
}

OAK_RETCODE parse_default(OAK_TYPE type, const Default &d) {
    switch (type) {
        case OAK_BOOL:
            return setDefaultBool(d);
        case OAK_INT8:
            return set_narrow_signed(d, &OAK_COLUMN::i8v);
        case OAK_INT16:
            return set_narrow_signed(d, &OAK_COLUMN::i16v);
        case OAK_INT32:
            return set_narrow_signed(d, &OAK_COLUMN::i32v);
        case OAK_INT64:
            return osl_atoi64(d.text, &d.value->vt.i64v);
        case OAK_UINT8:
            return set_narrow_unsigned(d, &OAK_COLUMN::u8v);
        case OAK_UINT16:
            return set_narrow_unsigned(d, &OAK_COLUMN::u16v);
        case OAK_UINT32:
            return set_narrow_unsigned(d, &OAK_COLUMN::u32v);
        case OAK_UINT64:
            return osl_atoui64(d.text, &d.value->vt.u64v);
        case OAK_FLOAT:
            return set_float(d);
        case OAK_DOUBLE:
            return set_double(d);
        case OAK_BCD:
            return setDefaultDecimal(d);
        case OAK_DATE:
            return setDefaultDate(d);
        case OAK_TIME:
            return setDefaultTime(d);
        case OAK_TIMETZ:
            return setDefaultTimetz(d);
        case OAK_TIMESTAMP:
            return setDefaultTimestamp(d);
        case OAK_TIMESTAMPTZ:
            return setDefaultTimestamptz(d);
        case OAK_ROWID:
            return set_rowid(d);
        case OAK_UUID:
            return setDefaultUUID(d);
        case OAK_CHAR:
        case OAK_VARCHAR:
        case OAK_WCHAR:
        case OAK_WCHAR_UTF8:
        case OAK_WVARCHAR:
        case OAK_WVARCHAR_UTF8:
        case OAK_CLOB:
        case OAK_WCLOB:
            return setDefaultChar(d);
        case OAK_WCLOB_UTF8:
            // A domain takes such a default and a column does not: the two
            // differ in this type alone.
            return d.of_column ? eNOTIMPLEMENTED : setDefaultChar(d);
        case OAK_BINARY:
        case OAK_VARBINARY:
        case OAK_BLOB:
            return parseBinaryDefault(d);
        default:
            return eNOTIMPLEMENTED;
    }
}

// The rule of both setters. The text is kept whatever becomes of the value.
OAK_RETCODE set_default(const char *text, const char **defstr, OAK_VALUE *value,
                        SCH_TYPE_INFO_C type, OSL_MEMTAG tag, bool of_column) {
    const OAK_RETCODE status = sch_string_input(text, defstr, OAK_TRUE, tag);
    if (status != sOKAY) {
        return status;
    }
    const OAK_TYPE_INFO *operations = type->type_info;
    if (value->status == vsOKAY && operations != nullptr && operations->free_fcn != nullptr) {
        operations->free_fcn(value, tag);
    }
    value->vt = OAK_COLUMN{};
    value->elts = 0;
    value->len = 0;
    if (text == nullptr) {
        value->status = vsNULL;
        return sOKAY;
    }
    value->status = vsOKAY;
    value->type = type->type;
    return parse_default(type->type, Default{value, text, tag, of_column});
}

} // namespace

// ---- Comparing --------------------------------------------------------------

OAK_COMPARE sch_col_cmp_fcn(SCH_COL_INFO_C ci, uint32_t limit, const OAK_VALUE *col1,
                            const OAK_VALUE *col2) {
    if (col1->status == vsNULL) {
        return col2->status == vsNULL ? OAK_EQ : OAK_LT;
    }
    if (col2->status == vsNULL) {
        return OAK_GT;
    }
    const SCH_TYPE_INFO_C type = type_of(ci);
    const B_TYPE_CMP_FCN compare = type->type_info->cmp;
    return compare != nullptr ? compare(type, limit, col1, col2) : OAK_EQ;
}

OAK_COMPARE sch_col_cmp_buff_fcn(SCH_COL_INFO_C ci, uint32_t limit, const OAK_VALUE *col1,
                                 const void *col2, size_t col2Len) {
    OAK_VALUE value{};
    value.status = vsNULL;
    if (col2 != nullptr) {
        OAK_IGNORE_STATUS(sch_col_assign_from_buff_fcn(ci, &value, col2, col2Len, nullptr),
                          "a value that cannot be taken compares as it was left");
    }
    return sch_col_cmp_fcn(ci, limit, col1, &value);
}

// ---- Copying ----------------------------------------------------------------

OAK_RETCODE sch_col_copy_fcn(SCH_COL_INFO_C ci, OAK_VALUE *dst, const OAK_VALUE *src,
                             size_t maxExtraBytes, OSL_MEMTAG tag) {
    if (ci == nullptr || dst == nullptr || src == nullptr) {
        return eINVNULLARG;
    }
    dst->type = src->type;
    dst->elts = src->elts;
    dst->status = src->status;
    if (src->status != vsOKAY) {
        return sOKAY;
    }
    const SCH_TYPE_INFO_C type = type_of(ci);
    return type->type_info->copy_fcn(type, dst, src, maxExtraBytes, tag);
}

OAK_RETCODE sch_col_copy_to_buff_fcn(SCH_COL_INFO_C ci, void *data, size_t *datasize,
                                     OAK_HAS_VALUE_T *hasValue, const OAK_VALUE *col) {
    if (ci == nullptr || col == nullptr) {
        return eINVNULLARG;
    }
    OAK_RETCODE status = sOKAY;
    const SCH_TYPE_INFO_C type = type_of(ci);
    if (col->status == vsOKAY && !schema_view::is_large_object(ci)) {
        status = type->type_info->copy_to_buff_fcn(type, data, datasize, col);
    }
    if (status >= sOKAY) {
        set_has_value(ci, hasValue, col);
    }
    return status;
}

OAK_RETCODE sch_col_copy_to_str_fcn(SCH_COL_INFO_C ci, int16_t tz_disp, char *str, size_t *strsize,
                                    OAK_HAS_VALUE_T *hasValue, const OAK_VALUE *col) {
    if (ci == nullptr || strsize == nullptr || col == nullptr) {
        return eINVNULLARG;
    }
    OAK_RETCODE status = sOKAY;
    size_t bytes = 0;
    if (col->status != vsNULL) {
        // To the conversions no room means room without end, so it is measured.
        char *text = *strsize != 0 ? str : nullptr;
        status = b_convertOakValueToBuffer(col, OAK_CHAR, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF,
                                           tz_disp, text, *strsize, nullptr, &bytes);
        if (status == sOKAY && text == nullptr && str != nullptr) {
            status = sTRUNCATE;
        }
    }
    if (status == sOKAY || status == sTRUNCATE) {
        *strsize = bytes;
        set_has_value(ci, hasValue, col);
    }
    return status;
}

OAK_RETCODE sch_col_copy_from_buff_fcn(SCH_COL_INFO_C ci, OAK_VALUE *col, const void *data,
                                       size_t datasize, const OAK_HAS_VALUE_T *hasValue,
                                       OSL_MEMTAG tag) {
    if (ci == nullptr || col == nullptr) {
        return eINVNULLARG;
    }
    if (!begin_from_buffer(ci, col, hasValue)) {
        return sOKAY;
    }
    const SCH_TYPE_INFO_C type = type_of(ci);
    return type->type_info->copy_from_buff_fcn(type, col, data, datasize, tag);
}

OAK_RETCODE sch_col_assign_from_buff_fcn(SCH_COL_INFO_C ci, OAK_VALUE *col, const void *data,
                                         size_t datasize, const OAK_HAS_VALUE_T *hasValue) {
    if (ci == nullptr || col == nullptr) {
        return eINVNULLARG;
    }
    if (!begin_from_buffer(ci, col, hasValue)) {
        return sOKAY;
    }
    const SCH_TYPE_INFO_C type = type_of(ci);
    return type->type_info->assign_from_buff_fcn(type, col, data, datasize);
}

OAK_RETCODE sch_col_pack_buffer_fcn(SCH_COL_INFO_C ci, const void *data, B_ENCODER encoder) {
    if (ci == nullptr || data == nullptr || encoder == nullptr) {
        return eINVNULLARG;
    }
    const SCH_TYPE_INFO_C type = type_of(ci);
    if (type->type_info->pack_fcn == nullptr) {
        return eNOTIMPLEMENTED; // a large object has no stream form
    }
    OAK_VALUE value{};
    value.status = vsOKAY;
    value.type = type->type;
    const OAK_RETCODE status =
        type->type_info->assign_from_buff_fcn(type, &value, data, type->byte_len);
    return status == sOKAY ? type->type_info->pack_fcn(type, &value, encoder) : status;
}

void sch_col_free_fcn(SCH_COL_INFO_C ci, OAK_VALUE *col, OSL_MEMTAG tag) {
    if (ci == nullptr || col == nullptr) {
        return;
    }
    const OAK_TYPE_INFO *operations = type_of(ci)->type_info;
    if (col->status == vsOKAY && operations->free_fcn != nullptr) {
        operations->free_fcn(col, tag);
    }
    col->status = vsNOVAL;
}

// ---- Text -------------------------------------------------------------------

OAK_RETCODE sch_col_tostring_fcn(SCH_COL_INFO_C ci, const OAK_VALUE *val, uint32_t elem,
                                 uint32_t flags, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {
    if (ci == nullptr || val == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE status = check_printable(ci, val, elem);
    if (status != sOKAY) {
        return status;
    }
    if (val->status == vsNULL) {
        return osl_outputString(fcn, ctx, "<OAK NULL>");
    }
    const SCH_TYPE_INFO_C type = type_of(ci);
    const B_TYPE_TOSTRING_FCN tostring = type->type_info->tostring;
    return tostring != nullptr ? tostring(type, val, elem, flags, fcn, ctx) : eNOTIMPLEMENTED;
}

OAK_RETCODE sch_col_tostring_type_fcn(SCH_COL_INFO_C ci, const OAK_VALUE *val, uint32_t elem,
                                      SCH_FORMAT *pformat) {
    constexpr uint32_t kNarrowTextMask = 0x30f; // class and form; the length bit does not count
    if (ci == nullptr || val == nullptr || pformat == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE status = check_printable(ci, val, elem);
    if (status != sOKAY || val->status == vsNULL) {
        return status;
    }
    const OAK_TYPE type = type_of(ci)->type;
    *pformat = SCH_NATIVE_FORMAT;
    if (oak::type_class(type) == OAK_TYPE_CLASS_BINARY) {
        *pformat = SCH_BINARY_FORMAT;
    } else if ((static_cast<uint32_t>(type) & kNarrowTextMask) == OAK_CHAR &&
               has_unprintable_byte(val->vt.cv)) {
        *pformat = SCH_UTF8_BINARY_FORMAT;
    }
    return sOKAY;
}

// ---- Types and defaults -----------------------------------------------------

OAK_BOOL_T sch_types_compatible(OAK_TYPE type1, OAK_TYPE type2) {
    const auto is_text = [](OAK_TYPE type) { return oak::type_class(type) == OAK_TYPE_CLASS_TEXT; };
    return type1 == type2 || (is_text(type1) && is_text(type2)) ? OAK_TRUE : OAK_FALSE;
}

OAK_RETCODE sch_col_set_default(SCH_COL_INFO ci, const char *val) {
    const OAK_RETCODE status = oak::schema::changeable(ci);
    return status == sOKAY
               ? set_default(val, &ci->defstr, &ci->def, type_of(ci), oak::schema::tag_of(ci), true)
               : status;
}

OAK_RETCODE sch_dom_set_default(SCH_DOMAIN_INFO mi, const char *val) {
    const OAK_RETCODE status = oak::schema::changeable(mi);
    return status == sOKAY
               ? set_default(val, &mi->defstr, &mi->def, &mi->type, oak::schema::tag_of(mi), false)
               : status;
}
