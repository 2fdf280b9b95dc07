// Frame-buffer objects.

#pragma once

#include <GLES2/gl2.h>

namespace ze {

/// Makes a frame buffer with nothing attached. Returns its name and leaves it bound to GL_FRAMEBUFFER, or
/// logs "Failed to create fbo!" and returns 0. Call on the thread that has the context current.
GLuint createFramebuffer();

/// Deletes `*framebuffer` unless it is 0. The stored name stays as it is: its owner overwrites or discards
/// it. Call on the thread that has the context current.
void deleteFramebuffer(const GLuint* framebuffer);

} // namespace ze
