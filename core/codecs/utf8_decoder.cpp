#include "core/codecs/utf8_decoder.h"

#include "core/codecs/ascii_run.h"
#include "core/tools/code_point.h"

#include <utility>

namespace {

constexpr int kLongest = 4; // bytes of a sequence

constexpr bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

constexpr bool isTail(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

constexpr char32_t tailBits(char byte) {
    return static_cast<unsigned char>(byte) & 0x3F;
}

struct Progress {
    const char* bytes;
    CZeChar* units;
};

/// Decodes well-formed sequences. Stops at malformed ones, before the last bytes, which may be too few for a
/// sequence, and in a run of ASCII that is worth a call of `widenAsciiRun`. (The call itself, made in here,
/// cost mixed text a third of its speed.)
[[gnu::noinline]] Progress decodeMixed(const char* bytes, const char* end, CZeChar* units) {
    const char* const last = end - kLongest;
    for (int run = 0; bytes <= last;) {
        const char32_t lead = static_cast<unsigned char>(bytes[0]);
        if (lead < 0x80) {
            *units++ = CZeChar(static_cast<char16_t>(lead));
            ++bytes;
            if (++run == ze::kRunBeforeCall) [[unlikely]]
                return {bytes, units};
            continue;
        }
        run = 0;
        if (lead < 0xE0) {
            if (lead < 0xC2 || !isTail(bytes[1]))
                break;
            *units++ = CZeChar(static_cast<char16_t>((lead & 0x1F) << 6 | tailBits(bytes[1])));
            bytes += 2;
        } else if (lead < 0xF0) {
            const char32_t unit = (lead & 0xF) << 12 | tailBits(bytes[1]) << 6 | tailBits(bytes[2]);
            if (!isTail(bytes[1]) || !isTail(bytes[2]) || unit < 0x800 || (unit >= 0xD800 && unit <= 0xDFFF))
                break;
            *units++ = CZeChar(static_cast<char16_t>(unit));
            bytes += 3;
        } else {
            const char32_t codePoint =
                (lead & 0xF) << 18 | tailBits(bytes[1]) << 12 | tailBits(bytes[2]) << 6 | tailBits(bytes[3]);
            if (!isTail(bytes[1]) || !isTail(bytes[2]) || !isTail(bytes[3]) || codePoint < 0x10000 ||
                codePoint > 0x10FFFF)
                break;
            units = ze::putCodePoint(codePoint, units);
            bytes += 4;
        }
    }
    return {bytes, units};
}

/// Decodes well-formed sequences. Stops at malformed ones and before the last bytes.
void decodeWellFormed(const char*& bytes, const char* end, CZeChar*& units) {
    while (end - bytes >= kLongest) {
        if (isAscii(*bytes)) {
            // There is room, because no byte gives more than one unit.
            const int count = ze::widenAsciiRun(bytes, static_cast<int>(end - bytes), units);
            bytes += count;
            units += count;
            if (end - bytes < kLongest)
                return;
        }
        const Progress progress = decodeMixed(bytes, end, units);
        bytes = progress.bytes;
        units = progress.units;
        if (bytes != end && !isAscii(*bytes))
            return;
    }
}

} // namespace

int ze::Utf8Decoder::decode(const char* bytes, int size, CZeChar* units) {
    CZeChar* const start = units;
    const char* const end = bytes + size;
    while (bytes != end) {
        if (m_missing == 0 && !m_atStart) {
            decodeWellFormed(bytes, end, units);
            if (bytes == end)
                break;
        }
        // The rest goes byte by byte: it is malformed or cut off, or may be a byte-order mark.
        const auto byte = static_cast<unsigned char>(*bytes);
        if (m_missing == 0) {
            units = byte < 0x80 ? put(byte, units) : startSequence(byte, units);
            ++bytes;
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
    return static_cast<int>(units - start);
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
    return putCodePoint(codePoint, units);
}
