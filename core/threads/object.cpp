#include "core/threads/object.h"

#include "core/threads/thread.h"
#include "core/threads/thread_data.h"
#include "core/warning.h"

#include <chrono>
#include <mutex>
#include <new>
#include <utility>

CZeEvent::~CZeEvent() = default;

CZeObject::CZeObject() : m_data(CZeThreadData::current()) {
    if (m_data)
        m_data->acquire();
}

CZeObject::~CZeObject() {
    // Whoever posted the event that destroys the object may still hold the lock.
    std::unique_lock lock(m_mutex);
    if (!m_data)
        return;
    const bool isAllowed = m_data->mayChangeObjects();
    const ze::Pending pending = m_data->take(this); // whose destructors run without a lock
    lock.unlock();
    if (!isAllowed)
        ze::coreWarning("CZeObject::~CZeObject: Not on the object's thread");
    m_data->release();
}

CZeThread* CZeObject::thread() const {
    const std::lock_guard lock(m_mutex);
    return m_data ? m_data->liveThread() : nullptr;
}

bool CZeObject::post(std::unique_ptr<CZeEvent> event) {
    if (!event) {
        ze::coreWarning("CZeObject::post: Event is null");
        return false;
    }
    ze::Pending pending;
    try {
        pending.events.push_back({this, std::move(event)});
    } catch (const std::bad_alloc&) {
        ze::coreWarning("CZeObject::post: Not enough memory");
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (m_data) {
            m_data->add(pending);
            return true;
        }
    }
    ze::coreWarning("CZeObject::post: The object has no thread");
    return false;
}

bool CZeObject::handOver(CZeThread& thread) {
    CZeThreadData* const to = thread.m_data;
    if (!to) {
        ze::coreWarning("CZeObject::handOver: The thread could not be made");
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (to == m_data)
            return true;
        if (!m_data || m_data->mayChangeObjects()) {
            to->acquire();
            CZeThreadData* const from = std::exchange(m_data, to);
            if (from) {
                ze::Pending pending = from->take(this);
                from->release();
                to->add(pending);
            }
            return true;
        }
    }
    ze::coreWarning("CZeObject::handOver: Not on the object's thread");
    return false;
}

int64_t CZeObject::startTimer(int64_t milliseconds, Ze::TimerKind kind) {
    if (milliseconds < 1) {
        ze::coreWarning("CZeObject::startTimer: Invalid interval: %ld", static_cast<long>(milliseconds));
        return 0;
    }
    const int64_t id = ze::uniqueId();
    ze::Pending pending;
    try {
        const auto interval = ze::limitedInterval(milliseconds);
        pending.timers.push_back({this, id, std::chrono::steady_clock::now() + interval, interval, kind});
    } catch (const std::bad_alloc&) {
        ze::coreWarning("CZeObject::startTimer: Not enough memory");
        return 0;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (m_data && m_data->mayChangeObjects()) {
            m_data->add(pending);
            return id;
        }
    }
    ze::coreWarning("CZeObject::startTimer: The object has no thread, or another one");
    return 0;
}

bool CZeObject::stopTimer(int64_t id) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_data && m_data->mayChangeObjects() && m_data->removeTimer(this, id))
            return true;
    }
    ze::coreWarning("CZeObject::stopTimer: No timer of the object, or not on its thread: %ld",
                    static_cast<long>(id));
    return false;
}

void CZeObject::handleEvent(CZeEvent&) {}

void CZeObject::handleTimer(int64_t) {}
