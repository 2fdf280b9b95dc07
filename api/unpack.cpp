#include "api/unpack.h"

#include "api/unpack_step.h"

namespace ze {
namespace {

/// Unpacks one row. The loop is the rule; the vector steps before it do the same in larger portions.
template <Chroma order>
void unpackRow(const uint8_t* staging, uint8_t* luma, uint8_t* chroma, size_t width) {
    for (size_t x = unpackSteps<order>(staging, luma, chroma, width); x < width; x += 2) {
        const uint8_t* group = staging + 2 * x;
        luma[x] = group[0];
        if (x + 1 < width) // an odd row ends with half a group of luma
            luma[x + 1] = group[2];
        if constexpr (order != Chroma::None) {
            chroma[x] = group[order == Chroma::Uv ? 1 : 3];
            chroma[x + 1] = group[order == Chroma::Uv ? 3 : 1];
        }
    }
}

template <Chroma order>
void unpackRows(const ZecImage& staging, const ZecImage& output, size_t width, ptrdiff_t height) {
    for (ptrdiff_t row = 0; row < height; ++row) {
        const uint8_t* from = staging.planes[0] + row * staging.pitches[0];
        uint8_t* luma = output.planes[0] + row * output.pitches[0];
        if (row % 2 == 0)
            unpackRow<order>(from, luma, output.planes[1] + row / 2 * output.pitches[1], width);
        else
            unpackRow<Chroma::None>(from, luma, nullptr, width);
    }
}

} // namespace

void unpackFrame(const ZecImage& staging, const ZecImage& output, bool isNV21, FrameSize size) {
    const auto unpack = isNV21 ? unpackRows<Chroma::Vu> : unpackRows<Chroma::Uv>;
    unpack(staging, output, static_cast<size_t>(size.width), size.height);
}

} // namespace ze
