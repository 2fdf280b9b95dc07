// Times for people.

#pragma once

#include <chrono>
#include <string>

namespace ze::tool {

/// Minutes and seconds, as in "61:05".
inline std::string clockText(std::chrono::seconds time) {
    const auto seconds = time.count();
    const std::string rest = std::to_string(seconds % 60);
    return std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

} // namespace ze::tool
