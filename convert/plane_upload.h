// Puts a plane of the host's frame into its texture, straight from host memory.

#pragma once

#include "gl/frame_size.h"

#include <GLES2/gl2.h>

namespace ze {

/// The row alignment that GL starts with, for uploads and read-backs alike.
inline constexpr GLint kDefaultRowAlignment = 4;

/// Copies one plane from `data` into `texture`, which already has this size and format. `pitch` is in bytes
/// from row to row. GL is told where rows start through the row alignment alone, so `pitch` has to be a row's
/// bytes rounded up to a multiple of 1, 2, 4 or 8: with any other the picture shears, without an error.
///
/// A `format` other than GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB and GL_RGBA is logged and nothing is done.
/// GL errors are logged. Leaves `texture` bound to the active unit with linear filters, and
/// GL_UNPACK_ALIGNMENT at 4. Call on the thread that has the context current.
void uploadPlane(const uint8_t* data, int32_t pitch, GLenum format, FrameSize size, GLuint texture);

} // namespace ze
