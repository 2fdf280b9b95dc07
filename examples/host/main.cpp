// The smallest host: beautifies a frame that it makes itself, in place, and tells what became of it.

#include "api/ze_beauty_effect.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kWidth = 320, kHeight = 240;
constexpr int kNV12 = 0, kBT601 = 0, kFullRange = 1;

/// Skin color with a fine grain, as a camera's sensor adds it.
std::vector<uint8_t> makeFrame() {
    std::vector<uint8_t> frame(kWidth * kHeight * 3 / 2);
    for (int i = 0; i < kWidth * kHeight; ++i)
        frame[size_t(i)] = uint8_t(160 + (i * 7 + i / kWidth * 13) % 24 - 12); // luma
    for (size_t i = kWidth * kHeight; i < frame.size(); i += 2) {
        frame[i] = 110;     // Cb
        frame[i + 1] = 150; // Cr
    }
    return frame;
}

/// The mean difference between neighbors in a row of luma.
double grain(const std::vector<uint8_t>& frame) {
    double sum = 0;
    for (int i = 1; i < kWidth * kHeight; ++i)
        sum += i % kWidth ? std::abs(frame[size_t(i)] - frame[size_t(i) - 1]) : 0;
    return sum / (kWidth - 1) / kHeight;
}

} // namespace

int main() {
    ZecRenderCore* const core = ZecCreateRenderCore();
    ZecEffect* const beauty = ZecCreateEffect(0);
    ZecSetBeautyParams(beauty, 0.8f, 0.2f); // smoothing, whitening

    std::vector<uint8_t> frame = makeFrame();
    const double before = grain(frame);
    ZecImage image = {{frame.data(), frame.data() + kWidth * kHeight, nullptr}, {kWidth, kWidth, 0}};
    const bool done =
        ZecRender(core, {beauty}, &image, &image, kNV12, kBT601, kFullRange, kWidth, kHeight, 0);

    // Effects first: they need the context, which stays current on this thread and goes with the core.
    const bool freed = ZecDestoryEffect(beauty) && ZecDestroyRenderCore(core);
    if (!done || !freed) {
        std::fprintf(stderr, "no frame: the log above says why\n");
        return 1;
    }
    std::printf("grain %.2f -> %.2f\n", before, grain(frame));
    return grain(frame) < before ? 0 : 1;
}
