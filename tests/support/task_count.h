// How many threads the process has.

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <thread>

inline std::ptrdiff_t taskCount() {
    if (std::getenv("ZE_EMULATOR")) // whose threads end a little after they are joined
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}
