// The one way of a finished message to the sinks.

#pragma once

#include <cstdarg>

struct SZeLogContext;

namespace ze {

/// Hands `text`, behind the prefix that `context` asks for, to the sinks if `level` passes the filter.
/// A null text reaches no file. Any thread may call it.
void emit(const char* text, int level, const SZeLogContext& context);

/// The same with a text formatted as vprintf does and cut at 1023 bytes. Ask the filter first: a text that it
/// drops is formatted for nothing.
void emitFormatted(int level, const SZeLogContext& context, const char* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));

} // namespace ze
