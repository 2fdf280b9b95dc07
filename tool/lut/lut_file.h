// LUT files, which the library reads.

#pragma once

#include "tool/lut/color_table.h"

#include <string>

namespace ze::tool {

/// Whether the file `path` begins like a LUT file. Throws `Failure` (`badInput`) when it cannot be read.
bool isLutFile(const std::string& path);

/// Reads the table in the file `path` with the library's reader, which takes levels as they are, rising or
/// not. Throws `Failure` (`badInput`) when the reader refuses the file.
ColorTable readLutFile(const std::string& path);

/// The same, but refuses levels that do not rise in the same way.
ColorTable readRisingLutFile(const std::string& path);

/// The bytes of a file that holds `table`, which has 1 to `lut_format::kMaxLevelCount` levels.
std::vector<uint8_t> lutFileBytes(const ColorTable& table);

} // namespace ze::tool
