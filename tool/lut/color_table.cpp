#include "tool/lut/color_table.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace ze::tool {
namespace {

// More than float arithmetic strays from an exact 0 or 1.
constexpr float kNoise = 1e-5f;

// To 0 to 1; NaN becomes 0.
float clamped(float value) {
    return value > 0 ? std::min(value, 1.0f) : 0.0f;
}

uint8_t roundedTo8Bits(float value) {
    return static_cast<uint8_t>(std::lround(255 * clamped(value)));
}

// A position between two neighboring levels, or on an outer one for values beyond it.
struct Place {
    size_t lower = 0;
    size_t upper = 0;
    float fraction = 0;
};

Place placeOf(float value, const std::vector<float>& levels) {
    const auto above = std::upper_bound(levels.begin(), levels.end(), value);
    if (above == levels.begin())
        return {};
    const auto lower = static_cast<size_t>(above - levels.begin()) - 1;
    if (above == levels.end())
        return {lower, lower, 0};
    return {lower, lower + 1, (value - levels[lower]) / (*above - levels[lower])};
}

float mix(float first, float second, float fraction) {
    return first + (second - first) * fraction;
}

} // namespace

std::vector<float> evenLevels(size_t count) {
    return gammaLevels(count, 1);
}

std::vector<float> gammaLevels(size_t count, float gamma) {
    std::vector<float> levels;
    for (size_t i = 0; i < count; ++i)
        levels.push_back(
            static_cast<float>(std::pow(static_cast<double>(i) / static_cast<double>(count - 1), gamma)));
    return levels;
}

bool areRising(std::span<const float> levels) {
    for (size_t i = 0; i < levels.size(); ++i)
        if (std::isnan(levels[i]) || (i > 0 && !(levels[i] > levels[i - 1])))
            return false;
    return true;
}

std::vector<Color> latticeOf(const std::vector<float>& levels) {
    std::vector<Color> lattice;
    lattice.reserve(levels.size() * levels.size() * levels.size());
    for (const float red : levels)
        for (const float green : levels)
            for (const float blue : levels)
                lattice.push_back({red, green, blue});
    return lattice;
}

void clamp(std::vector<Color>& colors, Clamping& clamping) {
    clamping.total += 3 * colors.size();
    for (Color& color : colors)
        for (float& value : color) {
            if (!(value >= -kNoise && value <= 1 + kNoise))
                ++clamping.count;
            clamping.lowest = std::min(clamping.lowest, value); // NaN as second argument changes nothing
            clamping.highest = std::max(clamping.highest, value);
            value = clamped(value);
        }
}

ColorTable quantized(std::vector<float> levels, std::vector<Color> colors, Clamping& clamping) {
    clamp(colors, clamping);
    ColorTable table{std::move(levels), true, {}};
    table.colors.reserve(3 * colors.size());
    for (const Color& color : colors)
        for (const float value : color)
            table.colors.push_back(roundedTo8Bits(value));
    return table;
}

std::vector<Color> colorsOf(const ColorTable& table) {
    std::vector<Color> colors(table.colors.size() / 3);
    for (size_t i = 0; i < table.colors.size(); ++i)
        colors[i / 3][i % 3] = static_cast<float>(table.colors[i]) / 255;
    return colors;
}

ColorTable identityTable(std::vector<float> levels) {
    Clamping none;
    std::vector<Color> lattice = latticeOf(levels);
    return quantized(std::move(levels), std::move(lattice), none);
}

Color lookUp(const ColorTable& table, const Color& input) {
    const Place r = placeOf(input[0], table.levels);
    const Place g = placeOf(input[1], table.levels);
    const Place b = placeOf(input[2], table.levels);
    Color output = {};
    for (size_t i = 0; i < output.size(); ++i) {
        if (!table.isThreeDimensional) {
            const Place& place = i == 0 ? r : i == 1 ? g : b;
            output[i] =
                mix(table.colors[3 * place.lower + i], table.colors[3 * place.upper + i], place.fraction) /
                255;
            continue;
        }
        const auto alongBlue = [&](size_t red, size_t green) {
            return mix(table.entry(red, green, b.lower)[i], table.entry(red, green, b.upper)[i], b.fraction);
        };
        const auto alongGreen = [&](size_t red) {
            return mix(alongBlue(red, g.lower), alongBlue(red, g.upper), g.fraction);
        };
        output[i] = mix(alongGreen(r.lower), alongGreen(r.upper), r.fraction) / 255;
    }
    return output;
}

Difference differenceFromIdentity(const ColorTable& table) {
    const size_t n = table.levelCount();
    const size_t entryCount = table.colors.size() / 3;
    Difference difference;
    double sum = 0;
    for (size_t entry = 0; entry < entryCount; ++entry) {
        const Color input =
            table.isThreeDimensional
                ? Color{table.levels[entry / n / n], table.levels[entry / n % n], table.levels[entry % n]}
                : Color{table.levels[entry], table.levels[entry], table.levels[entry]};
        for (size_t i = 0; i < input.size(); ++i) {
            const int channel = std::abs(table.colors[3 * entry + i] - roundedTo8Bits(input[i]));
            sum += channel;
            if (channel > difference.largest) {
                difference.largest = channel;
                difference.largestAt = input;
            }
        }
    }
    difference.mean = sum / static_cast<double>(3 * entryCount);
    return difference;
}

} // namespace ze::tool
