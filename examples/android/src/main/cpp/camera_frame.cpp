#include "camera_frame.h"

#include <cstring>

namespace {

bool holds(const CameraPlane& plane, int width, int height) {
    const ptrdiff_t needed = plane.rowStride * (height - 1) + plane.pixelStride * (width - 1) + 1;
    return plane.bytes && plane.rowStride > 0 && plane.pixelStride > 0 && plane.size >= needed;
}

const uint8_t* row(const CameraPlane& plane, int index) {
    return plane.bytes + plane.rowStride * index;
}

} // namespace

bool packNv12(const CameraPlane& y, const CameraPlane& u, const CameraPlane& v, int width, int height,
              uint8_t* nv12) {
    const int pairs = (width + 1) / 2, chromaRows = (height + 1) / 2;
    if (width < 1 || height < 1 || y.pixelStride != 1 || !holds(y, width, height) ||
        !holds(u, pairs, chromaRows) || !holds(v, pairs, chromaRows))
        return false;
    for (int i = 0; i < height; ++i, nv12 += width)
        std::memcpy(nv12, row(y, i), static_cast<size_t>(width));
    const bool isNv12 =
        v.bytes == u.bytes + 1 && u.pixelStride == 2 && v.pixelStride == 2 && u.rowStride == v.rowStride;
    for (int i = 0; i < chromaRows; ++i, nv12 += 2 * pairs) {
        if (isNv12) {
            std::memcpy(nv12, row(u, i), 2 * static_cast<size_t>(pairs));
            continue;
        }
        for (int pair = 0; pair < pairs; ++pair) {
            nv12[2 * pair] = row(u, i)[u.pixelStride * pair];
            nv12[2 * pair + 1] = row(v, i)[v.pixelStride * pair];
        }
    }
    return true;
}
