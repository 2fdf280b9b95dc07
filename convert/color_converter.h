// What the two conversion passes keep between frames: the plane textures, the programs and their uniform
// caches.

#pragma once

#include "convert/half_up.h"

#include <GLES2/gl2.h>

#include <cstdint>

namespace ze {

/// The program of the YUV to RGB pass.
struct YuvToRgbProgram {
    GLuint name = 0;
    GLint posAttr = -1;
    GLint texCoordYAttr = -1;
    GLint texCoordUVAttr = -1;
    GLint yuvOffset = -1;
    GLint matYuvToRgb = -1;
};

/// The program of the RGB to YUV pass.
struct RgbToYuvProgram {
    GLuint name = 0;
    GLint posAttr = -1;
    GLint texCoordAttr = -1;
    GLint coefY = -1;
    GLint coefU = -1;
    GLint coefV = -1;
    GLint sPerHalfTexel = -1;
};

/// The color-conversion object of a render core. Made without any GL call. Use it on the thread that has the
/// core's context current.
struct ColorConverter {
    uint32_t planeWidth = 0; ///< Frame size in pixels that the three textures were made for.
    uint32_t planeHeight = 0;
    int32_t yuvToRgbStandard = -1; ///< The color description whose uniforms the YUV to RGB program holds.
    int32_t yuvToRgbRange = -1;
    int32_t rgbToYuvStandard = -1; ///< The same for the RGB to YUV program.
    int32_t rgbToYuvRange = -1;
    GLuint lumaTexture = 0;   ///< GL_LUMINANCE, width × height.
    GLuint chromaTexture = 0; ///< GL_LUMINANCE_ALPHA, half the width × half the height, both rounded up.
    GLuint packedTexture = 0; ///< GL_RGBA, half the width rounded up × height; receives Y, U, Y, V.
    YuvToRgbProgram yuvToRgb;
    RgbToYuvProgram rgbToYuv;
};

/// Re-creates the three textures when the frame size differs from theirs or one of them is missing. False at
/// the first that cannot be made; its field is 0 then and the next call tries again.
bool ensurePlaneTextures(ColorConverter& converter, uint32_t width, uint32_t height);

/// Deletes the YUV to RGB program and the three textures. The RGB to YUV program goes with the GL context.
void releaseColorConverter(ColorConverter& converter);

} // namespace ze
