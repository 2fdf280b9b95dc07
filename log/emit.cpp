#include "log/emit.h"

#include "log/console_sink.h"
#include "log/file_sink.h"
#include "log/joined_text.h"
#include "log/log_stream.h"
#include "log/settings_store.h"

#include <cstdio>

namespace ze {
namespace {

constexpr int kBufferSize = 1024; // of a prefix and of a formatted message, with the final zero

void writeToSinks(const char* text, int level, bool toFile) {
    if (toFile)
        writeToFile(text);
    writeToConsole(level, text);
}

} // namespace

void emit(const char* text, int level, const SZeLogContext& context) {
    if (!isLogLevelEnabled(level))
        return;
    const bool toFile =
        text && (context.alwaysToFile || logSettings.fileLogging.load(std::memory_order_relaxed));
    if (!text)
        text = "";
    if (!context.fileName) {
        writeToSinks(text, level, toFile);
        return;
    }
    char prefix[kBufferSize];
    std::snprintf(prefix, sizeof prefix, "%s(%d), %s: ", context.fileName, context.line,
                  context.functionName ? context.functionName : "(null)");
    const auto line = joinedText(prefix, text);
    writeToSinks(line ? line.get() : text, level, toFile); // rather without its prefix than not at all
}

void emitFormatted(int level, const SZeLogContext& context, const char* format, std::va_list arguments) {
    char text[kBufferSize];
    if (std::vsnprintf(text, sizeof text, format, arguments) < 0)
        text[0] = '\0';
    emit(text, level, context);
}

} // namespace ze
