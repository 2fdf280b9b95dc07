// Whole frames through the exported entry points, on the driver, against arithmetic in double precision.

#include "api/ze_beauty_effect.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/reference_beauty.h"
#include "tests/support/reference_convert.h"
#include "tool/chart.h"

#include <random>

namespace {

using reference::BeautyParams;
using reference::Picture;
using reference::Planes;
using testing::Each;

struct Format {
    int width, height;
    bool nv21 = false;
    reference::ColourDescription description = {0, 1};
};

/// What becomes of a frame. `nv21Matrix` tells which byte of a chroma pair is taken for V on the way in.
Planes rendered(const ZecImage& frame, Format f, const std::vector<BeautyParams>& effects, bool nv21Matrix) {
    Picture picture = reference::yuvToRgb(frame, f.width, f.height, f.description, nv21Matrix).stored();
    for (BeautyParams params : effects)
        picture = reference::beautify(picture, params).stored();
    return reference::rgbToYuv(picture, f.description, f.nv21);
}

/// The bytes of a plane's picture, row by row.
std::vector<uint8_t> pictureOf(const ZecImage& frame, int plane, Format f) {
    std::vector<uint8_t> bytes;
    for (int y = 0; y < rowCount(plane, f.height); ++y)
        for (int x = 0; x < rowBytes(plane, f.width); ++x)
            bytes.push_back(byteAt(frame, plane, x, y));
    return bytes;
}

void fillWithNoise(const ZecImage& frame, Format f) {
    std::mt19937 random(uint32_t(f.width));
    fillPicture(frame, f.width, f.height, [&](int, int, int) { return random() >> 24; });
}

void fillWithChart(const ZecImage& frame, Format f) {
    const ze::tool::Picture chart = ze::tool::drawChart(f.width, f.height, ze::tool::ChartNoise::speckled);
    Picture picture(f.width, f.height);
    for (size_t i = 0; i < chart.rgb.size(); ++i)
        picture.pixels[i / 3][i % 3] = chart.rgb[i] / 255.0;
    const Planes planes = reference::rgbToYuv(picture, f.description, f.nv21);
    fillPicture(frame, f.width, f.height, [&](int plane, int x, int y) {
        const std::vector<double>& from = plane == 0 ? planes.luma : planes.chroma;
        return std::lround(std::clamp(from[size_t(y * rowBytes(plane, f.width) + x)], 0.0, 255.0));
    });
}

/// A host that has a render core and beauty effects, and no context of its own.
class FramePixel : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        releaseContext();
    }

    void TearDown() override {
        // The first effect takes the core's context with it, which lasts until the core leaves it.
        for (ZecEffect* effect : m_effects)
            EXPECT_TRUE(ZecDestoryEffect(effect));
        if (m_core) {
            EXPECT_TRUE(ZecDestroyRenderCore(m_core));
        }
        GlTest::TearDown();
    }

    /// The handles that serve every frame, with these parameters.
    std::vector<ZecEffect*> effects(const std::vector<BeautyParams>& params) {
        while (m_effects.size() < params.size())
            m_effects.push_back(ZecCreateEffect(0));
        for (size_t i = 0; i < params.size(); ++i)
            EXPECT_TRUE(
                ZecSetBeautyParams(m_effects[i], float(params[i].mixFactor), float(params[i].whitenFactor)));
        return {m_effects.begin(), m_effects.begin() + ptrdiff_t(params.size())};
    }

    void render(const std::vector<ZecEffect*>& list, const ZecImage& input, ZecImage& output, Format f) {
        if (!m_core)
            m_core = ZecCreateRenderCore();
        EXPECT_TRUE(ZecRender(m_core, list, &input, &output, f.nv21, f.description.standard,
                              f.description.range, f.width, f.height, 0));
    }

    void expect(const ZecImage& frame, Format f, const Planes& expected) {
        // A colour that is rounded the other way in one of the pictures on the way is up to 0.72 further off
        // in luma. The steps of the colour model throw single pixels of a noisy frame further.
        const Tolerance limits = tolerance({1.25, 0.0005}, {5, 0.01});
        EXPECT_TRUE(agree(pictureOf(frame, 0, f), expected.luma, rowBytes(0, f.width), limits));
        EXPECT_TRUE(agree(pictureOf(frame, 1, f), expected.chroma, rowBytes(1, f.width), limits));
    }

private:
    ZecRenderCore* m_core = nullptr;
    std::vector<ZecEffect*> m_effects;
};

TEST_F(FramePixel, AgreesWithTheArithmeticInPlaceOrNotAndWritesNothingElse) {
    const BeautyParams params = {0.8, 0.2};
    const Format sizes[] = {{1, 1}, {2, 2}, {4, 2}, {1, 4}, {5, 3}, {33, 17}, {100, 61}, {160, 120}};
    for (auto fill : {fillWithNoise, fillWithChart})
        for (Format f : sizes)
            for (int i = 0; i < 16; ++i) {
                f.nv21 = i & 4;
                f.description = {i & 1, i >> 1 & 1}; // another one each frame, so that the matrix fits
                const bool inPlace = i & 8;
                SCOPED_TRACE(testing::Message() << f.width << " x " << f.height << ", case " << i);
                TestFrame input(f.width, f.height, {.roundTo = i & 1 ? 8 : 1});
                fill(input.image, f);
                const Planes expected = rendered(input.image, f, {params}, f.nv21);

                // One row before and one or two behind are no part of the picture.
                TestFrame block(f.width, f.height + 4, {.roundTo = i & 2 ? 8 : 1});
                ZecImage output = block.image;
                for (int plane : {0, 1})
                    output.planes[plane] += output.pitches[plane];
                if (inPlace)
                    fill(output, f);
                render(effects({params}), inPlace ? output : input.image, output, f);
                expect(output, f, expected);
                fillPicture(output, f.width, f.height, [](int, int, int) { return 0x66; });
                EXPECT_THAT(block.planes[0], Each(0x66));
                EXPECT_THAT(block.planes[1], Each(0x66));

                render(effects({params}), input.image, input.image, f); // blocks of the exact size
                expect(input.image, f, expected);
            }
}

TEST_F(FramePixel, AThousandthIsActiveAndHalfOfItLeavesEveryByte) {
    const Format f = {33, 17};
    TestFrame input(f.width, f.height);
    fillWithNoise(input.image, f);
    const struct {
        BeautyParams params;
        bool active;
    } cases[] = {{{0.001, 0}, true},
                 {{0, 0.001}, true},
                 {{0.0005, 0.0005}, false},
                 {{-1, 0.0005}, false},
                 {{0, 0}, false}};
    for (const auto& c : cases) {
        TestFrame output(f.width, f.height);
        render(effects({c.params}), input.image, output.image, f);
        if (c.active)
            expect(output.image, f, rendered(input.image, f, {c.params}, f.nv21));
        // Chroma that went through the passes is that of one interpolated pixel.
        EXPECT_EQ(output.planes[1] == input.planes[1], !c.active);
        EXPECT_EQ(output.planes[0] == input.planes[0], !c.active);
    }
}

TEST_F(FramePixel, EffectsTakeTurnsInTheOrderGiven) {
    const Format f = {135, 45};
    TestFrame input(f.width, f.height);
    fillWithChart(input.image, f);
    const std::vector<BeautyParams> lists[] = {{{1, 0}, {0, 1}},
                                               {{0, 1}, {1, 0}},
                                               {{1, 0}, {0, 1}, {1.5, 0}},
                                               {{1, 0.1}, {1, 0.1}, {1, 0.1}, {1, 0.1}}};
    for (const auto& list : lists) {
        TestFrame output(f.width, f.height);
        render(effects(list), input.image, output.image, f);
        expect(output.image, f, rendered(input.image, f, list, f.nv21));
    }
}

TEST_F(FramePixel, WithSomeEntriesSkippedTheOutputIsThatOfTheLastCompleteFrame) {
    const Format f = {96, 64};
    TestFrame first(f.width, f.height), second(f.width, f.height);
    fillWithChart(first.image, f);
    fillWithNoise(second.image, f);
    TestFrame complete(f.width, f.height);
    render(effects({{1, 0.2}}), first.image, complete.image, f);

    ZecEffect* none = ZecCreateEffect(5);
    const std::vector<ZecEffect*> all = effects({{1, 0.2}, {0, 0}, {0.5, 0.1}});
    ZecEffect *active = all[0], *inactive = all[1], *other = all[2];
    const std::vector<ZecEffect*> lists[] = {
        {active, inactive}, {inactive, active}, {active, nullptr}, {none, active}, {active, inactive, other}};
    for (const auto& list : lists) {
        TestFrame output(f.width, f.height);
        render(list, second.image, output.image, f);
        EXPECT_EQ(output.planes[0], complete.planes[0]);
        EXPECT_EQ(output.planes[1], complete.planes[1]);
    }
    render({active, other}, second.image, complete.image, f);
    expect(complete.image, f, rendered(second.image, f, {{1, 0.2}, {0.5, 0.1}}, f.nv21));
    EXPECT_TRUE(ZecDestoryEffect(none));
}

TEST_F(FramePixel, SizesAndFormatsChangeBetweenFramesAndTheMatrixWithTheDescriptionAlone) {
    const struct {
        Format format;
        bool nv21Matrix;
    } frames[] = {
        {{40, 30, false, {0, 1}}, false}, {{40, 20, false, {0, 1}}, false}, {{60, 20, false, {0, 1}}, false},
        {{40, 30, true, {0, 1}}, false},  {{30, 40, true, {1, 1}}, true},   {{30, 40, false, {1, 1}}, true},
        {{30, 40, false, {1, 0}}, false}, {{1, 1, false, {1, 0}}, false},   {{64, 2, true, {0, 0}}, true},
    };
    for (const auto& [f, nv21Matrix] : frames) {
        TestFrame input(f.width, f.height), output(f.width, f.height);
        fillWithNoise(input.image, f);
        render(effects({{0.5, 0.5}}), input.image, output.image, f);
        expect(output.image, f, rendered(input.image, f, {{0.5, 0.5}}, nv21Matrix));
    }
}

TEST_F(FramePixel, AHostsOwnContextIsCurrentAgainAfterTheFrame) {
    const Format f = {8, 8};
    TestFrame input(f.width, f.height), output(f.width, f.height);
    fillWithNoise(input.image, f);
    GlTest::SetUp();
    EGLContext host = eglGetCurrentContext();
    render(effects({{0, 1}}), input.image, output.image, f);
    EXPECT_EQ(eglGetCurrentContext(), host);
    expect(output.image, f, rendered(input.image, f, {{0, 1}}, f.nv21));
}

} // namespace
