#include "tool/chart.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

using namespace ze::tool;

TEST(Chart, PatchesCoverEverySizeWithoutGapOrOverlap) {
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 17}, {320, 240}}) {
        std::vector<int> covered(static_cast<size_t>(width * height));
        for (const ChartPatch& patch : chartPatches(width, height))
            for (int y = patch.area.top; y < patch.area.top + patch.area.height; ++y)
                for (int x = patch.area.left; x < patch.area.left + patch.area.width; ++x)
                    ++covered.at(static_cast<size_t>(y * width + x));
        EXPECT_EQ(std::set(covered.begin(), covered.end()), std::set{1}) << width << "x" << height;
    }
}

TEST(Chart, NoiseStaysNearTheColourAndOffTheHair) {
    const Picture clean = drawChart(320, 240, ChartNoise::none);
    const Picture noisy = drawChart(320, 240, ChartNoise::speckled);
    EXPECT_EQ(noisy.rgb, drawChart(320, 240, ChartNoise::speckled).rgb);
    for (const ChartPatch& patch : chartPatches(320, 240)) {
        int largest = 0;
        bool ground = false;
        for (int y = patch.area.top; y < patch.area.top + patch.area.height; ++y)
            for (int x = patch.area.left; x < patch.area.left + patch.area.width; ++x) {
                const Rgb colour = clean.at(x, y);
                ground = ground || colour == kHairGround;
                ASSERT_TRUE(colour == patch.colour ||
                            (patch.kind == PatchKind::hair && colour == kHairGround));
                largest = std::max(largest, std::abs(noisy.at(x, y).green - colour.green));
            }
        EXPECT_EQ(ground, patch.kind == PatchKind::hair || patch.colour == kHairGround);
        EXPECT_EQ(largest > 10, patch.kind != PatchKind::hair);
        EXPECT_LE(largest, 12 + 2 * 25); // Two spots may lie on each other.
    }
}
