// Internal to the schema: the words that a catalog uses for the schema's
// numbers.
//
// Law: each table is searched from front to back and the first match wins, in
// both directions. Words compare without regard to case. Three words stand twice
// in data_type_items, for the sake of the way back: either code gives the word,
// while the word gives the first code.
//
// Read by the catalog reader, from word to number, and by the text getters, from
// number to word.
#ifndef SCHEMA_WORDS_H
#define SCHEMA_WORDS_H

#include <cstddef>
#include <strings.h>

#include "schema_types.h"

namespace oak::schema {

template <class Value>
struct SCHEMA_ITEM {
    const char *name;
    Value value;
};

// OAK_ENC_DEFAULT has no word.
inline constexpr SCHEMA_ITEM<OAK_ENC_TYPE> encryption_items[] = {
    {"none", OAK_ENC_NONE},     {"xor", OAK_ENC_XOR},       {"aes128", OAK_ENC_AES128},
    {"aes192", OAK_ENC_AES192}, {"aes256", OAK_ENC_AES256},
};

inline constexpr SCHEMA_ITEM<OAK_DRAWER_TYPE> drawer_type_items[] = {
    {"table", OAK_DRAWER_TABLE}, {"btree", OAK_DRAWER_BTREE}, {"rtree", OAK_DRAWER_RTREE},
    {"hash", OAK_DRAWER_HASH},   {"ref", OAK_DRAWER_REF},     {"blob", OAK_DRAWER_BLOB},
};

inline constexpr SCHEMA_ITEM<OAK_TABLE_TYPE> table_type_items[] = {
    {"standard", OAK_TABLE_STANDARD},
    {"circular", OAK_TABLE_CIRCULAR},
    {"virtual", OAK_TABLE_VIRTUAL},
    {"temporary", OAK_TABLE_TEMPORARY},
};

inline constexpr SCHEMA_ITEM<OAK_KEY_TYPE> key_type_items[] = {
    {"noval", OAK_KEY_TYPE_NOVAL},
    {"nonunique", OAK_KEY_TYPE_NONUNIQUE},
    {"unique", OAK_KEY_TYPE_UNIQUE},
    {"primary", OAK_KEY_TYPE_PRIMARY},
};

inline constexpr SCHEMA_ITEM<OAK_KEY_METHOD> key_method_items[] = {
    {"noval", OAK_KEY_METHOD_NOVAL}, {"rowid", OAK_KEY_METHOD_ROWID},
    {"btree", OAK_KEY_METHOD_BTREE}, {"hash", OAK_KEY_METHOD_HASH},
    {"avl", OAK_KEY_METHOD_AVL},     {"rtree", OAK_KEY_METHOD_RTREE},
    {"mono", OAK_KEY_METHOD_MONO},   {"virtual", OAK_KEY_METHOD_VIRTUAL},
};

inline constexpr SCHEMA_ITEM<OAK_REF_ACTION> ref_action_items[] = {
    {"noval", OAK_REF_ACTION_NOVAL},
    {"restrict", OAK_REF_ACTION_RESTRICT},
    {"cascade", OAK_REF_ACTION_CASCADE},
    {"set null", OAK_REF_ACTION_SET_NULL},
};

inline constexpr SCHEMA_ITEM<OAK_DIRECTION> direction_items[] = {
    {"asc", OAK_FORWARD},
    {"desc", OAK_REVERSE},
};

// Not used in a catalog.
inline constexpr SCHEMA_ITEM<OAK_ITEM_FORMAT> item_format_items[] = {
    {"compact", OAK_ITEM_FORMAT_COMPACT},
    {"expanded", OAK_ITEM_FORMAT_EXPANDED},
};

inline constexpr SCHEMA_ITEM<OAK_TYPE> data_type_items[] = {
    {"bool", OAK_BOOL},
    {"int8", OAK_INT8},
    {"uint8", OAK_UINT8},
    {"int16", OAK_INT16},
    {"uint16", OAK_UINT16},
    {"int32", OAK_INT32},
    {"uint32", OAK_UINT32},
    {"int64", OAK_INT64},
    {"uint64", OAK_UINT64},
    {"float", OAK_FLOAT},
    {"double", OAK_DOUBLE},
    {"decimal", OAK_BCD},
    {"date", OAK_DATE},
    {"time", OAK_TIME},
    {"timetz", OAK_TIMETZ},
    {"timestamp", OAK_TIMESTAMP},
    {"timestamptz", OAK_TIMESTAMPTZ},
    {"rowid", OAK_ROWID},
    {"uuid", OAK_UUID},
    {"char", OAK_CHAR},
    {"varchar", OAK_VARCHAR},
    {"wchar", OAK_WCHAR},
    {"wchar", OAK_WCHAR_UTF8},
    {"wvarchar", OAK_WVARCHAR},
    {"wvarchar", OAK_WVARCHAR_UTF8},
    {"binary", OAK_BINARY},
    {"varbinary", OAK_VARBINARY},
    {"blob", OAK_BLOB},
    {"clob", OAK_CLOB},
    {"wclob", OAK_WCLOB_UTF8},
    {"wclob", OAK_WCLOB},
};
static_assert(sizeof data_type_items / sizeof data_type_items[0] == 31);

/// The word of a number; null when it has none.
template <class Value, size_t kCount>
constexpr const char *word_of(const SCHEMA_ITEM<Value> (&items)[kCount], Value value) {
    for (const SCHEMA_ITEM<Value> &item : items) {
        if (item.value == value) {
            return item.name;
        }
    }
    return nullptr;
}

/// True for a word of a table, which begins with a lower-case letter, in any case:
/// that letter alone passes over most rows.
inline bool is_word(const char *of_table, const char *word) {
    constexpr char kCaseBit = 'a' ^ 'A';
    return of_table[0] == static_cast<char>(word[0] | kCaseBit) && strcasecmp(of_table, word) == 0;
}

/// The row of a word; null when it is none of the table's.
template <class Value, size_t kCount>
const SCHEMA_ITEM<Value> *item_of(const SCHEMA_ITEM<Value> (&items)[kCount], const char *word) {
    for (const SCHEMA_ITEM<Value> &item : items) {
        if (is_word(item.name, word)) {
            return &item;
        }
    }
    return nullptr;
}

} // namespace oak::schema

#endif
