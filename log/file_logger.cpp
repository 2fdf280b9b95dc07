#include "log/file_logger.h"

#include <chrono>
#include <cstring>
#include <ctime>
#include <string>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace ze {

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
    std::string line;
    line.reserve(std::strlen("[2024-03-05 23:59:59] ") + std::strlen(text));
    {
        const std::lock_guard lock(m_stampMutex);
        line.append("[").append(m_timeStamp.of(std::time(nullptr))).append("] ");
    }
    line.append(text);
    {
        const std::lock_guard lock(m_mutex);
        m_queue.push_back(std::move(line));
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
    std::unique_lock lock(m_mutex);
    while (!m_stop) {
        LogDuration waited = {};
        if (m_queue.empty()) {
            const LogTime start = std::chrono::steady_clock::now();
            m_wake.wait_until(lock, std::chrono::system_clock::now() + kFlushInterval);
            waited = std::chrono::steady_clock::now() - start;
        }
        if (m_stop)
            break;
        lock.unlock();

        const LogTime now = std::chrono::steady_clock::now();
        const std::tm today = localTime(std::time(nullptr)).value_or(std::tm());
        m_file.flushIfDue(waited, now, today);

        LogLines lines;
        lock.lock();
        lines.swap(m_queue);
        const CZeString rootDirectory = m_rootDirectory;
        lock.unlock();

        if (!lines.empty())
            m_file.write(lines, rootDirectory, now, today);
        lines.clear();
        lock.lock();
    }
    lock.unlock();
    m_file.close();
}

} // namespace ze
