// The vector step that turns sixteen bytes into units.

#pragma once

#include "core/tools/ze_char.h"

#if defined(__ARM_NEON)
#include <arm_neon.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ze {

#if defined(__ARM_NEON)

/// Writes each byte of `text` as a unit of the same value.
inline void widen(uint8x16_t text, CZeChar* units) {
    auto* const out = reinterpret_cast<uint16_t*>(units);
    vst1q_u16(out, vmovl_u8(vget_low_u8(text)));
    vst1q_u16(out + 8, vmovl_high_u8(text));
}

#elif defined(__SSE2__)

inline void widen(__m128i text, CZeChar* units) {
    auto* const out = reinterpret_cast<__m128i*>(units);
    _mm_storeu_si128(out, _mm_unpacklo_epi8(text, _mm_setzero_si128()));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi8(text, _mm_setzero_si128()));
}

#endif

} // namespace ze
