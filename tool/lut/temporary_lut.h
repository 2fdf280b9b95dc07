// LUT files for the library to draw with, which takes tables by file name only.

#pragma once

#include "tool/lut/color_table.h"

#include <string>

namespace ze::tool {

/// A LUT file in memory, in no directory: it is gone when this object or the process ends, however that
/// happens.
class TemporaryLut {
public:
    /// From a LUT file, as it is, or anything else that can be baked, with the default levels; a picture in
    /// whichever layout fits. Warns on standard error of clamped values and of levels that do not rise.
    /// Throws `Failure`, `badInput` when `path` cannot be read or is a one-dimensional LUT file.
    explicit TemporaryLut(const std::string& path);
    ~TemporaryLut();
    TemporaryLut(const TemporaryLut&) = delete;
    TemporaryLut& operator=(const TemporaryLut&) = delete;

    /// The name by which this process can open it.
    std::string path() const;
    int levelCount() const { return m_levelCount; }

private:
    int m_levelCount;
    int m_file = -1;
};

} // namespace ze::tool
