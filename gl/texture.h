// 2D textures.

#pragma once

#include "gl/frame_size.h"

#include <GLES2/gl2.h>

namespace ze {

/// Makes a texture of `size` without content. `format` is both the internal and the pixel
/// format, with one unsigned byte per component. Wraps at its edges; filters are the user's to set.
/// Returns its name and leaves it bound to the active unit, or returns 0 when there is no name to be had. GL
/// errors, such as a size above GL_MAX_TEXTURE_SIZE, are logged and do not undo the texture.
/// Call on the thread that has the context current.
GLuint createTexture(FrameSize size, GLenum format);

/// Deletes `*texture` unless it is 0. The stored name stays as it is: its owner overwrites or discards it.
/// Call on the thread that has the context current.
void deleteTexture(const GLuint* texture);

/// Deletes `texture` unless it is 0 and forgets the name, so that it cannot be used again.
inline void discardTexture(GLuint& texture) {
    deleteTexture(&texture);
    texture = 0;
}

} // namespace ze
