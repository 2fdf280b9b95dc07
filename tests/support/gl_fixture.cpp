#include "tests/support/gl_fixture.h"

#include "gl/framebuffer.h"
#include "gl/texture.h"

#include <cstdlib>
#include <string_view>

using reference::Picture;

void GlTest::SetUp() {
    if (!ze::createContext(m_context))
        GTEST_SKIP() << "There is no OpenGL ES 2.0 here.";
    const std::string_view renderer(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    m_isAngle = renderer.starts_with("ANGLE");
    m_isPrecise = m_isAngle || (renderer.starts_with("llvmpipe") && std::getenv("GALLIVM_PERF") &&
                                std::getenv("GALLIUM_OVERRIDE_CPU_CAPS"));
    ze::createFramebuffer(); // bound from here on
}

void GlTest::releaseContext() {
    eglMakeCurrent(m_context.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    ze::releaseContext(m_context);
    eglReleaseThread();
}

GLuint GlTest::textureOf(const Picture& picture) {
    std::vector<uint8_t> bytes;
    for (double level : picture.stored().levels())
        bytes.push_back(static_cast<uint8_t>(std::lround(level)));
    const GLuint texture = ze::createTexture({picture.width, picture.height}, GL_RGBA);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, picture.width, picture.height, GL_RGBA, GL_UNSIGNED_BYTE,
                    bytes.data());
    return texture;
}

GLuint GlTest::targetTexture(int width, int height) {
    constexpr double kFill = 0x66 / 255.0;
    return textureOf(Picture(width, height, {kFill, kFill, kFill, kFill}));
}

std::vector<uint8_t> GlTest::contentOf(GLuint texture, int width, int height) {
    std::vector<uint8_t> bytes(static_cast<size_t>(4 * width * height));
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    return bytes;
}

testing::AssertionResult agree(const std::vector<uint8_t>& actual, const std::vector<double>& expected,
                               Tolerance tolerance) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.size() << " levels, expected " << expected.size();
    size_t last = 0;
    double count = 0, largest = 0;
    for (size_t i = 0; i < actual.size(); ++i) {
        const double distance = std::abs(actual[i] - std::clamp(expected[i], 0.0, 255.0));
        largest = std::max(largest, distance);
        if (distance <= tolerance.levels)
            continue;
        ++count;
        last = i;
    }
    if (count <= tolerance.share * static_cast<double>(actual.size()))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << count << " of " << actual.size() << " levels are off by up to "
                                       << largest << ", the last at " << last;
}
