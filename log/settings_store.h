// The levels of messages, and where the settings of log/log_settings.h are kept.

#pragma once

#include <atomic>

namespace ze {

enum LogLevel : int { kLogInfo = 0, kLogWarning = 1, kLogError = 2 };

/// Each value stands alone and publishes nothing else, so they are read and written relaxed.
struct LogSettings {
    std::atomic<int> filter{3};
    std::atomic<bool> fileLogging{false};
    std::atomic<bool> consoleToStandardError{false};
};

inline constinit LogSettings logSettings;

/// Whether a message of `level` passes the current filter.
inline bool isLogLevelEnabled(int level) {
    switch (logSettings.filter.load(std::memory_order_relaxed)) {
    case 1:
        return level == kLogError;
    case 2:
        return level == kLogError || level == kLogWarning;
    case 3:
        return true;
    default:
        return false;
    }
}

} // namespace ze
