#include "log/log_stream.h"

#include "log/log_message.h"
#include "log/settings_store.h"

#include <new>
#include <utility>

namespace {

CZeLogStream streamOf(ze::LogLevel level, const SZeLogContext& context) {
    return CZeLogStream(level, context.line, context.fileName, context.functionName, context.alwaysToFile);
}

} // namespace

CZeLogStream ZeLogInfo(const SZeLogContext& context) noexcept {
    return streamOf(ze::kLogInfo, context);
}

CZeLogStream ZeLogWarning(const SZeLogContext& context) noexcept {
    return streamOf(ze::kLogWarning, context);
}

CZeLogStream ZeLogError(const SZeLogContext& context) noexcept {
    return streamOf(ze::kLogError, context);
}

// Without memory for the message the stream has none, and nothing is done with it.
CZeLogStream::CZeLogStream(int level, int32_t line, const char* fileName, const char* functionName,
                           bool alwaysToFile) noexcept
    : m_message(new (std::nothrow) ze::LogMessage{.level = static_cast<std::uint32_t>(level),
                                                  .line = line,
                                                  .fileName = fileName,
                                                  .functionName = functionName,
                                                  .alwaysToFile = alwaysToFile}) {}

CZeLogStream::CZeLogStream(const CZeLogStream& other) noexcept : m_message(other.m_message) {
    if (m_message)
        ++m_message->refCount;
}

CZeLogStream& CZeLogStream::operator=(const CZeLogStream& other) noexcept {
    CZeLogStream copy(other);
    std::swap(m_message, copy.m_message);
    return *this;
}

CZeLogStream::~CZeLogStream() {
    if (m_message)
        ze::release(m_message);
}

void CZeLogStream::setEnabled(bool enabled) noexcept {
    if (m_message)
        m_message->enabled = enabled;
}

CZeLogStream& CZeLogStream::add(const CZeString& piece) noexcept {
    if (m_message)
        ze::append(*m_message, piece);
    return *this;
}

CZeLogStream& CZeLogStream::operator<<(const char* text) noexcept {
    return text ? add(CZeString::fromUtf8(text)) : *this;
}

CZeLogStream& CZeLogStream::operator<<(const CZeString& text) noexcept {
    return text.isNull() ? *this : add(text);
}

CZeLogStream& CZeLogStream::operator<<(bool value) noexcept {
    return *this << (value ? "true" : "false");
}

CZeLogStream& CZeLogStream::operator<<(std::nullptr_t) noexcept {
    return *this << "(nullptr)";
}

CZeLogStream& CZeLogStream::operator<<(short value) noexcept {
    return *this << static_cast<long>(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned short value) noexcept {
    return *this << static_cast<unsigned long>(value);
}

CZeLogStream& CZeLogStream::operator<<(int value) noexcept {
    return *this << static_cast<long>(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned int value) noexcept {
    return *this << static_cast<unsigned long>(value);
}

CZeLogStream& CZeLogStream::operator<<(long value) noexcept {
    return add(CZeString::number(value));
}

CZeLogStream& CZeLogStream::operator<<(unsigned long value) noexcept {
    return add(CZeString::number(value));
}

CZeLogStream& CZeLogStream::operator<<(long long value) noexcept {
    static_assert(sizeof(long long) == sizeof(long));
    return *this << static_cast<long>(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned long long value) noexcept {
    return *this << static_cast<unsigned long>(value);
}

CZeLogStream& CZeLogStream::operator<<(char character) noexcept {
    return add(CZeString(CZeChar(character)));
}

CZeLogStream& CZeLogStream::operator<<(float value) noexcept {
    return *this << static_cast<double>(value);
}

CZeLogStream& CZeLogStream::operator<<(double value) noexcept {
    return add(CZeString::number(value, 'g', 6));
}
