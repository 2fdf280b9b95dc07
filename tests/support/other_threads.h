// What other threads do, seen from a test.

#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

/// Whether `condition` holds within 20 seconds.
template <class Condition>
bool becomesTrue(const Condition& condition) {
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (std::chrono::steady_clock::now() < end) {
        if (condition())
            return true;
        std::this_thread::sleep_for(1ms);
    }
    return false;
}

/// How many threads the process has.
inline std::ptrdiff_t taskCount() {
    if (std::getenv("ZE_EMULATOR")) // whose threads end a little after they are joined
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}
