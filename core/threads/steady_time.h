// Times of the steady clock, and a condition variable with deadlines in them.

#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <mutex>

#include <pthread.h>

namespace ze {

using SteadyTime = std::chrono::steady_clock::time_point;

/// The interval, of which more than a hundred years count as that: sums with times do not overflow.
inline std::chrono::milliseconds limitedInterval(int64_t milliseconds) {
    constexpr std::chrono::milliseconds kHundredYears = std::chrono::hours(24 * 365 * 100);
    return std::min(std::chrono::milliseconds(milliseconds), kHundredYears);
}

/// The time in `milliseconds` from now on, without an end when they are below 0.
inline SteadyTime deadlineIn(int64_t milliseconds) {
    return milliseconds < 0 ? SteadyTime::max()
                            : std::chrono::steady_clock::now() + limitedInterval(milliseconds);
}

/// Is used as std::condition_variable. That one waits by the wall clock on Android before API level 30, and
/// too long when the clock is put back.
class SteadyCondition {
public:
    SteadyCondition() {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&m_condition, &attributes);
        pthread_condattr_destroy(&attributes);
    }
    ~SteadyCondition() { pthread_cond_destroy(&m_condition); }
    SteadyCondition(const SteadyCondition&) = delete;
    SteadyCondition& operator=(const SteadyCondition&) = delete;

    void notifyAll() { pthread_cond_broadcast(&m_condition); }
    /// May return earlier.
    void waitUntil(std::unique_lock<std::mutex>& lock, SteadyTime deadline) {
        const auto time = deadline.time_since_epoch();
        const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
        const timespec until = {static_cast<time_t>(seconds.count()),
                                static_cast<long>(std::chrono::nanoseconds(time - seconds).count())};
        pthread_cond_timedwait(&m_condition, lock.mutex()->native_handle(), &until);
    }

private:
    pthread_cond_t m_condition;
};

} // namespace ze
