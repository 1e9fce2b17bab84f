// The getters of a column's or a domain's type descriptor.
//
// The descriptor keeps what is particular to a class of types in a union, so
// each getter of such a field first asks for the class and answers 0 or null
// for any other. Called by the per-type operations for each value they touch.
#include "schema_type.h"

#include "schema_internal.h"

using oak::schema::is_large_object;
using oak::schema::type_class;

OAK_TYPE sch_type_data_type(SCH_TYPE_INFO_C pi) {
    return pi->type;
}

uint16_t sch_type_num_elems(SCH_TYPE_INFO_C pi) {
    return pi->elems;
}

uint32_t sch_type_length(SCH_TYPE_INFO_C pi) {
    if (is_large_object(pi->type)) {
        return 0;
    }
    switch (type_class(pi->type)) {
        case OAK_TYPE_CLASS_TEXT:
            return pi->x.c.len;
        case OAK_TYPE_CLASS_BINARY:
            return pi->x.b.len;
        case OAK_TYPE_CLASS_DECIMAL:
            return pi->x.d.prec;
        default:
            return 0;
    }
}

uint32_t sch_type_byte_len(SCH_TYPE_INFO_C pi) {
    return pi->byte_len;
}

uint8_t sch_type_prec(SCH_TYPE_INFO_C pi) {
    switch (type_class(pi->type)) {
        case OAK_TYPE_CLASS_DECIMAL:
            return pi->x.d.prec;
        case OAK_TYPE_CLASS_DATETIME:
            return pi->x.t.prec;
        default:
            return 0;
    }
}

uint8_t sch_type_scale(SCH_TYPE_INFO_C pi) {
    return type_class(pi->type) == OAK_TYPE_CLASS_DECIMAL ? pi->x.d.scale : uint8_t{0};
}

const char *sch_type_check_str(SCH_TYPE_INFO_C pi) {
    return pi->check_str;
}

const char *sch_type_check_name(SCH_TYPE_INFO_C pi) {
    return pi->check_name;
}

OSL_LOCALE sch_type_locale(SCH_TYPE_INFO_C pi) {
    return type_class(pi->type) == OAK_TYPE_CLASS_TEXT ? pi->x.c.locale : nullptr;
}

const char *sch_type_locale_text(SCH_TYPE_INFO_C pi) {
    return pi->sch != nullptr ? pi->sch->locale_text : nullptr;
}

OAK_BOOL_T sch_type_use_locale(SCH_TYPE_INFO_C pi) {
    return type_class(pi->type) == OAK_TYPE_CLASS_TEXT ? pi->x.c.use_locale : OAK_FALSE;
}
