#include "api/unpack.h"

#include "tests/api/test_frame.h"

#include <gtest/gtest.h>

namespace ze {
namespace {

/// What byte `x` of row `y` of a plane must become: bytes of a group are Y, U, Y, V.
uint8_t expectedByte(const ZecImage& staging, bool nv21, int plane, int x, int y) {
    const bool isFirst = x % 2 == 0;
    const int place = plane == 0 ? (isFirst ? 0 : 2) : (isFirst != nv21 ? 1 : 3);
    return byteAt(staging, 0, x / 2 * 4 + place, plane == 0 ? y : 2 * y);
}

TEST(Unpack, FollowsTheByteRuleAtEveryWidthAndPitch) {
    const struct {
        int height, stagingPadding;
        RowLayout layout;
    } kinds[] = {{1, 0, {}}, {2, 0, {}}, {3, 0, {9}}, {5, 3, {}}, {6, 64, {31}}, {5, 0, {1, true}}};
    for (int width = 1; width <= 130; ++width)
        for (bool nv21 : {false, true})
            for (const auto& [height, stagingPadding, layout] : kinds) {
                const int pitch = (width + 1) / 2 * 4 + stagingPadding;
                std::vector<uint8_t> bytes(size_t(height * pitch - stagingPadding));
                for (size_t i = 0; i < bytes.size(); ++i)
                    bytes[i] = uint8_t(i * 2654435761u >> 13); // no two equal neighbours
                const ZecImage staging = {{bytes.data(), nullptr, nullptr}, {pitch, 0, 0}};

                TestFrame output(width, height, layout), expected(width, height, layout);
                fillPicture(expected.image, width, height, [&](int plane, int x, int y) {
                    return expectedByte(staging, nv21, plane, x, y);
                });
                unpackFrame(staging, output.image, nv21, width, height);
                EXPECT_TRUE(output == expected) << width << " x " << height << (nv21 ? ", NV21" : ", NV12")
                                                << ", padding " << stagingPadding << " to " << layout.padding;
            }
}

} // namespace
} // namespace ze
