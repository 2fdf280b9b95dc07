// The render core: the offscreen context and the resources that frames share.

#pragma once

#include "api/frame_description.h"
#include "api/ze_beauty_effect.h"
#include "convert/color_converter.h"
#include "gl/egl_context.h"

#include <GLES2/gl2.h>

#include <memory>

namespace ze {

/// Frees a staging record with the buffer in plane 0.
struct StagingDeleter {
    void operator()(ZecImage* staging) const;
};

} // namespace ze

/// Owns everything it points to and names. Release it with `ze::releaseRenderCore` before it is deleted: GL
/// objects go in the core's context, and before it.
struct ZecRenderCore {
    ze::FrameDescription frame; ///< The last rendered frame, for whose size the textures were made.
    bool configured = false;    ///< Textures and staging buffer exist for `frame`.
    std::unique_ptr<ZecImage, ze::StagingDeleter> staging{new ZecImage()}; ///< Plane 0: the packed read-back.
    ze::OwnedContext context;                      ///< Made by the first frame with an active effect.
    std::unique_ptr<ze::ColorConverter> converter; ///< Likewise.
    GLuint inputTexture = 0;                       ///< RGBA, receives the YUV to RGB result.
    GLuint outputTexture = 0;                      ///< RGBA, is converted back.
    GLuint scratchTexture = 0;                     ///< RGBA, between effects.
    GLuint framebuffer = 0;
    std::unique_ptr<ze::EglContextRecord> keptSnapshot; ///< See `ze::keepSnapshot`.
};

namespace ze {

/// Whether textures and staging buffer exist for frames of this size and format. The color description does
/// not matter: the same textures serve all. Nor does the frame buffer: one that could not be made is tried
/// again by the next rebuild, not by the next frame.
bool isConfiguredFor(const ZecRenderCore& core, const FrameDescription& frame);

/// Replaces the staging buffer and the three textures by ones of `size`, and makes the frame buffer if there
/// is none. False at once when the staging buffer or a texture cannot be made; what is missing then counts as
/// not configured. Call with the core's context current.
bool rebuildFrameResources(ZecRenderCore& core, FrameSize size);

/// Takes a snapshot (it may be null) whose context and surface are not to be released. The core keeps the
/// record for its next snapshot, so that there is never more than one.
void keepSnapshot(ZecRenderCore& core, OwnedContext snapshot);

/// Releases all that the core owns, except the record itself. A context that was current on the calling
/// thread is made current again and released with its surface, which EGL carries out once it stops being
/// current. False, with "There is no opengl context" and nothing released, when the core's context cannot be
/// made current or was never created.
bool releaseRenderCore(ZecRenderCore& core);

} // namespace ze
