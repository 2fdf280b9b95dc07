// Frames as they were decoded to frames that the library takes.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/video/color_space_converter.h"
#include "tool/video/video_format.h"

#include <optional>

namespace ze::tool {

/// What the bytes of a frame mean.
struct FrameKind {
    int width = 0;
    int height = 0;
    AVPixelFormat format = AV_PIX_FMT_NONE;
    ColorTags tags;

    bool operator==(const FrameKind& other) const = default;
};

/// Brings frames of any size and pixel format to one. 8-bit 4:2:0 of that size keeps every value.
class FrameConverter {
public:
    /// Makes frames with the size, layout and tags of `format`, reading the tags of what comes with
    /// `instead`.
    FrameConverter(const VideoFormat& format, const ColorOverride& instead);

    /// `frame` itself when nobody else holds its memory and it is as it should be, or else a converted copy
    /// with its times; one whose rows the library can read in place. Throws `Failure` (`badInput`) when
    /// there is no conversion.
    FfmpegPtr<AVFrame> convert(FfmpegPtr<AVFrame> frame);

private:
    /// From one color space to another, with all chroma and depth that there is.
    struct ColorChange {
        FfmpegPtr<SwsContext> unpack;
        FfmpegPtr<AVFrame> before, after;
        ColorSpaceConverter converter;
    };

    void prepare(const FrameKind& from);
    void scale(const AVFrame& from, AVFrame& to);

    FrameKind m_wanted;
    ColorOverride m_override;
    FrameKind m_from;                  ///< What the rest was made for.
    FfmpegPtr<SwsContext> m_toLibrary; ///< From what comes, or from `m_colors` where colors change.
    std::optional<ColorChange> m_colors;
};

} // namespace ze::tool
