#include "core/warning.h"

#include "core/tools/ze_string.h"
#include "log/emit.h"
#include "log/log_stream.h"
#include "log/settings_store.h"

namespace ze {

void coreWarning(const char* format, ...) {
    if (!isLogLevelEnabled(kLogWarning))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    emitFormatted(kLogWarning, SZeLogContext(), format, arguments);
    va_end(arguments);
}

void coreWarning(const CZeString& text) {
    if (isLogLevelEnabled(kLogWarning))
        emit(text.toUtf8().constData(), kLogWarning, SZeLogContext());
}

} // namespace ze
