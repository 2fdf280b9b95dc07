// Frames of the tool, from a picture through the library and back.

#include "tests/support/reference_convert.h"
#include "tool/render/yuv_frame.h"

#include <gtest/gtest.h>

using namespace ze::tool;

namespace {

template <class Expected>
void expectNear(const std::vector<uint8_t>& actual, const Expected& expected, double tolerance) {
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); ++i)
        ASSERT_NEAR(actual[i], expected[i], tolerance) << "at " << i;
}

} // namespace

TEST(YuvFrame, HasEverySampleThatTheStandardsAskForUpToTheOddEdgesAndComesBack) {
    unsigned state = 1;
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {33, 17}, {34, 18}})
        for (int kind = 0; kind < 8; ++kind) {
            SCOPED_TRACE(testing::Message() << width << " x " << height << ", kind " << kind);
            const YuvDescription description = {static_cast<ChromaOrder>(kind & 1),
                                                static_cast<ColorStandard>(kind >> 1 & 1),
                                                static_cast<ColorRange>(kind >> 2)};
            Picture picture(width, height);
            for (uint8_t& channel : picture.rgb)
                channel = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
            reference::Picture pixels(picture.width, picture.height);
            for (size_t i = 0; i < picture.rgb.size(); ++i)
                pixels.pixels[i / 3][i % 3] = picture.rgb[i] / 255.0;
            reference::Picture means = pixels; // of four pixels each, the last ones repeated at odd edges
            for (int y = 0; y < picture.height; ++y)
                for (int x = 0; x < picture.width; ++x)
                    means.at(x, y) = pixels.sample(x + 0.5, y + 0.5);

            const YuvFrame frame = yuvFromPicture(picture, description);
            const reference::ColorDescription meaning = {static_cast<int>(description.standard),
                                                         static_cast<int>(description.range)};
            const bool nv21 = description.order == ChromaOrder::nv21;
            expectNear(frame.luma, reference::rgbToYuv(pixels, meaning, nv21).luma, 1.1);
            expectNear(frame.chroma, reference::rgbToYuv(means, meaning, nv21).chroma, 2.1);
            for (size_t i = 0; i < picture.rgb.size(); ++i) // with the same chroma everywhere it comes back
                picture.rgb[i] = static_cast<uint8_t>(30 + 40 * (i % 3) + i / 3 * 37 % 100);
            expectNear(pictureFromYuv(yuvFromPicture(picture, description)).rgb, picture.rgb, 4);
        }
}
