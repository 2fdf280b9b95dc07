// Strings in lower and upper case.

#include "core/tools/case_table.h"
#include "core/tools/ze_string.h"

#include <algorithm>
#include <utility>

namespace {

/// One direction: the runs of the table, and the ASCII letters that it moves, known without a search.
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

/// Whether a surrogate pair stands at `unit`.
bool isPair(const CZeChar* unit, const CZeChar* end) {
    return unit->isHighSurrogate() && end - unit > 1 && unit[1].isLowSurrogate();
}

/// The first code point from `unit` on that has a counterpart; `end` when there is none.
const CZeChar* findMapped(const CZeChar* unit, const CZeChar* end, const Case& to) {
    while (unit != end) {
        const bool pair = isPair(unit, end);
        const char32_t codePoint = pair ? CZeChar::codePoint(unit[0], unit[1]) : unit->unicode();
        if (mapped(codePoint, to) != codePoint)
            break;
        unit += pair ? 2 : 1;
    }
    return unit;
}

/// Maps the units where they lie.
void mapUnits(CZeChar* unit, CZeChar* end, const Case& to) {
    for (; unit != end; ++unit) {
        if (isPair(unit, end)) {
            const char32_t codePoint = mapped(CZeChar::codePoint(unit[0], unit[1]), to);
            *unit++ = CZeChar::highSurrogate(codePoint);
            *unit = CZeChar::lowSurrogate(codePoint);
        } else {
            *unit = CZeChar(static_cast<char16_t>(mapped(unit->unicode(), to)));
        }
    }
}

/// Maps `text` in its own block where no other string shares that, in a copy otherwise; null without memory.
/// A text that stays as it is keeps its block.
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
