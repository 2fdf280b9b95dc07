// Frames in host memory for the tests of the copying and unpacking code.

#pragma once

#include "convert/ze_image.h"

#include <sys/mman.h>

#include <cstddef>
#include <new>
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
    return image.planes[plane][ptrdiff_t{y} * image.pitches[plane] + x];
}

/// Sets every byte of the picture to `value(plane, x, y)`, and none between the rows.
template <class Value>
void fillPicture(const ZecImage& image, int width, int height, Value value) {
    for (int plane = 0; plane < 2; ++plane)
        for (int y = 0; y < rowCount(plane, height); ++y)
            for (int x = 0; x < rowBytes(plane, width); ++x)
                byteAt(image, plane, x, y) = uint8_t(value(plane, x, y));
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
            const int rounded =
                (rowBytes(plane, width) + layout.roundTo - 1) / layout.roundTo * layout.roundTo;
            const int pitch = rounded + layout.padding;
            const int lastRow = (rowCount(plane, height) - 1) * pitch;
            planes[plane].assign(size_t(lastRow + rowBytes(plane, width)), 0x66);
            image.planes[plane] = planes[plane].data() + (layout.bottomUp ? lastRow : 0);
            image.pitches[plane] = layout.bottomUp ? -pitch : pitch;
        }
    }
    TestFrame(const TestFrame&) = delete;

    std::vector<uint8_t> planes[2];
    ZecImage image{};
};

/// A frame of 2 × 3 pixels whose rows lie as far apart as a pitch can tell. Untouched pages take no memory.
struct FarFrame {
    FarFrame() {
        void* block =
            mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (block == MAP_FAILED)
            throw std::bad_alloc();
        auto* bytes = static_cast<uint8_t*>(block);
        image = {{bytes, bytes + 64, nullptr}, {INT32_MAX, INT32_MAX, 0}};
    }
    ~FarFrame() { munmap(image.planes[0], kSize); }
    FarFrame(const FarFrame&) = delete;

    static constexpr size_t kSize = 2 * size_t{INT32_MAX} + 128;
    ZecImage image;
};
