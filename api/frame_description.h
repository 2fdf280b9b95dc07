// What a host says of a frame besides its planes.

#pragma once

#include "convert/color_description.h"
#include "gl/frame_size.h"

#include <cstdint>

namespace ze {

/// The numbers of ZecRender, in the order of its arguments.
struct FrameDescription {
    int32_t pixelFormat = -1;
    ColorDescription color;
    FrameSize size;
    int32_t extra = 0; ///< Recorded and not read.

    bool hasValidFormat() const { return pixelFormat == 0 || pixelFormat == 1; }
    bool isNV21() const { return pixelFormat == 1; }
};

} // namespace ze
