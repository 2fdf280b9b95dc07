// The console: the Android log, or standard error when so set.

#pragma once

namespace ze {

/// Writes `text` as one entry of the Android log under the tag "glowfx".
void writeToAndroidLog(int level, const char* text);

/// Writes `text` to where the console goes at present: the Android log, or one line on standard error.
void writeToConsole(int level, const char* text);

} // namespace ze
