// What frames lose before they can be rendered.

#pragma once

#include "tool/video/clip_container.h"
#include "tool/video/video_format.h"

#include <set>
#include <string>

namespace ze::tool {

/// Says on standard error what becomes of the frames of a clip: of their size, depth, chroma, transparency
/// and colors; and that interlaced ones stay so. One thread at a time.
class FormatNotes {
public:
    /// Each line begins with `name`. All frames are brought to `format`; their tags are read with `instead`.
    FormatNotes(std::string name, const VideoFormat& format, const ColorOverride& instead);

    /// Prints what becomes of `frame`, but nothing a second time.
    void look(const AVFrame& frame);

private:
    void lookAtPixels(const AVFrame& frame);
    void lookAtColors(const ColorTags& tags);
    void say(const std::string& note);

    std::string m_name;
    VideoFormat m_format;
    ColorOverride m_override;
    std::set<std::string> m_said;
};

/// Says on standard error, beginning with `name`, what of `format` `container` has no name for: interlaced
/// frames in WebM, and in YUV4MPEG2 the color matrix, where players will take another one.
void tellUnnamed(const std::string& name, const ClipContainer& container, const VideoFormat& format);

} // namespace ze::tool
