// The search for text in strings.

#include "core/tools/text_search.h"

#include <algorithm>

namespace {

/// Whether `needle`, which fits there, stands at `position`.
bool standsAt(ze::Utf16View haystack, int position, ze::Utf16View needle, Ze::CaseSensitivity cs) {
    const CZeChar* const units = haystack.units + position;
    if (cs == Ze::CaseSensitive)
        return std::equal(needle.units, needle.units + needle.count, units);
    return std::equal(needle.units, needle.units + needle.count, units, [](CZeChar l, CZeChar r) {
        return ze::foldAscii(l.unicode()) == ze::foldAscii(r.unicode());
    });
}

} // namespace

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
    return found == end && needle.count != 0 ? -1 : static_cast<int>(found - haystack.units);
}

int ze::findBackward(Utf16View haystack, int from, Utf16View needle, Ze::CaseSensitivity cs) {
    if (from < 0)
        from += haystack.count;
    if (from < 0)
        return -1;
    int position = std::min(from, haystack.count - needle.count);
    while (position >= 0 && !standsAt(haystack, position, needle, cs))
        --position;
    return std::max(position, -1);
}

int CZeString::indexOf(const ze::TextArgument& text, int from, Ze::CaseSensitivity cs) const {
    return ze::findForward(*this, from, text, cs);
}

int CZeString::lastIndexOf(const ze::TextArgument& text, int from, Ze::CaseSensitivity cs) const {
    return ze::findBackward(*this, from, text, cs);
}

int CZeString::count(const ze::TextArgument& text, Ze::CaseSensitivity cs) const {
    int count = 0;
    for (int at = ze::findForward(*this, 0, text, cs); at != -1;
         at = ze::findForward(*this, at + 1, text, cs))
        ++count;
    return count;
}

bool CZeString::startsWith(const ze::TextArgument& text, Ze::CaseSensitivity cs) const {
    return text.size() <= size() && standsAt(*this, 0, text, cs);
}

bool CZeString::endsWith(const ze::TextArgument& text, Ze::CaseSensitivity cs) const {
    return text.size() <= size() && standsAt(*this, size() - text.size(), text, cs);
}
