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

/// Any colours below `top`, the primaries and greys of all levels up to it.
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

/// The colours of a smooth, bent table that mixes the channels.
auto bent(size_t levelCount) {
    return [end = levelCount - 1](size_t r, size_t g, size_t b) {
        return std::array{255 * (end - r) / end, 255 * g * b / (end * end), 255 * (r + g + b) / (3 * end)};
    };
}

/// Levels that lie closer together towards 0.
std::vector<float> gammaLevels(size_t count) {
    std::vector<float> levels = evenLevels(count);
    for (float& level : levels)
        level = std::pow(level, 1.6f);
    return levels;
}

/// Levels that begin above 0 and end below 1.
std::vector<float> innerLevels(size_t count) {
    std::vector<float> levels = evenLevels(count);
    for (float& level : levels)
        level = 0.1f + 0.75f * level;
    return levels;
}

class LutPixel : public GlTest {
protected:
    CZeString written(const LutFile& file) {
        const std::string path = directory / ("t\u00f6ne" + std::to_string(++m_count));
        writeFile(path, file.bytes());
        return CZeString::fromUtf8(path.c_str());
    }

    std::vector<uint8_t> drawn(CLutEffect& effect, const Picture& source) {
        const GLuint target = targetTexture(source.width, source.height);
        EXPECT_TRUE(effect.draw(textureOf(source), uint32_t(source.width), uint32_t(source.height), target));
        return contentOf(target, source.width, source.height);
    }

    LogCapture log;
    TempDirectory directory;

private:
    int m_count = 0;
};

TEST_F(LutPixel, AgreesWithTrilinearInterpolation) {
    const struct {
        const char* name;
        std::vector<float> (*levels)(size_t);
        uint32_t top; ///< entry 255 of the coordinate map is of no use where the last level lies below 1
    } kinds[] = {{"even", evenLevels, 255}, {"gamma", gammaLevels, 255}, {"inner", innerLevels, 254}};
    for (const auto& [name, levels, top] : kinds)
        for (size_t n : {2u, 17u, 33u, 65u})
            for (bool isNoise : {false, true}) {
                LutFile lut{levels(n)};
                isNoise ? lut.fillWithNoise() : lut.fill(bent(n));
                CLutEffect effect;
                const CZeString path = written(lut);
                const Picture source = colours(top);
                for (float intensity : {0.0009f, 0.001f, 0.5f, 1.0f, 1.5f}) {
                    effect.setParams(path, intensity);
                    // A place among the 4225 texels of a row is known to 0.0005, by half floats to 0.03.
                    EXPECT_TRUE(agree(drawn(effect, source), graded(source, lut, double(intensity)),
                                      tolerance({0.6}, {isNoise ? 8.0 : 3.0, 0.01})))
                        << name << ", " << n << (isNoise ? " noise, " : ", ") << intensity;
                }
            }
}

TEST_F(LutPixel, AnIdentityKeepsEveryColourWithinOneStep) {
    for (auto levels : {evenLevels, gammaLevels})
        for (size_t n : {2u, 17u, 33u, 65u}) {
            LutFile lut{levels(n)};
            const auto stored = [&](size_t index) { return std::lround(255 * lut.levels[index]); };
            lut.fill([&](size_t r, size_t g, size_t b) {
                return std::array{stored(r), stored(g), stored(b)};
            });
            CLutEffect effect;
            effect.setParams(written(lut), 1);
            EXPECT_TRUE(agree(drawn(effect, colours(255)), colours(255), {1})) << n;
        }
}

TEST_F(LutPixel, WholeFramesGoThroughTheEffectsInTheOrderGiven) {
    releaseContext();
    constexpr int kWidth = 45, kHeight = 31;
    const reference::ColourDescription description = {0, 1};
    const LutFile lut = LutFile{gammaLevels(17)}.fill(bent(17));
    const CZeByteArray path = written(lut).toUtf8();
    TestFrame input(kWidth, kHeight), output(kWidth, kHeight);
    std::mt19937 random(1);
    fillPicture(input.image, kWidth, kHeight, [&](int plane, int x, int) { // grainy skin
        return (plane == 0 ? 150 : x % 2 ? 145 : 112) + int(random() % 30);
    });
    ZecRenderCore* core = ZecCreateRenderCore();
    ZecEffect* handles[] = {ZecCreateEffect(0), ZecCreateEffect(1)};
    ASSERT_TRUE(ZecSetBeautyParams(handles[0], 1, 0.5f));
    ASSERT_TRUE(ZecSetLutParams(handles[1], path.constData(), 0.8f));

    const std::vector<std::vector<size_t>> orders = {{0, 1}, {1, 0}, {1}};
    std::vector<reference::Planes> results;
    for (const auto& order : orders) {
        Picture picture = reference::yuvToRgb(input.image, kWidth, kHeight, description, false).stored();
        for (size_t type : order)
            picture = (type ? graded(picture, lut, 0.8) : reference::beautify(picture, {1, 0.5})).stored();
        results.push_back(reference::rgbToYuv(picture, description, false));
    }
    for (size_t i = 0; i < orders.size(); ++i) {
        std::vector<ZecEffect*> effects;
        for (size_t type : orders[i])
            effects.push_back(handles[type]);
        ASSERT_TRUE(ZecRender(core, effects, &input.image, &output.image, 0, 0, 1, kWidth, kHeight, 0));
        const Tolerance limits = tolerance({1.25, 0.002}, {5, 0.02});
        for (size_t j = 0; j < orders.size(); ++j)
            EXPECT_EQ(bool(agree(output.planes[0], results[j].luma, kWidth, limits)), i == j);
        EXPECT_TRUE(agree(output.planes[1], results[i].chroma, kWidth + 1, limits));
    }
    for (ZecEffect* handle : handles)
        EXPECT_TRUE(ZecDestoryEffect(handle));
    EXPECT_TRUE(ZecDestroyRenderCore(core));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

} // namespace
} // namespace ze
