// The library's own LUT files.

#pragma once

#include "tool/lut/lut_table.h"

#include <string>

namespace ze::tool {

/// Whether the file `path` begins like one. Throws `Failure` (`badInput`) when it cannot be read.
bool isLutFile(const std::string& path);

/// Reads the table in the file `path` with the library's own reader, which takes the levels as they are: they
/// may not rise. Throws `Failure` (`badInput`) when it refuses the file.
LutTable readLutFile(const std::string& path);

/// The bytes of a file that holds `table`, which has 1 to 65 levels.
std::vector<uint8_t> lutFileBytes(const LutTable& table);

} // namespace ze::tool
