// What a clip is made of, on its way from one stage to the next.

#pragma once

#include "tool/pictures/ffmpeg.h"

namespace ze::tool {

/// A frame of the stream that is rendered, or a packet of a stream that is copied. Times are those of the
/// stream in the input, in its time base.
struct ClipItem {
    FfmpegPtr<AVFrame> frame;
    FfmpegPtr<AVPacket> packet;
};

} // namespace ze::tool
