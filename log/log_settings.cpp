#include "log/log_settings.h"

#include "core/tools/ze_string.h"
#include "log/file_sink.h"
#include "log/settings_store.h"

void ZeSetLogFilter(int filter) {
    if (filter >= 0 && filter <= 3)
        ze::logSettings.filter.store(filter, std::memory_order_relaxed);
}

bool ZeIsLogLevelEnabled(int level) {
    return ze::isLogLevelEnabled(level);
}

void ZeSetFileLogging(bool on) {
    ze::logSettings.fileLogging.store(on, std::memory_order_relaxed);
}

void ZeSetConsoleToStandardError(bool on) {
    ze::logSettings.consoleToStandardError.store(on, std::memory_order_relaxed);
}

void ZeSetLogRootDirectory(const char* directory) {
    const CZeString text = CZeString::fromLocal8Bit(directory);
    if (!directory || !text.isNull()) // else no memory, which must not clear it
        ze::setLogRootDirectory(text);
}

void ZeSetLogRootDirectory(const CZeString& directory) {
    ze::setLogRootDirectory(directory);
}
