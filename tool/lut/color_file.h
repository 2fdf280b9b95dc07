// Color transforms in the files of grading programs, through OpenColorIO.

#pragma once

#include "tool/lut/lut_table.h"

#include <string>

namespace ze::tool {

/// Sends `colors` through the transform in the file `path`: .cube, .3dl, .csp, .spi1d, .spi3d, .clf, .ctf
/// and whatever else OpenColorIO reads. Between the entries of a three-dimensional table it interpolates in
/// tetrahedra: gray inputs then only depend on gray entries, so that what is neutral stays neutral.
///
/// Numbers have a decimal point whatever the user's locale is. Throws `Failure` (`badInput`) with the reason,
/// and with the line where there is one, when the file cannot be read, is no valid transform or holds a
/// number that is malformed or not finite.
void applyColorFile(const std::string& path, std::vector<Color>& colors);

} // namespace ze::tool
