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
    uint8_t noise() { return uint8_t(m_random() >> 24); }

private:
    std::mt19937 m_random{1};
};

TEST_F(ConversionPixel, ChromaLiesBetweenThePairsAtEverySizeAndPitch) {
    for (bool nv21 : {false, true}) {
        ColorConverter converter; // with another format comes another matrix
        for (auto [width, height] : kSizes)
            for (ColourDescription description : kDescriptions)
                for (int roundTo : {1, 2, 4, 8}) { // all that GL can be told
                    TestFrame frame(width, height, {.roundTo = roundTo});
                    fillPicture(frame.image, width, height, [&](int, int, int) { return noise(); });
                    const GLuint target = targetTexture(width, height);
                    EXPECT_TRUE(yuvToRgb(converter, frame.image, description.standard, description.range,
                                         target, uint32_t(width), uint32_t(height), nv21));
                    // Interpolated chroma of 8 bits is up to one level off, which the matrix more than
                    // doubles.
                    EXPECT_TRUE(agree(contentOf(target, width, height),
                                      reference::yuvToRgb(frame.image, width, height, description, nv21),
                                      tolerance(kRounding, {3})))
                        << width << " x " << height << ", rows of " << frame.image.pitches[0];
                }
    }
}

TEST_F(ConversionPixel, PacksLumaOfBothPixelsAndChromaOfTheLeft) {
    ColorConverter converter;
    for (auto [width, height] : kSizes)
        for (ColourDescription description : kDescriptions) {
            Picture picture(width, height);
            for (reference::Colour& pixel : picture.pixels)
                for (double& channel : pixel)
                    channel = noise() / 255.0;
            std::vector<uint8_t> groups(size_t((width + 1) / 2 * 4 * height), 0x66);
            ZecImage staging = {{groups.data(), nullptr, nullptr}, {(width + 1) / 2 * 4, 0, 0}};
            EXPECT_TRUE(readBack(converter, textureOf(picture), staging, description.standard,
                                 description.range, uint32_t(width), uint32_t(height)));
            std::vector<uint8_t> luma, chroma;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const uint8_t* group = &byteAt(staging, 0, x / 2 * 4, y);
                    luma.push_back(group[x % 2 * 2]);
                    if (x % 2 == 0 && y % 2 == 0)
                        chroma.insert(chroma.end(), {group[1], group[3]});
                }
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            const reference::Planes expected = reference::rgbToYuv(picture, description, false);
            EXPECT_TRUE(agree(luma, expected.luma, width, tolerance(kRounding, {1})));
            EXPECT_TRUE(agree(chroma, expected.chroma, rowBytes(1, width), tolerance(kRounding, {1})));
        }
}

} // namespace
} // namespace ze
