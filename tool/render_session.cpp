#include "tool/render_session.h"

#include "tool/errors.h"
#include "tool/library_log.h"

#include <EGL/egl.h>

namespace ze::tool {

namespace {

// The library cannot free what has never met a context. Such handles stay reachable until the process ends.
void keepForever(const void* handle) {
    static auto* const s_kept = new std::vector<const void*>;
    s_kept->push_back(handle);
}

} // namespace

RenderSession::RenderSession(float smooth, float whiten)
    : m_core(ZecCreateRenderCore()), m_beauty(ZecCreateEffect(0)) {
    ZecSetBeautyParams(m_beauty, smooth, whiten);
}

RenderSession::~RenderSession() {
    startLibraryLog();
    if (!ZecDestoryEffect(m_beauty))
        keepForever(m_beauty);
    if (!ZecDestroyRenderCore(m_core))
        keepForever(m_core);
    // The library's context is still current and goes for good once it is not.
    eglReleaseThread();
}

void RenderSession::render(YuvFrame& frame) {
    startLibraryLog();
    ZecImage image = frame.image();
    const YuvDescription& description = frame.description;
    const bool done = ZecRender(m_core, {m_beauty}, &image, &image, static_cast<int>(description.order),
                                static_cast<int>(description.standard), static_cast<int>(description.range),
                                frame.width, frame.height, 0);
    const std::string reason = libraryReason();
    if (!done || !reason.empty())
        throw Failure(ExitCode::failed, reason.empty() ? "rendering failed" : reason);
}

} // namespace ze::tool
