// Parts of strings.

#include "core/tools/text_search.h"

#include <algorithm>

namespace {

/// Calls `take` with the position and size of each part of `text` between two separators.
template <class Take>
void forEachPart(ze::Utf16View text, ze::Utf16View separator, Ze::CaseSensitivity cs, Take take) {
    int start = 0;
    int end = ze::findForward(text, 0, separator, cs);
    while (end != -1) {
        take(start, end - start);
        start = end + separator.count;
        end = ze::findForward(text, std::max(start, end + 1), separator, cs); // past an empty separator, too
    }
    take(start, text.count - start);
}

/// The list of what `piece` makes of the position and size of each part; empty when there is no memory.
template <class Element, class Piece>
CZeList<Element> split_helper(ze::Utf16View text, ze::Utf16View separator, CZeString::SplitBehavior behavior,
                              Ze::CaseSensitivity cs, Piece piece) {
    CZeList<Element> parts;
    int missing = 0;
    forEachPart(text, separator, cs, [&](int position, int size) {
        if (size == 0 && behavior == CZeString::SkipEmptyParts)
            return;
        const int oldSize = parts.size();
        if (const Element part = piece(position, size); part.size() == size)
            parts.append(part);
        missing += parts.size() == oldSize;
    });
    return missing == 0 ? parts : CZeList<Element>();
}

CZeStringList splitText(const CZeString& text, ze::Utf16View separator, CZeString::SplitBehavior behavior,
                        Ze::CaseSensitivity cs) {
    return split_helper<CZeString>(text, separator, behavior, cs,
                                   [&text](int position, int size) { return text.mid(position, size); });
}

CZeStringRefList splitViews(const CZeString& text, ze::Utf16View separator, CZeString::SplitBehavior behavior,
                            Ze::CaseSensitivity cs) {
    return split_helper<CZeStringRef>(text, separator, behavior, cs, [&text](int position, int size) {
        return CZeStringRef(&text, position, size);
    });
}

CZeString section_helper(const CZeString& text, ze::Utf16View separator, int first, int last,
                         Ze::CaseSensitivity cs) {
    int parts = 0;
    forEachPart(text, separator, cs, [&parts](int, int) { ++parts; });
    first = std::max(first < 0 ? first + parts : first, 0);
    last = std::min(last < 0 ? last + parts : last, parts - 1);
    if (first > last)
        return {};

    int index = 0;
    int begin = 0;
    int end = 0;
    forEachPart(text, separator, cs, [&](int position, int size) {
        if (index == first)
            begin = position;
        if (index == last)
            end = position + size;
        ++index;
    });
    return text.mid(begin, end - begin);
}

} // namespace

CZeStringRef CZeString::midRef(int position, int count) const {
    switch (ze::resolveSlice(size(), position, count)) {
    case ze::Slice::Null:
        return {};
    case ze::Slice::Empty:
        return CZeStringRef(this, 0, 0);
    case ze::Slice::Full:
        return CZeStringRef(this);
    case ze::Slice::Subset:
        break;
    }
    return CZeStringRef(this, position, count);
}

CZeStringRef CZeString::leftRef(int count) const {
    return midRef(0, count);
}

CZeStringRef CZeString::rightRef(int count) const {
    return count < 0 ? midRef(0) : midRef(size() - count, count);
}

CZeStringList CZeString::split(const CZeString& separator, SplitBehavior behavior,
                               Ze::CaseSensitivity cs) const {
    return splitText(*this, separator, behavior, cs);
}

CZeStringList CZeString::split(CZeChar separator, SplitBehavior behavior, Ze::CaseSensitivity cs) const {
    return splitText(*this, ze::Utf16View(&separator), behavior, cs);
}

CZeStringRefList CZeString::splitRef(const CZeString& separator, SplitBehavior behavior,
                                     Ze::CaseSensitivity cs) const {
    return splitViews(*this, separator, behavior, cs);
}

CZeStringRefList CZeString::splitRef(CZeChar separator, SplitBehavior behavior,
                                     Ze::CaseSensitivity cs) const {
    return splitViews(*this, ze::Utf16View(&separator), behavior, cs);
}

CZeString CZeString::section(const CZeString& separator, int first, int last, Ze::CaseSensitivity cs) const {
    return section_helper(*this, separator, first, last, cs);
}

CZeString CZeString::section(CZeChar separator, int first, int last, Ze::CaseSensitivity cs) const {
    return section_helper(*this, ze::Utf16View(&separator), first, last, cs);
}
