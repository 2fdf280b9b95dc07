// Tables that the library can draw with, made of any file that holds a color transform.

#pragma once

#include "effects/lut/lut_format.h"
#include "tool/lut/color_table.h"
#include "tool/lut/lut_picture.h"

#include <string>

namespace ze::tool {

inline constexpr size_t kFewestLevels = 2;
inline constexpr size_t kMostLevels = lut_format::kMaxLevelCount;
inline constexpr size_t kDefaultLevels = 33;

/// The three-dimensional table of `levels` for the transform in the file `path`: a LUT file of the library's
/// own, a picture of a table (`layout` says of which kind), or a file of a grading program. The first bytes
/// of the file tell which. Tables of the first two kinds are interpolated as the library draws them.
/// `clamping` receives the values that had to be clamped. Throws `Failure`, mostly `badInput`.
ColorTable bakeLut(const std::string& path, const std::vector<float>& levels, PictureLayout layout,
                   Clamping& clamping);

/// Warns on standard error, in one line, of values in `path` that were clamped, if any were.
void warnOfClamping(const std::string& path, const Clamping& clamping, const ColorTable& table);

/// Warns on standard error, in one line, when the levels of `path` do not rise: the library draws with them
/// all the same.
void warnOfLevels(const std::string& path, const ColorTable& table);

} // namespace ze::tool
