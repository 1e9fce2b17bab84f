// The tables of status codes and groups as constant data, made from the one
// list of codes, with the proof at compile time that the look-ups may rely on
// their order. Rests on the list alone; errorapi.cpp and error.cpp read them.
#include "rettables.h"

#define OAK_ERROR_ROW(name, code, sqlstate, descr) {#name, name, sqlstate, descr},
constexpr OAK_ERRDEFN oak_errors[OAK_ERROR_ROWS] = {OAK_RETCODE_LIST(OAK_ERROR_ROW)};
#undef OAK_ERROR_ROW

constexpr size_t no_oak_errors = OAK_ERROR_ROWS;

constexpr OAK_ERRGROUP oak_errgroups[OAK_ERRGROUP_ROWS] = {
    {"status oakc", sQA_OAKC_SUCCESS_WITH_INFO, sQA_OAKC_SUCCESS_WITH_INFO},
    {"status", sNOTFOUND, sBASE_QUEUE_EMPTY},
    {"ok", sOKAY, sOKAY},
    {"fail", eFAIL, eFAIL},
    {"general", eNOMEMORY, eDROPTRIGCOL},
    {"base", eBASE_INVDATE, eBASE_QUEUE_CLOSED},
    {"core", eDEFUNCT, eDROPPED},
    {"tfs", eTFS_INVHANDLE, eTFS_ENCNOTINIT},
    {"osl", eOSL_FAILURE, eOSL_DEADLOCK},
    {"ddl", eDDL_SYNTAX, eDDL_TBD},
    {"sql", eSQL_SQLERROR, eSQL_SYSTEM},
    {"mirroring", eMIR_SYNC_GENERROR, eMIR_INVLOGFILE},
    {"oakc", eOAKC_BADCTYPE, eOAKC_OPTDEPRECATED},
    {"tx", eTX_DISABLED, eTX_GENERROR},
    {"system", eSYS_BADERRCODE, eSYS_NOSQLSTATE},
    {"http", eHTTP_BADREQUEST, eHTTP_BADUSERID},
    {"q/a", eQA_ILLEGAL_TFS_COMBINATION, eQA_OAKC_ERROR},
    {"embed", eEMBED_FILE_NOT_FOUND, eEMBED_CONTENT_MISMATCH},
};

constexpr size_t no_oak_errgroups = OAK_ERRGROUP_ROWS;

namespace {

// ---- What the look-ups rely on ---------------------------------------------

#define OAK_ERROR_COUNT(name, code, sqlstate, descr) +1
static_assert(0 OAK_RETCODE_LIST(OAK_ERROR_COUNT) == OAK_ERROR_ROWS, "a row for each code");
#undef OAK_ERROR_COUNT

constexpr size_t kNonNegativeRows = 43;

constexpr size_t text_length(const char *text) {
    size_t length = 0;
    while (text[length] != '\0') {
        ++length;
    }
    return length;
}

// The code's sign shows in the first letter of its name, a SQLSTATE has five
// characters, and a description is one line.
constexpr bool row_is_well_formed(const OAK_ERRDEFN &row) {
    if (row.name[0] != (row.code < 0 ? 'e' : 's') || text_length(row.descr) == 0) {
        return false;
    }
    for (const char *ch = row.descr; *ch != '\0'; ++ch) {
        if (*ch < ' ' || *ch > '~') {
            return false;
        }
    }
    return row.sqlstate == nullptr || text_length(row.sqlstate) == 5;
}

constexpr bool rows_are_well_formed() {
    for (const OAK_ERRDEFN &row : oak_errors) {
        if (!row_is_well_formed(row)) {
            return false;
        }
    }
    return true;
}
static_assert(rows_are_well_formed());

// The codes that are not negative stand first; behind them the codes fall.
constexpr bool rows_are_in_order() {
    for (size_t i = 0; i < OAK_ERROR_ROWS; ++i) {
        if ((oak_errors[i].code >= 0) != (i < kNonNegativeRows)) {
            return false;
        }
        if (i > kNonNegativeRows && oak_errors[i].code >= oak_errors[i - 1].code) {
            return false;
        }
    }
    return true;
}
static_assert(rows_are_in_order());

// Returns the row behind the group's rows, which begin at `row` and hold every
// code from the first to the last; 0 when they do not.
constexpr size_t row_behind_group(const OAK_ERRGROUP &group, size_t row) {
    const int32_t step = group.firstcode < 0 ? -1 : 1;
    for (int32_t code = group.firstcode; code != group.lastcode + step; code += step) {
        if (row >= OAK_ERROR_ROWS || oak_errors[row].code != code) {
            return 0;
        }
        ++row;
    }
    return row;
}

constexpr bool groups_cover_the_rows() {
    size_t row = 0;
    for (const OAK_ERRGROUP &group : oak_errgroups) {
        row = row_behind_group(group, row);
        if (row == 0) {
            return false;
        }
    }
    return row == OAK_ERROR_ROWS;
}
static_assert(groups_cover_the_rows(), "groups are dense and stand in the order of the rows");

} // namespace
