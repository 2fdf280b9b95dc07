// A device on a file engine.

#pragma once

#include "core/io/file_engine.h"
#include "core/io/io_device.h"

#include <memory>

/// A device that a file engine serves while it is open. Writing is buffered as well as reading: a write error
/// may show at a later `write`, `flush`, `seek`, `read` or `close`. Bytes that could not be written then are
/// kept and tried again by the next of these; only `close` gives them up.
class ZE_EXPORT CZeFileDevice : public CZeIODevice {
public:
    /// Closes the device. Bytes that cannot be written are lost without a word: call `close` to know.
    ~CZeFileDevice() override;

    bool open(int mode) override = 0;
    /// Writes what is buffered. Also the errors of the file system come out here and in `close`. Closed
    /// devices are refused with a warning.
    bool flush();
    /// Writes what is buffered, takes all mappings back and closes the file. False when bytes were lost.
    bool close() override;

    /// Closed devices are refused with a warning of their own.
    bool seek(int64_t pos) override;
    /// Includes what is buffered for writing.
    int64_t size() const override;
    bool isSequential() const override;

    /// Maps `size` bytes, at least 1, from `offset` of the open file into memory, for the access it is open
    /// for. They must not reach behind the end of the file. Valid until `unmap` or `close`; null on failure.
    unsigned char* map(int64_t offset, int64_t size);
    /// Takes back what `map` returned. False for anything else, or when the device is closed.
    bool unmap(unsigned char* address);

    /// The code of the last error, a value of Ze::FileError. Code and text stay, also when the file is
    /// closed, until another error or until the next opening, removing, renaming or `unsetError`.
    int error() const { return m_error; }
    void unsetError();

protected:
    CZeFileDevice();

    /// Opens the device on an engine that is open with `mode`.
    bool openEngine(std::unique_ptr<CZeFileEngine> engine, int mode);
    /// The open engine; null while the device is closed.
    CZeFileEngine* engine() const { return m_engine.get(); }
    /// Gives up what is buffered for writing.
    void forgetPending() { m_pendingSize = 0; }
    /// A write has failed since the device was opened.
    bool hasWriteFailed() const { return m_hasWriteFailed; }

    int64_t readData(char* data, int64_t maxSize) override;
    int64_t writeData(const char* data, int64_t size) override;

    /// Notes an error and returns false.
    bool fail(int error, const CZeString& text);
    bool fail(const CZeFileEngine& engine) { return fail(engine.error(), engine.errorString()); }

private:
    bool appends();
    bool writePending();
    int64_t writeThrough(const char* data, int64_t size);

    std::unique_ptr<CZeFileEngine> m_engine; ///< Stands at `pos()` less the pending bytes.
    std::unique_ptr<char[]> m_pending;       ///< Accepted, but not written yet.
    int64_t m_pendingSize = 0;
    int m_error = Ze::FileErrNone;
    bool m_hasWriteFailed = false;
};
