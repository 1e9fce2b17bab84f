// Internal to the input, the lexer and the readers on top of it: their records,
// and the way in which the lexer reaches bytes without a call for each.
//
// An input offers a window: the bytes at its place that are in memory already,
// the rest of the text or of the loaded file block. Whoever takes bytes from
// the window moves the input past them. Single reads go through readFcn, which
// loads the next block.
#ifndef LEX_INTERNAL_H
#define LEX_INTERNAL_H

#include "input.h"
#include "lex.h"

// ---- Input -----------------------------------------------------------------

enum : uint32_t { INPUT_BLOCK_SIZE = 1024 };

struct OAK_FILE_INPUT {
    OSL_FH file; // borrowed
    OSL_FILE_OFFSET pos;
    OSL_FILE_OFFSET size; // the file's length when it was opened
    OSL_FILE_OFFSET startingPos;
    uint8_t buffer[INPUT_BLOCK_SIZE];
    OSL_FILE_OFFSET blockPos; // where the loaded block starts in the file
    uint32_t blockLen;        // its bytes; 0 when none is loaded
};

struct OAK_MEM_INPUT {
    const uint8_t *buffer; // borrowed
    size_t pos;
    size_t size;
};

struct OAK_FILE_REWIND_POINT {
    OSL_FILE_OFFSET pos;
};

struct OAK_MEM_REWIND_POINT {
    size_t pos;
};

union OAK_REWIND_POINT {
    OAK_FILE_REWIND_POINT file;
    OAK_MEM_REWIND_POINT mem;
};

using OAK_READ_FCN = OAK_RETCODE (*)(OAK_INPUT_OBJ obj, B_CHAR *ch);
using OAK_REWIND_FCN = OAK_RETCODE (*)(OAK_INPUT_OBJ obj, OAK_REWIND_POINT_OBJ point);
using OAK_CREATE_REWIND_POINT_FCN = void (*)(OAK_INPUT_OBJ obj, OAK_REWIND_POINT *point);

struct OAK_INPUT {
    union {
        OAK_FILE_INPUT file;
        OAK_MEM_INPUT mem;
    } u;
    OAK_READ_FCN readFcn;
    OAK_REWIND_FCN rewindFcn;
    OAK_CREATE_REWIND_POINT_FCN createRewindPointFcn;
    OSL_MEMTAG tag;
};

// The readFcn of memory inputs, which also tells the two kinds apart.
OAK_RETCODE input_readMemory(OAK_INPUT_OBJ obj, B_CHAR *ch);

inline bool input_isMemory(OAK_INPUT_OBJ_C input) {
    return input->readFcn == input_readMemory;
}

struct INPUT_WINDOW {
    const uint8_t *bytes;
    size_t size;
};

inline INPUT_WINDOW input_window(OAK_INPUT_OBJ_C input) {
    if (input_isMemory(input)) {
        const OAK_MEM_INPUT &in = input->u.mem;
        return {in.buffer + in.pos, in.size - in.pos};
    }
    const OAK_FILE_INPUT &in = input->u.file;
    const OSL_FILE_OFFSET offset = in.pos - in.blockPos; // huge when before the block
    if (offset >= in.blockLen) {
        return {nullptr, 0};
    }
    return {in.buffer + offset, in.blockLen - static_cast<size_t>(offset)};
}

inline void input_advance(OAK_INPUT_OBJ input, size_t count) {
    if (input_isMemory(input)) {
        input->u.mem.pos += count;
    } else {
        input->u.file.pos += count;
    }
}

// ---- Lexer -----------------------------------------------------------------

// How many of the `size` bytes at `text` an identifier of the dialect takes.
using LEX_IDENTIFIER_FCN = size_t (*)(const uint8_t *text, size_t size);
// Whether a recording takes the word.
using LEX_SAVE_EXPR_FCN = bool (*)(const char *word);

struct b_lexstate {
    const char *name;          // borrowed
    OAK_INPUT_OBJ input;       // what is read: local_input or the caller's; null without a text
    OAK_INPUT_OBJ local_input; // made by b_lexInit, under lextag
    B_CHAR ungetch;            // a character read ahead, or LEX_NO_CHAR
    const char *fileName;      // a copy under usertag
    uint32_t lineno;           // 0: lines are not counted
    size_t charno;             // characters taken so far
    size_t linestart;          // charno at the end of the line before
    size_t prevlinestart;      // linestart before the last newline
    char *tokbuf;              // the text of the token last read, terminated
    size_t szTokbuf;
    size_t tokpos;
    char *wtokbuf; // for wide strings, of which b_lexGet makes none: null
    size_t szWTokbuf;
    OAK_BOOL_T saveexpr; // an expression is being recorded
    OAK_BOOL_T skipcomments;
    OAK_BOOL_T doubleQuoteAsIdentifier;
    char *xbuf; // the recorded text
    size_t szXbuf;
    size_t xpos;
    char exch;         // what was recorded last
    int16_t pcnt;      // open parentheses in the recording
    B_TOKTYPE toktype; // of the token last read
    B_TOKEN putback;
    LEX_IDENTIFIER_FCN identifierFcn;
    LEX_SAVE_EXPR_FCN saveExprFcn;
    OSL_MEMTAG lextag;
    OSL_MEMTAG usertag;
    B_CHAR quote;           // what encloses the token last read, or 0
    OAK_BOOL_T hasPutback;  // `putback` holds a token
    OAK_BOOL_T outOfMemory; // since the last token began, or at the init
};

enum : B_CHAR { LEX_NO_CHAR = UINT32_MAX };

struct B_LEX_REWIND_POINT {
    B_CHAR ungetch;
    uint32_t lineno;
    size_t charno;
    size_t linestart;
    size_t prevlinestart;
    OAK_REWIND_POINT_OBJ rewindPoint;
};

// What a reader on top of the lexer returns for a token that it cannot use.
inline OAK_RETCODE lex_refusal(B_LEX_C lex, OAK_RETCODE syntaxError) {
    return lex->outOfMemory != OAK_FALSE ? eNOMEMORY : syntaxError;
}

// Adds one character to the recording, if there is one. A code above 127 goes in
// as UTF-8.
void lex_exprPutch(B_LEX lex, B_CHAR ch);

#endif
