// The arithmetic of the look-up table.

#include "effects/lut/lut_tables.h"
#include "tests/support/lut_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gmock/gmock.h>

namespace ze {
namespace {

using Levels = std::vector<float>;

constexpr float kTolerance = 1 / 512.0f;
const float kNan = std::numeric_limits<float>::quiet_NaN();
const float kInfinity = std::numeric_limits<float>::infinity();

float above(float value) {
    return std::nextafter(value, 2.0f);
}

TEST(LutTables, LevelsAreUniformWithinA512thAtTheEndsAndBetweenTheSteps) {
    const float moved = 0.5f + kTolerance / 2; // one step longer, the other shorter by as much
    const float beyond = above(kTolerance);
    // clang-format off
    const Levels uniform[] = {
        evenLevels(65), {0, moved, 1}, {kTolerance, 1}, {-kTolerance, 1}, {0, 1 - kTolerance}, {0, 1 + kTolerance}};
    const Levels others[] = {
        {0, above(moved), 1}, {0, 1 - above(moved), 1}, {beyond, 1}, {-beyond, 1}, {0, above(1 + kTolerance)},
        {0, std::nextafter(1 - kTolerance, 0.0f)}, {0}, {1}, {1, 0}, {kNan, 1}, {0, kNan}, {0, kNan, 1}};
    // clang-format on
    for (const Levels& levels : uniform)
        EXPECT_TRUE(hasUniformLevels(levels)) << testing::PrintToString(levels);
    for (const Levels& levels : others)
        EXPECT_FALSE(hasUniformLevels(levels)) << testing::PrintToString(levels);
}

LutCoordinateMap mapOf(const Levels& levels) {
    LutCoordinateMap map;
    map.fill(7);
    fillCoordinateMap(levels, map);
    return map;
}

/// The coordinate of `x`: straight lines through the levels and the centres of their texels.
double coordinate(const Levels& levels, double x) {
    const auto n = double(levels.size());
    const auto next = std::upper_bound(levels.begin(), levels.end(), x);
    const auto j = double(next - levels.begin());
    if (next == levels.begin() || next == levels.end())
        return (next == levels.begin() ? 0.5 : n - 0.5) / n;
    return (j - 0.5 + (x - *(next - 1)) / (double(*next) - double(*(next - 1)))) / n;
}

TEST(LutTables, TheMapRunsStraightFromLevelToLevelAndItsTailEndsBeforeEntry255) {
    std::mt19937 random(1);
    for (size_t n : {1u, 2u, 3u, 17u, 65u})
        for (float last : {0.7f, 253.0f / 255, 254.0f / 255, 1.0f, 1.5f}) {
            Levels levels(n);
            for (float& level : levels)
                level = float(random() % 10000) / 10000 * last;
            std::ranges::sort(levels);
            levels.back() = last;
            const LutCoordinateMap map = mapOf(levels);
            for (size_t k = 0; k < 255; ++k)
                EXPECT_NEAR(map[k], coordinate(levels, double(float(k) / 255)), 2e-6) << n << ", " << k;
            // Behind the last level the last entry alone keeps what it held.
            EXPECT_NEAR(map[255], last < 1 ? 7 : coordinate(levels, 1), 2e-6) << n << ", " << last;
        }
}

TEST(LutTables, LevelsThatDoNotRiseGiveAMapAllTheSame) {
    EXPECT_EQ(mapOf({0, 0.2f, 0.2f, 1})[51], 1.5f / 4); // the first of two levels at 51 / 255
    EXPECT_THAT(mapOf({1, 0.5f, 0}), testing::Each(0.5f / 3));
    EXPECT_EQ(mapOf({kNan})[255], 0.5f);
    EXPECT_TRUE(std::isnan(mapOf({0, kNan, 1})[254]));
    EXPECT_EQ(mapOf({-kInfinity, -kInfinity})[254], 0.75f);
}

} // namespace
} // namespace ze
