// The sizes of a frame's planes and of the staging buffer, as arithmetic.

#pragma once

#include <cstddef>

namespace ze {

/// Whether `pixelFormat` is 0 (NV12) or 1 (NV21).
bool isValidPixelFormat(int pixelFormat);

/// Bytes in a row of `plane` (0 luma, 1 interleaved chroma) of a frame `width` pixels wide, `width` >= 1.
/// An invalid `pixelFormat` is logged and gives 0.
size_t planeRowBytes(int pixelFormat, int plane, int width);

/// Rows in `plane` of a frame `height` pixels high, `height` >= 1. Otherwise as `planeRowBytes`.
size_t planeRows(int pixelFormat, int plane, int height);

/// Bytes in a row of the staging buffer: a group Y, U, Y, V for each pair of pixels begun.
size_t stagingPitch(int width);

/// Bytes in the staging buffer of a whole frame.
size_t stagingSize(int width, int height);

} // namespace ze
