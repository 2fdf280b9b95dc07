// Bytes under a file name, for readers that take nothing else.

#pragma once

#include <string>
#include <string_view>

namespace ze::tool {

/// A file in memory, in no directory: it is gone when this object or the process ends, however that happens.
class MemoryFile {
public:
    /// Throws `Failure` (`failed`) when there is no room for `bytes`.
    explicit MemoryFile(std::string_view bytes);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// The name by which this process can open it. Later files can have the same.
    std::string path() const;

private:
    int m_file;
};

} // namespace ze::tool
