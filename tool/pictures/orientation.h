// The eight ways a camera may have been held.

#pragma once

#include "tool/pictures/picture.h"

#include <cstdint>

namespace ze::tool {

/// How a stored picture is to be shown. The transposition comes first.
struct Orientation {
    bool transposed = false; ///< Stored rows are shown as columns.
    bool mirrored = false;   ///< Left and right are swapped.
    bool upsideDown = false; ///< Top and bottom are swapped.
};

/// From FFmpeg's display matrix of nine numbers (libavutil/display.h); only quarter turns and mirrors count.
Orientation orientationOf(const int32_t* displayMatrix);

/// `picture` as it is to be shown.
Picture upright(Picture picture, Orientation orientation);

} // namespace ze::tool
