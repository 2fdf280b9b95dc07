// Drawing without a display.

#pragma once

namespace ze::tool {

/// Lets EGL work where there is neither an X server nor a Wayland compositor, unless the user has chosen a
/// platform: sets EGL_PLATFORM to "surfaceless" when DISPLAY, WAYLAND_DISPLAY and EGL_PLATFORM are all unset.
/// Also keeps Mesa's own remarks off standard error unless EGL_LOG_LEVEL is set. Call before any EGL call.
void prepareEnvironment();

} // namespace ze::tool
