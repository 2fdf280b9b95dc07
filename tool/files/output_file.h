// A file that appears whole or not at all.

#pragma once

#include "core/io/save_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ze::tool {

/// Writes `bytes` beside `path` and moves them there with `commit()`, as the library's `CZeSaveFile` does.
/// Without a commit nothing is left behind. All failures throw `Failure` (`failed`) with the reason.
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
