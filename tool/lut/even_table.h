// Tables as other programs can have them: in float, on even levels.

#pragma once

#include "tool/lut/lut_chain.h"

namespace ze::tool {

struct EvenTable {
    size_t levelCount = 0;
    bool isThreeDimensional = true;
    std::vector<Color> colors; ///< In the order of `ColorTable`; they may lie outside 0 to 1.

    const Color& entry(size_t r, size_t g, size_t b) const {
        return colors[(r * levelCount + g) * levelCount + b];
    }
};

/// What a kind of file can hold.
struct EvenTableLimits {
    size_t levelCount = 0;         ///< The count to use; 0 for whatever suits.
    size_t fewestLevels = 2;       ///< A table with less is resampled.
    bool holdsOneDimension = true; ///< Otherwise tables in one dimension become three-dimensional ones.
};

/// How many levels a table gets when those of a LUT file are not uniform, in three dimensions and in one.
inline constexpr size_t kResampledLevels = 65;
inline constexpr size_t kResampledLevels1D = 1024;

/// The table that does what `chain` does. A single LUT file or picture whose levels the library takes for
/// uniform (`hasUniformLevels`) keeps every entry where `limits` allow it. Others are resampled as the
/// library draws them, and a line on standard error says so unless `limits` ask for it. A chain of more, or a
/// file of a grading program, is sampled at 33 levels where `limits` name no count.
EvenTable evenTableOf(const LutChain& chain, const EvenTableLimits& limits);

} // namespace ze::tool
