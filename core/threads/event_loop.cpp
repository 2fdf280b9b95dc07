// The part of a thread's record that handles events and timers.

#include "core/threads/thread_data.h"

#include <algorithm>
#include <utility>

bool CZeThreadData::mayChangeObjects() const {
    if (this == existing())
        return true;
    const std::lock_guard lock(mutex);
    return !isLooping;
}

void CZeThreadData::add(ze::Pending& more) {
    {
        const std::lock_guard lock(mutex);
        pending.add(more);
    }
    wake.notifyAll();
}

ze::Pending CZeThreadData::take(const CZeObject* receiver) {
    const std::lock_guard lock(mutex);
    return pending.take(receiver);
}

bool CZeThreadData::removeTimer(const CZeObject* receiver, int64_t id) {
    const std::lock_guard lock(mutex);
    return std::erase_if(pending.timers, [&](const ze::Timer& timer) {
               return timer.receiver == receiver && timer.id == id;
           }) > 0;
}

bool CZeThreadData::loop(std::unique_lock<std::mutex>& lock, ze::SteadyTime deadline) noexcept {
    while (!isToEnd) {
        handleTimers(lock);
        handleEvents(lock);
        if (isToEnd)
            break;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        if (pending.events.empty())
            wake.waitUntil(lock, std::min(deadline, pending.nextDue()));
    }
    return true;
}

/// Handles the timers that are due, each once.
void CZeThreadData::handleTimers(std::unique_lock<std::mutex>& lock) {
    const ze::SteadyTime now = std::chrono::steady_clock::now();
    while (!isToEnd && pending.nextDue() <= now) {
        const ze::Timer timer = pending.timers.front();
        pending.advanceTimer(std::chrono::steady_clock::now()); // handlers before may have been slow
        lock.unlock();
        timer.receiver->handleTimer(timer.id);
        lock.lock();
    }
}

/// Handles the events that are there, but none that are posted meanwhile: timers have their turn, too.
void CZeThreadData::handleEvents(std::unique_lock<std::mutex>& lock) {
    for (auto count = pending.events.size(); count > 0; --count) {
        if (isToEnd || pending.events.empty())
            return;
        ze::PostedEvent posted = std::move(pending.events.front());
        pending.events.pop_front();
        lock.unlock();
        posted.receiver->handleEvent(*posted.event);
        posted.event.reset();
        lock.lock();
    }
}
