// Changes to strings, and strings made of others.

#include "core/tools/latin1.h"
#include "core/tools/text_search.h"
#include "core/tools/uninitialized.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

/// Whether `units` points into `text`, so that a change to the text changes them as well.
bool liesIn(const CZeString& text, const CZeChar* units) {
    const std::less<> before{};
    return !before(units, text.begin()) && before(units, text.end());
}

/// The number of occurrences that do not overlap; 0 for an empty pattern.
int countApart(ze::Utf16View text, ze::Utf16View pattern, Ze::CaseSensitivity cs) {
    if (pattern.count == 0)
        return 0;
    int hits = 0;
    int at = ze::findForward(text, 0, pattern, cs);
    while (at != -1) {
        ++hits;
        at = ze::findForward(text, at + pattern.count, pattern, cs);
    }
    return hits;
}

/// Clips a range to `size` units. A negative position counts from the end, a negative count reaches up to it.
/// False when the position lies outside.
bool clampRange(int size, int& position, int& count) {
    if (position < 0)
        position += size;
    if (position < 0 || position > size)
        return false;
    if (count < 0 || count > size - position)
        count = size - position;
    return true;
}

/// `text` between `before` and `behind` units of `fill`; the null string when there is no memory.
CZeString padded(const CZeString& text, int before, int behind, CZeChar fill) {
    CZeString result = ze::uninitialized(static_cast<int64_t>(text.size()) + before + behind);
    if (result.isNull())
        return result;
    CZeChar* out = std::fill_n(result.data(), before, fill);
    out = std::copy(text.begin(), text.end(), out);
    std::fill_n(out, behind, fill);
    return result;
}

/// What stands for `unit` in HTML; null for what stands for itself.
constexpr const char* htmlEscape(CZeChar unit) {
    switch (unit.unicode()) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    default:
        return nullptr;
    }
}

} // namespace

/// Makes room for `size` units at `position` and returns the first of them for the caller to fill. Spaces
/// fill the string up to a position behind the end. Does nothing and returns null when there is no memory.
CZeChar* CZeString::openGap(int position, int size) {
    const int oldSize = this->size();
    const uint32_t newSize = static_cast<uint32_t>(std::max(position, oldSize)) + static_cast<uint32_t>(size);
    const uint32_t needed = newSize + 1; // cannot overflow: two sizes fit into 32 bits
    if (m_array.isShared() || needed > m_array.capacity()) {
        const int options = SZeArrayData::GrowGeometric | m_array.keptOptions();
        if (!m_array.reallocData(needed, options))
            return nullptr;
    }
    CZeChar* const gap = m_array.units() + position;
    if (position < oldSize)
        std::memmove(gap + size, gap, static_cast<size_t>(oldSize - position) * sizeof(CZeChar));
    else
        std::fill(m_array.units() + oldSize, gap, CZeChar(' '));
    m_array.setSize(static_cast<int>(newSize));
    return gap;
}

CZeString& CZeString::insert(int position, const CZeChar* units, int size) {
    if (position < 0 || !units || size < 1)
        return *this;
    const bool isOwn = liesIn(*this, units);
    const int offset = isOwn ? static_cast<int>(units - begin()) : 0;
    CZeChar* const gap = openGap(position, size);
    if (!gap)
        return *this;
    if (!isOwn) {
        std::memcpy(gap, units, static_cast<size_t>(size) * sizeof(CZeChar));
        return *this;
    }
    // Own units may have moved with the block, and those from `position` on have moved by the gap.
    const CZeChar* const source = begin() + offset;
    const int beforeGap = std::clamp(position - offset, 0, size);
    std::copy_n(source, beforeGap, gap);
    std::copy_n(source + beforeGap + size, size - beforeGap, gap + beforeGap);
    return *this;
}

CZeString& CZeString::insert(int position, const CZeString& text) {
    return insert(position, text.unicode(), text.size());
}

CZeString& CZeString::insert(int position, const CZeStringRef& text) {
    return insert(position, text.unicode(), text.size());
}

CZeString& CZeString::insert(int position, CZeLatin1String text) {
    if (position < 0 || text.size() < 1)
        return *this;
    if (CZeChar* const gap = openGap(position, text.size()))
        ze::widenLatin1(text.data(), text.size(), gap);
    return *this;
}

CZeString& CZeString::append(const CZeString& text) {
    if (text.isNull())
        return *this;
    if (isNull())
        return *this = text;
    if (text.isEmpty()) {
        openGap(size(), 0);
        return *this;
    }
    return append(text.unicode(), text.size());
}

CZeString& CZeString::remove(int position, int count) {
    if (!clampRange(size(), position, count) || count == 0)
        return *this;
    const int tail = size() - position - count;
    if (tail != 0) { // cutting off the end needs no private copy, even of foreign memory
        CZeChar* const units = data();
        if (!units)
            return *this;
        std::memmove(units + position, units + position + count, static_cast<size_t>(tail) * sizeof(CZeChar));
    }
    resize(position + tail);
    return *this;
}

CZeString& CZeString::remove(const ze::TextArgument& text, Ze::CaseSensitivity cs) {
    return replace_helper(text.unicode(), text.size(), nullptr, 0, cs);
}

CZeString& CZeString::replace(int position, int count, const ze::TextArgument& after) {
    if (!clampRange(size(), position, count))
        return *this;
    if (liesIn(*this, after.unicode())) {
        const CZeString copy(after.unicode(), after.size());
        return copy.size() == after.size() ? replace(position, count, copy) : *this;
    }
    const int growth = after.size() - count;
    CZeChar* const units = growth > 0 ? openGap(position + count, growth) : data();
    if (!units)
        return *this;
    std::copy_n(after.unicode(), after.size(), m_array.units() + position);
    return growth < 0 ? remove(position + after.size(), -growth) : *this;
}

CZeString& CZeString::replace(const ze::TextArgument& before, const ze::TextArgument& after,
                              Ze::CaseSensitivity cs) {
    return replace_helper(before.unicode(), before.size(), after.unicode(), after.size(), cs);
}

CZeString& CZeString::replace_helper(const CZeChar* before, int beforeSize, const CZeChar* after,
                                     int afterSize, Ze::CaseSensitivity cs) {
    if (liesIn(*this, before) || liesIn(*this, after)) {
        const CZeString beforeCopy(before, beforeSize), afterCopy(after, afterSize);
        if (beforeCopy.size() != beforeSize || afterCopy.size() != afterSize)
            return *this;
        return replace_helper(beforeCopy.unicode(), beforeSize, afterCopy.unicode(), afterSize, cs);
    }
    const ze::Utf16View pattern(before, beforeSize);
    int64_t hits = countApart(*this, pattern, cs);
    const int oldSize = size();
    const int64_t newSize = oldSize + hits * (afterSize - beforeSize);
    if (hits == 0 || newSize >= INT32_MAX)
        return *this;

    // The text moves to the end of the room first, so that writing never overtakes reading.
    const int lead = std::max(static_cast<int>(newSize) - oldSize, 0);
    CZeChar* const units = lead > 0 ? openGap(0, lead) : data();
    if (!units)
        return *this;
    const ze::Utf16View old(units + lead, oldSize);
    CZeChar* out = units;
    int copied = 0;
    for (; hits > 0; --hits) {
        const int at = ze::findForward(old, copied, pattern, cs);
        out = std::copy(old.units + copied, old.units + at, out);
        out = std::copy_n(after, afterSize, out);
        copied = at + beforeSize;
    }
    std::copy(old.units + copied, old.units + oldSize, out);
    resize(static_cast<int>(newSize));
    return *this;
}

CZeString CZeString::repeated(int times) const {
    if (isEmpty() || times == 1)
        return *this;
    CZeString result = ze::uninitialized(static_cast<int64_t>(size()) * std::max(times, 0));
    if (result.isNull())
        return result;
    CZeChar* out = result.data();
    for (int i = 0; i < times; ++i)
        out = std::copy(begin(), end(), out);
    return result;
}

CZeString CZeString::leftJustified(int width, CZeChar fill, bool truncate) const {
    if (width <= size())
        return truncate ? left(std::max(width, 0)) : *this;
    return padded(*this, 0, width - size(), fill);
}

CZeString CZeString::rightJustified(int width, CZeChar fill, bool truncate) const {
    if (width <= size())
        return truncate ? left(std::max(width, 0)) : *this;
    return padded(*this, width - size(), 0, fill);
}

CZeString CZeString::toHtmlEscaped() const {
    int64_t length = size();
    for (const CZeChar unit : *this)
        if (const char* const escape = htmlEscape(unit))
            length += static_cast<int64_t>(std::strlen(escape)) - 1;
    if (length == size())
        return *this;
    CZeString result = ze::uninitialized(length);
    if (result.isNull())
        return result;
    CZeChar* out = result.data();
    for (const CZeChar unit : *this)
        if (const char* const escape = htmlEscape(unit))
            out = std::copy_n(escape, std::strlen(escape), out);
        else
            *out++ = unit;
    return result;
}
