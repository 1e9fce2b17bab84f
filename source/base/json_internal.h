// Internal to the JSON reader and the catalog reader above it: the reader's
// record. The catalog reader takes line and column of a refusal from hLex.
#ifndef JSON_INTERNAL_H
#define JSON_INTERNAL_H

#include "json.h"
#include "lex.h"

// The open containers, the innermost last.
struct OAK_JSON_STACK {
    OAK_JSON_VALTYPE *array;
    size_t pos;  // depth
    size_t size; // entries that the array has room for
};

struct _OAK_JSON_DATA {
    OSL_MEMTAG tag; // the reader's own; the lexer and all texts lie in it
    B_LEX hLex;
    OAK_JSON_STACK stack;
};

#endif
