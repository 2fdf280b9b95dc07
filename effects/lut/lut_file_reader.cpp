#include "effects/lut/lut_file_reader.h"

#include "core/io/file.h"
#include "effects/lut/lut_format.h"
#include "log/log_stream.h"

#include <bit>
#include <cstring>
#include <limits>
#include <utility>

#include <stdlib.h> // posix_memalign

namespace ze {
namespace {

using namespace lut_format;

constexpr size_t kColorAlignment = 64;

bool readWhole(CZeFile& file, unsigned char* bytes, size_t size) {
    const auto count = static_cast<int64_t>(size);
    return file.read(reinterpret_cast<char*>(bytes), count) == count;
}

template <class Unsigned>
Unsigned littleEndian(const unsigned char* bytes) {
    Unsigned value = 0;
    for (size_t i = 0; i < sizeof(Unsigned); ++i)
        value |= static_cast<Unsigned>(bytes[i]) << (8 * i);
    return value;
}

} // namespace

struct CLutFileReader::Header {
    uint32_t version;
    uint32_t levelCount;
    uint32_t reserved;
    uint32_t dimensionFlag;
    uint64_t levelsOffset;
};

void CLutFileReader::Free::operator()(uint8_t* block) const {
    free(block);
}

CLutFileReader::CLutFileReader(const CZeString& path) noexcept : m_path(path) {
    CZeFile file(m_path);
    if (!file.open(Ze::ReadOnly)) {
        ZeLogError() << "Failed to open lut file " << m_path;
        return;
    }
    Header header{};
    std::vector<float> levels;
    if (!readSignature(file) || !readVersion(file) || !readHeader(file, header) ||
        !readLevels(file, header, levels))
        return;
    ColorBlock colors = readColors(file, header);
    if (!colors)
        return;
    m_version = header.version;
    m_isThreeDimensional = header.dimensionFlag != 0;
    m_levelValues.swap(levels);
    m_reserved = header.reserved;
    m_colorData = std::move(colors);
}

bool CLutFileReader::readSignature(CZeFile& file) {
    unsigned char bytes[kSignature.size()];
    if (!readWhole(file, bytes, sizeof bytes))
        return false;
    if (std::memcmp(bytes, kSignature.data(), sizeof bytes) != 0) {
        ZeLogError() << "Invalid lut file signature!";
        return false;
    }
    return true;
}

bool CLutFileReader::readVersion(CZeFile& file) {
    unsigned char bytes[4];
    return readWhole(file, bytes, sizeof bytes) && littleEndian<uint32_t>(bytes) == kVersion;
}

bool CLutFileReader::readHeader(CZeFile& file, Header& header) {
    if (!file.seek(0))
        return false;
    unsigned char bytes[kHeaderSize];
    if (!readWhole(file, bytes, sizeof bytes)) {
        ZeLogError() << "Failed to read lut file header!";
        return false;
    }
    header = {littleEndian<uint32_t>(bytes + kVersionAt), littleEndian<uint32_t>(bytes + kLevelCountAt),
              littleEndian<uint32_t>(bytes + kReservedAt), littleEndian<uint32_t>(bytes + kDimensionFlagAt),
              littleEndian<uint64_t>(bytes + kLevelsOffsetAt)};
    return header.reserved == 0 && header.levelCount >= 1 && header.levelCount <= kMaxLevelCount;
}

bool CLutFileReader::readLevels(CZeFile& file, const Header& header, std::vector<float>& levels) {
    // No file has a position above this; asking for it would be logged.
    if (header.levelsOffset > static_cast<uint64_t>(std::numeric_limits<int64_t>::max()))
        return false;
    if (!file.seek(static_cast<int64_t>(header.levelsOffset)))
        return false;
    unsigned char bytes[4 * kMaxLevelCount];
    if (!readWhole(file, bytes, 4 * header.levelCount)) {
        ZeLogError() << "Failed to read lut level values!";
        return false;
    }
    levels.resize(header.levelCount);
    for (size_t i = 0; i < levels.size(); ++i)
        levels[i] = std::bit_cast<float>(littleEndian<uint32_t>(bytes + 4 * i));
    return true;
}

CLutFileReader::ColorBlock CLutFileReader::readColors(CZeFile& file, const Header& header) {
    const uint32_t n = header.levelCount;
    const uint32_t size = (header.dimensionFlag != 0 ? n * n * n : n) * 3; // 823,875 at most
    void* block = nullptr;
    if (posix_memalign(&block, kColorAlignment, size) != 0)
        return nullptr;
    ColorBlock colors(static_cast<uint8_t*>(block));
    if (!readWhole(file, colors.get(), size)) {
        ZeLogError() << "Failed to read lut data!";
        return nullptr;
    }
    return colors;
}

} // namespace ze
