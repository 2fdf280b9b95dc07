// Color transforms in files of grading programs, read by OpenColorIO.

#pragma once

#include "tool/lut/color_table.h"

#include <string>

namespace ze::tool {

/// Applies the transform in the file `path` to `colors`: .cube, .3dl, .csp, .spi1d, .spi3d, .clf, .ctf and
/// whatever else OpenColorIO reads. Three-dimensional tables are interpolated in tetrahedra: gray inputs then
/// depend on gray entries only, so that what is neutral stays neutral.
///
/// Numbers have a decimal point in every locale. Throws `Failure` (`badInput`) with the reason,
/// and with the line where there is one, when the file cannot be read, is no valid transform or holds a
/// number that is malformed or not finite.
void applyGradingFile(const std::string& path, std::vector<Color>& colors);

} // namespace ze::tool
