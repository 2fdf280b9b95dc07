// From planes to planes, and from what is read back to planes.

#include "api/plane_copy.h"
#include "api/unpack.h"
#include "tests/api/test_frame.h"

#include <utility>

#include <gtest/gtest.h>

namespace ze {
namespace {

TEST(PlaneCopy, CopiesThePictureAndLeavesThePaddingWhateverThePitches) {
    const auto pattern = [](int plane, int x, int y) { return 17 + plane * 101 + x * 3 + y * 29; };
    const RowLayout layouts[] = {{0}, {1}, {64}, {7, true}};
    for (auto [width, height] : {std::pair{1, 1}, {2, 2}, {5, 3}, {64, 4}})
        for (RowLayout from : layouts)
            for (RowLayout to : layouts)
                for (int format : {0, 1}) {
                    TestFrame input(width, height, from), output(width, height, to),
                        expected(width, height, to);
                    fillPicture(input.image, width, height, pattern);
                    fillPicture(expected.image, width, height, pattern);
                    copyFrame(input.image, output.image, format, {width, height});
                    copyFrame(output.image, output.image, format, {width, height}); // onto itself
                    EXPECT_TRUE(output == expected)
                        << width << " x " << height << ", padding " << from.padding << " to " << to.padding;
                }
}

// Bytes of a group are Y, U, Y, V.
TEST(Unpack, FollowsTheByteRuleAtEveryWidthAndPitch) {
    const struct {
        int height, stagingPadding;
        RowLayout layout;
    } kinds[] = {{1, 0, {}}, {2, 0, {}}, {3, 0, {9}}, {5, 3, {}}, {6, 64, {31}}, {5, 0, {1, true}}};
    for (int width = 1; width <= 130; ++width)
        for (bool nv21 : {false, true})
            for (const auto& [height, stagingPadding, layout] : kinds) {
                const int pitch = (width + 1) / 2 * 4 + stagingPadding;
                std::vector<uint8_t> bytes(static_cast<size_t>(height * pitch - stagingPadding));
                for (size_t i = 0; i < bytes.size(); ++i)
                    bytes[i] = static_cast<uint8_t>(i * 2654435761u >> 13); // no two equal neighbors
                const ZecImage staging = {{bytes.data(), nullptr, nullptr}, {pitch, 0, 0}};

                TestFrame output(width, height, layout), expected(width, height, layout);
                fillPicture(expected.image, width, height, [&](int plane, int x, int y) {
                    const bool isFirst = x % 2 == 0;
                    const int place = plane == 0 ? (isFirst ? 0 : 2) : (isFirst != nv21 ? 1 : 3);
                    return byteAt(staging, 0, x / 2 * 4 + place, plane == 0 ? y : 2 * y);
                });
                unpackFrame(staging, output.image, nv21, {width, height});
                EXPECT_TRUE(output == expected) << width << " x " << height << (nv21 ? ", NV21" : ", NV12")
                                                << ", padding " << stagingPadding << " to " << layout.padding;
            }
}

} // namespace
} // namespace ze
