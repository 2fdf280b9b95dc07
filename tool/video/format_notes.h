// What frames lose before they can be rendered.

#pragma once

#include "tool/video/video_format.h"

#include <string>

namespace ze::tool {

/// Says on standard error what becomes of frames like `frame`, whose tags are `tags`, in `format`: depth,
/// chroma, transparency, the color matrix; and that interlaced ones stay so. Each line begins with `name`;
/// nothing is printed where nothing changes.
void printFormatNotes(const std::string& name, const AVFrame& frame, const ColorTags& tags,
                      const VideoFormat& format);

} // namespace ze::tool
