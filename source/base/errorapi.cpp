// Look-ups over the tables of status codes. Rests on rettables; called by the
// error handle, the tools, and everybody who turns a status into text.
#include "errorapi.h"

#include <strings.h>

#include "error_internal.h"

namespace {

constexpr char kUnknownError[] = "<unknown error>";
constexpr char kUnknownSqlstate[] = "RX000";

// Codes fall from row `low` to the end, so that the halves of a bisection are
// the other way round than usual.
const OAK_ERRDEFN *find_in_falling_rows(OAK_RETCODE code, size_t low) {
    size_t end = no_oak_errors;
    while (low < end) {
        const size_t middle = (low + end - 1) >> 1;
        if (oak_errors[middle].code == code) {
            return &oak_errors[middle];
        }
        if (code < oak_errors[middle].code) {
            low = middle + 1;
        } else {
            end = middle;
        }
    }
    return nullptr;
}

} // namespace

// The rows in front need no order among themselves: 29000 stands at the top.
const OAK_ERRDEFN *ErrorLookup(OAK_RETCODE code) {
    const OAK_ERRDEFN *found = nullptr;
    size_t row = 0;
    for (; row < no_oak_errors && oak_errors[row].code >= 0; ++row) {
        if (oak_errors[row].code == code) {
            found = &oak_errors[row];
        }
    }
    return found != nullptr ? found : find_in_falling_rows(code, row);
}

OAK_RETCODE oakErrorCodeDef(OAK_RETCODE retcode, const char **ppErrMsg, const char **ppErrName) {
    const OAK_ERRDEFN *row = ErrorLookup(retcode);
    if (row == nullptr) {
        return eSYS_BADERRCODE;
    }
    store_if_wanted(ppErrMsg, row->descr);
    store_if_wanted(ppErrName, row->name);
    return sOKAY;
}

const char *oakErrorString(OAK_RETCODE retcode) {
    const OAK_ERRDEFN *row = ErrorLookup(retcode);
    return row != nullptr ? row->descr : kUnknownError;
}

const char *oakErrorSqlstate(OAK_RETCODE retcode) {
    const OAK_ERRDEFN *row = ErrorLookup(retcode);
    return row != nullptr ? row->sqlstate : kUnknownSqlstate;
}

OAK_RETCODE oakErrorDetails(OAK_RETCODE retcode, const char **sqlState, const char **errDescr) {
    const OAK_ERRDEFN *row = ErrorLookup(retcode);
    if (row == nullptr) {
        return eNOTFOUND;
    }
    store_if_wanted(sqlState, row->sqlstate);
    store_if_wanted(errDescr, row->descr);
    return sOKAY;
}

OAK_RETCODE oakErrorCodeByName(const char *name, OAK_RETCODE *pRetCode) {
    if (name == nullptr) {
        return eINVNULLARG;
    }
    for (const OAK_ERRDEFN &row : oak_errors) {
        if (strcasecmp(row.name, name) == 0) {
            store_if_wanted(pRetCode, row.code);
            return sOKAY;
        }
    }
    return eSYS_BADERRCODE;
}

OAK_RETCODE oakErrorGroupRange(const char *grname, OAK_RETCODE *pFirst, OAK_RETCODE *pLast) {
    if (grname == nullptr) {
        return eINVNULLARG;
    }
    for (const OAK_ERRGROUP &group : oak_errgroups) {
        if (strcasecmp(group.name, grname) == 0) {
            store_if_wanted(pFirst, group.firstcode);
            store_if_wanted(pLast, group.lastcode);
            return sOKAY;
        }
    }
    return sNOTFOUND;
}
