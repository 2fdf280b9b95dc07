#include "core/tools/ze_string.h"
#include "log/file_sink.h"
#include "tests/support/task_count.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

// Runs when every object of the program is gone, the logger among them: it must not come back.
__attribute__((destructor)) void logAfterTheEnd() {
    const auto tasks = taskCount();
    ze::writeToFile("late");
    ze::setLogRootDirectory(CZeString());
    if (taskCount() != tasks)
        _exit(EXIT_FAILURE);
}

void exitWhileThreadsLog() {
    static std::atomic<int> lines{0};
    for (int i = 0; i < 4; ++i) {
        std::thread([] {
            for (;; ++lines)
                ze::writeToFile("line");
        }).detach();
    }
    while (lines < 1000)
        std::this_thread::yield();
    std::exit(EXIT_SUCCESS);
}

TEST(FileSinkDeathTest, LetsTheProcessExitWhileThreadsLog) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWhileThreadsLog(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(FileSinkDeathTest, StartsNoLoggerAfterTheEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(EXIT_SUCCESS), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(FileSink, LetsAForkedChildExit) {
    ze::setLogRootDirectory(CZeString()); // starts the writer, which the child does not have
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // until it waits
    const pid_t child = fork();
    if (child == 0) {
        alarm(10);
        std::exit(EXIT_SUCCESS);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS) << status;
}

} // namespace
