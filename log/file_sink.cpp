#include "log/file_sink.h"

#include "log/file_logger.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

namespace ze {
namespace {

// Null until it is first used, then the logger, and gone() after the end.
constinit std::atomic<FileLogger*> g_logger{nullptr};
std::once_flag g_created;
// How many threads are about to use what they read from g_logger.
constinit std::atomic<int> g_users{0};

FileLogger* gone() {
    return reinterpret_cast<FileLogger*>(std::uintptr_t{1});
}

void create() {
    auto logger = std::make_unique<FileLogger>();
    FileLogger* expected = nullptr;
    if (g_logger.compare_exchange_strong(expected, logger.get()))
        logger.release();
}

/// Calls `use` with the logger unless it is gone.
template <class Use>
void withLogger(const Use& use) noexcept {
    ++g_users;
    try {
        if (!g_logger)
            std::call_once(g_created, create);
        if (FileLogger* logger = g_logger; logger && logger != gone())
            use(*logger);
    } catch (const std::exception&) {
        // Neither a missing thread nor missing memory is for those to deal with who only log something.
    }
    --g_users;
}

/// Ends the writer thread at exit and, as no thread may run code that is gone, when the library is unloaded.
struct ExitHandler {
    constexpr ExitHandler() = default;
    ~ExitHandler() {
        FileLogger* const logger = g_logger.exchange(gone());
        if (!logger || logger == gone() || !logger->isOfThisProcess())
            return;
        while (g_users != 0)
            std::this_thread::yield();
        delete logger;
    }
};

constinit ExitHandler g_exitHandler;

} // namespace

void writeToFile(const char* text) noexcept {
    if (*text)
        withLogger([text](FileLogger& logger) { logger.enqueue(text); });
}

void setLogRootDirectory(const CZeString& directory) noexcept {
    withLogger([&directory](FileLogger& logger) { logger.setRootDirectory(directory); });
}

} // namespace ze
