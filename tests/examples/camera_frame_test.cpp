// The camera frames of the Android example.

#include "examples/android/src/main/cpp/camera_frame.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

/// A plane in a block of exactly the bytes that the format promises: none after the last sample.
struct Plane {
    Plane(int width, int height, int pixelStride, int padding, int first) {
        const int rowStride = (width - 1) * pixelStride + 1 + padding;
        bytes.assign(size_t(rowStride * (height - 1) + (width - 1) * pixelStride + 1), 0xEE);
        for (int i = 0; i < width * height; ++i)
            bytes[size_t(i / width * rowStride + i % width * pixelStride)] = uint8_t(first + i);
        plane = {bytes.data(), ptrdiff_t(bytes.size()), rowStride, pixelStride};
    }
    std::vector<uint8_t> bytes;
    CameraPlane plane;
};

TEST(CameraFrame, EveryLayoutBecomesNv12) {
    const std::vector<uint8_t> expected = {1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,
                                           13,  14,  15, // 5 x 3
                                           100, 200, 101, 201, 102, 202, 103, 203, 104, 204, 105, 205};
    ASSERT_EQ(nv12Size(5, 3), expected.size());
    const auto packed = [](const CameraPlane& y, const CameraPlane& u, const CameraPlane& v) {
        std::vector<uint8_t> nv12(nv12Size(5, 3));
        return packNv12(y, u, v, 5, 3, nv12.data()) ? nv12 : std::vector<uint8_t>();
    };
    for (const int padding : {0, 3}) {
        const Plane y(5, 3, 1, padding, 1), u(3, 2, 1, padding, 100), v(3, 2, 1, padding, 200);
        EXPECT_EQ(packed(y.plane, u.plane, v.plane), expected);
        const Plane apartU(3, 2, 2, padding, 100), apartV(3, 2, 2, padding, 200);
        EXPECT_EQ(packed(y.plane, apartU.plane, apartV.plane), expected);

        // Within each other: a block of pairs, of which one plane starts a byte later.
        const int rowStride = 6 + padding;
        for (const int uFirst : {1, 0}) {
            std::vector<uint8_t> pairs(size_t(rowStride + 6), 0xEE);
            for (int i = 0; i < 6; ++i) {
                uint8_t* const pair = &pairs[size_t(i / 3 * rowStride + i % 3 * 2)];
                pair[!uFirst] = uint8_t(100 + i);
                pair[uFirst] = uint8_t(200 + i);
            }
            const CameraPlane first{pairs.data(), ptrdiff_t(pairs.size()) - 1, rowStride, 2};
            const CameraPlane second{pairs.data() + 1, ptrdiff_t(pairs.size()) - 1, rowStride, 2};
            EXPECT_EQ(packed(y.plane, uFirst ? first : second, uFirst ? second : first), expected);
        }

        CameraPlane shortened = v.plane;
        --shortened.size;
        EXPECT_THAT(packed(y.plane, u.plane, shortened), testing::IsEmpty());
    }
}

} // namespace
