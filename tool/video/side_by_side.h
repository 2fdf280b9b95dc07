// Frames of before and after beside each other.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/video/video_format.h"

namespace ze::tool {

/// The format of two frames of `format` beside each other. The second begins at an even column; behind odd
/// widths the one between is black.
VideoFormat doubled(const VideoFormat& format);

/// A frame of the doubled format `both` with `frame` and its times on the left.
FfmpegPtr<AVFrame> withLeftHalf(const AVFrame& frame, const VideoFormat& both);

/// Puts `frame` on the right of what `withLeftHalf` made of one of the same size.
void fillRightHalf(AVFrame& both, const AVFrame& frame);

} // namespace ze::tool
