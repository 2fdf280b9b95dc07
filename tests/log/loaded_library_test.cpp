// The file log and threads from load to unload, through what the shared library exports. The test program
// does not contain the library itself, so each test loads it afresh.

#include "core/threads/thread.h"
#include "log/log_stream.h"
#include "tests/support/log_capture.h"
#include "tests/support/other_threads.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr SZeLogContext kToFile = {.alwaysToFile = true};

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

    /// What is in the log file when the writer, which has opened it for that, has ended.
    std::string writtenText() {
        const std::time_t now = std::time(nullptr);
        char name[64];
        std::strftime(name, sizeof name, "glowkit/log/glowkitlog(%Y-%m-%d).log", std::localtime(&now));
        EXPECT_TRUE(becomesTrue([&] { return std::filesystem::exists(directory / name); }));
        EXPECT_EQ(contentOf(directory / name), ""); // it is in the buffer of the file
        unload();
        return contentOf(directory / name);
    }

    LogCapture log;
    TempDirectory directory;
    void* library = dlopen(ZE_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    void (*setRootDirectory)(const char*) = load<void(const char*)>("_Z21ZeSetLogRootDirectoryPKc");
    Printf* info = load<Printf>("_Z10ZeLogInfofRK13SZeLogContextPKcz");
};

TEST_F(LoadedLibraryTest, LeavesNoThreadAndNoOpenFileBehind) {
    std::thread([] {}).join(); // a sanitizer may add a thread of its own with the first one
    const auto tasks = taskCount();
    setRootDirectory(directory.path().c_str());
    EXPECT_EQ(taskCount(), tasks + 1);
    info(kToFile, "last words");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(writtenText(), testing::EndsWith("] last words\n"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s); // no waiting for the writer's next turn
    EXPECT_EQ(taskCount(), tasks);
    EXPECT_EQ(dlopen(ZE_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD), nullptr);
    EXPECT_EXIT(_exit(EXIT_SUCCESS), testing::ExitedWithCode(EXIT_SUCCESS),
                ""); // a fork runs no code that is gone
}

TEST_F(LoadedLibraryTest, WritesInAChildForkedBeforeItsFirstUse) {
    const pid_t child = fork();
    if (child == 0) {
        setRootDirectory(directory.path().c_str());
        info(kToFile, "child");
        _exit(writtenText().ends_with("] child\n") ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, EXIT_SUCCESS);
}

TEST_F(LoadedLibraryTest, KeepsTheRootDirectoryWhileNoThreadCanBeStarted) {
    pthread_attr_t normal, huge;
    pthread_getattr_default_np(&normal);
    pthread_getattr_default_np(&huge);
    pthread_attr_setstacksize(&huge, 1UL << 50);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    setRootDirectory(directory.path().c_str());
    info(kToFile, "dropped");
    ASSERT_EQ(pthread_setattr_default_np(&normal), 0);
    info(kToFile, "kept");
    EXPECT_THAT(writtenText(), testing::EndsWith("] kept\n"));
}

TEST_F(LoadedLibraryTest, StaysForTheThreadsThatItHasStarted) {
    const auto endUnloaded = [&] {
        alignas(CZeThread) char memory[sizeof(CZeThread)];
        const auto thread = reinterpret_cast<CZeThread*>(memory);
        load<void(CZeThread*)>("_ZN9CZeThreadC1Ev")(thread);
        const auto end = load<void(CZeThread*, int)>("_ZN9CZeThread3endEi");
        const auto wait = load<bool(CZeThread*, int64_t)>("_ZN9CZeThread4waitEl");
        const bool isStarted = load<bool(CZeThread*)>("_ZN9CZeThread5startEv")(thread);
        unload();
        const bool hasEnded = wait(thread, 50);
        end(thread, 0);
        _exit(isStarted && !hasEnded && wait(thread, -1) ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    EXPECT_EXIT(endUnloaded(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

} // namespace
