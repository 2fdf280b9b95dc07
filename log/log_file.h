// The log file of the day. Only the writer thread touches it.

#pragma once

#include "core/tools/ze_string.h"
#include "log/log_lines.h"
#include "log/log_schedule.h"
#include "log/root_directory.h"

#include <cstdio>
#include <ctime>

namespace ze {

/// Opens the day's file when there is something to write, and closes it when the date has changed at a flush
/// or at its own end. Times come from the caller. Not thread-safe.
class LogFile {
public:
    /// `name` is the first part of the file names. An open file is flushed when more than `flushInterval` has
    /// passed.
    LogFile(const CZeString& name, const RootDirectory& rootDirectory, LogDuration flushInterval)
        : m_name(name), m_rootDirectory(rootDirectory), m_flushInterval(flushInterval) {}
    ~LogFile() { close(); }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Flushes an open file when it is time to, after the caller waited for `waited`; then closes it if it is
    /// not of the day `today`.
    void flushIfDue(LogDuration waited, LogTime now, const std::tm& today);

    /// Appends `lines`. Without an open file the one of `today` under the root directory is opened first; if
    /// it cannot be, the lines are dropped. A failed attempt is reported to the Android log, and none is made
    /// in the 30 seconds after it.
    void write(const LogLines& lines, LogTime now, const std::tm& today);

    /// Drops what has been written but not flushed. For a forked child: the parent writes it.
    void discardBuffer();

    /// Closes the file if one is open.
    void close();

private:
    void open(LogTime now, const std::tm& today);
    CZeString makePath(const std::tm& today) const;

    const CZeString m_name;
    const RootDirectory& m_rootDirectory;
    const LogDuration m_flushInterval;
    std::FILE* m_file = nullptr;
    std::tm m_date = {};                    // the day on which m_file was opened
    LogTime m_nextAttempt = LogTime::min(); // to open a file; later than now after a failure
    LogTime m_lastFlush = {};
};

} // namespace ze
