// One unit of UTF-16 text.

#pragma once

#include <cstdint>
#include <type_traits>

/// An unsigned 16-bit UTF-16 code unit. Code points above U+FFFF take two: a high and a low surrogate.
class CZeChar {
public:
    static constexpr char16_t Replacement = 0xFFFD; ///< Stands for what cannot be decoded.

    /// U+0000.
    constexpr CZeChar() = default;
    /// A UTF-16 code unit.
    constexpr CZeChar(char16_t unit) : m_unit(unit) {}
    /// A Latin-1 character.
    constexpr CZeChar(char latin1) : m_unit(static_cast<unsigned char>(latin1)) {}
    /// The low 16 bits of a number.
    explicit constexpr CZeChar(int unit) : m_unit(static_cast<char16_t>(unit)) {}
    explicit constexpr CZeChar(unsigned unit) : m_unit(static_cast<char16_t>(unit)) {}
    explicit constexpr CZeChar(uint16_t unit) : m_unit(unit) {}

    /// The code unit.
    constexpr char16_t unicode() const { return m_unit; }
    /// The Latin-1 character, '?' when there is none.
    constexpr char toLatin1() const { return static_cast<char>(m_unit > 0xFF ? '?' : m_unit); }

    /// The first half of a code point above U+FFFF, or the second.
    constexpr bool isHighSurrogate() const { return (m_unit & 0xFC00) == 0xD800; }
    constexpr bool isLowSurrogate() const { return (m_unit & 0xFC00) == 0xDC00; }

    /// White space as all of the core library sees it: the tab to the carriage return, the space, U+0085,
    /// U+00A0 and this subset of the Unicode separators, which leaves out some widths on purpose.
    constexpr bool isSpace() const {
        switch (m_unit) {
        case 0x0085:
        case 0x00A0:
        case 0x1680:
        case 0x180E:
        case 0x2000:
        case 0x2006:
        case 0x2008:
        case 0x2009:
        case 0x200A:
        case 0x2028:
        case 0x2029:
        case 0x205F:
        case 0x3000:
            return true;
        default:
            return m_unit == 32 || (m_unit >= 9 && m_unit <= 13);
        }
    }

    /// The code point of a surrogate pair.
    static constexpr char32_t codePoint(CZeChar high, CZeChar low) {
        constexpr char32_t kOffset = 0xD800U * 1024 + 0xDC00 - 0x10000;
        return high.m_unit * 1024U + low.m_unit - kOffset;
    }
    /// The first half of the surrogate pair of a code point above U+FFFF.
    static constexpr CZeChar highSurrogate(char32_t codePoint) {
        return CZeChar(static_cast<char16_t>((codePoint >> 10) + (0xD800 - (0x10000 >> 10))));
    }
    /// Its second half.
    static constexpr CZeChar lowSurrogate(char32_t codePoint) {
        return CZeChar(static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF)));
    }

    /// By the value of the unit.
    friend constexpr bool operator==(CZeChar l, CZeChar r) { return l.m_unit == r.m_unit; }
    friend constexpr bool operator!=(CZeChar l, CZeChar r) { return l.m_unit != r.m_unit; }
    friend constexpr bool operator<(CZeChar l, CZeChar r) { return l.m_unit < r.m_unit; }
    friend constexpr bool operator>(CZeChar l, CZeChar r) { return l.m_unit > r.m_unit; }
    friend constexpr bool operator<=(CZeChar l, CZeChar r) { return l.m_unit <= r.m_unit; }
    friend constexpr bool operator>=(CZeChar l, CZeChar r) { return l.m_unit >= r.m_unit; }

private:
    char16_t m_unit = 0;
};

namespace ze {

/// Whether a `T` is written as a character: 'x' or u'x'. Overload resolution would sooner promote these to
/// int than convert them to CZeChar, so members that also take numbers need overloads for them.
template <class T>
constexpr bool isCharacter = std::is_same_v<T, char> || std::is_same_v<T, char16_t>;

/// A template parameter of such overloads that enables them for characters.
template <class... T>
using IfCharacters = std::enable_if_t<(isCharacter<T> && ...), int>;
/// The same for integers that are no characters.
template <class T>
using IfInteger = std::enable_if_t<std::is_integral_v<T> && !isCharacter<T>, int>;

} // namespace ze
