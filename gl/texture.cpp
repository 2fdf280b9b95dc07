#include "gl/texture.h"

#include "gl/error.h"

namespace ze {

GLuint createTexture(FrameSize size, GLenum format) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    if (texture == 0) {
        checkGlError();
        return 0;
    }
    glBindTexture(GL_TEXTURE_2D, texture);
    checkGlError();
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), size.width, size.height, 0, format,
                 GL_UNSIGNED_BYTE, nullptr);
    checkGlError();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

void deleteTexture(const GLuint* texture) {
    if (*texture != 0)
        glDeleteTextures(1, texture);
}

} // namespace ze
