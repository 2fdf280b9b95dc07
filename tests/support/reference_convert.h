// Both color conversions, worked out in double precision.

#pragma once

#include "convert/ze_image.h"
#include "tests/support/reference_picture.h"

namespace reference {

/// How the numbers of a frame mean colors; the values of ZecRender's arguments.
struct ColorDescription {
    int standard; ///< 0 BT.601, else BT.709
    int range;    ///< 1 full, else video
};

/// The RGB picture of a frame, before an 8-bit target clamps and rounds it. `nv21` tells which byte of a
/// chroma pair is V; chroma is interpolated between the pairs.
Picture yuvToRgb(const ZecImage& frame, int width, int height, ColorDescription description, bool nv21);

/// Levels of 0 to 255, neither clamped nor rounded.
struct Planes {
    std::vector<double> luma;   ///< rows of the picture's width
    std::vector<double> chroma; ///< rows of the width rounded up to even, half as many rounded up
};

/// The planes of a picture. Chroma is that of the left upper pixel of each four.
Planes rgbToYuv(const Picture& picture, ColorDescription description, bool nv21);

} // namespace reference
