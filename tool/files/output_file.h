// A file that appears whole or not at all.

#pragma once

#include "core/io/save_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ze::tool {

/// Takes the place of the file `path` when it is committed, as the library's `CZeSaveFile` does it; without
/// that nothing stays behind. All failures throw `Failure` with the reason.
class OutputFile {
public:
    OutputFile(const std::string& path, const std::vector<uint8_t>& bytes);

    void commit();

private:
    void require(bool done) const;

    std::string m_path;
    CZeSaveFile m_file;
};

} // namespace ze::tool
