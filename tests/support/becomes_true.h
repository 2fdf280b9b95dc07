// Waiting for what another thread does.

#pragma once

#include <chrono>
#include <thread>

/// Whether `condition` holds within 20 seconds.
template <class Condition>
bool becomesTrue(const Condition& condition) {
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(1ms);
    return condition();
}
