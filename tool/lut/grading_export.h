// Tables as files of grading programs, written by OpenColorIO.

#pragma once

#include "tool/lut/even_table.h"

#include <string>

namespace ze::tool {

/// The text of a .clf file, the Academy's Common LUT Format, that holds `table` in three dimensions or in
/// one.
std::string clfText(const EvenTable& table);

/// The text of a .3dl file that holds the three-dimensional `table` in integers of 12 bits.
std::string threeDlText(const EvenTable& table);

} // namespace ze::tool
