// Changes to the contents of strings.

#include "core/tools/latin1.h"
#include "core/tools/string_ref.h"

#include <algorithm>
#include <cstring>
#include <functional>

/// Moves the units from `position` on by `size` units and returns the first of those in between, for the
/// caller to fill. A position behind the end is first reached with spaces. Null, and nothing done, when there
/// is no memory.
CZeChar* CZeString::openGap(int position, int size) {
    const int oldSize = this->size();
    const uint32_t newSize = uint32_t(std::max(position, oldSize)) + uint32_t(size);
    const uint32_t needed = newSize + 1; // two sizes fit even when no block can
    if (m_array.isShared() || needed > m_array.capacity()) {
        const int options = SZeArrayData::GrowGeometric | m_array.keptOptions();
        if (!m_array.reallocData(needed, options))
            return nullptr;
    }
    CZeChar* const gap = m_array.units() + position;
    if (position < oldSize)
        std::memmove(gap + size, gap, size_t(oldSize - position) * sizeof(CZeChar));
    else
        std::fill(m_array.units() + oldSize, gap, CZeChar(' '));
    m_array.setSize(int(newSize));
    return gap;
}

CZeString& CZeString::insert(int position, const CZeChar* units, int size) {
    if (position < 0 || !units || size < 1)
        return *this;
    const std::less<> before{};
    const bool isOwn = !before(units, begin()) && before(units, end());
    const int offset = isOwn ? int(units - begin()) : 0;
    CZeChar* const gap = openGap(position, size);
    if (!gap)
        return *this;
    if (!isOwn) {
        std::memcpy(gap, units, size_t(size) * sizeof(CZeChar));
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
    return insert(size(), text);
}
