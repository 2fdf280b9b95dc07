// From FFmpeg's many pixel formats to the tool's one.

#pragma once

#include "tool/ffmpeg.h"
#include "tool/picture.h"

namespace ze::tool {

/// The pixels of `frame`. RGB and grey of any depth, and palettes, are taken over exactly, deeper channels
/// rounded to 8 bits; everything else goes through `convertColours`, and throws what that throws.
Picture pictureFromFrame(const AVFrame& frame);

} // namespace ze::tool
