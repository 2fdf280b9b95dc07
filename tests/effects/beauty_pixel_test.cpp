// The beauty effect on the driver, against arithmetic in double precision.

#include "effects/beauty/beauty_effect.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/reference_beauty.h"

#include <random>

namespace ze {
namespace {

using reference::Picture;
using BeautyPixel = GlTest;

/// Levels up to `spread` away from skin, alpha too, each channel for itself.
Picture noiseAroundSkin(int spread, FrameSize size) {
    std::minstd_rand random;
    Picture picture(size.width, size.height, {0.75, 0.57, 0.46, 0.9});
    for (reference::Color& pixel : picture.pixels)
        for (double& channel : pixel)
            channel += (static_cast<int>(random() % 1000) * spread / 500 - spread) / 255.0;
    return picture.stored();
}

TEST_F(BeautyPixel, AgreesWithTheArithmeticAtEverySizeOfFrame) {
    BeautyEffect effect; // one throughout: a new size comes with a new texture between the passes
    for (const FrameSize size : {FrameSize{96, 64}, {135, 45}, {45, 135}, {7, 5}, {1, 1}, {1, 9}})
        for (const int spread : {150, 20, 5})
            for (const auto& [mix, whiten] :
                 {std::pair{1.0f, 0.0f}, {0.5f, 0.3f}, {0, 1}, {1, -1}, {3, 0.1f}, {-0.5f, 0.01f}}) {
                const Picture source = noiseAroundSkin(spread, size);
                const GLuint target = targetTexture(size.width, size.height);
                effect.setParams(mix, whiten);
                EXPECT_TRUE(effect.render(textureOf(source), size, target));
                // The color model has steps. A level that half floats put on the other side of one is
                // anywhere between the source and the blur; so is, once in some frames, one that was rounded
                // the other way between the passes.
                EXPECT_TRUE(agree(contentOf(target, size.width, size.height),
                                  reference::beautify(source, mix, whiten).levels(),
                                  tolerance({0.51, 0.0002}, {5, 0.01})))
                    << size.width << " x " << size.height << ", " << mix << ", " << whiten;
            }
}

} // namespace
} // namespace ze
