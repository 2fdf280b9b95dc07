// The render core: the offscreen context and the resources that frames share.

#pragma once

#include "api/ze_beauty_effect.h"

#include <GLES2/gl2.h>

#include <cstdint>

namespace ze {

struct ColorConverter;
struct EglContextRecord;

} // namespace ze

/// Owns everything it points to and names. The first six fields describe the last rendered frame; `extra` is
/// recorded and not read.
struct ZecRenderCore {
    int32_t pixelFormat = -1; ///< 0 NV12, 1 NV21.
    int32_t colorStandard = -1;
    int32_t colorRange = -1;
    int32_t width = 0; ///< Pixels; the size that the textures were made for.
    int32_t height = 0;
    int32_t extra = 0;
    bool configured = false;                 ///< Textures and staging buffer exist for `width` × `height`.
    ZecImage* staging = new ZecImage();      ///< Plane 0 receives the packed read-back, pitch 0 apart.
    ze::EglContextRecord* context = nullptr; ///< Made by the first frame with an active effect.
    ze::ColorConverter* converter = nullptr; ///< Likewise.
    GLuint inputTexture = 0;                 ///< RGBA, receives the YUV to RGB result.
    GLuint outputTexture = 0;                ///< RGBA, is converted back.
    GLuint scratchTexture = 0;               ///< RGBA, between effects.
    GLuint framebuffer = 0;
};

namespace ze {

/// Whether textures and staging buffer exist for frames of this size and format. The color description does
/// not matter: the same textures serve all.
bool isConfiguredFor(const ZecRenderCore& core, int pixelFormat, int width, int height);

/// Replaces the staging buffer and the three textures by ones for `width` × `height`, and makes the frame
/// buffer if there is none. False at once when the staging buffer or a texture cannot be made. Whatever is
/// missing afterwards, a frame buffer included, counts as not configured. Call with the core's context
/// current.
bool rebuildFrameResources(ZecRenderCore& core, int width, int height);

/// Releases all that the core owns, except the record itself. A context that was current on the calling
/// thread is made current again and released with its surface, which EGL carries out once it stops being
/// current. False, with "There is no opengl context" and nothing released, when the core's context cannot be
/// made current or was never created.
bool releaseRenderCore(ZecRenderCore& core);

} // namespace ze
