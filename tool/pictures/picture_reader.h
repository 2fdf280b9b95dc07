// Pictures from files, in whatever still-picture format FFmpeg reads.

#pragma once

#include "tool/pictures/picture.h"

#include <string>

namespace ze::tool {

/// The main memory of this machine in bytes.
int64_t machineMemory();

/// Reads the picture in the file `path`; of an animation or a film, the first frame. The result stands
/// upright as its orientation mark says. Deeper channels are rounded to 8 bits, gray and palettes become RGB,
/// alpha is kept unless all of it is opaque. Color profiles are not applied.
///
/// Throws `Failure`: `badInput` when there is no such file or no whole picture in it, `failed` when the
/// picture is larger than FFmpeg reads or beautifying it would take more than `memory` bytes.
Picture readPicture(const std::string& path, int64_t memory = machineMemory());

} // namespace ze::tool
