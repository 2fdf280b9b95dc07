// Text in text.

#include "core/tools/text_search.h"

#include <algorithm>

int ze::findForward(Utf16View haystack, int from, Utf16View needle, Ze::CaseSensitivity cs) {
    if (from < 0)
        from = std::max(from + haystack.count, 0);
    if (needle.count > haystack.count - from)
        return -1;
    const CZeChar* const end = haystack.units + haystack.count;
    const auto find = [&](auto isSame) {
        return std::search(haystack.units + from, end, needle.units, needle.units + needle.count, isSame);
    };
    const CZeChar* const found =
        cs == Ze::CaseSensitive
            ? find([](CZeChar l, CZeChar r) { return l == r; })
            : find([](CZeChar l, CZeChar r) { return foldAscii(l.unicode()) == foldAscii(r.unicode()); });
    return found == end && needle.count != 0 ? -1 : int(found - haystack.units);
}
