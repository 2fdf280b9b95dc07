#include "core/threads/thread.h"

#include "core/threads/thread_data.h"
#include "core/warning.h"

using State = CZeThreadData::State;

CZeThread::CZeThread() : CZeThread(CZeString()) {}

CZeThread::CZeThread(const CZeString& name) : m_name(name), m_data(CZeThreadData::create(this, name)) {}

CZeThread::CZeThread(CZeThreadData& adopted) : m_data(&adopted) {
    m_data->acquire();
}

CZeThread::~CZeThread() {
    if (!m_data)
        return;
    if (isRunning()) {
        ze::coreWarning("CZeThread::~CZeThread: The thread is running");
        end();
    }
    const bool isCurrent = m_data == CZeThreadData::existing();
    if (!m_data->isAdopted && !isCurrent)
        wait();
    {
        const std::lock_guard lock(m_data->mutex);
        m_data->thread = nullptr;
        if (!m_data->isAdopted && isCurrent)
            pthread_detach(m_data->handle);
    }
    m_data->release();
}

CZeThread* CZeThread::current() {
    const CZeThreadData* const data = CZeThreadData::current();
    return data ? data->liveThread() : nullptr;
}

bool CZeThread::start() {
    if (!m_data) {
        ze::coreWarning("CZeThread::start: The thread could not be made");
        return false;
    }
    std::unique_lock lock(m_data->mutex);
    while (m_data->state == State::Ended || m_data->state == State::Joining)
        m_data->join(lock, ze::SteadyTime::max());
    if (m_data->state == State::Running) {
        lock.unlock();
        ze::coreWarning("CZeThread::start: The thread is running");
        return false;
    }
    m_data->acquire(); // for the thread
    const int error = pthread_create(&m_data->handle, nullptr, CZeThreadData::run, m_data);
    if (error != 0) {
        lock.unlock();
        m_data->release();
        ze::coreWarning("CZeThread::start: The system has no thread to give: %d", error);
        return false;
    }
    ++m_data->starts;
    m_data->state = State::Running;
    m_data->isLooping = true;
    m_data->isToEnd = false;
    m_data->result = 0;
    return true;
}

void CZeThread::end(int result) {
    if (!m_data)
        return;
    const std::lock_guard lock(m_data->mutex);
    if (m_data->state != State::Running || m_data->isToEnd)
        return;
    m_data->isToEnd = true;
    m_data->result = result;
    m_data->wake.notifyAll(); // under the lock, as an ending thread may take all of this with it
}

bool CZeThread::wait(int64_t milliseconds) {
    if (!m_data)
        return true;
    if (m_data->isAdopted || m_data == CZeThreadData::existing()) {
        ze::coreWarning("CZeThread::wait: The thread is the calling one or was not made here");
        return false;
    }
    std::unique_lock lock(m_data->mutex);
    return m_data->join(lock, ze::deadlineIn(milliseconds));
}

bool CZeThread::isRunning() const {
    if (!m_data)
        return false;
    const std::lock_guard lock(m_data->mutex);
    return m_data->state == State::Running;
}

int CZeThread::result() const {
    if (!m_data)
        return 0;
    const std::lock_guard lock(m_data->mutex);
    return m_data->result;
}

bool CZeThread::runLoop(int64_t milliseconds) {
    CZeThreadData* const data = CZeThreadData::current();
    if (!data)
        return false;
    std::unique_lock lock(data->mutex);
    if (data->isLooping || !data->isAdopted) {
        lock.unlock();
        ze::coreWarning("CZeThread::runLoop: The thread's loop is running or has ended");
        return false;
    }
    data->isLooping = true;
    const bool isEnded = data->loop(lock, ze::deadlineIn(milliseconds));
    data->isLooping = false;
    data->isToEnd = false;
    return isEnded;
}
