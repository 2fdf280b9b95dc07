// The library names its reasons in the Android log alone. This catches them there, for Beautifier and for
// hosts that call the library themselves. Needs liblog.

#pragma once

#include <string>

namespace zebeauty {

/// From here on the errors that the library logs (tag "glowfx") are remembered, for each thread its own. With
/// `passesOn` false the library's messages, errors or not, end here; otherwise, as all messages with other
/// tags, they go where liblog sends them by default: logcat on Android, standard error elsewhere. Replaces a
/// logger that the host has set. Filters (log/log_settings.h) come before: what they hold back is not seen
/// here.
///
/// False, and nothing changed, on Android before 11 (API level 30), whose log cannot be listened to.
bool catchLibraryErrors(bool passesOn = true);

/// The first error that the library has logged on this thread since the last call, which is the cause of
/// those after it; empty when there is none. At most 1023 bytes.
std::string takeLibraryError();

} // namespace zebeauty
