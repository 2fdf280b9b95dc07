// Color transforms in files of grading programs, read by OpenColorIO.

#pragma once

#include "tool/lut/color_transform.h"
#include "tool/lut/lut_input.h"

#include <string>

namespace ze::tool {

/// Reads the transform in `input`: .cube, .3dl, .csp, .spi1d, .spi3d, .clf, .ctf, .cc, .ccc, .cdl and
/// whatever else OpenColorIO reads, told apart by what is in it. Of several color corrections it takes the
/// one that is named `id`; when `id` is empty the first, and says so on standard error. Three-dimensional
/// tables are interpolated in tetrahedra: gray inputs then depend on gray entries only, so that what is
/// neutral stays neutral.
///
/// Numbers have a decimal point in every locale. Throws `Failure` (`badInput`) with the reason, and with the
/// line where there is one, when the file is no valid transform, holds a number that is malformed or not
/// finite, or has no correction that is named `id`.
ColorTransform readGradingFile(const LutInput& input, const std::string& id);

} // namespace ze::tool
