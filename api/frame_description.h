// What a host says of a frame besides its planes.

#pragma once

#include "convert/color_description.h"
#include "gl/frame_size.h"

#include <cstdint>

namespace ze {

/// Whether `pixelFormat` is 0 (NV12) or 1 (NV21).
constexpr bool isValidPixelFormat(int32_t pixelFormat) {
    return pixelFormat == 0 || pixelFormat == 1;
}

/// The numbers of ZecRender, in the order of its arguments.
struct FrameDescription {
    int32_t pixelFormat = -1;
    ColorDescription color;
    FrameSize size;
    int32_t extra = 0; ///< Recorded and not read.

    bool isNV21() const { return pixelFormat == 1; }
};

} // namespace ze
