// The arithmetic of the look-up table.

#include "effects/lut/lut_tables.h"
#include "tests/support/lut_file.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>

namespace ze {
namespace {

using Levels = std::vector<float>;

constexpr float kTolerance = 1 / 512.0f;
const float kNan = std::numeric_limits<float>::quiet_NaN();

float above(float value) {
    return std::nextafter(value, 2.0f);
}

TEST(LutTables, LevelsAreUniformWithinA512thAtTheEndsAndBetweenTheSteps) {
    const float moved = 0.5f + kTolerance / 2; // one step longer, the other shorter by as much
    const float beyond = above(kTolerance);
    const Levels uniform[] = {
        // clang-format off
        evenLevels(65), {0, moved, 1}, {kTolerance, 1}, {-kTolerance, 1}, {0, 1 - kTolerance}, {0, 1 + kTolerance},
        // clang-format on
    };
    const Levels others[] = {
        // clang-format off
        {0, above(moved), 1}, {0, 1 - above(moved), 1}, {beyond, 1}, {-beyond, 1}, {0, above(1 + kTolerance)},
        {0, std::nextafter(1 - kTolerance, 0.0f)}, {0}, {1}, {1, 0}, {kNan, 1}, {0, kNan}, {0, kNan, 1},
        // clang-format on
    };
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

TEST(LutTables, TheMapRunsFromTexelToTexelAndItsTailEndsBeforeEntry255) {
    const float center = 2.5f / 3; // of the last of three texels
    for (float last : {0.7f, 254.0f / 255, 1.0f, 1.5f}) {
        const LutCoordinateMap map = mapOf({0, 0.2f, last});
        EXPECT_EQ(map[0], 0.5f / 3);
        EXPECT_NEAR(map[51], 0.5f, 1e-6f);
        EXPECT_NEAR(map[254], 0.5f + (std::min(last, 254.0f / 255) - 0.2f) / (last - 0.2f) / 3, 2e-6f)
            << last;
        // Behind the last level the last entry alone keeps what it held.
        EXPECT_NEAR(map[255], last < 1 ? 7 : 0.5f + (center - 0.5f) * 0.8f / (last - 0.2f), 2e-6f) << last;
    }
    EXPECT_EQ(mapOf({0, 0.2f, 0.2f, 1})[51], 1.5f / 4); // the first of two levels at 51 / 255
    EXPECT_THAT(mapOf({1, 0.5f, 0}), testing::Each(0.5f / 3));
    EXPECT_EQ(mapOf({kNan})[255], 0.5f);
    EXPECT_TRUE(std::isnan(mapOf({0, kNan, 1})[254]));
}

} // namespace
} // namespace ze
