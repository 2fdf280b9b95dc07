#include "api/plane_copy.h"

#include "tests/api/test_frame.h"
#include "tests/support/log_capture.h"

#include <climits>

#include <gmock/gmock.h>

namespace ze {
namespace {

int pattern(int plane, int x, int y) {
    return 17 + plane * 101 + x * 3 + y * 29;
}

TEST(PlaneCopy, CopiesThePictureAndLeavesThePaddingWhateverThePitches) {
    const RowLayout layouts[] = {{0}, {1}, {64}, {7, true}};
    const struct { int width, height; } sizes[] = {{1, 1}, {2, 2}, {5, 3}, {64, 4}};
    for (auto [width, height] : sizes)
        for (RowLayout from : layouts)
            for (RowLayout to : layouts)
                for (int format : {0, 1}) {
                    TestFrame input(width, height, from), output(width, height, to);
                    TestFrame expected(width, height, to);
                    fillPicture(input.image, width, height, pattern);
                    fillPicture(expected.image, width, height, pattern);
                    copyFrame(input.image, output.image, format, width, height);
                    EXPECT_TRUE(output == expected)
                        << width << " x " << height << ", padding " << from.padding << " to " << to.padding;
                    copyFrame(output.image, output.image, format, width, height); // onto itself
                    EXPECT_TRUE(output == expected);
                }
}

TEST(PlaneCopy, RefusesAnInvalidFormatWithTwoMessagesForEachPlane) {
    const std::string row = "ZecGetLineInfoForImagePlane(): Invalid pixel format!";
    const std::string rows = "ZecGetActualHeightForImagePlane(): Invalid pixel format!";
    for (int format : {-1, 2, INT_MIN, INT_MAX}) {
        TestFrame input(4, 4), output(4, 4);
        fillPicture(input.image, 4, 4, pattern);
        LogCapture log;
        copyFrame(input.image, output.image, format, 4, 4);
        EXPECT_THAT(log.texts(), testing::ElementsAre(row, rows, row, rows));
        EXPECT_TRUE(output == TestFrame(4, 4));
    }
}

} // namespace
} // namespace ze
