// Frames of the tool, from a picture through the library and back.

#include "tests/support/reference_convert.h"
#include "tool/errors.h"
#include "tool/gl_info.h"
#include "tool/render_session.h"

#include <gtest/gtest.h>

#include <functional>

using namespace ze::tool;

namespace {

/// Calls `check` with every size and description.
void forEachKind(const std::function<void(Picture, YuvDescription)>& check) {
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {33, 17}, {34, 18}})
        for (int i = 0; i < 8; ++i) {
            SCOPED_TRACE(testing::Message() << width << " x " << height << ", kind " << i);
            check(Picture(width, height),
                  {static_cast<ChromaOrder>(i & 1), static_cast<ColourStandard>(i >> 1 & 1),
                   static_cast<ColourRange>(i >> 2)});
        }
}

template <class Expected>
void expectNear(const std::vector<uint8_t>& actual, const Expected& expected, double tolerance) {
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); ++i)
        ASSERT_NEAR(actual[i], expected[i], tolerance) << "at " << i;
}

} // namespace

TEST(YuvFrame, HasEverySampleThatTheStandardsAskForUpToTheOddEdges) {
    forEachKind([state = 1u](Picture picture, YuvDescription description) mutable {
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
        const reference::ColourDescription meaning = {static_cast<int>(description.standard),
                                                      static_cast<int>(description.range)};
        const bool nv21 = description.order == ChromaOrder::nv21;
        expectNear(frame.luma, reference::rgbToYuv(pixels, meaning, nv21).luma, 1.1);
        expectNear(frame.chroma, reference::rgbToYuv(means, meaning, nv21).chroma, 2.1);
    });
}

TEST(RenderSession, WhitensEveryPixel) {
    bool hasGl = true; // without it the frame still comes back as it was
    try {
        queryGl();
    } catch (const Failure&) {
        hasGl = false;
    }
    forEachKind([&](Picture picture, YuvDescription description) {
        for (size_t i = 0; i < picture.rgb.size(); ++i)
            picture.rgb[i] = static_cast<uint8_t>(60 + 30 * (i % 3));
        YuvFrame frame = yuvFromPicture(picture, description);
        if (hasGl)
            RenderSession({Beauty{0, 1}}).render(frame);
        for (uint8_t& channel : picture.rgb)
            channel = static_cast<uint8_t>(channel + (hasGl ? 38 : 0)); // 0.15 of 255
        expectNear(pictureFromYuv(frame).rgb, picture.rgb, 4);
    });
}
