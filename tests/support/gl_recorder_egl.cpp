// The doubles of EGL. A context or surface that is destroyed while current stays current; its handle is
// refused from then on.

#include "tests/support/gl_recorder_call.h"

#include <algorithm>
#include <utility>

namespace {

int g_display = 0;
int g_config = 0;

/// The record behind `handle`, or null and `error` when there is none or it is destroyed.
template <class Record>
Record* find(const RecordedCall& call, std::list<Record>& records, void* handle, EGLint error) {
    const auto found = std::ranges::find_if(
        records, [handle](const Record& record) { return &record == handle && !record.destroyed; });
    if (found != records.end())
        return &*found;
    call.leaveError(error);
    return nullptr;
}

template <class Record>
EGLBoolean destroy(Record* record) {
    if (record)
        record->destroyed = true;
    return record ? EGL_TRUE : EGL_FALSE;
}

} // namespace

EGLBoolean eglBindAPI(EGLenum api) {
    const RecordedCall call("eglBindAPI", Enum{api});
    return EGL_TRUE;
}

EGLBoolean eglChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs, EGLint size,
                           EGLint* count) {
    const RecordedCall call("eglChooseConfig", EglHandle{display}, EglAttributes{attributes}, size);
    if (call.isRefused)
        return EGL_FALSE;
    *count = call.recorder.configCount;
    if (*count > 0)
        configs[0] = &g_config;
    return EGL_TRUE;
}

EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                            const EGLint* attributes) {
    const RecordedCall call("eglCreateContext", EglHandle{display},
                            config == &g_config ? "config" : "no config", EglHandle{share},
                            EglAttributes{attributes});
    if (call.isRefused)
        return EGL_NO_CONTEXT;
    call.driver.contexts.emplace_back().label = "coreContext";
    return &call.driver.contexts.back();
}

EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig config, const EGLint* attributes) {
    const RecordedCall call("eglCreatePbufferSurface", EglHandle{display},
                            config == &g_config ? "config" : "no config", EglAttributes{attributes});
    if (call.isRefused)
        return EGL_NO_SURFACE;
    call.driver.surfaces.emplace_back().label = "coreSurface";
    return &call.driver.surfaces.back();
}

EGLBoolean eglDestroyContext(EGLDisplay display, EGLContext context) {
    const RecordedCall call("eglDestroyContext", EglHandle{display}, EglHandle{context});
    return destroy(find(call, call.driver.contexts, context, EGL_BAD_CONTEXT));
}

EGLBoolean eglDestroySurface(EGLDisplay display, EGLSurface surface) {
    const RecordedCall call("eglDestroySurface", EglHandle{display}, EglHandle{surface});
    return destroy(find(call, call.driver.surfaces, surface, EGL_BAD_SURFACE));
}

EGLContext eglGetCurrentContext() {
    const RecordedCall call("eglGetCurrentContext");
    return call.current.context;
}

EGLDisplay eglGetCurrentDisplay() {
    const RecordedCall call("eglGetCurrentDisplay");
    return call.current.context ? &g_display : EGL_NO_DISPLAY;
}

EGLSurface eglGetCurrentSurface(EGLint which) {
    const RecordedCall call("eglGetCurrentSurface", Enum{GLenum(which)});
    return which == EGL_DRAW ? call.current.draw : call.current.read;
}

EGLDisplay eglGetDisplay(EGLNativeDisplayType native) {
    const RecordedCall call("eglGetDisplay", native == EGL_DEFAULT_DISPLAY ? "EGL_DEFAULT_DISPLAY" : "other");
    return call.isRefused ? EGL_NO_DISPLAY : &g_display;
}

EGLint eglGetError() {
    const RecordedCall call("eglGetError");
    return std::exchange(call.driver.eglError, EGL_SUCCESS);
}

EGLBoolean eglInitialize(EGLDisplay display, EGLint* /*major*/, EGLint* /*minor*/) {
    const RecordedCall call("eglInitialize", EglHandle{display});
    return call.isRefused ? EGL_FALSE : EGL_TRUE;
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context) {
    const RecordedCall call("eglMakeCurrent", EglHandle{display}, EglHandle{draw}, EglHandle{read},
                            EglHandle{context});
    if (call.isRefused)
        return EGL_FALSE;
    const EglCurrent next = {find(call, call.driver.contexts, context, EGL_BAD_CONTEXT),
                             find(call, call.driver.surfaces, draw, EGL_BAD_SURFACE),
                             find(call, call.driver.surfaces, read, EGL_BAD_SURFACE)};
    if (!next.context || !next.draw || !next.read)
        return EGL_FALSE;
    for (const auto& [thread, other] : call.driver.current)
        if (other.context == next.context && &other != &call.current) {
            call.leaveError(EGL_BAD_ACCESS);
            return EGL_FALSE;
        }
    call.current = next;
    return EGL_TRUE;
}
