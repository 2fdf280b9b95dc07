// Strings without their white space.

#include "core/tools/text_view.h"

#include <algorithm>
#include <iterator>

namespace {

/// The part of `text` between the white space at its ends.
ze::Utf16View trimmedRange(const CZeString& text) {
    const auto isNoSpace = [](CZeChar unit) { return !unit.isSpace(); };
    const CZeChar* const first = std::find_if(text.begin(), text.end(), isNoSpace);
    const auto last =
        std::find_if(std::make_reverse_iterator(text.end()), std::make_reverse_iterator(first), isNoSpace);
    return {first, int(last.base() - first)};
}

} // namespace

CZeString CZeString::trimmed_helper(const CZeString& text) {
    const ze::Utf16View kept = trimmedRange(text);
    return kept.count == text.size() ? text : CZeString(kept.units, kept.count);
}

CZeString CZeString::trimmed_helper(CZeString&& text) {
    if (!text.m_array.isExclusive())
        return trimmed_helper(std::as_const(text));
    const ze::Utf16View kept = trimmedRange(text);
    std::copy_n(kept.units, kept.count, text.m_array.units());
    text.truncate(kept.count);
    return std::move(text);
}
