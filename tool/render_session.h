// The library's render core and beauty effect, as a host uses them.

#pragma once

#include "api/ze_beauty_effect.h"
#include "tool/yuv_frame.h"

namespace ze::tool {

/// Beautifies frames through the library's exported functions. The library's context lives on the calling
/// thread, which must have no EGL context of its own; construct, use and destroy a session there.
class RenderSession {
public:
    /// Smoothing and whitening, 0 to 1 each.
    RenderSession(float smooth, float whiten);
    ~RenderSession();
    RenderSession(const RenderSession&) = delete;
    RenderSession& operator=(const RenderSession&) = delete;

    /// Beautifies `frame` in place; with both amounts 0 it keeps every byte. Throws `Failure` (`failed`) with
    /// the library's reason, also when the library has logged an error and gone on.
    void render(YuvFrame& frame);

private:
    ZecRenderCore* m_core;
    ZecEffect* m_beauty;
};

} // namespace ze::tool
