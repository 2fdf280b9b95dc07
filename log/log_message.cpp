#include "log/log_message.h"

#include "log/emit.h"
#include "log/log_stream.h"
#include "log/settings.h"

namespace ze {

void release(LogMessage* message) {
    if (--message->refCount != 0)
        return;
    const int level = static_cast<int>(message->level);
    if (message->enabled && isLogLevelEnabled(level)) {
        const SZeLogContext context = {message->alwaysToFile, message->line, message->fileName,
                                       message->functionName};
        emit(message->text.toLocal8Bit().constData(), level, context);
    }
    delete message;
}

} // namespace ze
