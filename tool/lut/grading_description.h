// What is in a file of a grading program.

#pragma once

#include "tool/lut/color_transform.h"

#include <OpenColorIO/OpenColorIO.h>

namespace ze::tool {

/// Puts the steps of `processor`, and the id and description that came with it, into `transform`. Throws
/// `Failure` (`badInput`) for a three-dimensional table with a single entry, which OpenColorIO lets pass.
void describe(const OCIO_NAMESPACE::ConstProcessorRcPtr& processor, ColorTransform& transform);

} // namespace ze::tool
