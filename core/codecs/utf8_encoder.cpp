#include "core/codecs/utf8_encoder.h"

#include "core/codecs/ascii_step.h"

#include <bit>
#include <cstring>

namespace {

bool isPair(const CZeChar* unit, const CZeChar* end) {
    return unit->isHighSurrogate() && end - unit > 1 && unit[1].isLowSurrogate();
}

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

int ze::encodeAscii(const CZeChar* units, int count, char* bytes) {
    int done = 0;
    for (; count - done >= kAsciiStep; done += kAsciiStep) {
        if (const NonAscii mask = narrowAsciiStep(units + done, bytes + done))
            return done + asciiBefore(mask);
    }
    for (; done < count && units[done].unicode() < 0x80; ++done)
        bytes[done] = static_cast<char>(units[done].unicode());
    return done;
}

char* ze::encodeUtf8(const CZeChar* units, int count, char* bytes) {
    const CZeChar* const end = units + count;
    int run = 0;
    while (units != end) {
        const char32_t unit = units->unicode();
        if (unit < 0x80) {
            *bytes++ = static_cast<char>(unit);
            ++units;
            if (++run <= kRunBeforeStep)
                continue;
            for (; end - units >= kAsciiStep; units += kAsciiStep, bytes += kAsciiStep) {
                if (const NonAscii mask = narrowAsciiStep(units, bytes)) {
                    units += asciiBefore(mask);
                    bytes += asciiBefore(mask);
                    run = 0;
                    break;
                }
            }
            continue;
        }
        run = 0;
        if (unit < 0x800) {
            bytes = put<2>((0xC0 | unit >> 6) | tail(unit) << 8, bytes);
        } else if (unit < 0xD800 || unit > 0xDFFF) {
            // Such units come in runs, in which nothing else needs asking. Two-byte ones do so less: there
            // the same loop cost Latin text a fifth and gave Cyrillic nothing.
            char32_t next = unit;
            for (;;) {
                *bytes++ = static_cast<char>(0xE0 | next >> 12);
                *bytes++ = static_cast<char>(tail(next >> 6));
                *bytes++ = static_cast<char>(tail(next));
                if (units + 1 == end)
                    break;
                next = units[1].unicode();
                if (next < 0x800 || (next >= 0xD800 && next <= 0xDFFF))
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
