// What a host may set about the log: the filter, the sinks and where the log files go.

#pragma once

#include "core/export.h"

class CZeString;

// All settings are process-wide. They may be set and read on any thread at any time; a message that is on its
// way on another thread meets the old value or the new one.

/// Sets what is emitted: 0 nothing, 1 errors, 2 warnings and errors, 3 everything (initially).
/// Any other value is ignored.
ZE_EXPORT void ZeSetLogFilter(int filter);

/// Whether a message of `level` (0 info, 1 warning, 2 error) passes the current filter.
ZE_EXPORT bool ZeIsLogLevelEnabled(int level);

/// Switches the log file on or off (initially off). When on, every emitted message is also appended to the
/// file of the day, "glowkit/log/glowkitlog(YYYY-MM-DD).log" under the root directory. A thread of the
/// library's own writes it, so lines show up a moment later and are flushed at most about every 10 seconds.
/// Those that it has not taken when the library is unloaded or the program ends, a moment after the message,
/// are lost. A process forked once the log file or its directory has been used has no log file.
ZE_EXPORT void ZeSetFileLogging(bool on);

/// Sends the console's messages to standard error, one line each, instead of the Android log (initially off).
/// On Linux the Android log is standard error too, with lines of its own form.
ZE_EXPORT void ZeSetConsoleToStandardError(bool on);

/// Sets the directory under which log files are made: an absolute path in the local encoding (UTF-8); null
/// clears it. The text is copied; without memory for that nothing changes. It counts from the next file that
/// is opened: a file that is already open stays in use until the date changes. Without a root directory no
/// file can be opened; each attempt costs one warning in the Android log, the lines are dropped and the next
/// attempt is made 30 seconds later. The same happens when anything but a regular file, be it a symbolic link
/// to one, has the file's name.
ZE_EXPORT void ZeSetLogRootDirectory(const char* directory);

/// The same from a string; a null or empty string clears the directory.
ZE_EXPORT void ZeSetLogRootDirectory(const CZeString& directory);
