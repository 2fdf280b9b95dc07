// The one UTF-8 decoder of the core library.

#pragma once

#include "core/tools/ze_char.h"

#include <cstdint>

namespace ze {

/// Decodes UTF-8 fed in pieces. However the input is split, the units are those of the whole input.
///
/// A byte-order mark at the very start is dropped. Malformed input becomes U+FFFD, one for each maximal
/// subpart of a well-formed sequence or else for each byte, as the Unicode Standard recommends; overlong
/// forms, surrogates and values above U+10FFFF are malformed.
class Utf8Decoder {
public:
    /// Decodes `size` bytes into `units`, which has room for `size` + 1, and returns how many it wrote. A
    /// sequence that the piece cuts off is kept for the next one.
    int decode(const char* bytes, int size, CZeChar* units);

    /// Ends the input: writes U+FFFD for a sequence that is still cut off. Returns how many units, 0 or 1, it
    /// wrote. The decoder is then as new.
    int finish(CZeChar* units);

private:
    CZeChar* startSequence(unsigned char lead, CZeChar* units);
    CZeChar* put(char32_t codePoint, CZeChar* units);

    char32_t m_codePoint = 0;      // the bits of the sequence so far
    int m_missing = 0;             // bytes that it still lacks; 0 between sequences
    unsigned char m_lowest = 0x80; // the range of its next byte
    unsigned char m_highest = 0xBF;
    bool m_atStart = true; // nothing was decoded yet, so a byte-order mark may come
};

} // namespace ze
