#include "core/codecs/utf8_encoder.h"

#include "core/codecs/ascii_run.h"
#include "core/codecs/two_byte_step.h"
#include "core/tools/code_point.h"

#include <bit>
#include <cstring>

namespace {

constexpr uint32_t tail(char32_t bits) {
    return 0x80 | (bits & 0x3F);
}

/// Writes the `Size` low bytes of `word`, the lowest first.
template <int Size>
char* put(uint32_t word, char* bytes) {
    static_assert(std::endian::native == std::endian::little);
    std::memcpy(bytes, &word, Size);
    return bytes + Size;
}

} // namespace

char* ze::encodeUtf8(const CZeChar* units, int count, char* bytes) {
    const CZeChar* const end = units + count;
    while (units != end) {
        char32_t unit = units->unicode();
        if (unit < 0x800) {
            // This looks at two steps of units. One unit more leaves room for the extra byte that a step
            // writes.
            if (end - units > 2 * kTwoByteStep && areTwoByte(units)) {
                if (areAscii(units) && areAscii(units + kTwoByteStep)) {
                    const int ascii = narrowAsciiRun(units, static_cast<int>(end - units), bytes);
                    units += ascii;
                    bytes += ascii;
                } else {
                    bytes = putTwoByteStep(units, bytes);
                    units += kTwoByteStep;
                }
                continue;
            }
            if (unit < 0x80)
                *bytes++ = static_cast<char>(unit);
            else
                bytes = put<2>((0xC0 | unit >> 6) | tail(unit) << 8, bytes);
        } else if (unit < 0xD800 || unit > 0xDFFF) {
            // Such units come in runs, so look for the next one before anything else.
            for (;;) {
                *bytes++ = static_cast<char>(0xE0 | unit >> 12);
                *bytes++ = static_cast<char>(tail(unit >> 6));
                *bytes++ = static_cast<char>(tail(unit));
                if (units + 1 == end)
                    break;
                unit = units[1].unicode();
                if (unit < 0x800 || (unit >= 0xD800 && unit <= 0xDFFF))
                    break;
                ++units;
            }
        } else if (isPair(units, end)) {
            const char32_t codePoint = CZeChar::codePoint(units[0], units[1]);
            bytes = put<4>((0xF0 | codePoint >> 18) | tail(codePoint >> 12) << 8 |
                               tail(codePoint >> 6) << 16 | tail(codePoint) << 24,
                           bytes);
            ++units;
        } else {
            *bytes++ = '?';
        }
        ++units;
    }
    return bytes;
}

long long ze::utf8Length(const CZeChar* units, int count) {
    const CZeChar* const end = units + count;
    long long length = 0;
    for (; units != end; ++units) {
        const char16_t unit = units->unicode();
        if (isPair(units, end)) {
            length += 4;
            ++units;
        } else if (unit < 0x80 || (unit >= 0xD800 && unit <= 0xDFFF)) {
            length += 1;
        } else {
            length += unit < 0x800 ? 2 : 3;
        }
    }
    return length;
}
