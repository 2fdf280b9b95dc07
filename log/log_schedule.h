// When the log file is flushed and changed, and what it is called: rules of given times only.

#pragma once

#include "core/tools/ze_string.h"

#include <chrono>
#include <ctime>
#include <optional>
#include <string_view>

namespace ze {

using LogTime = std::chrono::steady_clock::time_point;
using LogDuration = std::chrono::nanoseconds;

constexpr LogDuration kFlushInterval{9'999'999'999};
constexpr LogDuration kRetryPause{30'000'000'000};

/// Whether two times lie on different days.
bool isAnotherDay(const std::tm& date, const std::tm& other);

/// The file name for a day, as in "glowkitlog(2024-03-05).log". Null when there is no memory for all of it.
CZeString logFileName(const CZeString& loggerName, const std::tm& date);

/// The local time; nothing when it cannot be converted.
std::optional<std::tm> localTime(std::time_t time);

/// Formats local times. The last one is kept: formatting costs more than all the rest of a line in the log,
/// and most lines share their second with the one before.
class TimeStamp {
public:
    /// As in "[2024-03-05 23:59:59] ", or "[] " when the time cannot be converted. Valid until the next call.
    std::string_view of(std::time_t time);

private:
    std::optional<std::time_t> m_time;
    std::string_view m_text;
    char m_buffer[64];
};

} // namespace ze
