#include "core/codecs/ascii_run.h"

#include "core/tools/widen.h"

#include <bit>
#include <cstdint>

namespace {

constexpr int kStep = 16;
/// Long runs go by blocks: all of a block is checked at once and then written without further checks.
constexpr int kBlock = 64;

/// kBitsPerLane bits for each of sixteen lanes, the first lane lowest: set where it is not ASCII.
using NonAscii = uint64_t;

#if defined(__ARM_NEON)

constexpr int kBitsPerLane = 4;

NonAscii nonAscii(uint8x16_t text) {
    const uint16x8_t lanes = vreinterpretq_u16_u8(vcgeq_u8(text, vdupq_n_u8(0x80)));
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(lanes, 4)), 0);
}

/// Writes sixteen units for as many bytes. Only those before the first that is not ASCII are valid.
NonAscii widenStep(const char* bytes, CZeChar* units) {
    const uint8x16_t text = vld1q_u8(reinterpret_cast<const uint8_t*>(bytes));
    ze::widen(text, units);
    return nonAscii(text);
}

/// Writes a block if all of it is ASCII.
bool widenBlock(const char* bytes, CZeChar* units) {
    const uint8x16x4_t text = vld1q_u8_x4(reinterpret_cast<const uint8_t*>(bytes));
    const uint8x16_t all = vorrq_u8(vorrq_u8(text.val[0], text.val[1]), vorrq_u8(text.val[2], text.val[3]));
    if (vmaxvq_u8(all) >= 0x80)
        return false;
    for (int i = 0; i < 4; ++i)
        ze::widen(text.val[i], units + i * kStep);
    return true;
}

NonAscii narrowStep(const CZeChar* units, char* bytes) {
    const auto* const in = reinterpret_cast<const uint16_t*>(units);
    const uint8x16_t text = vqmovn_high_u16(vqmovn_u16(vld1q_u16(in)), vld1q_u16(in + 8)); // saturates at 255
    vst1q_u8(reinterpret_cast<uint8_t*>(bytes), text);
    return nonAscii(text);
}

bool narrowBlock(const CZeChar* units, char* bytes) {
    const auto* const in = reinterpret_cast<const uint16_t*>(units);
    uint16x8_t text[8];
    uint16x8_t all = vdupq_n_u16(0);
    for (int i = 0; i < 8; ++i) {
        text[i] = vld1q_u16(in + 8 * i);
        all = vorrq_u16(all, text[i]);
    }
    if (vmaxvq_u16(all) >= 0x80)
        return false;
    auto* const out = reinterpret_cast<uint8_t*>(bytes);
    for (int i = 0; i < 4; ++i)
        vst1q_u8(out + i * kStep, vmovn_high_u16(vmovn_u16(text[2 * i]), text[2 * i + 1]));
    return true;
}

#elif defined(__SSE2__)

constexpr int kBitsPerLane = 1;

/// Writes sixteen units for as many bytes. Only those before the first that is not ASCII are valid.
NonAscii widenStep(const char* bytes, CZeChar* units) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    ze::widen(text, units);
    return static_cast<NonAscii>(static_cast<unsigned>(_mm_movemask_epi8(text)));
}

/// Writes a block if all of it is ASCII.
bool widenBlock(const char* bytes, CZeChar* units) {
    const auto* const in = reinterpret_cast<const __m128i*>(bytes);
    const __m128i text[4] = {_mm_loadu_si128(in), _mm_loadu_si128(in + 1), _mm_loadu_si128(in + 2),
                             _mm_loadu_si128(in + 3)};
    const __m128i all = _mm_or_si128(_mm_or_si128(text[0], text[1]), _mm_or_si128(text[2], text[3]));
    if (_mm_movemask_epi8(all) != 0)
        return false;
    for (int i = 0; i < 4; ++i)
        ze::widen(text[i], units + i * kStep);
    return true;
}

NonAscii narrowStep(const CZeChar* units, char* bytes) {
    const auto* const in = reinterpret_cast<const __m128i*>(units);
    // Units above 0x7F become negative bytes: the mask does this up to 0x7FFF, and larger ones saturate.
    const auto saturated = [](__m128i eight) {
        return _mm_or_si128(eight, _mm_cmpgt_epi16(eight, _mm_set1_epi16(0x7F)));
    };
    const __m128i text = _mm_packs_epi16(saturated(_mm_loadu_si128(in)), saturated(_mm_loadu_si128(in + 1)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), text);
    return static_cast<NonAscii>(static_cast<unsigned>(_mm_movemask_epi8(text)));
}

bool narrowBlock(const CZeChar* units, char* bytes) {
    const auto* const in = reinterpret_cast<const __m128i*>(units);
    __m128i text[8];
    __m128i all = _mm_setzero_si128();
    for (int i = 0; i < 8; ++i) {
        text[i] = _mm_loadu_si128(in + i);
        all = _mm_or_si128(all, text[i]);
    }
    const __m128i high = _mm_andnot_si128(_mm_set1_epi16(0x7F), all);
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(high, _mm_setzero_si128())) != 0xFFFF)
        return false;
    auto* const out = reinterpret_cast<__m128i*>(bytes);
    for (int i = 0; i < 4; ++i)
        _mm_storeu_si128(out + i, _mm_packus_epi16(text[2 * i], text[2 * i + 1]));
    return true;
}

#else

constexpr int kBitsPerLane = 1;

/// Writes sixteen units for as many bytes. Only those before the first that is not ASCII are valid.
NonAscii widenStep(const char* bytes, CZeChar* units) {
    NonAscii mask = 0;
    for (int i = 0; i < kStep; ++i) {
        units[i] = CZeChar(bytes[i]);
        mask |= static_cast<NonAscii>(units[i].unicode() >= 0x80) << i;
    }
    return mask;
}

NonAscii narrowStep(const CZeChar* units, char* bytes) {
    NonAscii mask = 0;
    for (int i = 0; i < kStep; ++i) {
        mask |= static_cast<NonAscii>(units[i].unicode() >= 0x80) << i;
        bytes[i] = units[i].toLatin1();
    }
    return mask;
}

constexpr bool widenBlock(const char*, CZeChar*) {
    return false;
}

constexpr bool narrowBlock(const CZeChar*, char*) {
    return false;
}

#endif

constexpr bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

constexpr bool isAscii(CZeChar unit) {
    return unit.unicode() < 0x80;
}

} // namespace

int ze::widenAsciiRun(const char* bytes, int count, CZeChar* units) {
    int done = 0;
    while (count - done >= kBlock && widenBlock(bytes + done, units + done))
        done += kBlock;
    for (; count - done >= kStep; done += kStep)
        if (const NonAscii mask = widenStep(bytes + done, units + done))
            return done + std::countr_zero(mask) / kBitsPerLane;
    for (; done < count && isAscii(bytes[done]); ++done)
        units[done] = CZeChar(bytes[done]);
    return done;
}

int ze::narrowAsciiRun(const CZeChar* units, int count, char* bytes) {
    int done = 0;
    while (count - done >= kBlock && narrowBlock(units + done, bytes + done))
        done += kBlock;
    for (; count - done >= kStep; done += kStep)
        if (const NonAscii mask = narrowStep(units + done, bytes + done))
            return done + std::countr_zero(mask) / kBitsPerLane;
    for (; done < count && isAscii(units[done]); ++done)
        bytes[done] = units[done].toLatin1();
    return done;
}
