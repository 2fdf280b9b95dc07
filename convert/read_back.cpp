#include "convert/read_back.h"

#include "convert/plane_upload.h"
#include "convert/rgb_to_yuv.h"
#include "gl/error.h"
#include "gl/target.h"
#include "log/log_stream.h"

namespace ze {
namespace {

GLint packAlignment(int32_t pitch) {
    if (pitch % 4 == 0) // multiples of 8 too: rows of whole texels need no more
        return kDefaultRowAlignment;
    return pitch % 2 == 0 ? 2 : 1;
}

} // namespace

bool convertAndReadBack(ColorConverter& c, GLuint sourceTexture, ZecImage& staging, ColorDescription color,
                        FrameSize size) {
    if (!ensurePlaneTextures(c, size))
        return false;
    if (!rgbToYuv(c, sourceTexture, color))
        return false;

    const GLint alignment = packAlignment(staging.pitches[0]);
    if (alignment != kDefaultRowAlignment) {
        glPixelStorei(GL_PACK_ALIGNMENT, alignment);
        checkGlError();
    }

    glBindTexture(GL_TEXTURE_2D, c.packedTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    clampBoundTexture();
    attachTarget(c.packedTexture);

    glReadPixels(0, 0, halfUp(size.width), size.height, GL_RGBA, GL_UNSIGNED_BYTE, staging.planes[0]);
    if (glGetError() != GL_NO_ERROR) {
        ZeLogError() << "glReadPixels() failed!";
        return false; // the target stays attached and the alignment as it is
    }

    detachTarget();
    if (alignment != kDefaultRowAlignment) {
        glPixelStorei(GL_PACK_ALIGNMENT, kDefaultRowAlignment);
        checkGlError();
    }
    return true;
}

} // namespace ze
