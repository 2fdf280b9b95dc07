// The camera frames of the Android example.

#include "examples/android/src/main/cpp/camera_frame.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

/// The plane whose samples lie from `first` to `last`. A block of the exact size shows reads beyond it.
CameraPlane planeIn(const std::vector<uint8_t>& block, char first, char last, ptrdiff_t rowStride,
                    ptrdiff_t pixelStride) {
    const auto begin = std::find(block.begin(), block.end(), first);
    const auto end = std::find(block.begin(), block.end(), last) + 1;
    return {&*begin, end - begin, rowStride, pixelStride};
}

TEST(CameraFrame, EveryLayoutBecomesNv12) {
    // Luma is a to i, U is p to s, V is 1 to 4; other characters lie between.
    const struct {
        const char *luma, *chroma;
        ptrdiff_t lumaStride, chromaStride, pixelStride;
    } layouts[] = {
        {"abcdefghi", "pqrs1234", 3, 2, 1},           // three planes
        {"abc.def.ghi", "pq..rs12..34", 4, 4, 1},     // padded
        {"abcdefghi", "p1q2r3s4", 3, 4, 2},           // pairs of U and V
        {"abc-def-ghi", "1p2q.3r4s", 4, 5, 2},        // of V and U, padded
        {"abc-def-ghi", "p.q.r.s..1.2.3.4", 4, 4, 2}, // apart, with gaps
    };
    for (const auto& l : layouts) {
        const std::vector<uint8_t> luma(l.luma, l.luma + std::strlen(l.luma));
        const std::vector<uint8_t> chroma(l.chroma, l.chroma + std::strlen(l.chroma));
        const CameraPlane y = planeIn(luma, 'a', 'i', l.lumaStride, 1);
        const CameraPlane u = planeIn(chroma, 'p', 's', l.chromaStride, l.pixelStride);
        CameraPlane v = planeIn(chroma, '1', '4', l.chromaStride, l.pixelStride);
        std::vector<uint8_t> nv12(nv12Size(3, 3));
        EXPECT_TRUE(packNv12(y, u, v, 3, 3, nv12.data())) << l.chroma;
        EXPECT_EQ(std::string(nv12.begin(), nv12.end()), "abcdefghip1q2r3s4") << l.chroma;
        --v.size;
        EXPECT_FALSE(packNv12(y, u, v, 3, 3, nv12.data())) << l.chroma;
    }
}

} // namespace
