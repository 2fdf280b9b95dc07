// What the library is held against: the same rules in their plainest form, over standard strings.

#pragma once

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>
#include <type_traits>

/// Where the escape at `at` ends; `at` + 1 when there is none.
inline size_t escapeEnd(const std::string& text, size_t at) {
    size_t end = at + 1;
    while (text[at] == '%' && end < std::min(at + 3, text.size()) && text[end] >= '0' && text[end] <= '9')
        ++end;
    return end;
}

/// `text` with `fill` before it, or for a negative width behind it.
inline std::string padded(std::string text, int width, char fill) {
    const int missing = std::max(std::abs(width) - static_cast<int>(text.size()), 0);
    return text.insert(width > 0 ? 0 : text.size(), static_cast<size_t>(missing), fill);
}

/// What to_chars makes of a number.
template <class... How>
std::string formatted(How... how) {
    char digits[512];
    return std::string(digits, std::to_chars(digits, std::end(digits), how...).ptr);
}

/// `text` with `argument` in place of its lowest escapes.
inline std::string replaceLowest(const std::string& text, const std::string& argument) {
    const auto numberAt = [&text](size_t at) {
        return escapeEnd(text, at) == at + 1 ? 100 : std::stoi(text.substr(at + 1, 2));
    };
    int lowest = 99;
    for (size_t i = 0; i < text.size(); ++i)
        lowest = std::min(lowest, numberAt(i));
    std::string result;
    for (size_t i = 0; i < text.size(); i = escapeEnd(text, i))
        result += numberAt(i) == lowest ? argument : text.substr(i, escapeEnd(text, i) - i);
    return result;
}

/// Latin-1 `text` without the white space at both ends.
inline std::string withoutSpace(const std::string& text) {
    const std::string space = "\t\n\v\f\r \x85\xA0";
    const size_t first = std::min(text.find_first_not_of(space), text.size());
    return text.substr(first, text.find_last_not_of(space) + 1 - first);
}

/// Whether `read` takes all of `text` as a number; at an end of a floating-point range only as a tiny one.
template <class Value, class Read>
bool isNumber(const std::string& text, Value& value, Read read) {
    char* end = const_cast<char*>(text.c_str());
    errno = 0;
    value = read(text.c_str(), &end);
    const bool isTiny =
        std::is_floating_point_v<Value> && value != 0 && !std::isinf(static_cast<double>(value));
    return !text.empty() && end == text.c_str() + text.size() && (errno == 0 || isTiny);
}

inline std::u16string folded(std::u16string text, bool ignoreCase) {
    for (char16_t& unit : text)
        unit = ignoreCase && unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    return text;
}

/// `text` with `after` in place of every `before`.
inline std::u16string replaced(std::u16string text, const std::u16string& before, const std::u16string& after,
                               bool ignoreCase) {
    const std::u16string pattern = folded(before, ignoreCase);
    for (size_t at = 0; !before.empty(); at += after.size()) {
        at = folded(text, ignoreCase).find(pattern, at);
        if (at == std::u16string::npos)
            break;
        text.replace(at, before.size(), after);
    }
    return text;
}
