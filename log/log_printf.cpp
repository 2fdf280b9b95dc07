// The printf-style functions of log/log_stream.h. They ask the filter before they touch their arguments,
// so that a dropped message costs next to nothing.

#include "log/emit.h"
#include "log/log_stream.h"
#include "log/settings_store.h"

void ZeLogInfof(const SZeLogContext& context, const char* format, ...) {
    if (!ze::isLogLevelEnabled(ze::kLogInfo))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    ze::emitFormatted(ze::kLogInfo, context, format, arguments);
    va_end(arguments);
}

void ZeLogWarningf(const SZeLogContext& context, const char* format, ...) {
    if (!ze::isLogLevelEnabled(ze::kLogWarning))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    ze::emitFormatted(ze::kLogWarning, context, format, arguments);
    va_end(arguments);
}

void ZeLogErrorf(const SZeLogContext& context, const char* format, ...) {
    if (!ze::isLogLevelEnabled(ze::kLogError))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    ze::emitFormatted(ze::kLogError, context, format, arguments);
    va_end(arguments);
}
