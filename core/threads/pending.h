// What waits for its turn on a thread.

#pragma once

#include "core/threads/object.h"
#include "core/threads/steady_time.h"

#include <list>

namespace ze {

struct PostedEvent {
    CZeObject* receiver;
    std::unique_ptr<CZeEvent> event;
};

struct Timer {
    CZeObject* receiver;
    int64_t id;
    SteadyTime due;
    std::chrono::milliseconds interval;
    Ze::TimerKind kind;
};

/// Events and timers of a thread's objects.
struct Pending {
    std::list<PostedEvent> events; ///< as they were posted
    std::list<Timer> timers;       ///< the one that is due first comes first

    /// When the first timer is due; the end of time without one.
    SteadyTime nextDue() const { return timers.empty() ? SteadyTime::max() : timers.front().due; }
    /// Puts `other` behind what there is, and leaves it empty. Takes no memory.
    void add(Pending& other);
    /// Takes away what waits for `receiver`.
    Pending take(const CZeObject* receiver);
    /// Sets the first timer, which is due at `now`, to its next multiple; takes away one that fires once.
    void advanceTimer(SteadyTime now);
};

} // namespace ze
