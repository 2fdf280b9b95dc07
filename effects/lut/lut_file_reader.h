// The reader of LUT files: the levels and colors of a look-up table.

#pragma once

#include "core/tools/ze_string.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class CZeFile;

namespace ze {

/// Reads one LUT file whole; docs/lut.md has the format. The levels are taken as they are: nobody has checked
/// that they rise, or are numbers.
class CLutFileReader {
public:
    /// Reads the file at `path` and closes it. Ask `isValid` what came of it. Five failures are logged:
    /// a file that cannot be opened, a wrong signature, a header, levels or colors that end early. Others
    /// are silent: a file that ends before its version does, a wrong version, a reserved field that is not 0,
    /// a level count out of range, an offset that cannot be sought, no memory for the colors.
    explicit CLutFileReader(const CZeString& path) noexcept;

    /// Everything has been read. Otherwise there are neither levels nor colors.
    bool isValid() const { return !m_levelValues.empty(); }

    CZeString path() const { return m_path; }
    uint32_t version() const { return m_version; } ///< 0 when nothing was read
    bool isThreeDimensional() const { return m_isThreeDimensional; }
    uint32_t levelCount() const { return static_cast<uint32_t>(m_levelValues.size()); }
    /// `levelCount` values; null when there are none. They live as long as the reader, as do the colors.
    const float* levelValues() const { return m_levelValues.empty() ? nullptr : m_levelValues.data(); }
    /// The colors as the file has them, on a multiple of 64 bytes; null when there are none.
    const uint8_t* colorData() const { return m_colorData.get(); }

private:
    struct Header;
    struct Free {
        void operator()(uint8_t* block) const;
    };
    using ColorBlock = std::unique_ptr<uint8_t, Free>;

    static bool readSignature(CZeFile& file);
    static bool readVersion(CZeFile& file);
    static bool readHeader(CZeFile& file, Header& header);
    static bool readLevels(CZeFile& file, const Header& header, std::vector<float>& levels);
    static ColorBlock readColors(CZeFile& file, const Header& header);

    CZeString m_path;
    uint32_t m_version = 0;
    bool m_isThreeDimensional = true;
    std::vector<float> m_levelValues;
    uint32_t m_reserved = 0; ///< Always 0: another value is refused.
    ColorBlock m_colorData;
};

} // namespace ze
