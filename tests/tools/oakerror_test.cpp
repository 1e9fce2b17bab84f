// The program oakerror, run as users run it: what it prints, byte for byte, and
// its exit status.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "errorapi.h"
#include "retcode_rows.h"
#include "test_support.h"

namespace {

using Strings = std::vector<std::string>;

struct Result {
    int status = -1;
    std::string out;
    std::string err;
};

std::string quoted(const std::string &word) {
    std::string text = "'";
    for (const char ch : word) {
        text += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
    }
    return text + "'";
}

std::string contents(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    std::filesystem::remove(path);
    return text.str();
}

Result oakerror(const Strings &args) {
    const std::filesystem::path base =
        std::filesystem::temp_directory_path() / ("oakerror_test." + std::to_string(osl_get_pid()));
    const std::string out = base.string() + ".out";
    const std::string err = base.string() + ".err";
    std::string command = quoted(OAK_BINARY_DIR "/oakerror");
    for (const std::string &arg : args) {
        command += " " + quoted(arg);
    }
    const int result = std::system((command + " >" + quoted(out) + " 2>" + quoted(err)).c_str());
    EXPECT_TRUE(WIFEXITED(result)) << command;
    return {WEXITSTATUS(result), contents(out), contents(err)};
}

void expect_shown(const Strings &args, const std::string &out) {
    const Result run = oakerror(args);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, "");
}

constexpr char kRange[] =
    "-10039  eRANGE                         22003  general      Numeric value out of range\n";

constexpr char kExpected[] =
    "' is not known; expected a number (-10039), a name (eRANGE), a legacy number or name (-904, "
    "S_NOMEMORY) or a SQLSTATE (22003)";

std::string group_of(int32_t code) {
    const std::pair<int32_t, const char *> lowest[] = {
        {29000, "status oakc"}, {10000, "status"}, {0, "ok"},          {-1, "fail"},
        {-10999, "general"},    {-11999, "base"},  {-12999, "core"},   {-13999, "tfs"},
        {-14499, "osl"},        {-14999, "ddl"},   {-15999, "sql"},    {-16999, "mirroring"},
        {-17999, "oakc"},       {-18999, "tx"},    {-20999, "system"}, {-21999, "http"},
        {-29999, "q/a"},        {-30999, "embed"}};
    for (const auto &[low, name] : lowest) {
        if (code >= low) {
            return name;
        }
    }
    return "";
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string line_of(const oaktest::RetcodeRow &row) {
    const std::string number = std::to_string(row.code);
    return std::string(number.size() < 6 ? 6 - number.size() : 0, ' ') + number + "  " +
           padded(row.name, 29) + "  " + padded(row.sqlstate.value_or("-"), 5) + "  " +
           padded(group_of(row.code), 11) + "  " + oakErrorString(row.code) + "\n";
}

TEST(OakError, ShowsEveryCodeByItsNameWithItsGroup) {
    Strings names;
    std::string expected;
    for (const oaktest::RetcodeRow &row : oaktest::retcode_rows()) {
        names.push_back(row.name);
        expected += line_of(row);
    }
    expect_shown(names, expected);
}

TEST(OakError, ShowsEveryCodeByItsNumber) {
    Strings numbers;
    std::string expected;
    for (const oaktest::RetcodeRow &row : oaktest::retcode_rows()) {
        if (row.code >= 10000 || row.code <= -10000) { // the others are legacy numbers too
            numbers.push_back(std::to_string(row.code));
            expected += line_of(row);
        }
    }
    expect_shown(numbers, expected);
}

TEST(OakError, TakesNamesAndSqlstatesInAnyCase) {
    expect_shown({"eRANGE"}, kRange);
    expect_shown({"erange"}, kRange);
    expect_shown({"ERANGE"}, kRange);
    expect_shown({"-10039"}, kRange);
    expect_shown({"22005"}, line_of({eINVLITERAL, "eINVLITERAL", "22005"}));
    expect_shown({"ot000"}, line_of({eSQL_FETCHVARS, "eSQL_FETCHVARS", "OT000"})); // the letter O
}

TEST(OakError, ShowsAllCodesOfASqlstate) {
    const Result run = oakerror({"42000"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 140);
    expect_shown({"rx042"}, line_of({eSQL_NOPROC, "eSQL_NOPROC", "RX042"}) +
                                line_of({eSQL_PROCEXISTS, "eSQL_PROCEXISTS", "RX042"}) +
                                line_of({eSQL_TRIGEXISTS, "eSQL_TRIGEXISTS", "RX042"}));
}

TEST(OakError, ShowsLegacyNumbersAndNames) {
    const std::string memory = "-10000  eNOMEMORY                      HY001  general      "
                               "Out of memory (legacy -904 S_NOMEMORY)\n";
    expect_shown({"-904"}, memory);
    expect_shown({"S_NOMEMORY"}, memory);
    expect_shown({"s_nomemory"}, memory);
    // The way back from -1 is not the code that maps to it.
    expect_shown({"-1"},
                 "    -1  eFAIL                          -      fail         General failure\n"
                 "-10001  eDBNOTOPEN                     3D000  general      "
                 "The database is not open (legacy -1 S_DBOPEN)\n"
                 "-10002  eDBOPEN                        82117  general      "
                 "The database is open already (legacy -1 S_DBOPEN)\n");
    // A code maps to -131, and -131 to none; nothing maps to -901 but by default.
    expect_shown({"-131"}, "-10080  eLEGACYAPI                     -      general      "
                           "Not allowed through the interface of the previous generation "
                           "(legacy -131 S_LEGACY_API)\n");
    expect_shown({"-901"}, "-20009  eSYS_ERROR                     -      system       "
                           "Internal system error (legacy -901 S_SYSERR)\n");
    expect_shown({"1012"}, "-14008  eOSL_INVUUID                   -      osl          "
                           "Invalid UUID (legacy 1012 without a name)\n");
    expect_shown({"-961"}, "     -  S_JNIERROR                     -      legacy       "
                           "Java interface call failed (legacy -961, for which there is no code "
                           "now)\n");
}

TEST(OakError, ShowsAWordThatIsSeveralThings) {
    expect_shown({"00001"}, // a legacy number and a SQLSTATE
                 " 10007  sOKAYWITHINFO                  00001  status       "
                 "Successful return with info\n"
                 " 10026  sEOS                           -      status       "
                 "End of set (legacy 1 S_EOS)\n");
    expect_shown({"0"}, "     0  sOKAY                          -      ok           "
                        "Normal, successful return (legacy 0 S_OKAY)\n");
}

TEST(OakError, NamesUnknownWordsWithWhatWouldBeRight) {
    Result run = oakerror({"enotfond"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("oakerror: 'enotfond") + kExpected +
                           "; similar names: eNOTFOUND, sNOTFOUND\n");
    run = oakerror({"badhash"});
    EXPECT_EQ(run.err,
              std::string("oakerror: 'badhash") + kExpected + "; similar names: eSYS_BADHASH\n");
    run = oakerror({"", "@@@@", std::string(300, 'e')});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, std::string("oakerror: '") + kExpected + "\n" + "oakerror: '@@@@" +
                           kExpected + "\n" + "oakerror: '" + std::string(300, 'e') + kExpected +
                           "\n");
}

TEST(OakError, NamesTheNearestGroupOfAnUnknownNumber) {
    const std::tuple<const char *, const char *> cases[] = {
        {"-10500", "general, -10000 to -10104"},
        {"-10600", "base, -11000 to -11003"},
        {"-99999999", "embed, -30000 to -30003"},
        {"-9223372036854775808", "embed, -30000 to -30003"},
        {"9223372036854775807", "status oakc, 29000 to 29000"},
        {"25000000000", "status oakc, 29000 to 29000"},
        {"500", "ok, 0 to 0"},
    };
    for (const auto &[number, group] : cases) {
        const Result run = oakerror({number});
        EXPECT_EQ(run.status, 1) << number;
        EXPECT_EQ(run.err, std::string("oakerror: '") + number + kExpected +
                               "; the nearest codes are those of group " + group + "\n");
    }
}

TEST(OakError, GoesOnAfterAnUnknownWord) {
    const Result run = oakerror({"nonsense!", "eRANGE", "-10039"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, std::string(kRange) + kRange);
    EXPECT_EQ(run.err, std::string("oakerror: 'nonsense!") + kExpected + "\n");
}

TEST(OakError, AnswersByItsExitStatusAloneWhenItIsQuiet) {
    for (const auto &[word, status] : {std::pair{"eRANGE", 0}, {"-961", 0}, {"nonsense!", 1}}) {
        const Result run = oakerror({"-q", word});
        EXPECT_EQ(run.status, status) << word;
        EXPECT_EQ(run.out + run.err, "") << word;
    }
}

TEST(OakError, PrintsJson) {
    expect_shown(
        {"--json", "-904", "erange", "0"},
        "{\"found\":[\n"
        "{\"word\":\"-904\",\"by\":[\"legacy\"],\"code\":-10000,\"name\":\"eNOMEMORY\","
        "\"sqlstate\":\"HY001\",\"group\":\"general\",\"text\":\"Out of memory\","
        "\"legacy\":{\"number\":-904,\"name\":\"S_NOMEMORY\",\"text\":\"memory exhausted\"}},\n"
        "{\"word\":\"erange\",\"by\":[\"name\"],\"code\":-10039,\"name\":\"eRANGE\","
        "\"sqlstate\":\"22003\",\"group\":\"general\",\"text\":\"Numeric value out of range\","
        "\"legacy\":null},\n"
        "{\"word\":\"0\",\"by\":[\"number\",\"legacy\"],\"code\":0,\"name\":\"sOKAY\","
        "\"sqlstate\":null,\"group\":\"ok\",\"text\":\"Normal, successful return\","
        "\"legacy\":{\"number\":0,\"name\":\"S_OKAY\",\"text\":\"normal return\"}}\n"
        "],\"unknown\":[]}\n");
    expect_shown({"-961", "-j"},
                 "{\"found\":[\n"
                 "{\"word\":\"-961\",\"by\":[\"legacy\"],\"code\":null,\"name\":null,"
                 "\"sqlstate\":null,\"group\":null,\"text\":null,\"legacy\":{\"number\":-961,"
                 "\"name\":\"S_JNIERROR\",\"text\":\"Java interface call failed\"}}\n"
                 "],\"unknown\":[]}\n");
    expect_shown({"eOSL_PRIV", "-j"},
                 "{\"found\":[\n"
                 "{\"word\":\"eOSL_PRIV\",\"by\":[\"name\"],\"code\":-14003,\"name\":\"eOSL_PRIV\","
                 "\"sqlstate\":null,\"group\":\"osl\",\"text\":\"Insufficient privileges for the "
                 "operation\",\"legacy\":{\"number\":1009,\"name\":null,\"text\":null}}\n"
                 "],\"unknown\":[]}\n");
}

TEST(OakError, PrintsValidJsonForWordsOfAnyBytes) {
    const Result run = oakerror({"--json", "a\"b\\c\n\x01", "\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80",
                                 "\xff\xc3", "\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80\xe0\x80\x80"});
    EXPECT_EQ(run.status, 1);
    const auto replaced = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += "\\ufffd";
        }
        return text;
    };
    EXPECT_EQ(run.out, "{\"found\":[],\"unknown\":["
                       "\"a\\\"b\\\\c\\u000a\\u0001\","
                       "\"\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\",\"" +
                           replaced(2) + "\",\"" + replaced(12) + "\"]}\n");
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 5); // one word holds a newline
}

TEST(OakError, HelpsAndTellsItsVersion) {
    const Result help = oakerror({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.rfind("Usage:\n\n  oakerror [OPTION]... [WORD]...\n\n", 0), 0u);
    EXPECT_NE(help.out.find("  -j, --json                 Print one JSON object for programs\n"
                            "  WORD                       A number (-10039), a name (eRANGE), a "),
              std::string::npos);
    EXPECT_EQ(help.err, "");
    const Result version = oakerror({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("Operating System: Linux\n", 0), 0u);
}

TEST(OakError, RefusesAWrongCommandLine) {
    for (const auto &[args, message] :
         {std::pair<Strings, const char *>{
              {}, "error: Missing argument 'WORD' ('--help' for more information)\n"},
          {{"--json"}, "error: Missing argument 'WORD' ('--help' for more information)\n"},
          {{"-x"}, "error: Unknown option '-x' ('--help' for more information)\n"},
          {{"-1x"}, "error: Unknown option '-x' ('--help' for more information)\n"},
          {{"--key=a", "0"}, "error: Unknown option '--key' ('--help' for more information)\n"}}) {
        const Result run = oakerror(args);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, message);
    }
}

TEST(OakError, TellsThatItsAnswerCannotBeWritten) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP();
    }
    const std::string err = (std::filesystem::temp_directory_path() /
                             ("oakerror_test." + std::to_string(osl_get_pid())))
                                .string() +
                            ".err";
    for (const char *args : {" eRANGE", " --json eRANGE"}) {
        const std::string command =
            quoted(OAK_BINARY_DIR "/oakerror") + args + " >/dev/full 2>" + quoted(err);
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
        const std::string text = oakErrorString(eBADWRITE);
        EXPECT_EQ(contents(err), "oakerror: standard output: eBADWRITE (" + text + ")\n");
    }
}

TEST(OakError, DoesNotTakeDigitsOutOfAGroupOfOptions) {
    const Result run = oakerror({"-j1"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "{\"found\":[],\"unknown\":[\"-j1\"]}\n");
}

} // namespace
