// Any bytes as a text for the lexer. The low bits of the first byte, a letter in
// the seeds, choose the dialect, the counting of lines and a recording; the rest
// is the text.
//
// The tokens must end with the text, have texts no longer than it and places
// inside it; they must come the same from an input that offers no window, again
// after a rewind, and after being put back.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "lex_internal.h"

namespace {

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

struct Text {
    const uint8_t *bytes;
    size_t size;
};

// What stays comparable of a token.
struct Seen {
    B_TOKTYPE type;
    uint32_t line;
    size_t pos;
    std::string content;
    bool operator==(const Seen &) const = default;
};

std::string content_of(const B_TOKEN &token) {
    switch (token.type) {
        case tokIDENTIFIER:
            require(std::strlen(token.v.id) + 1 == token.len);
            return token.v.id;
        case tokERROR:
        case tokSTRING:
            return token.v.str;
        case tokBINARY:
            return {static_cast<const char *>(token.v.bv), token.len};
        case tokDECIMAL:
            require(token.v.bcd->prec <= OAK_BCD_MAX_DIGITS);
            return {reinterpret_cast<const char *>(token.v.bcd), sizeof(OAK_BCD_T)};
        case tokINTEGER:
        case tokDOUBLE:
            return {reinterpret_cast<const char *>(&token.v), sizeof token.v};
        default:
            require(token.type == tokEOS || (token.type > ' ' && token.type <= '~'));
            require(token.v.tok == static_cast<B_CHAR>(token.type));
            return {};
    }
}

// One token, which every other time is put back and read again.
Seen get(B_LEX lex, bool put_back) {
    B_TOKEN token;
    B_TOKTYPE type = b_lexGet(lex, &token);
    if (put_back) {
        b_lexPutback(lex, &token);
        type = b_lexGet(lex, &token);
    }
    require(type == token.type);
    Seen seen = {token.type, token.line, token.pos, content_of(token)};
    b_lexTokenFree(lex, &token);
    return seen;
}

// All tokens up to the last end of the text; a zero byte in it is an end too.
std::vector<Seen> read_all(B_LEX lex, const Text &text) {
    auto ends = std::count(text.bytes, text.bytes + text.size, 0) + 1;
    std::vector<Seen> seen;
    while (ends != 0) {
        seen.push_back(get(lex, seen.size() % 2 != 0));
        ends -= seen.back().type == tokEOS ? 1 : 0;
        require(seen.size() <= text.size + 1);
    }
    return seen;
}

void check_places(const std::vector<Seen> &tokens, const Text &text, bool counts_lines) {
    const auto lines = std::count(text.bytes, text.bytes + text.size, '\n') + 1;
    // The end counts like a character each time that it is read.
    const size_t characters = text.size + tokens.size();
    for (const Seen &token : tokens) {
        require(counts_lines ? token.line >= 1 && token.line <= lines : token.line == 0);
        require(token.pos >= 1 && token.pos <= characters);
        require(token.type == tokERROR || token.type == tokDECIMAL ||
                token.content.size() <= text.size + sizeof(B_TOKEN::v));
    }
}

// An input without a window: every byte is a call.
Text slow_text;
size_t slow_place;
OAK_RETCODE read_slowly(OAK_INPUT_OBJ, B_CHAR *ch) {
    *ch = slow_place < slow_text.size ? slow_text.bytes[slow_place++] : 0;
    return sOKAY;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const uint8_t options = size != 0 ? data[0] : 0;
    const Text text = {data + (size != 0 ? 1 : 0), size != 0 ? size - 1 : 0};
    const auto flag = [options](int bit) {
        return (options >> bit & 1) != 0 ? OAK_TRUE : OAK_FALSE;
    };
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    const B_LEX lex = b_lexOpen(flag(2) == OAK_TRUE ? "key/value" : "sql", flag(0), flag(1), tag);

    OAK_INPUT_OBJ input = nullptr;
    require(b_inputCreateFromMemory(&input, text.bytes, text.size, tag) == sOKAY);
    b_lexInitInput(lex, input, tag);
    const std::vector<Seen> tokens = read_all(lex, text);
    check_places(tokens, text, true);

    OAK_INPUT slow = {};
    slow.u.file = {};
    slow.readFcn = read_slowly;
    slow_text = text;
    slow_place = 0;
    b_lexInitInput(lex, &slow, tag);
    require(read_all(lex, text) == tokens);

    // From the middle, twice, while an expression is recorded.
    require(b_inputRewind(input, nullptr) == sOKAY);
    b_lexInitInput(lex, input, tag);
    const size_t middle = tokens.size() / 2;
    for (size_t i = 0; i < middle; ++i) {
        require(get(lex, false) == tokens[i]);
    }
    B_LEX_REWIND_POINT_OBJ point = nullptr;
    require(b_lexCreateRewindPoint(lex, &point) == sOKAY);
    for (int round = 0; round < 2; ++round) {
        b_lexExprSaveBegin(lex);
        for (size_t i = middle; i < tokens.size(); ++i) {
            require(get(lex, false) == tokens[i]);
        }
        const char *recording = b_lexExprGet(lex);
        require(recording == nullptr || std::strlen(recording) <= text.size * 2 + 3);
        require(b_lexRewind(lex, point) == sOKAY);
    }

    // A terminated text, with lines counted or not.
    const std::string terminated(reinterpret_cast<const char *>(text.bytes), text.size);
    const Text visible = {text.bytes, std::strlen(terminated.c_str())};
    b_lexInit(lex, terminated.c_str(), nullptr, flag(3), tag);
    check_places(read_all(lex, visible), visible, flag(3) == OAK_TRUE);

    b_lexClose(lex);
    b_inputClose(input);
    OSL_FREE_TAG(tag);
    return 0;
}
