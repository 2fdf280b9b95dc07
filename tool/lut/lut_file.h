// LUT files, which the library reads.

#pragma once

#include "tool/lut/color_table.h"
#include "tool/lut/lut_input.h"

#include <string_view>

namespace ze::tool {

/// Whether a file with these bytes begins like a LUT file.
bool isLutFile(std::string_view bytes);

/// Reads the table in `input` with the library's reader, which takes levels as they are, rising or not.
/// Throws `Failure` (`badInput`) when the reader refuses the file.
ColorTable readLutFile(const LutInput& input);

/// The bytes of a file that holds `table`, which has 1 to `lut_format::kMaxLevelCount` levels.
std::vector<uint8_t> lutFileBytes(const ColorTable& table);

} // namespace ze::tool
