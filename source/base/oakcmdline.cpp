// The command line of every utility: one reader of options and arguments, run
// twice over the same entries. The first pass, at init, finds every mistake,
// answers --help and --version and keeps what the standard options say; the
// second is the program's own and meets nothing but its rows. Rests on the
// platform's printing; called by the utilities.
//
// The reader is a cursor of four numbers. An entry is taken by `ii_next`; a
// group of short options is walked by `kk` within the entry at `ii`, while the
// values that its options want are taken from the entries behind it. A step
// that a standard option claims is answered by sIGNORE, and the reader goes on.
#include "oakcmdlineapi.h"

#include <cstring>
#include <string_view>

namespace {

using Row = OAK_CMDLINE_OPT_A;

constexpr size_t kSummaryWidth = 78;   // the line of the usage summary
constexpr size_t kOptionWidth = 26;    // the column of options in the help
constexpr size_t kFirstTextWidth = 54; // the first line of an option's text
constexpr size_t kOtherTextWidth = 52; // its other lines, indented by two more
constexpr size_t kMessageWidth = 72;   // a line of an error message
constexpr size_t kMessageBytes = 360;  // a message and its terminator; the rest is cut

// ---- What is said ----------------------------------------------------------

// A message about one option or argument, which stands between the two texts.
struct Message {
    const char *before;
    const char *after;
};

constexpr char kForMore[] = "' ('--help' for more information)";
constexpr Message kTakesArgument = {"option flag '", "' takes an argument"};
constexpr Message kWrongType = {"argument for option '", "' is of wrong type"};
constexpr Message kUnknownShort = {"Unknown option '-", kForMore};
constexpr Message kTakesNoArgument = {"option flag '", "' does not take any arguments"};
constexpr Message kUnknownLong = {"Unknown option '--", kForMore};
constexpr Message kUnknownDash = {"Unknown option '", kForMore};
constexpr Message kStrayArgument = {"Stray argument '", kForMore};
constexpr Message kMissingArgument = {"Missing argument '", kForMore};

constexpr char kOperatingSystem[] = "Linux";
#if defined(__x86_64__)
constexpr char kProcessor[] = "x86_64";
#elif defined(__aarch64__)
constexpr char kProcessor[] = "aarch64";
#else
constexpr char kProcessor[] = "unknown";
#endif
constexpr int kWordBits = static_cast<int>(sizeof(void *) * 8);

constexpr char kHowToWriteOptions[] =
    "Short options can be combined into one string starting with a single '-'.\n"
    "Mandatory arguments to long options are mandatory for short options too.\n"
    "Long option arguments can also be specified in a separate argument.\n\n";

constexpr char kKeyText[] =
    "Specify the encryption key for the database ([algorithm:]passcode). The valid algorithms are "
    "xor, aes128, aes192 and aes256. The aes algorithms are only available for packages that have "
    "strong encryption support. If an algorithm is not specified, the default is aes128 for strong "
    "encryption packages and xor otherwise.";

// ---- Lines -----------------------------------------------------------------

// White space of ASCII, whatever the locale: a text in UTF-8 has none inside its
// characters.
bool is_space(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

// Takes the next line off the front of `text`: all of it where it fits, else as
// much as ends before the last white space within the width, which is dropped.
// A text without any is cut hard at the width.
std::string_view strwrap(std::string_view *text, size_t width) {
    size_t end = text->size();
    size_t next = end;
    if (end > width) {
        end = next = width;
        for (size_t i = width; i > 0; --i) {
            if (is_space((*text)[i - 1])) {
                end = i - 1;
                next = i;
                break;
            }
        }
    }
    const std::string_view line = text->substr(0, end);
    text->remove_prefix(next);
    return line;
}

// For "%.*s"; what is printed here is far from the bounds of int.
int length_of(std::string_view text) {
    return static_cast<int>(text.size() < INT32_MAX ? text.size() : INT32_MAX);
}

void print_banner(const OAK_CMDLINE_A *cmd) {
    if (cmd->banner != nullptr) {
        osl_log("%s", cmd->banner);
    }
}

// Tells the user what is wrong with `erropt`. A first character out of "*:=|"
// is shown as a dash: messages name options as they are written, never by the
// signs of a table.
OAK_RETCODE usage_err(const OAK_CMDLINE_A *cmd, const Message &msg, std::string_view erropt) {
    const char *dash = "";
    if (!erropt.empty() && std::strchr("*:=|", erropt[0]) != nullptr && erropt[0] != '\0') {
        dash = "-";
        erropt.remove_prefix(1);
    }
    char text[kMessageBytes];
    osl_snprintf(text, sizeof(text), "%s%s%.*s%s", msg.before, dash, length_of(erropt),
                 erropt.data(), msg.after);

    print_banner(cmd);
    std::string_view rest = text;
    const char *margin = "error: ";
    do {
        const std::string_view line = strwrap(&rest, kMessageWidth);
        osl_log_err("%s%.*s\n", margin, length_of(line), line.data());
        margin = "       ";
    } while (!rest.empty());
    return eBASE_COMMAND;
}

// ---- Rows ------------------------------------------------------------------

bool is_end(const Row &row) {
    return row.optShort == nullptr;
}

bool is_positional(const Row &row) {
    return row.arg != nullptr && (row.arg[0] == '#' || row.arg[0] == '?' || row.arg[0] == '*');
}

const char *display_name(const Row &row) {
    const bool named = row.arg != nullptr && row.arg[0] != '\0' && row.arg[1] != '\0';
    return named ? row.arg + 2 : "";
}

bool is_long_name(const Row &row, std::string_view name) {
    return row.optLong != nullptr && name == row.optLong;
}

// ---- The help --------------------------------------------------------------

// Prints a word of the summary, on a new line where it does not fit, and returns
// the length of the line then. No line begins with a word's leading blank.
size_t print_usage_option(size_t slen, size_t summary_offset, const char *before, const char *name,
                          const char *after) {
    const size_t length = std::strlen(before) + std::strlen(name) + std::strlen(after);
    if (slen + length + summary_offset > kSummaryWidth) {
        osl_log("\n%*s", static_cast<int>(summary_offset), "");
        slen = 0;
    }
    const bool blank = slen == 0 && before[0] == ' ';
    osl_log("%s%s%s", before + (blank ? 1 : 0), name, after);
    return slen + length - (blank ? 1 : 0);
}

void print_summary(const OAK_CMDLINE_A *cmd) {
    const char *program = cmd->argc > 0 && cmd->argv[0] != nullptr ? cmd->argv[0] : "";
    const char *slash = std::strrchr(program, '/');
    const int32_t printed = osl_log("  %s ", slash != nullptr ? slash + 1 : program);
    const size_t offset = printed > 0 ? static_cast<size_t>(printed) : 0;

    size_t slen = print_usage_option(0, offset, "[OPTION]...", "", "");
    size_t open = 0;
    for (const Row *row = cmd->opts; !is_end(*row); ++row) {
        const char kind = is_positional(*row) ? row->arg[0] : '\0';
        if (kind == '*') {
            slen = print_usage_option(slen, offset, " [", display_name(*row), "]...");
        } else if (kind == '#') {
            slen = print_usage_option(slen, offset, " ", display_name(*row), "");
        } else if (kind == '?') {
            slen = print_usage_option(slen, offset, " [", display_name(*row), "");
            ++open;
        }
    }
    for (; open > 0; --open) {
        slen = print_usage_option(slen, offset, "]", "", "");
    }
}

// Prints the text of an option whose name, `width` characters long, stands at
// the start of the line. A name wider than its column has the line for itself.
void print_usage_description(size_t width, const char *desc) {
    if (width > kOptionWidth) {
        osl_log("\n  ");
        width = 0;
    }
    size_t margin = kOptionWidth - width;
    const char *indent = "";
    size_t columns = kFirstTextWidth;
    std::string_view rest = desc;
    do {
        const std::string_view line = strwrap(&rest, columns);
        osl_log("%*s %s%.*s\n", static_cast<int>(margin), "", indent, length_of(line), line.data());
        margin = 2 + kOptionWidth;
        indent = "  ";
        columns = kOtherTextWidth;
    } while (!rest.empty());
}

void print_standard_option(const char *option, const char *desc) {
    osl_log("  %s", option);
    print_usage_description(std::strlen(option), desc);
}

void print_standard_options(const OAK_CMD_DEFAULTS *defaults) {
    print_standard_option("-h, --help", "Display this usage information");
    if (defaults == nullptr) {
        return;
    }
    print_standard_option("    --version", "Display the version information");
    print_standard_option("-q, --quiet", "Quiet mode. No information will be displayed.");
    if (defaults->no_encryption == 0) {
        print_standard_option("    --key=key", kKeyText);
    }
    if (defaults->no_docroot == 0) {
        print_standard_option("    --docroot=path",
                              "Document root under which to place the database");
    }
}

// Prints "-s, --size=N", or what there is of it, and returns its length.
size_t print_option_name(const Row &row) {
    if (is_positional(row)) {
        osl_log("%s", display_name(row));
        return std::strlen(display_name(row));
    }
    const bool has_short = row.optShort[0] != '\0';
    const bool has_long = row.optLong != nullptr;
    const char letter[3] = {'-', row.optShort[0], '\0'};
    const char *pieces[] = {
        has_short ? letter : "    ",
        has_short && has_long ? ", " : "",
        has_long ? "--" : "",
        has_long ? row.optLong : "",
        row.arg == nullptr ? "" : (has_long ? "=" : " "),
        display_name(row),
    };
    size_t length = 0;
    for (const char *piece : pieces) {
        osl_log("%s", piece);
        length += std::strlen(piece);
    }
    return length;
}

// A row named "embed" is internal to its program.
void print_own_options(const Row *opts) {
    for (const Row *row = opts; !is_end(*row); ++row) {
        if (row->desc != nullptr && !is_long_name(*row, "embed")) {
            osl_log("  ");
            print_usage_description(print_option_name(*row), row->desc);
        }
    }
}

OAK_RETCODE print_usage(const OAK_CMDLINE_A *cmd) {
    print_banner(cmd);
    if (osl_init() != sOKAY) {
        return sCMD_USAGE;
    }
    osl_log("Usage:\n\n");
    print_summary(cmd);
    osl_log("\n\n");
    if (cmd->description != nullptr) {
        osl_log("%s\n\n", cmd->description);
    }
    osl_log("%s", kHowToWriteOptions);
    print_standard_options(cmd->defaults);
    print_own_options(cmd->opts);
    osl_log("\n");
    osl_term();
    return sCMD_USAGE;
}

OAK_RETCODE print_version(const OAK_CMDLINE_A *cmd) {
    print_banner(cmd);
    osl_log("Operating System: %s\n", kOperatingSystem);
    osl_log("Architecture    : %s (%d-bit)\n", kProcessor, kWordBits);
    return sCMD_VERSION;
}

// ---- Values ----------------------------------------------------------------

bool is_integer(const char *data) {
    if (*data == '-') {
        ++data;
    }
    while (*data >= '0' && *data <= '9') {
        ++data;
    }
    return *data == '\0';
}

// An empty text and a lone minus are integers here; the program that reads the
// number has the last word.
bool valid_optarg_data(char type, const char *data) {
    switch (type) {
        case 'i':
            return is_integer(data);
        case 's':
            return true;
        case 'c':
            return data[0] != '\0' && data[1] == '\0';
        default:
            return false;
    }
}

// The next entry of the command line, or null.
const char *take_entry(OAK_CMDLINE_A *cmd) {
    if (cmd->argc < 0 || cmd->ii_next >= static_cast<uint32_t>(cmd->argc)) {
        return nullptr;
    }
    const char *entry = cmd->argv[cmd->ii_next];
    cmd->ii_next += entry != nullptr ? 1 : 0;
    return entry;
}

// Takes the value of the option at row `ind`, which the user wrote as `option`.
OAK_RETCODE cmd_parseNextOptionArgument(OAK_CMDLINE_A *cmd, uint32_t ind, const char *option,
                                        const char **pArg, uint32_t *pInd) {
    *pInd = ind;
    *pArg = nullptr;
    const Row &row = cmd->opts[ind];
    if (row.arg == nullptr) {
        return sOKAY;
    }
    const char *entry = take_entry(cmd);
    if (entry == nullptr) {
        return usage_err(cmd, kTakesArgument, option);
    }
    if (!valid_optarg_data(row.arg[0], entry)) {
        return usage_err(cmd, kWrongType, option);
    }
    *pArg = entry;
    return sOKAY;
}

// ---- Standard options ------------------------------------------------------

// Claims `longOption` where it is the option `name`, given with "--", or the
// option and its value; sNOTFOUND where it is another.
OAK_RETCODE take_standard_value(OAK_CMDLINE_A *cmd, const char *longOption, const char *name,
                                const char **pValue) {
    const size_t length = std::strlen(name + 2);
    if (std::strncmp(longOption, name + 2, length) != 0) {
        return sNOTFOUND;
    }
    if (longOption[length] == '=') {
        *pValue = longOption + length + 1;
        return sOKAY;
    }
    if (longOption[length] != '\0') {
        return sNOTFOUND;
    }
    *pValue = take_entry(cmd);
    return *pValue != nullptr ? sOKAY : usage_err(cmd, kTakesArgument, name);
}

// Claims a standard option: `shortOption`, or `longOption` without its dashes.
// sNOTFOUND leaves it to the program's table. Without `status` nothing is
// stored, and a value is taken all the same.
OAK_RETCODE cmd_parseDefaultOption(OAK_CMDLINE_A *cmd, char shortOption, const char *longOption,
                                   const char **pArg, OAK_CMDLINE_STATUS_A *status) {
    *pArg = nullptr;
    if (shortOption == 'h' || std::strcmp(longOption, "help") == 0) {
        return print_usage(cmd);
    }
    if (cmd->defaults == nullptr) {
        return sNOTFOUND;
    }
    OAK_CMDLINE_STATUS_A ignored;
    OAK_CMDLINE_STATUS_A *const target = status != nullptr ? status : &ignored;
    if (shortOption == 'q' || std::strcmp(longOption, "quiet") == 0) {
        target->quiet = OAK_TRUE;
        cmd->banner = nullptr;
        return sOKAY;
    }
    if (std::strcmp(longOption, "version") == 0) {
        return print_version(cmd);
    }
    OAK_RETCODE rc = sNOTFOUND;
    if (cmd->defaults->no_encryption == 0) {
        rc = take_standard_value(cmd, longOption, "--key", &target->enc_key);
    }
    if (rc == sNOTFOUND && cmd->defaults->no_docroot == 0) {
        rc = take_standard_value(cmd, longOption, "--docroot", &target->docroot);
    }
    return rc;
}

// ---- The reader ------------------------------------------------------------

// Reads one short option; of several rows with the letter the last decides.
OAK_RETCODE cmd_parseNextShortOption(OAK_CMDLINE_A *cmd, char shortOption, const char **pArg,
                                     uint32_t *pInd, OAK_CMDLINE_STATUS_A *status) {
    const OAK_RETCODE claim = cmd_parseDefaultOption(cmd, shortOption, "", pArg, status);
    if (claim != sNOTFOUND) {
        return claim == sOKAY ? sIGNORE : claim;
    }
    const Row *match = nullptr;
    for (const Row *row = cmd->opts; !is_end(*row); ++row) {
        match = row->optShort[0] == shortOption ? row : match;
    }
    const char option[3] = {'-', shortOption, '\0'};
    if (match == nullptr) {
        return usage_err(cmd, kUnknownShort, option + 1);
    }
    const uint32_t ind = static_cast<uint32_t>(match - cmd->opts);
    return cmd_parseNextOptionArgument(cmd, ind, option, pArg, pInd);
}

// Reads one long option; of several rows with the name the last decides.
OAK_RETCODE parse_long_option(OAK_CMDLINE_A *cmd, const char *entry, const char **pArg,
                              uint32_t *pInd, OAK_CMDLINE_STATUS_A *status) {
    const OAK_RETCODE claim = cmd_parseDefaultOption(cmd, '\0', entry + 2, pArg, status);
    if (claim != sNOTFOUND) {
        return claim == sOKAY ? sIGNORE : claim;
    }
    const std::string_view written = entry + 2;
    const size_t equals = written.find('=');
    const std::string_view name = written.substr(0, equals);
    const Row *match = nullptr;
    for (const Row *row = cmd->opts; !is_end(*row); ++row) {
        match = is_long_name(*row, name) ? row : match;
    }
    if (match == nullptr) {
        return usage_err(cmd, kUnknownLong, name);
    }
    const uint32_t ind = static_cast<uint32_t>(match - cmd->opts);
    if (equals == std::string_view::npos) {
        return cmd_parseNextOptionArgument(cmd, ind, entry, pArg, pInd);
    }
    if (match->arg == nullptr) {
        return usage_err(cmd, kTakesNoArgument, entry);
    }
    const char *value = entry + 2 + equals + 1;
    if (!valid_optarg_data(match->arg[0], value)) {
        return usage_err(cmd, kWrongType, entry);
    }
    *pArg = value;
    *pInd = ind;
    return sOKAY;
}

// Finds the row of a positional argument. A row of kind '*' takes all the rest.
OAK_RETCODE parse_positional(OAK_CMDLINE_A *cmd, const char *entry, const char **pArg,
                             uint32_t *pInd) {
    uint32_t ind = cmd->argument_ind_next;
    while (!is_end(cmd->opts[ind]) && !is_positional(cmd->opts[ind])) {
        ++ind;
    }
    if (is_end(cmd->opts[ind])) {
        return usage_err(cmd, kStrayArgument, entry);
    }
    cmd->argument_ind_next = ind + (cmd->opts[ind].arg[0] != '*' ? 1 : 0);
    *pArg = entry;
    *pInd = ind;
    return sOKAY;
}

// Reads one short option of the group that is under way, or one entry; sIGNORE
// when a standard option claimed it.
OAK_RETCODE parse_step(OAK_CMDLINE_A *cmd, const char **pArg, uint32_t *pInd,
                       OAK_CMDLINE_STATUS_A *status) {
    if (cmd->kk != 0 && cmd->argv[cmd->ii][cmd->kk] != '\0') {
        const char shortOption = cmd->argv[cmd->ii][cmd->kk++];
        return cmd_parseNextShortOption(cmd, shortOption, pArg, pInd, status);
    }
    cmd->kk = 0;
    cmd->ii = cmd->ii_next;
    const char *entry = take_entry(cmd);
    if (entry == nullptr) {
        return sNOTFOUND;
    }
    if (entry[0] != '-') {
        return parse_positional(cmd, entry, pArg, pInd);
    }
    if (entry[1] == '-') {
        return parse_long_option(cmd, entry, pArg, pInd, status);
    }
    if (entry[1] == '\0') {
        return usage_err(cmd, kUnknownDash, entry);
    }
    cmd->kk = 2;
    return cmd_parseNextShortOption(cmd, entry[1], pArg, pInd, status);
}

// Reads on to the next option or argument of the program's table: its row and
// its text. sNOTFOUND at the end of the command line.
OAK_RETCODE cmd_parseNextOptionOrArgument(OAK_CMDLINE_A *cmd, const char **pArg, uint32_t *pInd,
                                          OAK_CMDLINE_STATUS_A *status) {
    OAK_RETCODE rc = sIGNORE;
    while (rc == sIGNORE) {
        rc = parse_step(cmd, pArg, pInd, status);
    }
    return rc;
}

void rewind_cursor(OAK_CMDLINE_A *cmd) {
    cmd->ii = 0;
    cmd->ii_next = 1;
    cmd->kk = 0;
    cmd->argument_ind_next = 0;
}

// The first argument that must appear and was not filled is missing.
OAK_RETCODE check_arguments(const OAK_CMDLINE_A *cmd) {
    for (const Row *row = cmd->opts + cmd->argument_ind_next; !is_end(*row); ++row) {
        if (is_positional(*row) && row->arg[0] == '#') {
            return usage_err(cmd, kMissingArgument, display_name(*row));
        }
    }
    return sOKAY;
}

// A place for a debugger to stop, before anything of the command line is read.
[[gnu::noinline]] void oak_gdb(const char *program) {
    asm volatile("" : : "r"(program));
}

OAK_RETCODE _cmdlineInitEx(OAK_CMDLINE_A *cmd, OAK_CMDLINE_STATUS_A *status) {
    oak_gdb(cmd->argc > 0 ? cmd->argv[0] : nullptr);
    OAK_RETCODE rc = sOKAY;
    while (rc == sOKAY) {
        const char *arg = nullptr;
        uint32_t ind = 0;
        rc = cmd_parseNextOptionOrArgument(cmd, &arg, &ind, status);
    }
    if (rc != sNOTFOUND) {
        return rc;
    }
    rc = check_arguments(cmd);
    if (rc != sOKAY) {
        return rc;
    }
    rewind_cursor(cmd);
    print_banner(cmd);
    return sOKAY;
}

// The row of the next option or argument in the program's own pass, or null.
const Row *next_row(OAK_CMDLINE_A *cmd, const char **pArg) {
    const char *arg = nullptr;
    uint32_t ind = 0;
    const bool found = cmd != nullptr && cmd->opts != nullptr &&
                       cmd_parseNextOptionOrArgument(cmd, &arg, &ind, nullptr) == sOKAY;
    if (pArg != nullptr) {
        *pArg = found ? arg : nullptr;
    }
    return found ? &cmd->opts[ind] : nullptr;
}

} // namespace

OAK_RETCODE oak_cmdlineInit(OAK_CMDLINE_A *cmd, int32_t argc, const char *const *argv,
                            const char *description, const OAK_CMDLINE_OPT_A *opts) {
    return oak_cmdlineInitEx(cmd, nullptr, argc, argv, description, opts, nullptr, nullptr);
}

OAK_RETCODE oak_cmdlineInitEx(OAK_CMDLINE_A *cmd, const char *banner, int32_t argc,
                              const char *const *argv, const char *description,
                              const OAK_CMDLINE_OPT_A *opts, const OAK_CMD_DEFAULTS *defaults,
                              OAK_CMDLINE_STATUS_A *status) {
    if (cmd == nullptr) {
        return eINVNULLARG;
    }
    *cmd = {};
    if (status != nullptr) {
        *status = {};
    }
    if (argv == nullptr || opts == nullptr) {
        return eINVNULLARG;
    }
    cmd->banner = banner;
    cmd->argc = argc;
    cmd->argv = argv;
    cmd->description = description;
    cmd->opts = opts;
    cmd->defaults = defaults;
    rewind_cursor(cmd);
    return _cmdlineInitEx(cmd, status);
}

char oak_cmdlineNextShortOption(OAK_CMDLINE_A *cmd, const char **pArg) {
    const Row *row = next_row(cmd, pArg);
    return row != nullptr ? row->optShort[0] : '\0';
}

const char *oak_cmdlineNextLongOption(OAK_CMDLINE_A *cmd, const char **pArg) {
    const Row *row = next_row(cmd, pArg);
    if (row == nullptr) {
        return nullptr;
    }
    return row->optLong != nullptr ? row->optLong : row->optShort;
}
