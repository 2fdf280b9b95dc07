#include "log/log_message.h"

#include "log/emit.h"
#include "log/log_stream.h"
#include "log/settings_store.h"

namespace ze {
namespace {

void emitMessage(const LogMessage& message) {
    const CZeByteArray text = message.text.toLocal8Bit();
    if (text.isEmpty() && !message.text.isEmpty())
        return; // no memory
    const SZeLogContext context = {message.alwaysToFile, message.line, message.fileName,
                                   message.functionName};
    emit(text.constData(), static_cast<int>(message.level), context);
}

} // namespace

void append(LogMessage& message, const CZeString& piece) noexcept {
    const int sizeBefore = message.text.size();
    message.text.append(piece.unicode(),
                        piece.size()); // a copy, as the piece may be a view of foreign memory
    if (piece.isNull() || message.text.size() - sizeBefore != piece.size())
        message.isComplete = false;
}

void release(LogMessage* message) noexcept {
    if (--message->refCount != 0)
        return;
    // emit() asks the filter as well; asked here, it saves a dropped message the conversion of its text.
    if (message->enabled && message->isComplete && isLogLevelEnabled(static_cast<int>(message->level)))
        emitMessage(*message);
    delete message;
}

} // namespace ze
