#include "core/tools/latin1.h"

#include "core/tools/widen.h"

namespace {

static_assert(sizeof(CZeChar) == 2);

constexpr int kStep = 16;

#if defined(__ARM_NEON)

/// Eight units with '?' for those above 0xFF.
uint8x8_t narrowed(const CZeChar* units) {
    const uint16x8_t text = vld1q_u16(reinterpret_cast<const uint16_t*>(units));
    const uint16x8_t tooHigh = vcgtq_u16(text, vdupq_n_u16(0xFF));
    return vmovn_u16(vbslq_u16(tooHigh, vdupq_n_u16('?'), text));
}

void narrowStep(const CZeChar* units, char* latin1) {
    const uint8x16_t text = vcombine_u8(narrowed(units), narrowed(units + 8));
    vst1q_u8(reinterpret_cast<uint8_t*>(latin1), text);
}

void widenStep(const char* latin1, CZeChar* units) {
    ze::widen(vld1q_u8(reinterpret_cast<const uint8_t*>(latin1)), units);
}

#elif defined(__SSE2__)

/// Eight units with '?' for those above 0xFF.
__m128i withSubstitutes(const CZeChar* units) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    // SSE2 has no unsigned comparison, but a saturating subtraction gives 0 for units up to 0xFF.
    const __m128i fits = _mm_cmpeq_epi16(_mm_subs_epu16(text, _mm_set1_epi16(0xFF)), _mm_setzero_si128());
    return _mm_or_si128(_mm_and_si128(fits, text), _mm_andnot_si128(fits, _mm_set1_epi16('?')));
}

void narrowStep(const CZeChar* units, char* latin1) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(latin1),
                     _mm_packus_epi16(withSubstitutes(units), withSubstitutes(units + 8)));
}

void widenStep(const char* latin1, CZeChar* units) {
    ze::widen(_mm_loadu_si128(reinterpret_cast<const __m128i*>(latin1)), units);
}

#else

void narrowStep(const CZeChar* units, char* latin1) {
    for (int i = 0; i < kStep; ++i)
        latin1[i] = units[i].toLatin1();
}

void widenStep(const char* latin1, CZeChar* units) {
    for (int i = 0; i < kStep; ++i)
        units[i] = CZeChar(latin1[i]);
}

#endif

} // namespace

void ze::narrowToLatin1(const CZeChar* units, int count, char* latin1) {
    int done = 0;
    for (; count - done >= kStep; done += kStep)
        narrowStep(units + done, latin1 + done);
    for (; done < count; ++done)
        latin1[done] = units[done].toLatin1();
}

void ze::widenLatin1(const char* latin1, int count, CZeChar* units) {
    int done = 0;
    for (; count - done >= kStep; done += kStep)
        widenStep(latin1 + done, units + done);
    for (; done < count; ++done)
        units[done] = CZeChar(latin1[done]);
}
