#include "core/codecs/utf8_decoder.h"

#include "core/tools/latin1.h"

#include <cstring>
#include <utility>

namespace {

/// How many bytes from `bytes` on are ASCII, counted in steps of eight and then singly.
int countAscii(const char* bytes, const char* end) {
    const char* const start = bytes;
    constexpr uint64_t kHighBits = 0x8080808080808080U;
    for (uint64_t step; end - bytes >= 8; bytes += 8) {
        std::memcpy(&step, bytes, sizeof step);
        if (step & kHighBits)
            break;
    }
    while (bytes != end && static_cast<unsigned char>(*bytes) < 0x80)
        ++bytes;
    return int(bytes - start);
}

} // namespace

int ze::Utf8Decoder::decode(const char* bytes, int size, CZeChar* units) {
    CZeChar* const start = units;
    const char* const end = bytes + size;
    while (bytes != end) {
        const auto byte = static_cast<unsigned char>(*bytes);
        if (m_missing == 0) {
            if (const int ascii = countAscii(bytes, end)) {
                widenLatin1(bytes, ascii, units);
                bytes += ascii;
                units += ascii;
                m_atStart = false;
            } else {
                units = startSequence(byte, units);
                ++bytes;
            }
        } else if (byte < m_lowest || byte > m_highest) {
            m_missing = 0; // the byte starts anew
            units = put(CZeChar::Replacement, units);
        } else {
            m_lowest = 0x80;
            m_highest = 0xBF;
            m_codePoint = m_codePoint << 6 | (byte & 0x3F);
            if (--m_missing == 0)
                units = put(m_codePoint, units);
            ++bytes;
        }
    }
    return int(units - start);
}

int ze::Utf8Decoder::finish(CZeChar* units) {
    const bool isCutOff = m_missing != 0;
    if (isCutOff)
        *units = CZeChar(CZeChar::Replacement);
    *this = Utf8Decoder();
    return isCutOff ? 1 : 0;
}

/// Takes the first byte of a sequence of two or more. The range of the second byte is what excludes overlong
/// forms, surrogates and values above U+10FFFF (Unicode Standard, table of well-formed byte sequences).
CZeChar* ze::Utf8Decoder::startSequence(unsigned char lead, CZeChar* units) {
    if (lead < 0xC2 || lead > 0xF4)
        return put(CZeChar::Replacement, units);
    m_missing = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    m_codePoint = lead & (0x3FU >> m_missing);
    m_lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    m_highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return units;
}

CZeChar* ze::Utf8Decoder::put(char32_t codePoint, CZeChar* units) {
    constexpr char32_t kByteOrderMark = 0xFEFF;
    if (std::exchange(m_atStart, false) && codePoint == kByteOrderMark)
        return units;
    if (codePoint < 0x10000) {
        *units++ = CZeChar(char16_t(codePoint));
        return units;
    }
    *units++ = CZeChar::highSurrogate(codePoint);
    *units++ = CZeChar::lowSurrogate(codePoint);
    return units;
}
