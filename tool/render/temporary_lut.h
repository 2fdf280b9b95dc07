// Tables on their way to the library, which takes them by the name of a file.

#pragma once

#include "tool/lut/lut_table.h"

#include <string>

namespace ze::tool {

/// A LUT file of the library's own without a place in any directory: it is gone with the object, or with the
/// process however that ends.
class TemporaryLut {
public:
    /// From a LUT file of the library's own, as it stands, or from anything else that can be baked, with the
    /// default levels; pictures in the layout that fits. Warns on standard error of clamped values and of
    /// levels that do not rise. Throws `Failure`: `badInput` when it cannot be read or is one-dimensional.
    explicit TemporaryLut(const std::string& path);
    ~TemporaryLut();
    TemporaryLut(const TemporaryLut&) = delete;
    TemporaryLut& operator=(const TemporaryLut&) = delete;

    /// Where this process can open it.
    std::string path() const;
    int levelCount() const { return m_levelCount; }

private:
    int m_levelCount;
    int m_file = -1;
};

} // namespace ze::tool
