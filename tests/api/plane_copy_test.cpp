#include "api/plane_copy.h"

#include "api/plane_geometry.h"
#include "tests/api/test_frame.h"
#include "tests/support/log_capture.h"

#include <climits>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace ze {
namespace {

int pattern(int plane, int x, int y) {
    return 17 + plane * 101 + x * 3 + y * 29;
}

TEST(PlaneGeometry, RoundsChromaUpAndHoldsTheLargestSizes) {
    for (int format : {0, 1}) {
        EXPECT_EQ(planeRowBytes(format, 0, 5), 5u);
        EXPECT_EQ(planeRowBytes(format, 1, 5), 6u);
        EXPECT_EQ(planeRowBytes(format, 1, 6), 6u);
        EXPECT_EQ(planeRowBytes(format, 1, INT_MAX), 0x80000000u);
        EXPECT_EQ(planeRows(format, 0, 3), 3u);
        EXPECT_EQ(planeRows(format, 1, 3), 2u);
        EXPECT_EQ(planeRows(format, 1, 4), 2u);
        EXPECT_EQ(planeRows(format, 1, INT_MAX), 0x40000000u);
    }
    EXPECT_EQ(stagingPitch(5), 12u);
    EXPECT_EQ(stagingPitch(4), 8u);
    EXPECT_EQ(stagingSize(5, 3), 36u);
    EXPECT_EQ(stagingSize(INT_MAX, INT_MAX), 0x7fffffff00000000u);
}

TEST(PlaneCopy, CopiesThePictureAndLeavesThePaddingWhateverThePitches) {
    const RowLayout layouts[] = {{0}, {1}, {7}, {64}, {0, true}, {7, true}};
    const struct { int width, height; } sizes[] = {{1, 1}, {2, 2}, {5, 3}, {64, 4}};
    for (auto [width, height] : sizes)
        for (RowLayout from : layouts)
            for (RowLayout to : layouts)
                for (int format : {0, 1}) {
                    SCOPED_TRACE(testing::Message()
                                 << width << " x " << height << ", padding " << from.padding << " to "
                                 << to.padding << ", format " << format);
                    TestFrame input(width, height, from), output(width, height, to);
                    TestFrame expected(width, height, to);
                    fillPicture(input.image, width, height, pattern);
                    fillPicture(expected.image, width, height, pattern);
                    copyFrame(input.image, output.image, format, width, height);
                    EXPECT_EQ(output.planes[0], expected.planes[0]);
                    EXPECT_EQ(output.planes[1], expected.planes[1]);
                }
}

TEST(PlaneCopy, LeavesAFrameThatIsCopiedOntoItself) {
    for (int padding : {0, 3}) {
        TestFrame frame(5, 3, {padding});
        fillPicture(frame.image, 5, 3, pattern);
        const std::vector<uint8_t> luma = frame.planes[0], chroma = frame.planes[1];
        copyFrame(frame.image, frame.image, 0, 5, 3);
        EXPECT_EQ(frame.planes[0], luma);
        EXPECT_EQ(frame.planes[1], chroma);
    }
}

TEST(PlaneCopy, ReachesRowsBeyondTwoGigabytes) {
    TestFrame input(2, 3), output(2, 3);
    FarFrame between;
    fillPicture(input.image, 2, 3, pattern);
    copyFrame(input.image, between.image, 0, 2, 3);
    copyFrame(between.image, output.image, 0, 2, 3);
    EXPECT_EQ(output.planes[0], input.planes[0]);
    EXPECT_EQ(output.planes[1], input.planes[1]);
}

TEST(PlaneCopy, RefusesAnInvalidFormatWithTwoMessagesForEachPlane) {
    for (int format : {-1, 2, INT_MIN, INT_MAX}) {
        TestFrame input(4, 4), output(4, 4), untouched(4, 4);
        fillPicture(input.image, 4, 4, pattern);
        LogCapture log;
        copyFrame(input.image, output.image, format, 4, 4);
        EXPECT_THAT(log.texts(), ElementsAre("ZecGetLineInfoForImagePlane(): Invalid pixel format!",
                                             "ZecGetActualHeightForImagePlane(): Invalid pixel format!",
                                             "ZecGetLineInfoForImagePlane(): Invalid pixel format!",
                                             "ZecGetActualHeightForImagePlane(): Invalid pixel format!"));
        EXPECT_EQ(output.planes[0], untouched.planes[0]);
        EXPECT_EQ(output.planes[1], untouched.planes[1]);
    }
}

} // namespace
} // namespace ze
