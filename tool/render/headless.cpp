#include "tool/render/headless.h"

#include <cstdlib>

namespace ze::tool {

void prepareEnvironment() {
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        setenv("EGL_PLATFORM", "surfaceless", 0);
    setenv("EGL_LOG_LEVEL", "fatal", 0);
}

} // namespace ze::tool
