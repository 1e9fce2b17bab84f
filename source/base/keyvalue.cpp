// Key-value strings: a parser over the lexer, and typed reads of what it made.
//
// A parsed object is a B-tree of records by key. The object's record, the
// records of its keys and all their texts lie in the object's own tag; the
// tree's nodes lie in the tree's. While a string is parsed, the element at hand
// grows in one buffer (Text), so that a long run of tokens costs no more than its
// length.
//
// Rests on the lexer, the B-tree and the platform's numbers; serves the
// configuration keys and the document root.
#include "keyvalue.h"

#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>
#include <string_view>

#include <strings.h>

#include "btree.h"
#include "lex.h"
#include "lex_internal.h"

// ---- Types -----------------------------------------------------------------

struct B_KV_ELEM {
    OAK_BOOL_T needs_quotes; // it came from a quoted text
    const char *data;
};

struct B_KV_S {
    const char *key;
    uint32_t num_elems; // at least 1
    const B_KV_ELEM *elems;
};
using B_KV = B_KV_S;

struct b_keyvalue {
    OSL_MEMTAG tag;
    B_BT bt; // of B_KV, by key
    B_KEYVALUE_CMP cmpfcn;
};

namespace {

// The element being built: no text at all until the first piece arrives.
struct Text {
    char *bytes = nullptr;
    size_t length = 0; // without the terminator
    size_t capacity = 0;
};

// A list of elements being built.
struct Elements {
    B_KV_ELEM *array = nullptr;
    size_t count = 0;
    size_t capacity = 0;
};

struct Parser {
    OSL_MEMTAG tag;
    B_LEX lex;
    B_BT bt;
};

// ---- Constant tables -------------------------------------------------------

constexpr const char *keyvalue_TrueValues[] = {"yes", "y", "on", "true", "1"};
constexpr const char *keyvalue_FalseValues[] = {"n", "no", "off", "false", "0"};

// Characters that an element takes as they are.
constexpr std::string_view kElementChars = "!#%&()*/<=>?@[\\]^{}~|`";

// The letters behind a number, and how many zeros each stands for.
struct Suffix {
    char letter;
    uint8_t zeros;
};
constexpr Suffix kSuffixes[] = {{'k', 3}, {'m', 6}, {'g', 9}, {'t', 12}, {'p', 15}};
constexpr char kZeros[] = "000000000000000";

constexpr uint32_t kTreeSlots = 32;
constexpr size_t kListStep = 20;
constexpr size_t kTextStep = 16;
constexpr size_t kBooleanSize = 10;
// The longest double in plain digits: 309 before the point, 6 behind it.
constexpr size_t kNumberSize = 320;

// ---- Order of keys ---------------------------------------------------------

OAK_COMPARE keyvalueCompare(const void *left, const void *right, void *ctx) {
    const auto cmpfcn = static_cast<const b_keyvalue *>(ctx)->cmpfcn;
    const int order =
        cmpfcn(static_cast<const B_KV *>(left)->key, static_cast<const B_KV *>(right)->key);
    return order < 0 ? OAK_LT : order > 0 ? OAK_GT : OAK_EQ;
}

// ---- Building an element -----------------------------------------------------

OAK_RETCODE append(Text *text, std::string_view piece, OSL_MEMTAG tag) {
    const size_t needed = text->length + piece.size() + 1;
    if (needed > text->capacity) {
        const size_t wanted = (needed + kTextStep - 1) / kTextStep * kTextStep;
        void *grown = nullptr;
        const OAK_RETCODE rc =
            osl_extendMem_rc(text->bytes, wanted, tag, OSL_MEM_PLAIN, wanted - text->capacity,
                             nullptr, &grown, __FILE__, __LINE__);
        if (rc != sOKAY) {
            return rc;
        }
        text->bytes = static_cast<char *>(grown);
        text->capacity = wanted;
    }
    std::memcpy(text->bytes + text->length, piece.data(), piece.size());
    text->length += piece.size();
    text->bytes[text->length] = 0;
    return sOKAY;
}

OAK_RETCODE replace(Text *text, std::string_view piece, OSL_MEMTAG tag) {
    text->length = 0;
    return append(text, piece, tag);
}

// Replaces the text by a number, behind `sign`: an integer in plain digits, a
// double with six decimals, whatever the locale.
OAK_RETCODE replace_by_number(Text *text, std::string_view sign, const B_TOKEN &token,
                              OSL_MEMTAG tag) {
    char digits[kNumberSize];
    char *end = digits + sizeof digits;
    const auto printed = token.type == tokINTEGER
                             ? std::to_chars(digits, end, token.v.iv)
                             : std::to_chars(digits, end, token.v.dv, std::chars_format::fixed, 6);
    const OAK_RETCODE rc = replace(text, sign, tag);
    const std::string_view number(digits, static_cast<size_t>(printed.ptr - digits));
    return rc == sOKAY ? append(text, number, tag) : rc;
}

// ---- Parsing ---------------------------------------------------------------
// Whatever a failure leaves behind lies in the object's tag and goes with it.

struct Element {
    Text text;
    bool afterWord = false; // the last word has not been followed by a sign yet
    OAK_BOOL_T needsQuotes = OAK_FALSE;
};

// The status for a token that cannot stand where it stands.
OAK_RETCODE refusal(const Parser &parser) {
    return lex_refusal(parser.lex, eINVKEYVALUE);
}

OAK_RETCODE take_word(const Parser &parser, const B_TOKEN &token, Element *element) {
    element->afterWord = true;
    const OAK_RETCODE rc = append(&element->text, token.v.id, parser.tag);
    OSL_FREE(const_cast<char *>(token.v.id), parser.tag);
    return rc;
}

OAK_RETCODE take_string(const Parser &parser, B_TOKEN *token, Element *element) {
    element->needsQuotes = OAK_TRUE;
    const OAK_RETCODE rc = replace(&element->text, token->v.str, parser.tag);
    b_lexTokenFree(parser.lex, token);
    return rc;
}

// A sign belongs to the word before it, or to a number that must follow and of
// which a plus leaves no trace.
OAK_RETCODE take_sign(const Parser &parser, B_TOKTYPE sign, Element *element) {
    if (element->afterWord) {
        element->afterWord = false;
        return append(&element->text, sign == tokPLUS ? "+" : "-", parser.tag);
    }
    B_TOKEN token;
    const B_TOKTYPE type = b_lexGet(parser.lex, &token);
    if (type != tokINTEGER && type != tokDOUBLE) {
        return refusal(parser);
    }
    return replace_by_number(&element->text, sign == tokPLUS ? "" : "-", token, parser.tag);
}

OAK_RETCODE take_char(const Parser &parser, B_TOKTYPE type, Element *element) {
    const auto ch = static_cast<char>(type);
    if (type <= 0 || type > '~' || kElementChars.find(ch) == std::string_view::npos) {
        return refusal(parser);
    }
    return append(&element->text, {&ch, 1}, parser.tag);
}

// What one token does to the element.
OAK_RETCODE take_token(const Parser &parser, B_TOKEN *token, Element *element) {
    switch (token->type) {
        case tokIDENTIFIER:
            return take_word(parser, *token, element);
        case tokSTRING:
            return take_string(parser, token, element);
        case tokINTEGER:
        case tokDOUBLE:
            return replace_by_number(&element->text, "", *token, parser.tag);
        case tokPLUS:
        case tokMINUS:
            return take_sign(parser, token->type, element);
        case tokPERIOD:
            return append(&element->text, ".", parser.tag);
        default:
            return take_char(parser, token->type, element);
    }
}

// Reads an element and puts back the ',', ';' or end that ends it. One without
// any token is empty before ';' and the end; before ',' it is eNOMEMORY: settled
// behaviour, callers know that word.
OAK_RETCODE read_element(const Parser &parser, B_KV_ELEM *elem) {
    Element element;
    B_TOKEN token;
    while (b_lexGet(parser.lex, &token) != tokCOMMA && token.type != tokSEMI &&
           token.type != tokEOS) {
        if (const OAK_RETCODE rc = take_token(parser, &token, &element); rc != sOKAY) {
            return rc;
        }
    }
    b_lexPutback(parser.lex, &token);
    if (element.text.bytes == nullptr) {
        const OAK_RETCODE rc =
            token.type != tokCOMMA ? append(&element.text, "", parser.tag) : eNOMEMORY;
        if (rc != sOKAY) {
            return rc;
        }
    }
    *elem = {element.needsQuotes, element.text.bytes};
    return sOKAY;
}

OAK_RETCODE reserve_element(Elements *list, OSL_MEMTAG tag) {
    if (list->count < list->capacity) {
        return sOKAY;
    }
    void *grown = nullptr;
    const OAK_RETCODE rc = osl_extendMem_rc(
        list->array, (list->capacity + kListStep) * sizeof *list->array, tag, OSL_MEM_PLAIN,
        kListStep * sizeof *list->array, nullptr, &grown, __FILE__, __LINE__);
    if (rc == sOKAY) {
        list->array = static_cast<B_KV_ELEM *>(grown);
        list->capacity += kListStep;
    }
    return rc;
}

// Reads elements as long as ',' follows. The last of several must not be empty.
OAK_RETCODE read_list(const Parser &parser, Elements *list) {
    B_TOKEN token;
    do {
        OAK_RETCODE rc = reserve_element(list, parser.tag);
        if (rc == sOKAY) {
            rc = read_element(parser, &list->array[list->count]);
        }
        if (rc != sOKAY) {
            return rc;
        }
        list->count++;
    } while (b_lexGet(parser.lex, &token) == tokCOMMA);
    b_lexPutback(parser.lex, &token);
    return list->count > 1 && list->array[list->count - 1].data[0] == 0 ? eINVKEYVALUE : sOKAY;
}

void free_record(B_KV *record, OSL_MEMTAG tag) {
    for (uint32_t i = 0; i < record->num_elems; ++i) {
        OSL_FREE(const_cast<char *>(record->elems[i].data), tag);
    }
    OSL_FREE(const_cast<B_KV_ELEM *>(record->elems), tag);
    OSL_FREE(const_cast<char *>(record->key), tag);
    OSL_FREE(record, tag);
}

// Adds a record in the place of an earlier one of the same key.
OAK_RETCODE add_record(const Parser &parser, const char *key, const Elements &list) {
    const B_KV record = {key, static_cast<uint32_t>(list.count), list.array};
    auto *stored = static_cast<B_KV *>(OSL_GET_COPY(&record, sizeof record, parser.tag));
    if (stored == nullptr) {
        return eNOMEMORY;
    }
    if (auto *earlier = static_cast<B_KV *>(b_btDelete(parser.bt, stored)); earlier != nullptr) {
        free_record(earlier, parser.tag);
    }
    return b_btAdd(parser.bt, stored);
}

// Reads a pair that begins with `first`; the key keeps the token's text.
OAK_RETCODE read_pair(const Parser &parser, const B_TOKEN &first) {
    if (first.type != tokIDENTIFIER && first.type != tokSTRING) {
        return refusal(parser);
    }
    B_TOKEN token;
    if (b_lexGet(parser.lex, &token) != tokEQ) {
        return refusal(parser);
    }
    Elements list;
    const OAK_RETCODE rc = read_list(parser, &list);
    const char *key = first.type == tokIDENTIFIER ? first.v.id : first.v.str;
    return rc == sOKAY ? add_record(parser, key, list) : rc;
}

OAK_RETCODE read_pairs(const Parser &parser) {
    B_TOKEN token;
    OAK_RETCODE rc = sOKAY;
    while (rc == sOKAY && b_lexGet(parser.lex, &token) != tokEOS) {
        if (token.type != tokSEMI) {
            rc = read_pair(parser, token);
        }
    }
    return rc;
}

// The lexer's name is what turns comments off.
OAK_RETCODE parse(const char *str, const b_keyvalue &kv) {
    const B_LEX lex = b_lexOpen("key/value", OAK_FALSE, OAK_FALSE, kv.tag);
    if (lex == nullptr) {
        return eNOMEMORY;
    }
    b_lexInit(lex, str, nullptr, 1, kv.tag);
    const OAK_RETCODE rc = read_pairs({kv.tag, lex, kv.bt});
    b_lexClose(lex);
    return rc;
}

OAK_RETCODE create_object(OAK_BOOL_T use_case, b_keyvalue **pObject) {
    const OSL_MEMTAG tag = osl_createTagEx(nullptr, LIST_ALLOCATOR, 0, 0, 0, __FILE__, __LINE__);
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    auto *kv = static_cast<b_keyvalue *>(OSL_GET_ZERO(sizeof(b_keyvalue), tag));
    OAK_RETCODE rc = kv != nullptr ? sOKAY : eNOMEMORY;
    if (rc == sOKAY) {
        kv->tag = tag;
        kv->cmpfcn = use_case != OAK_FALSE ? B_KEYVALUE_CMP{std::strcmp} : strcasecmp;
        rc = B_BT_CREATE("key/value btree", keyvalueCompare, kTreeSlots, 0, kv, &kv->bt);
    }
    if (rc != sOKAY) {
        OSL_FREE_TAG(tag);
        return rc;
    }
    *pObject = kv;
    return sOKAY;
}

void destroy_object(B_KEYVALUE kv) {
    const OSL_MEMTAG tag = kv->tag;
    b_btDestroy(kv->bt);
    OSL_FREE_TAG(tag);
}

// ---- Reading values --------------------------------------------------------

OAK_RETCODE find_record(B_KEYVALUE kv, const char *key, const B_KV **record) {
    if (kv == nullptr || key == nullptr) {
        return eINVNULLARG;
    }
    const B_KV wanted = {key, 0, nullptr};
    *record = static_cast<const B_KV *>(b_btFind(kv->bt, &wanted));
    return *record != nullptr ? sOKAY : sNOTFOUND;
}

// The text of a key that has one value.
OAK_RETCODE find_single(B_KEYVALUE kv, const char *key, const char **text) {
    const B_KV *record = nullptr;
    if (const OAK_RETCODE rc = find_record(kv, key, &record); rc != sOKAY) {
        return rc;
    }
    if (record->num_elems > 1) {
        return eVALUEISLIST;
    }
    *text = record->elems[0].data;
    return sOKAY;
}

template <size_t count>
bool is_one_of(const char *word, const char *const (&words)[count]) {
    for (const char *candidate : words) {
        if (strcasecmp(word, candidate) == 0) {
            return true;
        }
    }
    return false;
}

// The zeros that the character stands for behind a number; null for none.
const char *suffix_zeros(char ch) {
    for (const Suffix &suffix : kSuffixes) {
        if (ch == suffix.letter || ch == suffix.letter - 'a' + 'A') {
            return kZeros + (std::size(kZeros) - 1 - suffix.zeros);
        }
    }
    return nullptr;
}

// A copy of the text in which a size suffix has become zeros. The first suffix
// letter of the first line counts and must end the line.
OAK_RETCODE parseString(const char *str, char **newStr) {
    const size_t length = std::strlen(str);
    auto *copy = static_cast<char *>(OSL_GET(length + std::size(kZeros), OSL_TAG_PROCESS));
    if (copy == nullptr) {
        return eNOMEMORY;
    }
    std::memcpy(copy, str, length + 1);
    char *at = copy;
    while (*at != 0 && *at != '\n' && suffix_zeros(*at) == nullptr) {
        at++;
    }
    if (const char *zeros = suffix_zeros(*at); zeros != nullptr) {
        if (at[1] != 0 && at[1] != '\n') {
            OSL_FREE(copy, OSL_TAG_PROCESS);
            return eRANGE;
        }
        std::memcpy(at, zeros, std::strlen(zeros) + 1);
    }
    *newStr = copy;
    return sOKAY;
}

template <typename Wide>
OAK_RETCODE get_wide(B_KEYVALUE kv, const char *key, Wide *value,
                     OAK_RETCODE (*convert)(const char *, Wide *)) {
    const char *text = nullptr;
    const OAK_RETCODE found = find_single(kv, key, &text);
    if (found != sOKAY || value == nullptr) {
        return found;
    }
    if (*text == 0) {
        return sKVNOVALUE;
    }
    char *number = nullptr;
    OAK_RETCODE rc = parseString(text, &number);
    if (rc == sOKAY) {
        rc = convert(number, value);
        OSL_FREE(number, OSL_TAG_PROCESS);
    }
    return rc;
}

// Reads through the 64-bit form of the same signedness.
template <typename Narrow, typename Wide>
OAK_RETCODE get_narrow(B_KEYVALUE kv, const char *key, Narrow *value,
                       OAK_RETCODE (*convert)(const char *, Wide *)) {
    Wide wide = 0;
    if (const OAK_RETCODE rc = get_wide(kv, key, &wide, convert); rc != sOKAY) {
        return rc;
    }
    if (wide < std::numeric_limits<Narrow>::min() || wide > std::numeric_limits<Narrow>::max()) {
        return eRANGE;
    }
    if (value != nullptr) {
        *value = static_cast<Narrow>(wide);
    }
    return sOKAY;
}

void free_texts(char **texts, uint32_t count, OSL_MEMTAG tag) {
    for (uint32_t i = 0; i < count; ++i) {
        OSL_FREE(texts[i], tag);
    }
    OSL_FREE(texts, tag);
}

OAK_RETCODE copy_values(const B_KV &record, OSL_MEMTAG tag, char ***pvalues) {
    auto **texts = static_cast<char **>(OSL_GET(record.num_elems * sizeof(char *), tag));
    if (texts == nullptr) {
        return eNOMEMORY;
    }
    for (uint32_t i = 0; i < record.num_elems; ++i) {
        texts[i] = static_cast<char *>(OSL_GET_STRING(record.elems[i].data, tag));
        if (texts[i] == nullptr) {
            free_texts(texts, i, tag);
            return eNOMEMORY;
        }
    }
    *pvalues = texts;
    return sOKAY;
}

// Walks the keys in order. The place is found again after each visit, so that a
// visitor may look other keys up.
template <typename Visit>
OAK_RETCODE walk(B_KEYVALUE kv, Visit visit) {
    const auto *record = static_cast<const B_KV *>(b_btFirst(kv->bt));
    while (record != nullptr) {
        if (const OAK_RETCODE rc = visit(record->key); rc != sOKAY) {
            return rc;
        }
        b_btFind(kv->bt, record);
        record = static_cast<const B_KV *>(b_btNext(kv->bt));
    }
    return sOKAY;
}

} // namespace

// ---- Exported functions ----------------------------------------------------

OAK_RETCODE b_keyvalueCreate(const char *str, OAK_BOOL_T use_case, B_KEYVALUE *pKV) {
    if (pKV == nullptr) {
        return eINVNULLARG;
    }
    b_keyvalue *kv = nullptr;
    OAK_RETCODE rc = create_object(use_case, &kv);
    if (rc != sOKAY) {
        return rc;
    }
    if (str != nullptr) {
        rc = parse(str, *kv);
    }
    if (rc != sOKAY) {
        destroy_object(kv);
        return rc;
    }
    *pKV = kv;
    return sOKAY;
}

OAK_RETCODE b_keyvalueDestroy(B_KEYVALUE kv) {
    if (kv != nullptr) {
        destroy_object(kv);
    }
    return sOKAY;
}

OAK_RETCODE b_keyvalueGetValue(B_KEYVALUE kv, const char *key, char *value, size_t value_len) {
    const char *text = nullptr;
    if (const OAK_RETCODE rc = find_single(kv, key, &text); rc != sOKAY) {
        return rc;
    }
    const size_t length = std::strlen(text);
    if (value != nullptr && value_len != 0) {
        const bool fits = value_len > length;
        const size_t copied = fits ? length : value_len - 1;
        std::memcpy(value, text, copied);
        value[copied] = 0;
        if (!fits) {
            return sTRUNCATE;
        }
    }
    return value == nullptr || length == 0 ? sKVNOVALUE : sOKAY;
}

OAK_RETCODE b_keyvalueGetValueString(B_KEYVALUE kv, const char *key, OSL_MEMTAG tag,
                                     const char **value) {
    const char *text = nullptr;
    if (const OAK_RETCODE rc = find_single(kv, key, &text); rc != sOKAY) {
        return rc;
    }
    const bool empty = *text == 0;
    if (value != nullptr) {
        const auto *copy = empty ? nullptr : static_cast<const char *>(OSL_GET_STRING(text, tag));
        if (!empty && copy == nullptr) {
            return eNOMEMORY;
        }
        *value = copy;
    }
    return empty ? sKVNOVALUE : sOKAY;
}

OAK_RETCODE b_keyvalueGetValueBoolean(B_KEYVALUE kv, const char *key, OAK_BOOL_T *value) {
    char word[kBooleanSize];
    const OAK_RETCODE rc = b_keyvalueGetValue(kv, key, word, sizeof word);
    if (rc != sOKAY && rc != sTRUNCATE) {
        return rc;
    }
    return value != nullptr ? b_keyvalueGetBooleanFromString(word, value) : sOKAY;
}

OAK_RETCODE b_keyvalueGetBooleanFromString(const char *str, OAK_BOOL_T *pval) {
    if (str == nullptr) {
        return eINVNULLARG;
    }
    const bool isTrue = is_one_of(str, keyvalue_TrueValues);
    if (!isTrue && !is_one_of(str, keyvalue_FalseValues)) {
        return eINVOPTIONVALUE;
    }
    if (pval != nullptr) {
        *pval = isTrue ? OAK_TRUE : OAK_FALSE;
    }
    return sOKAY;
}

OAK_RETCODE b_keyvalueGetInt64Value(B_KEYVALUE kv, const char *key, int64_t *value) {
    return get_wide(kv, key, value, osl_atoi64);
}

OAK_RETCODE b_keyvalueGetIntValue(B_KEYVALUE kv, const char *key, int32_t *value) {
    return get_narrow(kv, key, value, osl_atoi64);
}

OAK_RETCODE b_keyvalueGetInt16Value(B_KEYVALUE kv, const char *key, int16_t *value) {
    return get_narrow(kv, key, value, osl_atoi64);
}

OAK_RETCODE b_keyvalueGetUInt64Value(B_KEYVALUE kv, const char *key, uint64_t *value) {
    return get_wide(kv, key, value, osl_atoui64);
}

OAK_RETCODE b_keyvalueGetUIntValue(B_KEYVALUE kv, const char *key, uint32_t *value) {
    return get_narrow(kv, key, value, osl_atoui64);
}

OAK_RETCODE b_keyvalueGetUInt16Value(B_KEYVALUE kv, const char *key, uint16_t *value) {
    return get_narrow(kv, key, value, osl_atoui64);
}

OAK_RETCODE b_keyvalueGetValueList(B_KEYVALUE kv, const char *key, uint32_t *pnum_values,
                                   OSL_MEMTAG tag, char ***pvalues) {
    if (pnum_values == nullptr) {
        return eINVNULLARG;
    }
    const B_KV *record = nullptr;
    OAK_RETCODE rc = find_record(kv, key, &record);
    if (rc == sOKAY && pvalues != nullptr) {
        rc = copy_values(*record, tag, pvalues);
    }
    if (rc == sOKAY) {
        *pnum_values = record->num_elems;
    }
    return rc;
}

OAK_RETCODE b_keyvalueIterateKeys(B_KEYVALUE kv, const void *ctx, B_KEYVALUE_ITERATE_KEYS fcn) {
    if (kv == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    return walk(kv, [=](const char *key) { return fcn(ctx, kv->cmpfcn, key); });
}

OAK_RETCODE b_keyvalueIterate(B_KEYVALUE kv, void *ctx, B_KEYVALUE_ITERATE fcn) {
    if (kv == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    return walk(kv, [=](const char *key) { return fcn(ctx, key); });
}
