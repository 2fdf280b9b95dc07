// What there is to say about a table.

#pragma once

#include "tool/lut/lut_table.h"

#include <string>

namespace ze::tool {

/// A line for each fact, for people: version, levels, dimension, differences from identity.
std::string reportText(const LutTable& table);

/// The same as one JSON object and an end of line. Levels that are no finite numbers are null.
std::string reportJson(const LutTable& table);

} // namespace ze::tool
