#include "core/io/io_device.h"

#include "core/tools/byte_array_limit.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <algorithm>
#include <cerrno>
#include <new>

namespace {

bool fitsArray(int64_t size) {
    if (size > ze::kMaxByteArraySize)
        ze::coreWarning("maxSize argument exceeds CZeByteArray size limit");
    return size <= ze::kMaxByteArraySize;
}

} // namespace

CZeIODevice::CZeIODevice() = default;

CZeIODevice::~CZeIODevice() = default;

bool CZeIODevice::open(int mode) {
    if (!(mode & Ze::ReadWrite)) {
        ze::coreWarning("CZeIODevice::open: File access not specified");
        return false;
    }
    m_openMode = mode;
    m_devicePos = 0;
    forgetBuffer();
    clearErrorString();
    return true;
}

bool CZeIODevice::close() {
    m_openMode = 0;
    m_devicePos = 0;
    m_buffer.reset();
    forgetBuffer();
    return true;
}

bool CZeIODevice::isSequential() const {
    return false;
}

int64_t CZeIODevice::size() const {
    return 0;
}

bool CZeIODevice::seek(int64_t pos) {
    if (isSequentialCached()) {
        ze::coreWarning("Cannot call seek on a sequential device");
        return false;
    }
    if (!isOpen()) {
        ze::coreWarning("The device is not open");
        return false;
    }
    if (pos < 0) {
        ze::coreWarning("CZeIODevice::seek: Invalid pos: %ld", static_cast<long>(pos));
        return false;
    }
    forgetBuffer();
    m_devicePos = pos;
    return true;
}

bool CZeIODevice::atEnd() {
    if (!(m_openMode & Ze::ReadOnly))
        return true;
    return m_next == m_limit && fillBuffer() <= 0;
}

CZeByteArray CZeIODevice::read(int64_t maxSize) {
    return fitsArray(maxSize) && mayRead(maxSize) ? readArray(maxSize, false) : CZeByteArray();
}

CZeByteArray CZeIODevice::readAll() {
    return mayRead(0) && fitsArray(size() - pos()) ? readArray(ze::kMaxByteArraySize, true) : CZeByteArray();
}

int64_t CZeIODevice::peek(char* data, int64_t maxSize) {
    if (!mayPeek(maxSize))
        return -1;
    const int64_t start = pos();
    const int64_t count = read(data, maxSize);
    return seek(start) ? count : -1;
}

CZeByteArray CZeIODevice::peek(int64_t maxSize) {
    if (!fitsArray(maxSize) || !mayPeek(maxSize))
        return {};
    const int64_t start = pos();
    const CZeByteArray bytes = readArray(maxSize, false);
    return seek(start) ? bytes : CZeByteArray();
}

int64_t CZeIODevice::readLine(char* data, int64_t maxSize) {
    if (maxSize < 2) {
        ze::coreWarning("Called with maxSize < 2");
        return -1;
    }
    if (!mayRead(maxSize))
        return -1;
    int64_t count = 0;
    bool isComplete = false;
    while (!isComplete && count < maxSize - 1) {
        if (m_next == m_limit) {
            const int64_t filled = fillBuffer();
            if (filled < 0 && count == 0)
                return -1;
            if (filled <= 0)
                break;
        }
        const int64_t room = std::min<int64_t>(m_limit - m_next, maxSize - 1 - count);
        const void* const lineFeed = std::memchr(m_next, '\n', static_cast<size_t>(room));
        isComplete = lineFeed != nullptr;
        count +=
            takeBuffered(data + count, isComplete ? static_cast<const char*>(lineFeed) - m_next + 1 : room);
    }
    data[count] = '\0';
    return count;
}

int64_t CZeIODevice::write(const char* data, int64_t size) {
    if (size < 0)
        ze::coreWarning("Called with maxSize < 0");
    else if (!isOpen())
        ze::coreWarning("device not open");
    else if (!(m_openMode & Ze::WriteOnly))
        ze::coreWarning("ReadOnly device");
    else if (size == 0)
        return 0;
    else if (dropReadAhead()) {
        const int64_t written = writeData(data, size);
        if (written > 0 && !isSequentialCached())
            advance(written);
        if (written < 0 && m_errorString.isEmpty())
            setErrorString(CZeString());
        return written;
    }
    return -1;
}

void CZeIODevice::setErrorString(const CZeString& text) {
    m_errorString = text.isEmpty() ? ze::errorText("Unknown error") : text;
}

bool CZeIODevice::isSequentialCached() {
    if (m_sequential == Sequential::NotAsked)
        m_sequential = isSequential() ? Sequential::Yes : Sequential::No;
    return m_sequential == Sequential::Yes;
}

bool CZeIODevice::seekInBuffer(int64_t pos) {
    const int64_t behind = m_devicePos - pos;
    if (behind < 0 || behind > m_limit - m_buffer.get())
        return false;
    m_next = m_limit - behind;
    return true;
}

bool CZeIODevice::dropReadAhead() {
    // What was read ahead of a sequential device has nothing to do with what is written to it.
    if (isSequentialCached())
        return true;
    if (m_next == m_limit) {
        forgetBuffer();
        return true;
    }
    const int64_t start = pos();
    const char* const next = m_next;
    const char* const limit = m_limit;
    const int64_t devicePos = m_devicePos;
    forgetBuffer();
    if (seek(start))
        return true;
    m_next = next;
    m_limit = limit;
    m_devicePos = devicePos;
    return false;
}

bool CZeIODevice::mayRead(int64_t maxSize) const {
    if (maxSize < 0)
        ze::coreWarning("Called with maxSize < 0");
    else if (!isOpen())
        ze::coreWarning("device not open");
    else if (!(m_openMode & Ze::ReadOnly))
        ze::coreWarning("WriteOnly device");
    else
        return true;
    return false;
}

bool CZeIODevice::mayPeek(int64_t maxSize) {
    if (!mayRead(maxSize))
        return false;
    if (isSequentialCached())
        ze::coreWarning("Peeking data for sequential device is not supported!");
    return !isSequentialCached();
}

int64_t CZeIODevice::readThrough(char* data, int64_t maxSize) {
    if (!mayRead(maxSize))
        return -1;
    int64_t count = 0;
    while (count < maxSize) {
        const int64_t missing = maxSize - count;
        if (m_next != m_limit) {
            count += takeBuffered(data + count, std::min<int64_t>(m_limit - m_next, missing));
            continue;
        }
        if (count > 0 && isSequentialCached())
            break; // more may be long in coming
        int64_t got = 0;
        if (missing < kBufferSize) {
            got = fillBuffer();
        } else {
            forgetBuffer();
            got = readDevice(data + count, missing);
            if (got > 0)
                count += applyTextMode(data + count, got);
        }
        if (got < 0 && count == 0)
            return -1;
        if (got <= 0)
            break;
    }
    return count;
}

/// `maxSize` is valid. `untilEnd` goes on where a sequential device may have to be waited for.
CZeByteArray CZeIODevice::readArray(int64_t maxSize, bool untilEnd) {
    CZeByteArray bytes;
    int64_t count = 0;
    int64_t step = size() - pos();
    while (count < maxSize) {
        step = std::clamp<int64_t>(step, std::min<int64_t>(kBufferSize, maxSize - count), maxSize - count);
        bytes.resize(static_cast<int>(count + step));
        const bool hasRoom = bytes.size() == count + step;
        if (!hasRoom)
            setErrorString(ze::errorText(ENOMEM));
        const int64_t got = hasRoom ? read(bytes.data() + count, step) : -1;
        if (got < 0 && count == 0)
            return {};
        count += std::max<int64_t>(got, 0);
        const bool mayBeMore = untilEnd ? got > 0 : got == step && !isSequentialCached();
        // Looking for the end first keeps the array as small as a size that was right.
        if (!mayBeMore || count == maxSize || atEnd())
            break;
        step = count;
    }
    bytes.resize(static_cast<int>(std::min<int64_t>(count, bytes.size())));
    return bytes;
}

/// Moves `size` bytes, which are there, out of the buffer. Returns how many of them count.
int64_t CZeIODevice::takeBuffered(char* data, int64_t size) {
    std::memcpy(data, m_next, static_cast<size_t>(size));
    m_next += size;
    return applyTextMode(data, size);
}

/// Drops the carriage returns in text mode. Returns how many bytes remain.
int64_t CZeIODevice::applyTextMode(char* data, int64_t size) const {
    return m_openMode & Ze::Text ? std::remove(data, data + size, '\r') - data : size;
}

/// Reads the next block ahead. To be called when nothing of the last one is left.
int64_t CZeIODevice::fillBuffer() {
    if (!m_buffer)
        m_buffer.reset(new (std::nothrow) char[kBufferSize]);
    forgetBuffer();
    if (!m_buffer) {
        setErrorString(ze::errorText(ENOMEM));
        return -1;
    }
    const int64_t filled = readDevice(m_buffer.get(), kBufferSize);
    m_limit += std::max<int64_t>(filled, 0);
    return filled;
}

int64_t CZeIODevice::readDevice(char* data, int64_t maxSize) {
    const int64_t count = readData(data, maxSize);
    if (count > 0)
        advance(count);
    if (count < 0 && m_errorString.isEmpty())
        setErrorString(CZeString());
    return count;
}

/// A device that has no end does not make the position overflow.
void CZeIODevice::advance(int64_t count) {
    m_devicePos += std::min(count, INT64_MAX - m_devicePos);
}
