// Threads with an event loop.

#pragma once

#include "core/export.h"
#include "core/tools/ze_string.h"

#include <cstdint>

struct CZeThreadData;

/// A thread that handles the events and timers of the objects on it (see CZeObject), and sleeps while there
/// are none. Objects may be handed to it before it is started; what is pending when it ends waits for the
/// next start.
///
/// Threads that were not made here, as a program's first one, have a CZeThread as soon as they make an object
/// or ask for `current`. It belongs to the library and goes when the thread ends. They handle events in
/// `runLoop`.
///
/// Any thread may call any member while the CZeThread lives. Nothing throws. A forked child must not use any
/// of this, and leaves with `_exit` where a CZeThread is a static object.
///
/// The first object, thread or stored value (see CZeThreadStorage) of a process keeps the library loaded
/// until the process ends: threads run on when it is closed with dlclose, and all works as before. That first
/// use takes the loader's lock: a library's static constructor that waits for it on another thread calls
/// `current` before. The end of the process waits for no thread.
class ZE_EXPORT CZeThread final {
public:
    /// A thread that is not running, with the name of the one that starts it. Without memory it warns and can
    /// never be started.
    CZeThread();
    /// The same with a name, which debuggers show as UTF-8, cut behind the last character that ends within 15
    /// bytes; a null one counts as none.
    explicit CZeThread(const CZeString& name);
    /// A thread that still runs is warned of, ended and waited for. On that very thread, in a handler of an
    /// object on it, there is no waiting: it ends when the handler has returned. Objects that live on it have
    /// no thread then, but may be handed to another.
    ~CZeThread();
    CZeThread(const CZeThread&) = delete;
    CZeThread& operator=(const CZeThread&) = delete;

    /// The calling thread's, of a thread made here or not. Null with a warning when there is no memory for
    /// it, and null on a thread whose CZeThread was destroyed.
    static CZeThread* current();

    /// Starts the thread and its loop, for the first time or again after an end. False with a warning when it
    /// runs, when it was not made here and when the system has no thread to give.
    bool start();
    /// Has the loop end with `result` as soon as the handler that it is in has returned; the rest stays
    /// pending. Ignored while the thread does not run, and after a first call until the loop has ended. On a
    /// thread that was not made here without a loop it ends the next one, at its start.
    void end(int result = 0);
    /// Waits until the thread is gone: nothing of it runs any more, and values in its CZeThreadStorage are
    /// destroyed. At most `milliseconds`, without limit when below 0; destructors of a host's own
    /// thread-specific keys are not counted. True when it does not run, or has been started again meanwhile.
    /// False when the time is up, and with a warning for the calling thread and for one that was not made
    /// here.
    bool wait(int64_t milliseconds = -1);
    /// Whether it was started and has not ended. Always so for one that was not made here.
    bool isRunning() const;
    /// What `end` was called with; 0 before that, and from `start` on.
    int result() const;
    /// The name that it was made with.
    const CZeString& name() const { return m_name; }

    /// Handles events and timers on the calling thread, one that was not made here, until its `end` is called
    /// or `milliseconds` (no limit below 0) are over; at least once those that are there. A host that has a
    /// loop of its own calls it with 0 from there. True when it was ended, false when the time is up. False
    /// with a warning within a handler, since loops do not nest, on a thread made here and without memory.
    static bool runLoop(int64_t milliseconds = -1);

private:
    friend class CZeObject;
    friend struct CZeThreadData;

    explicit CZeThread(CZeThreadData& adopted);

    const CZeString m_name;
    CZeThreadData* const m_data; // one of its owners; null without memory
};
