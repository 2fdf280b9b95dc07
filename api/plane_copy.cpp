#include "api/plane_copy.h"

#include "api/plane_geometry.h"

#include <cstddef>
#include <cstring>

namespace ze {
namespace {

void copyPlane(const uint8_t* from, ptrdiff_t fromPitch, uint8_t* to, ptrdiff_t toPitch, size_t rowBytes,
               size_t rows) {
    if (from == to && fromPitch == toPitch)
        return; // a frame that is processed in place
    if (fromPitch == static_cast<ptrdiff_t>(rowBytes) && toPitch == fromPitch) {
        std::memmove(to, from, rowBytes * rows);
        return;
    }
    for (size_t row = 0; row < rows; ++row) {
        const auto step = static_cast<ptrdiff_t>(row);
        std::memmove(to + step * toPitch, from + step * fromPitch, rowBytes);
    }
}

} // namespace

void copyFrame(const ZecImage& input, const ZecImage& output, int pixelFormat, int width, int height) {
    for (int plane = 0; plane < 2; ++plane) {
        const size_t rowBytes = planeRowBytes(pixelFormat, plane, width);
        const size_t rows = planeRows(pixelFormat, plane, height);
        if (rows == 0)
            continue; // an invalid format
        copyPlane(input.planes[plane], input.pitches[plane], output.planes[plane], output.pitches[plane],
                  rowBytes, rows);
    }
}

} // namespace ze
