#include "log/file_logger.h"

#include <chrono>
#include <csignal>
#include <new>
#include <string_view>
#include <system_error>

namespace ze {
namespace {

/// While lines follow each other closely the writer lets them gather for so long. Taken one by one, each
/// would find it asleep, and waking it costs the thread that logs fifty times as much as queueing a line.
constexpr std::chrono::microseconds kGatherTime{200};

/// Blocks the signals on this thread while it lives. A thread inherits that when it is started: signals are
/// for the host's threads, which may have blocked some in order to wait for them. Those that tell of a fault
/// of the thread itself stay, for the host's crash reporter.
class SignalBlock {
public:
    SignalBlock() {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
            sigdelset(&blocked, fault);
        pthread_sigmask(SIG_SETMASK, &blocked, &m_before);
    }
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t m_before;
};

/// The first part of the file names. Without memory for it the logger must not start: files of another name
/// would be written for the rest of the process.
CZeString loggerName() {
    CZeString name = CZeString::fromLatin1("glowkitlog");
    if (name.isNull())
        throw std::bad_alloc();
    return name;
}

} // namespace

FileLogger::FileLogger(const RootDirectory& rootDirectory, LogDuration flushInterval, Clock& clock)
    : m_file(loggerName(), rootDirectory, flushInterval), m_flushInterval(flushInterval), m_clock(clock) {
    const SignalBlock block;
    try {
        m_thread = std::thread(&FileLogger::run, this);
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "thread constructor failed");
    }
}

FileLogger::~FileLogger() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void FileLogger::enqueue(const char* text) noexcept {
    const std::string_view line(text);
    {
        // One lock for both: a second one would cost more than it takes off this one, which formats a time
        // once a second. So the stamps are in order, too.
        const std::lock_guard lock(m_mutex);
        m_queue.append(m_timeStamp.of(m_clock(nullptr)), line);
    }
    m_wake.notify_one();
}

std::tm FileLogger::today() const {
    return localTime(m_clock(nullptr)).value_or(std::tm());
}

void FileLogger::run() {
    std::unique_lock lock(m_mutex);
    while (!m_stop) {
        LogDuration waited = {};
        if (m_queue.isEmpty()) {
            const LogTime start = std::chrono::steady_clock::now();
            m_wake.wait_until(lock, std::chrono::system_clock::now() + m_flushInterval);
            waited = std::chrono::steady_clock::now() - start;
        }
        if (m_stop)
            break;
        lock.unlock();
        if (waited < kGatherTime)
            std::this_thread::sleep_for(kGatherTime);

        m_file.flushIfDue(waited, std::chrono::steady_clock::now(), today());

        lock.lock();
        m_batch.swap(m_queue);
        lock.unlock();

        if (!m_batch.isEmpty()) // Times of now: a flush may have taken long, and a line be of the next day.
            m_file.write(m_batch, std::chrono::steady_clock::now(), today());
        m_batch.clear();
        lock.lock();
    }
    lock.unlock();
    m_file.close();
}

} // namespace ze
