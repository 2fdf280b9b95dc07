// The file log from load to unload, through what the shared library exports. The test program does not
// contain the library itself, so each test loads it afresh.

#include "log/log_stream.h"
#include "tests/support/log_capture.h"
#include "tests/support/task_count.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <sstream>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>

using namespace std::chrono_literals;

namespace {

using testing::ElementsAre;
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

    ~LoadedLibraryTest() override { unload(); }

    template <class Function>
    Function* load(const char* symbol) const {
        return reinterpret_cast<Function*>(dlsym(library, symbol));
    }

    void unload() {
        if (library)
            dlclose(library);
        library = nullptr;
    }

    std::string pathOfToday() const {
        const std::time_t now = std::time(nullptr);
        char name[64];
        std::strftime(name, sizeof name, "glowkit/log/glowkitlog(%Y-%m-%d).log", std::localtime(&now));
        return directory / name;
    }

    /// The lines up to now, without their stamps. More lines push them out of the file's buffer.
    std::vector<std::string> writtenLines() {
        for (int i = 0; i < 100; ++i)
            error(kToFile, "%01000d", 0);
        std::string text;
        EXPECT_TRUE(becomesTrue([&] {
            text = contentOf(pathOfToday());
            return text.find("] 000") != text.npos;
        }));
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line) && line.find("] 000") == line.npos;) {
            EXPECT_EQ(line.find("] "), std::string_view("[2024-03-05 23:59:59").size()) << line;
            lines.push_back(line.substr(line.find("] ") + 2));
        }
        return lines;
    }

    LogCapture log;
    TempDirectory directory;
    void* library = dlopen(ZE_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    void (*setFilter)(int) = load<void(int)>("_Z14ZeSetLogFilteri");
    void (*setFileLogging)(bool) = load<void(bool)>("_Z16ZeSetFileLoggingb");
    void (*setRootDirectory)(const char*) = load<void(const char*)>("_Z21ZeSetLogRootDirectoryPKc");
    Printf* info = load<Printf>("_Z10ZeLogInfofRK13SZeLogContextPKcz");
    Printf* warning = load<Printf>("_Z13ZeLogWarningfRK13SZeLogContextPKcz");
    Printf* error = load<Printf>("_Z11ZeLogErrorfRK13SZeLogContextPKcz");
};

TEST_F(LoadedLibraryTest, LeavesNoThreadAndNoOpenFileBehind) {
    std::thread([] {}).join(); // a sanitizer may add a thread of its own with the first one
    const auto tasks = taskCount();
    setRootDirectory(directory.path().c_str());
    EXPECT_EQ(taskCount(), tasks + 1);
    setFileLogging(true);
    info({}, "last words");
    const std::string path = pathOfToday();
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
    info({.alwaysToFile = true, .line = 42, .fileName = "render", .functionName = "draw"}, "always");
    setFilter(1);
    warning(kToFile, "filtered");
    setFileLogging(true);
    warning({}, "filtered");
    error({}, "error");
    EXPECT_THAT(writtenLines(), ElementsAre("render(42), draw: always", "error"));
}

TEST_F(LoadedLibraryTest, TakesLinesOfManyThreads) {
    constexpr int kThreads = 6, kLines = 300;
    setRootDirectory(directory.path().c_str());
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([this, t] {
            setFileLogging(true);
            for (int i = 0; i < kLines; ++i)
                info({}, "%d %d", t, i);
        });
    for (std::thread& thread : threads)
        thread.join();
    int next[kThreads] = {};
    for (const std::string& line : writtenLines()) {
        int t = 0, i = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%d %d", &t, &i), 2);
        EXPECT_EQ(i, next[t]++);
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
    pthread_getattr_default_np(&normal);
    pthread_getattr_default_np(&huge);
    pthread_attr_setstacksize(&huge, std::size_t(1) << 50);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    info(kToFile, "dropped");
    ASSERT_EQ(pthread_setattr_default_np(&normal), 0);
    setRootDirectory(directory.path().c_str());
    info(kToFile, "kept");
    EXPECT_THAT(writtenLines(), ElementsAre("kept"));
}

} // namespace
