// Tables as .cube files, the form that most grading programs read.

#pragma once

#include "tool/lut/lut_table.h"

#include <string>

namespace ze::tool {

/// Levels of a .cube file when the table's own are not even: in three dimensions, and in one.
inline constexpr size_t kResampledLevels = 65;
inline constexpr size_t kResampledLevels1D = 1024;

/// The text of a .cube file that does what `table` does, whose levels rise. Even levels (`hasEvenLevels`)
/// keep every entry; others, which a .cube file cannot have, are resampled as the library draws them.
std::string cubeText(const LutTable& table);

/// Whether the library, and with it `cubeText`, takes the levels for even.
bool hasEvenLevels(const LutTable& table);

} // namespace ze::tool
