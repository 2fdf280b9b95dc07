// Where the log files go.

#pragma once

#include "core/tools/ze_string.h"

#include <mutex>
#include <optional>

namespace ze {

/// The directory under which the log files are made. It exists apart from the logger, because a host may set
/// it while no thread can be started. Any thread may use it.
class RootDirectory {
public:
    constexpr RootDirectory() = default;

    /// Keeps a copy of `directory`, of the text itself even where that lies in foreign memory. Without memory
    /// for it the directory stays what it was.
    void set(const CZeString& directory) {
        CZeString copy(directory.constData(), directory.size());
        if (copy.size() != directory.size())
            return;
        const std::lock_guard lock(m_mutex);
        m_directory = std::move(copy);
    }

    /// Empty for none.
    CZeString get() const {
        const std::lock_guard lock(m_mutex);
        return m_directory.value_or(CZeString());
    }

private:
    mutable std::mutex m_mutex;
    std::optional<CZeString> m_directory; // optional, as a string cannot be made at compile time
};

} // namespace ze
