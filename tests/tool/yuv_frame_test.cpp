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

// The mean of the four pixels under the chroma sample (`column`, `row`), the last ones repeated at odd edges.
Yuv meanYuv(const Picture& picture, int column, int row, const YuvDescription& description) {
    Yuv mean = {};
    for (int i = 0; i < 4; ++i) {
        const int x = std::min(2 * column + i % 2, picture.width - 1);
        const int y = std::min(2 * row + i / 2, picture.height - 1);
        const Yuv yuv = expectedYuv(picture.at(x, y), description);
        mean.u += yuv.u / 4;
        mean.v += yuv.v / 4;
    }
    return mean;
}

} // namespace

TEST(YuvFrame, HasEverySampleThatTheStandardsAskForUpToTheOddEdges) {
    uint32_t state = 1;
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {33, 17}, {34, 18}}) {
        Picture picture(width, height);
        for (uint8_t& channel : picture.rgb)
            channel = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
        for (const YuvDescription& description : allDescriptions()) {
            const YuvFrame frame = yuvFromPicture(picture, description);
            const bool nv21 = description.order == ChromaOrder::nv21;
            ASSERT_EQ(frame.luma.size(), picture.rgb.size() / 3);
            ASSERT_EQ(frame.chroma.size(), static_cast<size_t>((width + 1) / 2 * 2 * ((height + 1) / 2)));
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    ASSERT_NEAR(frame.luma[picture.index(x, y)], expectedYuv(picture.at(x, y), description).y,
                                1.1);
            for (size_t i = 0; i < frame.chroma.size(); i += 2) {
                const int pair = static_cast<int>(i) / 2;
                const int columns = (width + 1) / 2;
                const Yuv expected = meanYuv(picture, pair % columns, pair / columns, description);
                ASSERT_NEAR(frame.chroma[i + nv21], expected.u, 1.6) << pair;
                ASSERT_NEAR(frame.chroma[i + !nv21], expected.v, 1.6) << pair;
            }
        }
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
