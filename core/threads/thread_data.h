// What is kept for a thread: pending events and timers, the state of its loop, its stored values.

#pragma once

#include "core/threads/pending.h"
#include "core/threads/steady_time.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include <pthread.h>

class CZeString;
class CZeThread;

namespace ze {

/// A value in the storage of this id.
struct StoredValue {
    int64_t storage;
    void* value;
    void (*destroy)(void*);
};

/// Never the same number twice in a process, and never 0. Any thread may call it.
int64_t uniqueId();

} // namespace ze

/// The record of one thread: of a CZeThread through all its starts, or of a thread that was not made here. It
/// belongs to the CZeThread, to each object that lives on the thread and, while it runs, to the thread
/// itself. An object's lock is taken before that of a record, of which no two are held at once, and neither
/// while code of others runs: handlers, and destructors of events and values.
struct CZeThreadData {
    /// Stopped: never started, or gone. Ended: has nothing left to do here, to be joined by who waits first.
    enum class State { Stopped, Running, Ended, Joining };

    /// The calling thread's record, made if need be. Null, with a warning, when that fails.
    static CZeThreadData* current();
    /// The same without making one.
    static CZeThreadData* existing();
    /// A record of one owner, with a thread that shows `name`. Null, with a warning, when that fails.
    static CZeThreadData* create(CZeThread* thread, const CZeString& name);

    /// Adds an owner.
    void acquire() { owners.fetch_add(1, std::memory_order_relaxed); }
    /// Takes one away. The last takes the record with it.
    void release();

    /// Whose record it is, null when that is gone.
    CZeThread* liveThread() const;

    /// Whether the calling thread may change the objects of this one.
    bool mayChangeObjects() const;
    /// Has the thread handle `more`, which is left empty.
    void add(ze::Pending& more);
    /// Takes away what waits for `receiver`.
    ze::Pending take(const CZeObject* receiver);
    /// Takes away one timer. False when there is none of these.
    bool removeTimer(const CZeObject* receiver, int64_t id);
    /// Handles what is due until the thread is to end, which gives true, or the time is over. The lock, which
    /// is held, is released meanwhile.
    bool loop(std::unique_lock<std::mutex>& lock, ze::SteadyTime deadline) noexcept;

    /// Waits until the run that is under way is gone. False when the time is over before. The lock, which is
    /// held, is released meanwhile.
    bool join(std::unique_lock<std::mutex>& lock, ze::SteadyTime deadline);

    /// What a started thread runs, as one owner of its record.
    static void* run(void* record);

    std::atomic<int> owners{1};
    bool isAdopted = false; ///< It was not made here.
    char name[16] = "";     ///< As long as the system has room for; empty to leave it.

    // The thread's own
    std::vector<ze::StoredValue> values; ///< The one set last comes last.
    bool isDestroyingValues = false;

    mutable std::mutex mutex; ///< Guards all that follows.
    ze::SteadyCondition wake; ///< The loop has something to do.
    ze::SteadyCondition ended;
    ze::Pending pending;
    CZeThread* thread = nullptr;
    State state = State::Stopped;
    int64_t starts = 0;
    pthread_t handle = {};
    bool isLooping = false; ///< From the start of a thread that was made here.
    bool isToEnd = false;
    int result = 0;

private:
    void handleTimers(std::unique_lock<std::mutex>& lock);
    void handleEvents(std::unique_lock<std::mutex>& lock);
};
