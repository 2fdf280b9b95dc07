// The size of a chroma plane: half of the frame's, rounded up.

#pragma once

#include <cstdint>

namespace ze {

/// Half of `n`, rounded up; `n` is below 2^32 - 1.
constexpr uint32_t halfUp(uint32_t n) {
    return (n + 1) >> 1;
}

} // namespace ze
