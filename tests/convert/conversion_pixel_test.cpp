// Both conversions on the driver, against arithmetic in double precision.

#include "convert/read_back.h"
#include "convert/yuv_to_rgb.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/reference_convert.h"

#include <random>

namespace ze {
namespace {

using reference::ColourDescription;
using reference::Picture;

constexpr ColourDescription kDescriptions[] = {{0, 0}, {0, 1}, {1, 0}, {1, 1}};
constexpr struct { int width, height; } kSizes[] = {{1, 1}, {2, 2}, {4, 2}, {1, 4}, {5, 3}, {6, 5}, {33, 17}};

class ConversionPixel : public GlTest {
protected:
    std::vector<uint8_t> toRgb(const ZecImage& frame, int width, int height, ColourDescription description,
                               bool nv21) {
        const GLuint target = targetTexture(width, height);
        EXPECT_TRUE(yuvToRgb(m_converter, frame, description.standard, description.range, target,
                             uint32_t(width), uint32_t(height), nv21));
        return contentOf(target, width, height);
    }

    /// Luma of all pixels and chroma pairs of the even rows, as the groups in the staging buffer say.
    void toYuv(const Picture& picture, ColourDescription description) {
        const auto pitch = size_t(picture.width + 1) / 2 * 4;
        std::vector<uint8_t> groups(pitch * size_t(picture.height), 0x66);
        ZecImage staging = {{groups.data(), nullptr, nullptr}, {int32_t(pitch), 0, 0}};
        EXPECT_TRUE(readBack(m_converter, textureOf(picture), staging, description.standard,
                             description.range, uint32_t(picture.width), uint32_t(picture.height)));
        m_luma.clear();
        m_chroma.clear();
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const uint8_t* group = groups.data() + size_t(y) * pitch + size_t(x / 2) * 4;
                m_luma.push_back(group[x % 2 * 2]);
                if (x % 2 == 0 && y % 2 == 0)
                    m_chroma.insert(m_chroma.end(), {group[1], group[3]});
            }
    }

    uint8_t noise() { return uint8_t(m_random() >> 24); }
    void fillWithNoise(const ZecImage& frame, int width, int height) {
        fillPicture(frame, width, height, [this](int, int, int) { return noise(); });
    }
    Picture noisePicture(int width, int height) {
        Picture picture(width, height);
        for (reference::Colour& pixel : picture.pixels)
            pixel = {noise() / 255.0, noise() / 255.0, noise() / 255.0, noise() / 255.0};
        return picture;
    }

    /// Interpolated chroma of 8 bits is off by up to one level, which the matrix more than doubles.
    Tolerance interpolated() const { return tolerance(kRounding, {3}); }
    Tolerance exact() const { return tolerance(kRounding, {1.5}); }

    ColorConverter m_converter;
    std::vector<uint8_t> m_luma, m_chroma;
    std::mt19937 m_random{1};
};

TEST_F(ConversionPixel, KnownColoursComeOutBothWays) {
    const struct {
        ColourDescription description;
        int y, u, v;
        double r, g, b;
    } cases[] = {
        {{0, 0}, 235, 128, 128, 255, 255, 255}, {{0, 0}, 16, 128, 128, 0, 0, 0}, {{0, 0}, 81, 90, 240, 254, 0, 0},
        {{0, 0}, 41, 240, 110, 0, 0, 255},      {{1, 0}, 63, 102, 240, 255, 0, 0}, {{1, 0}, 173, 42, 26, 0, 255, 0},
        {{0, 1}, 255, 128, 128, 255, 255, 255}, {{0, 1}, 76, 85, 255, 255, 0, 0}, {{1, 1}, 54, 99, 255, 255, 0, 0},
        {{1, 1}, 93, 128, 128, 93, 93, 93},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.description.standard << c.description.range << ": " << c.y);
        TestFrame frame(2, 2);
        fillPicture(frame.image, 2, 2, [&](int plane, int x, int) { return plane == 0 ? c.y : x % 2 ? c.v : c.u; });
        const Picture colour(2, 2, {c.r / 255, c.g / 255, c.b / 255, 1});
        EXPECT_TRUE(agree(toRgb(frame.image, 2, 2, c.description, false), colour, {2}));
        toYuv(colour, c.description);
        EXPECT_TRUE(agree(m_luma, std::vector<double>(4, c.y), 2, {1}));
        EXPECT_TRUE(agree(m_chroma, {double(c.u), double(c.v)}, 2, {1}));
    }
}
