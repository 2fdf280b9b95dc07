// Frames as they were decoded to frames that the library takes.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/video/video_format.h"

namespace ze::tool {

/// Brings frames of any size and pixel format to one. 8-bit 4:2:0 of that size keeps every value.
class FrameConverter {
public:
    /// Makes frames with the size, layout and tags of `format`, reading the tags of what comes with
    /// `instead`.
    FrameConverter(const VideoFormat& format, const ColorOverride& instead);

    /// `frame` itself when nobody else holds its memory and it is as it should be, or else a converted copy
    /// with its times; one whose rows the library can read in place. Throws `Failure`: `badInput` when FFmpeg
    /// knows no conversion.
    FfmpegPtr<AVFrame> convert(FfmpegPtr<AVFrame> frame);

private:
    /// What a scaler was made for.
    struct Kind {
        int width, height, format;
        ColorTags tags;
        bool operator==(const Kind& other) const = default;
    };

    void scale(const AVFrame& from, const Kind& kind, AVFrame& to);
    void makeScaler(const Kind& kind);

    VideoFormat m_format;
    ColorOverride m_override;
    Kind m_kind = {};
    FfmpegPtr<SwsContext> m_scaler; ///< From `m_kind`.
};

} // namespace ze::tool
