#include "log/log_schedule.h"

namespace ze {

bool mustFlush(LogDuration waited, LogTime lastFlush, LogTime now) {
    return waited > kFlushInterval || now - lastFlush > kFlushInterval;
}

bool mayOpen(const std::optional<LogTime>& lastFailure, LogTime now) {
    return !lastFailure || now - *lastFailure >= kRetryPause;
}

bool isAnotherDay(const std::tm& date, const std::tm& other) {
    return date.tm_mday != other.tm_mday || date.tm_mon != other.tm_mon || date.tm_year != other.tm_year;
}

CZeString logFileName(const CZeString& loggerName, const std::tm& date) {
    char day[64] = "";
    std::strftime(day, sizeof day, "%Y-%m-%d", &date);
    return CZeString(CZeLatin1String("%1(%2).log")).arg(loggerName).arg(CZeString::fromLatin1(day));
}

std::optional<std::tm> localTime(std::time_t time) {
    std::tm result = {};
    return localtime_r(&time, &result) ? std::optional(result) : std::nullopt;
}

const std::string& TimeStamp::of(std::time_t time) {
    if (m_time == time)
        return m_text;
    char text[64] = "";
    if (const std::optional<std::tm> local = localTime(time))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &*local);
    m_time = time;
    m_text = text;
    return m_text;
}

} // namespace ze
