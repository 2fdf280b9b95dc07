// The order of strings.

#include "core/tools/text_view.h"

#include <algorithm>
#include <cstring>

namespace {

/// The code point at `index`, a low surrogate taken with the high one before it; A to Z as a to z.
template <class View>
char32_t foldedAt(View text, int index) {
    const CZeChar unit(ze::unitAt(text, index));
    if (unit.isLowSurrogate() && index > 0) {
        const CZeChar previous(ze::unitAt(text, index - 1));
        if (previous.isHighSurrogate())
            return CZeChar::codePoint(previous, unit);
    }
    return ze::foldAscii(unit.unicode());
}

template <class Left, class Right>
int compareUnits(Left left, Right right) {
    const int leftSize = ze::sizeOf(left);
    const int rightSize = ze::sizeOf(right);
    if (ze::firstOf(left) == ze::firstOf(right) && leftSize == rightSize)
        return 0;
    const int common = std::min(leftSize, rightSize);
    for (int i = 0; i < common; ++i) {
        const int difference = ze::unitAt(left, i) - ze::unitAt(right, i);
        if (difference != 0)
            return difference;
    }
    return leftSize - rightSize;
}

template <class Left, class Right>
int compareFolded(Left left, Right right) {
    const int leftSize = ze::sizeOf(left);
    const int rightSize = ze::sizeOf(right);
    if (ze::firstOf(left) == ze::firstOf(right))
        return leftSize - rightSize;
    if (!ze::firstOf(left))
        return 1;
    if (!ze::firstOf(right))
        return -1;
    const int common = std::min(leftSize, rightSize);
    for (int i = 0; i < common; ++i) {
        const auto difference = static_cast<int>(foldedAt(left, i)) - static_cast<int>(foldedAt(right, i));
        if (difference != 0)
            return difference;
    }
    return leftSize == rightSize ? 0 : leftSize < rightSize ? -1 : 1;
}

template <class Left, class Right>
int compareTexts(Left left, Right right, Ze::CaseSensitivity cs) {
    return cs == Ze::CaseSensitive ? compareUnits(left, right) : compareFolded(left, right);
}

} // namespace

int CZeString::compare_helper(const CZeChar* left, int leftSize, const CZeChar* right, int rightSize,
                              Ze::CaseSensitivity cs) {
    return compareTexts(ze::Utf16View(left, leftSize), ze::Utf16View(right, rightSize), cs);
}

int CZeString::compare_helper(const CZeChar* left, int leftSize, CZeLatin1String right,
                              Ze::CaseSensitivity cs) {
    return compareTexts(ze::Utf16View(left, leftSize), right, cs);
}

int CZeString::compare(const CZeString& other, Ze::CaseSensitivity cs) const {
    return compare_helper(unicode(), size(), other.unicode(), other.size(), cs);
}

int CZeString::compare(const CZeStringRef& other, Ze::CaseSensitivity cs) const {
    return compare_helper(unicode(), size(), other.unicode(), other.size(), cs);
}

int CZeString::compare(CZeLatin1String other, Ze::CaseSensitivity cs) const {
    return compare_helper(unicode(), size(), other, cs);
}

int CZeStringRef::compare(const CZeStringRef& other, Ze::CaseSensitivity cs) const {
    return CZeString::compare_helper(unicode(), size(), other.unicode(), other.size(), cs);
}

bool CZeString::isEqual(const CZeString& other) const {
    return size() == other.size() &&
           std::memcmp(unicode(), other.unicode(), static_cast<size_t>(size()) * sizeof(CZeChar)) == 0;
}
