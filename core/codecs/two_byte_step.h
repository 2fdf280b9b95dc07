// UTF-8 for units that take at most two bytes each, eight at a step and without a branch for each.

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

constexpr int kTwoByteStep = 8;

/// Eight units in the space of four: each combined by OR with the fourth one after it.
inline uint64_t combinedBits(const CZeChar* units) {
    uint64_t words[2];
    std::memcpy(words, units, sizeof(words));
    return words[0] | words[1];
}

/// Whether eight units are ASCII, one byte each.
inline bool areAscii(const CZeChar* units) {
    return (combinedBits(units) & 0xFF80FF80FF80FF80) == 0;
}

/// Whether eight units are below 0x800, at most two bytes each.
inline bool areTwoByte(const CZeChar* units) {
    return (combinedBits(units) & 0xF800F800F800F800) == 0;
}

/// Eight units in UTF-8.
struct TwoByteCodes {
    uint64_t
        codes[2]; ///< Two bytes for each, the first unit's lowest. The second byte does not count for ASCII.
    uint64_t lengths; ///< One byte for each: 1 or 2.
};

#if defined(__ARM_NEON)

inline TwoByteCodes encodeTwoByte(const CZeChar* units) {
    const uint16x8_t text = vld1q_u16(reinterpret_cast<const uint16_t*>(units));
    const uint16x8_t takesTwo = vcgtq_u16(text, vdupq_n_u16(0x7F));
    const uint16x8_t tail = vshlq_n_u16(vandq_u16(text, vdupq_n_u16(0x3F)), 8);
    const uint16x8_t twoBytes = vorrq_u16(vorrq_u16(vshrq_n_u16(text, 6), tail), vdupq_n_u16(0x80C0));
    const uint64x2_t codes = vreinterpretq_u64_u16(vbslq_u16(takesTwo, twoBytes, text));
    const uint64x1_t lengths = vreinterpret_u64_u8(vsub_u8(vdup_n_u8(1), vmovn_u16(takesTwo)));
    return {{vgetq_lane_u64(codes, 0), vgetq_lane_u64(codes, 1)}, vget_lane_u64(lengths, 0)};
}

#elif defined(__SSE2__)

inline TwoByteCodes encodeTwoByte(const CZeChar* units) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    const __m128i takesTwo = _mm_cmpgt_epi16(text, _mm_set1_epi16(0x7F));
    const __m128i tail = _mm_slli_epi16(_mm_and_si128(text, _mm_set1_epi16(0x3F)), 8);
    const __m128i marks = _mm_set1_epi16(static_cast<int16_t>(0x80C0));
    const __m128i twoBytes = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(text, 6), tail), marks);
    const __m128i codes = _mm_or_si128(_mm_and_si128(takesTwo, twoBytes), _mm_andnot_si128(takesTwo, text));
    const __m128i lengths = _mm_sub_epi8(_mm_set1_epi8(1), _mm_packs_epi16(takesTwo, takesTwo));
    const auto low = [](__m128i words) { return static_cast<uint64_t>(_mm_cvtsi128_si64(words)); };
    return {{low(codes), low(_mm_unpackhi_epi64(codes, codes))}, low(lengths)};
}

#else

inline TwoByteCodes encodeTwoByte(const CZeChar* units) {
    TwoByteCodes result = {};
    for (int i = 0; i < kTwoByteStep; ++i) {
        const uint64_t unit = units[i].unicode();
        const bool takesTwo = unit > 0x7F;
        const uint64_t code = takesTwo ? 0x80C0 | unit >> 6 | (unit & 0x3F) << 8 : unit;
        const uint64_t length = takesTwo ? 2 : 1;
        result.codes[i / 4] |= code << 16 * (i % 4);
        result.lengths |= length << 8 * i;
    }
    return result;
}

#endif

/// Writes eight units below 0x800, and possibly one byte more. Returns the end of the text.
inline char* putTwoByteStep(const CZeChar* units, char* bytes) {
    static_assert(std::endian::native == std::endian::little);
    const TwoByteCodes step = encodeTwoByte(units);
    const uint64_t ends = step.lengths * 0x0101010101010101; // each length plus those before it
    const auto put = [&](int unit, uint64_t place) {
        const auto code = static_cast<uint16_t>(step.codes[unit / 4] >> 16 * (unit % 4));
        std::memcpy(bytes + place, &code, sizeof(code));
    };
    put(0, 0);
    for (int i = 1; i < kTwoByteStep; ++i)
        put(i, ends >> 8 * (i - 1) & 0xFF);
    return bytes + (ends >> 56);
}

} // namespace ze
