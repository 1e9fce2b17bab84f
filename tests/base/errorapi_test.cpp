// The look-ups over the status codes: every code, every name, every group, and
// each kind of unknown.
#include <cctype>
#include <climits>
#include <set>

#include <gtest/gtest.h>

#include "error_internal.h"
#include "errorapi.h"
#include "retcode_rows.h"
#include "test_support.h"

namespace {

using oaktest::optional_text;

std::string in_case(std::string text, int (*change)(int)) {
    for (char &ch : text) {
        ch = static_cast<char>(change(static_cast<unsigned char>(ch)));
    }
    return text;
}

TEST(ErrorLookups, KnowEveryCode) {
    for (const oaktest::RetcodeRow &row : oaktest::retcode_rows()) {
        const char *descr = nullptr;
        const char *name = nullptr;
        EXPECT_EQ(oakErrorCodeDef(row.code, &descr, &name), sOKAY) << row.name;
        EXPECT_EQ(name, row.name);
        EXPECT_STREQ(oakErrorString(row.code), descr);
        EXPECT_EQ(optional_text(oakErrorSqlstate(row.code)), row.sqlstate) << row.name;
        const char *sqlstate = "untouched";
        const char *details = nullptr;
        EXPECT_EQ(oakErrorDetails(row.code, &sqlstate, &details), sOKAY) << row.name;
        EXPECT_EQ(optional_text(sqlstate), row.sqlstate) << row.name;
        EXPECT_STREQ(details, descr);
    }
}

TEST(ErrorLookups, FindEveryCodeByItsNameInAnyCase) {
    for (const oaktest::RetcodeRow &row : oaktest::retcode_rows()) {
        for (const std::string &name :
             {row.name, in_case(row.name, std::tolower), in_case(row.name, std::toupper)}) {
            OAK_RETCODE code = eFAIL;
            EXPECT_EQ(oakErrorCodeByName(name.c_str(), &code), sOKAY) << name;
            EXPECT_EQ(code, row.code) << name;
        }
    }
}

// Names compare without regard to case, so none may hide another.
TEST(ErrorLookups, HaveNamesThatDifferBeyondTheirCase) {
    std::set<std::string> names;
    for (const OAK_ERRDEFN &row : oak_errors) {
        EXPECT_TRUE(names.insert(in_case(row.name, std::tolower)).second) << row.name;
    }
}

void expect_unknown(OAK_RETCODE code) {
    const char *first = "untouched";
    const char *second = "untouched too";
    EXPECT_EQ(ErrorLookup(code), nullptr) << code;
    EXPECT_EQ(oakErrorCodeDef(code, &first, &second), eSYS_BADERRCODE) << code;
    EXPECT_EQ(oakErrorDetails(code, &first, &second), eNOTFOUND) << code;
    EXPECT_STREQ(first, "untouched");
    EXPECT_STREQ(second, "untouched too");
    EXPECT_STREQ(oakErrorString(code), "<unknown error>");
    EXPECT_STREQ(oakErrorSqlstate(code), "RX000");
}

TEST(ErrorLookups, HaveTheirAnswersForEveryUnknownCode) {
    std::set<int32_t> known;
    for (const oaktest::RetcodeRow &row : oaktest::retcode_rows()) {
        known.insert(row.code);
    }
    for (const int32_t code :
         {1, -2, 10041, 9999, 28999, 29001, -9999, -10105, -30004, INT_MIN, INT_MIN + 1, INT_MAX}) {
        expect_unknown(static_cast<OAK_RETCODE>(code));
    }
    for (int32_t code = -31000; code <= 30000; ++code) {
        const OAK_ERRDEFN *row = ErrorLookup(static_cast<OAK_RETCODE>(code));
        ASSERT_EQ(row != nullptr, known.contains(code)) << code;
        ASSERT_TRUE(row == nullptr || row->code == code) << code;
        if (row == nullptr && code % 97 == 0) {
            expect_unknown(static_cast<OAK_RETCODE>(code));
        }
    }
}

TEST(ErrorLookups, GiveNullAndNotAnEmptyTextForACodeWithoutSqlstate) {
    EXPECT_EQ(oakErrorSqlstate(sOKAY), nullptr);
    EXPECT_EQ(oakErrorSqlstate(eFAIL), nullptr);
    EXPECT_STREQ(oakErrorSqlstate(sNOTFOUND), "02000");
}

TEST(ErrorLookups, StoreOnlyWhatIsAskedFor) {
    const char *text = nullptr;
    EXPECT_EQ(oakErrorCodeDef(eNOMEMORY, nullptr, nullptr), sOKAY);
    EXPECT_EQ(oakErrorCodeDef(eNOMEMORY, &text, nullptr), sOKAY);
    EXPECT_STREQ(text, "Out of memory");
    EXPECT_EQ(oakErrorCodeDef(eNOMEMORY, nullptr, &text), sOKAY);
    EXPECT_STREQ(text, "eNOMEMORY");
    EXPECT_EQ(oakErrorDetails(eNOMEMORY, nullptr, nullptr), sOKAY);
    EXPECT_EQ(oakErrorDetails(eNOMEMORY, &text, nullptr), sOKAY);
    EXPECT_STREQ(text, "HY001");
    EXPECT_EQ(oakErrorDetails(eNOMEMORY, nullptr, &text), sOKAY);
    EXPECT_STREQ(text, "Out of memory");
    EXPECT_EQ(oakErrorCodeByName("enomemory", nullptr), sOKAY);
    EXPECT_EQ(oakErrorGroupRange("TFS", nullptr, nullptr), sOKAY);
}

TEST(ErrorLookups, RefuseNamesThatAreNoCode) {
    for (const char *name : {"", "e", "NOMEMORY", "eNOMEMOR", "eNOMEMORYY", " eNOMEMORY", "-10000",
                             "<unknown error>"}) {
        OAK_RETCODE code = eFAIL;
        EXPECT_EQ(oakErrorCodeByName(name, &code), eSYS_BADERRCODE) << name;
        EXPECT_EQ(code, eFAIL) << name;
    }
    EXPECT_EQ(oakErrorCodeByName(nullptr, nullptr), eINVNULLARG);
}

TEST(ErrorGroups, AreFoundByNameInAnyCase) {
    for (const OAK_ERRGROUP &group : oak_errgroups) {
        for (const std::string &name :
             {std::string(group.name), in_case(group.name, std::toupper)}) {
            OAK_RETCODE first = eFAIL;
            OAK_RETCODE last = eFAIL;
            EXPECT_EQ(oakErrorGroupRange(name.c_str(), &first, &last), sOKAY) << name;
            EXPECT_EQ(first, group.firstcode) << name;
            EXPECT_EQ(last, group.lastcode) << name;
        }
    }
    OAK_RETCODE first = sOKAY;
    OAK_RETCODE last = sOKAY;
    EXPECT_EQ(oakErrorGroupRange("general", &first, nullptr), sOKAY);
    EXPECT_EQ(oakErrorGroupRange("general", nullptr, &last), sOKAY);
    EXPECT_EQ(first, -10000);
    EXPECT_EQ(last, -10104);
}

TEST(ErrorGroups, AreAStatusWhenTheyAreUnknown) {
    for (const char *name : {"", "generals", "qa", "status  oakc"}) {
        OAK_RETCODE first = eFAIL;
        OAK_RETCODE last = eFAIL;
        EXPECT_EQ(oakErrorGroupRange(name, &first, &last), sNOTFOUND) << name;
        EXPECT_EQ(first, eFAIL);
        EXPECT_EQ(last, eFAIL);
    }
    EXPECT_EQ(oakErrorGroupRange(nullptr, nullptr, nullptr), eINVNULLARG);
}

} // namespace
