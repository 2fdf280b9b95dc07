// From whatever holds a color transform to a table that the library draws with.

#pragma once

#include "tool/lut/lut_picture.h"
#include "tool/lut/lut_table.h"

#include <string>

namespace ze::tool {

inline constexpr size_t kFewestLevels = 2;
inline constexpr size_t kMostLevels = 65;
inline constexpr size_t kDefaultLevels = 33;

/// The three-dimensional table of `levels` for the transform in the file `path`: a LUT file of the library's
/// own, a picture of a table (`layout` says of which kind), or a file of a grading program. Told apart by the
/// first bytes. Tables of the first two are interpolated as the library draws them. `clamping` tells which
/// values were cut. Throws `Failure`, mostly `badInput`.
LutTable bakeLut(const std::string& path, const std::vector<float>& levels, PictureLayout layout,
                 Clamping& clamping);

/// One line on standard error about values of `path` that were cut; none when there were none.
void warnOfClamping(const std::string& path, const Clamping& clamping, const LutTable& table);

/// The table in a LUT file of the library's own. Throws `Failure` (`badInput`) when its levels do not rise.
LutTable readRisingLutFile(const std::string& path);

/// One line on standard error when the levels of `path` do not rise, as the library takes them all the same.
void warnOfLevels(const std::string& path, const LutTable& table);

} // namespace ze::tool
