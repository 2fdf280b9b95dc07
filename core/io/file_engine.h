// What does the work behind a file.

#pragma once

#include "core/export.h"
#include "core/io/file_error.h"
#include "core/tools/ze_string.h"

#include <cstdint>
#include <memory>

/// Access to one named file, unbuffered. Queries, `remove` and `rename` also work while it is closed. A
/// failure returns false, −1 or null and sets `error` and `errorString`, which stay until the next failure.
class ZE_EXPORT CZeFileEngine {
public:
    /// The engine that serves `fileName`: resources for names that begin with ":/", else the file system.
    /// Null when there is no memory for one.
    static std::unique_ptr<CZeFileEngine> create(const CZeString& fileName);

    CZeFileEngine();
    virtual ~CZeFileEngine();
    CZeFileEngine(const CZeFileEngine&) = delete;
    CZeFileEngine& operator=(const CZeFileEngine&) = delete;

    /// Opens the file, which is not open, with bits of Ze::OpenModeFlag.
    virtual bool open(int mode) = 0;
    /// Closes the file, if it is open. It is closed afterwards also when that reports a failure.
    virtual bool close() = 0;

    /// One transfer of up to `maxSize` bytes, at least 1, from the position; 0 at the end.
    virtual int64_t read(char* data, int64_t maxSize) = 0;
    /// One transfer of up to `size` bytes, at least 1; returns at least 1.
    virtual int64_t write(const char* data, int64_t size) = 0;
    /// Moves the position, in bytes from the start.
    virtual bool seek(int64_t pos) = 0;

    /// 0 when there is no such file.
    virtual int64_t size() const = 0;
    /// Has no positions, as a pipe.
    virtual bool isSequential() const = 0;
    /// There is something of that name.
    virtual bool exists() const = 0;
    /// There is a directory of that name.
    virtual bool isDirectory() const = 0;

    /// Removes the file from its directory.
    virtual bool remove() = 0;
    /// Gives the file the name `newName`, replacing a file of that name.
    virtual bool rename(const CZeString& newName) = 0;

    /// Whether `map` and `unmap` do anything but fail.
    virtual bool supportsMap() const;
    /// Maps `size` bytes, at least 1, from `offset` of the open file into memory, for the access it is open
    /// for. Valid until `unmap` or `close`.
    virtual unsigned char* map(int64_t offset, int64_t size);
    /// Takes back what `map` returned.
    virtual bool unmap(unsigned char* address);

    /// A value of Ze::FileError.
    int error() const { return m_error; }
    /// What went wrong, in words.
    CZeString errorString() const { return m_errorString; }

protected:
    /// Notes an error and returns false.
    bool fail(int error, const CZeString& text);

private:
    int m_error = Ze::FileErrNone;
    CZeString m_errorString;
};
