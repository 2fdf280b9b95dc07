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
    if (!isLogLevelEnabled(kLogWarning))
        return;
    const CZeByteArray bytes = text.toUtf8();
    if (!bytes.isEmpty()) // there was memory for it
        emit(bytes.constData(), kLogWarning, SZeLogContext());
}

} // namespace ze
