#include "tool/chart.h"
#include "tool/yuv_frame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

using namespace ze::tool;

namespace {

struct Coefficients {
    ColourStandard standard;
    double red, blue;
};
constexpr Coefficients kStandards[] = {{ColourStandard::bt601, 0.299, 0.114},
                                       {ColourStandard::bt709, 0.2126, 0.0722}};

std::vector<YuvDescription> allDescriptions() {
    std::vector<YuvDescription> all;
    for (const ChromaOrder order : {ChromaOrder::nv12, ChromaOrder::nv21})
        for (const Coefficients& coefficients : kStandards)
            for (const ColourRange range : {ColourRange::full, ColourRange::video})
                all.push_back({order, coefficients.standard, range});
    return all;
}

struct Yuv {
    double y, u, v;
};

// The definitions of BT.601 and BT.709.
Yuv expectedYuv(Rgb colour, const YuvDescription& description) {
    const Coefficients& k = kStandards[static_cast<size_t>(description.standard)];
    const bool full = description.range == ColourRange::full;
    const double luma = k.red * colour.red + (1 - k.red - k.blue) * colour.green + k.blue * colour.blue;
    const double chroma = full ? 1 : 224 / 255.0;
    return {full ? luma : 16 + luma * 219 / 255, 128 + chroma * (colour.blue - luma) / (2 - 2 * k.blue),
            128 + chroma * (colour.red - luma) / (2 - 2 * k.red)};
}

void expectYuv(Rgb colour, const YuvFrame& frame, size_t luma, size_t pair) {
    const Yuv expected = expectedYuv(colour, frame.description);
    const bool nv21 = frame.description.order == ChromaOrder::nv21;
    EXPECT_NEAR(frame.luma.at(luma), expected.y, 1.01);
    EXPECT_NEAR(frame.chroma.at(2 * pair + nv21), std::min(expected.u, 255.0), 1.01);
    EXPECT_NEAR(frame.chroma.at(2 * pair + !nv21), std::min(expected.v, 255.0), 1.01);
}

} // namespace

TEST(YuvFrame, FollowsTheStandardsUpToTheOddEdges) {
    constexpr Rgb kBlue = {20, 60, 220}, kRed = {230, 40, 30}, kGreen = {10, 180, 70};
    Picture picture(5, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            picture.set(x, y, y == 2 ? kGreen : x == 4 ? kRed : kBlue);
    for (const YuvDescription& description : allDescriptions()) {
        const YuvFrame frame = yuvFromPicture(picture, description);
        ASSERT_EQ(frame.luma.size(), 15u);
        ASSERT_EQ(frame.chroma.size(), 12u);
        expectYuv(kBlue, frame, 0, 0);
        expectYuv(kRed, frame, 4, 2);
        expectYuv(kGreen, frame, 10, 3);
        expectYuv(kGreen, frame, 14, 5);
    }
}

TEST(YuvFrame, ComesBackCloseToThePicture) {
    constexpr std::pair<int, int> kSizes[] = {{1, 1}, {5, 3}, {33, 17}, {321, 241}};
    for (const auto& [width, height] : kSizes) {
        const Picture chart = drawChart(width, height, ChartNoise::none);
        for (const YuvDescription& description : allDescriptions()) {
            const Picture back = pictureFromYuv(yuvFromPicture(chart, description));
            ASSERT_EQ(back.rgb.size(), chart.rgb.size());
            for (const ChartPatch& patch : chartPatches(width, height)) {
                // Chroma bleeds across borders by up to two pixels.
                const Rectangle area = patch.area;
                if (patch.kind == PatchKind::hair)
                    continue;
                for (int y = area.top + 2; y < area.top + area.height - 2; ++y)
                    for (int x = area.left + 2; x < area.left + area.width - 2; ++x)
                        for (size_t i = 0; i < 3; ++i)
                            ASSERT_NEAR(back.row(y)[3 * static_cast<size_t>(x) + i],
                                        chart.row(y)[3 * static_cast<size_t>(x) + i], 4);
            }
        }
    }
    // One pixel alone, and the last of an odd row and column, have no neighbour to bleed from.
    Picture grey(5, 3);
    std::fill(grey.rgb.begin(), grey.rgb.end(), uint8_t{77});
    for (const YuvDescription& description : allDescriptions())
        for (const uint8_t channel : pictureFromYuv(yuvFromPicture(grey, description)).rgb)
            ASSERT_NEAR(channel, 77, 1);
}
