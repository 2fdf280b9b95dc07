// Frames in host memory.

#pragma once

#include "convert/ze_image.h"

#include <cstddef>
#include <vector>

/// Bytes in a row and rows of a plane, 0 luma and 1 chroma.
inline int rowBytes(int plane, int width) {
    return plane ? (width + 1) / 2 * 2 : width;
}
inline int rowCount(int plane, int height) {
    return plane ? (height + 1) / 2 : height;
}

/// Byte `x` of row `y` in a plane of `image`.
inline uint8_t& byteAt(const ZecImage& image, int plane, int x, int y) {
    return image.planes[plane][y * image.pitches[plane] + x];
}

/// Sets every byte of the picture to `value(plane, x, y)`, and none between the rows.
template <class Value>
void fillPicture(const ZecImage& image, int width, int height, Value value) {
    for (int plane = 0; plane < 2; ++plane)
        for (int y = 0; y < rowCount(plane, height); ++y)
            for (int x = 0; x < rowBytes(plane, width); ++x)
                byteAt(image, plane, x, y) = static_cast<uint8_t>(value(plane, x, y));
}

/// How the rows of a frame lie in memory.
struct RowLayout {
    int padding = 0; ///< bytes between two rows; none after the last
    bool bottomUp = false;
    int roundTo = 1; ///< the row size is rounded up to a multiple of this before the padding
};

/// A frame whose planes are heap blocks of the exact size, so that AddressSanitizer sees one byte too many.
/// Every byte, padding too, is 0x66 at first: comparing whole planes finds writes beside the picture.
struct TestFrame {
    TestFrame(int width, int height, RowLayout layout = {}) {
        for (int plane = 0; plane < 2; ++plane) {
            const int bytes = rowBytes(plane, width);
            const int pitch = (bytes + layout.roundTo - 1) / layout.roundTo * layout.roundTo + layout.padding;
            const int lastRow = (rowCount(plane, height) - 1) * pitch;
            planes[plane].assign(static_cast<size_t>(lastRow + bytes), 0x66);
            image.planes[plane] = planes[plane].data() + (layout.bottomUp ? lastRow : 0);
            image.pitches[plane] = layout.bottomUp ? -pitch : pitch;
        }
    }
    TestFrame(const TestFrame&) = delete;

    bool operator==(const TestFrame& other) const {
        return planes[0] == other.planes[0] && planes[1] == other.planes[1];
    }

    std::vector<uint8_t> planes[2];
    ZecImage image{};
};
