#include "log/file_logger.h"

#include <chrono>
#include <ctime>
#include <string_view>
#include <system_error>

#include <unistd.h>

namespace ze {
namespace {

/// While lines follow each other closely the writer lets them gather for so long. Taken one by one, each
/// would find it asleep, and waking it costs the thread that logs fifty times as much as queueing a line.
constexpr std::chrono::microseconds kGatherTime{200};

} // namespace

FileLogger::FileLogger() : m_file(CZeString::fromLatin1("glowkitlog")), m_process(getpid()) {
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

void FileLogger::enqueue(const char* text) {
    const std::string_view line(text);
    {
        // One lock for both: a second one would cost more than it takes off this one, which formats a time
        // once a second. So the stamps are in order, too.
        const std::lock_guard lock(m_mutex);
        m_queue.append(m_timeStamp.of(std::time(nullptr)), line);
    }
    m_wake.notify_one();
}

void FileLogger::setRootDirectory(const CZeString& directory) {
    const std::lock_guard lock(m_mutex);
    m_rootDirectory = directory;
}

bool FileLogger::isOfThisProcess() const {
    return m_process == getpid();
}

void FileLogger::run() {
    LogLines lines;
    std::unique_lock lock(m_mutex);
    while (!m_stop) {
        LogDuration waited = {};
        if (m_queue.isEmpty()) {
            const LogTime start = std::chrono::steady_clock::now();
            m_wake.wait_until(lock, std::chrono::system_clock::now() + kFlushInterval);
            waited = std::chrono::steady_clock::now() - start;
        }
        if (m_stop)
            break;
        lock.unlock();
        if (waited < kGatherTime)
            std::this_thread::sleep_for(kGatherTime);

        const LogTime now = std::chrono::steady_clock::now();
        const std::tm today = localTime(std::time(nullptr)).value_or(std::tm());
        m_file.flushIfDue(waited, now, today);

        lock.lock();
        lines.swap(m_queue);
        const CZeString rootDirectory = m_rootDirectory;
        lock.unlock();

        if (!lines.isEmpty())
            m_file.write(lines, rootDirectory, now, today);
        lines.clear();
        lock.lock();
    }
    lock.unlock();
    m_file.close();
}

} // namespace ze
