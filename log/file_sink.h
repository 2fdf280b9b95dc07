// The process's one file logger: made on first use, gone when the library is unloaded.

#pragma once

class CZeString;

namespace ze {

/// Queues `text` for the log file; an empty text is ignored. Never fails towards the caller: a line that
/// cannot be queued, or that comes after the end of the library or in a forked child, is dropped. Any thread
/// may call it.
void writeToFile(const char* text) noexcept;

/// Sets the directory under which the log files are made, a copy of the text; empty for none. It is kept even
/// when no writer can be started yet. Without memory for the copy nothing changes. Any thread may call it.
void setLogRootDirectory(const CZeString& directory) noexcept;

} // namespace ze
