// Frames of GStreamer as frames of the host class.

#pragma once

#include "host/beautifier.h"

#include <optional>
#include <string>

#include <gst/video/video.h>

namespace ze::gst {

/// Fills in all of `frame` but its size and planes from `info`, which is of NV12 or NV21. GStreamer takes
/// untagged frames for BT.601 up to 576 lines and BT.709 above, in video range, and an unnamed range for
/// full; so the effects do, too.
///
/// Returns nothing, or a sentence in English that says why the effects cannot take such frames.
std::optional<std::string> describe(const GstVideoInfo& info, zebeauty::Frame& frame);

/// A frame in memory, as long as this lives.
class MappedFrame {
public:
    /// Of `buffer`, with all that it holds, where a crop leaves less to be seen.
    MappedFrame(GstVideoInfo& info, GstBuffer& buffer);
    ~MappedFrame();
    MappedFrame(const MappedFrame&) = delete;
    MappedFrame& operator=(const MappedFrame&) = delete;

    /// Whether there is one.
    explicit operator bool() const { return m_isMapped; }
    /// `kind` with its size and planes.
    zebeauty::Frame get(zebeauty::Frame kind) const;

private:
    GstVideoFrame m_frame;
    bool m_isMapped;
};

} // namespace ze::gst
