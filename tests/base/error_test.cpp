// Error handles: each step of a report in its order, the catch stack, the log
// byte for byte, what is read back, and every failed allocation.
#include <climits>
#include <csetjmp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "error.h"
#include "error_internal.h"
#include "test_support.h"

namespace {

using oaktest::Tag;

// ---- Helpers ---------------------------------------------------------------

// A handle in a tag of the test's own, closed at the end.
class Handle {
  public:
    explicit Handle(OSL_MEMTAG tag = nullptr) { EXPECT_EQ(oakErrorOpen(tag, &handle_), sOKAY); }
    ~Handle() {
        if (handle_ != nullptr) {
            EXPECT_EQ(oakErrorClose(handle_), sOKAY);
        }
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    operator OAK_ERR() const { return handle_; }
    OAK_ERR operator->() const { return handle_; }
    void close() {
        EXPECT_EQ(oakErrorClose(handle_), sOKAY);
        handle_ = nullptr;
    }

  private:
    OAK_ERR handle_ = nullptr;
};

// A log file in the temporary directory; the handle that it is given to closes
// the stream.
class Log {
  public:
    Log()
        : path_((std::filesystem::temp_directory_path() /
                 ("error_test." + std::to_string(osl_get_pid()) + ".log"))
                    .string()),
          stream_(osl_fopen(path_.c_str(), "w", 0)) {
        EXPECT_NE(stream_, nullptr);
    }
    ~Log() { std::filesystem::remove(path_); }
    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;
    OSL_FILE_STREAM stream() const { return stream_; }
    std::string text() const {
        std::ifstream file(path_);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

  private:
    std::string path_;
    OSL_FILE_STREAM stream_;
};

// What a handler saw, and what it answers.
struct Seen {
    OAK_RETCODE answer = sOKAY;
    int calls = 0;
    OAK_RETCODE retcode = sOKAY;
    OAK_RETCODE status = sOKAY; // of the handle while the handler ran
    OAK_BOOL_T active = OAK_FALSE;
    std::string order;
};

OAK_RETCODE handler(OAK_ERR hErr, OAK_RETCODE retcode, void *data) {
    Seen *const seen = static_cast<Seen *>(data);
    ++seen->calls;
    seen->retcode = retcode;
    seen->status = oakErrorStat(hErr);
    seen->active = hErr->erractive;
    return seen->answer;
}

void cleanup(void *data) {
    ++static_cast<Seen *>(data)->calls;
}

OAK_RETCODE report(OAK_ERR hErr, OAK_RETCODE retcode) {
    return oakErrorEx(hErr, retcode, nullptr, nullptr, 0, 0, nullptr, 0);
}

struct Info {
    OAK_RETCODE rc = sOKAY;
    const char *msg = "untouched";
    const char *info = "untouched";
    const char *name = "untouched";
    const char *fcn = "untouched";
    const char *subsys = "untouched";
    const char *file = "untouched";
    int32_t line = -7;
};

Info info_of(OAK_ERR hErr) {
    Info info;
    info.rc = oakErrorInfoEx(hErr, &info.msg, &info.info, &info.name, &info.fcn, &info.subsys,
                             &info.file, &info.line);
    return info;
}

// ---- Open and close --------------------------------------------------------

TEST(ErrorHandle, OpensEmptyInATagOfItsOwn) {
    const oaktest::Live before = oaktest::Live::now();
    Handle handle;
    EXPECT_EQ(handle->usertag, OAK_FALSE);
    EXPECT_NE(handle->tag, nullptr);
    EXPECT_EQ(oakErrorStat(handle), sOKAY);
    EXPECT_EQ(handle->callcount, 0u);
    EXPECT_EQ(handle->info, nullptr);
    EXPECT_EQ(handle->fcnid, nullptr);
    EXPECT_EQ(handle->file, nullptr);
    EXPECT_EQ(handle->errfile, nullptr);
    EXPECT_EQ(handle->syshandler, nullptr);
    EXPECT_EQ(handle->userhandler, nullptr);
    EXPECT_EQ(handle->cleanup, nullptr);
    EXPECT_EQ(handle->errcatch, nullptr);
    EXPECT_EQ(handle->logfile, nullptr);
    EXPECT_EQ(handle->erractive, OAK_FALSE);
    EXPECT_EQ(oakErrorGetSqlstate(handle), nullptr);
    handle.close();
    EXPECT_EQ(oaktest::Live::now(), before);
}

TEST(ErrorHandle, OpensInTheCallersTagAndLeavesItEmpty) {
    Tag tag;
    jmp_buf mark;
    Handle handle(tag);
    EXPECT_EQ(handle->usertag, OAK_TRUE);
    EXPECT_EQ(handle->tag, tag.get());
    EXPECT_EQ(oakErrorEx(handle, sNOTFOUND, "info", nullptr, 1, 2, "file.c", 3), sNOTFOUND);
    EXPECT_EQ(oakErrorCatchPush(handle, &mark, "outer"), sOKAY);
    EXPECT_EQ(oakErrorCatchPush(handle, &mark, "inner"), sOKAY);
    handle.close(); // the tag's end asserts that nothing is left
}

// Both may have been handed out, so they live as long as the caller's tag.
TEST(ErrorHandle, LeavesTheInputsNameAndTheSqlstateToTheCallersTag) {
    Tag tag;
    tag.may_keep_blocks();
    Handle handle(tag);
    EXPECT_EQ(oakErrorEx(handle, sNOTFOUND, nullptr, "input.sql", 1, 2, nullptr, 0), sNOTFOUND);
    oakErrorSetSqlstate(handle, "01234");
    const char *input = nullptr;
    oakErrorFileAndPosition(handle, &input, nullptr, nullptr);
    const char *sqlstate = oakErrorGetSqlstate(handle);
    handle.close();
    EXPECT_STREQ(input, "input.sql");
    EXPECT_STREQ(sqlstate, "01234");
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(tag.live(), 2u);
    }
}

TEST(ErrorHandle, IsNotOpenedWithoutMemory) {
    OAK_ERR const poison = reinterpret_cast<OAK_ERR>(static_cast<uintptr_t>(8));
    const auto open_and_close = [&](OSL_MEMTAG tag) {
        OAK_ERR handle = poison;
        const OAK_RETCODE rc = oakErrorOpen(tag, &handle);
        if (rc != sOKAY) {
            EXPECT_EQ(handle, nullptr);
            return rc;
        }
        return oakErrorClose(handle);
    };
    Tag tag;
    const uint64_t own = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY},
                                               [&] { return open_and_close(nullptr); });
    const uint64_t given = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY},
                                                 [&] { return open_and_close(tag); });
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(own, 4u);   // the tag and the record, each once and for ever
        EXPECT_EQ(given, 2u); // the record
    }
}

TEST(ErrorHandle, RefusesNull) {
    EXPECT_EQ(oakErrorOpen(nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(oakErrorClose(nullptr), eINVNULLARG);
    EXPECT_EQ(oakErrorCatchPush(nullptr, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(oakErrorCatchPop(nullptr), eINVNULLARG);
    EXPECT_EQ(oakErrorCatchPopAndThrow(nullptr, eFAIL), eINVNULLARG);
    EXPECT_EQ(oakErrorStat(nullptr), eINVNULLARG);
    EXPECT_EQ(oakErrorGetSqlstate(nullptr), nullptr);
    EXPECT_EQ(oakGetErrorStat(nullptr, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(info_of(nullptr).rc, eINVNULLARG);
    Handle handle;
    EXPECT_EQ(oakErrorCatchPush(handle, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(oakGetErrorStat(handle, nullptr, OSL_TAG_PROCESS), eINVNULLARG);
}

TEST(ErrorHandle, PassesOverANullHandle) {
    const char *file = "untouched";
    int32_t line = -7;
    oakErrorSetCleanup(nullptr, cleanup, nullptr);
    oakErrorRunCleanup(nullptr);
    oakErrorSetUserHandler(nullptr, handler, nullptr);
    oakErrorSetUserHandlerData(nullptr, nullptr);
    oakErrorSetSysHandler(nullptr, handler, nullptr);
    oakErrorSetLogFile(nullptr, nullptr);
    oakErrorSetStatus(nullptr, eFAIL);
    oakErrorSetSqlstate(nullptr, "01234");
    oakErrorFileAndPosition(nullptr, &file, &line, &line);
    EXPECT_STREQ(file, "untouched");
    EXPECT_EQ(line, -7);
}

// ---- Reports: what is recorded ---------------------------------------------

TEST(ErrorReport, OnANullHandleReturnsItsCode) {
    for (const OAK_RETCODE code : {sOKAY, sNOTFOUND, eFAIL, eRANGE, static_cast<OAK_RETCODE>(77)}) {
        EXPECT_EQ(oakErrorEx(nullptr, code, "info", "input", 1, 2, "file", 3), code);
    }
}

TEST(ErrorReport, RecordsEverything) {
    Handle handle;
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "too big", "input.sql", 12, 34, "module.c", 56), eRANGE);
    EXPECT_EQ(handle->callcount, 1u);
    EXPECT_EQ(oakErrorStat(handle), eRANGE);
    const Info info = info_of(handle);
    EXPECT_EQ(info.rc, eRANGE);
    EXPECT_STREQ(info.msg, "Numeric value out of range");
    EXPECT_STREQ(info.info, "too big");
    EXPECT_STREQ(info.name, "eRANGE");
    EXPECT_EQ(info.fcn, nullptr);
    EXPECT_STREQ(info.file, "module.c");
    EXPECT_EQ(info.line, 56);
    const char *input = nullptr;
    int32_t line = 0;
    int32_t column = 0;
    oakErrorFileAndPosition(handle, &input, &line, &column);
    EXPECT_STREQ(input, "input.sql");
    EXPECT_EQ(line, 12);
    EXPECT_EQ(column, 34);
}

TEST(ErrorReport, KeepsOldNamesAndReplacesPositionsAndInfo) {
    Handle handle;
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "too big", "input.sql", 12, 34, "module.c", 56), eRANGE);
    char *const buffer = handle->info;
    EXPECT_EQ(oakErrorEx(handle, eEOD, nullptr, nullptr, -1, INT_MAX, nullptr, 99), eEOD);
    EXPECT_STREQ(handle->errfile, "input.sql");
    EXPECT_EQ(handle->errline, -1);
    EXPECT_EQ(handle->errcolumn, INT_MAX);
    EXPECT_EQ(handle->info, buffer); // the buffer stays and is emptied
    EXPECT_STREQ(handle->info, "");
    EXPECT_STREQ(handle->file, "module.c");
    EXPECT_EQ(handle->line, 56);
    EXPECT_EQ(info_of(handle).info, nullptr);
    EXPECT_EQ(handle->callcount, 2u);
}

TEST(ErrorReport, CopiesItsTexts) {
    Handle handle;
    char info[] = "info";
    char input[] = "input";
    char file[] = "file";
    EXPECT_EQ(oakErrorEx(handle, eFAIL, info, input, 1, 2, file, 3), eFAIL);
    info[0] = input[0] = file[0] = '#';
    EXPECT_STREQ(handle->info, "info");
    EXPECT_STREQ(handle->errfile, "input");
    EXPECT_STREQ(handle->file, "file");
}

// A catch site hands an error outward with what the handle itself tells.
TEST(ErrorReport, TakesItsOwnTextsBack) {
    Handle handle;
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", "input", 1, 2, "file", 3), eRANGE);
    const Info info = info_of(handle);
    const char *input = nullptr;
    oakErrorFileAndPosition(handle, &input, nullptr, nullptr);
    EXPECT_EQ(oakErrorEx(handle, info.rc, info.info, input, 1, 2, info.file, info.line), eRANGE);
    EXPECT_STREQ(handle->info, "info");
    EXPECT_STREQ(handle->errfile, "input");
    EXPECT_STREQ(handle->file, "file");
    oakErrorSetSqlstate(handle, "01234");
    oakErrorSetSqlstate(handle, oakErrorGetSqlstate(handle));
    EXPECT_STREQ(oakErrorGetSqlstate(handle), "01234");
}

// And may turn one into another: the input's name into the info, the info into a name.
TEST(ErrorReport, TakesItsOwnTextsBackInOtherPlaces) {
    Tag tag;
    tag.may_keep_blocks();
    Handle handle(tag);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", "input", 1, 2, "file", 3), eRANGE);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, handle->errfile, handle->file, 1, 2, handle->info, 4),
              eRANGE);
    EXPECT_STREQ(handle->info, "input");
    EXPECT_STREQ(handle->errfile, "file");
    EXPECT_STREQ(handle->file, "info");
    EXPECT_EQ(oakErrorEx(handle, eRANGE, nullptr, handle->info, 1, 2, handle->errfile, 5), eRANGE);
    EXPECT_STREQ(handle->info, "");
    EXPECT_STREQ(handle->errfile, "input");
    EXPECT_STREQ(handle->file, "file");
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(tag.live(), 4u); // the record and its three texts
    }
}

TEST(ErrorReport, OfAnUnknownCodeGoesOnLikeAnyOther) {
    Handle handle;
    const OAK_RETCODE unknown = static_cast<OAK_RETCODE>(-5);
    EXPECT_EQ(report(handle, unknown), unknown);
    EXPECT_EQ(oakErrorStat(handle), unknown);
    const Info info = info_of(handle);
    EXPECT_EQ(info.rc, eSYS_BADERRCODE);
    EXPECT_STREQ(info.msg, "untouched");
    EXPECT_STREQ(info.info, "untouched");
    EXPECT_STREQ(info.name, "untouched");
    EXPECT_STREQ(info.fcn, "untouched");
    EXPECT_STREQ(info.subsys, "untouched");
    EXPECT_STREQ(info.file, "untouched");
    EXPECT_EQ(info.line, -7);
}

// ---- Reports: handlers -----------------------------------------------------

TEST(SystemHandler, SeesEveryReportBeforeItIsStored) {
    Handle handle;
    Seen seen;
    oakErrorSetSysHandler(handle, handler, &seen);
    EXPECT_EQ(report(handle, sNOTFOUND), sNOTFOUND);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.retcode, sNOTFOUND);
    EXPECT_EQ(seen.status, sOKAY); // not stored yet
    EXPECT_EQ(seen.active, OAK_TRUE);
    EXPECT_EQ(handle->erractive, OAK_FALSE);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(seen.status, sNOTFOUND);
    EXPECT_EQ(report(handle, sOKAY), sOKAY);
    EXPECT_EQ(seen.calls, 3);
}

TEST(SystemHandler, ReplacesTheCodeThatIsStored) {
    Handle handle;
    Seen seen;
    seen.answer = eEOD;
    oakErrorSetSysHandler(handle, handler, &seen);
    EXPECT_EQ(report(handle, sOKAY), eEOD); // even a success becomes an error
    EXPECT_EQ(oakErrorStat(handle), eEOD);
    seen.answer = sNOTFOUND;
    EXPECT_EQ(report(handle, eRANGE), sNOTFOUND);
    EXPECT_EQ(oakErrorStat(handle), sNOTFOUND);
    oakErrorSetSysHandler(handle, nullptr, nullptr);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(seen.calls, 2);
}

TEST(SystemHandler, CanMakeAnErrorAStatusThatStopsThere) {
    Handle handle;
    Seen system;
    Seen user;
    Seen clean;
    system.answer = sIGNORE;
    oakErrorSetSysHandler(handle, handler, &system);
    oakErrorSetUserHandler(handle, handler, &user);
    oakErrorSetCleanup(handle, cleanup, &clean);
    EXPECT_EQ(report(handle, eRANGE), sIGNORE);
    EXPECT_EQ(user.calls, 0);
    EXPECT_EQ(clean.calls, 0);
}

TEST(UserHandler, SeesErrorsAfterTheyAreStored) {
    Handle handle;
    Seen seen;
    seen.answer = eRANGE;
    oakErrorSetUserHandler(handle, handler, &seen);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.retcode, eRANGE);
    EXPECT_EQ(seen.status, eRANGE);
    EXPECT_EQ(seen.active, OAK_TRUE);
    EXPECT_EQ(handle->erractive, OAK_FALSE);
}

TEST(UserHandler, IsNotCalledForAStatus) {
    Handle handle;
    Seen seen;
    Seen clean;
    jmp_buf mark;
    oakErrorSetUserHandler(handle, handler, &seen);
    oakErrorSetCleanup(handle, cleanup, &clean);
    EXPECT_EQ(oakErrorCatchPush(handle, &mark, nullptr), sOKAY);
    for (const OAK_RETCODE status : {sOKAY, sNOTFOUND, sQA_OAKC_SUCCESS_WITH_INFO}) {
        EXPECT_EQ(report(handle, status), status);
        EXPECT_EQ(oakErrorStat(handle), status);
    }
    EXPECT_EQ(seen.calls, 0);
    EXPECT_EQ(clean.calls, 0);
    EXPECT_EQ(handle->erractive, OAK_FALSE);
    EXPECT_EQ(oakErrorCatchPop(handle), sOKAY); // the scope stayed
}

TEST(UserHandler, ChangesTheCodeThatTravelsAndNotTheOneThatIsKept) {
    Handle handle;
    Seen seen;
    oakErrorSetUserHandler(handle, handler, &seen);
    for (const OAK_RETCODE answer : {eEOD, sNOTFOUND, static_cast<OAK_RETCODE>(1)}) {
        seen.answer = answer;
        EXPECT_EQ(report(handle, eRANGE), answer);
        EXPECT_EQ(oakErrorStat(handle), eRANGE);
    }
}

TEST(UserHandler, CannotMakeAnErrorASuccess) {
    Handle handle;
    Seen seen;
    seen.answer = sOKAY;
    oakErrorSetUserHandler(handle, handler, &seen);
    EXPECT_EQ(report(handle, eRANGE), sIGNORE);
    EXPECT_EQ(oakErrorStat(handle), eRANGE);
}

TEST(UserHandler, KeepsItsFunctionWhenItsDataIsReplaced) {
    Handle handle;
    Seen first;
    Seen second;
    first.answer = second.answer = eRANGE;
    oakErrorSetUserHandler(handle, handler, &first);
    oakErrorSetUserHandlerData(handle, &second);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(first.calls, 0);
    EXPECT_EQ(second.calls, 1);
}

OAK_RETCODE nosy_handler(OAK_ERR hErr, OAK_RETCODE retcode, void *data) {
    const uint64_t before = hErr->callcount;
    const OAK_RETCODE inner =
        oakErrorEx(hErr, eDIVBY0, "inner", "inner input", 1, 1, "inner file", 1);
    EXPECT_EQ(inner, eDIVBY0);
    EXPECT_EQ(oakErrorEx(hErr, sNOTFOUND, nullptr, nullptr, 0, 0, nullptr, 0), sNOTFOUND);
    EXPECT_EQ(hErr->callcount, before);
    EXPECT_EQ(oakErrorClose(hErr), eSYS_ERRACTIVE);
    ++static_cast<Seen *>(data)->calls;
    return retcode;
}

TEST(ErrorReport, FromAHandlerChangesNothingAndTheHandleCannotBeClosedThere) {
    Handle handle;
    Seen seen;
    oakErrorSetSysHandler(handle, nosy_handler, &seen);
    oakErrorSetUserHandler(handle, nosy_handler, &seen);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "outer", "outer input", 5, 6, "outer file", 7), eRANGE);
    EXPECT_EQ(seen.calls, 2);
    EXPECT_EQ(handle->callcount, 1u);
    EXPECT_STREQ(handle->info, "outer");
    EXPECT_STREQ(handle->errfile, "outer input");
    EXPECT_STREQ(handle->file, "outer file");
    EXPECT_EQ(handle->errline, 5);
}

TEST(ErrorCleanup, RunsAfterAnErrorThatNobodyCatches) {
    Handle handle;
    Seen clean;
    oakErrorSetCleanup(handle, cleanup, &clean);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(clean.calls, 1);
    oakErrorRunCleanup(handle);
    EXPECT_EQ(clean.calls, 2);
    oakErrorSetCleanup(handle, nullptr, nullptr);
    oakErrorRunCleanup(handle);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(clean.calls, 2);
}

// ---- The catch stack -------------------------------------------------------

// Runs `work` under a new scope and returns the code that arrives at the catch
// point, or sOKAY when the work came back. Holds nothing with a destructor.
OAK_RETCODE caught(OAK_ERR hErr, const char *name, OAK_RETCODE (*work)(OAK_ERR)) {
    jmp_buf mark;
    const OAK_RETCODE arrived = static_cast<OAK_RETCODE>(setjmp(mark));
    if (arrived != sOKAY) {
        return arrived;
    }
    const OAK_RETCODE pushed = oakErrorCatchPush(hErr, &mark, name);
    return pushed == sOKAY ? work(hErr) : pushed;
}

OAK_RETCODE fail_with_range(OAK_ERR hErr) {
    OAK_IGNORE_STATUS(oakErrorEx(hErr, eRANGE, "deep", nullptr, 0, 0, nullptr, 0), "it jumps");
    ADD_FAILURE() << "a report under a scope came back";
    return sOKAY;
}

OAK_RETCODE end_well(OAK_ERR hErr) {
    return oakErrorCatchPop(hErr);
}

OAK_RETCODE throw_end_of_data(OAK_ERR hErr) {
    return oakErrorCatchPopAndThrow(hErr, eEOD);
}

OAK_RETCODE throw_success(OAK_ERR hErr) {
    return oakErrorCatchPopAndThrow(hErr, sOKAY);
}

TEST(CatchScope, ReceivesTheErrorAndIsGone) {
    Tag tag;
    Handle handle(tag);
    Seen clean;
    oakErrorSetCleanup(handle, cleanup, &clean);
    EXPECT_EQ(caught(handle, "catcher", fail_with_range), eRANGE);
    EXPECT_EQ(handle->errcatch, nullptr);
    EXPECT_EQ(handle->erractive, OAK_FALSE);
    EXPECT_EQ(clean.calls, 0); // the catching code is responsible
    const Info info = info_of(handle);
    EXPECT_EQ(info.rc, eRANGE);
    EXPECT_STREQ(info.fcn, "catcher");
    EXPECT_STREQ(info.info, "deep");
}

TEST(CatchScope, IsPoppedByWorkThatEndsWell) {
    Handle handle;
    EXPECT_EQ(caught(handle, "catcher", end_well), sOKAY);
    EXPECT_EQ(handle->errcatch, nullptr);
    EXPECT_EQ(oakErrorStat(handle), sOKAY);
}

TEST(CatchScope, KeepsTheNameThatIsThereWhenItIsGivenNone) {
    Handle handle;
    EXPECT_EQ(caught(handle, "first", end_well), sOKAY);
    EXPECT_EQ(caught(handle, nullptr, end_well), sOKAY);
    EXPECT_STREQ(handle->fcnid, "first");
    EXPECT_EQ(caught(handle, "second", end_well), sOKAY);
    EXPECT_STREQ(handle->fcnid, "second");
    EXPECT_EQ(caught(handle, handle->fcnid, end_well), sOKAY);
    EXPECT_STREQ(handle->fcnid, "second");
}

OAK_RETCODE nested(OAK_ERR hErr) {
    EXPECT_EQ(caught(hErr, "inner", fail_with_range), eRANGE);
    EXPECT_NE(hErr->errcatch, nullptr); // the outer scope stayed
    EXPECT_EQ(hErr->errcatch->next, nullptr);
    return oakErrorCatchPop(hErr);
}

TEST(CatchScope, OfTwoOnlyTheInnerOneGoesWithAnError) {
    Handle handle;
    EXPECT_EQ(caught(handle, "outer", nested), sOKAY);
    EXPECT_EQ(handle->errcatch, nullptr);
}

OAK_RETCODE hand_outward(OAK_ERR hErr) {
    const OAK_RETCODE inner = caught(hErr, "inner", fail_with_range);
    return oakErrorEx(hErr, inner, "outward", nullptr, 0, 0, nullptr, 0);
}

TEST(CatchScope, HandsAnErrorOutwardByReportingItAgain) {
    Handle handle;
    EXPECT_EQ(caught(handle, "outer", hand_outward), eRANGE);
    EXPECT_STREQ(handle->info, "outward");
    EXPECT_EQ(handle->callcount, 2u);
}

TEST(CatchScope, ReceivesTheCodeOfTheUsersHandlerWhateverItIs) {
    Handle handle;
    Seen seen;
    oakErrorSetUserHandler(handle, handler, &seen);
    for (const auto &[answer, delivered] :
         {std::pair{eEOD, eEOD}, {sNOTFOUND, sNOTFOUND}, {sOKAY, sIGNORE}}) {
        seen.answer = answer;
        EXPECT_EQ(caught(handle, "catcher", fail_with_range), delivered);
        EXPECT_EQ(oakErrorStat(handle), eRANGE);
    }
}

TEST(CatchScope, ThrownToDirectlyIsUnseenByHandlersLogAndStatus) {
    Log log;
    Handle handle;
    Seen seen;
    oakErrorSetSysHandler(handle, handler, &seen);
    oakErrorSetUserHandler(handle, handler, &seen);
    oakErrorSetLogFile(handle, log.stream());
    EXPECT_EQ(caught(handle, "catcher", throw_end_of_data), eEOD);
    EXPECT_EQ(seen.calls, 0);
    EXPECT_EQ(oakErrorStat(handle), sOKAY);
    EXPECT_EQ(handle->callcount, 0u);
    EXPECT_EQ(handle->errcatch, nullptr);
    handle.close();
    EXPECT_EQ(log.text(), "");
}

TEST(CatchScope, CannotBeThrownASuccess) {
    Handle handle;
    EXPECT_EQ(caught(handle, "catcher", throw_success), 1);
}

TEST(CatchStack, ReportsThatItIsEmpty) {
    Handle handle;
    Seen system;
    Seen user;
    Seen clean;
    user.answer = eSYS_ERRCATCH;
    oakErrorSetSysHandler(handle, handler, &system);
    oakErrorSetUserHandler(handle, handler, &user);
    oakErrorSetCleanup(handle, cleanup, &clean);
    EXPECT_EQ(oakErrorEx(handle, sNOTFOUND, "old", "old input", 3, 4, nullptr, 0), sNOTFOUND);
    EXPECT_EQ(oakErrorCatchPop(handle), eSYS_ERRCATCH);
    EXPECT_EQ(oakErrorStat(handle), eSYS_ERRCATCH);
    EXPECT_EQ(info_of(handle).info, nullptr);
    EXPECT_EQ(handle->errline, 0);
    EXPECT_EQ(handle->errcolumn, 0);
    EXPECT_EQ(oakErrorCatchPopAndThrow(handle, eEOD), eSYS_ERRCATCH);
    EXPECT_EQ(system.calls, 3);
    EXPECT_EQ(user.calls, 2);
    EXPECT_EQ(clean.calls, 2);
}

TEST(CatchStack, NamesItsOwnSourceInItsReports) {
    Handle handle;
    EXPECT_EQ(oakErrorCatchPop(handle), eSYS_ERRCATCH);
    EXPECT_STREQ(handle->file, "error.cpp");
    EXPECT_GT(handle->line, 0);
}

// Without memory for the scope the error is nobody's to catch; without memory
// for its name the new scope is there and catches it.
TEST(CatchScope, ReportsThatItFindsNoMemory) {
    Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        OAK_ERR handle = nullptr;
        const OAK_RETCODE opened = oakErrorOpen(tag, &handle);
        if (opened != sOKAY) {
            return opened;
        }
        const OAK_RETCODE rc = caught(handle, "catcher", end_well);
        EXPECT_EQ(oakErrorStat(handle), rc);
        EXPECT_EQ(handle->errcatch, nullptr);
        EXPECT_EQ(oakErrorClose(handle), sOKAY);
        return rc;
    });
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(runs, 6u); // the handle, the scope and its name
    }
}

#ifdef OSL_FAULT_INJECTION
TEST(CatchScope, JumpsToItselfWhenItsNameFindsNoMemory) {
    Tag tag;
    Handle handle(tag);
    Seen clean;
    oakErrorSetCleanup(handle, cleanup, &clean);
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE); // the scope
    EXPECT_EQ(caught(handle, "catcher", end_well), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_EQ(clean.calls, 1);                    // no scope was there
    osl_faultArm(OSL_FAULT_MEMORY, 2, OAK_FALSE); // its name
    EXPECT_EQ(caught(handle, "catcher", end_well), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_EQ(clean.calls, 1);
    EXPECT_EQ(handle->fcnid, nullptr);
}

// ---- Reports without memory ------------------------------------------------

TEST(ErrorReport, BecomesOneOfExhaustedMemoryAndSkipsTheOtherTexts) {
    Log log;
    Handle handle;
    oakErrorSetLogFile(handle, log.stream());
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", "input", 1, 2, "file", 3), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_EQ(oakErrorStat(handle), eNOMEMORY);
    EXPECT_EQ(handle->errfile, nullptr);
    EXPECT_EQ(handle->info, nullptr);
    EXPECT_EQ(handle->file, nullptr);
    EXPECT_EQ(handle->line, 0);
    EXPECT_EQ(handle->errline, 1); // positions are stored whatever happens
    EXPECT_EQ(handle->errcolumn, 2);
    osl_faultArm(OSL_FAULT_MEMORY, 2, OAK_FALSE);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", "input", 1, 2, "file", 3), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_STREQ(handle->errfile, "input");
    EXPECT_EQ(handle->info, nullptr);
    EXPECT_EQ(handle->file, nullptr);
    osl_faultArm(OSL_FAULT_MEMORY, 3, OAK_FALSE);
    EXPECT_EQ(oakErrorEx(handle, sNOTFOUND, "info", "input", 1, 2, "file", 3), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_STREQ(handle->info, "info");
    EXPECT_EQ(handle->file, nullptr);
    handle.close();
    EXPECT_EQ(log.text(), "failed to allocate memory and  changed code from -10039 to -10000\n"
                          "Error -10000 (eNOMEMORY): Out of memory \n"
                          "failed to allocate memory and  changed code from -10039 to -10000\n"
                          "Error -10000 (eNOMEMORY): Out of memory \n"
                          "failed to allocate memory and  changed code from 10000 to -10000\n"
                          "Error -10000 (eNOMEMORY): Out of memory  - info \n");
}

TEST(ErrorReport, KeepsTheOldTextWhenTheNewOneFindsNoMemory) {
    Handle handle;
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "old", "old input", 1, 2, "old file", 3), eRANGE);
    for (const uint64_t nth : {1u, 2u, 3u}) {
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_TRUE);
        EXPECT_EQ(oakErrorEx(handle, eRANGE, "old", "old input", 1, 2, "new file", 9), eNOMEMORY);
        EXPECT_GE(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
        EXPECT_STREQ(handle->info, "old");
        EXPECT_STREQ(handle->errfile, "old input");
        EXPECT_STREQ(handle->file, "old file");
        EXPECT_EQ(handle->line, 3);
    }
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, nullptr, "input", 1, 2, "file", 9), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_STREQ(handle->info, ""); // emptying takes no memory
    EXPECT_STREQ(handle->errfile, "old input");
}

TEST(ErrorSqlstate, IsNullWhenItsTagIsExhausted) {
    Handle handle;
    oakErrorSetSqlstate(handle, "01234");
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
    oakErrorSetSqlstate(handle, "56789");
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_EQ(oakErrorGetSqlstate(handle), nullptr);
}
#endif

TEST(ErrorReport, LeaksNothingWhateverFails) {
    Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        OAK_ERR handle = nullptr;
        OAK_RETCODE rc = oakErrorOpen(nullptr, &handle);
        if (rc != sOKAY) {
            return rc;
        }
        for (int i = 0; i < 2 && rc == sOKAY; ++i) {
            rc = oakErrorEx(handle, eRANGE, "info", "input", 1, 2, "file", 3);
            rc = rc == eRANGE ? sOKAY : rc;
        }
        EXPECT_EQ(handle->erractive, OAK_FALSE);
        EXPECT_EQ(oakErrorClose(handle), sOKAY);
        return rc;
    });
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(runs, 16u); // tag, record, and three texts twice
    }
}

// ---- The log ---------------------------------------------------------------

TEST(ErrorLog, HoldsAReportInItsPieces) {
    Log log;
    Handle handle;
    oakErrorSetLogFile(handle, log.stream());
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    EXPECT_EQ(oakErrorEx(handle, eUNOMISMATCH, "two unions", nullptr, 0, 0, nullptr, 9),
              eUNOMISMATCH);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, nullptr, nullptr, 0, 0, "module.c", 12), eRANGE);
    EXPECT_EQ(caught(handle, "load_table", fail_with_range), eRANGE);
    EXPECT_EQ(report(handle, static_cast<OAK_RETCODE>(-5)), -5);
    EXPECT_EQ(oakErrorEx(handle, eFAIL, "x", nullptr, 0, 0, "", 13), eFAIL);
    handle.close();
    EXPECT_EQ(
        log.text(),
        "Error -10039 (eRANGE): Numeric value out of range \n"
        "Error -10030 (eUNOMISMATCH): Unions mismatch   - two unions \n"
        "Error -10039 (eRANGE): Numeric value out of range  -   occurred at line 12 in file "
        "module.c\n"
        "Error -10039 (eRANGE): Numeric value out of range  - deep in function load_table  "
        "occurred at line 12 in file module.c\n"
        "Bad (undefined) error code -5  -  in function load_table  occurred at line 12 in file "
        "module.c\n"
        "Error -1 (eFAIL): General failure  - x in function load_table \n");
}

TEST(ErrorLog, HoldsNoStatuses) {
    Log log;
    Handle handle;
    oakErrorSetLogFile(handle, log.stream());
    EXPECT_EQ(oakErrorEx(handle, sNOTFOUND, "info", "input", 1, 2, "file", 3), sNOTFOUND);
    EXPECT_EQ(report(handle, sOKAY), sOKAY);
    oakErrorSetStatus(handle, eRANGE);
    handle.close();
    EXPECT_EQ(log.text(), "");
}

TEST(ErrorLog, HoldsWhatTheSystemHandlerAnsweredEvenIfItIsTheSame) {
    Log log;
    Handle handle;
    Seen seen;
    oakErrorSetSysHandler(handle, handler, &seen);
    oakErrorSetLogFile(handle, log.stream());
    seen.answer = sOKAY;
    EXPECT_EQ(report(handle, sNOTFOUND), sNOTFOUND);
    seen.answer = eRANGE;
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    seen.answer = sNOTFOUND;
    EXPECT_EQ(report(handle, eRANGE), sNOTFOUND);
    handle.close();
    EXPECT_EQ(log.text(), "system handler changed code from -10039 to -10039\n"
                          "Error -10039 (eRANGE): Numeric value out of range \n"
                          "system handler changed code from -10039 to 10000\n");
}

TEST(ErrorLog, HoldsWhatTheUsersHandlerAnsweredIfItDiffers) {
    Log log;
    Handle handle;
    Seen seen;
    oakErrorSetUserHandler(handle, handler, &seen);
    oakErrorSetLogFile(handle, log.stream());
    seen.answer = eRANGE;
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    seen.answer = eEOD;
    EXPECT_EQ(report(handle, eRANGE), eEOD);
    seen.answer = sOKAY;
    EXPECT_EQ(report(handle, eRANGE), sIGNORE);
    handle.close();
    EXPECT_EQ(log.text(), "Error -10039 (eRANGE): Numeric value out of range \n"
                          "Error -10039 (eRANGE): Numeric value out of range \n"
                          "user handler changed code from -10039 to -10072\n"
                          "Error -10039 (eRANGE): Numeric value out of range \n"
                          "user handler changed code from -10039 to 0\n");
}

TEST(ErrorLog, GoesBackToTheCallerUnclosedWhenItIsReplaced) {
    Log log;
    Handle handle;
    oakErrorSetLogFile(handle, log.stream());
    EXPECT_EQ(report(handle, eFAIL), eFAIL);
    oakErrorSetLogFile(handle, nullptr);
    EXPECT_EQ(report(handle, eFAIL), eFAIL);
    handle.close();
    osl_fprintf(log.stream(), "still open\n");
    osl_fclose(log.stream());
    EXPECT_EQ(log.text(), "Error -1 (eFAIL): General failure \nstill open\n");
}

// ---- Reading back ----------------------------------------------------------

TEST(ErrorStatus, IsRecordedWithoutAReport) {
    Handle handle;
    Seen seen;
    Seen clean;
    oakErrorSetStatus(handle, sTIMEOUT); // without an info buffer
    EXPECT_EQ(handle->info, nullptr);
    EXPECT_EQ(oakErrorEx(handle, sNOTFOUND, "info", "input", 3, 4, "file", 5), sNOTFOUND);
    oakErrorSetSysHandler(handle, handler, &seen);
    oakErrorSetUserHandler(handle, handler, &seen);
    oakErrorSetCleanup(handle, cleanup, &clean);
    oakErrorSetStatus(handle, eRANGE);
    EXPECT_EQ(oakErrorStat(handle), eRANGE);
    EXPECT_EQ(seen.calls, 0);
    EXPECT_EQ(clean.calls, 0);
    EXPECT_EQ(handle->callcount, 1u);
    EXPECT_EQ(handle->errline, 0);
    EXPECT_EQ(handle->errcolumn, 0);
    EXPECT_STREQ(handle->errfile, "input");
    const Info info = info_of(handle);
    EXPECT_EQ(info.rc, eRANGE);
    EXPECT_EQ(info.info, nullptr);
    EXPECT_STREQ(info.file, "file");
    EXPECT_EQ(info.line, 5);
}

TEST(ErrorInfo, NamesTheGroupOfStatusesOkAndFailAndOfNoOtherError) {
    Handle handle;
    for (const OAK_ERRDEFN &row : oak_errors) {
        oakErrorSetStatus(handle, row.code);
        const Info info = info_of(handle);
        EXPECT_EQ(info.rc, row.code);
        EXPECT_EQ(info.msg, row.descr);
        EXPECT_EQ(info.name, row.name);
        if (row.code == sQA_OAKC_SUCCESS_WITH_INFO) {
            EXPECT_STREQ(info.subsys, "status oakc");
        } else if (row.code > 0) {
            EXPECT_STREQ(info.subsys, "status") << row.name;
        } else if (row.code == sOKAY) {
            EXPECT_STREQ(info.subsys, "ok");
        } else if (row.code == eFAIL) {
            EXPECT_STREQ(info.subsys, "fail");
        } else {
            EXPECT_EQ(info.subsys, nullptr) << row.name;
        }
    }
}

TEST(ErrorInfo, StoresOnlyWhatIsAskedFor) {
    Handle handle;
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", "input", 3, 4, "file", 5), eRANGE);
    EXPECT_EQ(oakErrorInfoEx(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              eRANGE);
    oakErrorFileAndPosition(handle, nullptr, nullptr, nullptr);
    const char *input = nullptr;
    int32_t column = 0;
    oakErrorFileAndPosition(handle, &input, nullptr, &column);
    EXPECT_STREQ(input, "input");
    EXPECT_EQ(column, 4);
}

TEST(ErrorSqlstate, IsKeptPerHandleAndCleared) {
    Tag tag;
    Handle handle(tag);
    EXPECT_EQ(oakErrorGetSqlstate(handle), nullptr);
    char state[] = "42S02";
    oakErrorSetSqlstate(handle, state);
    state[0] = '#';
    EXPECT_STREQ(oakErrorGetSqlstate(handle), "42S02");
    oakErrorSetSqlstate(handle, "HY000");
    EXPECT_STREQ(oakErrorGetSqlstate(handle), "HY000");
    oakErrorSetSqlstate(handle, nullptr);
    EXPECT_EQ(oakErrorGetSqlstate(handle), nullptr);
}

TEST(ErrorStat, IsFilledForTheCaller) {
    Tag tag;
    Handle handle;
    EXPECT_EQ(caught(handle, "catcher", end_well), sOKAY);
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", "input", INT_MIN, -4, "file", 5), eRANGE);
    ERR_STAT next{};
    ERR_STAT stat{};
    stat.srcfile = "caller's";
    stat.srcline = 71;
    stat.srccol = 72;
    stat.next = &next;
    EXPECT_EQ(oakGetErrorStat(handle, &stat, tag), sOKAY);
    EXPECT_EQ(stat.code, eRANGE);
    EXPECT_EQ(stat.rowno, INT64_C(-2147483648)); // widened with its sign
    EXPECT_EQ(stat.colno, -4);
    EXPECT_STREQ(stat.info, "info");
    EXPECT_STREQ(stat.fcnId, "catcher");
    EXPECT_NE(stat.info, handle->info);
    EXPECT_STREQ(stat.srcfile, "caller's");
    EXPECT_EQ(stat.srcline, 71);
    EXPECT_EQ(stat.srccol, 72);
    EXPECT_EQ(stat.next, &next);
    OSL_FREE(stat.info, tag);
    OSL_FREE(stat.fcnId, tag);
}

TEST(ErrorStat, LeavesTextsThatTheHandleDoesNotHave) {
    Handle handle;
    char untouched[] = "untouched";
    ERR_STAT stat{};
    stat.info = stat.fcnId = untouched;
    oakErrorSetStatus(handle, sNOTFOUND);
    EXPECT_EQ(oakGetErrorStat(handle, &stat, nullptr), sOKAY); // nothing to allocate
    EXPECT_EQ(stat.code, sNOTFOUND);
    EXPECT_EQ(stat.info, untouched);
    EXPECT_EQ(stat.fcnId, untouched);
}

TEST(ErrorStat, HasAnEmptyTextWhereTheInfoWasEmptied) {
    Tag tag;
    Handle handle;
    EXPECT_EQ(oakErrorEx(handle, eRANGE, "info", nullptr, 0, 0, nullptr, 0), eRANGE);
    EXPECT_EQ(report(handle, eRANGE), eRANGE);
    ERR_STAT stat{};
    EXPECT_EQ(oakGetErrorStat(handle, &stat, nullptr), eINVNULLARG); // no tag to copy into
    EXPECT_EQ(oakGetErrorStat(handle, &stat, tag), sOKAY);
    EXPECT_STREQ(stat.info, "");
    OSL_FREE(stat.info, tag);
}

TEST(ErrorStat, FailsWithItsTag) {
    Tag tag;
    Handle handle;
    EXPECT_EQ(caught(handle, "catcher", fail_with_range), eRANGE);
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        ERR_STAT stat{};
        const OAK_RETCODE rc = oakGetErrorStat(handle, &stat, tag);
        EXPECT_EQ(stat.code, eRANGE);
        EXPECT_EQ(rc == sOKAY, stat.fcnId != nullptr);
        OSL_FREE(stat.info, tag);
        OSL_FREE(stat.fcnId, tag);
        return rc;
    });
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(runs, 4u);
    }
}

// ---- Console messages ------------------------------------------------------

using Display = void (*)(uint16_t, uint16_t, const char *, ...);

std::string shown(Display display, uint16_t required, uint16_t level, bool error) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    display(required, level, "%s %d", "value", 12);
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(error ? out : err, "");
    return error ? err : out;
}

TEST(ConsoleMessages, AreGatedByTheVerboseLevel) {
    const std::pair<Display, bool> displays[] = {{DisplayMessage, false},
                                                 {DisplayMessageNow, false},
                                                 {DisplayError, true},
                                                 {DisplayErrorNow, true}};
    for (const auto &[display, error] : displays) {
        EXPECT_EQ(shown(display, 0, 0, error), "value 12");
        EXPECT_EQ(shown(display, 2, 3, error), "value 12");
        EXPECT_EQ(shown(display, 3, 3, error), "value 12");
        EXPECT_EQ(shown(display, 65535, 65535, error), "value 12");
        EXPECT_EQ(shown(display, 3, 2, error), "");
        EXPECT_EQ(shown(display, 65535, 65534, error), "");
    }
}

} // namespace
