#include "convert/color_converter.h"

#include "gl/texture.h"

#include <initializer_list>

namespace ze {
namespace {

void deletePlaneTextures(ColorConverter& converter) {
    for (GLuint* texture : {&converter.lumaTexture, &converter.chromaTexture, &converter.packedTexture})
        discardTexture(*texture);
}

} // namespace

bool ensurePlaneTextures(ColorConverter& converter, uint32_t width, uint32_t height) {
    const bool complete = converter.lumaTexture && converter.chromaTexture && converter.packedTexture;
    if (complete && converter.planeWidth == width && converter.planeHeight == height)
        return true;

    deletePlaneTextures(converter);
    const auto fullWidth = GLsizei(width);
    const auto fullHeight = GLsizei(height);
    const auto halfWidth = GLsizei(halfUp(width));
    const auto halfHeight = GLsizei(halfUp(height));
    if ((converter.lumaTexture = createTexture(fullWidth, fullHeight, GL_LUMINANCE)) == 0)
        return false;
    if ((converter.chromaTexture = createTexture(halfWidth, halfHeight, GL_LUMINANCE_ALPHA)) == 0)
        return false;
    if ((converter.packedTexture = createTexture(halfWidth, fullHeight, GL_RGBA)) == 0)
        return false;
    converter.planeWidth = width;
    converter.planeHeight = height;
    return true;
}

void releaseColorConverter(ColorConverter& converter) {
    if (converter.yuvToRgb.name != 0) {
        glDeleteProgram(converter.yuvToRgb.name);
        converter.yuvToRgb.name = 0;
    }
    deletePlaneTextures(converter);
    // rgbToYuv.name is left to go with the GL context.
}

} // namespace ze
