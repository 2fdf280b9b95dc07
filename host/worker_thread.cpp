#include "host/worker_thread.h"

#include <utility>

#include <signal.h> // pthread_sigmask

namespace zebeauty {

WorkerThread::~WorkerThread() {
    if (!isStarted())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void WorkerThread::run(const std::function<void()>& task) {
    if (!isStarted())
        start();
    std::unique_lock lock(m_mutex);
    m_task = &task;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return !m_task; });
    if (m_exception)
        std::rethrow_exception(std::exchange(m_exception, nullptr));
}

void WorkerThread::start() {
    // A thread inherits the signal mask of its creator, and so do those that the driver starts on it. Signals
    // that tell of a fault of the thread itself stay, for the host's crash reporter.
    sigset_t blocked, before;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
        sigdelset(&blocked, fault);
    pthread_sigmask(SIG_SETMASK, &blocked, &before);
    try {
        m_thread = std::thread([this] { runTasks(); });
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void WorkerThread::runTasks() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_task || m_isStopping; });
        if (!m_task)
            return;
        try {
            (*m_task)();
        } catch (...) {
            m_exception = std::current_exception();
        }
        m_task = nullptr;
        m_changed.notify_all();
    }
}

} // namespace zebeauty
