// The pass that turns the host's NV12 or NV21 planes into an RGBA texture.

#pragma once

#include "convert/color_converter.h"
#include "convert/ze_image.h"

namespace ze {

/// Uploads `input` and draws it as RGB into `targetTexture`, an RGBA texture of `size`. A change of `isNV21`
/// alone has no effect on the colors: the matrix is loaded when `color` changes, and stays until then.
/// Needs the core's frame buffer bound; leaves it without a color target and both texture units empty, unit
/// 0 active. False when a texture or the program cannot be made; the next call tries again. GL errors and
/// failed uploads are logged and do not stop the pass. Call on the thread that has the core's context
/// current.
bool yuvToRgb(ColorConverter& converter, const ZecImage& input, ColorDescription color, GLuint targetTexture,
              FrameSize size, bool isNV21);

} // namespace ze
