// The element zebeauty, which beautifies the frames of a pipeline in place.

#pragma once

#include <gst/gst.h>

namespace ze::gst {

/// The element's type. It is a GstVideoFilter for NV12 and NV21 with the properties that `gst-inspect-1.0
/// zebeauty` lists; any thread may change them at any time, and the next frame has them. Frames pass through
/// untouched while the properties change nothing. The library draws on a thread of the element's own, which
/// comes with the first frame that needs it and ends with the element; core and effects go each time that the
/// element goes to READY.
GType beautyElementType();

} // namespace ze::gst
