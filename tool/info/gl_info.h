// What OpenGL ES offers on this machine.

#pragma once

#include <string>

namespace ze::tool {

struct GlInfo {
    std::string eglVendor;
    std::string eglVersion;
    std::string vendor;
    std::string renderer;
    std::string version;
    int maxTextureSize = 0; ///< Largest width and height of a frame, in pixels.
};

/// Asks an OpenGL ES 2.0 context of its own, which it destroys again. Call it before anything else that
/// draws: it first turns away from a display that EGL cannot use. Throws `Failure` (`noGl`) with the step
/// that failed when there is no EGL or no OpenGL ES.
GlInfo queryGl();

} // namespace ze::tool
