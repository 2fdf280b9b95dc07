// Registered resources as files.

#pragma once

#include "core/io/file_engine.h"
#include "core/tools/byte_array.h"

/// Serves the nodes of CZeResourceInfo: they can be looked up, opened for reading, read and sought in, and
/// nothing else. An open file keeps its bytes, also when it is unregistered.
class ZE_EXPORT CZeResourceFileEngine : public CZeFileEngine {
public:
    /// An engine for the resource of that name, which is not looked up yet.
    explicit CZeResourceFileEngine(const CZeString& fileName);
    ~CZeResourceFileEngine() override;

    /// Any mode but ReadOnly, with or without Text, is refused.
    bool open(int mode) override;
    /// As in CZeFileEngine.
    bool close() override;

    int64_t read(char* data, int64_t maxSize) override;
    /// Refused.
    int64_t write(const char* data, int64_t size) override;
    /// As in CZeFileEngine.
    bool seek(int64_t pos) override;

    /// A closed file that is compressed is uncompressed for this.
    int64_t size() const override;
    /// As in CZeFileEngine.
    bool isSequential() const override;
    bool exists() const override;
    bool isDirectory() const override;

    /// Refused.
    bool remove() override;
    bool rename(const CZeString& newName) override;

private:
    bool refuseWriting(int error);

    CZeString m_fileName;
    CZeByteArray m_bytes; ///< Of the open file.
    int64_t m_pos = 0;
    bool m_isOpen = false;
};
