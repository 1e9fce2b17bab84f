// The getters of a type descriptor: each field, and for the fields of a class of
// types the answer for every class.
#include "schema_type.h"

#include "schema_internal.h"
#include "test_support.h"

namespace {

struct ClassCase {
    OAK_TYPE type;
    uint32_t length;
    uint8_t prec;
    uint8_t scale;
    bool text;
};

// What the getters say of a descriptor whose class member was filled with a
// length of 300, or a precision of 12 and a scale of 3.
constexpr ClassCase kClasses[] = {
    {OAK_NOVAL, 0, 0, 0, false},      {OAK_BOOL, 0, 0, 0, false},
    {OAK_INT8, 0, 0, 0, false},       {OAK_UINT8, 0, 0, 0, false},
    {OAK_INT16, 0, 0, 0, false},      {OAK_UINT16, 0, 0, 0, false},
    {OAK_INT32, 0, 0, 0, false},      {OAK_UINT32, 0, 0, 0, false},
    {OAK_INT64, 0, 0, 0, false},      {OAK_UINT64, 0, 0, 0, false},
    {OAK_FLOAT, 0, 0, 0, false},      {OAK_DOUBLE, 0, 0, 0, false},
    {OAK_BCD, 12, 12, 3, false},      {OAK_DATE, 0, 12, 0, false},
    {OAK_TIME, 0, 12, 0, false},      {OAK_TIMETZ, 0, 12, 0, false},
    {OAK_TIMESTAMP, 0, 12, 0, false}, {OAK_TIMESTAMPTZ, 0, 12, 0, false},
    {OAK_ROWID, 0, 0, 0, false},      {OAK_UUID, 0, 0, 0, false},
    {OAK_CHAR, 300, 0, 0, true},      {OAK_VARCHAR, 300, 0, 0, true},
    {OAK_WCHAR, 300, 0, 0, true},     {OAK_WCHAR_UTF8, 300, 0, 0, true},
    {OAK_WVARCHAR, 300, 0, 0, true},  {OAK_WVARCHAR_UTF8, 300, 0, 0, true},
    {OAK_BINARY, 300, 0, 0, false},   {OAK_VARBINARY, 300, 0, 0, false},
    {OAK_BLOB, 0, 0, 0, false},       {OAK_CLOB, 0, 0, 0, true},
    {OAK_WCLOB, 0, 0, 0, true},       {OAK_WCLOB_UTF8, 0, 0, 0, true},
};

OSL_LOCALE some_locale() {
    static char place;
    return reinterpret_cast<OSL_LOCALE>(&place);
}

_SCH_TYPE_INFO filled(OAK_TYPE type) {
    _SCH_TYPE_INFO info{};
    info.type = type;
    switch (oak::schema::type_class(type)) {
        case OAK_TYPE_CLASS_TEXT:
            info.x.c = {300, OAK_TRUE, some_locale()};
            break;
        case OAK_TYPE_CLASS_BINARY:
            info.x.b = {300};
            break;
        case OAK_TYPE_CLASS_DATETIME:
            info.x.t = {12};
            break;
        case OAK_TYPE_CLASS_DECIMAL:
            info.x.d = {12, 3};
            break;
        default:
            break;
    }
    return info;
}

TEST(TypeDescriptor, AnswersForEachClassByItsOwnFields) {
    for (const ClassCase &row : kClasses) {
        SCOPED_TRACE(row.type);
        const _SCH_TYPE_INFO info = filled(row.type);
        EXPECT_EQ(sch_type_data_type(&info), row.type);
        EXPECT_EQ(sch_type_length(&info), row.length);
        EXPECT_EQ(sch_type_prec(&info), row.prec);
        EXPECT_EQ(sch_type_scale(&info), row.scale);
        EXPECT_EQ(sch_type_locale(&info), row.text ? some_locale() : nullptr);
        EXPECT_EQ(sch_type_use_locale(&info), row.text ? OAK_TRUE : OAK_FALSE);
    }
}

TEST(TypeDescriptor, GivesItsPlainFields) {
    _SCH_TYPE_INFO info{};
    EXPECT_EQ(sch_type_num_elems(&info), 0);
    EXPECT_EQ(sch_type_byte_len(&info), 0u);
    EXPECT_EQ(sch_type_check_str(&info), nullptr);
    EXPECT_EQ(sch_type_check_name(&info), nullptr);
    info.elems = 65535;
    info.byte_len = 65535;
    info.check_str = "price > 0";
    info.check_name = "positive";
    EXPECT_EQ(sch_type_num_elems(&info), 65535);
    EXPECT_EQ(sch_type_byte_len(&info), 65535u);
    EXPECT_STREQ(sch_type_check_str(&info), "price > 0");
    EXPECT_STREQ(sch_type_check_name(&info), "positive");
}

TEST(TypeDescriptor, NamesTheLocaleOfItsSchema) {
    _SCH_INFO schema{};
    _SCH_TYPE_INFO info{};
    EXPECT_EQ(sch_type_locale_text(&info), nullptr);
    info.sch = &schema;
    EXPECT_EQ(sch_type_locale_text(&info), nullptr);
    schema.locale_text = "en_US.UTF-8";
    EXPECT_STREQ(sch_type_locale_text(&info), "en_US.UTF-8");
}

} // namespace
