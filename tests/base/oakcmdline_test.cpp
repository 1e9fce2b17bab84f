// The command line of a utility: every message and rule, the help byte for
// byte, the standard options, and command lines that nobody would write.
#include <climits>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "oakcmdlineapi.h"
#include "test_support.h"

namespace {

using Strings = std::vector<std::string>;

// ---- Tables ----------------------------------------------------------------

const OAK_CMDLINE_OPT_A kTable[] = {
    {"a", nullptr, nullptr, "Flag a"},
    {"b", "bold", nullptr, "Flag b"},
    {"s", "size", "i=N", "How many there are"},
    {"", "name", "s=text", "What it is called"},
    {"c", "char", "c=letter", "One letter"},
    {"o", nullptr, "s=file", "Where it goes"},
    {"x", "hidden", "s=secret", nullptr},
    {"", "odd", "z=thing", "A kind that refuses everything"},
    {"", "embed", nullptr, "Not shown"},
    {"f", nullptr, "#=input", "The file to read"},
    {"g", nullptr, "?=output", "The file to write"},
    {"r", nullptr, "*=rest", "All the others"},
    {nullptr, nullptr, nullptr, nullptr},
};

const OAK_CMDLINE_OPT_A kOptionsAlone[] = {
    {"a", nullptr, nullptr, "Flag a"},
    {"b", "bold", nullptr, "Flag b"},
    {"s", "size", "i=N", "A number"},
    {"o", "out", "s=file", "A file"},
    {"q", nullptr, nullptr, "A flag of its own"},
    {"", "version", nullptr, "Its own too"},
    {nullptr, nullptr, nullptr, nullptr},
};

const OAK_CMDLINE_OPT_A kEmpty[] = {{nullptr, nullptr, nullptr, nullptr}};

const OAK_CMD_DEFAULTS kAll = {0, 0};
const OAK_CMD_DEFAULTS kNeither = {1, 1};

// ---- Running a command line ------------------------------------------------

struct Outcome {
    OAK_RETCODE rc = sOKAY;
    std::string out;
    std::string err;
    Strings seen; // "row" for a flag, "row:value" for the rest, in the program's pass
    OAK_CMDLINE_STATUS_A status{};
    std::shared_ptr<const Strings> args; // what the status points into
};

struct Utility {
    const OAK_CMDLINE_OPT_A *table = kTable;
    const OAK_CMD_DEFAULTS *defaults = nullptr;
    const char *banner = nullptr;
    const char *description = nullptr;
    bool by_long_name = false;
    std::string program = "/usr/bin/tool";

    Outcome run(const Strings &args) const;
};

std::optional<std::string> next(OAK_CMDLINE_A *cmd, bool by_long_name, const char **arg) {
    if (by_long_name) {
        const char *name = oak_cmdlineNextLongOption(cmd, arg);
        return name != nullptr ? std::optional<std::string>(name) : std::nullopt;
    }
    const char letter = oak_cmdlineNextShortOption(cmd, arg);
    return letter != '\0' ? std::optional(std::string(1, letter)) : std::nullopt;
}

Outcome Utility::run(const Strings &args) const {
    Outcome outcome;
    outcome.args = std::make_shared<const Strings>(args);
    std::vector<const char *> argv = {program.c_str()};
    for (const std::string &arg : *outcome.args) {
        argv.push_back(arg.c_str());
    }
    OAK_CMDLINE_A cmd;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    outcome.rc = oak_cmdlineInitEx(&cmd, banner, static_cast<int32_t>(argv.size()), argv.data(),
                                   description, table, defaults, &outcome.status);
    if (outcome.rc == sOKAY) {
        const char *arg = nullptr;
        while (const auto row = next(&cmd, by_long_name, &arg)) {
            outcome.seen.push_back(arg == nullptr ? *row : *row + ":" + arg);
        }
        EXPECT_EQ(arg, nullptr);
    }
    outcome.out = testing::internal::GetCapturedStdout();
    outcome.err = testing::internal::GetCapturedStderr();
    return outcome;
}

void expect_seen(const Outcome &outcome, const Strings &seen) {
    EXPECT_EQ(outcome.rc, sOKAY) << outcome.err;
    EXPECT_EQ(outcome.seen, seen);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
}

void expect_error(const Outcome &outcome, const std::string &message) {
    EXPECT_EQ(outcome.rc, eBASE_COMMAND);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "error: " + message + "\n");
}

// ---- Options and their values ----------------------------------------------

TEST(CommandLine, IsEmpty) {
    Utility utility;
    utility.table = kOptionsAlone;
    expect_seen(utility.run({}), {});
    utility.table = kEmpty;
    expect_seen(utility.run({}), {});
}

TEST(CommandLine, DeliversItsEntriesInTheirOrder) {
    expect_seen(Utility().run({"-a", "in", "-s", "12", "out", "--bold", "-o", "file", "more", "x"}),
                {"a", "f:in", "s:12", "g:out", "b", "o:file", "r:more", "r:x"});
}

TEST(ShortOptions, AreReadFromAGroup) {
    expect_seen(Utility().run({"-ab", "in"}), {"a", "b", "f:in"});
    expect_seen(Utility().run({"-aab", "in", "-ba"}), {"a", "a", "b", "f:in", "b", "a"});
}

TEST(ShortOptions, TakeTheirValueFromTheNextEntryEvenWithinAGroup) {
    expect_seen(Utility().run({"-oa", "file", "in"}), {"o:file", "a", "f:in"});
    expect_seen(Utility().run({"-aosb", "file", "12", "in"}), {"a", "o:file", "s:12", "b", "f:in"});
    expect_seen(Utility().run({"-o", "-a", "in"}), {"o:-a", "f:in"}); // whatever it looks like
    expect_seen(Utility().run({"-o", "--", "in"}), {"o:--", "f:in"});
    expect_seen(Utility().run({"-o", "", "in"}), {"o:", "f:in"});
}

TEST(ShortOptions, DoNotTakeAValueFromTheirOwnEntry) {
    expect_error(Utility().run({"-ofile", "in", "out"}),
                 "argument for option '-f' is of wrong type"); // the group -o -f -i -l -e
    Utility utility;
    utility.table = kOptionsAlone;
    expect_error(utility.run({"-ofile", "name"}),
                 "Unknown option '-f' ('--help' for more information)");
}

TEST(LongOptions, TakeTheirValueEitherWay) {
    for (const Strings &args : {Strings{"--name=x", "in"}, Strings{"--name", "x", "in"}}) {
        Utility utility;
        utility.by_long_name = true;
        expect_seen(utility.run(args), {"name:x", "f:in"});
    }
    Utility utility;
    utility.by_long_name = true;
    expect_seen(utility.run({"--name=", "in"}), {"name:", "f:in"});
    expect_seen(utility.run({"--name==", "in"}), {"name:=", "f:in"});
    expect_seen(utility.run({"--name=a=b", "in"}), {"name:a=b", "f:in"});
    expect_seen(utility.run({"--name", "--bold", "in"}), {"name:--bold", "f:in"});
}

TEST(LongOptions, AreNamedByTheirShortTextWhereTheyHaveNoLongName) {
    Utility utility;
    utility.by_long_name = true;
    expect_seen(utility.run({"-a", "--bold", "-s", "1", "in"}), {"a", "bold", "size:1", "f:in"});
}

TEST(LongOptions, AreWrittenInFullAndInTheirOwnCase) {
    for (const std::string name : {"bol", "boldx", "Bold", "bold "}) {
        expect_error(Utility().run({"--" + name}),
                     "Unknown option '--" + name + "' ('--help' for more information)");
    }
}

TEST(LongOptions, AreLeftAloneByOneCharacterOfAGroup) {
    expect_seen(Utility().run({"in", "-b", "--bold"}), {"f:in", "b", "b"});
}

TEST(Options, OfTwoRowsWithOneNameAreTheLast) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"v", "verbose", nullptr, "First"},
        {"v", "verbose", "i=level", "Second"},
        {nullptr, nullptr, nullptr, nullptr},
    };
    Utility utility;
    utility.table = table;
    expect_seen(utility.run({"-v", "3", "--verbose", "4", "--verbose=5"}), {"v:3", "v:4", "v:5"});
}

TEST(Options, MatchTheFirstCharacterOfTheirShortText) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"verbose", nullptr, nullptr, "A text longer than a character"},
        {nullptr, nullptr, nullptr, nullptr},
    };
    Utility utility;
    utility.table = table;
    expect_seen(utility.run({"-v"}), {"v"});
    utility.by_long_name = true;
    expect_seen(utility.run({"-v"}), {"verbose"});
}

TEST(Values, OfKindIntegerAreAMinusAndDigits) {
    for (const std::string good : {"0", "12", "-5", "007", "99999999999999999999999", "", "-"}) {
        expect_seen(Utility().run({"--size=" + good, "in"}), {"s:" + good, "f:in"});
        expect_seen(Utility().run({"-s", good, "in"}), {"s:" + good, "f:in"});
        expect_seen(Utility().run({"--size", good, "in"}), {"s:" + good, "f:in"});
    }
    for (const std::string bad :
         {"12x", "x", "+1", "--1", "-1-", " 1", "1 ", "1.0", "0x1", "1e3"}) {
        expect_error(Utility().run({"--size=" + bad, "in"}),
                     "argument for option '--size=" + bad + "' is of wrong type");
        expect_error(Utility().run({"--size", bad, "in"}),
                     "argument for option '--size' is of wrong type");
        expect_error(Utility().run({"-s", bad, "in"}), "argument for option '-s' is of wrong type");
        expect_error(Utility().run({"-as", bad, "in"}),
                     "argument for option '-s' is of wrong type");
    }
}

TEST(Values, OfKindCharacterAreOneCharacter) {
    expect_seen(Utility().run({"--char=a", "in"}), {"c:a", "f:in"});
    expect_seen(Utility().run({"-c", "-", "in"}), {"c:-", "f:in"});
    expect_error(Utility().run({"--char=ab", "in"}),
                 "argument for option '--char=ab' is of wrong type");
    expect_error(Utility().run({"--char=", "in"}),
                 "argument for option '--char=' is of wrong type");
    expect_error(Utility().run({"-c", "", "in"}), "argument for option '-c' is of wrong type");
}

TEST(Values, OfAnyOtherKindAreRefused) {
    expect_error(Utility().run({"--odd=1", "in"}),
                 "argument for option '--odd=1' is of wrong type");
    expect_error(Utility().run({"--odd", "", "in"}),
                 "argument for option '--odd' is of wrong type");
    expect_error(Utility().run({"-f", "x", "in"}), "argument for option '-f' is of wrong type");
}

TEST(Values, AreMissing) {
    expect_error(Utility().run({"in", "-s"}), "option flag '-s' takes an argument");
    expect_error(Utility().run({"in", "-as"}), "option flag '-s' takes an argument");
    expect_error(Utility().run({"in", "--name"}), "option flag '--name' takes an argument");
}

TEST(Values, AreRefusedByFlags) {
    expect_error(Utility().run({"--bold=x", "in"}),
                 "option flag '--bold=x' does not take any arguments");
    expect_error(Utility().run({"--bold=", "in"}),
                 "option flag '--bold=' does not take any arguments");
}

TEST(UnknownOptions, AreNamed) {
    expect_error(Utility().run({"-z", "in"}),
                 "Unknown option '-z' ('--help' for more information)");
    expect_error(Utility().run({"-az", "in"}),
                 "Unknown option '-z' ('--help' for more information)");
    expect_error(Utility().run({"--zoo", "in"}),
                 "Unknown option '--zoo' ('--help' for more information)");
    expect_error(Utility().run({"--zoo=12", "in"}), // cut at the equals sign
                 "Unknown option '--zoo' ('--help' for more information)");
    expect_error(Utility().run({"-", "in"}), "Unknown option '-' ('--help' for more information)");
    expect_error(Utility().run({"--", "in"}),
                 "Unknown option '--' ('--help' for more information)");
    expect_error(Utility().run({"--=x", "in"}),
                 "Unknown option '--' ('--help' for more information)");
}

TEST(UsageErrors, ShowAMarkOfTheTableAsADash) {
    expect_error(Utility().run({"--*x"}), "Unknown option '---x' ('--help' for more information)");
    expect_error(Utility().run({"--:x"}), "Unknown option '---x' ('--help' for more information)");
    expect_error(Utility().run({"--|"}), "Unknown option '---' ('--help' for more information)");
    expect_error(Utility().run({"-="}), "Unknown option '--' ('--help' for more information)");
    Utility utility;
    utility.table = kOptionsAlone;
    expect_error(utility.run({"*.c"}), "Stray argument '-.c' ('--help' for more information)");
    expect_error(utility.run({"=a"}), "Stray argument '-a' ('--help' for more information)");
    expect_error(utility.run({"a*"}), "Stray argument 'a*' ('--help' for more information)");
    expect_error(utility.run({"#x"}), "Stray argument '#x' ('--help' for more information)");
    expect_error(utility.run({"%s%n"}), "Stray argument '%s%n' ('--help' for more information)");
}

// ---- Positional arguments --------------------------------------------------

TEST(Arguments, FillTheRowsInTurnAndTheLastTakesTheRest) {
    expect_seen(Utility().run({"1"}), {"f:1"});
    expect_seen(Utility().run({"1", "2"}), {"f:1", "g:2"});
    expect_seen(Utility().run({"1", "2", "3", "4", "5"}), {"f:1", "g:2", "r:3", "r:4", "r:5"});
    expect_seen(Utility().run({""}), {"f:"});
}

TEST(Arguments, AreMissing) {
    expect_error(Utility().run({}), "Missing argument 'input' ('--help' for more information)");
    expect_error(Utility().run({"-a"}), "Missing argument 'input' ('--help' for more information)");
    const OAK_CMDLINE_OPT_A table[] = {
        {"i", nullptr, "#=input", nullptr},
        {"o", nullptr, "#=output", nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    Utility utility;
    utility.table = table;
    expect_error(utility.run({}), "Missing argument 'input' ('--help' for more information)");
    expect_error(utility.run({"x"}), "Missing argument 'output' ('--help' for more information)");
    expect_seen(utility.run({"x", "y"}), {"i:x", "o:y"});
    expect_error(utility.run({"x", "y", "z"}),
                 "Stray argument 'z' ('--help' for more information)");
}

TEST(Arguments, BehindARowThatTakesAllTheRestAreNeverFilled) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"r", nullptr, "*=rest", nullptr},
        {"o", nullptr, "#=output", nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    Utility utility;
    utility.table = table;
    expect_error(utility.run({"x", "y"}),
                 "Missing argument 'output' ('--help' for more information)");
}

TEST(Arguments, AreStrayWithoutARow) {
    Utility utility;
    utility.table = kOptionsAlone;
    expect_error(utility.run({"-a", "x"}), "Stray argument 'x' ('--help' for more information)");
}

TEST(Arguments, HaveNoNameInATableThatGivesThemNone) {
    for (const char *descriptor : {"#", "#=", "##"}) {
        const OAK_CMDLINE_OPT_A table[] = {{"i", nullptr, descriptor, nullptr},
                                           {nullptr, nullptr, nullptr, nullptr}};
        Utility utility;
        utility.table = table;
        expect_error(utility.run({}), "Missing argument '' ('--help' for more information)");
    }
}

// ---- Standard options ------------------------------------------------------

TEST(StandardOptions, AreTakenOutOfTheCommandLine) {
    Utility utility;
    utility.defaults = &kAll;
    for (const Strings &args : {Strings{"-q", "in", "--key", "aes:k", "-a", "--docroot=/tmp"},
                                Strings{"--quiet", "--key=aes:k", "--docroot", "/tmp", "in", "-a"},
                                Strings{"in", "-qa", "--docroot", "/tmp", "--key=aes:k"}}) {
        Outcome outcome = utility.run(args);
        std::sort(outcome.seen.begin(), outcome.seen.end());
        expect_seen(outcome, {"a", "f:in"});
        EXPECT_EQ(outcome.status.quiet, OAK_TRUE);
        EXPECT_STREQ(outcome.status.enc_key, "aes:k");
        EXPECT_STREQ(outcome.status.docroot, "/tmp");
    }
}

TEST(StandardOptions, AreUnsetWhenTheyAreNotGiven) {
    Utility utility;
    utility.defaults = &kAll;
    const Outcome outcome = utility.run({"in"});
    EXPECT_EQ(outcome.status.quiet, OAK_FALSE);
    EXPECT_EQ(outcome.status.enc_key, nullptr);
    EXPECT_EQ(outcome.status.docroot, nullptr);
}

TEST(StandardOptions, TakeAnEmptyValueAndTheLastOfSeveral) {
    Utility utility;
    utility.defaults = &kAll;
    const Outcome outcome =
        utility.run({"--key=a", "in", "--docroot", "x", "--key=", "--docroot=y"});
    expect_seen(outcome, {"f:in"});
    EXPECT_STREQ(outcome.status.enc_key, "");
    EXPECT_STREQ(outcome.status.docroot, "y");
}

TEST(StandardOptions, MissTheirValue) {
    Utility utility;
    utility.defaults = &kAll;
    expect_error(utility.run({"in", "--key"}), "option flag '--key' takes an argument");
    expect_error(utility.run({"in", "--docroot"}), "option flag '--docroot' takes an argument");
}

TEST(StandardOptions, AreUnknownWhereTheyAreExcluded) {
    Utility utility;
    utility.defaults = &kNeither;
    expect_error(utility.run({"--key=a"}),
                 "Unknown option '--key' ('--help' for more information)");
    expect_error(utility.run({"--docroot", "a"}),
                 "Unknown option '--docroot' ('--help' for more information)");
    expect_error(utility.run({"--keys"}),
                 "Unknown option '--keys' ('--help' for more information)");
    utility.defaults = &kAll;
    expect_error(utility.run({"--keys=a"}),
                 "Unknown option '--keys' ('--help' for more information)");
    expect_error(utility.run({"--ke"}), "Unknown option '--ke' ('--help' for more information)");
    expect_error(utility.run({"--quiet=1"}),
                 "Unknown option '--quiet' ('--help' for more information)");
    expect_error(utility.run({"--help=1"}),
                 "Unknown option '--help' ('--help' for more information)");
}

TEST(StandardOptions, BelongToTheTableWithoutDefaults) {
    expect_error(Utility().run({"--version"}),
                 "Unknown option '--version' ('--help' for more information)");
    expect_error(Utility().run({"-q"}), "Unknown option '-q' ('--help' for more information)");
    Utility utility;
    utility.table = kOptionsAlone;
    utility.by_long_name = true;
    expect_seen(utility.run({"-q", "--version"}), {"q", "version"});
    utility.defaults = &kAll; // now they are taken before the table is asked
    expect_seen(utility.run({"-q"}), {});
    EXPECT_EQ(utility.run({"--version"}).rc, sCMD_VERSION);
}

TEST(StandardOptions, AreTakenWithoutARecordToo) {
    const char *argv[] = {"tool", "--key", "k", "-q", "--docroot=d", "in"};
    OAK_CMDLINE_A cmd;
    const char *arg = nullptr;
    testing::internal::CaptureStdout();
    EXPECT_EQ(oak_cmdlineInitEx(&cmd, "banner\n", 6, argv, nullptr, kTable, &kAll, nullptr), sOKAY);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(oak_cmdlineNextShortOption(&cmd, &arg), 'f');
    EXPECT_EQ(arg, argv[5]);
    EXPECT_EQ(oak_cmdlineNextShortOption(&cmd, &arg), '\0');
    EXPECT_EQ(arg, nullptr);
}

// ---- Banner and version ----------------------------------------------------

TEST(Banner, IsPrintedOnceAtTheEndOfInit) {
    Utility utility;
    utility.banner = "Tool 14\nby us\n";
    utility.defaults = &kAll;
    const Outcome outcome = utility.run({"in"});
    EXPECT_EQ(outcome.rc, sOKAY);
    EXPECT_EQ(outcome.out, "Tool 14\nby us\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(Banner, IsKeptBackByQuiet) {
    Utility utility;
    utility.banner = "Tool 14\n";
    utility.defaults = &kAll;
    EXPECT_EQ(utility.run({"in", "-q"}).out, "");
    EXPECT_EQ(utility.run({"in", "--quiet"}).out, "");
    const Outcome version = utility.run({"-q", "--version"});
    EXPECT_EQ(version.out.find("Tool 14"), std::string::npos);
}

TEST(Banner, StandsOnStandardOutputBeforeAUsageError) {
    Utility utility;
    utility.banner = "Tool 14\n";
    const Outcome outcome = utility.run({"-z"});
    EXPECT_EQ(outcome.rc, eBASE_COMMAND);
    EXPECT_EQ(outcome.out, "Tool 14\n");
    EXPECT_EQ(outcome.err, "error: Unknown option '-z' ('--help' for more information)\n");
}

TEST(Version, NamesSystemAndProcessor) {
    Utility utility;
    utility.banner = "100% Tool\n";
    utility.defaults = &kNeither;
    const Outcome outcome = utility.run({"--version", "--nonsense"});
    EXPECT_EQ(outcome.rc, sCMD_VERSION);
    EXPECT_EQ(outcome.err, "");
#if defined(__x86_64__)
    EXPECT_EQ(outcome.out, "100% Tool\n"
                           "Operating System: Linux\n"
                           "Architecture    : x86_64 (64-bit)\n");
#elif defined(__aarch64__)
    EXPECT_EQ(outcome.out, "100% Tool\n"
                           "Operating System: Linux\n"
                           "Architecture    : aarch64 (64-bit)\n");
#endif
}

// ---- The help --------------------------------------------------------------

constexpr char kHowTo[] =
    "Short options can be combined into one string starting with a single '-'.\n"
    "Mandatory arguments to long options are mandatory for short options too.\n"
    "Long option arguments can also be specified in a separate argument.\n\n";

constexpr char kHelpLine[] = "  -h, --help                 Display this usage information\n";

TEST(Help, IsLaidOutToTheByte) {
    const std::string own = "  -a                         Flag a\n"
                            "  -b, --bold                 Flag b\n"
                            "  -s, --size=N               How many there are\n"
                            "      --name=text            What it is called\n"
                            "  -c, --char=letter          One letter\n"
                            "  -o file                    Where it goes\n"
                            "      --odd=thing            A kind that refuses everything\n"
                            "  input                      The file to read\n"
                            "  output                     The file to write\n"
                            "  rest                       All the others\n"
                            "\n";
    Utility utility;
    utility.description = "Does what a tool does.";
    const std::string head = "Usage:\n\n  tool [OPTION]... input [output [rest]...]\n\n"
                             "Does what a tool does.\n\n";
    for (const char *option : {"-h", "--help"}) {
        const Outcome outcome = utility.run({option, "--nonsense"});
        EXPECT_EQ(outcome.rc, sCMD_USAGE);
        EXPECT_EQ(outcome.out, head + kHowTo + kHelpLine + own);
        EXPECT_EQ(outcome.err, "");
    }
    utility.defaults = &kAll;
    utility.banner = "Tool 14\n";
    EXPECT_EQ(
        utility.run({"-ah"}).out,
        "Tool 14\n" + head + kHowTo + kHelpLine +
            "      --version              Display the version information\n"
            "  -q, --quiet                Quiet mode. No information will be displayed.\n"
            "      --key=key              Specify the encryption key for the database\n"
            "                               ([algorithm:]passcode). The valid algorithms are\n"
            "                               xor, aes128, aes192 and aes256. The aes algorithms\n"
            "                               are only available for packages that have strong\n"
            "                               encryption support. If an algorithm is not\n"
            "                               specified, the default is aes128 for strong\n"
            "                               encryption packages and xor otherwise.\n"
            "      --docroot=path         Document root under which to place the database\n" +
            own);
}

TEST(Help, LeavesOutWhatIsExcludedAndADescriptionThatIsNotThere) {
    Utility utility;
    utility.table = kEmpty;
    utility.defaults = &kNeither;
    EXPECT_EQ(utility.run({"--help"}).out,
              std::string("Usage:\n\n  tool [OPTION]...\n\n") + kHowTo + kHelpLine +
                  "      --version              Display the version information\n"
                  "  -q, --quiet                Quiet mode. No information will be displayed.\n"
                  "\n");
}

TEST(Help, NamesTheProgramWithoutItsDirectory) {
    Utility utility;
    utility.table = kEmpty;
    for (const auto &[program, name] : {std::pair<std::string, std::string>{"tool", "tool"},
                                        {"./tool", "tool"},
                                        {"/a/b/c", "c"},
                                        {"a/", ""},
                                        {"", ""}}) {
        utility.program = program;
        EXPECT_EQ(utility.run({"-h"}).out,
                  "Usage:\n\n  " + name + " [OPTION]...\n\n" + kHowTo + kHelpLine + "\n");
    }
}

std::string help_of(const OAK_CMDLINE_OPT_A *table, const std::string &program = "tool") {
    Utility utility;
    utility.table = table;
    utility.program = program;
    const Outcome outcome = utility.run({"-h"});
    EXPECT_EQ(outcome.rc, sCMD_USAGE);
    return outcome.out;
}

std::string own_part(const OAK_CMDLINE_OPT_A *table) {
    const std::string help = help_of(table);
    const size_t start = help.find(kHelpLine);
    EXPECT_NE(start, std::string::npos);
    return help.substr(start + sizeof(kHelpLine) - 1);
}

TEST(Help, WrapsATextAndGivesAWideNameALineOfItsOwn) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"o", "output-directory", "s=name-of-it",
         "The directory that takes the output; it is made when it does not exist, and its parents "
         "with it"},
        {"", "twenty-six-characters-x", nullptr, "In"},     // 4 blanks, 2 dashes, 23 letters: 29
        {"", "twenty-characters-ab", nullptr, "Just fits"}, // 26
        {"", "twenty-one-characters", nullptr, "Too wide"}, // 27
        {"e", nullptr, nullptr, ""},
        {nullptr, nullptr, nullptr, nullptr},
    };
    EXPECT_EQ(own_part(table),
              "  -o, --output-directory=name-of-it\n"
              "                             The directory that takes the output; it is made when\n"
              "                               it does not exist, and its parents with it\n"
              "      --twenty-six-characters-x\n"
              "                             In\n"
              "      --twenty-characters-ab Just fits\n"
              "      --twenty-one-characters\n"
              "                             Too wide\n"
              "  -e                         \n"
              "\n");
}

// A text of exactly 54 characters is one line. One character more is cut at the
// last white space among its first 54, or hard where there is none.
TEST(Help, CutsALineAtItsWidth) {
    const std::string margin(29, ' ');
    const std::string exact = std::string(50, 'a') + " bcd";
    const std::string longer = exact + "e";
    const std::string at_the_end = std::string(53, 'a') + " bcd";
    const std::string behind_the_end = std::string(54, 'a') + " b";
    const std::string hard = std::string(54 + 52 + 3, 'x');
    const std::string leading = " " + std::string(60, 'y');
    const std::string tab = std::string(10, 'a') + "\t" + std::string(50, 'b');
    const OAK_CMDLINE_OPT_A table[] = {
        {"1", nullptr, nullptr, exact.c_str()},
        {"2", nullptr, nullptr, longer.c_str()},
        {"3", nullptr, nullptr, at_the_end.c_str()},
        {"4", nullptr, nullptr, behind_the_end.c_str()},
        {"5", nullptr, nullptr, hard.c_str()},
        {"6", nullptr, nullptr, leading.c_str()},
        {"7", nullptr, nullptr, tab.c_str()},
        {nullptr, nullptr, nullptr, nullptr},
    };
    const auto name = [](char digit) { return std::string("  -") + digit + std::string(25, ' '); };
    EXPECT_EQ(own_part(table), name('1') + exact + "\n" +                        //
                                   name('2') + std::string(50, 'a') + "\n" +     //
                                   margin + "  bcde\n" +                         //
                                   name('3') + std::string(53, 'a') + "\n" +     //
                                   margin + "  bcd\n" +                          //
                                   name('4') + std::string(54, 'a') + "\n" +     //
                                   margin + "   b\n" +                           //
                                   name('5') + std::string(54, 'x') + "\n" +     //
                                   margin + "  " + std::string(52, 'x') + "\n" + //
                                   margin + "  xxx\n" +                          //
                                   name('6') + "\n" +                            //
                                   margin + "  " + std::string(52, 'y') + "\n" + //
                                   margin + "  " + std::string(8, 'y') + "\n" +  //
                                   name('7') + std::string(10, 'a') + "\n" +     //
                                   margin + "  " + std::string(50, 'b') + "\n\n");
}

TEST(Help, CutsALineAtAnyWhiteSpace) {
    for (const char blank : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        const std::string text = std::string(10, 'a') + blank + std::string(50, 'b');
        const OAK_CMDLINE_OPT_A table[] = {{"1", nullptr, nullptr, text.c_str()},
                                           {nullptr, nullptr, nullptr, nullptr}};
        EXPECT_EQ(own_part(table), "  -1" + std::string(25, ' ') + std::string(10, 'a') + "\n" +
                                       std::string(31, ' ') + std::string(50, 'b') + "\n\n")
            << static_cast<int>(blank);
    }
}

TEST(Help, ShowsNamesThatLackAPart) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"", nullptr, "s=value", "Neither name"}, {"v", nullptr, "s", "A kind alone"},
        {"w", "wide", "s=", "No display name"},   {"p", nullptr, "*", "An argument without a name"},
        {"z", nullptr, "", "Not even a kind"},    {nullptr, nullptr, nullptr, nullptr},
    };
    EXPECT_EQ(own_part(table), "       value                 Neither name\n"
                               "  -v                         A kind alone\n"
                               "  -w, --wide=                No display name\n"
                               "                             An argument without a name\n"
                               "  -z                         Not even a kind\n"
                               "\n");
}

TEST(HelpSummary, NestsOptionalArguments) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"1", nullptr, "?=one", nullptr},
        {"2", nullptr, "?=two", nullptr},
        {"3", nullptr, "?=three", nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    const std::string expected = "Usage:\n\n  tool [OPTION]... [one [two [three]]]\n\n";
    EXPECT_EQ(help_of(table).substr(0, expected.size()), expected);
}

// The line holds 78 characters less the offset, which is 7 for "  tool ". A word
// that reaches the end fits; one that goes beyond it opens a line, without its
// leading blank.
TEST(HelpSummary, WrapsAtItsWidth) {
    const std::string fits = "?=" + std::string(78 - 7 - 11 - 2, 'f'); // " [" and the name
    const OAK_CMDLINE_OPT_A table[] = {
        {"1", nullptr, fits.c_str(), nullptr},
        {"2", nullptr, "#=next", nullptr},
        {"3", nullptr, "*=rest", nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    const std::string expected =
        "Usage:\n\n  tool [OPTION]... [" + std::string(58, 'f') + "\n       next [rest]...]\n\n";
    EXPECT_EQ(help_of(table).substr(0, expected.size()), expected);

    const std::string beyond = "?=" + std::string(78 - 7 - 11 - 1, 'f');
    const OAK_CMDLINE_OPT_A wider[] = {
        {"1", nullptr, beyond.c_str(), nullptr},
        {"2", nullptr, "*=r", nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    const std::string wrapped =
        "Usage:\n\n  tool [OPTION]...\n       [" + std::string(59, 'f') + " [r]...]\n\n";
    EXPECT_EQ(help_of(wider).substr(0, wrapped.size()), wrapped);
}

TEST(HelpSummary, PutsEachWordOnALineUnderAVeryLongName) {
    const OAK_CMDLINE_OPT_A table[] = {
        {"1", nullptr, "#=in", nullptr},
        {"2", nullptr, "?=out", nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    const std::string program(80, 'p');
    const std::string line = "\n" + std::string(83, ' ');
    const std::string expected = "Usage:\n\n  " + program + " " + line + "[OPTION]..." + line +
                                 "in" + line + "[out" + line + "]\n\n";
    EXPECT_EQ(help_of(table, program).substr(0, expected.size()), expected);
}

// ---- Long messages ---------------------------------------------------------

TEST(UsageErrors, AreWrapped) {
    Utility utility;
    utility.table = kOptionsAlone;
    const std::string word(20, 'w');
    const std::string stray = word + " " + word + " " + word + " " + word;
    // 72 columns: the third blank would be the 78th character.
    expect_error(utility.run({stray}), "Stray argument '" + word + " " + word + "\n       " + word +
                                           " " + word + "' ('--help' for more\n" +
                                           "       information)");
}

TEST(UsageErrors, WithoutBlanksAreCutHardAndAreNeverLongerThanTheirBuffer) {
    Utility utility;
    utility.table = kOptionsAlone;
    const Outcome outcome = utility.run({std::string(5000, 'w')});
    EXPECT_EQ(outcome.rc, eBASE_COMMAND);
    // 359 characters: "Stray argument '" and 343 letters.
    EXPECT_EQ(outcome.err, "error: Stray argument\n"
                           "       '" +
                               std::string(71, 'w') + "\n" +             //
                               "       " + std::string(72, 'w') + "\n" + //
                               "       " + std::string(72, 'w') + "\n" + //
                               "       " + std::string(72, 'w') + "\n" + //
                               "       " + std::string(343 - 71 - 216, 'w') + "\n");
}

// ---- Command lines that nobody would write ---------------------------------

TEST(HostileCommandLine, HasNullsAndNoEntries) {
    OAK_CMDLINE_A cmd;
    const char *argv[] = {"tool", "in", nullptr, "-z"};
    const char *const nothing[] = {nullptr};
    EXPECT_EQ(oak_cmdlineInit(nullptr, 1, argv, nullptr, kTable), eINVNULLARG);
    EXPECT_EQ(oak_cmdlineInit(&cmd, 1, nullptr, nullptr, kTable), eINVNULLARG);
    EXPECT_EQ(oak_cmdlineNextLongOption(&cmd, nullptr), nullptr);
    EXPECT_EQ(oak_cmdlineInit(&cmd, 1, argv, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_cmdlineNextShortOption(&cmd, nullptr), '\0');
    EXPECT_EQ(oak_cmdlineNextShortOption(nullptr, nullptr), '\0');
    for (const int32_t argc : {0, -1, INT_MIN, 1}) {
        EXPECT_EQ(oak_cmdlineInit(&cmd, argc, nothing, nullptr, kOptionsAlone), sOKAY) << argc;
        EXPECT_EQ(oak_cmdlineNextLongOption(&cmd, nullptr), nullptr);
    }
    EXPECT_EQ(oak_cmdlineInit(&cmd, 4, argv, nullptr, kTable), sOKAY); // a null ends the entries
    EXPECT_EQ(oak_cmdlineNextShortOption(&cmd, nullptr), 'f');
    EXPECT_EQ(oak_cmdlineNextShortOption(&cmd, nullptr), '\0');
}

TEST(HostileCommandLine, HelpsAProgramWithoutAName) {
    const char *const argv[] = {nullptr, "-h"};
    OAK_CMDLINE_A cmd;
    testing::internal::CaptureStdout();
    EXPECT_EQ(oak_cmdlineInit(&cmd, 2, argv, nullptr, kEmpty), sCMD_USAGE);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string("Usage:\n\n   [OPTION]...\n\n") + kHowTo + kHelpLine + "\n");
}

TEST(HostileCommandLine, EndsTheProgramsPassAtAMistakeThatItWasToldOf) {
    const char *const argv[] = {"tool", "-a", "-z"};
    OAK_CMDLINE_A cmd;
    testing::internal::CaptureStderr();
    EXPECT_EQ(oak_cmdlineInit(&cmd, 3, argv, nullptr, kOptionsAlone), eBASE_COMMAND);
    EXPECT_EQ(oak_cmdlineNextShortOption(&cmd, nullptr), '\0');
    testing::internal::GetCapturedStderr();
}

TEST(HostileCommandLine, OfAThousandOptionsIsReadInOrder) {
    std::string group = "-";
    Strings expected;
    oaktest::Random random(1);
    for (int i = 0; i < 5000; ++i) {
        const char letter = random.below(2) == 0 ? 'a' : 'b';
        group += letter;
        expected.push_back(std::string(1, letter));
    }
    Utility utility;
    utility.table = kOptionsAlone;
    expect_seen(utility.run({group}), expected);
}

TEST(CommandLine, AllocatesNothing) {
    Utility utility;
    const char *const argv[] = {"tool", "-a", "--size=1", "in"};
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {}, [&] {
        OAK_CMDLINE_A cmd;
        return oak_cmdlineInit(&cmd, 4, argv, nullptr, kTable);
    });
    EXPECT_EQ(runs, 0u);
}

} // namespace
