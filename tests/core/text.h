// Strings in tests: written as literals, printed as UTF-8.

#pragma once

#include "core/tools/ze_string.h"

#include <ostream>
#include <string>

inline CZeString text(const std::u16string& units) {
    return CZeString::fromUtf16(units.data(), static_cast<int>(units.size()));
}

/// The bytes with embedded zeros.
inline std::string bytes(const CZeByteArray& array) {
    return std::string(array.constData(), static_cast<size_t>(array.size()));
}

inline std::u16string units(const CZeString& string) {
    return {reinterpret_cast<const char16_t*>(string.unicode()), static_cast<size_t>(string.size())};
}

inline std::string utf8(const CZeString& string) {
    return bytes(string.toUtf8());
}
inline std::string utf8(const CZeStringRef& view) {
    return utf8(view.toString());
}

/// The contents, or "(null)".
inline std::string shown(const CZeByteArray& array) {
    return array.isNull() ? "(null)" : bytes(array);
}
inline std::string shown(const CZeString& string) {
    return string.isNull() ? "(null)" : utf8(string);
}

inline void PrintTo(const CZeString& string, std::ostream* out) {
    *out << '"' << shown(string) << '"';
}

/// What the operators ==, !=, <, <=, > and >= say, a letter for each that holds.
template <class Left, class Right>
std::string relations(const Left& l, const Right& r) {
    const bool holds[] = {l == r, l != r, l<r, l <= r, l> r, l >= r};
    std::string letters;
    for (size_t i = 0; i < std::size(holds); ++i)
        if (holds[i])
            letters += "enlLgG"[i];
    return letters;
}
