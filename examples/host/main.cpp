// The smallest host: beautifies a frame that it makes itself, in place, and tells what became of it.

#include "host/beautifier.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kWidth = 320, kHeight = 240;

/// Skin color with a fine grain, as a camera's sensor adds it.
std::vector<uint8_t> makeFrame() {
    std::vector<uint8_t> bytes(kWidth * kHeight * 3 / 2);
    for (int i = 0; i < kWidth * kHeight; ++i)
        bytes[static_cast<size_t>(i)] = static_cast<uint8_t>(148 + (i * 7 + i / kWidth * 13) % 24); // luma
    for (size_t i = kWidth * kHeight; i < bytes.size(); i += 2) {
        bytes[i] = 110;     // Cb
        bytes[i + 1] = 150; // Cr
    }
    return bytes;
}

/// The mean difference between neighbors in a row of luma.
double grain(const std::vector<uint8_t>& bytes) {
    double sum = 0;
    for (size_t i = 1; i < kWidth * kHeight; ++i)
        if (i % kWidth != 0)
            sum += std::abs(bytes[i] - bytes[i - 1]);
    return sum / (kWidth - 1) / kHeight;
}

} // namespace

int main() {
    std::vector<uint8_t> bytes = makeFrame();
    const double before = grain(bytes);
    zebeauty::Frame frame;
    frame.planes = {bytes.data(), bytes.data() + kWidth * kHeight, kWidth, kWidth};
    frame.width = kWidth;
    frame.height = kHeight;

    zebeauty::Beautifier beautifier({0.8f, 0.2f}); // smoothing, whitening
    if (const auto reason = beautifier.process(frame)) {
        std::fprintf(stderr, "no frame: %s\n", reason->c_str());
        return 1;
    }
    std::printf("grain %.2f -> %.2f\n", before, grain(bytes));
    return grain(bytes) < before ? 0 : 1;
}
