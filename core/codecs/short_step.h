// Units that take one or two bytes of UTF-8, eight at a step and without a branch for each.

#pragma once

#include "core/tools/ze_char.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__ARM_NEON)
#include <arm_neon.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ze {

constexpr int kShortStep = 8;

/// The bits that units of more than one byte have, and units of more than two.
constexpr uint64_t kBeyondAscii = 0xFF80FF80FF80FF80;
constexpr uint64_t kBeyondShort = 0xF800F800F800F800;

/// Whether none of eight units has one of `bits`.
inline bool eightWithout(uint64_t bits, const CZeChar* units) {
    uint64_t words[2];
    std::memcpy(words, units, sizeof(words));
    return ((words[0] | words[1]) & bits) == 0;
}

/// What eight units below 0x800 become.
struct ShortUnits {
    uint64_t encoded[2]; ///< Two bytes for each, of which the second may not count; the first unit's lowest.
    uint64_t lengths;    ///< One byte for each.
};

#if defined(__ARM_NEON)

inline ShortUnits encodeShortUnits(const CZeChar* units) {
    const uint16x8_t text = vld1q_u16(reinterpret_cast<const uint16_t*>(units));
    const uint16x8_t isLong = vcgtq_u16(text, vdupq_n_u16(0x7F));
    const uint16x8_t tail = vshlq_n_u16(vandq_u16(text, vdupq_n_u16(0x3F)), 8);
    const uint16x8_t two = vorrq_u16(vorrq_u16(vshrq_n_u16(text, 6), tail), vdupq_n_u16(0x80C0));
    const uint64x2_t encoded = vreinterpretq_u64_u16(vbslq_u16(isLong, two, text));
    const uint64x1_t lengths = vreinterpret_u64_u8(vsub_u8(vdup_n_u8(1), vmovn_u16(isLong)));
    return {{vgetq_lane_u64(encoded, 0), vgetq_lane_u64(encoded, 1)}, vget_lane_u64(lengths, 0)};
}

#elif defined(__SSE2__)

inline ShortUnits encodeShortUnits(const CZeChar* units) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    const __m128i isLong = _mm_cmpgt_epi16(text, _mm_set1_epi16(0x7F));
    const __m128i tail = _mm_slli_epi16(_mm_and_si128(text, _mm_set1_epi16(0x3F)), 8);
    const __m128i marks = _mm_set1_epi16(static_cast<int16_t>(0x80C0));
    const __m128i two = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(text, 6), tail), marks);
    const __m128i encoded = _mm_or_si128(_mm_and_si128(isLong, two), _mm_andnot_si128(isLong, text));
    const __m128i lengths = _mm_sub_epi8(_mm_set1_epi8(1), _mm_packs_epi16(isLong, isLong));
    const auto low = [](__m128i words) { return static_cast<uint64_t>(_mm_cvtsi128_si64(words)); };
    return {{low(encoded), low(_mm_unpackhi_epi64(encoded, encoded))}, low(lengths)};
}

#else

inline ShortUnits encodeShortUnits(const CZeChar* units) {
    ShortUnits result = {};
    for (int i = 0; i < kShortStep; ++i) {
        const unsigned unit = units[i].unicode();
        const bool isLong = unit > 0x7F;
        const uint64_t encoded = isLong ? 0x80C0 | unit >> 6 | (unit & 0x3F) << 8 : unit;
        result.encoded[i / 4] |= encoded << 16 * (i % 4);
        result.lengths |= static_cast<uint64_t>(isLong ? 2U : 1U) << 8 * i;
    }
    return result;
}

#endif

/// Writes eight units below 0x800, and a byte more. Returns the end of what counts.
inline char* putShortUnits(const CZeChar* units, char* bytes) {
    static_assert(std::endian::native == std::endian::little);
    const ShortUnits step = encodeShortUnits(units);
    const uint64_t ends = step.lengths * 0x0101010101010101; // each length with those before it
    const auto put = [&](int unit, uint64_t place) {
        const auto encoded = static_cast<uint16_t>(step.encoded[unit / 4] >> 16 * (unit % 4));
        std::memcpy(bytes + place, &encoded, sizeof(encoded));
    };
    put(0, 0);
    for (int i = 1; i < kShortStep; ++i)
        put(i, ends >> 8 * (i - 1) & 0xFF);
    return bytes + (ends >> 56);
}

} // namespace ze
