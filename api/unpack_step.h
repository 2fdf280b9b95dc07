// The vector part of unpacking: 32 pixels a step, with the 16-byte operations every x86-64 and arm64 has.
//
// A step writes 16 bytes of luma, 16 of chroma, and both once more. (Measured alternatives go here.)

#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__ARM_NEON)
#include <arm_neon.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ze {

/// What becomes of the chroma bytes of a row, and in which order they are written.
enum class Chroma { None, Uv, Vu };

#if defined(__ARM_NEON)

/// Unpacks 16 pixels of a row, from pixel `x` on.
template <Chroma order>
void unpack16(const uint8_t* staging, uint8_t* luma, uint8_t* chroma, size_t x) {
    const uint8x16x2_t bytes = vld2q_u8(staging + 2 * x);
    vst1q_u8(luma + x, bytes.val[0]);
    if constexpr (order != Chroma::None)
        vst1q_u8(chroma + x, order == Chroma::Uv ? bytes.val[1] : vrev16q_u8(bytes.val[1]));
}

#elif defined(__SSE2__)

inline __m128i load16(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

inline void store16(uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

/// Unpacks 16 pixels of a row, from pixel `x` on.
template <Chroma order>
void unpack16(const uint8_t* staging, uint8_t* luma, uint8_t* chroma, size_t x) {
    const __m128i low = load16(staging + 2 * x);
    const __m128i high = load16(staging + 2 * x + 16);

    const __m128i lumaMask = _mm_set1_epi16(0xff);
    store16(luma + x, _mm_packus_epi16(_mm_and_si128(low, lumaMask), _mm_and_si128(high, lumaMask)));

    if constexpr (order != Chroma::None) {
        __m128i pairs = _mm_packus_epi16(_mm_srli_epi16(low, 8), _mm_srli_epi16(high, 8));
        if constexpr (order == Chroma::Vu)
            pairs = _mm_or_si128(_mm_slli_epi16(pairs, 8), _mm_srli_epi16(pairs, 8));
        store16(chroma + x, pairs);
    }
}

#endif

/// Unpacks the first pixels of a row, a multiple of 32, and returns how many; the rest, fewer than 32, is the
/// caller's. `chroma` is not touched for `Chroma::None`.
template <Chroma order>
size_t unpackSteps(const uint8_t* staging, uint8_t* luma, uint8_t* chroma, size_t width) {
    size_t x = 0;
#if defined(__ARM_NEON) || defined(__SSE2__)
    for (; x + 32 <= width; x += 32) {
        unpack16<order>(staging, luma, chroma, x);
        unpack16<order>(staging, luma, chroma, x + 16);
    }
#endif
    return x;
}

} // namespace ze
