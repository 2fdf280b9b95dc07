// What a member takes that accepts text in any form.

#pragma once

#include "core/tools/ze_string.h"

namespace ze {

/// The units of a string, a view, a Latin-1 text or a single unit, for the duration of one call: it refers to
/// what it was made of. A null text counts as an empty one. A Latin-1 text that there is no memory for has a
/// size that no string reaches: it is found nowhere, and nothing can take it in.
class TextArgument {
public:
    TextArgument(const CZeString& text) : m_units(text.unicode()), m_size(text.size()) {}
    TextArgument(const CZeStringRef& text);
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
