#include "api/unpack.h"

#include "tests/api/test_frame.h"

#include <gtest/gtest.h>

namespace ze {
namespace {

/// A staging image of the exact size, its rows `padding` bytes apart, without two equal neighbours.
struct Staging {
    Staging(int width, int height, int padding)
        : image{{nullptr, nullptr, nullptr}, {(width + 1) / 2 * 4 + padding, 0, 0}},
          bytes(size_t(height * image.pitches[0] - padding)) {
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = uint8_t(i * 2654435761u >> 13);
        image.planes[0] = bytes.data();
    }

    ZecImage image;
    std::vector<uint8_t> bytes;
};

/// What byte `x` of row `y` of a plane must become: bytes of a group are Y, U, Y, V.
uint8_t expectedByte(const ZecImage& staging, bool nv21, int plane, int x, int y) {
    const bool isFirst = x % 2 == 0;
    const int place = plane == 0 ? (isFirst ? 0 : 2) : (isFirst != nv21 ? 1 : 3);
    return byteAt(staging, 0, x / 2 * 4 + place, plane == 0 ? y : 2 * y);
}

void expectUnpacked(int width, int height, bool nv21, int stagingPadding, RowLayout layout) {
    SCOPED_TRACE(testing::Message() << width << " x " << height << (nv21 ? ", NV21" : ", NV12")
                                    << ", padding " << stagingPadding << " to " << layout.padding);
    const Staging staging(width, height, stagingPadding);
    TestFrame output(width, height, layout), expected(width, height, layout);
    fillPicture(expected.image, width, height,
                [&](int plane, int x, int y) { return expectedByte(staging.image, nv21, plane, x, y); });
    unpackFrame(staging.image, output.image, nv21, width, height);
    EXPECT_EQ(output.planes[0], expected.planes[0]);
    EXPECT_EQ(output.planes[1], expected.planes[1]);
}

TEST(Unpack, FollowsTheByteRuleAtEveryWidth) {
    for (int width = 1; width <= 130; ++width)
        for (int height : {1, 2, 3})
            for (bool nv21 : {false, true}) {
                expectUnpacked(width, height, nv21, 0, {});
                expectUnpacked(width, height, nv21, 0, {9});
            }
}

TEST(Unpack, KeepsToThePitchesOfBothSides) {
    for (int width : {1, 33, 64})
        for (bool nv21 : {false, true}) {
            expectUnpacked(width, 5, nv21, 3, {0});
            expectUnpacked(width, 6, nv21, 64, {31});
            expectUnpacked(width, 5, nv21, 0, {1, true});
        }
}

TEST(Unpack, ReachesRowsBeyondTwoGigabytes) {
    const Staging staging(2, 3, 0);
    const FarFrame output;
    unpackFrame(staging.image, output.image, false, 2, 3);
    for (int plane : {0, 1})
        for (int y = 0; y < rowCount(plane, 3); ++y)
            for (int x : {0, 1})
                EXPECT_EQ(byteAt(output.image, plane, x, y), expectedByte(staging.image, false, plane, x, y));
}

} // namespace
} // namespace ze
