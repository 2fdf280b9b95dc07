#include "core/codecs/utf8_encoder.h"

#include "core/codecs/ascii_step.h"

namespace {

bool isPair(const CZeChar* unit, const CZeChar* end) {
    return unit->isHighSurrogate() && end - unit > 1 && unit[1].isLowSurrogate();
}

char tail(char32_t bits) {
    return static_cast<char>(0x80 | (bits & 0x3F));
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
            *bytes++ = static_cast<char>(0xC0 | unit >> 6);
            *bytes++ = tail(unit);
        } else if (unit < 0xD800 || unit > 0xDFFF) {
            *bytes++ = static_cast<char>(0xE0 | unit >> 12);
            *bytes++ = tail(unit >> 6);
            *bytes++ = tail(unit);
        } else if (isPair(units, end)) {
            const char32_t codePoint = CZeChar::codePoint(units[0], units[1]);
            *bytes++ = static_cast<char>(0xF0 | codePoint >> 18);
            *bytes++ = tail(codePoint >> 12);
            *bytes++ = tail(codePoint >> 6);
            *bytes++ = tail(codePoint);
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
