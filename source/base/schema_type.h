/* The column type descriptor: what a column or a domain holds.
 *
 * Law: a descriptor is part of its column or domain, dies with it, and is read
 * by any number of threads once its table is finalized. The getters take a
 * handle that must not be null, never fail and cost a field access; texts and
 * locales belong to the schema.
 *
 * The per-type operations read descriptors through these getters. The setters
 * stand with those of the schema's other objects in schema_structs.h. */
#ifndef SCHEMA_TYPE_H
#define SCHEMA_TYPE_H

#include "oaktypes.h"
#include "schema_handles.h"

OAK_C_BEGIN

/* The type code; 0 while none is set. */
OAK_API OAK_TYPE sch_type_data_type(SCH_TYPE_INFO_C pi);

/* Elements of an array; 0 for a scalar. */
OAK_API uint16_t sch_type_num_elems(SCH_TYPE_INFO_C pi);

/* The declared length: bytes of text and binary types that are not large
 * objects (text counts its terminator), digits of a decimal, else 0. */
OAK_API uint32_t sch_type_length(SCH_TYPE_INFO_C pi);

/* Bytes that the value takes in the column data; 0 until the table is
 * finalized, and always for a large object. */
OAK_API uint32_t sch_type_byte_len(SCH_TYPE_INFO_C pi);

/* The precision of a decimal or of a date and time type; else 0. */
OAK_API uint8_t sch_type_prec(SCH_TYPE_INFO_C pi);

/* The scale of a decimal; else 0. */
OAK_API uint8_t sch_type_scale(SCH_TYPE_INFO_C pi);

/* The check expression and the name of its constraint; null without one. */
OAK_API const char *sch_type_check_str(SCH_TYPE_INFO_C pi);
OAK_API const char *sch_type_check_name(SCH_TYPE_INFO_C pi);

/* The locale of a text type; null without one and for other types. */
OAK_API OSL_LOCALE sch_type_locale(SCH_TYPE_INFO_C pi);

/* The name of the schema's locale, as given; null without a schema or locale. */
OAK_API const char *sch_type_locale_text(SCH_TYPE_INFO_C pi);

/* True when a text type compares by its locale and not by its bytes. */
OAK_API OAK_BOOL_T sch_type_use_locale(SCH_TYPE_INFO_C pi);

OAK_C_END

#endif
