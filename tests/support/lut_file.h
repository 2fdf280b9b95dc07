// LUT files, written byte by byte.

#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// 0, 1/(count−1), …, 1; one alone is 0.
std::vector<float> evenLevels(size_t count);

/// What a LUT file holds.
struct LutFile {
    std::vector<float> levels;
    bool isThreeDimensional = true;
    size_t gap = 0;                   ///< bytes between the header and the levels
    std::vector<uint8_t> colors = {}; ///< R, G and B of each entry

    /// Colors without order.
    LutFile& fillWithNoise();

    /// Each entry of a three-dimensional table has `level(index)` for the index of each channel.
    template <class Level>
    LutFile& fill(Level level) {
        colors.clear();
        for (size_t r = 0; r < levels.size(); ++r)
            for (size_t g = 0; g < levels.size(); ++g)
                for (size_t b = 0; b < levels.size(); ++b)
                    for (size_t index : {r, g, b})
                        colors.push_back(static_cast<uint8_t>(std::lround(level(index))));
        return *this;
    }

    std::string bytes() const;
};

/// Sets `size` bytes from `at` on to `value`, the lowest byte first.
void putLittleEndian(std::string& bytes, size_t at, size_t size, uint64_t value);

void writeFile(const std::string& path, const std::string& bytes);
