// The beauty effect on the driver, against arithmetic in double precision.

#include "effects/beauty/beauty_effect.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/reference_beauty.h"
#include "tool/chart.h"

#include <random>

namespace ze {
namespace {

using reference::BeautyParams;
using reference::Colour;
using reference::Picture;
using tool::PatchKind;

Picture chart(int width, int height, tool::ChartNoise noise) {
    const tool::Picture drawn = tool::drawChart(width, height, noise);
    Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const tool::Rgb colour = drawn.at(x, y);
            picture.at(x, y) = {colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0, 1};
        }
    return picture;
}

Picture cleanChart(int width, int height) {
    return chart(width, height, tool::ChartNoise::none);
}

Picture speckledChart(int width, int height) {
    return chart(width, height, tool::ChartNoise::speckled);
}

/// Levels up to `spread` away from `centre`, alpha too, each channel for itself.
Picture noiseAround(const Colour& centre, uint32_t spread, int width, int height) {
    std::mt19937 random(1);
    Picture picture(width, height);
    for (Colour& pixel : picture.pixels)
        for (size_t i = 0; i < pixel.size(); ++i)
            pixel[i] = centre[i] + (double(random() % (2 * spread + 1)) - spread) / 255;
    return picture.stored();
}

Picture noise(int width, int height) {
    return noiseAround({0.5, 0.5, 0.5, 0.5}, 128, width, height);
}

Picture grainySkin(int width, int height) {
    return noiseAround({0.75, 0.57, 0.46, 0.9}, 20, width, height);
}

class BeautyPixel : public GlTest {
protected:
    std::vector<uint8_t> beautified(const Picture& picture, BeautyParams params) {
        const auto width = uint32_t(picture.width), height = uint32_t(picture.height);
        const GLuint target = targetTexture(picture.width, picture.height);
        m_effect.setParams(float(params.mixFactor), float(params.whitenFactor));
        EXPECT_TRUE(m_effect.render(textureOf(picture), width, height, target));
        return contentOf(target, picture.width, picture.height);
    }

    BeautyEffect m_effect;
};

TEST_F(BeautyPixel, AgreesWithTheArithmeticAtEverySizeOfFrame) {
    // One effect throughout: a new size comes with a new texture between the passes.
    const struct {
        int width, height;
    } sizes[] = {{96, 64}, {135, 45}, {45, 135}, {96, 64}, {7, 5}, {1, 1}, {1, 9}};
    const BeautyParams params[] = {{1, 0}, {0.5, 0.3}, {0, 1}, {1, -1}, {3, 0.1}, {-0.5, 0.01}};
    const struct {
        const char* name;
        Picture (*draw)(int, int);
    } pictures[] = {{"clean chart", cleanChart},
                    {"speckled chart", speckledChart},
                    {"noise", noise},
                    {"grainy skin", grainySkin}};
    for (auto [width, height] : sizes)
        for (auto [name, draw] : pictures)
            for (BeautyParams p : params) {
                const Picture source = draw(width, height);
                // The colour model has steps. A level that half floats put on the other side of one is
                // anywhere between the source and the blur; so is, once in some frames, one that was rounded
                // the other way between the passes.
                EXPECT_TRUE(agree(beautified(source, p), reference::beautify(source, p),
                                  tolerance({0.51, 0.0002}, {5, 0.01})))
                    << name << ", " << width << " x " << height << ", " << p.mixFactor << ", "
                    << p.whitenFactor;
            }
}

TEST_F(BeautyPixel, SmoothsSkinAndNothingThatIsNot) {
    constexpr int kWidth = 160, kHeight = 120;
    constexpr int kReach = 6; // three taps, rounded up to whole pixels
    const Picture source = speckledChart(kWidth, kHeight);
    const std::vector<uint8_t> result = beautified(source, {1, 0});
    int smoothed = 0, untouched = 0;
    for (const tool::ChartPatch& patch : tool::chartPatches(kWidth, kHeight)) {
        const double colour[] = {patch.colour.red / 255.0, patch.colour.green / 255.0,
                                 patch.colour.blue / 255.0};
        const double luma = 0.2126 * colour[0] + 0.7152 * colour[1] + 0.0722 * colour[2];
        double before = 0, after = 0, change = 0;
        const auto [left, top, width, height] = patch.area;
        for (int y = top + kReach; y < top + height - kReach; ++y)
            for (int x = left + kReach; x < left + width - kReach; ++x)
                for (size_t i = 0; i < 3; ++i) {
                    const double was = source.at(x, y)[i],
                                 is = result[4 * size_t(y * kWidth + x) + i] / 255.0;
                    before += std::abs(was - colour[i]);
                    after += std::abs(is - colour[i]);
                    change = std::max(change, std::abs(was - is));
                }
        SCOPED_TRACE(testing::Message() << "patch at " << left << ", " << top);
        if (patch.kind == PatchKind::skin && luma > 0.25 && luma < 0.9) {
            EXPECT_LT(after, 0.8 * before);
            ++smoothed;
        } else if (patch.kind == PatchKind::sky || patch.kind == PatchKind::foliage ||
                   patch.kind == PatchKind::primary) {
            EXPECT_EQ(change, 0);
            ++untouched;
        }
    }
    EXPECT_EQ(smoothed, 5);
    EXPECT_EQ(untouched, 12);
}

TEST_F(BeautyPixel, LeavesFlatFieldsOfEveryTone) {
    for (const tool::ChartPatch& patch : tool::chartPatches(64, 64)) {
        const auto [red, green, blue] = patch.colour;
        const Picture flat(9, 6, {red / 255.0, green / 255.0, blue / 255.0, 1});
        EXPECT_TRUE(agree(beautified(flat, {1, 0}), flat, tolerance({0.01}, {1})));
    }
}

TEST_F(BeautyPixel, KeepsEdgesOfAQuarterInLumaAndSmoothsLesserOnes) {
    for (bool upright : {true, false})
        for (int difference : {64, 60}) {
            // At this size the taps lie on whole pixels: three apart in a row, one apart in a column.
            Picture source(135, 45, {200 / 255.0, 150 / 255.0, 120 / 255.0, 1});
            for (int y = 0; y < source.height; ++y)
                for (int x = 0; x < source.width; ++x)
                    for (size_t i = 0; i < 3; ++i)
                        source.at(x, y)[i] -= (upright ? x >= 60 : y >= 20) ? difference / 255.0 : 0;
            EXPECT_EQ(bool(agree(beautified(source, {4, 0}), source, {1})), difference == 64)
                << "edge of " << difference << (upright ? ", upright" : ", level");
        }
}

TEST_F(BeautyPixel, GoesBeyondTheBlurWhenTheBlendExceedsOne) {
    Picture source(135, 45, {200 / 255.0, 150 / 255.0, 120 / 255.0, 1});
    source.at(60, 20) = {170 / 255.0, 120 / 255.0, 90 / 255.0, 1};
    const size_t spot = 4 * (20 * 135 + 60);
    EXPECT_LT(beautified(source, {1.5, 0})[spot], 200);
    EXPECT_GT(beautified(source, {4, 0})[spot], 200);
}

TEST_F(BeautyPixel, WhiteningLiftsEveryLevelButAlpha) {
    Picture ramp(256, 2), lifted(256, 2);
    for (int x = 0; x < 256; ++x)
        for (int y = 0; y < 2; ++y) {
            const double level = x / 255.0, up = std::min(level + 0.075, 1.0);
            ramp.at(x, y) = {level, 1 - level, level, level};
            lifted.at(x, y) = {up, std::min(1 - level + 0.075, 1.0), up, level};
        }
    EXPECT_TRUE(agree(beautified(ramp, {0, 0.5}), lifted, tolerance(kRounding, {1})));
    EXPECT_TRUE(agree(beautified(ramp, {0, -0.5}), ramp, tolerance({0.01}, {1})));
}

} // namespace
} // namespace ze
