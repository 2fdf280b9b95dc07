// The two forms that every string argument is reduced to before a worker sees it: units or Latin-1
// characters.

#pragma once

#include "core/tools/ze_string.h"

namespace ze {

/// A range of units, owned by nobody. The free functions below read it and CZeLatin1String alike.
struct Utf16View {
    const CZeChar* units = nullptr;
    int count = 0;

    Utf16View() = default;
    Utf16View(const CZeChar* first, int size) : units(first), count(size) {}
    Utf16View(const CZeString& text) : units(text.unicode()), count(text.size()) {}
    Utf16View(const CZeStringRef& text) : units(text.unicode()), count(text.size()) {}
    Utf16View(const TextArgument& text) : units(text.unicode()), count(text.size()) {}
    /// `unit` must outlive the view.
    explicit Utf16View(const CZeChar* unit) : units(unit), count(1) {}
};

inline const void* firstOf(Utf16View text) {
    return text.units;
}
inline const void* firstOf(CZeLatin1String text) {
    return text.data();
}
inline int sizeOf(Utf16View text) {
    return text.count;
}
inline int sizeOf(CZeLatin1String text) {
    return text.size();
}
inline char16_t unitAt(Utf16View text, int index) {
    return text.units[index].unicode();
}
inline char16_t unitAt(CZeLatin1String text, int index) {
    return CZeChar(text.data()[index]).unicode();
}

/// A to Z as a to z. No other letter has a counterpart wherever case is ignored.
constexpr char16_t foldAscii(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

} // namespace ze
