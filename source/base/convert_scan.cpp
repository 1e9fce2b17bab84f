// The text scanners: numbers, date literals, and the escape clauses of call-level SQL.
// Rests on the walker of state_machine.h and, for packing a date, on the calendar.
// Called by the conversions and the SQL layer.
//
// What each scanner accepts is its table and nothing else: a state is one line, an
// entry reads symbol, rule, shift or stay, next state. The rules of a table are the
// perform function of the record beside it. A number is only classified, not computed:
// a caller learns in one cheap pass which conversion to choose.

#include "convert_scan.h"

#include <cassert>
#include <cstring>

#include "convert_block.h"
#include "datetime.h"
#include "state_machine.h"

namespace {

// ---- Words of the tables --------------------------------------------------------

constexpr int16_t stay = 0;
constexpr int16_t shift = 1;
constexpr int16_t done = -1;

enum NumberRule : int16_t {
    numMinus = 1,    // the sign is negative
    numBad = 2,      // the text is bad; remembered
    numMag = 3,      // a digit before the point
    numScale = 4,    // a digit behind it
    numExpMinus = 5, // the exponent's sign is negative
    numExpDigit = 6, // a digit of the exponent
    numExpSign = 7   // the exponent takes its sign
};

enum DateRule : int16_t {
    dateBad = 1,   // the text is bad; ends the walk
    dateYear = 2,  // a digit of the year
    dateMonth = 3, // a digit of the month
    dateDay = 4    // a digit of the day
};

enum EscapeRule : int16_t {
    escHold = 1,    // the character goes to the hold buffer
    escWrite = 2,   // the character goes to the output
    escFlush = 3,   // what is held goes to the output
    escFail = 4,    // the clause is broken; ends the walk
    escWriteAt = 5, // an @ goes to the output
    escDrop = 6     // what is held is forgotten
};

// ---- Numbers ----------------------------------------------------------------------
//
// 0 white space and sign, 1 digits before the point, 2 behind it, 3 the exponent's
// sign, 4 its digits.

constexpr B_ACTION num0[] = {{'+', 0, shift, 1},        {'-', numMinus, shift, 1},
                             {symbolDigit, 0, stay, 1}, {'.', 0, shift, 2},
                             {' ', 0, shift, 0},        {'\t', 0, shift, 0},
                             {'\n', 0, shift, 0},       {symbolOther, numBad, stay, done}};
constexpr B_ACTION num1[] = {{symbolDigit, numMag, shift, 1},
                             {'.', 0, shift, 2},
                             {'e', 0, shift, 3},
                             {'E', 0, shift, 3},
                             {symbolEnd, 0, stay, done},
                             {symbolOther, numBad, stay, done}};
constexpr B_ACTION num2[] = {{symbolDigit, numScale, shift, 2},
                             {'e', 0, shift, 3},
                             {'E', 0, shift, 3},
                             {symbolEnd, 0, stay, done},
                             {symbolOther, numBad, stay, done}};
constexpr B_ACTION num3[] = {{'+', 0, shift, 4},
                             {'-', numExpMinus, shift, 4},
                             {symbolDigit, 0, stay, 4},
                             {symbolOther, numBad, stay, done}};
constexpr B_ACTION num4[] = {{symbolDigit, numExpDigit, shift, 4},
                             {symbolEnd, numExpSign, stay, done},
                             {symbolOther, numBad, stay, done}};

constexpr const B_ACTION *numStateTable[] = {num0, num1, num2, num3, num4};

// ---- Date literals ------------------------------------------------------------------
//
// 0 what opens it, 1 to 3 DATE, 4 to 11 TIMESTAMP, 12 the quote behind the word or @,
// 13 to 16 the year, 18 and 19 the month, 21 to 23 the day. Behind the day the walk
// ends whatever stands there: a closing quote need not be there, nor match.

constexpr B_ACTION date0[] = {{symbolDigit, 0, stay, 13}, {'d', 0, shift, 1},
                              {'D', 0, shift, 1},         {'t', 0, shift, 4},
                              {'T', 0, shift, 4},         {' ', 0, shift, 0},
                              {'\'', 0, shift, 13},       {'"', 0, shift, 13},
                              {'@', 0, shift, 12},        {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date1[] = {
    {'a', 0, shift, 2}, {'A', 0, shift, 2}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date2[] = {
    {'t', 0, shift, 3}, {'T', 0, shift, 3}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date3[] = {
    {'e', 0, shift, 12}, {'E', 0, shift, 12}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date4[] = {
    {'i', 0, shift, 5}, {'I', 0, shift, 5}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date5[] = {
    {'m', 0, shift, 6}, {'M', 0, shift, 6}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date6[] = {
    {'e', 0, shift, 7}, {'E', 0, shift, 7}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date7[] = {
    {'s', 0, shift, 8}, {'S', 0, shift, 8}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date8[] = {
    {'t', 0, shift, 9}, {'T', 0, shift, 9}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date9[] = {
    {'a', 0, shift, 10}, {'A', 0, shift, 10}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date10[] = {
    {'m', 0, shift, 11}, {'M', 0, shift, 11}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date11[] = {
    {'p', 0, shift, 12}, {'P', 0, shift, 12}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date12[] = {{' ', 0, shift, 12},
                               {'\'', 0, shift, 13},
                               {'"', 0, shift, 13},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date13[] = {{symbolDigit, dateYear, shift, 14},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date14[] = {{symbolDigit, dateYear, shift, 15},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date15[] = {{symbolDigit, dateYear, shift, 16},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date16[] = {{symbolDigit, dateYear, shift, 17},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date17[] = {{'-', 0, shift, 18}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date18[] = {{symbolDigit, dateMonth, shift, 19},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date19[] = {
    {symbolDigit, dateMonth, shift, 20}, {'-', 0, shift, 21}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date20[] = {{'-', 0, shift, 21}, {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date21[] = {{symbolDigit, dateDay, shift, 22},
                               {symbolOther, dateBad, stay, done}};
constexpr B_ACTION date22[] = {{symbolDigit, dateDay, shift, 23},
                               {'\'', 0, shift, done},
                               {'"', 0, shift, done},
                               {symbolOther, 0, stay, done}};
constexpr B_ACTION date23[] = {
    {'\'', 0, shift, done}, {'"', 0, shift, done}, {symbolOther, 0, stay, done}};

constexpr const B_ACTION *dateStateTable[] = {
    date0,  date1,  date2,  date3,  date4,  date5,  date6,  date7,  date8,  date9,  date10, date11,
    date12, date13, date14, date15, date16, date17, date18, date19, date20, date21, date22, date23};

// ---- Escape clauses -----------------------------------------------------------------
//
// 0 plain text; 1 to 3 the opener --(*, 4 to 21 vendor(...),product(...); 22 to 32, 38
// and 51 to 58 the clause's keyword; 33 to 37 its body up to } or *)--; 39 and 40
// quoted strings; 41 to 50 the word c_data with subscripts and a word that begins with
// st, up to its brace, which opens no clause.
//
// Three things that the lines do not say by themselves. The character behind a c is
// copied by state 41 whatever it is, so a brace or quote right behind a c opens nothing.
// A hyphen that ends the text is held and never written. And where the text ends in
// state 50, that state and state 0 write a zero byte each, so the length counts one.

constexpr B_ACTION esc0[] = {{'-', escHold, shift, 1},          {'{', 0, shift, 22},
                             {'"', escWrite, shift, 39},        {'\'', escWrite, shift, 40},
                             {symbolEnd, escWrite, stay, done}, {'c', escWrite, shift, 41},
                             {'C', escWrite, shift, 41},        {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc1[] = {{'-', escHold, shift, 2}, {symbolOther, escFlush, stay, 0}};
constexpr B_ACTION esc2[] = {{'(', escHold, shift, 3}, {symbolOther, escFlush, stay, 0}};
constexpr B_ACTION esc3[] = {{'*', escDrop, shift, 4}, {symbolOther, escFlush, stay, 0}};
constexpr B_ACTION esc4[] = {
    {'v', 0, shift, 5}, {'V', 0, shift, 5}, {' ', 0, shift, 4}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc5[] = {
    {'e', 0, shift, 6}, {'E', 0, shift, 6}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc6[] = {
    {'n', 0, shift, 7}, {'N', 0, shift, 7}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc7[] = {
    {'d', 0, shift, 8}, {'D', 0, shift, 8}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc8[] = {
    {'o', 0, shift, 9}, {'O', 0, shift, 9}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc9[] = {
    {'r', 0, shift, 10}, {'R', 0, shift, 10}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc10[] = {
    {'(', 0, shift, 11}, {' ', 0, shift, 10}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc11[] = {
    {')', 0, shift, 12}, {symbolEnd, escFail, stay, done}, {symbolOther, 0, shift, 11}};
constexpr B_ACTION esc12[] = {
    {',', 0, shift, 13}, {' ', 0, shift, 12}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc13[] = {{'p', 0, shift, 14},
                              {'P', 0, shift, 14},
                              {' ', 0, shift, 13},
                              {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc14[] = {
    {'r', 0, shift, 15}, {'R', 0, shift, 15}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc15[] = {
    {'o', 0, shift, 16}, {'O', 0, shift, 16}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc16[] = {
    {'d', 0, shift, 17}, {'D', 0, shift, 17}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc17[] = {
    {'u', 0, shift, 18}, {'U', 0, shift, 18}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc18[] = {
    {'c', 0, shift, 19}, {'C', 0, shift, 19}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc19[] = {
    {'t', 0, shift, 20}, {'T', 0, shift, 20}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc20[] = {
    {'(', 0, shift, 21}, {' ', 0, shift, 20}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc21[] = {
    {')', 0, shift, 22}, {symbolEnd, escFail, stay, done}, {symbolOther, 0, shift, 21}};
constexpr B_ACTION esc22[] = {
    {'d', escWriteAt, shift, 24}, {'t', 0, shift, 23},       {'f', 0, shift, 26},
    {'o', 0, shift, 28},          {'c', escHold, shift, 30}, {'e', escWrite, shift, 51},
    {' ', 0, shift, 22},          {'\n', 0, shift, 22},      {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc23[] = {
    {' ', escWriteAt, shift, 24}, {'s', escWriteAt, shift, 24}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc24[] = {
    {' ', 0, shift, 24}, {'\'', escWrite, shift, 25}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc25[] = {{'\'', escWrite, shift, 33},
                              {symbolEnd, escFail, stay, done},
                              {symbolOther, escWrite, shift, 25}};
constexpr B_ACTION esc26[] = {{'n', 0, shift, 27}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc27[] = {{' ', escWrite, shift, 33}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc28[] = {{'j', 0, shift, 29}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc29[] = {{' ', escWrite, shift, 33}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc30[] = {{'a', escHold, shift, 31}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc31[] = {{'l', escHold, shift, 32}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc32[] = {{'l', escHold, shift, 38}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc33[] = {{symbolEnd, escFail, stay, done}, {symbolOther, escDrop, stay, 34}};
constexpr B_ACTION esc34[] = {{'}', escDrop, shift, 0},
                              {'*', escHold, shift, 35},
                              {symbolEnd, escFail, stay, done},
                              {symbolOther, escWrite, shift, 34}};
constexpr B_ACTION esc35[] = {
    {')', escHold, shift, 36}, {symbolEnd, escFail, stay, done}, {symbolOther, escFlush, stay, 34}};
constexpr B_ACTION esc36[] = {
    {'-', escHold, shift, 37}, {symbolEnd, escFail, stay, done}, {symbolOther, escFlush, stay, 34}};
constexpr B_ACTION esc37[] = {
    {'-', escDrop, shift, 0}, {symbolEnd, escFail, stay, done}, {symbolOther, escFlush, stay, 34}};
constexpr B_ACTION esc38[] = {{' ', escFlush, stay, 27}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc39[] = {{'"', escWrite, shift, 0},
                              {symbolEnd, escFail, stay, done},
                              {symbolOther, escWrite, shift, 39}};
constexpr B_ACTION esc40[] = {{'\'', escWrite, shift, 0},
                              {symbolEnd, escFail, stay, done},
                              {symbolOther, escWrite, shift, 40}};
constexpr B_ACTION esc41[] = {{'_', escWrite, shift, 42},
                              {symbolEnd, escWrite, stay, done},
                              {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc42[] = {{'d', escWrite, shift, 43},
                              {'D', escWrite, shift, 43},
                              {symbolEnd, escWrite, stay, done},
                              {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc43[] = {{'a', escWrite, shift, 44},
                              {'A', escWrite, shift, 44},
                              {symbolEnd, escWrite, stay, done},
                              {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc44[] = {{'t', escWrite, shift, 45},
                              {'T', escWrite, shift, 45},
                              {symbolEnd, escWrite, stay, done},
                              {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc45[] = {{'a', escWrite, shift, 46},
                              {'A', escWrite, shift, 46},
                              {symbolEnd, escWrite, stay, done},
                              {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc46[] = {
    {'[', escWrite, shift, 47}, {' ', escWrite, shift, 46}, {symbolOther, 0, stay, 48}};
constexpr B_ACTION esc47[] = {{']', escWrite, shift, 46}, {symbolOther, escWrite, shift, 47}};
constexpr B_ACTION esc48[] = {{' ', escWrite, shift, 48},
                              {'s', escWrite, shift, 49},
                              {'S', escWrite, shift, 49},
                              {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc49[] = {
    {'t', escWrite, shift, 50}, {'T', escWrite, shift, 50}, {symbolOther, escWrite, shift, 0}};
constexpr B_ACTION esc50[] = {
    {'{', escWrite, shift, 0}, {symbolEnd, escWrite, stay, 0}, {symbolOther, escWrite, shift, 50}};
constexpr B_ACTION esc51[] = {{'s', escWrite, shift, 52}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc52[] = {{'c', escWrite, shift, 53}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc53[] = {{'a', escWrite, shift, 54}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc54[] = {{'p', escWrite, shift, 55}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc55[] = {{'e', escWrite, shift, 56}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc56[] = {
    {' ', escWrite, shift, 56}, {'\'', escWrite, shift, 57}, {symbolOther, escFail, stay, done}};
constexpr B_ACTION esc57[] = {{symbolOther, escWrite, shift, 58}};
constexpr B_ACTION esc58[] = {
    {'\'', escWrite, shift, 34}, {' ', 0, shift, 58}, {symbolOther, escFail, stay, done}};

constexpr const B_ACTION *EscStateTable[] = {
    esc0,  esc1,  esc2,  esc3,  esc4,  esc5,  esc6,  esc7,  esc8,  esc9,  esc10, esc11,
    esc12, esc13, esc14, esc15, esc16, esc17, esc18, esc19, esc20, esc21, esc22, esc23,
    esc24, esc25, esc26, esc27, esc28, esc29, esc30, esc31, esc32, esc33, esc34, esc35,
    esc36, esc37, esc38, esc39, esc40, esc41, esc42, esc43, esc44, esc45, esc46, esc47,
    esc48, esc49, esc50, esc51, esc52, esc53, esc54, esc55, esc56, esc57, esc58};

// Where a state names no end of the text: inside a keyword the clause is broken, and
// elsewhere state 0 closes the output.
constexpr B_ACTION escapeAtEnd(size_t state) {
    const bool insideKeyword = (state >= 26 && state <= 32) || state == 38;
    return insideKeyword ? B_ACTION{symbolEnd, escFail, stay, done}
                         : B_ACTION{symbolEnd, 0, stay, 0};
}

// ---- The machines -------------------------------------------------------------------

constexpr StateTable<5> numberTable = {numStateTable, nullptr};
constexpr StateTable<24> dateTable = {dateStateTable, nullptr};
constexpr StateTable<59> escapeTable = {EscStateTable, escapeAtEnd};

constexpr auto numberMachine = state_machine::compile<numberTable>();
constexpr auto dateMachine = state_machine::compile<dateTable>();
constexpr auto escapeMachine = state_machine::compile<escapeTable>();

static_assert(state_machine::isSound(numberMachine));
static_assert(state_machine::isSound(dateMachine));
static_assert(state_machine::isSound(escapeMachine));

// ---- Rules of numbers -----------------------------------------------------------------

struct NumberScan {
    size_t mag = 0;
    size_t scale = 0;
    uint32_t exponent = 0; // its low 16 bits count
    int16_t sign = 1;
    bool exponentIsNegative = false;
    bool isBad = false;

    OAK_RETCODE perform(uint8_t rule, const char *run, size_t length) {
        switch (rule) {
            case numMinus:
                sign = -1;
                break;
            case numBad:
                isBad = true;
                break;
            case numMag:
                mag += length;
                break;
            case numScale:
                scale += length;
                break;
            case numExpMinus:
                exponentIsNegative = true;
                break;
            case numExpDigit:
                addExponentDigits(run, length);
                break;
            case numExpSign:
                exponent = exponentIsNegative ? 0 - exponent : exponent;
                break;
        }
        return sOKAY;
    }

    void addExponentDigits(const char *run, size_t length) {
        for (size_t i = 0; i < length; ++i)
            exponent = exponent * 10 + static_cast<uint32_t>(run[i] - '0');
    }

    // The exponent is a 16-bit number and wraps like one.
    int16_t exponentAs16Bits() const {
        return static_cast<int16_t>(static_cast<uint16_t>(exponent));
    }
};

constexpr int16_t largestExponent = 308; // of a double

// A count that 16 bits do not hold stays at their end, so that no long text looks like
// a short one.
uint16_t saturate16(size_t count) {
    return count > UINT16_MAX ? uint16_t{UINT16_MAX} : static_cast<uint16_t>(count);
}

// ---- Rules of date literals -------------------------------------------------------------

struct DateScan {
    OAK_DATE_T fields = {0, 0, 0};

    OAK_RETCODE perform(uint8_t rule, const char *run, size_t) {
        const int digit = *run - '0';
        switch (rule) {
            case dateBad:
                return eINVLITERAL;
            case dateYear:
                fields.year = fields.year * 10 + digit;
                break;
            case dateMonth:
                fields.month = static_cast<uint16_t>(fields.month * 10 + digit);
                break;
            case dateDay:
                fields.day = static_cast<uint16_t>(fields.day * 10 + digit);
                break;
        }
        return sOKAY;
    }
};

constexpr size_t shortestDateText = 8;
constexpr size_t longestDateText = 25;
constexpr size_t dateWithoutTail = 10; // what is longer must have a blank behind its date

struct Slice {
    const char *text;
    size_t length;
};

// Where year, month and day stand among the three parts of a format, by its number
// less 1.
constexpr uint8_t datePartOrder[][3] = {{2, 0, 1}, {0, 1, 2}, {2, 1, 0}};
static_assert(OAK_MMDDYYYY == 1 && OAK_YYYYMMDD == 2 && OAK_DDMMYYYY == 3);

// Splits at the first two separators; without a second one nothing is a date.
bool splitDate(const char *text, size_t length, char separator, Slice parts[3]) {
    for (int i = 0; i < 2; ++i) {
        const void *found = std::memchr(text, separator, length);
        if (found == nullptr)
            return false;
        parts[i] = {text, static_cast<size_t>(static_cast<const char *>(found) - text)};
        text += parts[i].length + 1;
        length -= parts[i].length + 1;
    }
    parts[2] = {text, length};
    return true;
}

// Cuts the part at its first blank; without one, a long text is no date.
bool cutAtBlank(Slice *part) {
    const void *blank = std::memchr(part->text, ' ', part->length);
    if (blank == nullptr)
        return false;
    part->length = static_cast<size_t>(static_cast<const char *>(blank) - part->text);
    return true;
}

// Writes the date in the order that the scanner reads, year-month-day.
OAK_RETCODE reorderDate(const char *text, size_t length, OAK_DATE_FORMAT format, char separator,
                        char (&result)[longestDateText + 1]) {
    Slice parts[3];
    if (separator == '\0' || oak_dateValidateFormat(format) != sOKAY ||
        !splitDate(text, length, separator, parts))
        return eINVLITERAL;
    if (length > dateWithoutTail && !cutAtBlank(&parts[2]))
        return eINVLITERAL;
    char *at = result;
    for (int i = 0; i < 3; ++i) {
        const Slice &part = parts[datePartOrder[format - 1][i]];
        std::memcpy(at, part.text, part.length);
        at += part.length;
        *at++ = i < 2 ? '-' : '\0';
    }
    return sOKAY;
}

// ---- Rules of escape clauses --------------------------------------------------------------

struct EscapeRewrite {
    char *out;
    size_t size;      // bytes of `out`
    size_t count = 0; // characters written, also those that did not fit
    char held[20];    // may or may not open a clause; no path holds more than four
    size_t heldCount = 0;

    EscapeRewrite(char *buffer, size_t bufferSize) : out(buffer), size(bufferSize) {}

    OAK_RETCODE perform(uint8_t rule, const char *run, size_t length) {
        switch (rule) {
            case escHold:
                assert(heldCount < sizeof held);
                held[heldCount++] = *run;
                break;
            case escWrite:
                write(run, length);
                break;
            case escFlush:
                write(held, heldCount);
                heldCount = 0;
                break;
            case escFail:
                return eESCAPE;
            case escWriteAt:
                write("@", 1);
                break;
            case escDrop:
                heldCount = 0;
                break;
        }
        return sOKAY;
    }

    void write(const char *text, size_t length) {
        if (count < size)
            std::memcpy(out + count, text, length < size - count ? length : size - count);
        count += length;
    }

    // Puts the terminator over the zero byte that state 0 wrote, or where the buffer
    // ends, and returns the length.
    size_t terminate() {
        if (size == 0)
            return 0;
        const size_t length = (count < size ? count : size) - 1;
        out[length] = '\0';
        return length;
    }
};

} // namespace

// ---- Exported --------------------------------------------------------------------------

OAK_RETCODE convert_parseNumber(const char *szNum, int16_t *sign, uint16_t *mag, uint16_t *scale,
                                int16_t *expt) {
    if (szNum == nullptr)
        return eINVNULLARG;
    NumberScan scan;
    OAK_IGNORE_STATUS(walkMachine(numberMachine, szNum, scan), "no rule of numbers fails");
    const int16_t exponent = scan.exponentAs16Bits();
    if (exponent < -largestExponent || exponent > largestExponent)
        return eRANGE;
    if (scan.isBad)
        return eINVLITERAL;
    if (sign != nullptr)
        *sign = scan.sign;
    if (mag != nullptr)
        *mag = saturate16(scan.mag);
    if (scale != nullptr)
        *scale = saturate16(scan.scale);
    if (expt != nullptr)
        *expt = exponent;
    return sOKAY;
}

OAK_RETCODE b_convertEscapesToSQL(const char *pszIn, char *pszOut, size_t tOutLen,
                                  size_t *ptResLen) {
    if (pszIn == nullptr || pszOut == nullptr)
        return eINVNULLARG;
    EscapeRewrite rewrite(pszOut, tOutLen);
    const OAK_RETCODE rc = walkMachine<Run::ofOneStep>(escapeMachine, pszIn, rewrite);
    if (rc != sOKAY)
        return rc;
    const size_t length = rewrite.terminate();
    if (ptResLen != nullptr)
        *ptResLen = length;
    return sOKAY;
}

// ---- Internal to the conversions ---------------------------------------------------------

OAK_RETCODE cnv_stringToDate(CNVCB *block) {
    const auto *text = static_cast<const char *>(block->pvSrc);
    const size_t length = strnlen(text, longestDateText + 1);
    if (length < shortestDateText || length > longestDateText)
        return eINVLITERAL;
    char reordered[longestDateText + 1];
    const auto separator = static_cast<char>(block->date_sep);
    if (block->date_format != OAK_YYYYMMDD || separator != '-') {
        const OAK_RETCODE rc = reorderDate(text, length, block->date_format, separator, reordered);
        if (rc != sOKAY)
            return rc;
        text = reordered;
    }
    DateScan scan;
    OAK_RETCODE rc = walkMachine(dateMachine, text, scan);
    if (rc != sOKAY)
        return rc;
    OAK_PACKED_DATE_T date;
    rc = oak_datePack(&scan.fields, &date);
    if (rc != sOKAY)
        return rc;
    if (block->pvDst != nullptr)
        std::memcpy(block->pvDst, &date, sizeof date);
    block->tSize = sizeof date;
    return sOKAY;
}
