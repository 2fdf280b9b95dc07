// The LUT effect on the driver, alone and in whole frames, against arithmetic in double precision.

#include "api/ze_beauty_effect.h"
#include "effects/lut/lut_effect.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/log_capture.h"
#include "tests/support/lut_file.h"
#include "tests/support/reference_beauty.h"
#include "tests/support/reference_convert.h"
#include "tests/support/temp_directory.h"

#include <random>

namespace ze {
namespace {

using reference::Colour;
using reference::Picture;

/// Where `value` lies among rising levels: a level's index, or between two of them.
double gridPlace(const std::vector<float>& levels, double value) {
    for (size_t j = 0; j < levels.size(); ++j)
        if (value <= double(levels[j])) {
            const double before = j == 0 ? 0 : double(levels[j - 1]);
            return j == 0 ? 0 : double(j) - (double(levels[j]) - value) / (double(levels[j]) - before);
        }
    return double(levels.size() - 1);
}

/// Trilinear interpolation between the eight entries around the colour.
Colour lookedUp(const LutFile& lut, const Colour& colour) {
    const size_t n = lut.levels.size();
    Colour sum{0, 0, 0, colour[3]};
    for (unsigned corner = 0; corner < 8; ++corner) {
        double weight = 1;
        size_t entry = 0;
        for (size_t i = 0; i < 3; ++i) { // red is the slowest index
            const double place = gridPlace(lut.levels, colour[i]);
            const auto first = size_t(place);
            const bool isSecond = corner >> i & 1;
            weight *= isSecond ? place - double(first) : 1 - (place - double(first));
            entry = entry * n + std::min(first + isSecond, n - 1);
        }
        for (size_t i = 0; i < 3; ++i)
            sum[i] += weight * lut.colors[3 * entry + i] / 255.0;
    }
    return sum;
}

Picture graded(const Picture& source, const LutFile& lut, double intensity) {
    Picture result = source;
    for (Colour& pixel : result.pixels) {
        const Colour found = lookedUp(lut, pixel);
        for (size_t i = 0; i < 3; ++i)
            pixel[i] += (found[i] - pixel[i]) * intensity * pixel[3];
    }
    return result;
}

/// Greys, primaries and any colours up to a level, with any alpha.
Picture colours(uint32_t top) {
    std::mt19937 random(top);
    Picture picture(64, 48);
    for (size_t i = 0; i < picture.pixels.size(); ++i)
        for (size_t c = 0; c < 4; ++c) {
            const auto level = i < 256 ? i : i < 512 ? 255 * (i >> c & 1) : random() >> 24;
            picture.pixels[i][c] = double(std::min(level, size_t{top})) / 255;
        }
    return picture;
}

/// Where the levels of a table begin and end, and how they bend in between.
struct Curve {
    float first, last, exponent;

    std::vector<float> levels(size_t count) const {
        std::vector<float> levels = evenLevels(count);
        for (float& level : levels)
            level = first + (last - first) * std::pow(level, exponent);
        return levels;
    }
};

class LutPixel : public GlTest {
protected:
    void write(const LutFile& file) { writeFile(path, file.bytes()); }

    TempDirectory directory;
    const std::string path = directory / "t\u00f6ne.lut";
    LogCapture log;
};

TEST_F(LutPixel, AgreesWithTrilinearInterpolationAndAnIdentityKeepsColoursWithinOneStep) {
    const Curve even{0, 1, 1}, bent{0, 1, 1.6f}, inner{0.1f, 0.85f, 1};
    for (const Curve& curve : {even, bent, inner})
        for (size_t n : {1u, 2u, 17u, 33u, 65u})
            for (bool isIdentity : {false, true}) {
                LutFile lut{curve.levels(n)};
                lut.fillWithNoise();
                if (isIdentity)
                    lut.fill([&](size_t index) { return 255 * lut.levels[index]; });
                write(lut);
                CLutEffect effect;
                const Picture source = colours(curve.last < 1 ? 254 : 255); // the last of the map is for 1.0
                const GLuint texture = textureOf(source);
                for (float intensity : {0.0009f, 0.001f, 0.5f, 1.0f, 1.5f}) {
                    SCOPED_TRACE(testing::Message() << curve.exponent << ' ' << curve.first << ", " << n
                                                    << (isIdentity ? " identity " : " noise ") << intensity);
                    effect.setParams(CZeString::fromUtf8(path.c_str()), intensity);
                    const GLuint target = targetTexture(source.width, source.height);
                    EXPECT_TRUE(
                        effect.draw(texture, uint32_t(source.width), uint32_t(source.height), target));
                    const auto result = contentOf(target, source.width, source.height);
                    // A place among the 4225 texels of a row is known to 0.0005, by half floats to 0.03.
                    EXPECT_TRUE(agree(result, graded(source, lut, double(intensity)),
                                      tolerance({0.6}, {isIdentity ? 2.0 : 8.0, 0.01})));
                    if (isIdentity && lut.levels.back() == 1 && intensity <= 1) {
                        EXPECT_TRUE(agree(result, source, {1}));
                    }
                }
            }
}

TEST_F(LutPixel, WholeFramesGoThroughTheEffectsInTheOrderGiven) {
    releaseContext();
    constexpr int kWidth = 45, kHeight = 31;
    const reference::ColourDescription description = {0, 1};
    LutFile negative{evenLevels(17)};
    negative.fill([](size_t index) { return 255 - 15 * index; });
    TestFrame input(kWidth, kHeight), output(kWidth, kHeight);
    std::mt19937 random(1);
    fillPicture(input.image, kWidth, kHeight, [&](int plane, int x, int) { // grainy skin
        return (plane == 0 ? 150 : x % 2 ? 145 : 112) + int(random() % 30);
    });
    ZecRenderCore* core = ZecCreateRenderCore();
    ZecEffect* handles[] = {ZecCreateEffect(0), ZecCreateEffect(1)};
    ASSERT_TRUE(ZecSetBeautyParams(handles[0], 1, 0.5f));
    ASSERT_TRUE(ZecSetLutParams(handles[1], path, 0.1f));
    ASSERT_TRUE(ZecSetLutParams(handles[1], "another path", 0.8f));
    const auto render = [&](const std::vector<ZecEffect*>& effects) {
        return ZecRender(core, effects, &input.image, &output.image, 0, 0, 1, kWidth, kHeight, 0);
    };
    EXPECT_TRUE(render({handles[1]})); // there is no file yet
    EXPECT_THAT(log.texts(),
                testing::ElementsAre("Lut path is already setted.", "Failed to open lut file " + path,
                                     "failed to read lut file"));
    log.clear();
    write(negative);

    for (const std::vector<size_t>& types : {std::vector<size_t>{0, 1}, {1, 0}, {1}}) {
        Picture picture = reference::yuvToRgb(input.image, kWidth, kHeight, description, false).stored();
        std::vector<ZecEffect*> effects;
        for (size_t type : types) {
            effects.push_back(handles[type]);
            picture =
                (type ? graded(picture, negative, 0.8) : reference::beautify(picture, {1, 0.5})).stored();
        }
        const reference::Planes expected = reference::rgbToYuv(picture, description, false);
        ASSERT_TRUE(render(effects));
        const Tolerance limits = tolerance({1.25, 0.002}, {5, 0.02});
        EXPECT_TRUE(agree(output.planes[0], expected.luma, kWidth, limits)) << types[0];
        EXPECT_TRUE(agree(output.planes[1], expected.chroma, kWidth + 1, limits)) << types[0];
    }
    for (ZecEffect* handle : handles)
        EXPECT_TRUE(ZecDestoryEffect(handle));
    EXPECT_TRUE(ZecDestroyRenderCore(core));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

} // namespace
} // namespace ze
