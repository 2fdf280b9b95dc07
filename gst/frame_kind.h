// What the caps of a stream say of its frames.

#pragma once

#include "host/beautifier.h"

#include <optional>
#include <string>

#include <gst/video/video.h>

namespace ze::gst {

/// Fills in all of `frame` but its planes from `info`, which is of NV12 or NV21. GStreamer takes untagged
/// frames for BT.601 up to 576 lines and BT.709 above, in video range, and an unnamed range for full; so the
/// effects do, too.
///
/// Returns nothing, or a sentence in English that says why the effects cannot take such frames.
std::optional<std::string> describe(const GstVideoInfo& info, zebeauty::Frame& frame);

/// Where the frame lies that GStreamer has mapped.
zebeauty::Planes planesOf(const GstVideoFrame& mapped);

} // namespace ze::gst
