/* The library's one lexer: text in, tokens out.
 *
 * Law: open, then any number of times: init and gets; then close. A lexer and
 * its tokens belong to one thread. Memory is of two kinds. The state and its
 * buffers live under the tag given to b_lexOpen. The texts of tokens are copies
 * under the tag given to the init, and outlast the lexer: those of strings and
 * binary literals are freed by b_lexTokenFree or with the tag, those of
 * identifiers and decimals with the tag alone.
 *
 * It serves two dialects. With SQL identifiers, unquoted identifiers are
 * letters, digits, '_' and '$', are folded to upper case, and the source text
 * of an expression can be recorded while it is read. Without, identifiers also
 * take in '.', '/', ':' and '\', and keep their case.
 *
 * A lexical error is a token, not a status: its type is tokERROR and its v.str
 * one of the constant messages below. What a faulty literal has consumed stays
 * consumed, and scanning may go on. When memory runs out the token is tokERROR
 * as well, with "not enough memory".
 *
 *     "must first call b_lexInit"                 no text has been set
 *     "bad binary literal"                        odd digits, or no closing quote
 *     "string literal missing terminal quote"     the text ended inside a string
 *     "invalid escape sequence"                   a bad digit, or above 0x10FFFF
 *     "Unicode characters are not supported"      an escape of 256 or more
 *     "Invalid Unicode literal sequence"          U& without an apostrophe
 *     "unsupported character"                     a byte above 127 outside a string
 *     "decimal conversion overflow"               more digits than a decimal holds
 *
 * The comments that every lexer skips, "--" to the end of the line and those
 * between "/" "*" and "*" "/", which do not nest, are plain characters to a
 * lexer whose name is "key/value". */
#ifndef LEX_H
#define LEX_H

#include "input.h"
#include "oakbcdtypes.h"

OAK_C_BEGIN

/* ---- Tokens ------------------------------------------------------------ */

/* A single character is a token whose type is its ASCII code. tokSPECCHAR and
 * tokWSTRING belong to the vocabulary; b_lexGet does not produce them. */
typedef enum B_TOKTYPE OAK_INT32_ENUM {
    tokERROR = -1,
    tokEOS = 0, /* the end of the text */
    tokEXCL = 33,
    tokQUOTE = 34,
    tokPOUND = 35,
    tokDOLLAR = 36,
    tokPCT = 37,
    tokAMP = 38,
    tokAPOS = 39,
    tokLPAR = 40,
    tokRPAR = 41,
    tokSTAR = 42,
    tokPLUS = 43,
    tokCOMMA = 44,
    tokMINUS = 45,
    tokPERIOD = 46,
    tokFSLASH = 47,
    tokCOLON = 58,
    tokSEMI = 59,
    tokLT = 60,
    tokEQ = 61,
    tokGR = 62,
    tokQUESTION = 63,
    tokAT = 64,
    tokLBRACK = 91,
    tokBSLASH = 92,
    tokRBRACK = 93,
    tokCIRCUM = 94,
    tokUNDERSCORE = 95,
    tokGRAVE = 96,
    tokLBRACE = 123,
    tokBAR = 124,
    tokRBRACE = 125,
    tokTILDE = 126,
    tokSPECCHAR = 255,
    tokIDENTIFIER = 256,
    tokINTEGER = 257,
    tokDECIMAL = 258,
    tokDOUBLE = 259,
    tokSTRING = 260,
    tokWSTRING = 261,
    tokBINARY = 262
} B_TOKTYPE;

typedef struct B_TOKEN {
    B_TOKTYPE type;
    size_t len;    /* identifier: bytes with the terminator; binary literal: bytes; else 0 */
    uint32_t line; /* the line at which the token starts */
    size_t pos;    /* the place in that line, from 1 */
    union {
        B_CHAR tok;           /* a single character; 0 for tokEOS */
        const char *id;       /* tokIDENTIFIER */
        const char *str;      /* tokSTRING; tokERROR: the message */
        uint64_t iv;          /* tokINTEGER */
        double dv;            /* tokDOUBLE */
        const OAK_BCD_T *bcd; /* tokDECIMAL */
        const void *bv;       /* tokBINARY; never null */
    } v;
} B_TOKEN;

/* ---- The lexer --------------------------------------------------------- */

typedef struct b_lexstate *B_LEX;
typedef const struct b_lexstate *B_LEX_C;

/* A place in the text with its line and character counts. */
typedef struct B_LEX_REWIND_POINT *B_LEX_REWIND_POINT_OBJ;

/* A new lexer under `lextag`, null when memory is exhausted. `name` is kept by
 * reference and may be null; "key/value" turns comments off. With
 * `useSQLIdentifiers` it is of the SQL dialect, with `doubleQuoteAsIdentifier`
 * double quotes enclose identifiers and not strings. */
OAK_API B_LEX b_lexOpen(const char *name, OAK_BOOL_T useSQLIdentifiers,
                        OAK_BOOL_T doubleQuoteAsIdentifier, OSL_MEMTAG lextag);

/* Sets the text to read and starts over; an earlier text is let go. `string` is
 * borrowed until the next init or the close. `fileName` may be null and is
 * copied under `usertag`. Lines count from `lineno`; 0 turns the counting of
 * lines off. Token texts go under `usertag`. When `string` is null or memory
 * runs out there is no text, and b_lexGet says so. */
OAK_API void b_lexInit(B_LEX hLex, const char *string, const char *fileName, uint32_t lineno,
                       OSL_MEMTAG usertag);

/* Points the lexer at an open input, at its present place, and starts over at
 * line 1. The input is borrowed until the next init or the close; the lexer
 * reads from it no further than the last token needs. */
OAK_API void b_lexInitInput(B_LEX hLex, OAK_INPUT_OBJ input, OSL_MEMTAG usertag);

/* Reads the next token into `*pTokVal` and returns its type; tokERROR with
 * nothing stored when `pTokVal` is null. Past the end of the text every call
 * gives tokEOS. A failing read of the input counts as the end. */
OAK_API B_TOKTYPE b_lexGet(B_LEX hLex, B_TOKEN *pTokVal);

/* Puts one token back, whole, place and text included; the next b_lexGet gives
 * it again. A second token put back replaces the first. */
OAK_API void b_lexPutback(B_LEX hLex, const B_TOKEN *pTokVal);

/* Frees the text of a tokSTRING or the bytes of a tokBINARY and clears the
 * pointer; leaves any other token alone. To be called before the next init with
 * another tag. */
OAK_API void b_lexTokenFree(B_LEX hLex, B_TOKEN *pTokVal);

/* ---- Recording of an expression's source text --------------------------- */

/* Starts a recording with the token last read; what b_lexGet reads from now on
 * is added. A run of blanks is recorded as one, and commas outside parentheses,
 * semicolons, comments, other white space and, as words, ALL, DISTINCT, FROM
 * and SELECT are left out. Without SQL identifiers no word and no number is
 * recorded. */
OAK_API void b_lexExprSaveBegin(B_LEX hLex);

/* Ends the recording and hands out its text without trailing blanks, a copy
 * under the token tag that the caller owns; null when nothing was recorded or
 * memory ran out. A binary literal ends the text: what is recorded behind one
 * is lost. */
OAK_API const char *b_lexExprGet(B_LEX hLex);

/* ---- Vocabulary --------------------------------------------------------- */

/* True for one of the 288 reserved words of SQL, in any case. */
OAK_API OAK_BOOL_T b_lexSQLReserved(const char *id);

/* ---- Going back --------------------------------------------------------- */

/* Hands out the present place. The point lies under the token tag, the input's
 * own point in it under the input's tag (that of b_lexOpen for a text); both go
 * with their tags. A token that was put back is no part of it.
 * eINVNULLARG: an argument is null.
 * eINVFCNSEQ: there is no text.
 * eNOMEMORY: the point could not be allocated; nothing is left behind. */
OAK_API OAK_RETCODE b_lexCreateRewindPoint(B_LEX hLex, B_LEX_REWIND_POINT_OBJ *pRewindPoint);

/* Goes back to a point of the same text: the same tokens come again with the
 * same places. A token that was put back and not read again still comes first.
 * eINVNULLARG: an argument is null.
 * eINVFCNSEQ: there is no text. */
OAK_API OAK_RETCODE b_lexRewind(B_LEX hLex, B_LEX_REWIND_POINT_OBJ rewindPoint);

/* ---- Accessors ---------------------------------------------------------- */

/* The text of the token last read, valid until the next call: identifiers
 * before folding, strings with escapes resolved, numbers without leading zeros,
 * binary literals as they stand in the source. */
OAK_API const char *b_lexGetTokString(B_LEX_C hLex);
/* The line that is being read, and the number of characters read of it. */
OAK_API uint32_t b_lexGetLineNumber(B_LEX_C hLex);
OAK_API size_t b_lexGetCharacterNumber(B_LEX_C hLex);
/* The name given to b_lexInit, or null. */
OAK_API const char *b_lexGetFileName(B_LEX_C hLex);

/* Frees the lexer and what it opened itself; token texts stay. Null is accepted. */
OAK_API void b_lexClose(B_LEX hLex);

OAK_C_END

#endif
