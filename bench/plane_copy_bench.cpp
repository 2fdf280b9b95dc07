// Copying an unchanged frame: against memcpy where the rows touch, against libyuv where they do not.

#include "api/plane_copy.h"
#include "bench/aligned_block.h"
#include "bench/ratio.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <libyuv/planar_functions.h>

namespace {

struct Frame {
    int width, height;
    ZecImage input{}, output{};

    size_t pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

void copy(const Frame& frame) {
    ze::copyFrame(frame.input, frame.output, 0, {frame.width, frame.height});
}

void copyWithMemcpy(const Frame& frame) {
    std::memcpy(frame.output.planes[0], frame.input.planes[0], frame.pixels());
    std::memcpy(frame.output.planes[1], frame.input.planes[1], frame.pixels() / 2);
}

void copyWithLibyuv(const Frame& frame) {
    for (int plane : {0, 1})
        libyuv::CopyPlane(frame.input.planes[plane], frame.input.pitches[plane], frame.output.planes[plane],
                          frame.output.pitches[plane], frame.width, frame.height / (plane + 1));
}

/// Whether `baseline` leaves the same frame behind as the library.
bool agree(const Frame& frame, void (*baseline)(const Frame&)) {
    const size_t size = frame.pixels() * 3 / 2;
    const AlignedBlock expected = makeBlock(size);
    baseline(frame);
    std::memcpy(expected.get(), frame.output.planes[0], size);
    std::memset(frame.output.planes[0], 0x66, size);
    copy(frame);
    return std::memcmp(expected.get(), frame.output.planes[0], size) == 0;
}

/// Adds the copy of rows with `padding` bytes between them to rows without. Returns whether it copies right.
bool addCopy(int width, int height, int padding) {
    static std::vector<AlignedBlock> blocks; // The benchmarks that are added here run later.
    Frame frame{width, height};
    const int pitch = width + padding;
    const size_t lumaSize = static_cast<size_t>(pitch) * static_cast<size_t>(height);
    uint8_t* const input = blocks.emplace_back(makeBlock(lumaSize * 3 / 2)).get();
    uint8_t* const output = blocks.emplace_back(makeBlock(frame.pixels() * 3 / 2)).get();
    frame.input = {{input, input + lumaSize}, {pitch, pitch}};
    frame.output = {{output, output + frame.pixels()}, {width, width}};

    const auto baseline = padding ? copyWithLibyuv : copyWithMemcpy;
    addComparison(
        (padding ? "padded rows/" : "rows touch/") + std::to_string(width) + "x" + std::to_string(height),
        [frame] { copy(frame); }, {{padding ? "libyuv" : "memcpy", [frame, baseline] { baseline(frame); }}});
    return agree(frame, baseline);
}

} // namespace

int main(int argc, char** argv) {
    for (int padding : {0, 64})
        if (!addCopy(1280, 720, padding) || !addCopy(3840, 2160, padding)) {
            std::fputs("copyFrame and its baseline make different frames\n", stderr);
            return 1;
        }
    return runComparisons(argc, argv);
}
