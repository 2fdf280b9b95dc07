// Hands things from one thread to another, a few at a time.

#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace ze::tool {

/// A queue of at most `capacity` things; any thread may call.
template <class T>
class BoundedQueue {
public:
    explicit BoundedQueue(size_t capacity) : m_capacity(capacity) {}

    /// Waits for room. False, and `thing` is dropped, once the queue is closed.
    bool push(T thing) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_isClosed || m_things.size() < m_capacity; });
        if (m_isClosed)
            return false;
        m_things.push_back(std::move(thing));
        m_changed.notify_all();
        return true;
    }

    /// Waits for a thing. None once the queue is closed and empty.
    std::optional<T> pop() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_isClosed || !m_things.empty(); });
        if (m_things.empty())
            return std::nullopt;
        std::optional<T> thing(std::move(m_things.front()));
        m_things.pop_front();
        m_changed.notify_all();
        return thing;
    }

    /// No more comes in; what is in may still be taken out.
    void close() {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
        m_changed.notify_all();
    }

private:
    size_t m_capacity;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<T> m_things;
    bool m_isClosed = false;
};

} // namespace ze::tool
