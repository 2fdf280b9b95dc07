#include "log/file_sink.h"

#include "log/file_logger.h"
#include "log/root_directory.h"

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include <pthread.h>

namespace ze {
namespace {

/// What has become of the process's one logger.
enum class LoggerState { NotCreated, Alive, Ended };

/// Holds the logger from its first use to the end, at which it waits for those who use it.
class FileSink {
public:
    constexpr FileSink() = default;
    ~FileSink();

    void write(const char* text) noexcept;
    void setRootDirectory(const CZeString& directory) noexcept;

    /// Puts the file log off in a forked child, unless the parent had none yet. The child has no writer, and
    /// what another thread of the parent was about to change or had locked stays so.
    void endInForkedChild() noexcept;

private:
    class User;

    FileLogger* logger() noexcept;
    void create() noexcept;

    // The order of these two is what ends the logger safely. A user counts itself, then reads the state; the
    // end sets the state, then reads the count. Both are a store before a load, which only sequential
    // consistency keeps in that order: either the user sees the end, or the end sees the user.
    std::atomic<LoggerState> m_state{LoggerState::NotCreated};
    std::atomic<int> m_users{0};

    std::mutex m_creation;          // held by the one thread that makes the logger
    FileLogger* m_logger = nullptr; // set before the state becomes Alive
    RootDirectory m_rootDirectory;
};

/// Counts a thread that is about to use what the sink holds, for as long as it does.
class FileSink::User {
public:
    explicit User(FileSink& sink) : m_sink(sink) { ++m_sink.m_users; }
    // Release: what this thread did with the logger comes before its deletion.
    ~User() { m_sink.m_users.fetch_sub(1, std::memory_order_release); }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

private:
    FileSink& m_sink;
};

/// Ends the writer thread at exit and, as no thread may run code that is gone, when the library is unloaded.
FileSink::~FileSink() {
    if (m_state.exchange(LoggerState::Ended) == LoggerState::Ended)
        return; // in a forked child: no thread to end, and those counted are the parent's
    while (m_users != 0)
        std::this_thread::yield();
    delete m_logger;
}

void FileSink::write(const char* text) noexcept {
    const User user(*this);
    if (FileLogger* const current = logger())
        current->enqueue(text);
}

void FileSink::setRootDirectory(const CZeString& directory) noexcept {
    const User user(*this);
    if (m_state == LoggerState::Ended)
        return;
    m_rootDirectory.set(directory);
    logger(); // starts the writer
}

void FileSink::endInForkedChild() noexcept {
    if (m_state == LoggerState::NotCreated && m_users == 0)
        return;
    if (m_state.exchange(LoggerState::Ended) == LoggerState::Alive)
        m_logger->discardInForkedChild();
}

/// The logger, made if need be; null after the end and when it cannot be made.
FileLogger* FileSink::logger() noexcept {
    if (m_state == LoggerState::NotCreated)
        create();
    return m_state == LoggerState::Alive ? m_logger : nullptr;
}

void FileSink::create() noexcept {
    const std::lock_guard lock(m_creation);
    if (m_state != LoggerState::NotCreated)
        return; // another thread was first
    try {
        m_logger = std::make_unique<FileLogger>(m_rootDirectory).release();
    } catch (const std::exception&) {
        return; // No thread or no memory: not for those to deal with who only log. The next call tries again.
    }
    LoggerState expected = LoggerState::NotCreated; // or the end has come, which deletes it as well
    m_state.compare_exchange_strong(expected, LoggerState::Alive);
}

constinit FileSink g_sink;

/// At load, as a process may fork while a thread of it creates the logger. Unloading takes the handler back.
__attribute__((constructor)) void watchForks() {
    pthread_atfork(nullptr, nullptr, [] { g_sink.endInForkedChild(); });
}

} // namespace

void writeToFile(const char* text) noexcept {
    if (*text)
        g_sink.write(text);
}

void setLogRootDirectory(const CZeString& directory) noexcept {
    g_sink.setRootDirectory(directory);
}

} // namespace ze
