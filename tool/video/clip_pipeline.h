// Three stages, each on its thread, that end together.

#pragma once

#include "tool/batch/bounded_queue.h"

#include <exception>
#include <mutex>
#include <thread>

namespace ze::tool {

/// Hands things from `read` over `change` to `write`, in order.
template <class Thing>
class ClipPipeline {
public:
    /// Runs until `read` has no more things or a stage throws. `read` returns an optional thing and runs on a
    /// thread of its own, `change` takes a reference and runs on this thread, `write` takes what was changed
    /// and runs on a third. Rethrows what was thrown first, once all three have ended.
    template <class Read, class Change, class Write>
    void run(Read read, Change change, Write write) {
        std::thread reader([&] { guard([&] { readAll(read); }); });
        std::thread writer([&] { guard([&] { writeAll(write); }); });
        guard([&] { changeAll(change); });
        reader.join();
        writer.join();
        if (m_error)
            std::rethrow_exception(m_error);
    }

private:
    template <class Read>
    void readAll(Read& read) {
        for (std::optional<Thing> thing = read(); thing; thing = read())
            if (!m_read.push(std::move(*thing)))
                return;
        m_read.close();
    }

    template <class Change>
    void changeAll(Change& change) {
        while (std::optional<Thing> thing = m_read.pop()) {
            change(*thing);
            if (!m_changed.push(std::move(*thing)))
                return;
        }
        m_changed.close();
    }

    template <class Write>
    void writeAll(Write& write) {
        while (std::optional<Thing> thing = m_changed.pop())
            write(*thing);
    }

    template <class Stage>
    void guard(Stage stage) {
        try {
            stage();
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            if (!m_error)
                m_error = std::current_exception();
            m_read.close();
            m_changed.close();
        }
    }

    // A few frames wait between two stages: enough to even out their speeds.
    static constexpr size_t kWaiting = 3;

    BoundedQueue<Thing> m_read{kWaiting};
    BoundedQueue<Thing> m_changed{kWaiting};
    std::mutex m_mutex;
    std::exception_ptr m_error;
};

} // namespace ze::tool
