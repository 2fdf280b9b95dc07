// The way into the log: streams that collect a message piece by piece, and printf-style functions.

#pragma once

#include "core/export.h"

#include <cstddef>
#include <cstdint>

class CZeString;

namespace ze {
struct LogMessage;
}

/// Where a message comes from. With a file name the message gets the prefix "file(line), function: "; the
/// default names no place and adds nothing. The texts must live until the message has been emitted.
struct SZeLogContext {
    bool alwaysToFile = false;          ///< to the log file even when file logging is off
    int32_t line = 0;                   ///< from 1
    const char* fileName = nullptr;     ///< may be null
    const char* functionName = nullptr; ///< null is written as "(null)"
};

/// A message in the making. It is emitted when the last copy of the stream is destroyed, normally at the end
/// of the statement: `ZeLogWarning() << "width " << width;`. Nothing is put between the pieces. A stream and
/// its copies belong to one thread; different streams may be used on different threads.
class ZE_EXPORT CZeLogStream {
public:
    /// A stream of `level` (0 info, 1 warning, 2 error).
    CZeLogStream(int level, int32_t line, const char* fileName, const char* functionName, bool alwaysToFile);
    /// A copy adds to the same message.
    CZeLogStream(const CZeLogStream& other) noexcept;
    CZeLogStream& operator=(const CZeLogStream& other) noexcept;
    ~CZeLogStream();

    /// Whether the message, shared with the copies, is emitted at its end. True for a new stream.
    void setEnabled(bool enabled) noexcept;

    CZeLogStream& operator<<(const char* text); ///< UTF-8; null appends nothing
    /// Appends the text, or the number in decimal.
    CZeLogStream& operator<<(const CZeString& text);
    CZeLogStream& operator<<(bool value);     ///< "true" or "false"
    CZeLogStream& operator<<(std::nullptr_t); ///< "(nullptr)"
    /// Appends the number in decimal.
    CZeLogStream& operator<<(short value);
    CZeLogStream& operator<<(unsigned short value);
    CZeLogStream& operator<<(int value);
    CZeLogStream& operator<<(unsigned int value);
    CZeLogStream& operator<<(long value);
    CZeLogStream& operator<<(unsigned long value);
    CZeLogStream& operator<<(long long value);
    CZeLogStream& operator<<(unsigned long long value);
    CZeLogStream& operator<<(char character); ///< ASCII; any other byte is taken as Latin-1
    CZeLogStream& operator<<(float value);    ///< as "%.6g" prints it
    CZeLogStream& operator<<(double value);   ///< as "%.6g" prints it

    /// A pointer to anything else is a mistake: it would be taken as a bool.
    template <class T>
    CZeLogStream& operator<<(const T* pointer) = delete;

private:
    ze::LogMessage* m_message;
};

/// Streams of level info, warning and error.
ZE_EXPORT CZeLogStream ZeLogInfo(const SZeLogContext& context = {});
ZE_EXPORT CZeLogStream ZeLogWarning(const SZeLogContext& context = {});
ZE_EXPORT CZeLogStream ZeLogError(const SZeLogContext& context = {});

/// Emits one message of level info, warning or error, formatted as printf does and cut at 1023 bytes.
/// A message that the filter drops is not formatted.
ZE_EXPORT void ZeLogInfof(const SZeLogContext& context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
ZE_EXPORT void ZeLogWarningf(const SZeLogContext& context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
ZE_EXPORT void ZeLogErrorf(const SZeLogContext& context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
