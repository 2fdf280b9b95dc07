// What OpenColorIO says while it works.

#pragma once

#include <string>

namespace ze::tool {

/// Takes what OpenColorIO logs while this object lives, details included, and keeps it from standard error.
/// There may be one at a time.
class GradingLog {
public:
    GradingLog();
    ~GradingLog();
    GradingLog(const GradingLog&) = delete;
    GradingLog& operator=(const GradingLog&) = delete;

    const std::string& text() const { return m_text; }

    /// The name of the reader that took the file which was read.
    std::string readerName() const;

private:
    std::string m_text;
};

} // namespace ze::tool
