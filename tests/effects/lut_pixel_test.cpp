// The LUT effect on the driver, against arithmetic in double precision.

#include "effects/lut/lut_effect.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"

#include <random>

namespace ze {
namespace {

using reference::Color;
using reference::Picture;

/// Where `value` lies among rising levels: a level's index, or between two of them.
double gridPlace(const std::vector<float>& levels, double value) {
    size_t j = 0;
    while (j + 1 < levels.size() && value > levels[j])
        ++j;
    const double place = static_cast<double>(j);
    if (j == 0 || value >= levels[j])
        return place;
    return place - (levels[j] - value) / (levels[j] - levels[j - 1]);
}

/// Trilinear interpolation between the eight entries around the color.
Color lookedUp(const LutFile& lut, const Color& color) {
    const size_t n = lut.levels.size();
    Color sum{0, 0, 0, color[3]};
    for (unsigned corner = 0; corner < 8; ++corner) {
        double weight = 1;
        size_t entry = 0;
        for (size_t i = 0; i < 3; ++i) { // red is the slowest index
            const double place = gridPlace(lut.levels, color[i]), fraction = place - std::floor(place);
            const auto first = static_cast<size_t>(place);
            const bool isSecond = corner >> i & 1;
            weight *= isSecond ? fraction : 1 - fraction;
            entry = entry * n + std::min(first + isSecond, n - 1);
        }
        for (size_t i = 0; i < 3; ++i)
            sum[i] += weight * lut.colors[3 * entry + i] / 255.0;
    }
    return sum;
}

Picture graded(const Picture& source, const LutFile& lut, double intensity) {
    Picture result = source;
    for (Color& pixel : result.pixels) {
        const Color found = lookedUp(lut, pixel);
        for (size_t i = 0; i < 3; ++i)
            pixel[i] += (found[i] - pixel[i]) * intensity * pixel[3];
    }
    return result;
}

/// Grays, primaries and any colors up to a level, with any alpha.
Picture colors(uint32_t top) {
    std::mt19937 random(top);
    Picture picture(64, 48);
    for (size_t i = 0; i < picture.pixels.size(); ++i)
        for (size_t c = 0; c < 4; ++c) {
            const auto level = i < 256 ? i : i < 512 ? 255 * (i >> c & 1) : random() >> 24;
            picture.pixels[i][c] = static_cast<double>(std::min<size_t>(level, top)) / 255;
        }
    return picture;
}

using LutPixel = GlTest;

TEST_F(LutPixel, AgreesWithTrilinearInterpolationAndAnIdentityKeepsColorsWithinOneStep) {
    const TempDirectory directory;
    const std::string path = directory / "t\u00f6ne.lut";
    const struct {
        float first, last, exponent; // of the levels
    } curves[] = {{0, 1, 1}, {0, 1, 1.6f}, {0.1f, 0.85f, 1}};
    for (const auto& curve : curves)
        for (size_t n : {1u, 2u, 17u, 33u, 65u})
            for (bool isIdentity : {false, true}) {
                LutFile lut{evenLevels(n)};
                for (float& level : lut.levels)
                    level = curve.first + (curve.last - curve.first) * std::pow(level, curve.exponent);
                lut.fillWithNoise();
                if (isIdentity)
                    lut.fill([&](size_t index) { return 255 * lut.levels[index]; });
                writeFile(path, lut.bytes());
                CLutEffect effect;
                const Picture source = colors(curve.last < 1 ? 254 : 255); // the last of the map is for 1.0
                const GLuint texture = textureOf(source);
                for (float intensity : {0.0009f, 0.001f, 0.5f, 1.0f, 1.5f}) {
                    SCOPED_TRACE(testing::Message() << curve.exponent << ' ' << curve.first << ", " << n
                                                    << (isIdentity ? " identity " : " noise ") << intensity);
                    effect.setParams(CZeString::fromUtf8(path.c_str()), intensity);
                    const GLuint target = targetTexture(64, 48);
                    EXPECT_TRUE(effect.render(texture, {64, 48}, target));
                    const auto result = contentOf(target, 64, 48);
                    // A place among the 4225 texels of a row is known to 0.0005, by half floats to 0.03.
                    EXPECT_TRUE(agree(result, graded(source, lut, intensity).levels(),
                                      tolerance({0.6}, {isIdentity ? 2.0 : 8.0, 0.01})));
                    if (isIdentity && lut.levels.back() == 1 && intensity <= 1) {
                        EXPECT_TRUE(agree(result, source.levels(), {1}));
                    }
                }
            }
}

} // namespace
} // namespace ze
