// The effects of the library on photos.

#pragma once

#include "tool/lut/temporary_lut.h"
#include "tool/pictures/photo.h"
#include "tool/render/render_session.h"

#include <optional>

namespace ze::tool {

/// What becomes of the detail that a camera frame, 8-bit 4:2:0, cannot hold.
enum class Detail {
    photo, ///< It stays: the photo gets what the effects change in its frame, and nothing else.
    frame, ///< It goes: the photo becomes exactly what a camera frame of it becomes.
};

/// A photo on its way through the library.
struct PhotoFrames {
    Photo before;
    std::optional<YuvFrame> frame;   ///< None where nothing is to be done.
    std::optional<YuvFrame> neutral; ///< For `Detail::photo`: the frame that the effects leave alone.
};

/// Applies effects to photos, one after the other. `prepare` and `finish` may run on any threads, `render` on
/// one.
class PhotoEffect {
public:
    PhotoEffect(const zebeauty::Settings& settings, YuvDescription description, Detail detail);

    /// Other effects for the photos that are prepared from here on.
    void set(const zebeauty::Settings& settings);

    /// Warns on standard error, naming `file`, where 16 bits become the 8 of a frame.
    PhotoFrames prepare(const std::string& file, const Photo& photo) const;

    /// Draws. Throws `Failure`: `failed` when the library fails or the photo is larger than the GPU can take,
    /// `noGl` when there is no GPU.
    void render(PhotoFrames& frames);

    /// The photo with its effects.
    static Photo finish(const PhotoFrames& frames);

private:
    zebeauty::Settings m_settings;
    YuvDescription m_description;
    Detail m_detail;
    TemporaryLut m_identity; ///< For neutral frames.
    RenderSession m_session;
};

} // namespace ze::tool
