// Camera frames in Android's flexible format as the planes that the library takes.

#pragma once

#include <cstddef>
#include <cstdint>

/// A plane of an android.media.Image in YUV_420_888: its direct buffer with its strides in bytes.
struct CameraPlane {
    const uint8_t* bytes;
    ptrdiff_t size;
    ptrdiff_t rowStride;
    ptrdiff_t pixelStride;
};

/// Bytes of an NV12 frame without padding.
constexpr size_t nv12Size(int width, int height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height) +
           static_cast<size_t>((width + 1) / 2 * 2) * static_cast<size_t>((height + 1) / 2);
}

/// Writes Y, U and V as an NV12 frame of `nv12Size` bytes without padding. Chroma planes may stand apart
/// (pixel stride 1) or within each other (2), in either order. False, and nothing written, when a plane has
/// fewer bytes than its strides say.
bool packNv12(const CameraPlane& y, const CameraPlane& u, const CameraPlane& v, int width, int height,
              uint8_t* nv12);
