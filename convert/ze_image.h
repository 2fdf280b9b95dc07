// The frame record that hosts hand to ZecRender.

#pragma once

#include <cstdint>

/// A semi-planar 4:2:0 frame in host memory. The library keeps no pointer to it beyond a call.
///
/// For a frame of `width` × `height` pixels, plane 0 holds luma, `height` rows of `width` bytes; plane 1
/// holds the interleaved chroma pairs (U, V in NV12; V, U in NV21), (`height` + 1) / 2 rows of `width`
/// rounded up to even bytes. Plane 2 is never read.
struct ZecImage {
    uint8_t* planes[3]; ///< First byte of each plane.
    int32_t pitches[3]; ///< Bytes from the start of one row to the start of the next, per plane.
};
