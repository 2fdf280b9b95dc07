// Strings made of other strings: repeated, padded, escaped.

#include "core/tools/text_view.h"

#include <algorithm>

namespace {

/// `text` between `before` and `behind` units of `fill`; the null string when there is no memory.
CZeString padded(const CZeString& text, int before, int behind, CZeChar fill) {
    CZeString result(text.size() + before + behind, Ze::Uninitialized);
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

CZeString CZeString::repeated(int times) const {
    if (isEmpty() || times == 1)
        return *this;
    const int64_t length = static_cast<int64_t>(size()) * std::max(times, 0);
    if (length > INT32_MAX)
        return {};
    CZeString result(static_cast<int>(length), Ze::Uninitialized);
    if (result.size() != length)
        return {};
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
    CZeString result;
    if (length > INT32_MAX ||
        (result = CZeString(static_cast<int>(length), Ze::Uninitialized)).size() != length)
        return {};
    CZeChar* out = result.data();
    for (const CZeChar unit : *this)
        if (const char* const escape = htmlEscape(unit))
            out = std::copy_n(escape, std::strlen(escape), out);
        else
            *out++ = unit;
    return result;
}
