#include "gl/framebuffer.h"

#include "gl/error.h"
#include "log/log_stream.h"

namespace ze {

GLuint createFramebuffer() {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    if (framebuffer == 0) {
        ZeLogError() << "Failed to create fbo!";
        return 0;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    checkGlError();
    return framebuffer;
}

void deleteFramebuffer(const GLuint* framebuffer) {
    if (*framebuffer != 0)
        glDeleteFramebuffers(1, framebuffer);
}

} // namespace ze
