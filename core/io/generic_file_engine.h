// Files of the local file system.

#pragma once

#include "core/io/file_engine.h"

#include <cstdio>
#include <vector>

/// Serves the file system through the platform's calls. A call that a signal interrupts is made again.
class ZE_EXPORT CZeGenericFileEngine : public CZeFileEngine {
public:
    /// An engine for the file of that name, which is not touched.
    explicit CZeGenericFileEngine(const CZeString& fileName);
    /// Closes the file.
    ~CZeGenericFileEngine() override;

    /// The directory for temporary files: the environment's TMPDIR, or "/tmp" when that is unset or empty.
    static CZeString tempPath();

    /// The work behind CZeDir, which says what becomes of the directory and when the result is true. Nothing
    /// is logged.
    static bool mkpath(const CZeString& path);
    static bool rmdir(const CZeString& path);
    static bool removeRecursively(const CZeString& path);

    /// An empty name is refused with a warning.
    bool open(int mode) override;
    /// Takes over `descriptor`, which is open on this engine's file and fits `mode`.
    void adoptDescriptor(int descriptor, int mode);
    /// The descriptor of the open file; −1 while it is closed.
    int descriptor() const { return m_descriptor; }
    /// As in CZeFileEngine.
    bool close() override;

    int64_t read(char* data, int64_t maxSize) override;
    int64_t write(const char* data, int64_t size) override;
    bool seek(int64_t pos) override;
    /// Waits until what was written is on the disk.
    bool sync();

    /// A closed file is asked for by its name; when there is none, that is logged as a warning.
    int64_t size() const override;
    bool isSequential() const override;
    bool exists() const override;
    bool isDirectory() const override;

    /// As in CZeFileEngine.
    bool remove() override;
    bool rename(const CZeString& newName) override;

    bool supportsMap() const override;
    /// A range that ends behind the end of the file is refused with a warning.
    unsigned char* map(int64_t offset, int64_t size) override;
    bool unmap(unsigned char* address) override;

private:
    struct Mapping {
        unsigned char* address; ///< as returned
        void* start;            ///< of the first page
        size_t length;          ///< from `start`
    };

    bool failSystemCall(int error);
    const char* streamMode(int mode) const;

    CZeString m_fileName;
    /// Of a file opened by name. What a mode does to a file is defined by the mode strings of fopen, so that
    /// opens it. Everything else goes through the descriptor: the device above has a buffer already.
    std::FILE* m_stream = nullptr;
    int m_descriptor = -1;
    int m_mode = 0;
    std::vector<Mapping> m_mappings;
};
