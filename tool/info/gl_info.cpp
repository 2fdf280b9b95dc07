#include "tool/info/gl_info.h"

#include "tool/errors.h"
#include "tool/render/headless.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <EGL/egl.h>
#include <GLES2/gl2.h>

namespace ze::tool {
namespace {

// Advice for a machine where EGL finds no display; empty when the user follows it already.
std::string platformHint() {
    const char* const platform = std::getenv("EGL_PLATFORM");
    const bool isSurfaceless = platform && std::strcmp(platform, "surfaceless") == 0;
    return isSurfaceless ? "" : "; EGL_PLATFORM=surfaceless draws without a display";
}

// Throws a failure that names the EGL call unless `done`.
void require(bool done, const char* call) {
    if (done)
        return;
    char text[100];
    std::snprintf(text, sizeof text, "no EGL with OpenGL ES 2.0: %s failed (0x%x)", call,
                  static_cast<unsigned>(eglGetError()));
    throw Failure(ExitCode::noGl, text + platformHint());
}

// A context on a surface of one pixel, current as long as this object lives.
class ProbeContext {
public:
    ProbeContext() : m_display(eglGetDisplay(EGL_DEFAULT_DISPLAY)) {
        require(m_display != EGL_NO_DISPLAY, "eglGetDisplay");
        require(eglInitialize(m_display, nullptr, nullptr) == EGL_TRUE, "eglInitialize");
        constexpr EGLint kConfig[] = {EGL_RED_SIZE,
                                      8,
                                      EGL_GREEN_SIZE,
                                      8,
                                      EGL_BLUE_SIZE,
                                      8,
                                      EGL_ALPHA_SIZE,
                                      8,
                                      EGL_RENDERABLE_TYPE,
                                      EGL_OPENGL_ES2_BIT,
                                      EGL_SURFACE_TYPE,
                                      EGL_PBUFFER_BIT,
                                      EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        require(eglChooseConfig(m_display, kConfig, &config, 1, &count) == EGL_TRUE && count > 0,
                "eglChooseConfig");
        require(eglBindAPI(EGL_OPENGL_ES_API) == EGL_TRUE, "eglBindAPI");
        constexpr EGLint kContext[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
        m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, kContext);
        require(m_context != EGL_NO_CONTEXT, "eglCreateContext");
        constexpr EGLint kSurface[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
        m_surface = eglCreatePbufferSurface(m_display, config, kSurface);
        require(m_surface != EGL_NO_SURFACE, "eglCreatePbufferSurface");
        require(eglMakeCurrent(m_display, m_surface, m_surface, m_context) == EGL_TRUE, "eglMakeCurrent");
    }

    // When the constructor throws, the program ends, and the system frees what exists by then.
    ~ProbeContext() {
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroySurface(m_display, m_surface);
        eglDestroyContext(m_display, m_context);
    }

    ProbeContext(const ProbeContext&) = delete;
    ProbeContext& operator=(const ProbeContext&) = delete;

    std::string eglString(EGLint name) const { return text(eglQueryString(m_display, name)); }

    std::string glString(GLenum name) const { return text(reinterpret_cast<const char*>(glGetString(name))); }

private:
    static std::string text(const char* string) { return string ? string : ""; }

    EGLDisplay m_display;
    EGLContext m_context = EGL_NO_CONTEXT;
    EGLSurface m_surface = EGL_NO_SURFACE;
};

} // namespace

GlInfo queryGl() {
    avoidDeadDisplay();
    const ProbeContext context;
    GlInfo info = {context.eglString(EGL_VENDOR), context.eglString(EGL_VERSION), context.glString(GL_VENDOR),
                   context.glString(GL_RENDERER), context.glString(GL_VERSION)};
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &info.maxTextureSize);
    if (info.maxTextureSize <= 0)
        throw Failure(ExitCode::noGl, "no OpenGL ES behind EGL");
    return info;
}

} // namespace ze::tool
