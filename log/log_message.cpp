#include "log/log_message.h"

#include "log/emit.h"
#include "log/log_stream.h"

namespace ze {

void release(LogMessage* message) {
    if (--message->refCount != 0)
        return;
    if (message->enabled) {
        const SZeLogContext context = {message->alwaysToFile, message->line, message->fileName,
                                       message->functionName};
        emit(message->text.toLocal8Bit().constData(), static_cast<int>(message->level), context);
    }
    delete message;
}

} // namespace ze
