// The library's offscreen EGL context, and snapshots of the context that the calling thread has current.
// EGL currency is per thread: every function acts on the calling thread's binding.

#pragma once

#include <EGL/egl.h>

#include <memory>

namespace ze {

/// An OpenGL ES 2.0 context on a 1 × 1 pbuffer of its own, or a snapshot of a thread's current context.
struct EglContextRecord {
    bool initialized = false;            ///< eglInitialize has succeeded on `display`; never cleared.
    EGLContext context = EGL_NO_CONTEXT; ///< The context, or none.
    EGLDisplay display = EGL_NO_DISPLAY; ///< The default display.
    EGLConfig config = nullptr;          ///< The chosen configuration; none in a snapshot.
    EGLSurface surface = EGL_NO_SURFACE; ///< The own pbuffer; in a snapshot the current draw surface.
};

/// Creates the context and its pbuffer in `record` and makes them current. False with the failing EGL call in
/// the log; what came before it stays in the record. A record that is `initialized` is left as it is, not
/// made current, and gives true, even when its creation failed further on: make such a record no second time.
bool createContext(EglContextRecord& record);

/// Makes the record's context current with its surface for drawing and reading; at once when it already is.
/// False without a message when there is no context or EGL refuses.
bool makeContextCurrent(const EglContextRecord& record);

/// Destroys the record's context and then its surface; EGL defers that for what is current on a thread until
/// it stops being current. The display is never terminated. Snapshots are treated alike: releasing one
/// destroys the context and surface of whoever had them current. Hosts are told so.
void releaseContext(EglContextRecord& record);

/// Releases a record and frees it.
struct ContextDeleter {
    void operator()(EglContextRecord* record) const;
};
using OwnedContext = std::unique_ptr<EglContextRecord, ContextDeleter>;

/// Records the calling thread's current context and draw surface on the default display, in `spare` where
/// there is one and otherwise in a new record. Null when no context is current, and, with a message, when
/// there is no display. The read surface is not recorded: making the snapshot current binds its draw surface
/// for both. To end a snapshot without destroying what it names, take its record out with `release()`.
OwnedContext snapshotCurrentContext(std::unique_ptr<EglContextRecord> spare = nullptr);

} // namespace ze
