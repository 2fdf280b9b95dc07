// The log file of the day. Only the writer thread touches it.

#pragma once

#include "core/tools/ze_string.h"
#include "log/log_lines.h"
#include "log/log_schedule.h"

#include <cstdio>
#include <ctime>
#include <optional>

namespace ze {

/// Opens the day's file when there is something to write, and closes it when the date has changed at a flush
/// or at its own end. Times come from the caller. Not thread-safe.
class LogFile {
public:
    /// `name` is the first part of the file names.
    explicit LogFile(const CZeString& name) : m_name(name) {}
    ~LogFile() { close(); }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Flushes an open file when it is time to, after the caller waited for `waited`; then closes it if it is
    /// not of the day `today`.
    void flushIfDue(LogDuration waited, LogTime now, const std::tm& today);

    /// Appends `lines`. Without an open file the one of `today` under `rootDirectory` is opened first; if it
    /// cannot be, the lines are dropped. A failed attempt is reported to the Android log, and none is made in
    /// the 30 seconds after it.
    void write(const LogLines& lines, const CZeString& rootDirectory, LogTime now, const std::tm& today);

    /// Closes the file if one is open.
    void close();

private:
    void open(const CZeString& rootDirectory, LogTime now, const std::tm& today);

    CZeString m_name;
    std::FILE* m_file = nullptr;
    std::tm m_date = {}; // the day on which m_file was opened
    std::optional<LogTime> m_lastFailure;
    LogTime m_lastFlush = {};
};

} // namespace ze
