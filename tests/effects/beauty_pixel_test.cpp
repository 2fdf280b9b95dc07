// The beauty effect on the driver, against arithmetic in double precision.

#include "effects/beauty/beauty_effect.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/reference_beauty.h"
#include "tool/chart/chart.h"

#include <random>

namespace ze {
namespace {

using reference::BeautyParams;
using reference::Color;
using reference::Picture;

Picture chart(int width, int height) {
    const tool::Picture drawn = tool::drawChart(width, height, tool::ChartNoise::speckled);
    Picture picture(width, height);
    for (size_t i = 0; i < drawn.rgb.size(); ++i)
        picture.pixels[i / 3][i % 3] = drawn.rgb[i] / 255.0;
    return picture;
}

/// Levels up to `spread` away from skin, alpha too, each channel for itself.
Picture noiseAroundSkin(uint32_t spread, int width, int height) {
    std::mt19937 random(1);
    Picture picture(width, height, {0.75, 0.57, 0.46, 0.9});
    for (Color& pixel : picture.pixels)
        for (double& channel : pixel)
            channel += (static_cast<double>(random() % (2 * spread + 1)) - spread) / 255;
    return picture.stored();
}

class BeautyPixel : public GlTest {
protected:
    std::vector<uint8_t> beautified(const Picture& picture, BeautyParams params) {
        const GLuint target = targetTexture(picture.width, picture.height);
        m_effect.setParams(static_cast<float>(params.mixFactor), static_cast<float>(params.whitenFactor));
        EXPECT_TRUE(m_effect.render(textureOf(picture), {picture.width, picture.height}, target));
        return contentOf(target, picture.width, picture.height);
    }

private:
    BeautyEffect m_effect;
};

TEST_F(BeautyPixel, AgreesWithTheArithmeticAtEverySizeOfFrame) {
    // One effect throughout: a new size comes with a new texture between the passes.
    const struct { int width, height; } sizes[] = {{96, 64}, {135, 45}, {45, 135}, {7, 5}, {1, 1}, {1, 9}};
    const BeautyParams params[] = {{1, 0}, {0.5, 0.3}, {0, 1}, {1, -1}, {3, 0.1}, {-0.5, 0.01}};
    for (auto [width, height] : sizes)
        for (const Picture& source :
             {chart(width, height), noiseAroundSkin(150, width, height), noiseAroundSkin(20, width, height)})
            for (BeautyParams p : params)
                // The color model has steps. A level that half floats put on the other side of one is
                // anywhere between the source and the blur; so is, once in some frames, one that was rounded
                // the other way between the passes.
                EXPECT_TRUE(agree(beautified(source, p), reference::beautify(source, p),
                                  tolerance({0.51, 0.0002}, {5, 0.01})))
                    << width << " x " << height << ", " << p.mixFactor << ", " << p.whitenFactor;
}

} // namespace
} // namespace ze
