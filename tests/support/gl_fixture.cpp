#include "tests/support/gl_fixture.h"

#include <cstdlib>
#include <string_view>
#include <utility>

using reference::Picture;

namespace {

bool isSet(const char* variable, std::string_view value) {
    const char* current = std::getenv(variable);
    return current && current == value;
}

} // namespace

void GlTest::SetUp() {
    const EGLint configAttributes[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_SURFACE_TYPE,
                                       EGL_PBUFFER_BIT, EGL_NONE};
    const EGLint contextAttributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    const EGLint surfaceAttributes[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    m_display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (!eglInitialize(m_display, nullptr, nullptr) ||
        !eglChooseConfig(m_display, configAttributes, &config, 1, &count) || count == 0)
        GTEST_SKIP() << "There is no EGL display with OpenGL ES 2.0 here.";
    eglBindAPI(EGL_OPENGL_ES_API);
    m_surface = eglCreatePbufferSurface(m_display, config, surfaceAttributes);
    m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, contextAttributes);
    if (!eglMakeCurrent(m_display, m_surface, m_surface, m_context))
        GTEST_SKIP() << "EGL gives no OpenGL ES 2.0 context here.";

    const std::string_view renderer(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    m_isPrecise = renderer.starts_with("llvmpipe") && isSet("GALLIUM_OVERRIDE_CPU_CAPS", "sse4.1") &&
                  isSet("GALLIVM_PERF", "no_aos_sampling");
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
}

void GlTest::TearDown() {
    releaseContext();
}

void GlTest::releaseContext() {
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(m_display, std::exchange(m_context, EGL_NO_CONTEXT));
    eglDestroySurface(m_display, std::exchange(m_surface, EGL_NO_SURFACE));
    eglReleaseThread();
}

GLuint GlTest::textureOf(const Picture& picture) {
    std::vector<uint8_t> bytes;
    for (const reference::Colour& pixel : picture.stored().pixels)
        for (double channel : pixel)
            bytes.push_back(uint8_t(std::lround(channel * 255)));
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, picture.width, picture.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 bytes.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

GLuint GlTest::targetTexture(int width, int height) {
    constexpr double kFill = 0x66 / 255.0;
    return textureOf(Picture(width, height, {kFill, kFill, kFill, kFill}));
}

std::vector<uint8_t> GlTest::contentOf(GLuint texture, int width, int height) {
    std::vector<uint8_t> bytes(4 * size_t(width) * size_t(height));
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    return bytes;
}

testing::AssertionResult agree(const std::vector<uint8_t>& actual, const std::vector<double>& expected,
                               int rowLength, Tolerance tolerance) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.size() << " levels, expected " << expected.size();
    const auto distance = [&](size_t i) { return std::abs(actual[i] - std::clamp(expected[i], 0.0, 255.0)); };
    size_t count = 0, worst = 0;
    for (size_t i = 0; i < actual.size(); ++i) {
        count += !(distance(i) <= tolerance.levels);
        if (distance(i) > distance(worst))
            worst = i;
    }
    if (double(count) <= tolerance.share * double(actual.size()))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << count << " of " << actual.size() << " levels are more than " << tolerance.levels
           << " off, the worst in row " << worst / size_t(rowLength) << ", place "
           << worst % size_t(rowLength) << ": " << int(actual[worst]) << ", expected " << expected[worst];
}

testing::AssertionResult agree(const std::vector<uint8_t>& actual, const Picture& expected,
                               Tolerance tolerance) {
    std::vector<double> levels;
    for (const reference::Colour& pixel : expected.pixels)
        for (double channel : pixel)
            levels.push_back(255 * channel);
    return agree(actual, levels, 4 * expected.width, tolerance);
}
