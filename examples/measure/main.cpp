// How long frames take on this device: measure [WIDTHxHEIGHT [FRAMES]]. Prints milliseconds for the first
// frame, which makes the context and the programs, and the median and the slowest of the others.

#include "host/beautifier.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char** argv) {
    int width = 1280, height = 720;
    if (argc > 1 && std::sscanf(argv[1], "%dx%d", &width, &height) != 2) {
        std::fprintf(stderr, "usage: measure [WIDTHxHEIGHT [FRAMES]]\n");
        return 2;
    }
    const int frames = std::max(2, argc > 2 ? std::atoi(argv[2]) : 300);
    const int chromaPitch = (width + 1) / 2 * 2;
    const size_t lumaSize = static_cast<size_t>(width) * static_cast<size_t>(height);
    const size_t chromaSize = static_cast<size_t>(chromaPitch) * static_cast<size_t>((height + 1) / 2);
    std::vector<uint8_t> bytes(lumaSize + chromaSize);

    zebeauty::Frame frame;
    frame.planes = {bytes.data(), bytes.data() + lumaSize, width, chromaPitch};
    frame.width = width;
    frame.height = height;
    zebeauty::Beautifier beautifier({0.8f, 0.2f}); // smoothing, whitening

    std::vector<double> times;
    for (int i = 0; i < frames; ++i) {
        for (size_t at = 0; at < bytes.size(); ++at) // new content, as from a camera: the result was in place
            bytes[at] = static_cast<uint8_t>(at < lumaSize ? 140 + (at * 7 + static_cast<size_t>(i)) % 24
                                                           : 110 + at % 2 * 40);
        const auto start = std::chrono::steady_clock::now();
        if (const auto reason = beautifier.process(frame)) {
            std::fprintf(stderr, "no frame: %s\n", reason->c_str());
            return 1;
        }
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin() + 1, times.end());
    std::printf("%d x %d, %d frames: first %.1f ms, median %.1f ms, slowest %.1f ms\n", width, height, frames,
                times[0], times[times.size() / 2], times.back());
    return 0;
}
