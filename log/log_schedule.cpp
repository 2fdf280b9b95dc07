#include "log/log_schedule.h"

namespace ze {

bool isAnotherDay(const std::tm& date, const std::tm& other) {
    return date.tm_mday != other.tm_mday || date.tm_mon != other.tm_mon || date.tm_year != other.tm_year;
}

CZeString logFileName(const CZeString& loggerName, const std::tm& date) {
    char ending[64] = "";
    std::strftime(ending, sizeof ending, "(%Y-%m-%d).log", &date);
    CZeString name = loggerName;
    name.append(CZeLatin1String(ending));
    return !loggerName.isEmpty() && name.size() > loggerName.size() ? name : CZeString();
}

std::optional<std::tm> localTime(std::time_t time) {
    std::tm result = {};
    return localtime_r(&time, &result) ? std::optional(result) : std::nullopt;
}

std::string_view TimeStamp::of(std::time_t time) {
    if (m_time == time)
        return m_text;
    const std::optional<std::tm> local = localTime(time);
    const std::size_t size =
        local ? std::strftime(m_buffer, sizeof m_buffer, "[%Y-%m-%d %H:%M:%S] ", &*local) : 0;
    m_text = size > 0 ? std::string_view(m_buffer, size) : "[] ";
    m_time = time;
    return m_text;
}

} // namespace ze
