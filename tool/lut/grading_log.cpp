#include "tool/lut/grading_log.h"

#include <OpenColorIO/OpenColorIO.h>

#include <cstdlib>
#include <string_view>

namespace ze::tool {
namespace {

namespace ocio = OCIO_NAMESPACE;

std::string withoutPrefix(std::string message) {
    if (message.rfind("[OpenColorIO", 0) == 0)
        message.erase(0, message.find("]: ") + 3);
    return message;
}

} // namespace

GradingLog::GradingLog() {
    unsetenv("OCIO_LOGGING_LEVEL"); // which would override the level below
    ocio::SetLoggingLevel(ocio::LOGGING_LEVEL_DEBUG);
    ocio::SetLoggingFunction([this](const char* message) { m_text += withoutPrefix(message); });
}

GradingLog::~GradingLog() {
    ocio::SetLoggingLevel(ocio::LOGGING_LEVEL_NONE);
    ocio::ResetToDefaultLoggingFunction();
}

std::string GradingLog::readerName() const {
    constexpr std::string_view kLoaded = "Loaded alt format ";
    const size_t at = m_text.find(kLoaded);
    if (at == m_text.npos)
        return "unknown";
    const size_t begin = at + kLoaded.size();
    return m_text.substr(begin, m_text.find('\n', begin) - begin);
}

} // namespace ze::tool
