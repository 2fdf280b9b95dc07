// The project's test chart: skin tones of every shade beside colors that smoothing must leave alone.

#pragma once

#include "tool/pictures/picture.h"

namespace ze::tool {

enum class PatchKind {
    skin,    ///< The ten tones of the Monk scale, lightest first.
    sky,     ///< Blues of a clear sky.
    foliage, ///< Greens of leaves.
    primary, ///< Red, green, blue, cyan, magenta, yellow, fully saturated.
    gray,    ///< Eight even steps from black to white.
    hair,    ///< Thin upright lines of the patch's color over a medium skin tone.
};

/// Pixels from `left`, `top` on.
struct Rectangle {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

struct ChartPatch {
    PatchKind kind;
    Rgb color;
    Rectangle area;
};

/// The skin under the lines of `PatchKind::hair`.
inline constexpr Rgb kHairGround = {0xd7, 0xbd, 0x96};

/// Color and place of every patch on a chart of `width` × `height` pixels, both at least 1. The patches
/// cover the chart without gap or overlap; on a very small chart some are empty.
std::vector<ChartPatch> chartPatches(int width, int height);

enum class ChartNoise { none, speckled };

/// Draws the chart. Speckles change the brightness of single pixels by up to 12 and, rarely, darken a small
/// spot by 25; hair and the pixels of its ground stay clean. The same size always gives the same picture.
Picture drawChart(int width, int height, ChartNoise noise);

} // namespace ze::tool
