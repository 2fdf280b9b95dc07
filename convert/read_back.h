// Converts a frame to packed YUV and copies it into host memory.

#pragma once

#include "convert/color_converter.h"
#include "convert/ze_image.h"

namespace ze {

/// Draws `sourceTexture`, an RGBA frame of `size`, as packed YUV (see `rgbToYuv`) and reads that into plane 0
/// of `staging`: rows of four bytes for every two pixels (Y, U, Y, V), the first row of the frame first,
/// pitch 0 apart. Needs the core's frame buffer bound. False when a texture or the program cannot be made,
/// and when reading fails ("glReadPixels() failed!"): then the packed texture stays attached and a changed
/// alignment stays set. Call on the thread that has the core's context current.
bool convertAndReadBack(ColorConverter& converter, GLuint sourceTexture, ZecImage& staging,
                        ColorDescription color, FrameSize size);

} // namespace ze
