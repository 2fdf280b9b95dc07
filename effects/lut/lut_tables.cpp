#include "effects/lut/lut_tables.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ze {
namespace {

constexpr float kUniformTolerance = 1.0f / 512.0f;

float texelCenter(size_t index, size_t count) {
    return (static_cast<float>(index) + 0.5f) / static_cast<float>(count);
}

} // namespace

bool hasUniformLevels(std::span<const float> levels) {
    const bool spansAll = std::abs(levels.front()) <= kUniformTolerance &&
                          std::abs(levels.back() - 1.0f) <= kUniformTolerance && levels.size() >= 2;
    if (!spansAll)
        return false;
    float smallest = levels[1] - levels[0];
    float largest = smallest;
    for (size_t i = 0; i + 1 < levels.size(); ++i) {
        const float step = levels[i + 1] - levels[i];
        if (std::isnan(step))
            return false;
        smallest = std::min(smallest, step);
        largest = std::max(largest, step);
    }
    return largest - smallest <= kUniformTolerance;
}

void fillCoordinateMap(std::span<const float> levels, LutCoordinateMap& map) {
    const size_t count = levels.size();
    size_t j = 0; // the first level that is not below x; it only moves forward
    for (size_t k = 0; k < map.size(); ++k) {
        const float x = static_cast<float>(k) / 255.0f;
        while (x > levels[j]) {
            if (j + 1 == count) {
                // Behind the last level. Entry 255 is left out, and keeps what it holds.
                std::fill(map.begin() + static_cast<ptrdiff_t>(k), map.end() - 1,
                          texelCenter(count - 1, count));
                return;
            }
            ++j;
        }
        const float center = texelCenter(j, count);
        if (x == levels[j] || j == 0) {
            map[k] = center;
            continue;
        }
        const float before = texelCenter(j - 1, count);
        map[k] = before + (x - levels[j - 1]) / (levels[j] - levels[j - 1]) * (center - before);
    }
}

std::vector<uint8_t> lutTexels(const uint8_t* colorData, uint32_t levelCount) {
    const size_t rowSize = static_cast<size_t>(levelCount) * levelCount * 3;
    const size_t stride = (rowSize + 3) / 4 * 4;
    std::vector<uint8_t> texels(stride * levelCount);
    for (size_t row = 0; row < levelCount; ++row)
        std::memcpy(texels.data() + row * stride, colorData + row * rowSize, rowSize);
    return texels;
}

} // namespace ze
