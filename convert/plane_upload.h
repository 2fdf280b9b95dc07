// Puts a plane of the host's frame into its texture, straight from host memory.

#pragma once

#include <GLES2/gl2.h>

#include <cstdint>

namespace ze {

/// Bytes of a packed row of `width` texels, rounded up to a multiple of 4. 0 for a `format` other than
/// GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB and GL_RGBA.
int64_t roundedRowSize(GLenum format, int32_t width);

/// The row alignment that GL starts with, for uploads and read-backs alike.
inline constexpr GLint kDefaultRowAlignment = 4;

/// The largest row alignment of GL, 8, 4, 2 or 1 bytes, that divides `pitch`.
GLint rowAlignment(int32_t pitch);

/// Copies one plane from `data` into `texture`, which already has this size and format.
/// `pitch` is in bytes from row to row; `width` and `height` are in texels. GL knows row starts by alignment
/// alone: padding beyond the row size rounded to 8 bytes is not skipped, and the picture shears.
/// A `format` that `roundedRowSize` does not know is logged and nothing is done. GL errors are logged.
/// Leaves `texture` bound to the active unit with linear filters, and GL_UNPACK_ALIGNMENT at 4.
/// Call on the thread that has the context current.
void uploadPlane(const uint8_t* data, int32_t pitch, GLenum format, int32_t width, int32_t height,
                 GLuint texture);

} // namespace ze
