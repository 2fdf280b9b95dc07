// ASCII between bytes and units, sixteen at a step.

#pragma once

#include "core/tools/ze_char.h"

#include <bit>
#include <cstdint>

#if defined(__ARM_NEON)
#include <arm_neon.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ze {

constexpr int kAsciiStep = 16;

/// One or more bits for each of sixteen lanes that is not ASCII, the first lane lowest; 0 when all are. A
/// branch on 0 and a step of constant width keep long runs apart from the time that `asciiBefore` takes.
using NonAscii = uint64_t;

#if defined(__ARM_NEON)

constexpr int kBitsPerLane = 4;

inline NonAscii nonAscii(uint8x16_t text) {
    const uint16x8_t lanes = vreinterpretq_u16_u8(vcgeq_u8(text, vdupq_n_u8(0x80)));
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(lanes, 4)), 0);
}

/// Writes sixteen units for as many bytes; those from the first that is not ASCII on mean nothing.
inline NonAscii widenAsciiStep(const char* bytes, CZeChar* units) {
    const uint8x16_t text = vld1q_u8(reinterpret_cast<const uint8_t*>(bytes));
    auto* const out = reinterpret_cast<uint16_t*>(units);
    vst1q_u16(out, vmovl_u8(vget_low_u8(text)));
    vst1q_u16(out + 8, vmovl_high_u8(text));
    return nonAscii(text);
}

/// The other way.
inline NonAscii narrowAsciiStep(const CZeChar* units, char* bytes) {
    const auto* const in = reinterpret_cast<const uint16_t*>(units);
    const uint8x16_t text = vqmovn_high_u16(vqmovn_u16(vld1q_u16(in)), vld1q_u16(in + 8)); // saturates at 255
    vst1q_u8(reinterpret_cast<uint8_t*>(bytes), text);
    return nonAscii(text);
}

#elif defined(__SSE2__)

constexpr int kBitsPerLane = 1;

/// Writes sixteen units for as many bytes; those from the first that is not ASCII on mean nothing.
inline NonAscii widenAsciiStep(const char* bytes, CZeChar* units) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    auto* const out = reinterpret_cast<__m128i*>(units);
    _mm_storeu_si128(out, _mm_unpacklo_epi8(text, _mm_setzero_si128()));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi8(text, _mm_setzero_si128()));
    return NonAscii(unsigned(_mm_movemask_epi8(text)));
}

/// The other way.
inline NonAscii narrowAsciiStep(const CZeChar* units, char* bytes) {
    const auto* const in = reinterpret_cast<const __m128i*>(units);
    // Units above 0x7F become negative bytes: up to 0x7FFF by the mask, the others are negative and saturate.
    const auto saturated = [](__m128i eight) {
        return _mm_or_si128(eight, _mm_cmpgt_epi16(eight, _mm_set1_epi16(0x7F)));
    };
    const __m128i text = _mm_packs_epi16(saturated(_mm_loadu_si128(in)), saturated(_mm_loadu_si128(in + 1)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), text);
    return NonAscii(unsigned(_mm_movemask_epi8(text)));
}

#else

constexpr int kBitsPerLane = 1;

/// Writes sixteen units for as many bytes; those from the first that is not ASCII on mean nothing.
inline NonAscii widenAsciiStep(const char* bytes, CZeChar* units) {
    NonAscii mask = 0;
    for (int i = 0; i < kAsciiStep; ++i) {
        units[i] = CZeChar(bytes[i]);
        mask |= NonAscii{units[i].unicode() >= 0x80} << i;
    }
    return mask;
}

/// The other way.
inline NonAscii narrowAsciiStep(const CZeChar* units, char* bytes) {
    NonAscii mask = 0;
    for (int i = 0; i < kAsciiStep; ++i) {
        mask |= NonAscii{units[i].unicode() >= 0x80} << i;
        bytes[i] = units[i].toLatin1();
    }
    return mask;
}

#endif

/// How many lanes come before the first that is not ASCII; `mask` is not 0.
inline int asciiBefore(NonAscii mask) {
    return std::countr_zero(mask) / kBitsPerLane;
}

/// A step pays only where a run is likely to go on: after so many ASCII characters one by one.
constexpr int kRunBeforeStep = 16;

} // namespace ze
