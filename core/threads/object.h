// Objects that handle events and timers on one thread.
//
//     struct Sum : CZeObject {
//         void handleEvent(CZeEvent& event) override { value += event.type(); }
//         int value = 0;
//     };
//     CZeThread thread;
//     Sum sum;
//     sum.handOver(thread);
//     thread.start();
//     sum.post(std::make_unique<CZeEvent>(3));  // from any thread
//     thread.end();
//     thread.wait();                            // what is not handled yet stays pending

#pragma once

#include "core/export.h"
#include "core/threads/event.h"

#include <cstdint>
#include <memory>
#include <mutex>

class CZeThread;
struct CZeThreadData;

namespace Ze {

/// How often a timer fires.
enum TimerKind : int { Repeating, Once };

} // namespace Ze

/// Lives on one thread, that which made it until it is handed to another. There, while the thread's event
/// loop runs (see CZeThread), its events and timers are handled, one at a time.
///
/// `post` and `thread` may be called on any thread from the end of the constructor to the beginning of the
/// destructor; who posts from elsewhere makes sure of that. All else, the destructor too, is for the object's
/// own thread; and for any other, one at a time, while no loop runs there. Elsewhere it is refused with a
/// warning. Nothing throws, and nothing that is overridden may throw or end its thread (pthread_exit).
class ZE_EXPORT CZeObject {
public:
    /// An object of the calling thread. Without memory for what that keeps it has no thread, which is warned
    /// of, and all is refused until it is handed to one.
    CZeObject();
    /// Takes the object's pending events and its timers along. It may come while the object handles one of
    /// its events or timers. On another thread than its own while a loop runs there it warns and takes them
    /// along all the same; that none is being handled is for the caller to know.
    virtual ~CZeObject();
    CZeObject(const CZeObject&) = delete;
    CZeObject& operator=(const CZeObject&) = delete;

    /// The thread on which it lives, or null when that is gone, and when there never was one.
    CZeThread* thread() const;

    /// Leaves `event` to be handled by `handleEvent` on the object's thread: after all that were posted to
    /// objects of that thread before, and never within this call. It stays pending while no loop runs there.
    /// False with a warning, and the event is destroyed, for a null one and without memory.
    bool post(std::unique_ptr<CZeEvent> event);

    /// Makes `thread`, running or not, the one on which the object lives. Its pending events go along in
    /// their order, behind those that are there, and its timers when they are due. They may be handled there
    /// before this returns, so that the caller may not use the object any more. False with a warning when it
    /// is refused or `thread` could not be made, and nothing has changed.
    bool handOver(CZeThread& thread);

    /// Has `handleTimer` called on the object's thread when `milliseconds` of the steady clock have passed,
    /// never earlier; a repeating timer at each multiple of them from now on. Multiples that pass unhandled
    /// are skipped. Returns the timer's id, which no other timer of the process ever has, or 0 with a warning
    /// when it is refused, when `milliseconds` is below 1, and without memory. More than a hundred years
    /// count as that.
    int64_t startTimer(int64_t milliseconds, Ze::TimerKind kind = Ze::Repeating);
    /// Ends a timer, which is not handled any more. False with a warning when it is refused or the object has
    /// no such timer, also since it was to fire once and has.
    bool stopTimer(int64_t id);

protected:
    /// Called on the object's thread for each event that was posted, in their order. It may destroy the
    /// object or hand it over. Here it does nothing.
    virtual void handleEvent(CZeEvent& event);
    /// The same for a timer that is due, by its id.
    virtual void handleTimer(int64_t id);

private:
    friend struct CZeThreadData;

    mutable std::mutex m_mutex;      // guards the next; taken before a lock of the thread's
    CZeThreadData* m_data = nullptr; // one of its owners
};
