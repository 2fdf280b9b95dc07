// The pass that packs an RGBA frame into Y, U, Y, V texels, two pixels in each.

#pragma once

#include "convert/color_converter.h"

namespace ze {

/// Draws `sourceTexture`, an RGBA frame of the converter's plane size, into its packed texture: Y of the left
/// pixel, U, Y of the right pixel, V, chroma from the left pixel alone. The right half of the last texel of
/// an odd width is unspecified. Needs the plane textures made and the core's frame buffer bound; leaves it
/// without a color target. False when the program cannot be built; the next call tries again. GL errors are
/// logged and do not stop the pass. Call on the thread that has the core's context current.
bool rgbToYuv(ColorConverter& converter, GLuint sourceTexture, ColorDescription color);

} // namespace ze
