#include "tool/render/photo_effect.h"

#include "tool/errors.h"
#include "tool/render/headless.h"
#include "tool/render/texture_limit.h"

namespace ze::tool {
namespace {

// A grading that changes nothing, mixed in so weakly that rounding takes away whatever else it might do: what
// is left are the library's conversions. Smoothing of a strength like this leaves the same, in four times the
// time.
zebeauty::Settings neutralSettings(const TemporaryLut& identity) {
    zebeauty::Settings settings;
    settings.table = identity.path();
    settings.intensity = 0.001f;
    return settings;
}

} // namespace

PhotoEffect::PhotoEffect(const zebeauty::Settings& settings, YuvDescription description, Detail detail)
    : m_settings(settings), m_description(description), m_detail(detail),
      m_identity(identityTable(evenLevels(2))) {
    if (settings.isActive())
        avoidDeadDisplay(); // while a batch has no threads yet
}

void PhotoEffect::set(const zebeauty::Settings& settings) {
    m_settings = settings;
}

PhotoFrames PhotoEffect::prepare(const std::string& file, const Photo& photo) const {
    if (isDeep(photo) && m_detail == Detail::frame)
        printError("warning: " + file + ": has 16 bits a channel, of which a camera frame keeps 8");
    PhotoFrames frames = {photo, {}, {}};
    if (!m_settings.isActive() && m_detail == Detail::photo)
        return frames;
    frames.frame = yuvFromPicture(pixelsOf(photo), m_description);
    if (m_detail == Detail::photo)
        frames.neutral = frames.frame;
    return frames;
}

void PhotoEffect::render(PhotoFrames& frames) {
    if (!frames.frame || !m_settings.isActive())
        return;
    checkTextureSize(frames.frame->width, frames.frame->height, "pixels");
    if (frames.neutral)
        m_session.render(*frames.neutral, neutralSettings(m_identity));
    m_session.render(*frames.frame, m_settings);
}

Photo PhotoEffect::finish(const PhotoFrames& frames) {
    if (!frames.frame)
        return frames.before;
    const Picture after = pictureFromYuv(*frames.frame);
    return frames.neutral ? withChange(frames.before, pictureFromYuv(*frames.neutral), after)
                          : withPixels(frames.before, after);
}

} // namespace ze::tool
