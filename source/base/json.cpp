// The pull reader for JSON.
//
// One token of the lexer decides what comes next; the only memory of what was
// read is a stack of the open containers, so nesting costs one entry a level and
// no recursion, and the text itself bounds what is allocated. The texts of
// tokens come from the lexer as copies under the reader's tag already, and go to
// the caller as they are.
//
// Rests on the lexer; serves the catalog reader.
#include "json.h"

#include <strings.h>

#include "base_internal.h"
#include "json_internal.h"
#include "lex_internal.h"

namespace {

constexpr size_t kStackStep = 10;

// ---- The stack -------------------------------------------------------------

OAK_RETCODE push(OAK_JSON_OBJ json, OAK_JSON_VALTYPE container) {
    OAK_JSON_STACK &stack = json->stack;
    if (stack.pos == stack.size) {
        void *grown = nullptr;
        const OAK_RETCODE rc = osl_extendMem_rc(
            stack.array, (stack.size + kStackStep) * sizeof *stack.array, json->tag, OSL_MEM_PLAIN,
            kStackStep * sizeof *stack.array, nullptr, &grown, __FILE__, __LINE__);
        if (rc != sOKAY) {
            return rc;
        }
        stack.array = static_cast<OAK_JSON_VALTYPE *>(grown);
        stack.size += kStackStep;
    }
    stack.array[stack.pos++] = container;
    return sOKAY;
}

bool is_inside(OAK_JSON_OBJ_C json, OAK_JSON_VALTYPE container) {
    const OAK_JSON_STACK &stack = json->stack;
    return stack.pos != 0 && stack.array[stack.pos - 1] == container;
}

// ---- Tokens ----------------------------------------------------------------

// The status for a token that cannot stand where it stands.
OAK_RETCODE refusal(OAK_JSON_OBJ_C json) {
    const OAK_RETCODE rc = lex_refusal(json->hLex, eSYNTAX);
    return rc == eSYNTAX ? OAK_DAMAGED(rc) : rc;
}

// The token's text: words and strings, folded and resolved by the lexer.
const char *text_of(const B_TOKEN &token) {
    return token.type == tokIDENTIFIER ? token.v.id : token.v.str;
}

bool has_text(const B_TOKEN &token) {
    return token.type == tokIDENTIFIER || token.type == tokSTRING;
}

// Frees whatever the token holds; most hold nothing.
void release(OAK_JSON_OBJ_C json, B_TOKEN *token) {
    if (token->type == tokIDENTIFIER) {
        OSL_FREE(const_cast<char *>(token->v.id), json->tag);
    } else if (token->type == tokDECIMAL) {
        OSL_FREE(const_cast<OAK_BCD_T *>(token->v.bcd), json->tag);
    } else if (token->type == tokSTRING || token->type == tokBINARY) {
        b_lexTokenFree(json->hLex, token);
    }
    token->type = tokEOS;
}

// Hands the token's text over to `*place`, or frees it when there is none.
void hand_over_text(OAK_JSON_OBJ json, B_TOKEN *token, const char **place) {
    if (place == nullptr) {
        release(json, token);
        return;
    }
    *place = text_of(*token);
    token->type = tokEOS;
}

// ---- Values ----------------------------------------------------------------

// An integer behind a sign. A real number cannot have one. Integers wrap.
OAK_RETCODE read_signed(OAK_JSON_OBJ json, bool negative, OAK_JSON_VAL *value) {
    B_TOKEN token;
    if (b_lexGet(json->hLex, &token) != tokINTEGER) {
        const OAK_RETCODE rc = refusal(json);
        release(json, &token);
        return rc;
    }
    value->type = jvNUMBER;
    value->v.num = static_cast<int64_t>(negative ? 0 - token.v.iv : token.v.iv);
    return sOKAY;
}

OAK_RETCODE open_container(OAK_JSON_OBJ json, OAK_JSON_VALTYPE container, OAK_JSON_VAL *value) {
    value->type = container;
    return push(json, container);
}

OAK_RETCODE close_array(OAK_JSON_OBJ json, OAK_JSON_VAL *value) {
    if (!is_inside(json, jvARRAY)) {
        return refusal(json);
    }
    json->stack.pos--;
    value->type = jvEND;
    return sOKAY;
}

// A word: three have a meaning, any other is a string.
void read_word(const char *word, OAK_JSON_VAL *value) {
    if (strcasecmp(word, "true") == 0 || strcasecmp(word, "false") == 0) {
        value->type = jvBOOLEAN;
        value->v.flag = strcasecmp(word, "true") == 0 ? OAK_TRUE : OAK_FALSE;
    } else {
        value->type = strcasecmp(word, "null") == 0 ? jvNULL : jvSTRING;
    }
}

// What the token means as a value. A string stays in the token.
OAK_RETCODE read_value(OAK_JSON_OBJ json, const B_TOKEN &token, OAK_JSON_VAL *value) {
    switch (token.type) {
        case tokPLUS:
        case tokMINUS:
            return read_signed(json, token.type == tokMINUS, value);
        case tokLBRACK:
            return open_container(json, jvARRAY, value);
        case tokRBRACK:
            return close_array(json, value);
        case tokLBRACE:
            return open_container(json, jvOBJECT, value);
        case tokIDENTIFIER:
            read_word(token.v.id, value);
            return sOKAY;
        case tokINTEGER:
            value->type = jvNUMBER;
            value->v.num = static_cast<int64_t>(token.v.iv);
            return sOKAY;
        case tokDOUBLE:
            value->type = jvDOUBLE;
            value->v.dbl = token.v.dv;
            return sOKAY;
        case tokSTRING:
            value->type = jvSTRING;
            return sOKAY;
        default:
            return refusal(json);
    }
}

// One value, with one comma before it in an array.
OAK_RETCODE next_value(OAK_JSON_OBJ json, OAK_JSON_VALTYPE *type, OAK_JSON_VAL *val) {
    B_TOKEN token;
    if (b_lexGet(json->hLex, &token) == tokCOMMA && is_inside(json, jvARRAY)) {
        b_lexGet(json->hLex, &token);
    }
    OAK_JSON_VAL value{};
    const OAK_RETCODE rc = read_value(json, token, &value);
    if (rc == sOKAY && value.type == jvSTRING && val != nullptr) {
        hand_over_text(json, &token, &value.v.str);
    }
    release(json, &token);
    if (rc != sOKAY) {
        return rc;
    }
    if (val != nullptr) {
        *val = value;
    }
    if (type != nullptr) {
        *type = value.type;
    }
    return sOKAY;
}

// ---- Pairs -----------------------------------------------------------------

void close_object(OAK_JSON_OBJ json, OAK_JSON_VALTYPE *type, OAK_JSON_PAIR *pair) {
    json->stack.pos--;
    if (pair != nullptr) {
        pair->value.type = jvEND;
    }
    if (type != nullptr) {
        *type = jvEND;
    }
}

// The name in `token`, and the colon behind it.
OAK_RETCODE read_name(OAK_JSON_OBJ json, B_TOKEN *token, const char **name) {
    if (!has_text(*token)) {
        const OAK_RETCODE rc = refusal(json);
        release(json, token);
        return rc;
    }
    B_TOKEN colon;
    if (b_lexGet(json->hLex, &colon) != tokCOLON) {
        const OAK_RETCODE rc = refusal(json);
        release(json, &colon);
        release(json, token);
        return rc;
    }
    hand_over_text(json, token, name);
    return sOKAY;
}

OAK_RETCODE next_pair(OAK_JSON_OBJ json, OAK_JSON_VALTYPE *type, OAK_JSON_PAIR *pair) {
    if (!is_inside(json, jvOBJECT)) {
        return OAK_DAMAGED(eSYNTAX);
    }
    B_TOKEN token;
    if (b_lexGet(json->hLex, &token) == tokRBRACE) {
        close_object(json, type, pair);
        return sOKAY;
    }
    while (token.type == tokCOMMA) {
        b_lexGet(json->hLex, &token);
    }
    const OAK_RETCODE rc = read_name(json, &token, pair != nullptr ? &pair->name : nullptr);
    return rc == sOKAY ? next_value(json, type, pair != nullptr ? &pair->value : nullptr) : rc;
}

} // namespace

// ---- Exported functions ----------------------------------------------------

OAK_RETCODE b_jsonOpen(OAK_JSON_OBJ *pObj, OAK_INPUT_OBJ input) {
    if (pObj == nullptr || input == nullptr) {
        return eINVNULLARG;
    }
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    auto *json = static_cast<OAK_JSON_OBJ>(OSL_GET_ZERO(sizeof(_OAK_JSON_DATA), tag));
    const B_LEX lex = json != nullptr ? b_lexOpen("json", OAK_TRUE, OAK_FALSE, tag) : nullptr;
    if (lex == nullptr) {
        OSL_FREE_TAG(tag);
        return eNOMEMORY;
    }
    b_lexInitInput(lex, input, tag);
    json->tag = tag;
    json->hLex = lex;
    *pObj = json;
    return sOKAY;
}

OAK_RETCODE b_jsonNextValue(OAK_JSON_OBJ obj, OAK_JSON_VALTYPE *type, OAK_JSON_VAL *val) {
    return obj != nullptr ? next_value(obj, type, val) : eINVNULLARG;
}

OAK_RETCODE b_jsonNextPair(OAK_JSON_OBJ obj, OAK_JSON_VALTYPE *type, OAK_JSON_PAIR *pair) {
    if (pair != nullptr) {
        *pair = OAK_JSON_PAIR{};
    }
    return obj != nullptr ? next_pair(obj, type, pair) : eINVNULLARG;
}

void b_jsonFreePair(OAK_JSON_OBJ_C obj, OAK_JSON_PAIR *pair) {
    if (obj == nullptr || pair == nullptr) {
        return;
    }
    OSL_FREE(const_cast<char *>(pair->name), obj->tag);
    pair->name = nullptr;
    if (pair->value.type == jvSTRING) {
        OSL_FREE(const_cast<char *>(pair->value.v.str), obj->tag);
        pair->value.v.str = nullptr;
    }
}

void b_jsonClose(OAK_JSON_OBJ_C obj) {
    if (obj == nullptr) {
        return;
    }
    const OSL_MEMTAG tag = obj->tag;
    b_lexClose(obj->hLex);
    OSL_FREE_TAG(tag); // the stack, the reader and all texts
}
