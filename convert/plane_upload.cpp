#include "convert/plane_upload.h"

#include "gl/error.h"
#include "log/log_stream.h"

namespace ze {
namespace {

int componentCount(GLenum format) {
    switch (format) {
    case GL_LUMINANCE:
        return 1;
    case GL_LUMINANCE_ALPHA:
        return 2;
    case GL_RGB:
        return 3;
    case GL_RGBA:
        return 4;
    default:
        return 0;
    }
}

/// The largest row alignment of GL, 8, 4, 2 or 1 bytes, that divides `pitch`.
GLint rowAlignment(int32_t pitch) {
    if (pitch % 8 == 0)
        return 8;
    if (pitch % 4 == 0)
        return 4;
    return pitch % 2 == 0 ? 2 : 1;
}

} // namespace

void uploadPlane(const uint8_t* data, int32_t pitch, GLenum format, FrameSize size, GLuint texture) {
    const int components = componentCount(format);
    if (components == 0) {
        ZeLogError() << "Invalid GL image format!";
        return;
    }

    const int32_t rowBytes = components * size.width;
    const bool changesAlignment = (rowBytes + 3) / 4 * 4 != pitch;
    if (changesAlignment) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, rowAlignment(pitch));
        checkGlError();
    }

    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    checkGlError();

    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width, size.height, format, GL_UNSIGNED_BYTE, data);
    const GLenum error = glGetError();
    if (error != GL_NO_ERROR) {
        // The word "errno" stands for the GL error here.
        ZeLogError() << "glTexSubImage2D() failed! errno=" << error << ", format=" << format
                     << ", width=" << size.width << ", height=" << size.height;
    }

    if (changesAlignment) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, kDefaultRowAlignment);
        checkGlError();
    }
}

} // namespace ze
