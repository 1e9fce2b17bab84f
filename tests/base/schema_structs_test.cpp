// Getters and setters: every plain member there and back, every exception of the
// getters, every rule of the setters, and what a failed setter leaves behind.
#include "schema_structs.h"

#include "schema_fixture.h"
#include "value.h"

namespace {

using oaktest::Schema;
using oaktest::sweep_change;

/// A setter stores what its getter then gives.
#define EXPECT_STORED(setter, getter, object, value)                                               \
    do {                                                                                           \
        EXPECT_EQ(setter(object, value), sOKAY);                                                   \
        EXPECT_EQ(getter(object), value);                                                          \
    } while (false)

/// A text setter copies, keeps the case, replaces and clears.
#define EXPECT_TEXT_STORED(setter, getter, object)                                                 \
    do {                                                                                           \
        EXPECT_EQ(getter(object), nullptr);                                                        \
        char text[] = "Mixed Case";                                                                \
        EXPECT_EQ(setter(object, text), sOKAY);                                                    \
        text[0] = 'X';                                                                             \
        EXPECT_STREQ(getter(object), "Mixed Case");                                                \
        EXPECT_EQ(setter(object, ""), sOKAY);                                                      \
        EXPECT_STREQ(getter(object), "");                                                          \
        EXPECT_EQ(setter(object, getter(object)), sOKAY);                                          \
        EXPECT_STREQ(getter(object), "");                                                          \
        EXPECT_EQ(setter(object, nullptr), sOKAY);                                                 \
        EXPECT_EQ(getter(object), nullptr);                                                        \
    } while (false)

// ---- Helpers of the setters --------------------------------------------------

TEST(SizeInput, KeepsAnArrayOfEqualSize) {
    oaktest::Tag tag;
    void *array = nullptr;
    EXPECT_EQ(sch_new_size_input(0, 0, 8, &array, tag), sOKAY);
    EXPECT_EQ(array, nullptr);
    ASSERT_EQ(sch_new_size_input(0, 3, 8, &array, tag), sOKAY);
    void *before = array;
    EXPECT_EQ(sch_new_size_input(3, 3, 8, &array, tag), sOKAY);
    EXPECT_EQ(array, before);
    OSL_FREE(array, tag);
}

TEST(SizeInput, RefusesASmallerSize) {
    oaktest::Tag tag;
    void *array = nullptr;
    ASSERT_EQ(sch_new_size_input(0, 3, 8, &array, tag), sOKAY);
    void *before = array;
    EXPECT_EQ(sch_new_size_input(3, 2, 8, &array, tag), eRANGE);
    EXPECT_EQ(sch_new_size_input(3, 0, 8, &array, tag), eRANGE);
    EXPECT_EQ(array, before);
    OSL_FREE(array, tag);
}

TEST(SizeInput, KeepsTheOldPartAndZeroesTheNewOne) {
    oaktest::Tag tag;
    void *array = nullptr;
    uint32_t size = 0;
    for (const uint32_t next : {1u, 2u, 7u, 64u, 1000u}) {
        ASSERT_EQ(sch_new_size_input(size, next, sizeof(uint64_t), &array, tag), sOKAY);
        uint64_t *items = static_cast<uint64_t *>(array);
        for (uint32_t n = 0; n < next; ++n) {
            ASSERT_EQ(items[n], n < size ? n + 1 : 0u);
        }
        for (uint32_t n = 0; n < next; ++n) {
            items[n] = n + 1;
        }
        size = next;
    }
    OSL_FREE(array, tag);
}

TEST(SizeInput, NeedsAPlace) {
    oaktest::Tag tag;
    EXPECT_EQ(sch_new_size_input(0, 1, 8, nullptr, tag), eINVNULLARG);
}

TEST(StringInput, CopiesReplacesAndClears) {
    oaktest::Tag tag;
    const char *text = nullptr;
    for (const OAK_BOOL_T keep_case : {OAK_FALSE, OAK_TRUE}) {
        EXPECT_EQ(sch_string_input("Some Name", &text, keep_case, tag), sOKAY);
        EXPECT_STREQ(text, "Some Name");
    }
    EXPECT_EQ(sch_string_input(text + 5, &text, OAK_TRUE, tag), sOKAY);
    EXPECT_STREQ(text, "Name");
    EXPECT_EQ(sch_string_input(nullptr, &text, OAK_TRUE, tag), sOKAY);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(sch_string_input("x", nullptr, OAK_TRUE, tag), eINVNULLARG);
}

#ifdef OSL_FAULT_INJECTION
TEST(StringInput, KeepsTheOldTextWhenMemoryIsExhausted) {
    oaktest::Tag tag;
    const char *text = nullptr;
    ASSERT_EQ(sch_string_input("old", &text, OAK_TRUE, tag), sOKAY);
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_TRUE);
    EXPECT_EQ(sch_string_input("new", &text, OAK_TRUE, tag), eNOMEMORY);
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_STREQ(text, "old");
    EXPECT_EQ(sch_string_input(nullptr, &text, OAK_TRUE, tag), sOKAY);
}
#endif

// ---- Schema ------------------------------------------------------------------

TEST(SchemaMembers, GoThereAndBack) {
    Schema sch;
    EXPECT_TEXT_STORED(sch_set_name, sch_name, sch);
    EXPECT_STORED(sch_set_catver, sch_catver, sch, 4294967295u);
    EXPECT_STORED(sch_set_dbver, sch_dbver, sch, 7u);
    EXPECT_STORED(sch_set_encryption, sch_encryption, sch, OAK_ENC_AES192);
    EXPECT_STORED(sch_set_num_drawers, sch_num_drawers, sch, 9u);
    EXPECT_STORED(sch_set_num_domains, sch_num_domains, sch, 3);
    EXPECT_STORED(sch_set_num_tables, sch_num_tables, sch, 5);
    EXPECT_STORED(sch_set_max_drawer, sch_max_drawer, sch, 20u);
    EXPECT_STORED(sch_set_next_drawer, sch_next_drawer, sch, 20u);
    EXPECT_STORED(sch_set_max_table, sch_max_table, sch, 12);
    EXPECT_STORED(sch_set_next_table, sch_next_table, sch, 12);
    EXPECT_STORED(sch_set_next_domain, sch_next_domain, sch, 4);
    EXPECT_NE(sch_tag(sch), nullptr);
    EXPECT_EQ(sch_ndx(sch), 0);
    EXPECT_EQ(sch_num_refs(sch), 0u);
}

TEST(SchemaMembers, CountUserTablesAndDrawersWithoutTheSystems) {
    Schema sch;
    EXPECT_EQ(sch_num_tables(sch), 1);
    EXPECT_EQ(sch_num_user_tables(sch), 0);
    EXPECT_EQ(sch_num_drawers(sch), 5u);
    EXPECT_EQ(sch_num_user_drawers(sch), 0u);
    EXPECT_EQ(sch_set_num_tables(sch, 4), sOKAY);
    EXPECT_EQ(sch_num_user_tables(sch), 3);
    EXPECT_EQ(sch_set_num_tables(sch, 0), sOKAY);
    EXPECT_EQ(sch_num_user_tables(sch), 0);
    EXPECT_EQ(sch_set_num_drawers(sch, 12), sOKAY);
    EXPECT_EQ(sch_num_user_drawers(sch), 7u);
    EXPECT_EQ(sch_set_num_drawers(sch, 3), sOKAY);
    EXPECT_EQ(sch_num_user_drawers(sch), 0u);
    EXPECT_EQ(sch_num_tables(nullptr), 0);
    EXPECT_EQ(sch_num_user_tables(nullptr), 0);
}

TEST(SchemaMembers, NameTheEncryption) {
    Schema sch;
    const char *const texts[] = {"none", "xor", "aes128", "aes192", "aes256", "default"};
    for (int kind = 0; kind < 6; ++kind) {
        EXPECT_EQ(sch_set_encryption(sch, static_cast<OAK_ENC_TYPE>(kind)), sOKAY);
        EXPECT_STREQ(sch_encryption_text(sch), texts[kind]);
    }
    for (const int kind : {-1, 6, 1000}) {
        EXPECT_EQ(sch_set_encryption(sch, static_cast<OAK_ENC_TYPE>(kind)), sOKAY);
        EXPECT_EQ(sch_encryption_text(sch), nullptr);
    }
}

TEST(SchemaCapacities, NeverShrink) {
    Schema sch;
    EXPECT_EQ(sch_set_max_drawer(sch, 4), eRANGE);
    EXPECT_EQ(sch_set_max_drawer(sch, 5), sOKAY);
    EXPECT_EQ(sch_set_max_drawer(sch, 4294967295u), sOKAY);
    EXPECT_EQ(sch_max_drawer(sch), 4294967295u);
    EXPECT_EQ(sch_set_max_table(sch, 0), eRANGE);
    EXPECT_EQ(sch_set_max_table(sch, 1), sOKAY);
    EXPECT_EQ(sch_set_max_table(sch, 65535), sOKAY);
    EXPECT_EQ(sch_set_max_table(sch, 65534), eRANGE);
    EXPECT_EQ(sch_max_table(sch), 65535);
    EXPECT_EQ(sch_set_next_domain(sch, 0), sOKAY);
    EXPECT_EQ(sch_set_next_domain(sch, 65535), sOKAY);
    EXPECT_EQ(sch_set_next_domain(sch, 65534), eRANGE);
    EXPECT_EQ(sch_next_domain(sch), 65535);
}

TEST(SchemaLimits, StayWithinTheCapacity) {
    Schema sch;
    ASSERT_EQ(sch_set_max_drawer(sch, 10), sOKAY);
    ASSERT_EQ(sch_set_max_table(sch, 10), sOKAY);
    for (const uint16_t value : {9, 10}) {
        EXPECT_EQ(sch_set_next_drawer(sch, value), sOKAY);
        EXPECT_EQ(sch_set_next_table(sch, value), sOKAY);
    }
    EXPECT_EQ(sch_set_next_drawer(sch, 11), eRANGE);
    EXPECT_EQ(sch_set_next_table(sch, 11), eRANGE);
    EXPECT_EQ(sch_next_drawer(sch), 10u);
    EXPECT_EQ(sch_next_table(sch), 10);
    EXPECT_EQ(sch_set_next_drawer(sch, 0), sOKAY);
    EXPECT_EQ(sch_set_next_table(sch, 0), sOKAY);
}

TEST(SchemaLocale, IsSetOnce) {
    Schema sch;
    EXPECT_EQ(sch_locale(sch), nullptr);
    EXPECT_EQ(sch_locale_text(sch), nullptr);
    EXPECT_EQ(sch_set_locale(sch, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_set_locale(sch, "no such locale anywhere"), eINVLOCALE);
    EXPECT_EQ(sch_locale_text(sch), nullptr);
    ASSERT_EQ(sch_set_locale(sch, "C"), sOKAY);
    const OSL_LOCALE first = sch_locale(sch);
    EXPECT_NE(first, nullptr);
    EXPECT_STREQ(sch_locale_text(sch), "C");
    EXPECT_EQ(sch_set_locale(sch, "C"), sOKAY);
    EXPECT_EQ(sch_locale(sch), first) << "the same name keeps the first handle";
    EXPECT_EQ(sch_set_locale(sch, "c"), eLOCALEMISMATCH);
    EXPECT_EQ(sch_set_locale(sch, "POSIX"), eLOCALEMISMATCH);
    EXPECT_EQ(sch_locale(sch), first);
    EXPECT_STREQ(sch_locale_text(sch), "C");
}

#ifdef OSL_FAULT_INJECTION
TEST(SchemaLocale, IsNotSetWhenMemoryIsExhausted) {
    for (uint64_t nth = 1;; ++nth) {
        Schema sch;
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
        const OAK_RETCODE rc = sch_set_locale(sch, "C");
        if (osl_faultDisarm(OSL_FAULT_MEMORY) == 0) {
            EXPECT_EQ(rc, sOKAY);
            EXPECT_GT(nth, 1u);
            return;
        }
        EXPECT_TRUE(rc == eNOMEMORY || rc == eINVLOCALE) << rc;
        EXPECT_EQ(sch_locale(sch), nullptr);
        EXPECT_EQ(sch_locale_text(sch), nullptr);
        EXPECT_EQ(sch->use_locale, OAK_FALSE);
    }
}
#endif

// ---- Type --------------------------------------------------------------------

class TypeSetters : public ::testing::Test {
  protected:
    /// The type of a fresh column.
    SCH_TYPE_INFO fresh() {
        SCH_COL_INFO ci = nullptr;
        EXPECT_EQ(sch_col_create(ti_, next_++, &ci), sOKAY);
        return sch_col_type(ci);
    }
    SCH_TYPE_INFO of(OAK_TYPE type) {
        SCH_TYPE_INFO pi = fresh();
        EXPECT_EQ(sch_type_set_data_type(pi, type, OAK_TRUE), sOKAY);
        return pi;
    }
    void SetUp() override { ASSERT_EQ(sch_tbl_set_max_cols(ti_, 1000), sOKAY); }

    Schema sch_;
    SCH_TBL_INFO ti_ = sch_.table(1, "t");
    OAK_COL_INDEX next_ = 0;
};

constexpr OAK_TYPE kStorable[] = {
    OAK_BOOL,          OAK_INT8,   OAK_UINT8,     OAK_INT16,     OAK_UINT16,      OAK_INT32,
    OAK_UINT32,        OAK_INT64,  OAK_UINT64,    OAK_FLOAT,     OAK_DOUBLE,      OAK_BCD,
    OAK_DATE,          OAK_TIME,   OAK_TIMETZ,    OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_ROWID,
    OAK_UUID,          OAK_CHAR,   OAK_VARCHAR,   OAK_WCHAR,     OAK_WCHAR_UTF8,  OAK_WVARCHAR,
    OAK_WVARCHAR_UTF8, OAK_BINARY, OAK_VARBINARY, OAK_BLOB,      OAK_CLOB,        OAK_WCLOB,
    OAK_WCLOB_UTF8,
};

TEST_F(TypeSetters, StoreWideTextAsUtf8WithoutUnicode) {
    for (const OAK_TYPE type : kStorable) {
        SCOPED_TRACE(type);
        SCH_TYPE_INFO pi = fresh();
        EXPECT_EQ(sch_type_set_data_type(pi, type, OAK_TRUE), sOKAY);
        EXPECT_EQ(sch_type_data_type(pi), type);
        EXPECT_EQ(pi->type_info, b_typeGetInfoEx(type, OAK_TRUE));
        EXPECT_EQ(sch_type_set_data_type(pi, type, OAK_FALSE), sOKAY);
        const OAK_TYPE stored = type == OAK_WVARCHAR ? OAK_WVARCHAR_UTF8
                                : type == OAK_WCHAR  ? OAK_WCHAR_UTF8
                                                     : type;
        EXPECT_EQ(sch_type_data_type(pi), stored);
        EXPECT_EQ(pi->type_info, b_typeGetInfoEx(type, OAK_FALSE));
    }
}

TEST_F(TypeSetters, TakeAnyNumberForATypeButFindNoOperations) {
    SCH_TYPE_INFO pi = fresh();
    EXPECT_EQ(sch_type_set_data_type(pi, OAK_SUBQUERY, OAK_TRUE), sOKAY);
    EXPECT_EQ(sch_type_data_type(pi), OAK_SUBQUERY);
    EXPECT_EQ(sch_type_ddl_text(pi), nullptr);
    EXPECT_EQ(sch_type_sql_text(pi), nullptr);
    EXPECT_EQ(sch_type_text(pi), nullptr);
    EXPECT_EQ(sch_type_catalog_text(pi), nullptr);
}

TEST_F(TypeSetters, GiveTextTypesTheLocaleOfTheSchema) {
    ASSERT_EQ(sch_set_locale(sch_, "C"), sOKAY);
    for (const OAK_TYPE type : kStorable) {
        SCOPED_TRACE(type);
        SCH_TYPE_INFO pi = of(type);
        const bool text = (type & 15) == 8;
        EXPECT_EQ(sch_type_locale(pi), text ? sch_locale(sch_) : nullptr);
        EXPECT_EQ(sch_type_use_locale(pi), text ? OAK_TRUE : OAK_FALSE);
        EXPECT_EQ(pi->x.c.locale, text ? sch_locale(sch_) : nullptr);
        EXPECT_STREQ(sch_type_locale_text(pi), "C");
    }
}

TEST_F(TypeSetters, StoreALocaleOfTheirOwn) {
    SCH_TYPE_INFO pi = of(OAK_VARCHAR);
    EXPECT_EQ(sch_type_use_locale(pi), OAK_FALSE);
    EXPECT_STORED(sch_type_set_use_locale, sch_type_use_locale, pi, OAK_TRUE);
    OSL_LOCALE locale = osl_createlocale(8, "C");
    EXPECT_STORED(sch_type_set_locale, sch_type_locale, pi, locale);
    osl_freelocale(locale);
}

TEST_F(TypeSetters, TakeElementsForBooleansIntegersAndFloats) {
    for (const OAK_TYPE type : kStorable) {
        SCOPED_TRACE(type);
        SCH_TYPE_INFO pi = of(type);
        const int kind = type & 15;
        const bool arrayable = kind == 1 || kind == 2 || kind == 3;
        EXPECT_EQ(sch_type_set_elems(pi, 65535), arrayable ? sOKAY : eBADCAT);
        EXPECT_EQ(sch_type_num_elems(pi), arrayable ? 65535 : 0);
    }
    EXPECT_EQ(sch_type_set_elems(fresh(), 1), eBADCAT) << "before the type";
}

TEST_F(TypeSetters, TakeALengthByTheClassOfTheType) {
    for (const OAK_TYPE type : kStorable) {
        SCOPED_TRACE(type);
        SCH_TYPE_INFO pi = of(type);
        const int kind = type & 15;
        const bool large = (type & 0x1000) != 0;
        const bool bytes = (kind == 6 || kind == 8) && !large;
        const bool digits = kind == 5 || (kind == 4 && type != OAK_DATE);
        EXPECT_EQ(sch_type_set_length(pi, 255), bytes || digits ? sOKAY : eBADCAT);
        EXPECT_EQ(sch_type_set_length(pi, 256), bytes ? sOKAY : digits ? eRANGE : eBADCAT);
        EXPECT_EQ(sch_type_set_length(pi, 65535), bytes ? sOKAY : digits ? eRANGE : eBADCAT);
        EXPECT_EQ(sch_type_set_length(pi, 65536), bytes || digits ? eRANGE : eBADCAT);
        EXPECT_EQ(sch_type_length(pi), bytes ? 65535u : kind == 5 ? 255u : 0u);
        EXPECT_EQ(sch_type_prec(pi), digits ? 255 : 0);
    }
    EXPECT_EQ(sch_type_set_length(fresh(), 1), eBADCAT) << "before the type";
}

TEST_F(TypeSetters, TakeAScaleForDecimalsAlone) {
    for (const OAK_TYPE type : kStorable) {
        SCOPED_TRACE(type);
        SCH_TYPE_INFO pi = of(type);
        EXPECT_EQ(sch_type_set_scale(pi, 255), type == OAK_BCD ? sOKAY : eBADCAT);
        EXPECT_EQ(sch_type_scale(pi), type == OAK_BCD ? 255 : 0);
    }
}

TEST_F(TypeSetters, KeepLengthAndScaleOfADecimalApart) {
    SCH_TYPE_INFO pi = of(OAK_BCD);
    EXPECT_EQ(sch_type_set_length(pi, 12), sOKAY);
    EXPECT_EQ(sch_type_set_scale(pi, 4), sOKAY);
    EXPECT_EQ(sch_type_prec(pi), 12);
    EXPECT_EQ(sch_type_scale(pi), 4);
    EXPECT_EQ(sch_type_length(pi), 12u);
}

TEST_F(TypeSetters, StoreTheCheck) {
    SCH_TYPE_INFO pi = of(OAK_INT32);
    EXPECT_TEXT_STORED(sch_type_set_check_str, sch_type_check_str, pi);
    EXPECT_TEXT_STORED(sch_type_set_check_name, sch_type_check_name, pi);
}

struct TypeTexts {
    OAK_TYPE type;
    const char *catalog;
    const char *ddl;
    const char *sql;
    const char *field;
};

constexpr TypeTexts kTypeTexts[] = {
    {OAK_BOOL, "bool", "boolean", "BOOLEAN", "OAK_BOOL_T"},
    {OAK_UINT8, "uint8", "uint8", "BIT", "uint8_t"},
    {OAK_INT32, "int32", "int32", "INTEGER", "int32_t"},
    {OAK_BCD, "decimal", "decimal", "DECIMAL", "OAK_BCD_T"},
    {OAK_TIMESTAMPTZ, "timestamptz", "timestamptz", "TIMESTAMPTZ", "OAK_PACKED_TIMESTAMP_T"},
    {OAK_UUID, "uuid", "uuid", "GUID", "OAK_UUID_T"},
    {OAK_CHAR, "char", "char", "CHAR", "char"},
    {OAK_WCHAR, "wchar", "wchar", "WCHAR", "OAK_TCHAR_T"},
    {OAK_WCHAR_UTF8, "wchar", "wchar", "WCHAR", "OAK_TCHAR_T"},
    {OAK_WVARCHAR, "wvarchar", "wvarchar", "WVARCHAR", "OAK_TCHAR_T"},
    {OAK_WVARCHAR_UTF8, "wvarchar", "wvarchar", "WVARCHAR", "OAK_TCHAR_T"},
    {OAK_WCLOB, "wclob", "wclob", "LONG WVARCHAR", "BLOB_ID"},
    {OAK_WCLOB_UTF8, "wclob", "wclob", "LONG WVARCHAR", "BLOB_ID"},
    {OAK_BLOB, "blob", "blob", "LONG VARBINARY", "BLOB_ID"},
};

TEST_F(TypeSetters, NameTheTypeInEachLanguage) {
    for (const TypeTexts &row : kTypeTexts) {
        SCOPED_TRACE(row.type);
        SCH_TYPE_INFO pi = of(row.type);
        EXPECT_STREQ(sch_type_catalog_text(pi), row.catalog);
        EXPECT_STREQ(sch_type_ddl_text(pi), row.ddl);
        EXPECT_STREQ(sch_type_sql_text(pi), row.sql);
        EXPECT_STREQ(sch_type_text(pi), row.field);
    }
    EXPECT_EQ(sch_type_catalog_text(fresh()), nullptr);
    EXPECT_EQ(sch_type_ddl_text(fresh()), nullptr);
}

// ---- Domain ------------------------------------------------------------------

TEST(DomainMembers, GoThereAndBack) {
    Schema sch;
    SCH_DOMAIN_INFO mi = nullptr;
    ASSERT_EQ(sch_set_next_domain(sch, 5), sOKAY);
    ASSERT_EQ(sch_dom_create(sch, 3, &mi), sOKAY);
    EXPECT_EQ(sch_dom_ndx(mi), 3);
    EXPECT_TEXT_STORED(sch_dom_set_name, sch_dom_name, mi);
    EXPECT_TEXT_STORED(sch_dom_set_format, sch_dom_format, mi);
    EXPECT_STORED(sch_dom_set_width, sch_dom_width, mi, 65535);
    EXPECT_EQ(sch_dom_defstr(mi), nullptr);
    ASSERT_NE(sch_dom_def(mi), nullptr);
    EXPECT_EQ(sch_dom_def(mi)->status, vsNOVAL);
    EXPECT_EQ(sch_dom_data_type(mi), OAK_NOVAL);
    EXPECT_EQ(sch_dom_type(mi), sch_dom_type_c(mi));
    EXPECT_EQ(sch_type_set_data_type(sch_dom_type(mi), OAK_INT8, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_dom_data_type(mi), OAK_INT8);
    EXPECT_EQ(sch_type_set_check_str(sch_dom_type(mi), "v > 1"), sOKAY);
    EXPECT_EQ(sch_type_set_check_name(sch_dom_type(mi), "big"), sOKAY);
    EXPECT_STREQ(sch_dom_check_str(mi), "v > 1");
    EXPECT_STREQ(sch_dom_check_name(mi), "big");
}

// ---- Drawer ------------------------------------------------------------------

TEST(DrawerMembers, GoThereAndBack) {
    Schema sch;
    SCH_DRAWER_INFO di = sch.drawer(7, OAK_DRAWER_HASH, 65534, 65533);
    EXPECT_EQ(sch_drawer_id(di), 7u);
    EXPECT_EQ(sch_drawer_type(di), OAK_DRAWER_HASH);
    EXPECT_STREQ(sch_drawer_type_text(di), "hash");
    EXPECT_EQ(sch_drawer_compact(di), OAK_FALSE);
    EXPECT_EQ(sch_drawer_src_table_id(di), 65534);
    EXPECT_EQ(sch_drawer_src_ndx(di), 65533);
    EXPECT_EQ(sch_drawer_set_type(di, static_cast<OAK_DRAWER_TYPE>(77)), sOKAY);
    EXPECT_EQ(sch_drawer_type_text(di), nullptr);
    EXPECT_EQ(sch_drawer_table(di), nullptr);
    EXPECT_EQ(sch_drawer_key(di), nullptr);
    EXPECT_EQ(sch_drawer_ref(di), nullptr);
    EXPECT_EQ(sch_drawer_blob_col(di), nullptr);
}

TEST(DrawerMembers, NameTypesAndItemFormats) {
    EXPECT_STREQ(sch_get_drawer_type_string(OAK_DRAWER_BTREE), "btree");
    EXPECT_STREQ(sch_get_drawer_type_string(OAK_DRAWER_HASH), "hash");
    EXPECT_STREQ(sch_get_drawer_type_string(OAK_DRAWER_REF), "ref");
    EXPECT_STREQ(sch_get_drawer_type_string(OAK_DRAWER_BLOB), "blob");
    EXPECT_STREQ(sch_get_drawer_type_string(OAK_DRAWER_TABLE), "table");
    EXPECT_STREQ(sch_get_drawer_type_string(OAK_DRAWER_RTREE), "rtree");
    EXPECT_EQ(sch_get_drawer_type_string(static_cast<OAK_DRAWER_TYPE>(6)), nullptr);
    EXPECT_STREQ(sch_get_item_format_string(OAK_ITEM_FORMAT_COMPACT), "compact");
    EXPECT_STREQ(sch_get_item_format_string(OAK_ITEM_FORMAT_EXPANDED), "expanded");
    EXPECT_EQ(sch_get_item_format_string(static_cast<OAK_ITEM_FORMAT>(0)), nullptr);
}

TEST(DrawerMembers, ForgetTheObjectWhenTheTypeChanges) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_DRAWER_INFO di = sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    ASSERT_EQ(sch_tbl_set_drawer(ti, 5), sOKAY);
    EXPECT_EQ(sch_drawer_set_type(di, OAK_DRAWER_TABLE), sOKAY);
    EXPECT_EQ(sch_drawer_table(di), ti);
    EXPECT_EQ(sch_drawer_set_type(di, OAK_DRAWER_BTREE), sOKAY);
    EXPECT_EQ(sch_drawer_key(di), nullptr);
    EXPECT_EQ(sch_drawer_table(di), nullptr);
}

// ---- Table -------------------------------------------------------------------

TEST(TableMembers, GoThereAndBack) {
    Schema sch;
    ASSERT_EQ(sch_set_max_table(sch, 5), sOKAY);
    ASSERT_EQ(sch_set_next_table(sch, 5), sOKAY);
    SCH_TBL_INFO ti = nullptr;
    ASSERT_EQ(sch_tbl_create(sch, 4, &ti), sOKAY);
    EXPECT_EQ(sch_tbl_index(ti), 4);
    EXPECT_EQ(sch_tbl_sch_ndx(ti), 0);
    EXPECT_EQ(sch_tbl_schema(ti), sch.get());
    EXPECT_TEXT_STORED(sch_tbl_set_name, sch_tbl_name, ti);
    EXPECT_TEXT_STORED(sch_tbl_set_check_str, sch_tbl_check_str, ti);
    EXPECT_TEXT_STORED(sch_tbl_set_check_name, sch_tbl_check_name, ti);
    EXPECT_STORED(sch_tbl_set_max_rows, sch_tbl_max_rows, ti, 18446744073709551615u);
    EXPECT_STORED(sch_tbl_set_offset, sch_tbl_offset, ti, 3);
    EXPECT_STORED(sch_tbl_set_num_cols, sch_tbl_num_cols, ti, 65535);
    EXPECT_STORED(sch_tbl_set_next_col, sch_tbl_next_col, ti, 65535);
    EXPECT_STORED(sch_tbl_set_num_keys, sch_tbl_num_keys, ti, 65535);
    EXPECT_STORED(sch_tbl_set_next_key, sch_tbl_next_key, ti, 65535);
    EXPECT_STORED(sch_tbl_set_num_avls, sch_tbl_num_avls, ti, 65535);
    EXPECT_STORED(sch_tbl_set_next_avl, sch_tbl_next_avl, ti, 65535);
    EXPECT_STORED(sch_tbl_set_num_refs, sch_tbl_num_refs, ti, 65535);
    EXPECT_STORED(sch_tbl_set_num_owners, sch_tbl_num_owners, ti, 65535);
    EXPECT_STORED(sch_tbl_set_next_owner, sch_tbl_next_owner, ti, 65535);
    EXPECT_STORED(sch_tbl_set_max_cols, sch_tbl_max_cols, ti, 9);
    EXPECT_STORED(sch_tbl_set_max_keys, sch_tbl_max_keys, ti, 8);
    EXPECT_STORED(sch_tbl_set_max_avls, sch_tbl_max_avls, ti, 7);
    EXPECT_STORED(sch_tbl_set_max_owners, sch_tbl_max_owner, ti, 6);
    EXPECT_STORED(sch_tbl_set_next_ref, sch_tbl_next_ref, ti, 5);
    EXPECT_EQ(sch_tbl_drawer(ti), OAK_DRAWER_NONE);
    EXPECT_EQ(sch_tbl_drawer_info(ti), nullptr);
    EXPECT_EQ(sch_tbl_primary_key(ti), nullptr);
    EXPECT_EQ(sch_tbl_triggers(ti), nullptr);
    EXPECT_EQ(sch_tbl_num_drawers(ti), 0u);
    EXPECT_EQ(sch_tbl_related_drawer(ti, 0), nullptr);
    EXPECT_EQ(sch_tbl_byte_len(ti), 0u);
    EXPECT_EQ(sch_tbl_has_value_offset(ti), 0u);
    // Limits beyond the arrays let nothing be read beyond them.
    EXPECT_EQ(sch_get_col_by_index(ti, 9), nullptr);
    EXPECT_EQ(sch_get_key_by_index(ti, 8), nullptr);
    EXPECT_EQ(sch_iterate_ref_owners(ti, nullptr, OAK_REVERSE), nullptr);
}

TEST(TableMembers, TellACircularTable) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    const char *const words[] = {"standard", "circular", "virtual", "temporary"};
    for (int type = 0; type < 4; ++type) {
        EXPECT_STORED(sch_tbl_set_type, sch_tbl_type, ti, static_cast<OAK_TABLE_TYPE>(type));
        EXPECT_STREQ(sch_tbl_type_text(ti), words[type]);
        EXPECT_EQ(sch_tbl_circular(ti), type == 1 ? OAK_TRUE : OAK_FALSE);
    }
    EXPECT_EQ(sch_tbl_set_type(ti, static_cast<OAK_TABLE_TYPE>(4)), sOKAY);
    EXPECT_EQ(sch_tbl_type_text(ti), nullptr);
}

TEST(TableCapacities, NeverShrink) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 16 columns, 8 keys, 8 references
    EXPECT_EQ(sch_tbl_set_max_cols(ti, 15), eRANGE);
    EXPECT_EQ(sch_tbl_set_max_cols(ti, 16), sOKAY);
    EXPECT_EQ(sch_tbl_set_max_keys(ti, 7), eRANGE);
    EXPECT_EQ(sch_tbl_set_max_keys(ti, 8), sOKAY);
    EXPECT_EQ(sch_tbl_set_max_avls(ti, 3), sOKAY);
    EXPECT_EQ(sch_tbl_set_max_avls(ti, 2), eRANGE);
    EXPECT_EQ(sch_tbl_set_max_owners(ti, 3), sOKAY);
    EXPECT_EQ(sch_tbl_set_max_owners(ti, 2), eRANGE);
    EXPECT_EQ(sch_tbl_max_cols(ti), 16);
    EXPECT_EQ(sch_tbl_max_keys(ti), 8);
    EXPECT_EQ(sch_tbl_max_avls(ti), 3);
    EXPECT_EQ(sch_tbl_max_owner(ti), 3);
}

TEST(TableCapacities, OfReferencesSucceedInAnyCase) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    EXPECT_EQ(sch_tbl_set_next_ref(ti, 7), sOKAY) << "smaller than now";
    EXPECT_EQ(sch_tbl_next_ref(ti), 8);
    EXPECT_EQ(sch_tbl_set_next_ref(ti, 9), sOKAY);
    EXPECT_EQ(sch_tbl_next_ref(ti), 9);
#ifdef OSL_FAULT_INJECTION
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_TRUE);
    EXPECT_EQ(sch_tbl_set_next_ref(ti, 1000), sOKAY) << "without memory";
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(sch_tbl_next_ref(ti), 9);
#endif
}

TEST(TableDrawer, IsLinkedBothWays) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_DRAWER_INFO di = sch.drawer(6, OAK_DRAWER_TABLE, 1, 1);
    EXPECT_EQ(sch_drawer_table(di), nullptr);
    EXPECT_EQ(sch_tbl_set_drawer(ti, 6), sOKAY);
    EXPECT_EQ(sch_tbl_drawer(ti), 6u);
    EXPECT_EQ(sch_tbl_drawer_info(ti), di);
    EXPECT_EQ(sch_drawer_table(di), ti);
    EXPECT_EQ(sch_drawer_key(di), nullptr);
    EXPECT_EQ(sch_drawer_ref(di), nullptr);
    EXPECT_EQ(sch_drawer_blob_col(di), nullptr);
    EXPECT_EQ(sch_tbl_set_drawer(ti, OAK_DRAWER_NONE), sOKAY);
    EXPECT_EQ(sch_tbl_drawer_info(ti), di) << "no drawer changes nothing";
    SCH_DRAWER_INFO other = sch.drawer(8, OAK_DRAWER_TABLE, 1, 1);
    EXPECT_EQ(sch_tbl_set_drawer(ti, 8), sOKAY);
    EXPECT_EQ(sch_drawer_table(other), ti);
    EXPECT_EQ(sch_drawer_table(di), nullptr) << "the drawer of before is free";
}

TEST(TableDrawer, MustBeOfTheTypeAndNameTheTable) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    sch.drawer(5, OAK_DRAWER_TABLE, 2, 1);
    sch.drawer(6, OAK_DRAWER_TABLE, 1, 0);
    for (const OAK_DRAWER_TYPE type :
         {OAK_DRAWER_BTREE, OAK_DRAWER_HASH, OAK_DRAWER_REF, OAK_DRAWER_BLOB, OAK_DRAWER_RTREE}) {
        sch.drawer(10 + static_cast<OAK_DRAWER>(type), type, 1, 1);
    }
    EXPECT_EQ(sch_tbl_set_drawer(ti, 5), eBADCAT) << "another source table";
    EXPECT_EQ(sch_tbl_set_drawer(ti, 6), eBADCAT) << "another source item";
    EXPECT_EQ(sch_tbl_set_drawer(ti, 7), eBADCAT) << "a hole";
    EXPECT_EQ(sch_tbl_set_drawer(ti, 99), eBADCAT) << "beyond";
    EXPECT_EQ(sch_tbl_set_drawer(ti, 4294967294u), eBADCAT);
    EXPECT_EQ(sch_tbl_set_drawer(ti, 2), eBADCAT) << "the system's";
    for (OAK_DRAWER id = 10; id < 16; ++id) {
        EXPECT_EQ(sch_tbl_set_drawer(ti, id), eBADCAT) << id;
    }
    EXPECT_EQ(sch_tbl_drawer_info(ti), nullptr);
}

// ---- Column ------------------------------------------------------------------

TEST(ColumnMembers, GoThereAndBack) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = nullptr;
    ASSERT_EQ(sch_col_create(ti, 3, &ci), sOKAY);
    EXPECT_EQ(sch_col_ndx(ci), 3);
    EXPECT_EQ(sch_col_tbl_ndx(ci), 1);
    EXPECT_EQ(sch_col_table(ci), ti);
    EXPECT_TEXT_STORED(sch_col_set_name, sch_col_name, ci);
    EXPECT_TEXT_STORED(sch_col_set_format, sch_col_format, ci);
    EXPECT_STORED(sch_col_set_width, sch_col_width, ci, 65535);
    EXPECT_STORED(sch_col_set_usage, sch_col_usage, ci, 7);
    EXPECT_EQ(sch_col_domain(ci), nullptr);
    EXPECT_EQ(sch_col_key_ndx(ci), OAK_INDEX_NONE);
    EXPECT_EQ(sch_col_key(ci), nullptr);
    EXPECT_EQ(sch_col_ref(ci), nullptr);
    EXPECT_EQ(sch_col_reftab(ci), nullptr);
    EXPECT_EQ(sch_col_refcol(ci), nullptr);
    EXPECT_EQ(sch_col_lob_drawer(ci), nullptr);
    EXPECT_EQ(sch_col_lob_drawer_ndx(ci), OAK_DRAWER_NONE);
    EXPECT_EQ(sch_col_offset(ci), 0u);
    EXPECT_EQ(sch_col_has_value_offset(ci), 0u);
    EXPECT_EQ(sch_col_defstr(ci), nullptr);
    EXPECT_EQ(sch_col_def(ci), nullptr);
    EXPECT_EQ(sch_col_data_type(ci), OAK_NOVAL);
    EXPECT_EQ(sch_col_data_type_text(ci), nullptr);
}

TEST(ColumnNotNull, IsDeclaredNamedAndTakenBack) {
    Schema sch;
    SCH_COL_INFO ci = Schema::column(sch.table(1, "t"), 0, "a", OAK_INT8);
    EXPECT_EQ(sch_col_not_null(ci), OAK_FALSE);
    EXPECT_EQ(sch_col_set_not_null(ci, nullptr), sOKAY);
    EXPECT_EQ(sch_col_not_null(ci), OAK_TRUE);
    EXPECT_EQ(sch_col_not_null_cname(ci), nullptr);
    EXPECT_EQ(sch_col_set_not_null(ci, "c_nn"), sOKAY);
    EXPECT_STREQ(sch_col_not_null_cname(ci), "c_nn");
    EXPECT_EQ(sch_col_set_not_null(ci, nullptr), sOKAY);
    EXPECT_STREQ(sch_col_not_null_cname(ci), "c_nn") << "null is no new name";
    EXPECT_EQ(sch_col_drop_not_null(ci), sOKAY);
    EXPECT_EQ(sch_col_not_null(ci), OAK_FALSE);
    EXPECT_EQ(sch_col_not_null_cname(ci), nullptr);
    EXPECT_EQ(sch_col_set_not_null(ci, ""), sOKAY);
    EXPECT_EQ(sch_col_not_null(ci), OAK_TRUE);
    EXPECT_STREQ(sch_col_not_null_cname(ci), "");
}

/// A column without a type of its own, and a domain of every member.
class ColumnWithDomain : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(sch_type_set_elems(&mi_->type, 3), sOKAY);
        ASSERT_EQ(sch_type_set_check_str(&mi_->type, "check"), sOKAY);
        ASSERT_EQ(sch_type_set_check_name(&mi_->type, "check_name"), sOKAY);
        ASSERT_EQ(sch_dom_set_width(mi_, 12), sOKAY);
        ASSERT_EQ(sch_dom_set_format(mi_, "%d"), sOKAY);
        ASSERT_EQ(sch_string_input("5", &mi_->defstr, OAK_TRUE, sch_tag(sch_)), sOKAY);
        oak_valueSetInt32(&mi_->def, 5);
        mi_->type.byte_len = 12;
    }

    Schema sch_;
    SCH_DOMAIN_INFO mi_ = sch_.domain(2, "dom", OAK_INT32);
    SCH_TBL_INFO ti_ = sch_.table(1, "t");
    SCH_COL_INFO ci_ = Schema::column(ti_, 0, "a", OAK_NOVAL);
};

TEST_F(ColumnWithDomain, TakesTypeAndCheckFromIt) {
    ASSERT_EQ(sch_col_set_domain(ci_, 2), sOKAY);
    EXPECT_EQ(sch_col_domain(ci_), mi_);
    EXPECT_EQ(sch_col_type(ci_), &mi_->type);
    EXPECT_EQ(sch_col_type_c(ci_), &mi_->type);
    EXPECT_EQ(sch_col_data_type(ci_), OAK_INT32);
    EXPECT_STREQ(sch_col_data_type_text(ci_), "dom");
    EXPECT_EQ(sch_col_num_elems(ci_), 3);
    EXPECT_EQ(sch_col_byte_len(ci_), 12u);
    EXPECT_EQ(sch_col_length(ci_), 0u);
    EXPECT_EQ(sch_col_is_lob(ci_), OAK_FALSE);
    EXPECT_STREQ(sch_col_check_str(ci_), "check");
    EXPECT_STREQ(sch_col_check_name(ci_), "check_name");
}

TEST_F(ColumnWithDomain, TakesLengthPrecisionAndScaleFromIt) {
    SCH_DOMAIN_INFO decimal = sch_.domain(3, "dec", OAK_BCD, 20);
    ASSERT_EQ(sch_type_set_scale(&decimal->type, 6), sOKAY);
    ASSERT_EQ(sch_col_set_domain(ci_, 3), sOKAY);
    EXPECT_EQ(sch_col_length(ci_), 20u);
    EXPECT_EQ(sch_col_prec(ci_), 20);
    EXPECT_EQ(sch_col_scale(ci_), 6);
    SCH_COL_INFO blob = Schema::column(ti_, 1, "b", OAK_NOVAL);
    sch_.domain(4, "lob", OAK_CLOB);
    ASSERT_EQ(sch_col_set_domain(blob, 4), sOKAY);
    EXPECT_EQ(sch_col_is_lob(blob), OAK_TRUE);
}

TEST_F(ColumnWithDomain, TakesFormatWidthAndDefaultWhenItHasNone) {
    ASSERT_EQ(sch_col_set_domain(ci_, 2), sOKAY);
    EXPECT_STREQ(sch_col_format(ci_), "%d");
    EXPECT_EQ(sch_col_width(ci_), 12);
    EXPECT_STREQ(sch_col_defstr(ci_), "5");
    EXPECT_EQ(sch_col_def(ci_), &mi_->def);
    ASSERT_EQ(sch_col_set_format(ci_, "%x"), sOKAY);
    ASSERT_EQ(sch_col_set_width(ci_, 1), sOKAY);
    ASSERT_EQ(sch_string_input("6", &ci_->defstr, OAK_TRUE, sch_tag(sch_)), sOKAY);
    ci_->def.status = vsNULL;
    EXPECT_STREQ(sch_col_format(ci_), "%x");
    EXPECT_EQ(sch_col_width(ci_), 1);
    EXPECT_STREQ(sch_col_defstr(ci_), "6");
    EXPECT_EQ(sch_col_def(ci_), &ci_->def) << "a NULL default is one";
    ci_->def.status = vsNOVAL;
    EXPECT_EQ(sch_col_def(ci_), &mi_->def) << "so a row id of default auto has its domain's";
}

TEST_F(ColumnWithDomain, MustNotHaveATypeOfItsOwn) {
    SCH_COL_INFO typed = Schema::column(ti_, 1, "b", OAK_INT8);
    EXPECT_EQ(sch_col_set_domain(typed, 2), eBADCAT);
    EXPECT_EQ(sch_col_domain(typed), nullptr);
    EXPECT_EQ(sch_col_set_domain(ci_, 1), eBADCAT) << "a hole";
    EXPECT_EQ(sch_col_set_domain(ci_, 8), eBADCAT) << "beyond";
    EXPECT_EQ(sch_col_set_domain(ci_, 65535), eBADCAT);
    EXPECT_EQ(sch_col_domain(ci_), nullptr);
}

TEST(ColumnOwnType, IsReadWithoutADomain) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_BCD, 9);
    ASSERT_EQ(sch_type_set_scale(sch_col_type(ci), 2), sOKAY);
    EXPECT_EQ(sch_col_type(ci), &ci->type);
    EXPECT_EQ(sch_col_type_c(ci), &ci->type);
    EXPECT_EQ(sch_col_data_type(ci), OAK_BCD);
    EXPECT_STREQ(sch_col_data_type_text(ci), "OAK_BCD_T");
    EXPECT_EQ(sch_col_length(ci), 9u);
    EXPECT_EQ(sch_col_prec(ci), 9);
    EXPECT_EQ(sch_col_scale(ci), 2);
    EXPECT_EQ(sch_col_num_elems(ci), 0);
    EXPECT_EQ(sch_col_is_lob(ci), OAK_FALSE);
    EXPECT_EQ(sch_col_is_lob(Schema::column(ti, 1, "b", OAK_BLOB)), OAK_TRUE);
    ASSERT_EQ(sch_type_set_check_str(sch_col_type(ci), "c"), sOKAY);
    ASSERT_EQ(sch_type_set_check_name(sch_col_type(ci), "n"), sOKAY);
    EXPECT_STREQ(sch_col_check_str(ci), "c");
    EXPECT_STREQ(sch_col_check_name(ci), "n");
}

TEST(ColumnNullable, LooksAtTheDeclarationAndThePrimaryKey) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO plain = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO declared = Schema::not_null_column(ti, 1, "b", OAK_INT8);
    SCH_COL_INFO in_pkey = Schema::column(ti, 2, "c", OAK_INT8);
    SCH_COL_INFO in_key = Schema::column(ti, 3, "d", OAK_INT8);
    EXPECT_EQ(sch_col_is_pkey_elem(in_pkey), OAK_FALSE) << "no primary key yet";
    Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {2, 3});
    Schema::key(ti, 1, "p", OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {1, 2});
    EXPECT_EQ(sch_col_nullable(plain), OAK_TRUE);
    EXPECT_EQ(sch_col_nullable(declared), OAK_FALSE);
    EXPECT_EQ(sch_col_nullable(in_pkey), OAK_FALSE);
    EXPECT_EQ(sch_col_nullable(in_key), OAK_TRUE);
    EXPECT_EQ(sch_col_is_pkey_elem(plain), OAK_FALSE);
    EXPECT_EQ(sch_col_is_pkey_elem(declared), OAK_TRUE);
    EXPECT_EQ(sch_col_is_pkey_elem(in_pkey), OAK_TRUE);
    EXPECT_EQ(sch_col_is_pkey_elem(in_key), OAK_FALSE);
}

// The test looks at whichever list is shorter: the key's elements or the
// column's keys.
TEST(ColumnNullable, FindsThePrimaryKeyAmongManyKeys) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO other = Schema::column(ti, 1, "b", OAK_INT8);
    for (OAK_KEY_INDEX n = 0; n < 4; ++n) {
        Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0, 1});
    }
    Schema::key(ti, 4, "p", OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {0});
    EXPECT_EQ(sch_col_is_pkey_elem(ci), OAK_TRUE);
    EXPECT_EQ(sch_col_is_pkey_elem(other), OAK_FALSE);
}

TEST(ColumnBlobDrawer, MustExistAndBeOfTypeBlob) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 2, "a", OAK_BLOB);
    sch.drawer(5, OAK_DRAWER_TABLE, 1, 2);
    SCH_DRAWER_INFO di = sch.drawer(7, OAK_DRAWER_BLOB, 99, 98); // the source is not compared
    EXPECT_EQ(sch_col_set_blob_drawer(ci, 8), eRANGE) << "next drawer is 8";
    EXPECT_EQ(sch_col_set_blob_drawer(ci, OAK_DRAWER_NONE), eRANGE);
    EXPECT_EQ(sch_col_set_blob_drawer(ci, 6), eBADCAT) << "a hole";
    EXPECT_EQ(sch_col_set_blob_drawer(ci, 5), eBADCAT) << "another type";
    EXPECT_EQ(sch_col_set_blob_drawer(ci, 0), eBADCAT);
    EXPECT_EQ(sch_col_set_blob_drawer(ci, 4), eBADCAT) << "the system's";
    EXPECT_EQ(sch_col_lob_drawer(ci), nullptr);
    EXPECT_EQ(sch_col_set_blob_drawer(ci, 7), sOKAY);
    EXPECT_EQ(sch_col_lob_drawer(ci), di);
    EXPECT_EQ(sch_col_lob_drawer_ndx(ci), 7u);
    EXPECT_EQ(sch_drawer_blob_col(di), ci);
    EXPECT_EQ(sch_drawer_key(di), nullptr);
    EXPECT_EQ(sch_get_sysfiles_blob_col()->drawer->obj.ci, sch_get_sysfiles_blob_col());
}

TEST(ColumnLinks, ToAKey) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_KEY_INFO ki =
        Schema::key(ti, 2, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0}); // next key 3
    EXPECT_EQ(sch_col_set_key(ci, 3), eRANGE);
    EXPECT_EQ(sch_col_set_key(ci, 65534), eRANGE);
    EXPECT_EQ(sch_col_set_key(ci, 1), eBADCAT);
    EXPECT_EQ(sch_col_key_ndx(ci), OAK_INDEX_NONE);
    EXPECT_EQ(sch_col_set_key(ci, 2), sOKAY);
    EXPECT_EQ(sch_col_key_ndx(ci), 2);
    EXPECT_EQ(sch_col_key(ci), ki);
    EXPECT_EQ(sch_col_set_key(ci, OAK_INDEX_NONE), sOKAY);
    EXPECT_EQ(sch_col_key_ndx(ci), OAK_INDEX_NONE);
    EXPECT_EQ(sch_col_key(ci), nullptr);
}

TEST(ColumnLinks, ToAReference) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // next reference 8
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_REF_INFO ri = Schema::reference(ti, 2, "r", 1, {});
    EXPECT_EQ(sch_col_set_ref(ci, 8), eRANGE);
    EXPECT_EQ(sch_col_set_ref(ci, OAK_INDEX_NONE), eRANGE);
    EXPECT_EQ(sch_col_set_ref(ci, 7), eBADCAT);
    EXPECT_EQ(sch_col_ref(ci), nullptr);
    EXPECT_EQ(sch_col_set_ref(ci, 2), sOKAY);
    EXPECT_EQ(sch_col_ref(ci), ri);
}

TEST(ColumnLinks, ToTheColumnReferredTo) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_TBL_INFO other = sch.table(3, "other"); // next table 4, 16 columns
    SCH_COL_INFO target = Schema::column(other, 4, "b", OAK_INT8);
    EXPECT_EQ(sch_col_set_refcol(ci, 4), eBADCAT) << "no table yet";
    EXPECT_EQ(sch_col_set_reftab(ci, 4), eRANGE);
    EXPECT_EQ(sch_col_set_reftab(ci, OAK_INDEX_NONE), eRANGE);
    EXPECT_EQ(sch_col_set_reftab(ci, 2), eBADCAT) << "a hole";
    EXPECT_EQ(sch_col_set_reftab(ci, 0), eBADCAT) << "the system table";
    EXPECT_EQ(sch_col_reftab(ci), nullptr);
    EXPECT_EQ(sch_col_set_reftab(ci, 3), sOKAY);
    EXPECT_EQ(sch_col_reftab(ci), other);
    EXPECT_EQ(sch_col_set_refcol(ci, 16), eRANGE);
    EXPECT_EQ(sch_col_set_refcol(ci, 15), eBADCAT);
    EXPECT_EQ(sch_col_refcol(ci), nullptr);
    EXPECT_EQ(sch_col_set_refcol(ci, 4), sOKAY);
    EXPECT_EQ(sch_col_refcol(ci), target);
}

// ---- Key and element ---------------------------------------------------------

TEST(KeyMembers, GoThereAndBack) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_KEY_INFO ki = nullptr;
    ASSERT_EQ(sch_key_create(ti, 5, &ki), sOKAY);
    EXPECT_EQ(sch_key_ndx(ki), 5);
    EXPECT_EQ(sch_key_tbl_ndx(ki), 1);
    EXPECT_EQ(sch_key_table(ki), ti);
    EXPECT_EQ(sch_key_schema(ki), sch.get());
    EXPECT_TEXT_STORED(sch_key_set_name, sch_key_name, ki);
    EXPECT_STORED(sch_key_set_refcount, sch_key_refcount, ki, 4294967295u);
    EXPECT_STORED(sch_key_set_restr, sch_key_restr, ki, OAK_TRUE);
    EXPECT_EQ(sch_key_inline(ki), OAK_FALSE);
    EXPECT_EQ(sch_key_drawer(ki), nullptr);
    EXPECT_EQ(sch_key_drawer_ndx(ki), OAK_DRAWER_NONE);
    EXPECT_EQ(sch_avl_index(ki), 0);
    EXPECT_EQ(sch_key_num_elems(ki), 0);
    EXPECT_EQ(sch_key_byte_len(ki), 0u);
    EXPECT_EQ(sch_key_has_value_offset(ki), 0u);
    const _SCH_KEY_INFO alone{};
    EXPECT_EQ(sch_key_tbl_ndx(&alone), OAK_INDEX_NONE);
}

TEST(KeyMembers, NameTypesAndMethods) {
    Schema sch;
    SCH_KEY_INFO ki = nullptr;
    ASSERT_EQ(sch_key_create(sch.table(1, "t"), 0, &ki), sOKAY);
    const char *const types[] = {"noval", "nonunique", "unique", "primary"};
    for (int type = 0; type < 4; ++type) {
        EXPECT_STORED(sch_key_set_type, sch_key_type, ki, static_cast<OAK_KEY_TYPE>(type));
        EXPECT_STREQ(sch_key_type_text(ki), types[type]);
    }
    EXPECT_STORED(sch_key_set_type, sch_key_type, ki, static_cast<OAK_KEY_TYPE>(4));
    EXPECT_EQ(sch_key_type_text(ki), nullptr);
    const char *const methods[] = {"noval", "rowid", "btree", "hash",
                                   "avl",   "rtree", "mono",  "virtual"};
    for (int method = 0; method < 8; ++method) {
        EXPECT_STORED(sch_key_set_method, sch_key_method, ki, static_cast<OAK_KEY_METHOD>(method));
        EXPECT_STREQ(sch_key_method_text(ki), methods[method]);
    }
    EXPECT_STORED(sch_key_set_method, sch_key_method, ki, static_cast<OAK_KEY_METHOD>(8));
    EXPECT_EQ(sch_key_method_text(ki), nullptr);
}

TEST(KeyType, MakesTheFirstPrimaryKeyTheTables) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_KEY_INFO first = nullptr;
    SCH_KEY_INFO second = nullptr;
    ASSERT_EQ(sch_key_create(ti, 0, &first), sOKAY);
    ASSERT_EQ(sch_key_create(ti, 1, &second), sOKAY);
    EXPECT_EQ(sch_key_set_type(first, OAK_KEY_TYPE_UNIQUE), sOKAY);
    EXPECT_EQ(sch_tbl_primary_key(ti), nullptr);
    EXPECT_EQ(sch_key_set_type(first, OAK_KEY_TYPE_PRIMARY), sOKAY);
    EXPECT_EQ(sch_tbl_primary_key(ti), first);
    EXPECT_EQ(sch_key_set_type(second, OAK_KEY_TYPE_PRIMARY), eBADCAT);
    EXPECT_EQ(sch_key_type(second), OAK_KEY_TYPE_PRIMARY) << "the type has changed all the same";
    EXPECT_EQ(sch_tbl_primary_key(ti), first);
}

TEST(KeyDrawer, IsLinkedBothWays) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    OAK_KEY_INDEX ndx = 0;
    for (const OAK_DRAWER_TYPE type : {OAK_DRAWER_BTREE, OAK_DRAWER_HASH, OAK_DRAWER_RTREE}) {
        SCH_KEY_INFO ki = nullptr;
        ASSERT_EQ(sch_key_create(ti, ndx, &ki), sOKAY);
        SCH_DRAWER_INFO di = sch.drawer(5u + ndx, type, 1, ndx);
        EXPECT_EQ(sch_key_set_drawer(ki, 5u + ndx), sOKAY);
        EXPECT_EQ(sch_key_drawer(ki), di);
        EXPECT_EQ(sch_key_drawer_ndx(ki), 5u + ndx);
        EXPECT_EQ(sch_drawer_key(di), ki);
        EXPECT_EQ(sch_drawer_table(di), nullptr);
        EXPECT_EQ(sch_key_set_drawer(ki, OAK_DRAWER_NONE), sOKAY);
        EXPECT_EQ(sch_key_drawer(ki), nullptr);
        EXPECT_EQ(sch_drawer_key(di), nullptr);
        ++ndx;
    }
}

TEST(KeyDrawer, MustBeOfTheTypeAndNameTheKey) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_KEY_INFO ki = nullptr;
    ASSERT_EQ(sch_key_create(ti, 3, &ki), sOKAY);
    sch.drawer(5, OAK_DRAWER_BTREE, 2, 3);
    sch.drawer(6, OAK_DRAWER_BTREE, 1, 2);
    sch.drawer(8, OAK_DRAWER_TABLE, 1, 3);
    sch.drawer(9, OAK_DRAWER_REF, 1, 3);
    sch.drawer(10, OAK_DRAWER_BLOB, 1, 3);
    EXPECT_EQ(sch_key_set_drawer(ki, 5), eBADCAT) << "another source table";
    EXPECT_EQ(sch_key_set_drawer(ki, 6), eBADCAT) << "the source is another key";
    EXPECT_EQ(sch_key_set_drawer(ki, 7), eBADCAT) << "a hole";
    EXPECT_EQ(sch_key_set_drawer(ki, 99), eBADCAT) << "beyond";
    EXPECT_EQ(sch_key_set_drawer(ki, 3), eBADCAT) << "the system's";
    for (const OAK_DRAWER id : {8u, 9u, 10u}) {
        EXPECT_EQ(sch_key_set_drawer(ki, id), eBADCAT) << "another type";
    }
    EXPECT_EQ(sch_key_drawer(ki), nullptr);
}

TEST(KeyElements, AreMadeWithTheirPositions) {
    Schema sch;
    SCH_KEY_INFO ki = nullptr;
    ASSERT_EQ(sch_key_create(sch.table(1, "t"), 0, &ki), sOKAY);
    EXPECT_EQ(sch_key_elem(ki, 0), nullptr);
    EXPECT_EQ(sch_key_set_num_elems(ki, 2), sOKAY);
    EXPECT_EQ(sch_key_set_num_elems(ki, 1), eRANGE);
    EXPECT_EQ(sch_key_set_num_elems(ki, 4), sOKAY);
    EXPECT_EQ(sch_key_num_elems(ki), 4);
    for (OAK_COL_INDEX n = 0; n < 4; ++n) {
        SCH_ELEM_INFO ei = sch_key_elem(ki, n);
        ASSERT_NE(ei, nullptr);
        EXPECT_EQ(sch_key_elem_c(ki, n), ei);
        EXPECT_EQ(sch_elem_index(ei), n);
        EXPECT_EQ(ei->key, ki);
        EXPECT_EQ(sch_elem_col(ei), nullptr);
        EXPECT_EQ(sch_elem_col_index(ei), OAK_INDEX_NONE);
        EXPECT_EQ(sch_elem_dir_text(ei), nullptr) << "no direction yet";
        EXPECT_EQ(sch_elem_offset(ei), 0u);
        EXPECT_EQ(sch_elem_has_value_offset(ei), 0u);
    }
    EXPECT_EQ(sch_key_elem(ki, 4), nullptr);
    EXPECT_EQ(sch_key_elem_c(ki, 4), nullptr);
    EXPECT_EQ(sch_key_elem_c(ki, OAK_INDEX_NONE), nullptr);
}

TEST(KeyElements, TakeADirection) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_ELEM_INFO ei =
        sch_key_elem(Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0}), 0);
    EXPECT_STORED(sch_elem_set_order, sch_elem_dir, ei, OAK_FORWARD);
    EXPECT_STREQ(sch_elem_dir_text(ei), "asc");
    EXPECT_STORED(sch_elem_set_order, sch_elem_dir, ei, OAK_REVERSE);
    EXPECT_STREQ(sch_elem_dir_text(ei), "desc");
}

TEST(KeyElements, TellTheirColumnOfTheKey) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO a = Schema::column(ti, 4, "a", OAK_INT8);
    SCH_KEY_INFO one = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {4});
    SCH_KEY_INFO two = Schema::key(ti, 1, "l", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {4});
    EXPECT_EQ(sch_elem_col(sch_key_elem(one, 0)), a);
    EXPECT_EQ(sch_elem_col_index(sch_key_elem(one, 0)), 4);
    ASSERT_EQ(a->num_keys, 2);
    EXPECT_EQ(a->keys[0], one);
    EXPECT_EQ(a->keys[1], two);
}

TEST(KeyElements, RefuseColumnsThatAreNotThere) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 16 columns
    SCH_KEY_INFO ki = nullptr;
    ASSERT_EQ(sch_key_create(ti, 0, &ki), sOKAY);
    ASSERT_EQ(sch_key_set_num_elems(ki, 1), sOKAY);
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 0), 0), eBADCAT);
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 0), 16), eBADCAT);
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 0), OAK_INDEX_NONE), eBADCAT);
    // Below the capacity is enough: the limit of indexes is not asked.
    SCH_COL_INFO ci = nullptr;
    ASSERT_EQ(sch_col_create(ti, 15, &ci), sOKAY);
    EXPECT_EQ(sch_tbl_next_col(ti), 0);
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 0), 15), sOKAY);
}

TEST(KeyElements, RefuseAColumnTwice) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO a = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO b = Schema::column(ti, 1, "b", OAK_INT8);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0, 1});
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 1), 0), eBADCAT);
    EXPECT_EQ(sch_elem_col(sch_key_elem(ki, 1)), b);
    EXPECT_EQ(a->num_keys, 1);
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 1), 1), sOKAY) << "the same again";
    EXPECT_EQ(b->num_keys, 1);
}

TEST(KeyElements, LeaveTheColumnTheyHadBefore) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO a = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO b = Schema::column(ti, 1, "b", OAK_INT8);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    EXPECT_EQ(sch_elem_set_col(sch_key_elem(ki, 0), 1), sOKAY);
    EXPECT_EQ(a->num_keys, 0);
    EXPECT_EQ(a->keys, nullptr);
    ASSERT_EQ(b->num_keys, 1);
    EXPECT_EQ(b->keys[0], ki);
}

// ---- Reference and sort column -----------------------------------------------

TEST(ReferenceMembers, GoThereAndBack) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 5, &ri), sOKAY);
    EXPECT_EQ(sch_ref_ndx(ri), 5);
    EXPECT_EQ(sch_ref_tbl_ndx(ri), 1);
    EXPECT_EQ(sch_ref_table(ri), ti);
    EXPECT_EQ(sch_ref_schema(ri), sch.get());
    EXPECT_TEXT_STORED(sch_ref_set_name, sch_ref_name, ri);
    EXPECT_EQ(sch_ref_owner(ri), nullptr);
    EXPECT_EQ(sch_ref_owner_tbl_ndx(ri), OAK_INDEX_NONE);
    EXPECT_EQ(sch_ref_owner_ndx(ri), 0);
    EXPECT_EQ(sch_ref_key(ri), nullptr);
    EXPECT_EQ(sch_ref_key_index(ri), OAK_INDEX_NONE);
    EXPECT_EQ(sch_ref_drawer(ri), nullptr);
    EXPECT_EQ(sch_ref_drawer_ndx(ri), OAK_DRAWER_NONE);
    EXPECT_EQ(sch_ref_requires_write_for_update(ri), OAK_FALSE);
    EXPECT_EQ(sch_ref_num_cols(ri), 0);
    EXPECT_EQ(sch_ref_col(ri, 0), nullptr);
    EXPECT_EQ(sch_ref_col_vals(ri), nullptr);
    EXPECT_EQ(sch_ref_num_sort_cols(ri), 0);
    EXPECT_EQ(sch_ref_sort(ri, 0), nullptr);
    EXPECT_EQ(sch_ref_sort_col(ri, 0), nullptr);
    EXPECT_EQ(sch_ref_sort_byte_len(ri), 0u);
    const char *const words[] = {"noval", "restrict", "cascade", "set null", nullptr};
    for (int action = 0; action < 5; ++action) {
        EXPECT_STORED(sch_ref_set_on_update, sch_ref_on_update, ri,
                      static_cast<OAK_REF_ACTION>(action));
        EXPECT_STORED(sch_ref_set_on_delete, sch_ref_on_delete, ri,
                      static_cast<OAK_REF_ACTION>(4 - action));
        EXPECT_STREQ(sch_ref_on_update_text(ri), words[action]);
        EXPECT_STREQ(sch_ref_on_delete_text(ri), words[4 - action]);
    }
}

TEST(ReferenceDrawer, MustBeOfTheTypeAndNameTheReference) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 3, &ri), sOKAY);
    sch.drawer(5, OAK_DRAWER_REF, 2, 3);
    sch.drawer(6, OAK_DRAWER_REF, 1, 2);
    sch.drawer(8, OAK_DRAWER_BTREE, 1, 3);
    SCH_DRAWER_INFO di = sch.drawer(9, OAK_DRAWER_REF, 1, 3);
    for (const OAK_DRAWER id : {5u, 6u, 7u, 8u, 2u, 99u, OAK_DRAWER_NONE}) {
        EXPECT_EQ(sch_ref_set_drawer(ri, id), eBADCAT) << id;
    }
    EXPECT_EQ(sch_ref_drawer(ri), nullptr);
    EXPECT_EQ(sch_ref_set_drawer(ri, 9), sOKAY);
    EXPECT_EQ(sch_ref_drawer(ri), di);
    EXPECT_EQ(sch_ref_drawer_ndx(ri), 9u);
    EXPECT_EQ(sch_drawer_ref(di), ri);
    EXPECT_EQ(sch_drawer_table(di), nullptr);
}

TEST(ReferredTable, TakesTheReferenceAmongItsOwners) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_TBL_INFO other = sch.table(3, "other");
    SCH_REF_INFO refs[7] = {};
    for (OAK_REF_INDEX n = 0; n < 7; ++n) {
        ASSERT_EQ(sch_ref_create(ti, n, &refs[n]), sOKAY);
        EXPECT_EQ(sch_ref_set_reftab(refs[n], 3), sOKAY);
        EXPECT_EQ(sch_ref_owner(refs[n]), other);
        EXPECT_EQ(sch_ref_owner_tbl_ndx(refs[n]), 3);
        EXPECT_EQ(sch_ref_owner_ndx(refs[n]), n);
        EXPECT_EQ(sch_tbl_num_owners(other), n + 1);
        EXPECT_EQ(sch_tbl_next_owner(other), n + 1);
        EXPECT_EQ(sch_tbl_max_owner(other), n < 5 ? 5 : 10) << "in steps of five";
        EXPECT_EQ(other->owners[n], refs[n]);
    }
    EXPECT_EQ(sch_tbl_num_owners(ti), 0);
}

TEST(ReferredTable, MustExistAndNotBeTheSystems) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // next table 2
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 0, &ri), sOKAY);
    EXPECT_EQ(sch_ref_set_reftab(ri, 2), eBADCAT);
    EXPECT_EQ(sch_ref_set_reftab(ri, OAK_INDEX_NONE), eBADCAT);
    EXPECT_EQ(sch_ref_set_reftab(ri, 0), eBADCAT) << "the system table";
    EXPECT_EQ(sch_ref_owner(ri), nullptr);
    EXPECT_EQ(sch_get_sysfiles_table()->num_owns, 0);
    EXPECT_EQ(sch_ref_set_reftab(ri, 1), sOKAY) << "a table may refer to itself";
}

TEST(ReferredTable, IsLeftForAnother) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_TBL_INFO one = sch.table(2, "one");
    SCH_TBL_INFO two = sch.table(3, "two");
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 0, &ri), sOKAY);
    EXPECT_EQ(sch_ref_set_reftab(ri, 2), sOKAY);
    EXPECT_EQ(sch_ref_set_reftab(ri, 3), sOKAY);
    EXPECT_EQ(one->owners[0], nullptr);
    EXPECT_EQ(sch_tbl_num_owners(one), 0);
    EXPECT_EQ(two->owners[0], ri);
    EXPECT_EQ(sch_tbl_num_owners(two), 1);
}

TEST(ReferredTable, HasAnEndOfNumbers) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 0, &ri), sOKAY);
    ASSERT_EQ(sch_tbl_set_next_owner(ti, 65534), sOKAY);
    EXPECT_EQ(sch_ref_set_reftab(ri, 1), sOKAY);
    EXPECT_EQ(sch_ref_owner_ndx(ri), 65534);
    EXPECT_EQ(sch_tbl_max_owner(ti), 65535);
    EXPECT_EQ(sch_ref_set_reftab(ri, 1), eRANGE);
    EXPECT_EQ(sch_ref_owner(ri), ti);
}

TEST(ReferredKey, MustBeOneOfTheTables) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_TBL_INFO other = sch.table(2, "other");
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 0, &ri), sOKAY);
    SCH_KEY_INFO ki =
        Schema::key(other, 1, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {}); // next key 2
    EXPECT_EQ(sch_ref_set_refkey(ri, 1), eBADCAT) << "no table yet";
    ASSERT_EQ(sch_ref_set_reftab(ri, 2), sOKAY);
    EXPECT_EQ(sch_ref_set_refkey(ri, 0), eBADCAT) << "a hole";
    EXPECT_EQ(sch_ref_set_refkey(ri, 2), eBADCAT) << "beyond";
    EXPECT_EQ(sch_ref_set_refkey(ri, OAK_INDEX_NONE), eBADCAT);
    EXPECT_EQ(sch_ref_key(ri), nullptr);
    EXPECT_EQ(sch_ref_set_refkey(ri, 1), sOKAY);
    EXPECT_EQ(sch_ref_key(ri), ki);
    EXPECT_EQ(sch_ref_key_index(ri), 1);
}

/// A table of four columns with a reference to itself.
class ReferenceColumns : public ::testing::Test {
  protected:
    void SetUp() override {
        for (OAK_COL_INDEX n = 0; n < 4; ++n) {
            cols_[n] = Schema::column(ti_, n, "c", OAK_INT8);
        }
        ASSERT_EQ(sch_ref_create(ti_, 2, &ri_), sOKAY);
    }

    Schema sch_;
    SCH_TBL_INFO ti_ = sch_.table(9, "t");
    SCH_COL_INFO cols_[4] = {};
    SCH_REF_INFO ri_ = nullptr;
};

TEST_F(ReferenceColumns, KeepAValueEachWithTheConstantOfTheColumn) {
    ASSERT_EQ(sch_ref_set_reftab(ri_, 9), sOKAY);
    ASSERT_EQ(sch_ref_set_num_cols(ri_, 2), sOKAY);
    EXPECT_EQ(sch_ref_num_cols(ri_), 2);
    EXPECT_EQ(sch_ref_col(ri_, 0), nullptr);
    sch_ref_col_vals(ri_)[1].value.status = vsOKAY;
    EXPECT_EQ(sch_ref_set_col(ri_, 1, 3), sOKAY);
    EXPECT_EQ(sch_ref_col(ri_, 1), cols_[3]);
    EXPECT_EQ(sch_ref_col(ri_, 2), nullptr);
    EXPECT_EQ(sch_ref_col_vals(ri_)[1].columnId, 9u * 131072 + 3);
    EXPECT_EQ(sch_ref_col_vals(ri_)[1].value.status, vsNOVAL);
    EXPECT_EQ(sch_ref_col_vals(ri_)[1].value.type, OAK_NOVAL);
    ASSERT_EQ(cols_[3]->num_refs, 1);
    EXPECT_EQ(cols_[3]->refs[0], ri_);
}

TEST_F(ReferenceColumns, RefuseWhatIsNotThere) {
    ASSERT_EQ(sch_ref_set_num_cols(ri_, 2), sOKAY);
    EXPECT_EQ(sch_ref_set_col(ri_, 0, 0), eBADCAT) << "no table referred to";
    ASSERT_EQ(sch_ref_set_reftab(ri_, 9), sOKAY);
    EXPECT_EQ(sch_ref_set_col(ri_, 2, 0), eBADCAT) << "no such position";
    EXPECT_EQ(sch_ref_set_col(ri_, 0, 4), eBADCAT) << "a hole";
    EXPECT_EQ(sch_ref_set_col(ri_, 0, 16), eBADCAT) << "beyond";
    EXPECT_EQ(sch_ref_set_col(ri_, 0, OAK_INDEX_NONE), eBADCAT);
    EXPECT_EQ(sch_ref_set_col(ri_, 0, 1), sOKAY);
    EXPECT_EQ(sch_ref_set_col(ri_, 1, 1), eBADCAT) << "a column twice";
    EXPECT_EQ(sch_ref_col(ri_, 1), nullptr);
    EXPECT_EQ(sch_ref_set_col(ri_, 0, 1), sOKAY) << "the same again";
    EXPECT_EQ(cols_[1]->num_refs, 1);
    EXPECT_EQ(sch_ref_set_col(ri_, 0, 2), sOKAY) << "another in its place";
    EXPECT_EQ(cols_[1]->num_refs, 0);
    EXPECT_EQ(cols_[2]->num_refs, 1);
}

TEST_F(ReferenceColumns, AreForgottenWhenTheirNumberIsSetAgain) {
    ASSERT_EQ(sch_ref_set_reftab(ri_, 9), sOKAY);
    ASSERT_EQ(sch_ref_set_num_cols(ri_, 2), sOKAY);
    ASSERT_EQ(sch_ref_set_col(ri_, 0, 1), sOKAY);
    ASSERT_EQ(sch_ref_set_col(ri_, 1, 2), sOKAY);
    EXPECT_EQ(sch_ref_set_num_cols(ri_, 1), sOKAY);
    EXPECT_EQ(sch_ref_num_cols(ri_), 1);
    EXPECT_EQ(sch_ref_col(ri_, 0), nullptr);
    EXPECT_EQ(cols_[1]->num_refs, 0);
    EXPECT_EQ(cols_[2]->num_refs, 0);
    EXPECT_EQ(sch_ref_set_num_cols(ri_, 0), sOKAY);
    EXPECT_EQ(sch_ref_col_vals(ri_), nullptr);
}

TEST_F(ReferenceColumns, SortByColumnsOfTheHoldingTable) {
    ASSERT_EQ(sch_ref_set_num_sort_cols(ri_, 3), sOKAY);
    EXPECT_EQ(sch_ref_num_sort_cols(ri_), 3);
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 2, 1), sOKAY);
    EXPECT_EQ(sch_ref_set_sort_order(ri_, 2, OAK_REVERSE), sOKAY);
    EXPECT_EQ(sch_ref_sort_col(ri_, 2), cols_[1]);
    SCH_SORT_INFO si = sch_ref_sort(ri_, 2);
    ASSERT_NE(si, nullptr);
    EXPECT_EQ(sch_sort_index(si), 2);
    EXPECT_EQ(sch_sort_col(si), cols_[1]);
    EXPECT_EQ(sch_sort_col_index(si), 1);
    EXPECT_EQ(sch_sort_ref(si), ri_);
    EXPECT_EQ(sch_sort_ref_index(si), 2);
    EXPECT_EQ(sch_sort_table_index(si), 9);
    EXPECT_EQ(sch_sort_dir(si), OAK_REVERSE);
    EXPECT_STREQ(sch_sort_dir_text(si), "desc");
    EXPECT_EQ(sch_ref_set_sort_order(ri_, 2, OAK_FORWARD), sOKAY);
    EXPECT_STREQ(sch_sort_dir_text(si), "asc");
    EXPECT_EQ(sch_sort_offset(si), 0u);
    EXPECT_EQ(sch_sort_has_value_offset(si), 0u);
    EXPECT_EQ(sch_ref_sort(ri_, 3), nullptr);
    EXPECT_EQ(sch_ref_sort_col(ri_, 3), nullptr);
    EXPECT_EQ(sch_sort_col_index(sch_ref_sort(ri_, 0)), OAK_INDEX_NONE);
    EXPECT_EQ(sch_sort_dir_text(sch_ref_sort(ri_, 0)), nullptr);
    ASSERT_EQ(cols_[1]->num_sortrefs, 1);
    EXPECT_EQ(cols_[1]->sortrefs[0], ri_);
}

TEST_F(ReferenceColumns, RefuseSortColumnsByTheCountOfLiveColumns) {
    ASSERT_EQ(sch_ref_set_num_sort_cols(ri_, 2), sOKAY);
    ASSERT_EQ(sch_tbl_set_num_cols(ti_, 3), sOKAY);
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 0, 3), eBADCAT) << "there, but not below the count";
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 0, 2), sOKAY);
    ASSERT_EQ(sch_tbl_set_num_cols(ti_, 65535), sOKAY);
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 1, 4), eBADCAT) << "a hole";
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 1, 16), eBADCAT) << "beyond the array";
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 2, 1), eBADCAT) << "no such position";
    EXPECT_EQ(sch_ref_set_sort_order(ri_, 2, OAK_FORWARD), eBADCAT);
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 1, 2), eBADCAT) << "a column twice";
    EXPECT_EQ(sch_ref_sort_col(ri_, 1), nullptr);
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 0, 2), sOKAY) << "the same again";
    EXPECT_EQ(cols_[2]->num_sortrefs, 1);
    EXPECT_EQ(sch_ref_set_sort_col(ri_, 0, 3), sOKAY) << "another in its place";
    EXPECT_EQ(cols_[2]->num_sortrefs, 0);
}

TEST_F(ReferenceColumns, ForgetSortColumnsWhenTheirNumberIsSetAgain) {
    ASSERT_EQ(sch_ref_set_num_sort_cols(ri_, 2), sOKAY);
    ASSERT_EQ(sch_ref_set_sort_col(ri_, 0, 1), sOKAY);
    ASSERT_EQ(sch_ref_set_sort_col(ri_, 1, 2), sOKAY);
    EXPECT_EQ(sch_ref_set_num_sort_cols(ri_, 0), sOKAY);
    EXPECT_EQ(sch_ref_num_sort_cols(ri_), 0);
    EXPECT_EQ(ri_->sort_cols, nullptr) << "none allocate nothing";
    EXPECT_EQ(cols_[1]->num_sortrefs, 0);
    EXPECT_EQ(cols_[2]->num_sortrefs, 0);
}

// ---- Trigger -----------------------------------------------------------------

TEST(TriggerMembers, GoThereAndBack) {
    oaktest::Tag tag;
    SCH_TRIG_INFO trgi = nullptr;
    ASSERT_EQ(sch_trig_allocate("Trig", 65535, 18446744073709551615u, &trgi, tag), sOKAY);
    EXPECT_STREQ(sch_trig_name(trgi), "Trig");
    EXPECT_EQ(sch_trig_sqltrig(trgi), 65535);
    EXPECT_EQ(sch_trig_crtime(trgi), 18446744073709551615u);
    EXPECT_EQ(sch_trig_timing(trgi), OAK_TRIG_WHENEVER);
    EXPECT_EQ(sch_trig_event(trgi), OAK_TRIG_INSERT);
    EXPECT_STORED(sch_trig_set_timing, sch_trig_timing, trgi, OAK_TRIG_AFTER);
    EXPECT_STORED(sch_trig_set_event, sch_trig_event, trgi, OAK_TRIG_UPDATE);
    EXPECT_STORED(sch_trig_set_num_updcols, sch_trig_num_updcols, trgi, 3);
    EXPECT_STORED(sch_trig_set_num_colrefs, sch_trig_num_colrefs, trgi, 2);
    tag.may_keep_blocks();
}

TEST(TriggerColumns, AreReadWithinTheirNumber) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    SCH_TRIG_INFO trgi = nullptr;
    ASSERT_EQ(sch_trig_allocate("t", 1, 2, &trgi, tag), sOKAY);
    ASSERT_EQ(sch_trig_set_num_updcols(trgi, 2), sOKAY);
    EXPECT_EQ(sch_trig_updcol(trgi, 0), OAK_INDEX_NONE) << "not allocated";
    EXPECT_EQ(sch_trig_set_updcol(trgi, 0, 7), eRANGE);
    ASSERT_EQ(sch_trig_alloc_updcols(trgi, tag), sOKAY);
    EXPECT_EQ(sch_trig_updcol(trgi, 0), 0);
    EXPECT_EQ(sch_trig_set_updcol(trgi, 1, 7), sOKAY);
    EXPECT_EQ(sch_trig_updcol(trgi, 1), 7);
    EXPECT_EQ(sch_trig_set_updcol(trgi, 2, 7), eRANGE);
    EXPECT_EQ(sch_trig_updcol(trgi, 2), OAK_INDEX_NONE);
    ASSERT_EQ(sch_trig_set_num_updcols(trgi, 100), sOKAY);
    EXPECT_EQ(sch_trig_set_updcol(trgi, 2, 7), eRANGE) << "the array has two";
    EXPECT_EQ(sch_trig_updcol(trgi, 2), OAK_INDEX_NONE);
}

TEST(TriggerColumns, CarryAValueReferenceAndNumber) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    SCH_TRIG_INFO trgi = nullptr;
    ASSERT_EQ(sch_trig_allocate("t", 1, 2, &trgi, tag), sOKAY);
    ASSERT_EQ(sch_trig_set_num_colrefs(trgi, 2), sOKAY);
    EXPECT_EQ(sch_trig_colref(trgi, 0), nullptr) << "not allocated";
    ASSERT_EQ(sch_trig_alloc_colrefs(trgi, tag), sOKAY);
    EXPECT_EQ(sch_trig_colref(trgi, 2), nullptr);
    SCH_TRIG_COL_INFO tci = sch_trig_colref(trgi, 1);
    ASSERT_NE(tci, nullptr);
    EXPECT_EQ(sch_trigcol_colid(tci), 0);
    EXPECT_EQ(sch_trigcol_set_ndx(tci, 1), sOKAY);
    EXPECT_EQ(tci->ndx, 1);
    EXPECT_STORED(sch_trigcol_set_colid, sch_trigcol_colid, tci, 12);
    EXPECT_STORED(sch_trigcol_set_varno, sch_trigcol_varno, tci, 13);
    EXPECT_STORED(sch_trigcol_set_ref, sch_trigcol_ref, tci, OAK_TRIG_NEW);
    OAK_VALUE value;
    EXPECT_STORED(sch_trigcol_set_val, sch_trigcol_val, tci, &value);
    EXPECT_EQ(sch_trigcol_alloc_val(tci, tag), sOKAY);
    ASSERT_NE(sch_trigcol_val(tci), &value);
    EXPECT_EQ(sch_trigcol_val(tci)->status, vsNOVAL);
}

// ---- Null objects ------------------------------------------------------------

TEST(NullObjects, AreRefusedByEverySetter) {
    const OAK_RETCODE statuses[] = {
        sch_set_name(nullptr, "x"),
        sch_set_catver(nullptr, 1),
        sch_set_dbver(nullptr, 1),
        sch_set_encryption(nullptr, OAK_ENC_XOR),
        sch_set_locale(nullptr, "C"),
        sch_set_max_drawer(nullptr, 9),
        sch_set_max_table(nullptr, 9),
        sch_set_next_domain(nullptr, 9),
        sch_set_next_drawer(nullptr, 5),
        sch_set_next_table(nullptr, 1),
        sch_set_num_drawers(nullptr, 5),
        sch_set_num_domains(nullptr, 5),
        sch_set_num_tables(nullptr, 5),
        sch_type_set_data_type(nullptr, OAK_INT8, OAK_TRUE),
        sch_type_set_elems(nullptr, 1),
        sch_type_set_length(nullptr, 1),
        sch_type_set_scale(nullptr, 1),
        sch_type_set_use_locale(nullptr, OAK_TRUE),
        sch_type_set_locale(nullptr, nullptr),
        sch_type_set_check_str(nullptr, "x"),
        sch_type_set_check_name(nullptr, "x"),
        sch_dom_set_name(nullptr, "x"),
        sch_dom_set_width(nullptr, 1),
        sch_dom_set_format(nullptr, "x"),
        sch_drawer_set_source_table(nullptr, 1),
        sch_drawer_set_source_item(nullptr, 1),
        sch_drawer_set_type(nullptr, OAK_DRAWER_BLOB),
        sch_tbl_set_name(nullptr, "x"),
        sch_tbl_set_check_str(nullptr, "x"),
        sch_tbl_set_check_name(nullptr, "x"),
        sch_tbl_set_type(nullptr, OAK_TABLE_CIRCULAR),
        sch_tbl_set_max_rows(nullptr, 1),
        sch_tbl_set_offset(nullptr, 1),
        sch_tbl_set_drawer(nullptr, 5),
        sch_tbl_set_num_cols(nullptr, 1),
        sch_tbl_set_next_col(nullptr, 1),
        sch_tbl_set_num_keys(nullptr, 1),
        sch_tbl_set_next_key(nullptr, 1),
        sch_tbl_set_num_avls(nullptr, 1),
        sch_tbl_set_next_avl(nullptr, 1),
        sch_tbl_set_num_refs(nullptr, 1),
        sch_tbl_set_num_owners(nullptr, 1),
        sch_tbl_set_next_owner(nullptr, 1),
        sch_tbl_set_max_cols(nullptr, 1),
        sch_tbl_set_max_keys(nullptr, 1),
        sch_tbl_set_max_avls(nullptr, 1),
        sch_tbl_set_max_owners(nullptr, 1),
        sch_tbl_set_next_ref(nullptr, 1),
        sch_col_set_name(nullptr, "x"),
        sch_col_set_width(nullptr, 1),
        sch_col_set_format(nullptr, "x"),
        sch_col_set_usage(nullptr, 1),
        sch_col_set_not_null(nullptr, "x"),
        sch_col_drop_not_null(nullptr),
        sch_col_set_domain(nullptr, 1),
        sch_col_set_blob_drawer(nullptr, 1),
        sch_col_set_key(nullptr, 1),
        sch_col_set_ref(nullptr, 1),
        sch_col_set_reftab(nullptr, 1),
        sch_col_set_refcol(nullptr, 1),
        sch_key_set_name(nullptr, "x"),
        sch_key_set_method(nullptr, OAK_KEY_METHOD_AVL),
        sch_key_set_refcount(nullptr, 1),
        sch_key_set_restr(nullptr, OAK_TRUE),
        sch_key_set_type(nullptr, OAK_KEY_TYPE_UNIQUE),
        sch_key_set_drawer(nullptr, 5),
        sch_key_set_num_elems(nullptr, 1),
        sch_elem_set_col(nullptr, 1),
        sch_elem_set_order(nullptr, OAK_FORWARD),
        sch_ref_set_name(nullptr, "x"),
        sch_ref_set_on_update(nullptr, OAK_REF_ACTION_CASCADE),
        sch_ref_set_on_delete(nullptr, OAK_REF_ACTION_CASCADE),
        sch_ref_set_drawer(nullptr, 5),
        sch_ref_set_reftab(nullptr, 1),
        sch_ref_set_refkey(nullptr, 1),
        sch_ref_set_num_cols(nullptr, 1),
        sch_ref_set_num_sort_cols(nullptr, 1),
        sch_ref_set_col(nullptr, 0, 1),
        sch_ref_set_sort_col(nullptr, 0, 1),
        sch_ref_set_sort_order(nullptr, 0, OAK_FORWARD),
        sch_trig_set_timing(nullptr, OAK_TRIG_AFTER),
        sch_trig_set_event(nullptr, OAK_TRIG_DELETE),
        sch_trig_set_num_updcols(nullptr, 1),
        sch_trig_set_num_colrefs(nullptr, 1),
        sch_trig_set_updcol(nullptr, 0, 1),
        sch_trigcol_set_ndx(nullptr, 1),
        sch_trigcol_set_colid(nullptr, 1),
        sch_trigcol_set_varno(nullptr, 1),
        sch_trigcol_set_ref(nullptr, OAK_TRIG_OLD),
        sch_trigcol_set_val(nullptr, nullptr),
    };
    size_t n = 0;
    for (const OAK_RETCODE status : statuses) {
        EXPECT_EQ(status, eINVNULLARG) << "setter " << n;
        ++n;
    }
}

// ---- Exhausted memory --------------------------------------------------------

/// A schema in which every kind of object stands at index 1 of its parent.
void build_objects(Schema &sch) {
    SCH_TBL_INFO ti = sch.table(1, "t");
    sch.table(2, "other");
    Schema::column(ti, 1, "a", OAK_INT8);
    Schema::column(ti, 2, "b", OAK_INT8);
    Schema::column(ti, 3, "c", OAK_INT8);
    sch.domain(1, "d", OAK_INT8);
    Schema::key(ti, 1, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1, 2});
    Schema::reference(ti, 1, "r", 2, {1, 2}, {2});
    ASSERT_EQ(sch_col_set_not_null(ti->cols[1], "nn"), sOKAY);
}

struct Mutator {
    const char *name;
    OAK_RETCODE (*change)(Schema &);
};

const Mutator kMutators[] = {
    {"sch_set_name", [](Schema &s) { return sch_set_name(s, "new"); }},
    {"sch_set_max_table", [](Schema &s) { return sch_set_max_table(s, 1000); }},
    {"sch_set_next_domain", [](Schema &s) { return sch_set_next_domain(s, 1000); }},
    {"sch_type_set_check_str",
     [](Schema &s) { return sch_type_set_check_str(&s->tables[1]->cols[1]->type, "new"); }},
    {"sch_type_set_check_name",
     [](Schema &s) { return sch_type_set_check_name(&s->tables[1]->cols[1]->type, "new"); }},
    {"sch_dom_set_name", [](Schema &s) { return sch_dom_set_name(s->domains[1], "new"); }},
    {"sch_dom_set_format", [](Schema &s) { return sch_dom_set_format(s->domains[1], "new"); }},
    {"sch_tbl_set_name", [](Schema &s) { return sch_tbl_set_name(s->tables[1], "new"); }},
    {"sch_tbl_set_check_str", [](Schema &s) { return sch_tbl_set_check_str(s->tables[1], "new"); }},
    {"sch_tbl_set_check_name",
     [](Schema &s) { return sch_tbl_set_check_name(s->tables[1], "new"); }},
    {"sch_tbl_set_max_cols", [](Schema &s) { return sch_tbl_set_max_cols(s->tables[1], 1000); }},
    {"sch_tbl_set_max_keys", [](Schema &s) { return sch_tbl_set_max_keys(s->tables[1], 1000); }},
    {"sch_tbl_set_max_avls", [](Schema &s) { return sch_tbl_set_max_avls(s->tables[1], 1000); }},
    {"sch_tbl_set_max_owners",
     [](Schema &s) { return sch_tbl_set_max_owners(s->tables[1], 1000); }},
    {"sch_col_set_name", [](Schema &s) { return sch_col_set_name(s->tables[1]->cols[1], "new"); }},
    {"sch_col_set_format",
     [](Schema &s) { return sch_col_set_format(s->tables[1]->cols[1], "new"); }},
    {"sch_col_set_not_null",
     [](Schema &s) { return sch_col_set_not_null(s->tables[1]->cols[2], "new"); }},
    {"sch_key_set_name", [](Schema &s) { return sch_key_set_name(s->tables[1]->keys[1], "new"); }},
    {"sch_key_set_num_elems",
     [](Schema &s) { return sch_key_set_num_elems(s->tables[1]->keys[1], 1000); }},
    {"sch_elem_set_col",
     [](Schema &s) { return sch_elem_set_col(&s->tables[1]->keys[1]->elems[1], 3); }},
    {"sch_ref_set_name", [](Schema &s) { return sch_ref_set_name(s->tables[1]->refs[1], "new"); }},
    {"sch_ref_set_reftab", [](Schema &s) { return sch_ref_set_reftab(s->tables[1]->refs[1], 1); }},
    {"sch_ref_set_num_cols",
     [](Schema &s) { return sch_ref_set_num_cols(s->tables[1]->refs[1], 3); }},
    {"sch_ref_set_num_sort_cols",
     [](Schema &s) { return sch_ref_set_num_sort_cols(s->tables[1]->refs[1], 3); }},
    {"sch_ref_set_col", [](Schema &s) { return sch_ref_set_col(s->tables[1]->refs[1], 1, 3); }},
    {"sch_ref_set_sort_col",
     [](Schema &s) { return sch_ref_set_sort_col(s->tables[1]->refs[1], 0, 1); }},
};

TEST(ExhaustedMemory, LeavesEveryObjectAsItWas) {
    for (const Mutator &mutator : kMutators) {
        SCOPED_TRACE(mutator.name);
        sweep_change(build_objects, mutator.change);
    }
}

} // namespace
