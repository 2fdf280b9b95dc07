// The size of frames and textures.

#pragma once

#include <cstdint>

namespace ze {

/// In pixels of a frame or texels of a texture.
struct FrameSize {
    int32_t width = 0;
    int32_t height = 0;

    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

/// Half of `n`, rounded up: two pixels share a chroma sample, and an odd last pixel has one of its own.
/// `n` is not negative.
constexpr int32_t halfUp(int32_t n) {
    return n / 2 + n % 2;
}

} // namespace ze
