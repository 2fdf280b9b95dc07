#include "convert/color_converter.h"

#include "gl/texture.h"

namespace ze {
namespace {

void deletePlaneTextures(ColorConverter& converter) {
    discardTexture(converter.lumaTexture);
    discardTexture(converter.chromaTexture);
    discardTexture(converter.packedTexture);
}

bool createPlaneTexture(GLuint& texture, FrameSize size, GLenum format) {
    texture = createTexture(size, format);
    return texture != 0;
}

} // namespace

ColorConverter::~ColorConverter() {
    if (yuvToRgb.name != 0)
        glDeleteProgram(yuvToRgb.name);
    deletePlaneTextures(*this);
    // rgbToYuv.name is left to go with the GL context.
}

bool ensurePlaneTextures(ColorConverter& converter, FrameSize size) {
    const bool isComplete = converter.lumaTexture && converter.chromaTexture && converter.packedTexture;
    if (isComplete && converter.planeSize == size)
        return true;

    deletePlaneTextures(converter);
    const FrameSize chromaSize = {halfUp(size.width), halfUp(size.height)};
    const FrameSize packedSize = {halfUp(size.width), size.height};
    if (!createPlaneTexture(converter.lumaTexture, size, GL_LUMINANCE) ||
        !createPlaneTexture(converter.chromaTexture, chromaSize, GL_LUMINANCE_ALPHA) ||
        !createPlaneTexture(converter.packedTexture, packedSize, GL_RGBA))
        return false;
    converter.planeSize = size;
    return true;
}

} // namespace ze
