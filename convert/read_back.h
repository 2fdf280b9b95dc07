// Converts a frame to packed YUV and copies it into host memory.

#pragma once

#include "convert/color_converter.h"
#include "convert/ze_image.h"

namespace ze {

/// The row alignment that GL has to be told before a read-back with `pitch`, or 0 where its default will do.
GLint packAlignment(int32_t pitch);

/// Packs `sourceTexture`, an RGBA frame of `width` × `height`, and reads it into plane 0 of `staging`: rows
/// of four bytes for every two pixels (Y, U, Y, V), the first row of the frame first, pitch 0 apart. Needs
/// the core's frame buffer bound. False when a texture or the program cannot be made, and when reading fails
/// ("glReadPixels() failed!"): then the packed texture stays attached and a changed alignment stays set. Call
/// on the thread that has the core's context current.
bool readBack(ColorConverter& converter, GLuint sourceTexture, ZecImage& staging, int32_t colorStandard,
              int32_t colorRange, uint32_t width, uint32_t height);

} // namespace ze
