// System calls that signals may interrupt.

#pragma once

#include <cerrno>

namespace ze {

inline bool hasFailed(long result) {
    return result == -1;
}
inline bool hasFailed(const void* result) {
    return !result;
}

/// Makes a call that returns −1 or null on failure again for as long as signals interrupt it.
template <class Call>
auto restarting(const Call& call) {
    auto result = call();
    while (hasFailed(result) && errno == EINTR)
        result = call();
    return result;
}

} // namespace ze
