#include "core/io/file_device.h"

#include "core/tools/error_text.h"
#include "core/warning.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

CZeFileDevice::CZeFileDevice() = default;

CZeFileDevice::~CZeFileDevice() {
    CZeFileDevice::close();
}

bool CZeFileDevice::openEngine(std::unique_ptr<CZeFileEngine> engine, int mode) {
    if (!CZeIODevice::open(mode))
        return false;
    unsetError();
    forgetSequential();
    m_hasWriteFailed = false;
    m_engine = std::move(engine);
    if (appends())
        setDevicePos(m_engine->size());
    return true;
}

bool CZeFileDevice::flush() {
    if (!m_engine) {
        ze::coreWarning("CZeFileDevice::flush: No file engine. Is IODevice open?");
        return false;
    }
    return writePending();
}

bool CZeFileDevice::close() {
    if (!m_engine)
        return true;
    const bool isWritten = writePending();
    const bool isClosed = m_engine->close();
    if (isWritten && !isClosed) // the first error stays
        fail(*m_engine);
    m_engine.reset();
    m_pending.reset();
    m_pendingSize = 0;
    CZeIODevice::close();
    return isWritten && isClosed;
}

bool CZeFileDevice::seek(int64_t pos) {
    if (!isOpen()) {
        ze::coreWarning("CZeFileDevice::seek: IODevice is not open");
        return false;
    }
    if (pos < 0 || isSequentialCached())
        return CZeIODevice::seek(pos); // which knows how to refuse it
    if (seekInBuffer(pos))
        return true;
    if (!writePending())
        return false;
    return m_engine->seek(pos) ? CZeIODevice::seek(pos) : fail(*m_engine);
}

int64_t CZeFileDevice::size() const {
    if (!m_engine)
        return 0;
    const int64_t written = m_engine->size();
    return m_pendingSize > 0 ? std::max(written, pos()) : written;
}

bool CZeFileDevice::isSequential() const {
    return m_engine && m_engine->isSequential();
}

unsigned char* CZeFileDevice::map(int64_t offset, int64_t size) {
    if (!m_engine || !m_engine->supportsMap()) {
        constexpr char kRefusal[] = "No file engine available or engine does not support MapExtension";
        ze::coreWarning(kRefusal);
        fail(Ze::FileErrMap, ze::errorText(kRefusal));
        return nullptr;
    }
    // The mapping shows what is in the file, and may change it.
    if (!writePending() || !dropReadAhead())
        return nullptr;
    unsigned char* const address = m_engine->map(offset, size);
    if (!address)
        fail(*m_engine);
    return address;
}

bool CZeFileDevice::unmap(unsigned char* address) {
    if (!m_engine || !m_engine->supportsMap()) {
        constexpr char kRefusal[] = "No file engine available or engine does not support UnMapExtension";
        ze::coreWarning(kRefusal);
        return fail(Ze::FileErrMap, ze::errorText(kRefusal));
    }
    return m_engine->unmap(address) || fail(*m_engine);
}

void CZeFileDevice::unsetError() {
    m_error = Ze::FileErrNone;
    clearErrorString();
}

int64_t CZeFileDevice::readData(char* data, int64_t maxSize) {
    if (!writePending())
        return -1;
    // Appending has moved the engine to the end, wherever reading stands.
    const bool isInPlace = !appends() || m_engine->seek(pos());
    const int64_t count = isInPlace ? m_engine->read(data, maxSize) : -1;
    if (count < 0)
        fail(*m_engine);
    return count;
}

int64_t CZeFileDevice::writeData(const char* data, int64_t size) {
    if (m_pendingSize == 0 && appends())
        setDevicePos(m_engine->size());
    if (size > INT64_MAX - pos()) {
        fail(Ze::FileErrWrite, ze::errorText(EFBIG));
        return -1;
    }
    if (size > kBufferSize - m_pendingSize && !writePending())
        return -1;
    if (size < kBufferSize && !m_pending)
        m_pending.reset(new (std::nothrow) char[kBufferSize]);
    if (size >= kBufferSize || !m_pending) {
        const int64_t written = writeThrough(data, size);
        return written > 0 ? written : -1;
    }
    std::memcpy(m_pending.get() + m_pendingSize, data, static_cast<size_t>(size));
    m_pendingSize += size;
    return size;
}

bool CZeFileDevice::fail(int error, const CZeString& text) {
    m_error = error;
    setErrorString(text);
    return false;
}

bool CZeFileDevice::appends() {
    return (openMode() & Ze::Append) && !isSequentialCached();
}

/// Writes the pending bytes. Those that it cannot write stay pending.
bool CZeFileDevice::writePending() {
    if (m_pendingSize == 0)
        return true;
    const int64_t written = writeThrough(m_pending.get(), m_pendingSize);
    m_pendingSize -= written;
    std::memmove(m_pending.get(), m_pending.get() + written, static_cast<size_t>(m_pendingSize));
    return m_pendingSize == 0;
}

/// Returns how many bytes were written; fewer than `size` after an error.
int64_t CZeFileDevice::writeThrough(const char* data, int64_t size) {
    int64_t written = 0;
    while (written < size) {
        const int64_t count = m_engine->write(data + written, size - written);
        if (count < 0) {
            fail(*m_engine);
            m_hasWriteFailed = true;
            break;
        }
        written += count;
    }
    return written;
}
