// Changes to the contents of strings.

#include "core/tools/latin1.h"
#include "core/tools/text_search.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

/// Whether `units` points into `text`, so that a change to it changes them as well.
bool liesIn(const CZeString& text, const CZeChar* units) {
    const std::less<> before{};
    return !before(units, text.begin()) && before(units, text.end());
}

/// Makes a range lie inside `size` units: a negative position counts from the end, a negative count reaches
/// up to it. False when the position lies outside.
bool clampRange(int size, int& position, int& count) {
    if (position < 0)
        position += size;
    if (position < 0 || position > size)
        return false;
    if (count < 0 || count > size - position)
        count = size - position;
    return true;
}

} // namespace

/// Moves the units from `position` on by `size` units and returns the first of those in between, for the
/// caller to fill. A position behind the end is first reached with spaces. Null, and nothing done, when there
/// is no memory.
CZeChar* CZeString::openGap(int position, int size) {
    const int oldSize = this->size();
    const uint32_t newSize = static_cast<uint32_t>(std::max(position, oldSize)) + static_cast<uint32_t>(size);
    const uint32_t needed = newSize + 1; // two sizes fit even when no block can
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
    // Own units have moved with the block, and those from `position` on by the gap as well.
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
    if (tail != 0) { // else the end is cut off, which a view on foreign memory stands
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
    int64_t hits = 0;
    for (int at = 0; beforeSize > 0 && (at = ze::findForward(*this, at, pattern, cs)) != -1; at += beforeSize)
        ++hits;
    const int oldSize = size();
    const int64_t newSize = oldSize + hits * (afterSize - beforeSize);
    if (hits == 0 || newSize >= INT32_MAX)
        return *this;

    // The text first moves to the end of the room, so that what is written never overtakes what is read.
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
