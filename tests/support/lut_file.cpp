#include "tests/support/lut_file.h"

#include <algorithm>
#include <bit>
#include <fstream>
#include <random>

std::vector<float> evenLevels(size_t count) {
    std::vector<float> levels;
    for (size_t i = 0; i < count; ++i)
        levels.push_back(static_cast<float>(i) / static_cast<float>(std::max<size_t>(count - 1, 1)));
    return levels;
}

LutFile& LutFile::fillWithNoise() {
    const size_t n = levels.size();
    std::mt19937 random(static_cast<uint32_t>(n));
    colors.resize(3 * (isThreeDimensional ? n * n * n : n));
    for (uint8_t& level : colors)
        level = static_cast<uint8_t>(random() >> 24);
    return *this;
}

std::string LutFile::bytes() const {
    constexpr size_t kHeaderSize = 48;
    const size_t levelsOffset = kHeaderSize + gap;
    std::string bytes(levelsOffset + 4 * levels.size(), '\0');
    bytes.replace(0, 8, ".QX-LUT ");
    putLittleEndian(bytes, 8, 4, 1); // version
    putLittleEndian(bytes, 12, 4, levels.size());
    putLittleEndian(bytes, 20, 4, isThreeDimensional);
    putLittleEndian(bytes, 32, 8, levelsOffset);
    for (size_t i = 0; i < levels.size(); ++i)
        putLittleEndian(bytes, levelsOffset + 4 * i, 4, std::bit_cast<uint32_t>(levels[i]));
    return bytes.append(colors.begin(), colors.end());
}

void putLittleEndian(std::string& bytes, size_t at, size_t size, uint64_t value) {
    for (size_t i = 0; i < size; ++i)
        bytes.at(at + i) = static_cast<char>(value >> (8 * i) & 0xFF);
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}
