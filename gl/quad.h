// The full-screen quad that every pass draws: four corners as a triangle strip, from client memory.
//
//     corner            position   texture coordinate
//     0  top left       (-1,  1)   (0, 1)
//     1  bottom left    (-1, -1)   (0, 0)
//     2  top right      ( 1,  1)   (1, 1)
//     3  bottom right   ( 1, -1)   (1, 0)
//
// Row 0 of a picture lies at texture coordinate 0 and is drawn at y = -1, which is row 0 of the target: no
// pass flips the picture.

#pragma once

#include <GLES2/gl2.h>

#include <array>
#include <span>

namespace ze {

inline constexpr int kQuadCorners = 4;

/// Four corners of x, y, u, v.
using QuadCorners = std::array<GLfloat, kQuadCorners * 4>;

/// Four corners of x, y, u, v and a second coordinate pair.
using TwoTextureQuadCorners = std::array<GLfloat, kQuadCorners * 6>;

// clang-format off
/// Shows the texture from u = 0 to `uMax`.
constexpr QuadCorners quadCorners(GLfloat uMax = 1) {
    return {-1,  1, 0,    1,
            -1, -1, 0,    0,
             1,  1, uMax, 1,
             1, -1, uMax, 0};
}

/// Shows the whole first texture, and the second one from u = 0 to `uMax` and from v = `vLow` to 1.
constexpr TwoTextureQuadCorners twoTextureQuadCorners(GLfloat uMax = 1, GLfloat vLow = 0) {
    return {-1,  1, 0, 1, 0,    1,
            -1, -1, 0, 0, 0,    vLow,
             1,  1, 1, 1, uMax, 1,
             1, -1, 1, 0, uMax, vLow};
}
// clang-format on

/// A vertex attribute of two floats that starts at float `firstFloat` of each corner.
struct QuadAttribute {
    GLint location;
    int firstFloat;
};

/// Points `attributes` into `corners`, which has to live until the draw. No vertex buffer may be bound.
void pointAttributes(std::span<const QuadAttribute> attributes, std::span<const GLfloat> corners);
void enableAttributes(std::span<const QuadAttribute> attributes);
void drawStrip();
void disableAttributes(std::span<const QuadAttribute> attributes);

} // namespace ze
