// LUT files for the library to draw with, which takes tables by file name only.

#pragma once

#include "tool/files/memory_file.h"
#include "tool/lut/color_table.h"

#include <string>

namespace ze::tool {

/// A LUT file in memory.
class TemporaryLut {
public:
    /// From a LUT file, as it is, or anything else that can be baked, with the default levels; a picture in
    /// whichever layout fits, the first of several color corrections. "-" is standard input. Warns on
    /// standard error of clamped values and of levels that do not rise. Throws `Failure`, `badInput` when
    /// `path` cannot be read or is a one-dimensional LUT file.
    explicit TemporaryLut(const std::string& path);

    explicit TemporaryLut(const ColorTable& table);

    /// The name by which this process can open it.
    std::string path() const { return m_file.path(); }
    int levelCount() const { return m_levelCount; }

private:
    int m_levelCount;
    MemoryFile m_file;
};

} // namespace ze::tool
