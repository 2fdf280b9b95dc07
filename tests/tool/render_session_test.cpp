#include "tool/chart.h"
#include "tool/errors.h"
#include "tool/gl_info.h"
#include "tool/picture_reader.h"
#include "tool/render_session.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using namespace ze::tool;

namespace {

bool hasGl() {
    try {
        return queryGl().maxTextureSize > 0;
    } catch (const Failure&) {
        return false;
    }
}

Picture rendered(const Picture& picture, float smooth, float whiten, YuvDescription description = {}) {
    YuvFrame frame = yuvFromPicture(picture, description);
    RenderSession(smooth, whiten).render(frame);
    return pictureFromYuv(frame);
}

// How much neighbours differ inside `area`, on average.
double detail(const Picture& picture, const Rectangle& area) {
    double sum = 0;
    for (int y = area.top + 4; y < area.top + area.height - 4; ++y)
        for (int x = area.left + 4; x < area.left + area.width - 4; ++x)
            sum += std::abs(picture.at(x, y).green - picture.at(x + 1, y).green);
    return sum / ((area.width - 8) * (area.height - 8));
}

constexpr std::pair<int, int> kSizes[] = {{1, 1}, {5, 3}, {33, 17}, {64, 48}};

} // namespace

TEST(RenderSession, KeepsEveryByteWithoutAnEffect) {
    for (const auto& [width, height] : kSizes)
        for (const ChromaOrder order : {ChromaOrder::nv12, ChromaOrder::nv21}) {
            const YuvFrame before =
                yuvFromPicture(drawChart(width, height, ChartNoise::speckled), {.order = order});
            YuvFrame after = before;
            RenderSession(0, 0).render(after);
            EXPECT_EQ(after.luma, before.luma);
            EXPECT_EQ(after.chroma, before.chroma);
        }
}

TEST(RenderSession, WhitensEveryPixelInEveryColourDescription) {
    if (!hasGl())
        GTEST_SKIP() << "there is no OpenGL ES here";
    for (const auto& [width, height] : kSizes)
        for (int i = 0; i < 8; ++i) {
            const YuvDescription description = {static_cast<ChromaOrder>(i & 1),
                                                static_cast<ColourStandard>(i >> 1 & 1),
                                                static_cast<ColourRange>(i >> 2)};
            constexpr Rgb kColour = {90, 120, 60};
            Picture picture(width, height);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    picture.set(x, y, kColour);
            const Picture after = rendered(picture, 0, 1, description);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const Rgb colour = after.at(x, y);
                    ASSERT_NEAR(colour.red, kColour.red + 0.15 * 255, 4) << i << " at " << x << "," << y;
                    ASSERT_NEAR(colour.green, kColour.green + 0.15 * 255, 4) << i << " at " << x << "," << y;
                    ASSERT_NEAR(colour.blue, kColour.blue + 0.15 * 255, 4) << i << " at " << x << "," << y;
                }
        }
}

TEST(RenderSession, SmoothsMediumSkinAndKeepsHairAndOtherColours) {
    if (!hasGl())
        GTEST_SKIP() << "there is no OpenGL ES here";
    const Picture chart = drawChart(640, 480, ChartNoise::speckled);
    const Picture before = rendered(chart, 0, 0);
    const Picture after = rendered(chart, 1, 0);
    const Picture swapped = rendered(chart, 1, 0, {.order = ChromaOrder::nv21});
    for (size_t i = 0; i < after.rgb.size(); ++i)
        ASSERT_NEAR(swapped.rgb[i], after.rgb[i], 6) << "the layout makes no difference";
    for (const ChartPatch& patch : chartPatches(640, 480)) {
        const double ratio = detail(after, patch.area) / detail(before, patch.area);
        const int red = patch.colour.red;
        if (patch.kind == PatchKind::skin && red > 0x5f && red < 0xd8) {
            EXPECT_LT(ratio, 0.75) << red;
        } else if (patch.kind != PatchKind::skin && patch.kind != PatchKind::grey) {
            EXPECT_GT(ratio, 0.85) << static_cast<int>(patch.kind) << " " << red;
        }
    }
}

TEST(RenderSession, SmoothsTheFaceOfAPortraitAndKeepsItsEyesAndLettering) {
    if (!hasGl() || !std::filesystem::exists(PORTRAIT))
        GTEST_SKIP() << "there is no OpenGL ES or no portrait here";
    const Picture portrait = readPicture(PORTRAIT);
    const Picture before = rendered(portrait, 0, 0);
    const Picture after = rendered(portrait, 1, 0);
    const auto left = [&](const Rectangle& area) { return detail(after, area) / detail(before, area); };
    EXPECT_LT(left({215, 150, 40, 25}), 0.75) << "chin";
    EXPECT_GT(left({190, 90, 20, 20}), 0.9) << "eye";
    EXPECT_GT(left({138, 350, 66, 70}), 0.95) << "badge";
}
