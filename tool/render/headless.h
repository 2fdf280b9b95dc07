// Lets EGL work where no display does.

#pragma once

namespace ze::tool {

/// Sets EGL_PLATFORM to "surfaceless" when it is unset or empty and neither DISPLAY nor WAYLAND_DISPLAY names
/// a display. Also keeps Mesa's remarks off standard error unless EGL_LOG_LEVEL is set. Call it before any
/// EGL function and before there are other threads.
void prepareEnvironment();

/// Sets EGL_PLATFORM to "surfaceless" when it is unset or empty and EGL cannot be initialized on the display
/// that the environment names, or not within a few seconds. Call it before any EGL function, best before
/// there are other threads. It may start a process and wait for its end, and does nothing from the second
/// call on.
void avoidDeadDisplay();

} // namespace ze::tool
