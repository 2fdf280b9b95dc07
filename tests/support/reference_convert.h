// Both colour conversions, worked out in double precision.

#pragma once

#include "convert/ze_image.h"
#include "tests/support/reference_picture.h"

namespace reference {

/// How the numbers of a frame mean colours; the values of ZecRender's arguments.
struct ColourDescription {
    int standard; ///< 0 BT.601, else BT.709
    int range;    ///< 1 full, else video
};

/// The RGB picture of a frame, before an 8-bit target clamps and rounds it. Every pixel has its own luma;
/// chroma is interpolated between the pairs. `nv21` tells which byte of a pair is V.
Picture yuvToRgb(const ZecImage& frame, int width, int height, ColourDescription description, bool nv21);

/// Luma of every pixel and chroma of every pair of pixels, in levels of 0 to 255, neither clamped nor
/// rounded.
struct Planes {
    std::vector<double> luma;   ///< rows of the picture's width
    std::vector<double> chroma; ///< rows of the width rounded up to even, half as many rounded up
};

/// The planes of a picture. Chroma is that of the left upper pixel of each four.
Planes rgbToYuv(const Picture& picture, ColourDescription description, bool nv21);

} // namespace reference
