// Prepares the environment for drawing without a display.

#pragma once

namespace ze::tool {

/// Sets EGL_PLATFORM to "surfaceless" when DISPLAY, WAYLAND_DISPLAY and EGL_PLATFORM are all unset, so that
/// EGL works without an X server or Wayland compositor. Also keeps Mesa's remarks off standard error unless
/// EGL_LOG_LEVEL is set. Call it before any EGL function and before there are other threads.
void prepareEnvironment();

} // namespace ze::tool
