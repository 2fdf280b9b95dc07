#include "log/console_sink.h"

#include "log/settings_store.h"

#include <android/log.h>

#include <cstdio>

namespace ze {
namespace {

int priorityOf(int level) {
    switch (level) {
    case kLogError:
        return ANDROID_LOG_ERROR;
    case kLogWarning:
        return ANDROID_LOG_WARN;
    default:
        return ANDROID_LOG_INFO;
    }
}

} // namespace

void writeToAndroidLog(int level, const char* text) {
    __android_log_write(priorityOf(level), "glowfx", text);
}

void writeToConsole(int level, const char* text) {
    if (!logSettings.consoleToStandardError.load(std::memory_order_relaxed)) {
        writeToAndroidLog(level, text);
        return;
    }
    std::fprintf(stderr, "%s\n", text);
    std::fflush(stderr);
}

} // namespace ze
