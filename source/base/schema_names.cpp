// The lookup of tables by name.
//
// It rests on an index that is built at the first call: a temporary B-tree sorts
// the user tables and finds two of one name, then hands them to an array, which
// is searched from then on. The position in that array is what callers keep as a
// table's place by name.
#include "schema.h"

#include "btree.h"
#include "schema_internal.h"

namespace {

using namespace oak::schema;

OAK_COMPARE tbl_name_cmp(const void *data1, const void *data2, void *) {
    const int order = compare_names(static_cast<SCH_TBL_INFO_C>(data1)->name,
                                    static_cast<SCH_TBL_INFO_C>(data2)->name);
    return order < 0 ? OAK_LT : order > 0 ? OAK_GT : OAK_EQ;
}

OAK_RETCODE sort_user_tables(SCH_INFO_C sch, B_BT tree) {
    OAK_RETCODE rc = sOKAY;
    for (SCH_TBL_INFO_C ti = nullptr;
         rc == sOKAY && (ti = sch_iterate_tables(sch, ti, OAK_FORWARD)) != nullptr;) {
        rc = ti->name != nullptr ? b_btAdd(tree, ti) : sOKAY;
    }
    return rc;
}

/// Takes the sorted tables over into the schema's array.
OAK_RETCODE store_sorted_tables(SCH_INFO sch, B_BT tree) {
    const OAK_TBL_INDEX count = static_cast<OAK_TBL_INDEX>(b_btCount(tree));
    const OAK_RETCODE rc = get_records(count, sch->tag, &sch->tablesByName);
    if (rc != sOKAY) {
        return rc;
    }
    for (OAK_TBL_INDEX position = 0; position < count; ++position) {
        SCH_TBL_INFO ti = static_cast<SCH_TBL_INFO>(b_btDeleteFirst(tree));
        ti->nameNdx = position;
        sch->tablesByName[position] = ti;
    }
    sch->tablesByNameUsed = count;
    return sOKAY;
}

OAK_RETCODE build_name_index(SCH_INFO sch) {
    constexpr uint32_t kSlots = 32;
    B_BT tree = nullptr;
    OAK_RETCODE rc = B_BT_CREATE("tablesByName", tbl_name_cmp, kSlots, 0, nullptr, &tree);
    if (rc == sOKAY) {
        rc = sort_user_tables(sch, tree);
    }
    if (rc == sOKAY) {
        rc = store_sorted_tables(sch, tree);
    }
    b_btDestroy(tree);
    return rc;
}

/// Binary search; on a miss `*position` is where the name would stand.
SCH_TBL_INFO search_name_index(SCH_INFO_C sch, const char *name, OAK_TBL_INDEX *position) {
    int32_t low = 0;
    int32_t high = sch->tablesByNameUsed - 1;
    while (low <= high) {
        const int32_t middle = (low + high) / 2;
        const int order = compare_names(name, sch->tablesByName[middle]->name);
        if (order == 0) {
            *position = static_cast<OAK_TBL_INDEX>(middle);
            return sch->tablesByName[middle];
        }
        if (order < 0) {
            high = middle - 1;
        } else {
            low = middle + 1;
        }
    }
    *position = static_cast<OAK_TBL_INDEX>(low);
    return nullptr;
}

} // namespace

SCH_TBL_INFO sch_find_table_by_name(SCH_INFO_C sch, const char *name, OAK_TBL_INDEX *nameNdx) {
    constexpr OAK_TBL_INDEX kSystemTableAndOne = 2;
    if (sch == nullptr || name == nullptr || sch->num_tables < kSystemTableAndOne) {
        return nullptr;
    }
    if (sch->tablesByName == nullptr && build_name_index(own_handle(sch)) != sOKAY) {
        return nullptr;
    }
    OAK_TBL_INDEX position = 0;
    SCH_TBL_INFO ti = search_name_index(sch, name, &position);
    if (nameNdx != nullptr) {
        *nameNdx = position;
    }
    return ti;
}
