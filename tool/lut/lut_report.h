// What `zebeauty lut info` says about a table.

#pragma once

#include "tool/lut/color_table.h"

#include <string>

namespace ze::tool {

/// Version, levels, dimension and differences from identity, a line for each.
std::string reportText(const ColorTable& table);

/// The same as one JSON object and a newline. Levels that are not finite are null.
std::string reportJson(const ColorTable& table);

} // namespace ze::tool
