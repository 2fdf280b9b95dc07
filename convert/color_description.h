// How the numbers of a frame stand for colors.

#pragma once

#include <cstdint>

namespace ze {

/// The two selectors of ZecRender. Any value is allowed.
struct ColorDescription {
    int32_t colorStandard = -1; ///< 0 is BT.601, any other value BT.709.
    int32_t colorRange = -1;    ///< 1 is full range, any other value video range.

    constexpr bool isBt601() const { return colorStandard == 0; }
    constexpr bool isFullRange() const { return colorRange == 1; }

    friend bool operator==(const ColorDescription&, const ColorDescription&) = default;
};

} // namespace ze
