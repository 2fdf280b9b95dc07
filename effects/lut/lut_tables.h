// The arithmetic of a color look-up table: where its levels lie on the grid, and how its colors become
// texels.

#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace ze {

/// For each 8-bit level of an input channel the texture coordinate on an axis of one texel per table level.
using LutCoordinateMap = std::array<float, 256>;

/// What a draw needs to know of the loaded table.
struct LutTables {
    LutCoordinateMap coordinateMap{};
    uint32_t levelCount = 0;
    bool uniformLevels = false; ///< The map is not needed: a factor and an offset do.
    uint32_t textureWidth = 0;
    uint32_t textureHeight = 0;
};

/// Whether `levels` (one at least, any values) are 0, 1/(N−1), 2/(N−1), …, 1, all within 1/512: both ends,
/// and the steps between neighbors among each other. A step that is not a number makes them not uniform.
bool hasUniformLevels(std::span<const float> levels);

/// Fills `map` for `levels` (one at least). An input on a level gets the center of that level's texel, one
/// between two levels a coordinate between their centers, one below the first level or above the last one
/// that level's center, except that entry 255 keeps its value when 1.0 lies above the last level. The levels
/// are meant to rise; others give a map of any values.
void fillCoordinateMap(std::span<const float> levels, LutCoordinateMap& map);

/// The texels of a texture of N² × N from the N³ × 3 bytes of a table with `levelCount` levels: row r holds
/// all entries of red index r in their order. Rows are padded with zeros to a multiple of 4 bytes.
std::vector<uint8_t> lutTexels(const uint8_t* colorData, uint32_t levelCount);

} // namespace ze
