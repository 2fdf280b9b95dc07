// Unpacking the staging buffer, against a plain copy that moves as many bytes and against libyuv.

#include "api/unpack.h"
#include "bench/aligned_block.h"
#include "bench/ratio.h"

#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include <libyuv/planar_functions.h>

namespace {

struct Frame {
    int width, height;
    bool nv21 = false;
    ZecImage staging{}, output{};

    size_t pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

/// The plain copy reads and writes 1.75 bytes a pixel; unpacking reads 2 and writes 1.5.
void copyEqualBytes(const Frame& frame) {
    std::memcpy(frame.output.planes[0], frame.staging.planes[0], frame.pixels() * 7 / 4);
}

/// libyuv has no function that does all of it. YUY2ToY takes the even bytes, which are luma, and UYVYToY the
/// odd ones, which are chroma pairs. A pair of rows at a time is faster than a plane at a time.
void unpackWithLibyuv(const Frame& frame) {
    const int pitch = frame.staging.pitches[0];
    for (ptrdiff_t row = 0; row < frame.height; row += 2) {
        const uint8_t* from = frame.staging.planes[0] + row * pitch;
        uint8_t* luma = frame.output.planes[0] + row * frame.width;
        uint8_t* chroma = frame.output.planes[1] + row / 2 * frame.width;
        libyuv::YUY2ToY(from, pitch, luma, frame.width, frame.width, 2);
        libyuv::UYVYToY(from, pitch, chroma, frame.width, frame.width, 1);
        if (frame.nv21)
            libyuv::SwapUVPlane(chroma, frame.width, chroma, frame.width, frame.width / 2, 1);
    }
}

void unpack(const Frame& frame) {
    ze::unpackFrame(frame.staging, frame.output, frame.nv21, {frame.width, frame.height});
}

/// Whether the library and libyuv make the same frame.
bool agree(const Frame& frame) {
    const size_t size = frame.pixels() * 3 / 2;
    const AlignedBlock expected = makeBlock(size);
    unpackWithLibyuv(frame);
    std::memcpy(expected.get(), frame.output.planes[0], size);
    std::memset(frame.output.planes[0], 0x66, size);
    unpack(frame);
    return std::memcmp(expected.get(), frame.output.planes[0], size) == 0;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<AlignedBlock> blocks;
    for (const auto& [width, height] : {std::pair{1280, 720}, std::pair{3840, 2160}}) {
        Frame frame{width, height};
        uint8_t* const staging = blocks.emplace_back(makeBlock(frame.pixels() * 2)).get();
        uint8_t* const luma = blocks.emplace_back(makeBlock(frame.pixels() * 7 / 4)).get();
        frame.staging = {{staging}, {width * 2}};
        frame.output = {{luma, luma + frame.pixels()}, {width, width}};
        for (bool nv21 : {false, true}) {
            frame.nv21 = nv21;
            if (!agree(frame)) {
                std::fputs("unpackFrame and libyuv make different frames\n", stderr);
                return 1;
            }
            const std::string name = nv21 ? "NV21/" : "NV12/";
            addComparison(name + std::to_string(width) + "x" + std::to_string(height),
                          [frame] { unpack(frame); },
                          {{"memcpy", [frame] { copyEqualBytes(frame); }},
                           {"libyuv", [frame] { unpackWithLibyuv(frame); }}});
        }
    }
    return runComparisons(argc, argv);
}
