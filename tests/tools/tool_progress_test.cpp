// Work that takes longer than a second shows on a terminal how far it has come,
// and takes the line back; where standard error is no terminal it shows nothing.
#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <thread>
#include <unistd.h>

#include "tool_run.h"

namespace {

using oaktest::Workplace;

/// Feeds oakpack with rows for a little more than a second, and returns what came
/// out of standard error, a terminal.
std::string err_on_terminal(const Workplace &place) {
    int terminal = -1, its_end = -1, feed[2] = {-1, -1};
    if (openpty(&terminal, &its_end, nullptr, nullptr, nullptr) != 0) {
        return ""; // a machine without terminals
    }
    EXPECT_EQ(pipe2(feed, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_WRONLY);
        dup2(feed[0], STDIN_FILENO);
        dup2(nothing, STDOUT_FILENO);
        dup2(its_end, STDERR_FILENO);
        const std::string catalog = place.path("catalog"), items = place.path("items");
        execl(OAK_BINARY_DIR "/oakpack", "oakpack", "-c", catalog.c_str(), "-t", "t", "-",
              items.c_str(), nullptr);
        _exit(127);
    }
    close(feed[0]);
    close(its_end);
    std::string rows = "c\n";
    for (int i = 0; i < 40000; ++i) {
        rows += "123456789\n";
    }
    EXPECT_EQ(write(feed[1], rows.data(), rows.size()), static_cast<ssize_t>(rows.size()));
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    rows.erase(0, 2);
    EXPECT_EQ(write(feed[1], rows.data(), rows.size()), static_cast<ssize_t>(rows.size()));
    close(feed[1]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    std::string shown;
    char block[1000];
    pollfd ready = {terminal, POLLIN, 0};
    while (poll(&ready, 1, 0) > 0 && (ready.revents & POLLIN) != 0) {
        const ssize_t got = read(terminal, block, sizeof block);
        if (got <= 0) {
            break;
        }
        shown.append(block, static_cast<size_t>(got));
    }
    close(terminal);
    return shown;
}

TEST(Progress, IsShownOnATerminalAfterASecondAndTakenBack) {
    const Workplace place;
    place.write("catalog", oaktest::one_table(oaktest::column(0, "c", R"("int32")"), 1));
    const std::string shown = err_on_terminal(place);
    if (shown.empty() && access("/dev/pts/ptmx", F_OK) != 0) {
        GTEST_SKIP() << "no terminals here";
    }
    EXPECT_EQ(shown.rfind("\roakpack: ", 0), 0u) << shown;
    EXPECT_NE(shown.find(" rows"), std::string::npos) << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1b[K")) << shown;
}

} // namespace
