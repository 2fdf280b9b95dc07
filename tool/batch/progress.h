// One line on a terminal that says how far a run over many pictures is.

#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace ze::tool {

/// Shows a line on standard error when that is a terminal, and nothing elsewhere. One thread at a time.
class Progress {
public:
    explicit Progress(size_t count);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One more is done, `name`.
    void advance(const std::string& name);

private:
    bool m_isShown;
    size_t m_count;
    size_t m_done = 0;
    std::chrono::steady_clock::time_point m_start;
};

} // namespace ze::tool
