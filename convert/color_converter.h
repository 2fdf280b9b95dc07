// What the two conversion passes keep between frames: the plane textures, and the programs with the colors
// that their uniforms hold.

#pragma once

#include "convert/color_description.h"
#include "gl/frame_size.h"

#include <GLES2/gl2.h>

#include <optional>

namespace ze {

/// The program of the YUV to RGB pass.
struct YuvToRgbProgram {
    GLuint name = 0;
    GLint posAttr = -1;
    GLint texCoordYAttr = -1;
    GLint texCoordUVAttr = -1;
    GLint yuvOffset = -1;
    GLint matYuvToRgb = -1;
    std::optional<ColorDescription> loadedColor; ///< What the uniforms were set for.
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
    std::optional<ColorDescription> loadedColor; ///< What the uniforms were set for.
};

/// The color-conversion object of a render core. Made without any GL call. Use and destroy it on the thread
/// that has the core's context current.
struct ColorConverter {
    ColorConverter() = default;
    ColorConverter(const ColorConverter&) = delete;
    ColorConverter& operator=(const ColorConverter&) = delete;

    /// Deletes the YUV to RGB program and the three textures. The RGB to YUV program goes with the context.
    ~ColorConverter();

    FrameSize planeSize;      ///< Of the frames that the three textures were made for.
    GLuint lumaTexture = 0;   ///< GL_LUMINANCE, width × height.
    GLuint chromaTexture = 0; ///< GL_LUMINANCE_ALPHA, half the width × half the height, both rounded up.
    GLuint packedTexture = 0; ///< GL_RGBA, half the width rounded up × height; receives Y, U, Y, V.
    YuvToRgbProgram yuvToRgb;
    RgbToYuvProgram rgbToYuv;
};

/// Re-creates the three textures when the frame size differs from theirs or one of them is missing. False at
/// the first that cannot be made; its field is 0 then and the next call tries again.
bool ensurePlaneTextures(ColorConverter& converter, FrameSize size);

} // namespace ze
