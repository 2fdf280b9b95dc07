// How many threads the process has.

#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

inline std::ptrdiff_t taskCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}
