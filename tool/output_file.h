// A file that appears whole or not at all.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ze::tool {

/// Takes the place of the file `path` when it is committed; until then the bytes are in a temporary file
/// beside it, which the destructor removes. Behind a symbolic link it is the file meant that is replaced, and
/// a replaced file's permissions are kept. All failures throw `Failure`.
class OutputFile {
public:
    OutputFile(const std::string& path, const std::vector<uint8_t>& bytes);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void commit();

private:
    std::string m_path;
    std::string m_target;
    std::string m_temporary;
};

} // namespace ze::tool
