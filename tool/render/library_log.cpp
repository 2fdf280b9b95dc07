#include "tool/render/library_log.h"

#include <mutex>

#include <android/log.h>

namespace ze::tool {

namespace {

// The library's log writer has a thread of its own, which may speak up as well.
std::mutex g_mutex;
std::string g_lastError;

void rememberError(const __android_logger_data* data, const char* message) {
    if (data->priority < ANDROID_LOG_ERROR)
        return;
    const std::lock_guard lock(g_mutex);
    g_lastError = message;
}

} // namespace

void startLibraryLog() {
    // Not under the mutex: the log holds a lock of its own here, and also when it calls the logger.
    __android_log_set_logger(rememberError);
    const std::lock_guard lock(g_mutex);
    g_lastError.clear();
}

std::string libraryReason() {
    const std::lock_guard lock(g_mutex);
    return g_lastError;
}

} // namespace ze::tool
