// Many pictures through the same effects.

#pragma once

#include "tool/batch/batch_plan.h"
#include "tool/render/photo_effect.h"

namespace ze::tool {

/// Reads, renders and writes the pictures of `jobs`, making folders where they are missing. Reading and
/// encoding run beside rendering. A picture that fails does not stop the others; at the end the failures are
/// listed on standard error, and the first decides the `Failure` that this throws. That there is no OpenGL ES
/// ends the run at once.
void runBatch(const std::vector<BatchJob>& jobs, PhotoEffect& effect, const PhotoOptions& options);

} // namespace ze::tool
