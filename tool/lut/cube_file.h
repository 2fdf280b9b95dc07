// Tables as .cube files, which most grading programs read.

#pragma once

#include "tool/lut/even_table.h"

#include <string>

namespace ze::tool {

/// The text of a .cube file that holds `table`, in three dimensions or in one.
std::string cubeText(const EvenTable& table);

} // namespace ze::tool
