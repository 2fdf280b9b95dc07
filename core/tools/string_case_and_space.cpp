// White space and case.

#include "core/tools/case_table.h"
#include "core/tools/code_point.h"
#include "core/tools/text_view.h"
#include "core/tools/uninitialized.h"

#include <algorithm>
#include <iterator>
#include <utility>

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

/// One direction: the runs of the table, and the range of the ASCII letters, which need no search.
struct Case {
    std::span<const ze::CaseRun> runs;
    char16_t firstLetter;
    int asciiDistance;
};

Case lowerCase() {
    return {ze::toLowerRuns, u'A', 32};
}

Case upperCase() {
    return {ze::toUpperRuns, u'a', -32};
}

char32_t mapped(char32_t codePoint, const Case& to) {
    if (codePoint < 0x80)
        return codePoint - to.firstLetter < 26 ? codePoint + static_cast<char32_t>(to.asciiDistance)
                                               : codePoint;
    const auto run = std::lower_bound(to.runs.begin(), to.runs.end(), codePoint,
                                      [](const ze::CaseRun& r, char32_t value) { return r.last < value; });
    const bool isMoved = run != to.runs.end() && codePoint >= run->first &&
                         (codePoint - run->first) % static_cast<char32_t>(run->step) == 0;
    return isMoved ? codePoint + static_cast<char32_t>(run->distance) : codePoint;
}

/// The code point at `unit`, which is before `end`.
char32_t codePointAt(const CZeChar* unit, const CZeChar* end) {
    return ze::isPair(unit, end) ? CZeChar::codePoint(unit[0], unit[1]) : unit->unicode();
}

/// The first code point from `unit` on that has a counterpart; `end` when there is none.
const CZeChar* findMapped(const CZeChar* unit, const CZeChar* end, const Case& to) {
    while (unit != end) {
        const char32_t codePoint = codePointAt(unit, end);
        if (mapped(codePoint, to) != codePoint)
            break;
        unit += codePoint < 0x10000 ? 1 : 2;
    }
    return unit;
}

/// Maps the units in place, which works because counterparts are as long.
void mapUnits(CZeChar* unit, CZeChar* end, const Case& to) {
    while (unit != end)
        unit = ze::putCodePoint(mapped(codePointAt(unit, end), to), unit);
}

/// Maps `text` in its own block, or in a copy where another string shares that. A text without any
/// counterpart keeps its block. Null when there is no memory.
CZeString mapCase(CZeString text, const Case& to) {
    const CZeString& original = text;
    const auto start = findMapped(original.begin(), original.end(), to) - original.begin();
    if (start == original.size())
        return text;
    CZeChar* const units = text.data();
    if (!units)
        return {};
    mapUnits(units + start, units + text.size(), to);
    return text;
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
    CZeString result = ze::uninitialized(kept.count);
    if (text.isNull() || result.isNull())
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

CZeString CZeString::toLower_helper(const CZeString& text) {
    return mapCase(text, lowerCase());
}

CZeString CZeString::toLower_helper(CZeString&& text) {
    return mapCase(std::move(text), lowerCase());
}

CZeString CZeString::toUpper_helper(const CZeString& text) {
    return mapCase(text, upperCase());
}

CZeString CZeString::toUpper_helper(CZeString&& text) {
    return mapCase(std::move(text), upperCase());
}
