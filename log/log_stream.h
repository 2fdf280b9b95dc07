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
/// of the statement: `ZeLogWarning() << "width " << width;`. Nothing is put between the pieces. A message
/// that there is no memory for, be it for one of its pieces, is dropped, or emitted without its prefix when
/// only that is lacking; nothing throws. A stream and its copies belong to one thread; different streams may
/// be used on different threads.
class ZE_EXPORT CZeLogStream {
public:
    /// A stream of `level` (0 info, 1 warning, 2 error).
    CZeLogStream(int level, int32_t line, const char* fileName, const char* functionName,
                 bool alwaysToFile) noexcept;
    /// A copy adds to the same message.
    CZeLogStream(const CZeLogStream& other) noexcept;
    CZeLogStream& operator=(const CZeLogStream& other) noexcept;
    ~CZeLogStream();

    /// Whether the message, shared with the copies, is emitted at its end. True for a new stream.
    void setEnabled(bool enabled) noexcept;

    CZeLogStream& operator<<(const char* text) noexcept; ///< UTF-8; null appends nothing
    /// Appends the text, or the number in decimal.
    CZeLogStream& operator<<(const CZeString& text) noexcept;
    CZeLogStream& operator<<(bool value) noexcept;     ///< "true" or "false"
    CZeLogStream& operator<<(std::nullptr_t) noexcept; ///< "(nullptr)"
    /// Appends the number in decimal.
    CZeLogStream& operator<<(short value) noexcept;
    CZeLogStream& operator<<(unsigned short value) noexcept;
    CZeLogStream& operator<<(int value) noexcept;
    CZeLogStream& operator<<(unsigned int value) noexcept;
    CZeLogStream& operator<<(long value) noexcept;
    CZeLogStream& operator<<(unsigned long value) noexcept;
    CZeLogStream& operator<<(long long value) noexcept;
    CZeLogStream& operator<<(unsigned long long value) noexcept;
    CZeLogStream& operator<<(char character) noexcept; ///< ASCII; any other byte is taken as Latin-1
    CZeLogStream& operator<<(float value) noexcept;    ///< as "%.6g" prints it
    CZeLogStream& operator<<(double value) noexcept;   ///< as "%.6g" prints it

    /// A pointer to anything else is a mistake: it would be taken as a bool.
    template <class T>
    CZeLogStream& operator<<(const T* pointer) = delete;

private:
    CZeLogStream& add(const CZeString& piece) noexcept;

    ze::LogMessage* m_message; // null when there was no memory for it
};

/// A stream of level info.
ZE_EXPORT CZeLogStream ZeLogInfo(const SZeLogContext& context = {}) noexcept;
/// A stream of level warning.
ZE_EXPORT CZeLogStream ZeLogWarning(const SZeLogContext& context = {}) noexcept;
/// A stream of level error.
ZE_EXPORT CZeLogStream ZeLogError(const SZeLogContext& context = {}) noexcept;

/// Emits one message of level info, warning or error, formatted as printf does and cut at 1023 bytes. A
/// message that the filter drops is not formatted; one without memory for its prefix is emitted without it.
ZE_EXPORT void ZeLogInfof(const SZeLogContext& context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
ZE_EXPORT void ZeLogWarningf(const SZeLogContext& context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
ZE_EXPORT void ZeLogErrorf(const SZeLogContext& context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
