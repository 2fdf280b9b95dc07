// Color look-up tables, as LUT files hold them.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ze::tool {

/// Red, green and blue, black 0 and white 1.
using Color = std::array<float, 3>;

/// Output colors for a lattice of input colors. In three dimensions the entry for the level indices (r, g, b)
/// is number (r × N + g) × N + b. In one dimension each channel is looked up in the N entries by itself.
struct ColorTable {
    std::vector<float> levels; ///< The N inputs of a channel that have entries. They are meant to rise.
    bool isThreeDimensional = true;
    std::vector<uint8_t> colors; ///< Red, green and blue of each entry.

    size_t levelCount() const { return levels.size(); }
    const uint8_t* entry(size_t r, size_t g, size_t b) const {
        return colors.data() + 3 * ((r * levelCount() + g) * levelCount() + b);
    }
};

/// 0, 1/(count−1), …, 1. `count` is at least 2.
std::vector<float> evenLevels(size_t count);

/// The even levels to the power of `gamma`: above 1 they are dense in the shadows, below 1 in the highlights.
std::vector<float> gammaLevels(size_t count, float gamma);

/// Whether each level is above the one before it. NaN never is.
bool areRising(std::span<const float> levels);

/// The input colors of a three-dimensional table with these levels, in the order of its entries.
std::vector<Color> latticeOf(const std::vector<float>& levels);

/// The values of a table that had to be clamped to 0 to 1. NaN, which becomes 0, counts as well.
struct Clamping {
    size_t count = 0;
    size_t total = 0; ///< All values, clamped or not.
    float lowest = 0;
    float highest = 1;
};

/// Clamps `colors` to 0 to 1 and reports in `clamping` what lay outside by more than the noise of float
/// arithmetic.
void clamp(std::vector<Color>& colors, Clamping& clamping);

/// The three-dimensional table of `colors`, one for each point of its lattice, clamped as above and
/// rounded to 8 bits.
ColorTable quantized(std::vector<float> levels, std::vector<Color> colors, Clamping& clamping);

/// The exact colors of the entries of `table`.
std::vector<Color> colorsOf(const ColorTable& table);

/// The table of `levels` that changes nothing, up to rounding.
ColorTable identityTable(std::vector<float> levels);

/// What `table` makes of `input`: interpolated linearly along each axis, as the library draws it; inputs
/// beyond the outer levels get what those have.
Color lookUp(const ColorTable& table, const Color& input);

/// How far a table is from one that changes nothing, in steps of 8-bit channels.
struct Difference {
    int largest = 0;
    Color largestAt = {}; ///< An input color that has the largest difference in one of its channels.
    double mean = 0;      ///< Over all channels of all entries.
};

/// Compares `table` with the rounded identity on its own levels. A level that is NaN counts as 0.
Difference differenceFromIdentity(const ColorTable& table);

} // namespace ze::tool
