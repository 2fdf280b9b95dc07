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

constexpr ColourDescription kDescriptions[] = {{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, -1}};
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

    testing::AssertionResult convertsAs(const ZecImage& frame, int width, int height,
                                        ColourDescription description, bool nv21, bool nv21Matrix) {
        // Interpolated chroma of 8 bits is up to one level off, which the matrix more than doubles.
        return agree(toRgb(frame, width, height, description, nv21),
                     reference::yuvToRgb(frame, width, height, description, nv21Matrix),
                     tolerance(kRounding, {3}));
    }

    /// Reads `picture` back into m_luma, all pixels, and m_chroma, U and V of the even rows.
    void toYuv(const Picture& picture, ColourDescription description) {
        const size_t pitch = size_t(picture.width + 1) / 2 * 4;
        std::vector<uint8_t> groups(pitch * size_t(picture.height), 0x66);
        ZecImage staging = {{groups.data(), nullptr, nullptr}, {int32_t(pitch), 0, 0}};
        EXPECT_TRUE(readBack(m_converter, textureOf(picture), staging, description.standard,
                             description.range, uint32_t(picture.width), uint32_t(picture.height)));
        m_luma.clear();
        m_chroma.clear();
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const uint8_t* group = groups.data() + size_t(y) * pitch + x / 2 * 4;
                m_luma.push_back(group[x % 2 * 2]);
                if (x % 2 == 0 && y % 2 == 0)
                    m_chroma.insert(m_chroma.end(), {group[1], group[3]});
            }
    }

    uint8_t noise() { return uint8_t(m_random() >> 24); }
    void fillWithNoise(TestFrame& frame) {
        for (std::vector<uint8_t>& plane : frame.planes)
            for (uint8_t& byte : plane)
                byte = noise();
    }

    ColorConverter m_converter;
    std::vector<uint8_t> m_luma, m_chroma;
    std::mt19937 m_random{1};
};

TEST_F(ConversionPixel, ColoursOfKnownNumbersComeOutBothWays) {
    // clang-format off
    const struct { ColourDescription description; int y, u, v; double r, g, b; } cases[] = {
        {{0, 0}, 235, 128, 128, 255, 255, 255},
        {{0, 0},  16, 128, 128,   0,   0,   0},
        {{0, 0},  81,  90, 240, 255,   0,   0},
        {{0, 0},  41, 240, 110,   0,   0, 255},
        {{0, 1}, 255, 128, 128, 255, 255, 255},
        {{0, 1},  76,  85, 255, 255,   0,   0},
        {{1, 0},  63, 102, 240, 255,   0,   0},
        {{1, 0}, 173,  42,  26,   0, 255,   0},
        {{1, 1},  54,  99, 255, 255,   0,   0},
        {{1, 1},  93, 128, 128,  93,  93,  93},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "standard " << c.description.standard << ", range "
                                        << c.description.range << ", Y " << c.y);
        TestFrame frame(2, 2);
        fillPicture(frame.image, 2, 2, [&](int plane, int x, int) {
            return plane == 0 ? c.y : std::array{c.u, c.v}[size_t(x)];
        });
        const Picture colour(2, 2, {c.r / 255, c.g / 255, c.b / 255, 1});
        EXPECT_TRUE(agree(toRgb(frame.image, 2, 2, c.description, false), colour, {2}));
        toYuv(colour, c.description);
        EXPECT_TRUE(agree(m_luma, std::vector<double>(4, c.y), 2, {1}));
        EXPECT_TRUE(agree(m_chroma, {double(c.u), double(c.v)}, 2, {1}));
    }
}

TEST_F(ConversionPixel, FlatFramesKeepTheirColourAndClampAtBlackAndWhite) {
    const int steps[] = {0, 16, 77, 128, 200, 240, 255};
    for (ColourDescription description : kDescriptions)
        for (bool nv21 : {false, true}) {
            m_converter = {}; // with another format comes another matrix
            for (int i = 0; i < 7 * 7 * 7; ++i) {
                TestFrame frame(4, 2);
                fillPicture(frame.image, 4, 2, [&](int plane, int x, int) {
                    return steps[plane == 0 ? i % 7 : x % 2 ? i / 49 : i / 7 % 7];
                });
                ASSERT_TRUE(convertsAs(frame.image, 4, 2, description, nv21, nv21)) << "colour " << i;
            }
        }
}

TEST_F(ConversionPixel, ChromaLiesBetweenThePairsAtEverySizeAndPitch) {
    // Rows on multiples of 1, 2, 4 and 8 are all that GL can be told.
    for (auto [width, height] : kSizes)
        for (ColourDescription description : kDescriptions)
            for (int roundTo : {1, 2, 4, 8}) {
                TestFrame frame(width, height, {.roundTo = roundTo});
                fillWithNoise(frame);
                EXPECT_TRUE(convertsAs(frame.image, width, height, description, false, false))
                    << width << " x " << height << ", rows of " << frame.image.pitches[0] << " and "
                    << frame.image.pitches[1];
            }
}

TEST_F(ConversionPixel, MorePaddingThanEightBytesRoundOffShearsThePicture) {
    for (int width : {16, 13}) { // rows of 16 bytes in both planes
        TestFrame frame(width, 8, {.padding = 8, .roundTo = 8});
        fillWithNoise(frame);
        ZecImage asRead = frame.image;
        asRead.pitches[0] = asRead.pitches[1] = 16;
        EXPECT_TRUE(agree(toRgb(frame.image, width, 8, {0, 1}, false),
                          reference::yuvToRgb(asRead, width, 8, {0, 1}, false), tolerance(kRounding, {3})));
    }
}

TEST_F(ConversionPixel, ANewPixelFormatKeepsTheMatrixUntilTheDescriptionChanges) {
    TestFrame frame(6, 4);
    fillWithNoise(frame);
    const struct {
        ColourDescription description;
        bool nv21, nv21Matrix;
    } frames[] = {{{0, 1}, false, false}, {{0, 1}, true, false}, {{1, 1}, true, true}, {{1, 1}, false, true},
                  {{1, 0}, false, false}, {{1, 0}, true, false}, {{0, 0}, true, true}};
    for (const auto& f : frames)
        EXPECT_TRUE(convertsAs(frame.image, 6, 4, f.description, f.nv21, f.nv21Matrix));
}

TEST_F(ConversionPixel, PacksLumaOfBothPixelsAndChromaOfTheLeft) {
    for (auto [width, height] : kSizes)
        for (ColourDescription description : kDescriptions) {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            Picture picture(width, height);
            for (reference::Colour& pixel : picture.pixels)
                pixel = {noise() / 255.0, noise() / 255.0, noise() / 255.0, noise() / 255.0};
            const reference::Planes expected = reference::rgbToYuv(picture, description, false);
            toYuv(picture, description);
            EXPECT_TRUE(agree(m_luma, expected.luma, width, tolerance(kRounding, {1})));
            EXPECT_TRUE(agree(m_chroma, expected.chroma, (width + 1) / 2 * 2, tolerance(kRounding, {1})));
        }

    Picture pair(2, 1, {0, 0, 1, 1});
    pair.at(0, 0) = {1, 0, 0, 1};
    toYuv(pair, {0, 1});
    EXPECT_TRUE(agree(m_luma, {76, 29}, 2, {1}));
    EXPECT_TRUE(agree(m_chroma, {85, 255}, 2, {1}));
}

} // namespace
} // namespace ze
