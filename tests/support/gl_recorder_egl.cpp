// The doubles of EGL.

#include "tests/support/gl_recorder.h"

#include <utility>

namespace {

using EglObject = GlRecorder::EglObject;

EglObject g_display{"display"};
EglObject g_config{"config"};

EGLBoolean destroy(EGLContext handle) {
    auto* object = static_cast<EglObject*>(handle);
    return object && !std::exchange(object->isDestroyed, true) ? EGL_TRUE : EGL_FALSE;
}

EglObject* create(const RecordedCall& call, const char* label) {
    return call.isRefused ? nullptr : &call.gl.eglObjects.emplace_back(EglObject{label});
}

} // namespace

// clang-format off

EGLBoolean eglBindAPI(EGLenum api) { return !RecordedCall(__func__, Enum{api}).isRefused; }

EGLBoolean eglChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs, EGLint size,
                           EGLint* count) {
    const RecordedCall call(__func__, display, attributes, size);
    configs[0] = &g_config;
    *count = call.gl.configCount;
    return !call.isRefused;
}
EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                            const EGLint* attributes) {
    return create(RecordedCall(__func__, display, config, share, attributes), "coreContext");
}
EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig config, const EGLint* attributes) {
    return create(RecordedCall(__func__, display, config, attributes), "coreSurface");
}
EGLBoolean eglDestroyContext(EGLDisplay display, EGLContext context) {
    const RecordedCall call(__func__, display, context);
    return !call.isRefused && destroy(context);
}
EGLBoolean eglDestroySurface(EGLDisplay display, EGLSurface surface) {
    const RecordedCall call(__func__, display, surface);
    return !call.isRefused && destroy(surface);
}
EGLContext eglGetCurrentContext() {
    const RecordedCall call(__func__);
    return call.isRefused ? nullptr : call.gl.context;
}
EGLDisplay eglGetCurrentDisplay() {
    const RecordedCall call(__func__);
    return call.isRefused || !call.gl.context ? nullptr : &g_display;
}
EGLSurface eglGetCurrentSurface(EGLint which) {
    const RecordedCall call(__func__, Enum{which});
    return call.isRefused ? nullptr : which == EGL_DRAW ? call.gl.drawSurface : call.gl.readSurface;
}
EGLDisplay eglGetDisplay(EGLNativeDisplayType native) {
    const RecordedCall call(__func__, native == EGL_DEFAULT_DISPLAY ? "EGL_DEFAULT_DISPLAY" : "other");
    return call.isRefused ? EGL_NO_DISPLAY : &g_display;
}
EGLint eglGetError() { return std::exchange(RecordedCall(__func__).gl.eglError, EGL_SUCCESS); }
EGLBoolean eglInitialize(EGLDisplay display, EGLint*, EGLint*) {
    return !RecordedCall(__func__, display).isRefused;
}
EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context) {
    const RecordedCall call(__func__, display, draw, read, context);
    for (void* handle : {draw, read, context})
        if (call.isRefused || !handle || static_cast<EglObject*>(handle)->isDestroyed)
            return EGL_FALSE;
    call.gl.context = static_cast<EglObject*>(context);
    call.gl.drawSurface = static_cast<EglObject*>(draw);
    call.gl.readSurface = static_cast<EglObject*>(read);
    return EGL_TRUE;
}
EGLBoolean eglReleaseThread() {
    const RecordedCall call(__func__);
    if (call.isRefused)
        return EGL_FALSE;
    call.gl.context = nullptr;
    call.gl.drawSurface = nullptr;
    call.gl.readSurface = nullptr;
    call.gl.bound = {};
    call.gl.glError = GL_NO_ERROR;
    return EGL_TRUE;
}
