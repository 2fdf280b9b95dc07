// A view on a range of a string, and the parameter type of the members that accept text in any form.

#pragma once

#include "core/tools/ze_string.h"

/// A string, a position in it and a length. It owns nothing: the string object must outlive it, and not
/// shrink below the range. A null view has no string.
class ZE_EXPORT CZeStringRef {
public:
    /// The null view.
    CZeStringRef() = default;
    /// The whole of `string`, which may be null.
    explicit CZeStringRef(const CZeString* string) : CZeStringRef(string, 0, string ? string->size() : 0) {}
    /// `size` units from `position`, a range inside `string`.
    CZeStringRef(const CZeString* string, int position, int size)
        : m_string(string), m_position(position), m_size(size) {}

    /// The string that is looked at; null for the null view.
    const CZeString* string() const { return m_string; }
    /// Where in the string the view begins.
    int position() const { return m_position; }
    /// The number of units.
    int size() const { return m_size; }
    int length() const { return m_size; }
    /// There is no string, or it is null.
    bool isNull() const { return !m_string || m_string->isNull(); }
    /// There are no units.
    bool isEmpty() const { return m_size == 0; }

    /// The first unit; null without a string.
    const CZeChar* unicode() const { return m_string ? m_string->unicode() + m_position : nullptr; }
    /// The range of the units.
    const CZeChar* begin() const { return unicode(); }
    const CZeChar* end() const { return unicode() + m_size; }
    /// The unit at `index`, from 0 to `size()` − 1.
    CZeChar at(int index) const { return unicode()[index]; }
    CZeChar operator[](int index) const { return unicode()[index]; }

    /// The range as a string; shared where it is the whole string.
    CZeString toString() const { return m_string ? m_string->mid(m_position, m_size) : CZeString(); }

    /// As CZeString::compare.
    int compare(const CZeStringRef& other, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;

    /// As `compare` with case.
    friend bool operator==(const CZeStringRef& l, const CZeStringRef& r) { return l.compare(r) == 0; }
    friend bool operator!=(const CZeStringRef& l, const CZeStringRef& r) { return l.compare(r) != 0; }
    friend bool operator<(const CZeStringRef& l, const CZeStringRef& r) { return l.compare(r) < 0; }
    friend bool operator>(const CZeStringRef& l, const CZeStringRef& r) { return l.compare(r) > 0; }
    friend bool operator<=(const CZeStringRef& l, const CZeStringRef& r) { return l.compare(r) <= 0; }
    friend bool operator>=(const CZeStringRef& l, const CZeStringRef& r) { return l.compare(r) >= 0; }
    friend bool operator==(const CZeString& l, const CZeStringRef& r) { return l.compare(r) == 0; }
    friend bool operator==(const CZeStringRef& l, const CZeString& r) {
        return l.compare(CZeStringRef(&r)) == 0;
    }
    friend bool operator!=(const CZeString& l, const CZeStringRef& r) { return l.compare(r) != 0; }
    friend bool operator!=(const CZeStringRef& l, const CZeString& r) {
        return l.compare(CZeStringRef(&r)) != 0;
    }
    friend bool operator<(const CZeString& l, const CZeStringRef& r) { return l.compare(r) < 0; }
    friend bool operator<(const CZeStringRef& l, const CZeString& r) {
        return l.compare(CZeStringRef(&r)) < 0;
    }
    friend bool operator>(const CZeString& l, const CZeStringRef& r) { return l.compare(r) > 0; }
    friend bool operator>(const CZeStringRef& l, const CZeString& r) {
        return l.compare(CZeStringRef(&r)) > 0;
    }
    friend bool operator<=(const CZeString& l, const CZeStringRef& r) { return l.compare(r) <= 0; }
    friend bool operator<=(const CZeStringRef& l, const CZeString& r) {
        return l.compare(CZeStringRef(&r)) <= 0;
    }
    friend bool operator>=(const CZeString& l, const CZeStringRef& r) { return l.compare(r) >= 0; }
    friend bool operator>=(const CZeStringRef& l, const CZeString& r) {
        return l.compare(CZeStringRef(&r)) >= 0;
    }

    /// Both texts in a row. A sum that there is no memory for is its left side.
    friend CZeString operator+(CZeString left, const CZeStringRef& right) {
        return std::move(left.append(right));
    }
    friend CZeString operator+(const CZeStringRef& left, CZeLatin1String right) {
        return std::move(left.toString().append(right));
    }
    friend CZeString operator+(const CZeStringRef& left, CZeChar right) {
        return std::move(left.toString().append(right));
    }

private:
    const CZeString* m_string = nullptr;
    int m_position = 0;
    int m_size = 0;
};

namespace ze {

/// The units of a string, a view, a Latin-1 text or a single unit, for the duration of one call: it refers to
/// what it was made of. A null text counts as an empty one. A Latin-1 text that there is no memory for has a
/// size that no string reaches: it is found nowhere, and no string can take it in.
class TextArgument {
public:
    TextArgument(const CZeString& text) : m_units(text.unicode()), m_size(text.size()) {}
    TextArgument(const CZeStringRef& text) : m_units(text.unicode()), m_size(text.size()) {}
    TextArgument(CZeLatin1String text)
        : m_widened(text), m_units(m_widened.unicode()),
          m_size(m_widened.size() == text.size() ? text.size() : INT32_MAX) {}
    TextArgument(CZeChar unit) : m_unit(unit), m_units(&m_unit), m_size(1) {}
    TextArgument(char16_t unit) : TextArgument(CZeChar(unit)) {}
    TextArgument(char latin1) : TextArgument(CZeChar(latin1)) {}
    TextArgument(int) = delete; // a number is no text
    TextArgument(const TextArgument&) = delete;
    TextArgument& operator=(const TextArgument&) = delete;

    const CZeChar* unicode() const { return m_units; }
    int size() const { return m_size; }

private:
    CZeString m_widened;
    CZeChar m_unit;
    const CZeChar* m_units;
    int m_size;
};

} // namespace ze
