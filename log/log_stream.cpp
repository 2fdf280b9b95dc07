#include "log/log_stream.h"

#include "log/log_message.h"
#include "log/settings.h"

namespace {

CZeLogStream streamOf(ze::LogLevel level, const SZeLogContext& context) {
    return CZeLogStream(level, context.line, context.fileName, context.functionName, context.alwaysToFile);
}

} // namespace

CZeLogStream ZeLogInfo(const SZeLogContext& context) {
    return streamOf(ze::kLogInfo, context);
}

CZeLogStream ZeLogWarning(const SZeLogContext& context) {
    return streamOf(ze::kLogWarning, context);
}

CZeLogStream ZeLogError(const SZeLogContext& context) {
    return streamOf(ze::kLogError, context);
}

CZeLogStream::CZeLogStream(int level, int32_t line, const char* fileName, const char* functionName,
                           bool alwaysToFile)
    : m_message(new ze::LogMessage{.level = static_cast<std::uint32_t>(level),
                                   .line = line,
                                   .fileName = fileName,
                                   .functionName = functionName,
                                   .alwaysToFile = alwaysToFile}) {}

CZeLogStream::CZeLogStream(const CZeLogStream& other) noexcept : m_message(other.m_message) {
    ++m_message->refCount;
}

CZeLogStream& CZeLogStream::operator=(const CZeLogStream& other) noexcept {
    ++other.m_message->refCount; // first, in case both are the same message
    ze::release(m_message);
    m_message = other.m_message;
    return *this;
}

CZeLogStream::~CZeLogStream() {
    ze::release(m_message);
}

void CZeLogStream::setEnabled(bool enabled) noexcept {
    m_message->enabled = enabled;
}

CZeLogStream& CZeLogStream::operator<<(const char* text) {
    return text ? *this << CZeString::fromUtf8(text) : *this;
}

CZeLogStream& CZeLogStream::operator<<(const CZeString& text) {
    m_message->text.append(text);
    return *this;
}

CZeLogStream& CZeLogStream::operator<<(bool value) {
    return *this << (value ? "true" : "false");
}

CZeLogStream& CZeLogStream::operator<<(std::nullptr_t) {
    return *this << "(nullptr)";
}

CZeLogStream& CZeLogStream::operator<<(short value) {
    return *this << long(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned short value) {
    return *this << static_cast<unsigned long>(value);
}

CZeLogStream& CZeLogStream::operator<<(int value) {
    return *this << long(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned int value) {
    return *this << static_cast<unsigned long>(value);
}

CZeLogStream& CZeLogStream::operator<<(long value) {
    return *this << CZeString::number(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned long value) {
    return *this << CZeString::number(value);
}

CZeLogStream& CZeLogStream::operator<<(long long value) {
    static_assert(sizeof(long long) == sizeof(long));
    return *this << static_cast<long>(value);
}

CZeLogStream& CZeLogStream::operator<<(unsigned long long value) {
    return *this << static_cast<unsigned long>(value);
}

CZeLogStream& CZeLogStream::operator<<(char character) {
    return *this << CZeString(CZeChar(character));
}

CZeLogStream& CZeLogStream::operator<<(float value) {
    return *this << double(value);
}

CZeLogStream& CZeLogStream::operator<<(double value) {
    return *this << CZeString::number(value, 'g', 6);
}
