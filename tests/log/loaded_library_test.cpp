// The file log from load to unload, through what the shared library exports. The test program does not
// contain the library itself, so each test loads it afresh.

#include "log/log_stream.h"
#include "tests/support/log_capture.h"
#include "tests/support/task_count.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>

using namespace std::chrono_literals;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr SZeLogContext kToFile = {.alwaysToFile = true};

template <class Condition>
bool becomesTrue(const Condition& condition) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(1ms);
    return condition();
}

class LoadedLibraryTest : public testing::Test {
protected:
    using Printf = void(const SZeLogContext&, const char*, ...);

    LoadedLibraryTest() {
        load(setFilter, "_Z14ZeSetLogFilteri");
        load(setFileLogging, "_Z16ZeSetFileLoggingb");
        load(setRootDirectory, "_Z21ZeSetLogRootDirectoryPKc");
        load(info, "_Z10ZeLogInfofRK13SZeLogContextPKcz");
        load(warning, "_Z13ZeLogWarningfRK13SZeLogContextPKcz");
        load(error, "_Z11ZeLogErrorfRK13SZeLogContextPKcz");
    }
    ~LoadedLibraryTest() override { unload(); }

    template <class Function>
    void load(Function*& function, const char* symbol) {
        function = reinterpret_cast<Function*>(dlsym(library, symbol));
        if (!function)
            throw std::runtime_error(dlerror());
    }

    void unload() {
        if (library)
            dlclose(library);
        library = nullptr;
    }

    /// The lines up to now, without their time stamps. What is in the file's buffer is pushed out by so much
    /// more.
    std::vector<std::string> writtenLines() {
        for (int i = 0; i < 100; ++i)
            error(kToFile, "%01000d", 0);
        std::string path, text;
        EXPECT_TRUE(becomesTrue([&] {
            path = directory / ("glowkit/log/glowkitlog(" + today() + ").log");
            text = contentOf(path);
            return text.find("] 000") != text.npos;
        }));
        std::vector<std::string> lines;
        std::istringstream stream(text);
        constexpr std::size_t kStampSize = sizeof "[2024-03-05 23:59:59] " - 1;
        for (std::string line; std::getline(stream, line) && line.find("] 000") == line.npos;) {
            std::tm time = {};
            const char* const end = strptime(line.c_str(), "[%Y-%m-%d %H:%M:%S] ", &time);
            EXPECT_EQ(end, line.c_str() + kStampSize) << line;
            lines.push_back(line.substr(kStampSize));
        }
        return lines;
    }

    static std::string today() {
        const std::time_t now = std::time(nullptr);
        std::tm date = {};
        char text[16];
        return {text, std::strftime(text, sizeof text, "%Y-%m-%d", localtime_r(&now, &date))};
    }

    LogCapture log;
    TempDirectory directory;
    void* library = dlopen(ZE_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    void (*setFilter)(int) = nullptr;
    void (*setFileLogging)(bool) = nullptr;
    void (*setRootDirectory)(const char*) = nullptr;
    Printf* info = nullptr;
    Printf* warning = nullptr;
    Printf* error = nullptr;
};

TEST_F(LoadedLibraryTest, LeavesNoThreadAndNoOpenFileBehind) {
    std::thread([] {}).join(); // a sanitizer may add a thread of its own with the first one
    const auto tasks = taskCount();
    setRootDirectory(directory.path().c_str());
    EXPECT_EQ(taskCount(), tasks + 1);
    setFileLogging(true);
    info({}, "last words");
    const std::string path = directory / ("glowkit/log/glowkitlog(" + today() + ").log");
    ASSERT_TRUE(becomesTrue([&] { return std::filesystem::exists(path); }));
    EXPECT_EQ(contentOf(path), ""); // in the buffer of the file
    const auto start = std::chrono::steady_clock::now();
    unload();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s); // no waiting for the writer's next turn
    EXPECT_EQ(taskCount(), tasks);
    EXPECT_EQ(dlopen(ZE_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD), nullptr);
    EXPECT_THAT(contentOf(path), testing::EndsWith("] last words\n"));
}

TEST_F(LoadedLibraryTest, WritesWhatIsMeantForTheFile) {
    setRootDirectory(directory.path().c_str());
    info({}, "file logging is off");
    info(kToFile, "%s", "");
    info({.alwaysToFile = true, .line = 42, .fileName = "render", .functionName = "draw"}, "always");
    setFilter(1);
    warning(kToFile, "filtered");
    error(kToFile, "error");
    setFileLogging(true);
    warning({}, "filtered");
    error({}, "another");
    setFilter(3);
    info({}, "info");
    EXPECT_THAT(writtenLines(), ElementsAre("render(42), draw: always", "error", "another", "info"));
}

TEST_F(LoadedLibraryTest, TakesLinesOfManyThreads) {
    constexpr int kThreads = 6, kLines = 300;
    setRootDirectory(directory.path().c_str());
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([this, t] {
            for (int i = 0; i < kLines; ++i) {
                setFileLogging(true);
                setFilter(3);
                info({}, "%d %d", t, i);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    int next[kThreads] = {};
    for (const std::string& line : writtenLines()) {
        std::size_t t = 0, space = 0;
        t = std::stoul(line, &space);
        EXPECT_EQ(std::stoi(line.substr(space)), next[t]++);
    }
    EXPECT_THAT(next, testing::Each(kLines));
}

TEST_F(LoadedLibraryTest, WarnsOnceWithoutARootDirectory) {
    setFileLogging(true);
    info({}, "first");
    ASSERT_TRUE(becomesTrue([this] { return log.entries().size() == 2; }));
    setRootDirectory(directory.path().c_str());
    info({}, "second");
    std::this_thread::sleep_for(50ms);
    unload();
    EXPECT_THAT(log.texts(), UnorderedElementsAre("first", "Failed to create log file: ", "second"));
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(LoadedLibraryTest, DropsLinesWhileNoThreadCanBeStarted) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "ThreadSanitizer's pthread_once does not let exceptions through";
#endif
    pthread_attr_t normal, huge;
    ASSERT_EQ(pthread_getattr_default_np(&normal), 0);
    ASSERT_EQ(pthread_getattr_default_np(&huge), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&huge, std::size_t(1) << 50), 0);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    info(kToFile, "dropped");
    ASSERT_EQ(pthread_setattr_default_np(&normal), 0);
    setRootDirectory(directory.path().c_str());
    info(kToFile, "kept");
    EXPECT_THAT(writtenLines(), ElementsAre("kept"));
}

} // namespace
