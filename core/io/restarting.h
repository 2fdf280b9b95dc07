// System calls that signals may interrupt.

#pragma once

#include <cerrno>

namespace ze {

/// Makes a call that returns −1 on failure again for as long as signals interrupt it.
template <class Call>
auto restarting(const Call& call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

} // namespace ze
