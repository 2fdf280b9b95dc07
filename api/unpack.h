// From the packed read-back image to the planes of a frame.

#pragma once

#include "convert/ze_image.h"
#include "gl/frame_size.h"

namespace ze {

/// Takes apart the Y, U, Y, V groups in plane 0 of `staging`, one for each pair of pixels begun, and writes
/// the luma plane and the interleaved chroma plane of `output`: U, V, or V, U when `isNV21`. Chroma comes
/// from the even rows, that of the odd rows is dropped.
///
/// Only the bytes of the picture are written, what lies between the rows stays as it is. The pitches of both
/// are in bytes. `staging` and the planes must not overlap. `size` is at least 1 × 1.
void unpackFrame(const ZecImage& staging, const ZecImage& output, bool isNV21, FrameSize size);

} // namespace ze
