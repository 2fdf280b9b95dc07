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
    return {first, static_cast<int>(last.base() - first)};
}

/// Writes `text`, every run of white space as one space, to `out`, which may be the text's own memory.
/// Returns the number of units.
int collapse(ze::Utf16View text, CZeChar* out) {
    CZeChar* const start = out;
    bool isInRun = false;
    for (const CZeChar* unit = text.units; unit != text.units + text.count; ++unit) {
        const bool isSpace = unit->isSpace();
        if (!isSpace || !isInRun)
            *out++ = isSpace ? CZeChar(' ') : *unit;
        isInRun = isSpace;
    }
    return static_cast<int>(out - start);
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

CZeString CZeString::simplified_helper(const CZeString& text) {
    const ze::Utf16View kept = trimmedRange(text);
    CZeString result(kept.count, Ze::Uninitialized);
    if (text.isNull() || result.size() != kept.count)
        return {};
    result.truncate(collapse(kept, result.m_array.units()));
    return result == text ? text : result;
}

CZeString CZeString::simplified_helper(CZeString&& text) {
    if (!text.m_array.isExclusive())
        return simplified_helper(std::as_const(text));
    text.truncate(collapse(trimmedRange(text), text.m_array.units()));
    return std::move(text);
}
