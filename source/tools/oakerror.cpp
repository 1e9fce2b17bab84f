// oakerror: tells what a status code means. Give it what you have: a number, a
// name, a number or a name of the previous generation, or a SQLSTATE. What fits
// in several ways is shown in all of them. Rests on the public look-ups alone.
//
// A number may be negative, so the ten digits are hidden short options here: a
// group that begins with one is a word of its own.
#include <strings.h>

#include <cstring>

#include "berror_legacy.h"
#include "errorapi.h"
#include "json_writer.h"
#include "oakcmdlineapi.h"
#include "program.h"
#include "rettables.h"

namespace {

using tools::JsonWriter;

constexpr OAK_CMDLINE_OPT_A kOptions[] = {
    {"j", "json", nullptr, "Print one JSON object for programs"},
    {"0", nullptr, nullptr, nullptr},
    {"1", nullptr, nullptr, nullptr},
    {"2", nullptr, nullptr, nullptr},
    {"3", nullptr, nullptr, nullptr},
    {"4", nullptr, nullptr, nullptr},
    {"5", nullptr, nullptr, nullptr},
    {"6", nullptr, nullptr, nullptr},
    {"7", nullptr, nullptr, nullptr},
    {"8", nullptr, nullptr, nullptr},
    {"9", nullptr, nullptr, nullptr},
    {"w", nullptr, "*=WORD",
     "A number (-10039), a name (eRANGE), a legacy number or name (-904, S_NOMEMORY) or a SQLSTATE "
     "(22003)"},
    {nullptr, nullptr, nullptr, nullptr},
};

constexpr OAK_CMD_DEFAULTS kStandardOptions = {1, 1}; // neither --key nor --docroot

constexpr char kDescription[] =
    "Shows the status codes that the words stand for, a line each: number, name, SQLSTATE,\n"
    "group and text. The exit status is 0 when every word is known, 1 when one is not, and\n"
    "2 when the command line is wrong.";

constexpr int32_t kNoLegacyNumber = -901; // shared by all codes without one of their own
constexpr size_t kLongestWord = 40;       // no name is longer
constexpr size_t kMostSuggestions = 5;

// In how many ways a row fits a word.
enum By : uint32_t { kByNumber = 1, kByName = 2, kByLegacy = 4, kBySqlstate = 8 };

// A word of the command line and what it may be.
struct Word {
    const char *text;
    bool is_number;
    int64_t number;
    bool is_legacy;
    int32_t legacy;
};

// ---- Looking up ------------------------------------------------------------

bool is_legacy_number(int64_t number) {
    if (number < INT32_MIN || number > INT32_MAX) {
        return false;
    }
    const int32_t legacy = static_cast<int32_t>(number);
    return b_errorname(legacy) != nullptr || b_errorFromLegacy(legacy) != eSYS_BADERRCODE;
}

Word read_word(const char *text) {
    Word word = {text, false, 0, false, 0};
    word.is_number = osl_atoi64(text, &word.number) == sOKAY;
    if (word.is_number && is_legacy_number(word.number)) {
        word.is_legacy = true;
        word.legacy = static_cast<int32_t>(word.number);
    }
    for (const OAK_ERROR &row : oak_errors_old) {
        if (strcasecmp(row.name, text) == 0) {
            word.is_legacy = true;
            word.legacy = row.sStatus;
        }
    }
    return word;
}

bool fits_legacy(const OAK_ERRDEFN &row, const Word &word) {
    if (!word.is_legacy) {
        return false;
    }
    const OAK_RETCODE code = b_errorFromLegacy(word.legacy);
    return (code == row.code && code != eSYS_BADERRCODE) ||
           (word.legacy != kNoLegacyNumber && b_errorToLegacy(row.code) == word.legacy);
}

uint32_t fits(const OAK_ERRDEFN &row, const Word &word) {
    uint32_t by = word.is_number && word.number == row.code ? kByNumber : 0u;
    by |= strcasecmp(row.name, word.text) == 0 ? kByName : 0u;
    by |= fits_legacy(row, word) ? kByLegacy : 0u;
    by |= row.sqlstate != nullptr && strcasecmp(row.sqlstate, word.text) == 0 ? kBySqlstate : 0u;
    return by;
}

// Groups of errors run downwards, so either bound may be the lower one.
bool is_in_group(const OAK_ERRGROUP &group, int64_t number) {
    return (group.firstcode <= number && number <= group.lastcode) ||
           (group.lastcode <= number && number <= group.firstcode);
}

const char *group_of(OAK_RETCODE code) {
    for (const OAK_ERRGROUP &group : oak_errgroups) {
        if (is_in_group(group, code)) {
            return group.name;
        }
    }
    return "";
}

// ---- JSON ------------------------------------------------------------------

void write_start(JsonWriter &json, const Word &word, uint32_t by) {
    static constexpr const char *kWays[] = {"number", "name", "legacy", "sqlstate"};
    json.line().begin_object().member("word", word.text).key("by").begin_array();
    for (uint32_t way = 0; way < 4; ++way) {
        if ((by >> way & 1u) != 0) {
            json.text(kWays[way]);
        }
    }
    json.end_array();
}

void write_legacy(JsonWriter &json, int32_t number) {
    json.key("legacy").begin_object().key("number").number(number);
    json.member("name", b_errorname(number)).member("text", b_errorstr(number)).end_object();
}

void write_row(JsonWriter &json, const Word &word, const OAK_ERRDEFN &row, uint32_t by) {
    write_start(json, word, by);
    json.key("code").number(row.code).member("name", row.name).member("sqlstate", row.sqlstate);
    json.member("group", group_of(row.code)).member("text", row.descr);
    const int32_t legacy = (by & kByLegacy) != 0 ? word.legacy : b_errorToLegacy(row.code);
    if (legacy == kNoLegacyNumber && (by & kByLegacy) == 0) {
        json.key("legacy").null();
    } else {
        write_legacy(json, legacy);
    }
    json.end_object();
}

void write_legacy_row(JsonWriter &json, const Word &word) {
    write_start(json, word, kByLegacy);
    for (const char *key : {"code", "name", "sqlstate", "group", "text"}) {
        json.key(key).null();
    }
    write_legacy(json, word.legacy);
    json.end_object();
}

// ---- Text ------------------------------------------------------------------

const char *or_else(const char *text, const char *other) {
    return text != nullptr ? text : other;
}

void print_row(const Word &word, const OAK_ERRDEFN &row, uint32_t by) {
    osl_log("%6d  %-29s  %-5s  %-11s  %s", row.code, row.name, or_else(row.sqlstate, "-"),
            group_of(row.code), row.descr);
    if ((by & kByLegacy) != 0) {
        osl_log(" (legacy %d %s)", word.legacy,
                or_else(b_errorname(word.legacy), "without a name"));
    }
    osl_log("\n");
}

void print_legacy_row(const Word &word) {
    osl_log("     -  %-29s  %-5s  %-11s  %s (legacy %d, for which there is no code now)\n",
            b_errorname(word.legacy), "-", "legacy", or_else(b_errorstr(word.legacy), "-"),
            word.legacy);
}

// ---- Words that nothing fits -----------------------------------------------

char lower(char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

size_t smallest(size_t a, size_t b, size_t c) {
    const size_t d = a < b ? a : b;
    return d < c ? d : c;
}

// The edits that turn one text into the other, case aside. `word` is no longer
// than kLongestWord.
size_t edit_distance(const char *name, const char *word) {
    size_t row[kLongestWord + 1];
    const size_t length = std::strlen(word);
    for (size_t i = 0; i <= length; ++i) {
        row[i] = i;
    }
    for (size_t above = 1; *name != '\0'; ++name, ++above) {
        size_t diagonal = row[0];
        row[0] = above;
        for (size_t i = 1; i <= length; ++i) {
            const size_t change = diagonal + (lower(*name) != lower(word[i - 1]) ? 1 : 0);
            diagonal = row[i];
            row[i] = smallest(change, row[i] + 1, row[i - 1] + 1);
        }
    }
    return row[length];
}

bool contains(const char *name, const char *word) {
    const size_t length = std::strlen(word);
    for (; std::strlen(name) >= length; ++name) {
        if (strncasecmp(name, word, length) == 0) {
            return true;
        }
    }
    return false;
}

// How near a name is to a word: 1 and 2 are edits, 3 is a name that contains
// it, 0 is neither.
size_t nearness(const char *name, const char *word) {
    if (std::strlen(word) < 3 || std::strlen(word) > kLongestWord) {
        return 0;
    }
    const size_t edits = edit_distance(name, word);
    return edits <= 2 ? edits : contains(name, word) ? 3 : 0;
}

void suggest_names(const char *word) {
    size_t shown = 0;
    for (size_t wanted = 1; wanted <= 3; ++wanted) {
        for (const OAK_ERRDEFN &row : oak_errors) {
            if (shown < kMostSuggestions && nearness(row.name, word) == wanted) {
                osl_log_err("%s%s", shown == 0 ? "; similar names: " : ", ", row.name);
                ++shown;
            }
        }
    }
}

uint64_t distance(const OAK_ERRGROUP &group, int64_t number) {
    const int64_t low = group.firstcode < group.lastcode ? group.firstcode : group.lastcode;
    const int64_t high = group.firstcode < group.lastcode ? group.lastcode : group.firstcode;
    if (number < low) {
        return static_cast<uint64_t>(low) - static_cast<uint64_t>(number);
    }
    return static_cast<uint64_t>(number) - static_cast<uint64_t>(high);
}

void suggest_group(int64_t number) {
    const OAK_ERRGROUP *nearest = &oak_errgroups[0];
    for (const OAK_ERRGROUP &group : oak_errgroups) {
        nearest = distance(group, number) < distance(*nearest, number) ? &group : nearest;
    }
    osl_log_err("; the nearest codes are those of group %s, %d to %d", nearest->name,
                nearest->firstcode, nearest->lastcode);
}

void tell_unknown(const Word &word) {
    osl_log_err(
        "oakerror: '%s' is not known; expected a number (-10039), a name (eRANGE), a legacy "
        "number or name (-904, S_NOMEMORY) or a SQLSTATE (22003)",
        word.text);
    if (word.is_number) {
        suggest_group(word.number);
    } else {
        suggest_names(word.text);
    }
    osl_log_err("\n");
}

// ---- The answers -----------------------------------------------------------

enum class Form { text, json, none };

struct Answer {
    Form form;
    JsonWriter *json; // where the form is JSON
    size_t shown;
};

// Shows everything that fits the word; false when nothing does.
bool show_word(Answer *answer, const Word &word) {
    uint32_t all = 0;
    for (const OAK_ERRDEFN &row : oak_errors) {
        const uint32_t by = fits(row, word);
        all |= by;
        if (by != 0 && answer->form == Form::json) {
            write_row(*answer->json, word, row, by);
            ++answer->shown;
        } else if (by != 0 && answer->form == Form::text) {
            print_row(word, row, by);
        }
    }
    if (!word.is_legacy || (all & kByLegacy) != 0) {
        return all != 0;
    }
    if (answer->form == Form::json) {
        write_legacy_row(*answer->json, word);
        ++answer->shown;
    } else if (answer->form == Form::text) {
        print_legacy_row(word);
    }
    return true;
}

bool is_known(const Word &word) {
    Answer answer = {Form::none, nullptr, 0};
    return show_word(&answer, word);
}

// The next word of the command line, or null. Reading on to it may pass --json.
const char *next_word(OAK_CMDLINE_A *cmd, bool *json) {
    const char *text = nullptr;
    char option = oak_cmdlineNextShortOption(cmd, &text);
    while (option == 'j') {
        *json = true;
        option = oak_cmdlineNextShortOption(cmd, &text);
    }
    if (option >= '0' && option <= '9') {
        cmd->kk = 0; // the other digits belong to this word
        return cmd->argv[cmd->ii];
    }
    return option != '\0' ? text : nullptr;
}

void write_unknown(JsonWriter &json, OAK_CMDLINE_A cmd) {
    bool is_json = false;
    json.key("unknown").begin_array();
    while (const char *text = next_word(&cmd, &is_json)) {
        if (!is_known(read_word(text))) {
            json.text(text);
        }
    }
    json.end_array();
}

// Answers every word; false when one of them is not known.
bool answer_words(OAK_CMDLINE_A cmd, Answer *answer, tools::Output *output) {
    bool is_json = false;
    bool all_known = true;
    while (const char *text = next_word(&cmd, &is_json)) {
        const Word word = read_word(text);
        if (!show_word(answer, word)) {
            all_known = false;
            if (answer->form != Form::none) {
                output->flush(); // what was found stands before what was not
                tell_unknown(word);
            }
        }
    }
    return all_known;
}

bool answer_in_json(const OAK_CMDLINE_A &cmd, tools::Output *output) {
    JsonWriter json(&output->text());
    Answer answer = {Form::json, &json, 0};
    json.begin_object().key("found").begin_array();
    const bool all_known = answer_words(cmd, &answer, output);
    if (answer.shown > 0) {
        json.line();
    }
    json.end_array();
    write_unknown(json, cmd);
    json.end_object();
    *output << "\n";
    return all_known;
}

// Answers the command line and returns the exit status.
int answer_all(const OAK_CMDLINE_A &cmd, Form form) {
    tools::Output output;
    Answer answer = {form, nullptr, 0};
    const bool all_known =
        form == Form::json ? answer_in_json(cmd, &output) : answer_words(cmd, &answer, &output);
    const tools::Complaint complaint = output.finish();
    if (!complaint.empty()) {
        tools::say("oakerror", complaint);
    }
    return all_known && complaint.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    OAK_CMDLINE_A cmd;
    OAK_CMDLINE_STATUS_A status;
    const OAK_RETCODE rc = oak_cmdlineInitEx(&cmd, nullptr, argc, argv, kDescription, kOptions,
                                             &kStandardOptions, &status);
    if (rc != sOKAY) {
        return rc == sCMD_USAGE || rc == sCMD_VERSION ? 0 : 2;
    }
    bool json = false;
    size_t words = 0;
    OAK_CMDLINE_A first_look = cmd;
    while (next_word(&first_look, &json) != nullptr) {
        ++words;
    }
    if (words == 0) {
        osl_log_err("error: Missing argument 'WORD' ('--help' for more information)\n");
        return 2;
    }
    const Form form = json ? Form::json : Form::text;
    return answer_all(cmd, status.quiet == OAK_TRUE ? Form::none : form);
}
