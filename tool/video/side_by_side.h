// Frames of before and after beside each other.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/video/video_format.h"

namespace ze::tool {

/// Makes frames that show one on the left and one on the right, also where a player turns them.
class SideBySide {
public:
    /// For frames of the format `half`, which a player turns by `matrix`, as `displayMatrixOf` returns it.
    SideBySide(const VideoFormat& half, const int32_t* matrix);

    /// The format of both together. The second one in memory begins at an even column or row; behind an odd
    /// size what is between them is black.
    const VideoFormat& format() const { return m_format; }

    /// A frame with `before` and its times on the left.
    FfmpegPtr<AVFrame> withBefore(const AVFrame& before) const;

    /// Puts `after` on the right of what `withBefore` made of one of the same size.
    void addAfter(AVFrame& both, const AVFrame& after) const;

private:
    struct Place {
        int column = 0;
        int row = 0;
    };

    static void copyAt(const AVFrame& from, AVFrame& to, Place place);

    VideoFormat m_format;
    Place m_before, m_after;
};

} // namespace ze::tool
