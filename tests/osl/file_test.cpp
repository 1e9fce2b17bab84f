// Files and directories: transfers, positions, sizes, locks, names, signals.
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "test_support.h"

namespace {

/// A directory that is there for one test.
class Files : public testing::Test {
  protected:
    Files() {
        char name[] = "/tmp/osl_file_test_XXXXXX";
        EXPECT_NE(mkdtemp(name), nullptr);
        directory_ = name;
    }
    ~Files() override { std::filesystem::remove_all(directory_); }

    std::string path(const char *name) const { return directory_ + "/" + name; }

    /// A file with these contents, opened for reading and writing.
    OSL_FH make(const char *name, const std::string &contents) const {
        OSL_FH fh = osl_fileOpen(path(name).c_str(), OSL_OPEN_TRUNCATE, 0);
        EXPECT_NE(fh, nullptr);
        EXPECT_EQ(osl_fileWrite(fh, contents.data(), static_cast<uint32_t>(contents.size())),
                  contents.size());
        EXPECT_EQ(osl_fileSeek(fh, 0, OSL_SEEK_START, nullptr), sOKAY);
        return fh;
    }

    std::string contents(const char *name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::string directory_;
};

std::string read(OSL_FH fh, uint32_t count) {
    std::string bytes(count, '?');
    const uint32_t got = osl_fileRead(fh, bytes.data(), count);
    EXPECT_NE(got, OSL_READ_ERROR);
    bytes.resize(got);
    return bytes;
}

uint64_t position(OSL_FH fh) {
    OSL_FILE_OFFSET at = 0;
    EXPECT_EQ(osl_fileSeek(fh, 0, OSL_SEEK_CURRENT, &at), sOKAY);
    return at;
}

/// The flags of the one descriptor that is open on the path.
int descriptor_flags(const std::string &path) {
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry.path(), error) == path) {
            return fcntl(std::stoi(entry.path().filename()), F_GETFD);
        }
    }
    return -1;
}

uint32_t mode_of(const std::string &path) {
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

} // namespace

// ---- Opening ----------------------------------------------------------------

TEST_F(Files, TheOpenFlagsHaveTheSystemsValues) {
    EXPECT_EQ(OSL_OPEN_READ, O_RDONLY);
    EXPECT_EQ(OSL_OPEN_CREATE, O_RDWR | O_CREAT);
    EXPECT_EQ(OSL_OPEN_TRUNCATE, O_RDWR | O_CREAT | O_TRUNC);
}

TEST_F(Files, AreCreatedKeptOrTruncated) {
    EXPECT_EQ(osl_fileOpen(path("new").c_str(), OSL_OPEN_READ, 0), nullptr);
    OSL_FH fh = osl_fileOpen(path("new").c_str(), OSL_OPEN_CREATE, 0);
    ASSERT_NE(fh, nullptr);
    EXPECT_EQ(osl_fileWrite(fh, "oak", 3), 3u);
    osl_fileClose(fh);
    fh = osl_fileOpen(path("new").c_str(), OSL_OPEN_CREATE, 0);
    EXPECT_EQ(osl_fileLength(fh), 3u);
    osl_fileClose(fh);
    fh = osl_fileOpen(path("new").c_str(), OSL_OPEN_TRUNCATE, 0);
    EXPECT_EQ(osl_fileLength(fh), 0u);
    osl_fileClose(fh);
}

TEST_F(Files, OpenedForReadingRefuseWrites) {
    osl_fileClose(make("data", "oak"));
    OSL_FH fh = osl_fileOpen(path("data").c_str(), OSL_OPEN_READ, 0);
    ASSERT_NE(fh, nullptr);
    EXPECT_EQ(osl_fileWrite(fh, "x", 1), 0u);
    EXPECT_EQ(osl_fileSeekWrite(fh, 0, "x", 1), 0u);
    EXPECT_EQ(osl_fileSetSize(fh, 0), eFILEIO);
    EXPECT_EQ(read(fh, 10), "oak");
    osl_fileClose(fh);
}

TEST_F(Files, TakeAnyExtraFlags) {
    for (const uint16_t flags : {uint16_t{0}, uint16_t{1}, uint16_t{UINT16_MAX}}) {
        OSL_FH fh = osl_fileOpen(path("data").c_str(), OSL_OPEN_CREATE, flags);
        EXPECT_NE(fh, nullptr);
        osl_fileClose(fh);
        EXPECT_EQ(osl_fileRemoveEx(path("data").c_str(), flags), sOKAY);
        EXPECT_EQ(osl_fileValidate(path("data").c_str()), eNOFILE);
    }
}

TEST_F(Files, AreNotInheritedByOtherPrograms) {
    OSL_FH fh = make("data", "");
    EXPECT_EQ(descriptor_flags(path("data")), FD_CLOEXEC);
    osl_fileClose(fh);
    OSL_FILE_STREAM stream = osl_fopen(path("data").c_str(), "r", 0);
    EXPECT_EQ(descriptor_flags(path("data")), FD_CLOEXEC);
    osl_fclose(stream);
}

TEST_F(Files, RefuseMissingNames) {
    EXPECT_EQ(osl_fileOpen(nullptr, OSL_OPEN_READ, 0), nullptr);
    EXPECT_EQ(osl_fileRemove(nullptr), eINVNULLARG);
    EXPECT_EQ(osl_fileRemoveEx(nullptr, 0), eINVNULLARG);
    EXPECT_EQ(osl_fileValidate(nullptr), eINVNULLARG);
    EXPECT_EQ(osl_fileValidateEx(nullptr, 0, nullptr), OAK_FALSE);
    EXPECT_EQ(osl_dirCreate(nullptr), eINVNULLARG);
    EXPECT_EQ(osl_dirRemove(nullptr), eINVNULLARG);
    osl_fileClose(nullptr);
}

TEST_F(Files, ThatCannotBeOpenedAreNoHandles) {
    const oaktest::Live before = oaktest::Live::now();
    EXPECT_EQ(osl_fileOpen(path("none").c_str(), OSL_OPEN_READ, 0), nullptr);
    EXPECT_EQ(osl_fileOpen(path("none/below").c_str(), OSL_OPEN_CREATE, 0), nullptr);
    EXPECT_EQ(oaktest::Live::now(), before);
}

// A handle of no open file: every call says that the system refused.
TEST_F(Files, RefuseAHandleThatIsNotOpen) {
    const auto fh = reinterpret_cast<OSL_FH>(static_cast<uintptr_t>(1000000));
    char byte = 'x';
    OSL_FILE_OFFSET at = 77;
    EXPECT_EQ(osl_fileRead(fh, &byte, 1), OSL_READ_ERROR);
    EXPECT_EQ(osl_fileSeekRead(fh, 0, &byte, 1), OSL_READ_ERROR);
    EXPECT_EQ(osl_fileWrite(fh, &byte, 1), 0u);
    EXPECT_EQ(osl_fileSeekWrite(fh, 0, &byte, 1), 0u);
    EXPECT_EQ(osl_fileSeek(fh, 0, OSL_SEEK_START, &at), eFILEIO);
    EXPECT_EQ(osl_fileSetSize(fh, 1), eFILEIO);
    EXPECT_EQ(osl_fileLength(fh), 0u);
    EXPECT_EQ(osl_fileLock(fh), eFILEIO);
    EXPECT_EQ(osl_fileUnlock(fh), eFILEIO);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(at, 77u);
}

// ---- Transfers --------------------------------------------------------------

TEST_F(Files, ReadAndWriteAtTheirPosition) {
    OSL_FH fh = make("data", "0123456789");
    EXPECT_EQ(read(fh, 4), "0123");
    EXPECT_EQ(position(fh), 4u);
    EXPECT_EQ(osl_fileWrite(fh, "xy", 2), 2u);
    EXPECT_EQ(read(fh, 2), "67");
    EXPECT_EQ(read(fh, 100), "89") << "fewer at the end";
    EXPECT_EQ(read(fh, 100), "") << "none behind it";
    EXPECT_EQ(read(fh, 0), "");
    EXPECT_EQ(osl_fileWrite(fh, "", 0), 0u);
    osl_fileClose(fh);
    EXPECT_EQ(contents("data"), "0123xy6789");
}

TEST_F(Files, ReadAndWriteAtAnOffset) {
    OSL_FH fh = make("data", "0123456789");
    char bytes[4] = "";
    EXPECT_EQ(osl_fileSeek(fh, 2, OSL_SEEK_START, nullptr), sOKAY);
    EXPECT_EQ(osl_fileSeekRead(fh, 7, bytes, 2), 2u);
    EXPECT_STREQ(bytes, "78");
    EXPECT_EQ(osl_fileSeekRead(fh, 9, bytes, 4), 1u);
    EXPECT_EQ(osl_fileSeekRead(fh, 10, bytes, 4), 0u);
    EXPECT_EQ(osl_fileSeekRead(fh, 1000, bytes, 4), 0u);
    EXPECT_EQ(osl_fileSeekWrite(fh, 12, "end", 3), 3u);
    EXPECT_EQ(position(fh), 2u) << "the position stays";
    osl_fileClose(fh);
    EXPECT_EQ(contents("data"), std::string("0123456789\0\0end", 15));
}

TEST_F(Files, TellErrorsFromTheEnd) {
    char bytes[4];
    OSL_FH fh = osl_fileOpen(directory_.c_str(), OSL_OPEN_READ, 0); // a directory
    ASSERT_NE(fh, nullptr);
    EXPECT_EQ(osl_fileRead(fh, bytes, 4), OSL_READ_ERROR);
    EXPECT_EQ(osl_fileSeekRead(fh, 0, bytes, 4), OSL_READ_ERROR);
    osl_fileClose(fh);
    fh = osl_fileOpen("/dev/full", OSL_OPEN_CREATE, 0);
    if (fh != nullptr) {
        EXPECT_EQ(osl_fileWrite(fh, "oak", 3), 0u) << "no room";
        osl_fileClose(fh);
    }
}

TEST_F(Files, SeekFromBothOrigins) {
    OSL_FH fh = make("data", "0123456789");
    OSL_FILE_OFFSET at = 77;
    EXPECT_EQ(osl_fileSeek(fh, 4, OSL_SEEK_START, &at), sOKAY);
    EXPECT_EQ(at, 4u);
    EXPECT_EQ(osl_fileSeek(fh, 3, OSL_SEEK_CURRENT, &at), sOKAY);
    EXPECT_EQ(at, 7u);
    EXPECT_EQ(osl_fileSeek(fh, static_cast<OSL_FILE_OFFSET>(-2), OSL_SEEK_CURRENT, &at), sOKAY);
    EXPECT_EQ(at, 5u);
    EXPECT_EQ(read(fh, 1), "5");
    EXPECT_EQ(osl_fileSeek(fh, 100, OSL_SEEK_START, &at), sOKAY) << "beyond the end";
    EXPECT_EQ(at, 100u);
    EXPECT_EQ(osl_fileSeek(fh, UINT64_MAX, OSL_SEEK_START, &at), eFILEIO);
    EXPECT_EQ(osl_fileSeek(fh, static_cast<OSL_FILE_OFFSET>(-101), OSL_SEEK_CURRENT, &at), eFILEIO);
    EXPECT_EQ(osl_fileSeek(fh, 0, 2, &at), eINVARG);
    EXPECT_EQ(osl_fileSeek(fh, 0, -1, &at), eINVARG);
    EXPECT_EQ(at, 100u) << "set on success alone";
    osl_fileClose(fh);
}

TEST_F(Files, AreCutAndExtended) {
    OSL_FH fh = make("data", "0123456789");
    EXPECT_EQ(osl_fileSetSize(fh, 4), sOKAY);
    EXPECT_EQ(osl_fileLength(fh), 4u);
    EXPECT_EQ(osl_fileSetSize(fh, 6), sOKAY);
    EXPECT_EQ(osl_fileLength(fh), 6u);
    EXPECT_EQ(osl_fileSetSize(fh, UINT64_MAX), eFILEIO);
    osl_fileClose(fh);
    EXPECT_EQ(contents("data"), std::string("0123\0\0", 6));
}

TEST_F(Files, HoldOffsetsBeyondFourGigabytes) {
    OSL_FH fh = make("sparse", "");
    const OSL_FILE_OFFSET far = (OSL_FILE_OFFSET{1} << 32) + 5;
    EXPECT_EQ(osl_fileSeekWrite(fh, far, "oak", 3), 3u);
    EXPECT_EQ(osl_fileLength(fh), far + 3);
    char bytes[4] = "";
    EXPECT_EQ(osl_fileSeekRead(fh, far, bytes, 4), 3u);
    EXPECT_STREQ(bytes, "oak");
    osl_fileClose(fh);
}

TEST_F(Files, GoOnWhenASignalInterrupts) {
    struct sigaction action = {};
    struct sigaction old = {};
    action.sa_handler = [](int) {}; // without SA_RESTART: system calls end with EINTR
    sigaction(SIGUSR1, &action, &old);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    const pthread_t reader = pthread_self();
    std::thread writer([&] {
        osl_sleep(5);
        pthread_kill(reader, SIGUSR1); // while it opens
        osl_sleep(5);
        const int descriptor = open(path("pipe").c_str(), O_WRONLY);
        for (const char *part : {"oak", "birch"}) {
            EXPECT_GT(write(descriptor, part, std::strlen(part)), 0);
            osl_sleep(5);
            pthread_kill(reader, SIGUSR1); // while it waits for more
            osl_sleep(5);
        }
        close(descriptor);
    });
    OSL_FH fh = osl_fileOpen(path("pipe").c_str(), OSL_OPEN_READ, 0);
    EXPECT_NE(fh, nullptr);
    EXPECT_EQ(read(fh, 100), "oakbirch");
    EXPECT_EQ(osl_fileSeek(fh, 0, OSL_SEEK_START, nullptr), eFILEIO) << "a pipe has no position";
    osl_fileClose(fh);
    writer.join();
    sigaction(SIGUSR1, &old, nullptr);
}

// A pipe takes a part, and a signal ends the wait for room: the rest follows in order.
TEST_F(Files, AreWrittenToTheEndWhenASignalInterrupts) {
    struct sigaction action = {};
    struct sigaction old = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &old);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    std::string sent(300000, '?'); // more than a pipe holds
    for (size_t i = 0; i < sent.size(); ++i) {
        sent[i] = static_cast<char>(i * 31 >> 4);
    }
    OSL_FH fh = osl_fileOpen(path("pipe").c_str(), OSL_OPEN_CREATE, 0);
    ASSERT_NE(fh, nullptr);
    const pthread_t writer = pthread_self();
    std::string received;
    std::thread reader([&] {
        const int descriptor = open(path("pipe").c_str(), O_RDONLY);
        osl_sleep(10);
        pthread_kill(writer, SIGUSR1); // while it waits for room
        osl_sleep(5);
        while (received.size() < sent.size()) {
            char bytes[10000];
            const ssize_t got = ::read(descriptor, bytes, sizeof bytes);
            if (got <= 0) {
                break;
            }
            received.append(bytes, static_cast<size_t>(got));
        }
        close(descriptor);
    });
    EXPECT_EQ(osl_fileWrite(fh, sent.data(), static_cast<uint32_t>(sent.size())), sent.size());
    osl_fileClose(fh); // so that the reader ends whatever was written
    reader.join();
    EXPECT_TRUE(received == sent);
    sigaction(SIGUSR1, &old, nullptr);
}

TEST_F(Files, SleepTheirTimeThroughSignals) {
    struct sigaction action = {};
    struct sigaction old = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &old);
    const pthread_t sleeper = pthread_self();
    std::thread other([&] {
        osl_sleep(2);
        pthread_kill(sleeper, SIGUSR1);
    });
    const uint64_t begin = osl_timeNanoSecs();
    osl_sleep(20);
    EXPECT_GE(osl_timeNanoSecs() - begin, 19000000u);
    other.join();
    sigaction(SIGUSR1, &old, nullptr);
}

// ---- Locks ------------------------------------------------------------------

TEST_F(Files, AreLockedForOneHandleAtATime) {
    OSL_FH first = make("lock", "");
    OSL_FH second = osl_fileOpen(path("lock").c_str(), OSL_OPEN_CREATE, 0);
    OSL_FH reader = osl_fileOpen(path("lock").c_str(), OSL_OPEN_READ, 0);
    EXPECT_EQ(osl_fileLock(first), sOKAY);
    EXPECT_EQ(osl_fileLock(first), sOKAY) << "its own lock again";
    EXPECT_EQ(osl_fileLock(second), eFILEINUSE) << "in the same process too";
    EXPECT_EQ(osl_fileLock(reader), eFILEINUSE);
    EXPECT_EQ(osl_fileUnlock(first), sOKAY);
    EXPECT_EQ(osl_fileLock(second), sOKAY);
    EXPECT_EQ(osl_fileLock(first), eFILEINUSE);
    osl_fileClose(second);
    EXPECT_EQ(osl_fileLock(reader), sOKAY) << "closing gives up the lock";
    osl_fileClose(reader);
    EXPECT_EQ(osl_fileUnlock(first), sOKAY) << "without a lock nothing happens";
    osl_fileClose(first);
}

// ---- Names ------------------------------------------------------------------

TEST_F(Files, AreRemovedByName) {
    osl_fileClose(make("data", ""));
    EXPECT_EQ(osl_fileValidate(path("data").c_str()), sOKAY);
    EXPECT_EQ(osl_fileRemove(path("data").c_str()), sOKAY);
    EXPECT_EQ(osl_fileValidate(path("data").c_str()), eNOFILE);
    EXPECT_EQ(osl_fileRemove(path("data").c_str()), eNOFILE);
    EXPECT_EQ(osl_fileRemove(path("data/below").c_str()), eNOFILE);
    EXPECT_EQ(osl_fileRemove(directory_.c_str()), eFILEIO) << "a directory is no file";
}

TEST_F(Files, AreToldFromDirectories) {
    osl_fileClose(make("data", ""));
    OAK_BOOL_T is_directory = OAK_TRUE;
    EXPECT_EQ(osl_fileValidateEx(path("data").c_str(), 0, &is_directory), OAK_TRUE);
    EXPECT_EQ(is_directory, OAK_FALSE);
    EXPECT_EQ(osl_fileValidateEx(directory_.c_str(), 0, &is_directory), OAK_TRUE);
    EXPECT_EQ(is_directory, OAK_TRUE);
    EXPECT_EQ(osl_fileValidateEx(directory_.c_str(), 0, nullptr), OAK_TRUE);
    EXPECT_EQ(osl_fileValidateEx(path("missing").c_str(), 0, &is_directory), OAK_FALSE);
    EXPECT_EQ(osl_fileValidate(directory_.c_str()), sOKAY);
}

TEST_F(Files, LieInDirectoriesThatComeAndGo) {
    EXPECT_EQ(osl_dirCreate(path("sub").c_str()), sOKAY);
    EXPECT_EQ(osl_dirCreate(path("sub").c_str()), eMKDIR) << "it is there already";
    EXPECT_EQ(osl_dirCreate(path("no/sub").c_str()), eMKDIR);
    osl_fileClose(make("sub/data", ""));
    EXPECT_EQ(osl_dirRemove(path("sub").c_str()), eFILEIO) << "it is not empty";
    EXPECT_EQ(osl_fileRemove(path("sub/data").c_str()), sOKAY);
    EXPECT_EQ(osl_dirRemove(path("sub").c_str()), sOKAY);
    EXPECT_EQ(osl_dirRemove(path("sub").c_str()), eNOFILE);
}

// ---- Temporary files --------------------------------------------------------

TEST_F(Files, OfPassingUseHaveNamesThatNobodyGuesses) {
    oaktest::Tag tag;
    setenv("TMPDIR", directory_.c_str(), 1);
    std::set<std::string> names;
    uint32_t counter = 5;
    for (uint32_t i = 0; i < 100; ++i) {
        char *name = osl_fileCreateTmpName(&counter, "oaksort", 0, 0, tag);
        ASSERT_NE(name, nullptr);
        EXPECT_EQ(std::string(name).rfind(directory_ + "/oaksort", 0), 0u) << name;
        EXPECT_TRUE(names.insert(name).second);
        EXPECT_EQ(counter, 6 + i);
        EXPECT_EQ(osl_fileValidate(name), eNOFILE) << "nothing is made";
        OSL_FREE(name, tag);
    }
    // Without the counter's help: what differs is the random part.
    std::set<std::string> uncounted;
    for (int i = 0; i < 100; ++i) {
        char *name = osl_fileCreateTmpName(nullptr, "cbtree", 0, 0, tag);
        EXPECT_TRUE(uncounted.insert(name).second);
        OSL_FREE(name, tag);
    }
    unsetenv("TMPDIR");
}

TEST_F(Files, OfPassingUseLieInTmpUnlessTheEnvironmentSaysElse) {
    oaktest::Tag tag;
    uint32_t counter = 0;
    unsetenv("TMPDIR");
    char *name = osl_fileCreateTmpName(&counter, "cbtree", 0, 0, tag);
    EXPECT_EQ(std::string(name).rfind("/tmp/cbtree", 0), 0u);
    OSL_FREE(name, tag);
    setenv("TMPDIR", "", 1);
    name = osl_fileCreateTmpName(&counter, "cbtree", 0, 0, tag);
    EXPECT_EQ(std::string(name).rfind("/tmp/cbtree", 0), 0u);
    OSL_FREE(name, tag);
    unsetenv("TMPDIR");
    EXPECT_EQ(osl_fileCreateTmpName(&counter, nullptr, 0, 0, tag), nullptr);
}

TEST_F(Files, OfPassingUseAreForTheirOwnerAloneAndNoLinks) {
    oaktest::Tag tag;
    uint32_t counter = 0;
    setenv("TMPDIR", directory_.c_str(), 1);
    const mode_t old_mask = umask(022);
    char *name = osl_fileCreateTmpName(&counter, "cbtree", 0, 0, tag);
    OSL_FH fh = osl_fileOpen(name, OSL_OPEN_TRUNCATE, 0);
    ASSERT_NE(fh, nullptr);
    EXPECT_EQ(mode_of(name), 0600u);
    osl_fileClose(fh);
    EXPECT_EQ(osl_fileRemove(name), sOKAY);

    osl_fileClose(make("target", "oak"));
    EXPECT_EQ(mode_of(path("target")), 0644u) << "other files obey the umask alone";
    ASSERT_EQ(symlink(path("target").c_str(), name), 0);
    EXPECT_EQ(osl_fileOpen(name, OSL_OPEN_TRUNCATE, 0), nullptr);
    EXPECT_EQ(contents("target"), "oak");
    ASSERT_EQ(symlink(path("target").c_str(), path("link").c_str()), 0);
    fh = osl_fileOpen(path("link").c_str(), OSL_OPEN_READ, 0);
    EXPECT_NE(fh, nullptr) << "other links are followed";
    osl_fileClose(fh);
    OSL_FREE(name, tag);
    umask(old_mask);
    unsetenv("TMPDIR");
}

// ---- Absolute paths ---------------------------------------------------------

TEST_F(Files, HaveAbsolutePaths) {
    oaktest::Tag tag;
    char directory[4096];
    ASSERT_NE(getcwd(directory, sizeof directory), nullptr);
    const std::string here = directory;
    const std::string above = std::filesystem::path(here).parent_path();
    const std::pair<std::string, std::string> rows[] = {
        {"/", "/"},
        {"/a", "/a"},
        {"/a/", "/a"},
        {"//a///b/", "/a/b"},
        {"/a/./b/.", "/a/b"},
        {"/a/../b", "/b"},
        {"/a/b/../../..", "/"},
        {"/..", "/"},
        {"/no/such/../place", "/no/place"},
        {"/a/..b/.c/d..", "/a/..b/.c/d.."},
        {"", here},
        {".", here},
        {"x", here == "/" ? "/x" : here + "/x"},
        {"./x/", here == "/" ? "/x" : here + "/x"},
        {"..", above},
        {"no-such-place/..", here},
    };
    for (const auto &[given, absolute] : rows) {
        char *full = osl_fullpathEx(given.c_str(), tag);
        ASSERT_NE(full, nullptr);
        EXPECT_EQ(absolute, full) << given;
        OSL_FREE(full, tag);
    }
    EXPECT_EQ(osl_fullpathEx(nullptr, tag), nullptr);
}

TEST_F(Files, BehindALinkAreFoundWhereTheSystemFindsThem) {
    oaktest::Tag tag;
    std::filesystem::create_directories(path("real/inner"));
    ASSERT_EQ(symlink(path("real/inner").c_str(), path("link").c_str()), 0);
    char *full = osl_fullpathEx(path("link/..").c_str(), tag);
    EXPECT_EQ(path("real"), full);
    OSL_FREE(full, tag);
    full = osl_fullpathEx(path("link").c_str(), tag);
    EXPECT_EQ(path("link"), full) << "a link itself is kept";
    OSL_FREE(full, tag);
}

TEST_F(Files, WhosePathsDoNotFitMemoryAreReported) {
    oaktest::Tag tag;
    for (const char *given : {"x", "/a/../b", "/"}) {
        const uint64_t failures =
            oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
                char *full = osl_fullpathEx(given, tag);
                OSL_FREE(full, tag);
                return full != nullptr ? sOKAY : eNOMEMORY;
            });
        EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
    }
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&tag] {
        uint32_t counter = 0;
        char *name = osl_fileCreateTmpName(&counter, "cbtree", 0, 0, tag);
        OSL_FREE(name, tag);
        return name != nullptr ? sOKAY : eNOMEMORY;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
}

// ---- Failure ----------------------------------------------------------------

TEST_F(Files, ReportEveryFailure) {
    const std::string data = path("data");
    const std::string sub = path("sub");
    const auto operation = [&]() -> OAK_RETCODE {
        OAK_RETCODE status = osl_dirCreate(sub.c_str());
        if (status != sOKAY) {
            return status;
        }
        OSL_FH fh = osl_fileOpen(data.c_str(), OSL_OPEN_TRUNCATE, 0);
        status = fh != nullptr ? osl_fileLock(fh) : eFILEOPEN;
        if (status == sOKAY) {
            char byte = 0;
            const bool moved =
                osl_fileWrite(fh, "oak", 3) == 3 && osl_fileSeekWrite(fh, 3, "!", 1) == 1 &&
                osl_fileSeek(fh, 0, OSL_SEEK_START, nullptr) == sOKAY &&
                osl_fileRead(fh, &byte, 1) == 1 && osl_fileSeekRead(fh, 3, &byte, 1) == 1 &&
                osl_fileSetSize(fh, 2) == sOKAY && osl_fileUnlock(fh) == sOKAY;
            status = moved ? sOKAY : eFILEIO;
        }
        osl_fileClose(fh);
        const OAK_RETCODE removed = osl_fileRemove(data.c_str());
        const OAK_RETCODE gone = osl_dirRemove(sub.c_str());
        std::filesystem::remove(data);
        std::filesystem::remove(sub);
        status = status == sOKAY ? removed : status;
        return status == sOKAY ? gone : status;
    };
    const uint64_t failures =
        oaktest::sweep_faults(oaktest::Resource::file, {eFILEIO, eFILEOPEN, eMKDIR}, operation);
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 22u : 0u);
}

#ifdef OSL_FAULT_INJECTION
TEST_F(Files, TellInjectedReadErrorsFromTheEnd) {
    OSL_FH fh = make("data", "oak");
    char bytes[4];
    osl_faultArm(OSL_FAULT_FILE, 1, OAK_TRUE);
    EXPECT_EQ(osl_fileRead(fh, bytes, 3), OSL_READ_ERROR);
    EXPECT_EQ(osl_fileSeekRead(fh, 0, bytes, 3), OSL_READ_ERROR);
    EXPECT_EQ(osl_fileLock(fh), eFILEIO);
    EXPECT_EQ(osl_fileSeek(fh, 0, OSL_SEEK_START, nullptr), eFILEIO);
    EXPECT_EQ(osl_fileSetSize(fh, 1), eFILEIO);
    osl_faultDisarm(OSL_FAULT_FILE);
    osl_fileClose(fh);
}
#endif
