#include "gl/quad.h"

namespace ze {

void pointAttributes(std::span<const QuadAttribute> attributes, std::span<const GLfloat> corners) {
    const auto stride = static_cast<GLsizei>(corners.size_bytes() / kQuadCorners);
    for (const QuadAttribute& attribute : attributes)
        glVertexAttribPointer(static_cast<GLuint>(attribute.location), 2, GL_FLOAT, GL_FALSE, stride,
                              corners.data() + attribute.firstFloat);
}

void enableAttributes(std::span<const QuadAttribute> attributes) {
    for (const QuadAttribute& attribute : attributes)
        glEnableVertexAttribArray(static_cast<GLuint>(attribute.location));
}

void drawStrip() {
    glDrawArrays(GL_TRIANGLE_STRIP, 0, kQuadCorners);
}

void disableAttributes(std::span<const QuadAttribute> attributes) {
    for (const QuadAttribute& attribute : attributes)
        glDisableVertexAttribArray(static_cast<GLuint>(attribute.location));
}

} // namespace ze
