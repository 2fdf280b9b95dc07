// The queue of pending log lines and the thread that writes them.

#pragma once

#include "core/tools/ze_string.h"
#include "log/log_file.h"
#include "log/log_schedule.h"

#include <condition_variable>
#include <mutex>
#include <thread>

#include <sys/types.h>

namespace ze {

/// Takes lines from any thread and writes them on its own.
class FileLogger {
public:
    /// Starts the writer thread. Throws std::system_error "thread constructor failed" when it cannot.
    FileLogger();
    /// Stops the thread and waits for it. Lines that it has not taken yet are lost.
    ~FileLogger();
    FileLogger(const FileLogger&) = delete;
    FileLogger& operator=(const FileLogger&) = delete;

    /// Queues `text` with the local time in front. Does no I/O.
    void enqueue(const char* text);

    void setRootDirectory(const CZeString& directory);

    /// False in a forked child, which has a copy of this object but not its thread.
    bool isOfThisProcess() const;

private:
    void run();

    std::thread m_thread;
    LogFile m_file; // the thread's own
    std::condition_variable m_wake;
    const pid_t m_process;

    alignas(64) std::mutex m_mutex; // guards all that follows, and shares a cache line with the queue
    LogLines m_queue;
    TimeStamp m_timeStamp;
    CZeString m_rootDirectory;
    bool m_stop = false;
};

} // namespace ze
