// The abstract byte device.

#pragma once

#include "core/export.h"
#include "core/io/open_mode.h"
#include "core/tools/byte_array.h"
#include "core/tools/ze_string.h"

#include <cstdint>
#include <cstring>
#include <memory>

/// A source and sink of bytes with an open mode, a position and an error string. Reading is buffered: small
/// reads are served from a block that was read ahead. A subclass implements `readData` and `writeData`, and
/// overrides `seek` when it has a position of its own.
///
/// Every refusal is logged as a warning and returns false, −1 or a null array. A device is used by one thread
/// at a time; different devices may be used on different threads at once.
class ZE_EXPORT CZeIODevice {
public:
    CZeIODevice();
    virtual ~CZeIODevice();
    CZeIODevice(const CZeIODevice&) = delete;
    CZeIODevice& operator=(const CZeIODevice&) = delete;

    /// Opens the device with `mode`, bits of Ze::OpenModeFlag, at position 0 and without an error. Refused
    /// when the mode has neither ReadOnly nor WriteOnly.
    virtual bool open(int mode);
    /// Closes the device. False when something went wrong that `errorString` tells.
    virtual bool close();
    /// The mode of the open device; 0 for a closed one.
    int openMode() const { return m_openMode; }
    bool isOpen() const { return m_openMode != 0; }

    /// The bytes come once and in order, as from a pipe: there is no seeking and no peeking. `seek` and the
    /// like ask once and remember the answer.
    virtual bool isSequential() const;
    /// The number of bytes in the device, 0 where it is not known.
    virtual int64_t size() const;
    /// Where the next byte is read or written, counted from 0. For a sequential device the bytes read so far.
    int64_t pos() const { return m_devicePos - (m_limit - m_next); }
    /// Sets the position, which may lie behind the end. Refused on a sequential device, on a closed one, and
    /// for a negative position. The position stays when it fails.
    virtual bool seek(int64_t pos);
    /// There is nothing more to read now. May wait for the next byte of a sequential device.
    bool atEnd();

    /// Reads up to `maxSize` bytes and returns how many. Fewer mean the end of the device or an error on the
    /// way; a sequential device gives what is there and waits only when that is nothing. 0 means the end. −1
    /// when it is refused (a negative `maxSize`, no open device, one open without ReadOnly) or when nothing
    /// was read for an error. In text mode carriage returns are left out and not counted, except in the
    /// position.
    int64_t read(char* data, int64_t maxSize) {
        const int64_t available = m_limit - m_next;
        if (maxSize < 1 || maxSize > available || (m_openMode & Ze::Text))
            return readThrough(data, maxSize);
        if (maxSize == 1)
            *data = *m_next;
        else
            std::memcpy(data, m_next, static_cast<size_t>(maxSize));
        m_next += maxSize;
        return maxSize;
    }
    /// The same into an array, which is null after a failure. Memory is taken for the bytes that are there.
    /// Also refused when `maxSize` is above what a byte array can hold.
    CZeByteArray read(int64_t maxSize);
    /// All bytes up to the end; refused when a byte array cannot hold them.
    CZeByteArray readAll();

    /// Like `read`, and leaves the position where it was. Refused on a sequential device.
    int64_t peek(char* data, int64_t maxSize);
    CZeByteArray peek(int64_t maxSize);

    /// Reads up to and with the next line feed, at most `maxSize` − 1 bytes, puts a zero byte behind them and
    /// returns their number. 0 at the end; −1 as for `read`, and when `maxSize` is below 2.
    int64_t readLine(char* data, int64_t maxSize);

    /// Writes `size` bytes at the position and returns how many were accepted; −1 when it is refused (a
    /// negative `size`, no open device, one open without WriteOnly) or when none were for an error.
    int64_t write(const char* data, int64_t size);
    int64_t write(const CZeByteArray& data) { return write(data.constData(), data.size()); }

    /// What went wrong last; empty after `open`. An error without a text is "Unknown error".
    CZeString errorString() const { return m_errorString; }

protected:
    // No variable: one in an exported class is a unique symbol, which would keep the library from unloading.
    enum : int64_t { kBufferSize = 16384 };

    /// Reads 1 to `maxSize` bytes (at least 1) at the device's own position and moves that on. 0 at the end,
    /// −1 after an error, which it may describe with `setErrorString`.
    virtual int64_t readData(char* data, int64_t maxSize) = 0;
    /// Writes up to `size` bytes (at least 1) in the same way.
    virtual int64_t writeData(const char* data, int64_t size) = 0;

    /// Sets what `errorString` returns.
    void setErrorString(const CZeString& text);
    void clearErrorString() { m_errorString = CZeString(); }

    /// Asks `isSequential` unless that has been done.
    bool isSequentialCached();
    void forgetSequential() { m_sequential = Sequential::NotAsked; }

    /// Moves to `pos` when that lies within the block that was read last.
    bool seekInBuffer(int64_t pos);
    /// Takes the device back to `pos()`, so that it is not ahead of it. False when it cannot seek there.
    bool dropReadAhead();
    /// Says where the device is, when it has moved without reading or writing. Nothing may be read ahead.
    void setDevicePos(int64_t pos) { m_devicePos = pos; }

private:
    enum class Sequential : char { NotAsked = 0, Yes = 1, No = 2 };

    bool mayRead(int64_t maxSize) const;
    bool mayPeek(int64_t maxSize);
    int64_t readThrough(char* data, int64_t maxSize);
    CZeByteArray readArray(int64_t maxSize, bool untilEnd);
    int64_t takeBuffered(char* data, int64_t size);
    int64_t applyTextMode(char* data, int64_t size) const;
    int64_t fillBuffer();
    int64_t readDevice(char* data, int64_t maxSize);
    void advance(int64_t count);
    void forgetBuffer() { m_next = m_limit = m_buffer.get(); }

    std::unique_ptr<char[]> m_buffer; ///< Up to m_limit the bytes before m_devicePos.
    const char* m_next = nullptr;     ///< The byte at `pos()`, when it is below m_limit.
    const char* m_limit = nullptr;
    int64_t m_devicePos = 0; ///< Where readData and writeData go on.
    int m_openMode = 0;
    Sequential m_sequential = Sequential::NotAsked;
    CZeString m_errorString;
};
