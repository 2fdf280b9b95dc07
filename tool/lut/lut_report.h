// What `zebeauty lut info` says about a file.

#pragma once

#include "tool/lut/color_transform.h"

#include <string>

namespace ze::tool {

/// What is in the file and how far it is from changing nothing, a line for each. Differences are measured
/// over the entries of a LUT file, and over the default levels for anything else.
std::string reportText(const ColorTransform& transform);

/// The same as one JSON object and a newline. Levels that are not finite are null.
std::string reportJson(const ColorTransform& transform);

} // namespace ze::tool
