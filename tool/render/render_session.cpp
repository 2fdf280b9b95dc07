#include "tool/render/render_session.h"

#include "tool/errors.h"
#include "tool/render/library_log.h"

#include <EGL/egl.h>

namespace ze::tool {

namespace {

// The library cannot free what has never met a context. Such handles stay reachable until the process ends.
void keepForever(const void* handle) {
    static auto* const s_kept = new std::vector<const void*>;
    s_kept->push_back(handle);
}

ZecEffect* make(const Effect& effect) {
    if (const auto* beauty = std::get_if<Beauty>(&effect)) {
        ZecEffect* handle = ZecCreateEffect(0);
        ZecSetBeautyParams(handle, beauty->smooth, beauty->whiten);
        return handle;
    }
    const auto& grading = std::get<Grading>(effect);
    ZecEffect* handle = ZecCreateEffect(1);
    ZecSetLutParams(handle, grading.path, grading.intensity);
    return handle;
}

} // namespace

// The library's own limits decide; the numbers here only tell what it will do.
bool isActive(const Effect& effect) {
    if (const auto* beauty = std::get_if<Beauty>(&effect))
        return double{beauty->smooth} > 0.001 || double{beauty->whiten} >= 0.001;
    return double{std::get<Grading>(effect).intensity} >= 0.001;
}

RenderSession::RenderSession(const EffectChain& effects) : m_core(ZecCreateRenderCore()) {
    // The library wants active effects alone, or inactive ones alone.
    for (const Effect& effect : effects)
        if (isActive(effect))
            m_effects.push_back(make(effect));
    if (m_effects.empty())
        m_effects.push_back(make(effects.front()));
}

RenderSession::~RenderSession() {
    startLibraryLog();
    for (ZecEffect* effect : m_effects)
        if (!ZecDestoryEffect(effect))
            keepForever(effect);
    if (!ZecDestroyRenderCore(m_core))
        keepForever(m_core);
    // The library's context is still current and goes for good once it is not.
    eglReleaseThread();
}

void RenderSession::render(YuvFrame& frame) {
    startLibraryLog();
    ZecImage image = frame.image();
    const YuvDescription& description = frame.description;
    const bool done = ZecRender(m_core, m_effects, &image, &image, static_cast<int>(description.order),
                                static_cast<int>(description.standard), static_cast<int>(description.range),
                                frame.width, frame.height, 0);
    const std::string reason = libraryReason();
    if (!done || !reason.empty())
        throw Failure(ExitCode::failed, reason.empty() ? "rendering failed" : reason);
}

} // namespace ze::tool
