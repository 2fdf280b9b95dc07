#include "api/plane_copy.h"

#include "tests/api/test_frame.h"

#include <utility>

#include <gtest/gtest.h>

namespace ze {
namespace {

int pattern(int plane, int x, int y) {
    return 17 + plane * 101 + x * 3 + y * 29;
}

TEST(PlaneCopy, CopiesThePictureAndLeavesThePaddingWhateverThePitches) {
    const RowLayout layouts[] = {{0}, {1}, {64}, {7, true}};
    for (auto [width, height] : {std::pair{1, 1}, {2, 2}, {5, 3}, {64, 4}})
        for (RowLayout from : layouts)
            for (RowLayout to : layouts)
                for (int format : {0, 1}) {
                    TestFrame input(width, height, from), output(width, height, to),
                        expected(width, height, to);
                    fillPicture(input.image, width, height, pattern);
                    fillPicture(expected.image, width, height, pattern);
                    copyFrame(input.image, output.image, format, width, height);
                    copyFrame(output.image, output.image, format, width, height); // onto itself
                    EXPECT_TRUE(output == expected)
                        << width << " x " << height << ", padding " << from.padding << " to " << to.padding;
                }
}

} // namespace
} // namespace ze
