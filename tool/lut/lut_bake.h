// Tables that the library can draw with, made of any file that holds a color transform.

#pragma once

#include "effects/lut/lut_format.h"
#include "tool/lut/lut_chain.h"

#include <string>

namespace ze::tool {

inline constexpr size_t kFewestLevels = 2;
inline constexpr size_t kMostLevels = lut_format::kMaxLevelCount;
inline constexpr size_t kDefaultLevels = 33;

/// The three-dimensional table of `levels` for `chain`, computed in float and rounded once. `clamping`
/// receives the values that had to be clamped at the end.
ColorTable bakeLut(const LutChain& chain, const std::vector<float>& levels, Clamping& clamping);

/// Warns on standard error, in one line, of values of the files `names` that were clamped, if any
/// were.
void warnOfClamping(const std::string& names, const Clamping& clamping);

/// Warns on standard error, in one line, when the levels of `path` do not rise: the library draws with them
/// all the same.
void warnOfLevels(const std::string& path, const ColorTable& table);

} // namespace ze::tool
