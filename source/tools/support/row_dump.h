// A packed row taken apart: every element with its place, in both item formats.
//
// Law: the parts come in the order of the bytes and cover them from the first to
// the last; where the row is damaged they end, and the damage is told. Nothing
// is kept: a part is handed out as soon as it was read.
#ifndef ROW_DUMP_H
#define ROW_DUMP_H

#include <cstdint>
#include <functional>
#include <string>

#include "buff.h"
#include "program.h"
#include "schema.h"

namespace tools {

/// Some bytes of a packed row and what they are.
struct RowPart {
    size_t from;       // the first byte
    size_t to;         // behind the last one
    std::string what;  // "group size", or the column's name
    bool is_column;    // `what` is a column
    bool is_null;      // of a column: there is no value
    std::string value; // as text, may be empty
    bool is_text;      // `value` is a text of the row and not a number or the like
};
using RowPartVisitor = std::function<void(const RowPart &)>;

/// Takes a packed row apart. `padding` is how many zero bytes may stand behind
/// it. Not empty: at which byte the row is damaged, and why.
Complaint dump_row(OAK_BUFFER *packed, OAK_ITEM_FORMAT format, SCH_TBL_INFO_C ti, size_t padding,
                   const RowPartVisitor &visit);

} // namespace tools

#endif
