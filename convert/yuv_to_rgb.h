// The pass that turns the host's NV12 or NV21 planes into an RGBA texture.

#pragma once

#include "convert/color_converter.h"
#include "convert/ze_image.h"
#include "gl/quad.h"

namespace ze {

/// The part of the chroma texture that belongs to a frame of `width` × `height` pixels. An odd size is half a
/// chroma texel short: the width at the right end, the height at the low end. A size of 1 is not shortened.
TextureSpan chromaSpan(uint32_t width, uint32_t height);

/// Uploads `input` and draws it as RGB into `targetTexture`, an RGBA texture of `width` × `height`.
/// `colorStandard` 0 is BT.601, any other value BT.709; `colorRange` 1 is full range, any other value video.
/// Needs the core's frame buffer bound; leaves it without a color target and both texture units empty, unit
/// 0 active. False when a texture or the program cannot be made; the next call tries again. GL errors and
/// failed uploads are logged and do not stop the pass. Call on the thread that has the core's context
/// current.
bool yuvToRgb(ColorConverter& converter, const ZecImage& input, int32_t colorStandard, int32_t colorRange,
              GLuint targetTexture, uint32_t width, uint32_t height, bool isNV21);

} // namespace ze
