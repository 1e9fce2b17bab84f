// A schema from a catalog's text, for tests of what stands on a schema.
#ifndef CATALOG_H
#define CATALOG_H

#include <string>

#include "schema.h"
#include "schema_load.h"
#include "test_support.h"

namespace oaktest {

class Catalog {
  public:
    explicit Catalog(const std::string &text, bool unicode_enabled = false) {
        SCH_LOAD_WHERE where{};
        const OAK_RETCODE status = sch_read_database_schema_at(
            &schema_, nullptr, text.c_str(), unicode_enabled ? OAK_TRUE : OAK_FALSE, &where);
        EXPECT_EQ(status, sOKAY) << "line " << where.line << " column " << where.column << " "
                                 << where.path << ": "
                                 << (where.reason != nullptr ? where.reason : "");
    }
    ~Catalog() { sch_destroy(schema_); }
    Catalog(const Catalog &) = delete;
    Catalog &operator=(const Catalog &) = delete;

    SCH_INFO schema() const { return schema_; }
    SCH_TBL_INFO table(const char *name) const {
        OAK_TBL_INDEX ndx = 0;
        SCH_TBL_INFO ti = sch_find_table_by_name(schema_, name, &ndx);
        EXPECT_NE(ti, nullptr) << name;
        return ti;
    }

  private:
    SCH_INFO schema_ = nullptr;
};

/// A catalog with one table "t" in drawer 5: `columns` is the list's text,
/// `count` how many columns it has; drawers, keys and references may be added
/// as further text.
inline std::string one_table(const std::string &columns, int count,
                             const std::string &more_members = "",
                             const std::string &more_drawers = "", int drawers = 6) {
    const std::string n = std::to_string(count), d = std::to_string(drawers);
    return R"({"database": {"catver": 1, "dbver": 1, "name": "test",
        "maxdrawers": )" +
           d + R"(, "nodrawers": )" + d + R"(, "nextdrawer": )" + d + R"(,
        "maxtabs": 2, "notabs": 2, "nexttab": 2,
        "drawers": [{"dwrid": 5, "tabid": "1", "srcid": 1, "type": "table"})" +
           more_drawers + R"(],
        "tables": [{"tabid": 1, "dwrid": 5, "type": "standard", "name": "t",
            "nocols": )" +
           n + R"(, "nextcol": )" + n + R"(, "maxcols": )" + n + R"(,
            "columns": [)" +
           columns + "]" + more_members + "}]}}";
}

} // namespace oaktest

#endif
