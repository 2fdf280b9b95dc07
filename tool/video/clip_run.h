// A clip through the library, from file to file.

#pragma once

#include "host/beautifier.h"
#include "tool/video/clip_job.h"

namespace ze::tool {

/// Renders all frames of a clip. Decoding, rendering and encoding run beside each other, a few frames apart.
/// What is lost on the way (depth, chroma, damaged packets) is told on standard error.
///
/// Throws the first `Failure` of any stage, and leaves no file behind then, nor when a signal ends the
/// program. That the reader of a pipe goes before the end is no failure.
void runClip(const ClipJob& job, const zebeauty::Settings& settings);

} // namespace ze::tool
