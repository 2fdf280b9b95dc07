// What all frames of a clip have in common on their way through the library.

#pragma once

#include "tool/video/color_tags.h"

extern "C" {
#include <libavutil/rational.h>
}

namespace ze::tool {

struct VideoFormat {
    int width = 0;
    int height = 0;
    AVPixelFormat layout = AV_PIX_FMT_NV12; ///< Or NV21.
    ColorTags tags;                         ///< As `libraryTags` returns them.
    AVRational pixelShape = {0, 1};         ///< Width to height of a pixel; 0/1 where unknown.
    AVRational timeBase = {1, 1};           ///< Seconds of one unit of the frames' `pts` and `pkt_duration`.
    AVRational frameRate = {0, 1};          ///< The usual one; 0/1 where unknown.
    bool isInterlaced = false;
};

} // namespace ze::tool
