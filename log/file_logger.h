// The queue of pending log lines and the thread that writes them.

#pragma once

#include "log/log_file.h"
#include "log/log_lines.h"
#include "log/log_schedule.h"
#include "log/root_directory.h"

#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>

namespace ze {

/// Takes lines from any thread and writes them on its own, with the local time in front.
class FileLogger {
public:
    using Clock = std::time_t(std::time_t*); // as std::time

    /// Starts the writer thread, which handles no signals. `rootDirectory` must outlive the logger. An open
    /// file is flushed, and its date compared, about every `flushInterval`; `clock` gives the times of the
    /// lines and the dates of the files. Throws std::system_error "thread constructor failed" when no thread
    /// can be started, or std::bad_alloc.
    explicit FileLogger(const RootDirectory& rootDirectory, LogDuration flushInterval = kFlushInterval,
                        Clock& clock = std::time);
    /// Stops the thread and waits for it. Lines that it has not taken yet are lost.
    ~FileLogger();
    FileLogger(const FileLogger&) = delete;
    FileLogger& operator=(const FileLogger&) = delete;

    /// Queues `text` with the local time in front, or drops it when there is no memory. Does no I/O.
    void enqueue(const char* text) noexcept;

    /// What a forked child, which has a copy of this object but not its thread, calls before anything else:
    /// drops the lines that the parent is about to write. Nothing else may be called in the child, and the
    /// object must not be destroyed there.
    void discardInForkedChild() { m_file.discardBuffer(); }

private:
    void run();
    std::tm today() const;

    // The thread's own; here rather than on its stack, where a leak checker would miss it in a forked child.
    LogFile m_file;
    LogLines m_batch;
    const LogDuration m_flushInterval;
    Clock& m_clock;
    std::condition_variable m_wake;
    std::thread m_thread;

    alignas(64) std::mutex m_mutex; // guards all that follows, and shares a cache line with the queue
    LogLines m_queue;
    bool m_stop = false;
    TimeStamp m_timeStamp;
};

} // namespace ze
