#include "log/file_logger.h"

#include <chrono>
#include <cstring>
#include <ctime>
#include <string>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace ze {

FileLogger::FileLogger() : m_process(getpid()), m_file(CZeString::fromLatin1("glowkitlog")) {
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
    {
        const std::lock_guard lock(m_mutex);
        const std::string& stamp = m_timeStamp.of(std::time(nullptr));
        std::string line;
        line.reserve(stamp.size() + std::strlen(text) + 3); // the brackets and the space
        line.append("[").append(stamp).append("] ").append(text);
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
}

} // namespace ze
