// Tables as .cube files, which most grading programs read.

#pragma once

#include "tool/lut/color_table.h"

#include <string>

namespace ze::tool {

/// How many levels a .cube file gets when those of the table are not uniform, in three dimensions and in one.
inline constexpr size_t kResampledLevels = 65;
inline constexpr size_t kResampledLevels1D = 1024;

/// The text of a .cube file that does what `table` does, whose levels rise. Levels that the library takes for
/// uniform (`hasUniformLevels`) keep every entry; others, which a .cube file cannot have, are resampled as
/// the library draws them.
std::string cubeText(const ColorTable& table);

} // namespace ze::tool
