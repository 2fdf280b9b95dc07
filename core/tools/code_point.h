// Code points in UTF-16 text.

#pragma once

#include "core/tools/ze_char.h"

namespace ze {

/// Whether a surrogate pair stands at `unit`, which is before `end`.
inline bool isPair(const CZeChar* unit, const CZeChar* end) {
    return unit->isHighSurrogate() && end - unit > 1 && unit[1].isLowSurrogate();
}

/// Writes `codePoint`, at most U+10FFFF, as one unit or as a surrogate pair. Returns the end of it.
inline CZeChar* putCodePoint(char32_t codePoint, CZeChar* units) {
    if (codePoint < 0x10000) {
        *units++ = CZeChar(static_cast<char16_t>(codePoint));
        return units;
    }
    *units++ = CZeChar::highSurrogate(codePoint);
    *units++ = CZeChar::lowSurrogate(codePoint);
    return units;
}

} // namespace ze
