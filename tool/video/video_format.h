// What all frames of a clip have in common on their way through the library.

#pragma once

#include "tool/video/color_tags.h"

extern "C" {
#include <libavformat/avformat.h>
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
    AVFieldOrder fieldOrder = AV_FIELD_PROGRESSIVE;

    bool isInterlaced() const { return fieldOrder != AV_FIELD_PROGRESSIVE; }
};

/// The format in which the library takes a clip whose first frame is `first`, from `video`, with its tags
/// read with `instead`. Throws what `checkColors` does.
VideoFormat formatOf(const AVStream& video, AVRational frameRate, const AVFrame& first,
                     const ColorOverride& instead);

} // namespace ze::tool
