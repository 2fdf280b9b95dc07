#include "tool/render/render_session.h"

#include "host/library_log.h"
#include "tool/errors.h"

namespace ze::tool {

RenderSession::RenderSession() : m_beautifier({}, zebeauty::takeLibraryError) {
    zebeauty::catchLibraryErrors(false);
}

void RenderSession::render(YuvFrame& frame, const zebeauty::Settings& settings) {
    const ZecImage image = frame.image();
    zebeauty::Frame view;
    view.planes = {image.planes[0], image.planes[1], image.pitches[0], image.pitches[1]};
    view.width = frame.width;
    view.height = frame.height;
    view.format = static_cast<zebeauty::PixelFormat>(frame.description.order);
    view.standard = static_cast<zebeauty::ColorStandard>(frame.description.standard);
    view.range = static_cast<zebeauty::ColorRange>(frame.description.range);
    render(view, settings);
}

void RenderSession::render(const zebeauty::Frame& frame, const zebeauty::Settings& settings) {
    m_beautifier.set(settings);
    if (const auto reason = m_beautifier.process(frame))
        throw Failure(ExitCode::failed, *reason);
}

} // namespace ze::tool
