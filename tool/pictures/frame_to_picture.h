// From FFmpeg's many pixel formats to the tool's one.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/pictures/picture.h"

namespace ze::tool {

/// The pixels of `frame`. RGB and gray of any depth, and palettes, are taken over exactly, deeper channels
/// rounded to 8 bits; everything else goes through `convertColors`, and throws what that throws.
Picture pictureFromFrame(const AVFrame& frame);

} // namespace ze::tool
