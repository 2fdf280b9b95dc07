// The library's render core and effects, as a host uses them.

#pragma once

#include "api/ze_beauty_effect.h"
#include "tool/render/yuv_frame.h"

#include <string>
#include <variant>
#include <vector>

namespace ze::tool {

/// Amounts of 0 to 1.
struct Beauty {
    float smooth = 0;
    float whiten = 0;
};

/// The path of a LUT file, UTF-8, and 0 to 1 of its colors.
struct Grading {
    std::string path;
    float intensity = 1;
};

using Effect = std::variant<Beauty, Grading>;
using EffectChain = std::vector<Effect>;

/// Whether the library will draw for `effect`, and so need GL.
bool isActive(const Effect& effect);

/// Sends frames through the library's exported functions. The library's context lives on the calling thread,
/// which must have no EGL context of its own; construct, use and destroy a session there.
class RenderSession {
public:
    /// One effect at least; they run in this order.
    explicit RenderSession(const EffectChain& effects);
    ~RenderSession();
    RenderSession(const RenderSession&) = delete;
    RenderSession& operator=(const RenderSession&) = delete;

    /// Changes `frame` in place; without an active effect it keeps every byte. Throws `Failure` (`failed`)
    /// with the library's reason, also when the library has logged an error and gone on.
    void render(YuvFrame& frame);

private:
    ZecRenderCore* m_core;
    std::vector<ZecEffect*> m_effects;
};

} // namespace ze::tool
