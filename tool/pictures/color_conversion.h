// Pixels from one format and color model to another.

#pragma once

#include "tool/pictures/ffmpeg.h"

namespace ze::tool {

/// Converts the pixels of `from` into `to`, a frame of the same size with memory of its own. Of a YUV frame,
/// `colorspace` gives the matrix (BT.601 where it is unspecified) and `color_range` the range; RGB is full
/// range. Chroma of 4:2:0 sits in the center of its four pixels. A 4:2:0 target must have even sizes.
/// Throws `Failure` where FFmpeg has no such conversion.
void convertColors(const AVFrame& from, AVFrame& to);

} // namespace ze::tool
