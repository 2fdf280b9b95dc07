// The way of a frame that no effect changes.

#pragma once

#include "convert/ze_image.h"
#include "gl/frame_size.h"

namespace ze {

/// Copies luma and then chroma of `input` to `output`, byte for byte; what lies between the rows stays as it
/// is. Each side has its own pitches. The two may describe the same memory with the same pitches.
/// `pixelFormat` is 0 (NV12) or 1 (NV21): with any other nothing is copied and four messages are logged.
/// `size` is at least 1 × 1.
void copyFrame(const ZecImage& input, const ZecImage& output, int32_t pixelFormat, FrameSize size);

} // namespace ze
