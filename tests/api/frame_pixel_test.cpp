// Whole frames through the exported entry points, on the driver, against arithmetic in double precision.

#include "api/ze_beauty_effect.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/reference_beauty.h"
#include "tests/support/reference_convert.h"

#include <random>

namespace {

struct Format {
    int width, height;
    bool nv21 = false;
    reference::ColorDescription description = {0, 1};
};

/// The bytes of a plane's picture, row by row.
std::vector<uint8_t> pictureOf(const ZecImage& frame, int plane, Format f) {
    std::vector<uint8_t> bytes;
    for (int y = 0; y < rowCount(plane, f.height); ++y)
        for (int x = 0; x < rowBytes(plane, f.width); ++x)
            bytes.push_back(byteAt(frame, plane, x, y));
    return bytes;
}

/// Fills the picture with levels of any kind, or with those of grainy skin.
void fillWithNoise(const ZecImage& frame, Format f, bool isSkin) {
    std::mt19937 random(static_cast<unsigned>(f.width));
    fillPicture(frame, f.width, f.height, [&](int plane, int x, int) {
        const auto noise = random() >> 24;
        const bool isV = (x % 2 == 1) != f.nv21;
        return isSkin ? (plane == 0 ? 150 : isV ? 145 : 112) + noise % 30 : noise;
    });
}

/// A host that has a render core with two beauty effects, and no context of its own.
class FramePixel : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        releaseContext();
        if (IsSkipped())
            return;
        m_core = ZecCreateRenderCore();
        m_effects = {ZecCreateEffect(0), ZecCreateEffect(0)};
    }

    void TearDown() override {
        // The first effect takes the core's context with it, which lasts until the core leaves it.
        for (ZecEffect* effect : m_effects)
            EXPECT_TRUE(ZecDestoryEffect(effect));
        EXPECT_TRUE(!m_core || ZecDestroyRenderCore(m_core) != forgetsDestroyedSurfaces());
    }

    /// Whether the frame comes out as it should when both effects have these parameters.
    void expectBeautified(const ZecImage& input, ZecImage& output, Format f, float mix, float whiten) {
        reference::Picture picture =
            reference::yuvToRgb(input, f.width, f.height, f.description, f.nv21).stored();
        for (ZecEffect* effect : m_effects) {
            picture = reference::beautify(picture, mix, whiten).stored();
            ZecSetBeautyParams(effect, mix, whiten);
        }
        const reference::Planes expected = reference::rgbToYuv(picture, f.description, f.nv21);
        EXPECT_TRUE(ZecRender(m_core, m_effects, &input, &output, f.nv21, f.description.standard,
                              f.description.range, f.width, f.height, 0));
        // A color that is rounded the other way in one of the pictures on the way is up to 0.72 further off
        // in luma. The steps of the color model throw single pixels of a noisy frame further.
        const Tolerance limits = tolerance({1.25, 0.0005}, {5, 0.01});
        EXPECT_TRUE(agree(pictureOf(output, 0, f), expected.luma, limits));
        EXPECT_TRUE(agree(pictureOf(output, 1, f), expected.chroma, limits));
    }

private:
    ZecRenderCore* m_core = nullptr;
    std::vector<ZecEffect*> m_effects;
};

TEST_F(FramePixel, AgreesWithTheArithmeticInPlaceOrNotAndWritesNothingElse) {
    const Format sizes[] = {{1, 1}, {2, 2}, {4, 2}, {1, 4}, {5, 3}, {33, 17}, {100, 60}};
    for (bool isSkin : {false, true})
        for (Format f : sizes)
            for (int i = 0; i < 8; ++i) {
                f.nv21 = i & 4;
                f.description = {i & 1, i >> 1 & 1}; // another one each frame, so that the matrix fits
                const float mix = isSkin ? 0.8f : 0, whiten = isSkin ? 0.2f : 0.001f;
                SCOPED_TRACE(testing::Message() << f.width << " x " << f.height << ", case " << i);
                TestFrame input(f.width, f.height, {.roundTo = 1 << (i & 3)}); // all that GL can be told
                fillWithNoise(input.image, f, isSkin);

                // One row before and one or two behind are no part of the picture.
                TestFrame block(f.width, f.height + 4, {.padding = i & 2 ? 5 : 0});
                ZecImage output = block.image;
                for (int plane : {0, 1})
                    output.planes[plane] += output.pitches[plane];
                expectBeautified(input.image, output, f, mix, whiten);
                fillPicture(output, f.width, f.height, [](int, int, int) { return 0x66; });
                EXPECT_THAT(block.planes[0], testing::Each(0x66));
                EXPECT_THAT(block.planes[1], testing::Each(0x66));

                expectBeautified(input.image, input.image, f, mix, whiten);
            }
}

} // namespace
