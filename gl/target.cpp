#include "gl/target.h"

#include "gl/error.h"

namespace ze {

void bindWithFilter(GLuint texture, GLint filter) {
    glBindTexture(GL_TEXTURE_2D, texture);
    checkGlError();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

void clampBoundTexture() {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void attachTarget(GLuint texture) {
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
}

void attachAndClear(GLuint texture) {
    bindWithFilter(texture, GL_NEAREST);
    attachTarget(texture);
    checkGlError();
    glClear(GL_COLOR_BUFFER_BIT);
}

void detachTarget() {
    attachTarget(0);
}

} // namespace ze
