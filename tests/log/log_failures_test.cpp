// What goes wrong around the log: no memory, forks, an exit at any time.

#include "core/tools/ze_string.h"
#include "log/emit.h"
#include "log/file_sink.h"
#include "log/log_file.h"
#include "log/log_settings.h"
#include "log/log_stream.h"
#include "tests/support/failing_memory.h"
#include "tests/support/log_capture.h"
#include "tests/support/other_threads.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <new>

#include <android/log.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::atomic<void (*)()> g_whenLoggerIsMade{nullptr}; // called once, by the thread that makes it

} // namespace

extern "C" {
void* __real__ZnwmSt11align_val_t(size_t size, std::align_val_t alignment);
void* __wrap__ZnwmSt11align_val_t(size_t size, std::align_val_t alignment) { // of a FileLogger
    if (const auto call = g_whenLoggerIsMade.exchange(nullptr))
        call();
    return t_memory.failsNow() ? throw std::bad_alloc() : __real__ZnwmSt11align_val_t(size, alignment);
}
}

namespace {

using namespace std::chrono_literals;

/// Expects `call` to write `line`, with or without its prefix "f(7), g: ", or nothing to standard error, and
/// in the end, when it has all the memory that it needs, the whole line.
void expectLineOrNone(const std::function<void()>& call, const std::string& line) {
    std::string output;
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        testing::internal::CaptureStderr();
        hasFailed = t_memory.run(n, call);
        output = testing::internal::GetCapturedStderr();
        EXPECT_THAT(output, testing::AnyOf("", line, "f(7), g: " + line));
    }
    EXPECT_THAT(output, testing::EndsWith(line));
}

TEST(LogMemory, IsNotNeededToGoOn) {
    const SZeLogContext place = {false, 7, "f", "g"};
    ZeSetConsoleToStandardError(true);
    expectLineOrNone([&] { ZeLogErrorf(place, "%s%d", "100%s", 5); }, "100%s5\n");
    expectLineOrNone(
        [&] {
            CZeLogStream stream = ZeLogError(place), copy = stream;
            copy = stream;
            copy.setEnabled(true);
            stream << "100" << CZeString::fromLatin1("%") << 's' << 5;
        },
        "100%s5\n");
    expectLineOrNone([] { ZeSetLogRootDirectory("/"); }, "");
    ZeSetConsoleToStandardError(false);
}

TEST(LogMemory, HoldsWholeLinesOfAnySize) {
    ze::LogLines pending;
    const auto text = [&pending] {
        std::string result;
        pending.forEachPiece([&result](std::string_view piece) { result += piece; });
        return result;
    };
    for (int round = 0; round < 2; ++round) { // the second in blocks that were kept
        std::string expected;
        for (const size_t size : {10U, 65'000U, 600U, 2'000'000U, 0U, 131'072U}) {
            const std::string line(size, 'x');
            bool isAdded = false;
            for (int n = 1; !isAdded; ++n)
                t_memory.run(n, [&] { isAdded = pending.append("[at] ", line); });
            expected += "[at] " + line + "\n";
        }
        EXPECT_TRUE(text() == expected);
        pending.clear();
        EXPECT_EQ(text(), "");
    }
}

TEST(LogMemory, IsNeededToOpenTheRightFile) {
    const TempDirectory directory;
    ze::RootDirectory root;
    root.set(CZeString::fromLocal8Bit(directory.path().c_str()));
    ze::LogFile file(CZeString::fromLatin1("name"), root, ze::kFlushInterval);
    ze::LogLines lines;
    lines.append("", "line");
    __android_log_set_logger([](const __android_logger_data*, const char*) {}); // needs no memory itself
    t_memory.failsOn = false; // the pieces of the path behind a missing one get their memory
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n)
        hasFailed = t_memory.run(n, [&] { file.write(lines, ze::LogTime(n * ze::kRetryPause), {}); });
    t_memory.failsOn = true;
    __android_log_set_logger(__android_log_stderr_logger);
    file.close();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1);
    EXPECT_EQ(contentOf(directory / "glowkit/log/name(1900-01-00).log"), "line\n");
}

std::atomic<bool> g_isInLog{false}; // a thread is making the logger
const pid_t g_process = getpid();

// Runs when every object of the program is gone, the logger among them: it must not come back.
__attribute__((destructor)) void logAfterTheEnd() {
    const auto tasks = taskCount();
    ze::writeToFile("late");
    ze::setLogRootDirectory(CZeString());
    if (taskCount() != tasks || g_isInLog)
        _exit(EXIT_FAILURE);
}

void exitWhileTheLoggerIsMade() {
    g_whenLoggerIsMade = [] {
        g_isInLog = true;
        std::this_thread::sleep_for(100ms);
        g_isInLog = false;
    };
    std::thread([] { ze::writeToFile("line"); }).detach();
    while (!g_isInLog)
        std::this_thread::yield();
    std::exit(EXIT_SUCCESS);
}

TEST(FileSinkDeathTest, LetsTheProcessExit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWhileTheLoggerIsMade(), testing::ExitedWithCode(EXIT_SUCCESS), "");
    EXPECT_EXIT(std::exit(EXIT_SUCCESS), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(FileSink, TakesWhatIsMeantForItAndIsOffInAForkedChild) {
    const TempDirectory directory;
    const auto content = [&directory]() -> std::string {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory.path()))
            if (entry.is_regular_file())
                return contentOf(entry.path());
        return "no file";
    };
    const LogCapture log;
    ZeSetLogRootDirectory(directory.path().c_str());
    ZeLogErrorf({}, "file logging is off");
    ze::emit(nullptr, 2, {true, 42, "render", "draw"});
    ze::emit("", 2, {.alwaysToFile = true});
    ZeLogInfof({true, 42, "render", "draw"}, "always");
    ZeSetLogFilter(1);
    ZeSetFileLogging(true);
    ZeLogWarningf({.alwaysToFile = true}, "filtered");
    ZeLogErrorf({}, "error");
    ZeSetFileLogging(false);
    ZeSetLogFilter(3);
    ASSERT_TRUE(becomesTrue([&] { return content() == ""; })); // in the buffer of the file
    if (fork() == 0)
        std::exit(EXIT_SUCCESS);
    wait(nullptr);
    EXPECT_EQ(content(), ""); // the buffer is the parent's to write

    const std::string longLine(1'000'000, 'x');
    for (int i = 0; i < 10; ++i) {
        std::thread logging([] {
            for (int line = 0; line < 50'000; ++line)
                ze::writeToFile("line");
        });
        std::this_thread::sleep_for(1ms);
        const pid_t child = fork();
        if (child == 0) {
            alarm(20);
            ze::setLogRootDirectory(CZeString());
            std::exit(t_memory.run(1, [&] { ze::writeToFile(longLine.c_str()); }));
        }
        logging.join();
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, EXIT_SUCCESS);
    }
    EXPECT_TRUE(becomesTrue([&] { return content() != ""; }));
    EXPECT_THAT(
        content().substr(0, 110),
        testing::MatchesRegex("\\[.{19}] render\\(42\\), draw: always\n\\[.{19}] error\n\\[.{19}] line\n.*"));
}

} // namespace

/// Asked by the leak checker, which would wait for a lock of its own that another thread held at the fork.
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off();
int __lsan_is_turned_off() {
    return getpid() != g_process;
}
