// The pass that packs an RGBA frame into Y, U, Y, V texels, two pixels in each.

#pragma once

#include "convert/color_converter.h"
#include "gl/quad.h"

namespace ze {

/// The texture coordinates of the source that the packed texels of a frame of `width` pixels cover, chosen so
/// that the center of packed texel k lies on the border between pixels 2k and 2k + 1. Beyond 1 for odd
/// widths.
TextureSpan packedSpan(uint32_t width);

/// Draws `sourceTexture`, an RGBA frame of the converter's plane size, into its packed texture: Y of the left
/// pixel, U, Y of the right pixel, V, chroma from the left pixel alone. The right half of the last texel of
/// an odd width is unspecified. `colorStandard` and `colorRange` as in `yuvToRgb`. Needs the plane textures
/// made and the core's frame buffer bound; leaves it without a color target. False when the program cannot
/// be built; the next call tries again. GL errors are logged and do not stop the pass. Call on the thread
/// that has the core's context current.
bool rgbToYuv(ColorConverter& converter, GLuint sourceTexture, int32_t colorStandard, int32_t colorRange);

} // namespace ze
