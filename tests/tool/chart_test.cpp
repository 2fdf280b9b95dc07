#include "tool/chart.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

using namespace ze::tool;

TEST(Chart, PatchesCoverEverySizeAndNoiseStaysNearTheirColourAndOffTheHair) {
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 17}, {320, 240}}) {
        const Picture clean = drawChart(width, height, ChartNoise::none);
        const Picture noisy = drawChart(width, height, ChartNoise::speckled);
        std::multiset<size_t> covered;
        for (const ChartPatch& patch : chartPatches(width, height))
            for (int y = patch.area.top; y < patch.area.top + patch.area.height; ++y)
                for (int x = patch.area.left; x < patch.area.left + patch.area.width; ++x) {
                    const bool isHair = patch.kind == PatchKind::hair;
                    const Rgb colour = clean.at(x, y);
                    covered.insert(clean.index(x, y));
                    ASSERT_TRUE(colour == patch.colour || (isHair && colour == kHairGround));
                    // Two spots may lie on each other.
                    ASSERT_LE(std::abs(noisy.at(x, y).green - colour.green), isHair ? 0 : 12 + 2 * 25);
                }
        EXPECT_EQ(covered.size(), static_cast<size_t>(width * height)) << "overlap or gap";
        EXPECT_EQ(std::set(covered.begin(), covered.end()).size(), covered.size());
        EXPECT_EQ(noisy.rgb == clean.rgb, width == 1);
    }
}
