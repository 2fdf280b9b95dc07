#include "bench/driver_probe.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

struct Probe {
    Splits splits = Splits::asDriverLikes;
    std::span<const Step> passes;
    FrameTimes times;
    Step step = Step::yuvToRgb; ///< Of the latest call.
    Clock::time_point counted;  ///< All time before this has been added to a step.

    void countTo(Step owner) {
        const Clock::time_point now = Clock::now();
        times[owner] += std::chrono::duration<double>(now - counted).count();
        counted = now;
    }
};
Probe g_probe;

/// The step of a call other than an upload, told by the number of draws so far.
Step stepByDraws() {
    const size_t draws = g_probe.times.draws;
    return draws < g_probe.passes.size() ? g_probe.passes[draws] : Step::readBack;
}

/// Exists for the duration of a call into the driver.
class DriverCall {
public:
    explicit DriverCall(Step step) {
        g_probe.countTo(Step::remainder);
        if (g_probe.splits == Splits::finished && step != g_probe.step) {
            glFinish();
            g_probe.countTo(g_probe.step);
        }
        g_probe.step = step;
    }
    ~DriverCall() { g_probe.countTo(g_probe.step); }
};

} // namespace

FrameTimes timeFrame(Splits splits, std::span<const Step> passes, const std::function<void()>& frame) {
    g_probe = {
        .splits = splits, .passes = passes, .times = {}, .step = Step::yuvToRgb, .counted = Clock::now()};
    frame();
    g_probe.countTo(Step::unpacking);
    g_probe.splits = Splits::asDriverLikes;
    for (double seconds : g_probe.times.steps)
        g_probe.times.whole += seconds;
    return g_probe.times;
}

// The linker turns the library's calls of `name` into calls of __wrap_`name`, and __real_`name` is the
// driver's function. CMakeLists.txt lists the same names; linking fails when the two lists differ.
#define ZE_WRAP(step, result, name, parameters, arguments)                                                   \
    decltype(name) __real_##name;                                                                            \
    decltype(name) __wrap_##name;                                                                            \
    result __wrap_##name parameters {                                                                        \
        const DriverCall call(step);                                                                         \
        return __real_##name arguments;                                                                      \
    }
#define ZE_TIMED(result, name, parameters, arguments)                                                        \
    ZE_WRAP(stepByDraws(), result, name, parameters, arguments)

// clang-format off
extern "C" {

ZE_TIMED(EGLDisplay, eglGetDisplay, (EGLNativeDisplayType type), (type))
ZE_TIMED(EGLContext, eglGetCurrentContext, (), ())
ZE_TIMED(EGLDisplay, eglGetCurrentDisplay, (), ())
ZE_TIMED(EGLSurface, eglGetCurrentSurface, (EGLint which), (which))
ZE_TIMED(EGLBoolean, eglMakeCurrent,
         (EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context),
         (display, draw, read, context))

ZE_TIMED(void, glActiveTexture, (GLenum unit), (unit))
ZE_TIMED(void, glBindFramebuffer, (GLenum target, GLuint framebuffer), (target, framebuffer))
ZE_TIMED(void, glBindTexture, (GLenum target, GLuint texture), (target, texture))
ZE_TIMED(void, glClear, (GLbitfield buffers), (buffers))
ZE_TIMED(void, glDisable, (GLenum capability), (capability))
ZE_TIMED(void, glDisableVertexAttribArray, (GLuint location), (location))
ZE_TIMED(void, glEnableVertexAttribArray, (GLuint location), (location))
ZE_TIMED(void, glFramebufferTexture2D,
         (GLenum target, GLenum attachment, GLenum textureTarget, GLuint texture, GLint level),
         (target, attachment, textureTarget, texture, level))
ZE_TIMED(GLenum, glGetError, (), ())
ZE_TIMED(void, glGetIntegerv, (GLenum name, GLint* value), (name, value))
ZE_TIMED(void, glPixelStorei, (GLenum name, GLint value), (name, value))
ZE_TIMED(void, glReadPixels,
         (GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels),
         (x, y, width, height, format, type, pixels))
ZE_TIMED(void, glTexParameteri, (GLenum target, GLenum name, GLint value), (target, name, value))
ZE_TIMED(void, glUniform1f, (GLint location, GLfloat value), (location, value))
ZE_TIMED(void, glUniform1fv, (GLint location, GLsizei count, const GLfloat* values),
         (location, count, values))
ZE_TIMED(void, glUniform2fv, (GLint location, GLsizei count, const GLfloat* values),
         (location, count, values))
ZE_TIMED(void, glUseProgram, (GLuint program), (program))
ZE_TIMED(void, glVertexAttribPointer,
         (GLuint location, GLint size, GLenum type, GLboolean normalized, GLsizei stride,
          const void* corners),
         (location, size, type, normalized, stride, corners))
ZE_TIMED(void, glViewport, (GLint x, GLint y, GLsizei width, GLsizei height), (x, y, width, height))

ZE_WRAP(Step::upload, void, glTexSubImage2D,
        (GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
         GLenum type, const void* pixels),
        (target, level, x, y, width, height, format, type, pixels))

decltype(glDrawArrays) __real_glDrawArrays, __wrap_glDrawArrays;
void __wrap_glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    const DriverCall call(stepByDraws());
    __real_glDrawArrays(mode, first, count);
    ++g_probe.times.draws;
}

}
// clang-format on
