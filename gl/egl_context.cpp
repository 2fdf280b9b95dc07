#include "gl/egl_context.h"

#include "log/log_stream.h"

namespace ze {
namespace {

// clang-format off
constexpr EGLint kConfigAttributes[] = {
    EGL_RED_SIZE,        8,
    EGL_GREEN_SIZE,      8,
    EGL_BLUE_SIZE,       8,
    EGL_ALPHA_SIZE,      8,
    EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT,
    EGL_SURFACE_TYPE,    EGL_PBUFFER_BIT,
    EGL_NONE,
};
constexpr EGLint kContextAttributes[] = {
    EGL_CONTEXT_CLIENT_VERSION, 2,
    EGL_NONE,
};
constexpr EGLint kSurfaceAttributes[] = {
    EGL_WIDTH,  1,
    EGL_HEIGHT, 1,
    EGL_NONE,
};
// clang-format on

/// The default display, or EGL_NO_DISPLAY with a message.
EGLDisplay defaultDisplay() {
    EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (display == EGL_NO_DISPLAY)
        ZeLogErrorf({}, "eglGetDisplay() failed, errno=0x%x", static_cast<unsigned>(eglGetError()));
    return display;
}

} // namespace

bool createContext(EglContextRecord& record) {
    if (record.initialized)
        return true;

    record.display = defaultDisplay();
    if (record.display == EGL_NO_DISPLAY)
        return false;

    EGLint major = 0;
    EGLint minor = 0;
    record.initialized = eglInitialize(record.display, &major, &minor) == EGL_TRUE;
    if (!record.initialized) {
        ZeLogErrorf({}, "eglInitialize failed: %x", static_cast<unsigned>(eglGetError()));
        return false;
    }

    EGLint configCount = 0;
    if (eglChooseConfig(record.display, kConfigAttributes, &record.config, 1, &configCount) != EGL_TRUE) {
        ZeLogErrorf({}, "eglChooseConfig() failed, errno=0x%x", static_cast<unsigned>(eglGetError()));
        return false;
    }
    if (configCount == 0) {
        ZeLogErrorf({}, "EGL configuration is not available!");
        return false;
    }

    eglBindAPI(EGL_OPENGL_ES_API);
    record.context = eglCreateContext(record.display, record.config, EGL_NO_CONTEXT, kContextAttributes);
    if (record.context == EGL_NO_CONTEXT) {
        ZeLogErrorf({}, "eglCreateContext() failed, errno=0x%x", static_cast<unsigned>(eglGetError()));
        return false;
    }

    record.surface = eglCreatePbufferSurface(record.display, record.config, kSurfaceAttributes);
    if (record.surface == EGL_NO_SURFACE) {
        ZeLogErrorf({}, "eglCreatePbufferSurface() failed, errno=0x%x", static_cast<unsigned>(eglGetError()));
        eglDestroyContext(record.display, record.context);
        record.context = EGL_NO_CONTEXT;
        return false;
    }

    return eglMakeCurrent(record.display, record.surface, record.surface, record.context) == EGL_TRUE;
}

bool makeContextCurrent(const EglContextRecord& record) {
    if (record.context == EGL_NO_CONTEXT)
        return false;
    const bool isCurrent =
        eglGetCurrentContext() == record.context && eglGetCurrentDisplay() == record.display &&
        eglGetCurrentSurface(EGL_DRAW) == record.surface && eglGetCurrentSurface(EGL_READ) == record.surface;
    if (isCurrent)
        return true;
    return eglMakeCurrent(record.display, record.surface, record.surface, record.context) == EGL_TRUE;
}

OwnedContext snapshotCurrentContext(std::unique_ptr<EglContextRecord> spare) {
    EGLDisplay display = defaultDisplay();
    if (display == EGL_NO_DISPLAY)
        return nullptr;
    EGLContext context = eglGetCurrentContext();
    if (context == EGL_NO_CONTEXT)
        return nullptr;
    OwnedContext snapshot(spare ? spare.release() : new EglContextRecord);
    *snapshot = {.context = context, .display = display, .surface = eglGetCurrentSurface(EGL_DRAW)};
    return snapshot;
}

void releaseContext(EglContextRecord& record) {
    if (record.context != EGL_NO_CONTEXT) {
        eglDestroyContext(record.display, record.context);
        record.context = EGL_NO_CONTEXT;
    }
    if (record.surface != EGL_NO_SURFACE) {
        eglDestroySurface(record.display, record.surface);
        record.surface = EGL_NO_SURFACE;
    }
}

void ContextDeleter::operator()(EglContextRecord* record) const {
    releaseContext(*record);
    delete record;
}

} // namespace ze
