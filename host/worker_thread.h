// A thread that runs one task at a time while the caller waits.

#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace zebeauty {

/// Started by its first task, with signals blocked, so that none of the host's is delivered there.
class WorkerThread {
public:
    WorkerThread() = default;
    ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Runs `task` on the thread and waits for its end; throws what it throws, and std::system_error when the
    /// thread cannot be started. One caller at a time.
    void run(const std::function<void()>& task);

    bool isStarted() const { return m_thread.joinable(); }

private:
    void start();
    void runTasks();

    std::mutex m_mutex; // Guards the next three. Held while a task runs: nobody else has any use for it then.
    const std::function<void()>* m_task = nullptr;
    std::exception_ptr m_exception;
    bool m_isStopping = false;
    std::condition_variable m_changed;
    std::thread m_thread;
};

} // namespace zebeauty
