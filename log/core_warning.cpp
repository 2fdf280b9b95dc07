#include "core/warning.h"

#include "log/emit.h"
#include "log/log_stream.h"
#include "log/settings.h"

namespace ze {

void coreWarning(const char* format, ...) {
    if (!isLogLevelEnabled(kLogWarning))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    emitFormatted(kLogWarning, SZeLogContext(), format, arguments);
    va_end(arguments);
}

} // namespace ze
