// The implicitly shared UTF-16 string.

#pragma once

#include "core/export.h"
#include "core/tools/byte_array.h"
#include "core/tools/latin1_string.h"
#include "core/tools/list.h"
#include "core/tools/shared_array.h"
#include "core/tools/ze_char.h"
#include "core/tools/ze_namespace.h"

class CZeString;
class CZeStringRef;
namespace ze {
class TextArgument;
/// A string that shares the static `block`. Takes no memory.
CZeString sharedText(SZeArrayData& block);
} // namespace ze

/// What splitting gives.
using CZeStringList = CZeList<CZeString>;
/// What splitting into views gives.
using CZeStringRefList = CZeList<CZeStringRef>;

/// UTF-16 text in one shared block. Copies are cheap and independent: changing a string whose block is shared
/// first makes a private copy. Sizes and positions count units, not code points. A zero unit, not counted in
/// the size, always follows the last unit (except in a string that wraps foreign memory). A null string is an
/// empty one that was never given contents; an operation that leaves nothing gives an empty string that is
/// not null. The two compare equal.
///
/// Sizes are at most about 2^30. Nothing throws: when there is no memory, or the size would be too large, a
/// change leaves the string as it was, and a construction or conversion gives a null result. Different
/// objects may be used on different threads at once, even when they are copies of each other. Units passed by
/// pointer may belong to the string that is changed.
class ZE_EXPORT CZeString {
public:
    /// What splitting does with parts that have no units.
    enum SplitBehavior { KeepEmptyParts, SkipEmptyParts };

    /// The null string.
    CZeString() = default;
    /// Copies `size` units, or up to the terminating zero when `size` is negative. A null pointer gives the
    /// null string, a size of 0 the empty one.
    CZeString(const CZeChar* units, int size = -1);
    /// `count` times `unit`; a count below 1 gives the empty string.
    CZeString(int count, CZeChar unit);
    CZeString(int count, char16_t unit) : CZeString(count, CZeChar(unit)) {}
    CZeString(int count, char latin1) : CZeString(count, CZeChar(latin1)) {}
    /// `count` units (below 0: none) for the caller to fill.
    CZeString(int count, Ze::Initialization);
    /// The unit or a copy of the text.
    CZeString(CZeChar unit);
    CZeString(CZeLatin1String text);
    CZeString(const CZeStringRef& text);

    /// Replaces the contents by the unit or a copy of the text.
    CZeString& operator=(CZeChar unit) { return *this = CZeString(unit); }
    CZeString& operator=(CZeLatin1String text) { return *this = CZeString(text); }

    /// Wraps `size` units without copying them. They must outlive the string and its copies and stay
    /// unchanged. The string never writes to them: cutting off its end shortens the view, any other change
    /// takes a private copy. A null pointer gives the null string, a size below 1 the empty one.
    static CZeString fromRawData(const CZeChar* units, int size);
    CZeString& setRawData(const CZeChar* units, int size) { return *this = fromRawData(units, size); }
    /// Replaces the contents by a copy of `units`, as the constructor takes them.
    CZeString& setUnicode(const CZeChar* units, int size) { return *this = CZeString(units, size); }

    /// The number of units.
    int size() const { return m_array.size(); }
    int length() const { return m_array.size(); }
    /// Units that fit into the block, terminator included; 0 for null, empty and wrapping strings.
    int capacity() const { return static_cast<int>(m_array.capacity()); }
    /// Whether there are no units.
    bool isEmpty() const { return m_array.size() == 0; }
    /// Whether the string was never given contents.
    bool isNull() const { return m_array.isNull(); }

    /// The units, valid until the string changes.
    const CZeChar* unicode() const { return m_array.units(); }
    const CZeChar* constData() const { return m_array.units(); }
    const CZeChar* data() const { return m_array.units(); }
    /// The same for writing. Null when this takes a private copy and there is no memory for it.
    CZeChar* data() { return m_array.detach() ? m_array.units() : nullptr; }
    /// The range of the units.
    const CZeChar* begin() const { return m_array.units(); }
    const CZeChar* end() const { return m_array.units() + m_array.size(); }
    /// The units with a terminating zero. A string that wraps foreign memory takes a private copy for this,
    /// which counts as a change; null when there is no memory.
    const char16_t* utf16() const;

    /// The unit at `index`, from 0 to `size()` − 1.
    CZeChar at(int index) const { return m_array.units()[index]; }
    CZeChar operator[](int index) const { return m_array.units()[index]; }
    /// The same for writing.
    CZeChar& operator[](int index) { return data()[index]; }

    // Storage

    /// Sets the size; a negative one counts as 0, new units are uninitialized. Growth is geometric; the block
    /// shrinks only when the new size falls below half of its capacity and no capacity was reserved.
    void resize(int size) { m_array.resize(size); }
    /// The same with `fill` in every new unit.
    void resize(int size, CZeChar fill);
    /// Makes room for `size` units and keeps it when the string gets shorter.
    void reserve(int size);
    /// Moves the units into a private block of `capacity` units, terminator included, dropping those that do
    /// not fit. With `grow` the capacity is rounded up geometrically.
    void reallocData(uint32_t capacity, bool grow);
    /// Adds spaces until there is a unit at `position`.
    void expand(int position);
    /// Cuts the string at `position` when it is longer; a negative one counts as 0.
    void truncate(int position);
    /// Removes the last `count` units, all of them when there are fewer.
    void chop(int count);
    /// Sets every unit to `unit`, after resizing to `size` unless that is negative.
    CZeString& fill(CZeChar unit, int size = -1);
    /// Whether no unit belongs to a script that is written from right to left or needs shaping. Code points
    /// above U+FFFF count as simple.
    bool isSimpleText() const;

    // Conversion in: `size` counts the elements of the source, a negative one means up to its terminating
    // zero. A null pointer gives the null string, no elements the empty one.

    /// Latin-1 (ISO-8859-1) text, and ASCII as a part of it.
    static CZeString fromLatin1(const char* text, int size = -1);
    static CZeString fromLatin1(const CZeByteArray& text);
    static CZeString fromAscii(const char* text, int size = -1) { return fromLatin1(text, size); }
    /// Text in the local encoding, which is UTF-8.
    static CZeString fromLocal8Bit(const char* text, int size = -1) { return fromUtf8(text, size); }
    static CZeString fromLocal8Bit(const CZeByteArray& text) { return fromUtf8(text); }
    /// A byte-order mark at the start is dropped. Each maximal part of malformed text becomes one U+FFFD.
    static CZeString fromUtf8(const char* text, int size = -1);
    static CZeString fromUtf8(const CZeByteArray& text);
    /// Units in the byte order of the machine, taken as they are.
    static CZeString fromUtf16(const char16_t* units, int size = -1);
    /// Code points; what is none (a surrogate, or above U+10FFFF) becomes U+FFFD.
    static CZeString fromUcs4(const char32_t* codePoints, int size = -1);

    // Conversion out: a null string gives a null byte array.

    /// Units above 0xFF become '?'. A temporary string with a block of its own lends it to the result.
    CZeByteArray toLatin1() const& { return toLatin1_helper(*this); }
    CZeByteArray toLatin1() && { return toLatin1_helper_inplace(*this); }
    CZeByteArray toLocal8Bit() const { return toLocal8Bit_helper(*this); }
    /// An unpaired surrogate becomes '?'.
    CZeByteArray toUtf8() const { return toUtf8_helper(*this); }
    /// The code points; an unpaired surrogate becomes U+FFFD.
    CZeList<char32_t> toUcs4() const { return toUcs4_helper(*this); }

    // Editing

    /// Inserts at `position`. Spaces fill the string up to a position behind the end; for a negative one
    /// nothing happens.
    CZeString& insert(int position, const CZeChar* units, int size);
    CZeString& insert(int position, const CZeString& text);
    CZeString& insert(int position, const CZeStringRef& text);
    CZeString& insert(int position, CZeLatin1String text);
    CZeString& insert(int position, CZeChar unit) { return insert(position, &unit, 1); }

    /// Appends. Arguments without units change nothing, except that an empty string that is not null gives
    /// this string a block of its own. Appending a string to the null string makes that a shared copy.
    CZeString& append(const CZeString& text);
    CZeString& append(const CZeChar* units, int size) {
        CZeChar* const room = units ? m_array.extend(size) : nullptr;
        if (!room)
            return insert(this->size(), units, size);
        std::memcpy(room, units, static_cast<size_t>(size) * sizeof(CZeChar));
        return *this;
    }
    CZeString& append(const CZeStringRef& text) { return insert(size(), text); }
    CZeString& append(CZeLatin1String text) { return insert(size(), text); }
    CZeString& append(CZeChar unit) {
        CZeChar* const room = m_array.extend(1);
        if (!room)
            return insert(size(), &unit, 1);
        *room = unit;
        return *this;
    }

    /// Removes `count` units at `position`; a negative position counts from the end, a negative count reaches
    /// up to it. Nothing happens when the position lies outside.
    CZeString& remove(int position, int count);
    /// Removes every occurrence, from the left; nothing for an empty text.
    CZeString& remove(const ze::TextArgument& text, Ze::CaseSensitivity cs = Ze::CaseSensitive);
    template <class Character, ze::IfCharacters<Character> = 0>
    CZeString& remove(Character character, Ze::CaseSensitivity cs = Ze::CaseSensitive) {
        const CZeChar unit(character);
        return replace_helper(&unit, 1, nullptr, 0, cs);
    }
    /// A character is no position.
    template <class Character, ze::IfCharacters<Character> = 0>
    CZeString& remove(Character position, int count) = delete;

    /// Replaces the range that `remove` would remove by `after`.
    CZeString& replace(int position, int count, const ze::TextArgument& after);
    /// Replaces every occurrence of `before` by `after`, from the left. Occurrences do not overlap, and what
    /// was put in is not searched. Nothing happens for an empty `before`.
    CZeString& replace(const ze::TextArgument& before, const ze::TextArgument& after,
                       Ze::CaseSensitivity cs = Ze::CaseSensitive);
    template <class Before, class After, ze::IfCharacters<Before, After> = 0>
    CZeString& replace(Before before, After after, Ze::CaseSensitivity cs = Ze::CaseSensitive) {
        const CZeChar units[] = {before, after};
        return replace_helper(units, 1, units + 1, 1, cs);
    }
    /// A character is no position.
    template <class Character, ze::IfCharacters<Character> = 0>
    CZeString& replace(Character position, int count, const ze::TextArgument& after) = delete;

    /// The text `times` times in a row; the empty string for a count below 1. Null stays null.
    CZeString repeated(int times) const;
    /// The text padded to `width` units with `fill` at its end (left) or start (right). A longer text is
    /// returned whole, or with `truncate` cut to its first `width` units.
    CZeString leftJustified(int width, CZeChar fill = ' ', bool truncate = false) const;
    CZeString rightJustified(int width, CZeChar fill = ' ', bool truncate = false) const;
    /// The text with &lt; &gt; &amp; and &quot; in place of these four characters.
    CZeString toHtmlEscaped() const;

    /// As `append`.
    CZeString& operator+=(const CZeString& text) { return append(text); }
    CZeString& operator+=(const CZeStringRef& text) { return append(text); }
    CZeString& operator+=(CZeLatin1String text) { return append(text); }
    CZeString& operator+=(CZeChar unit) { return append(unit); }
    /// Both texts in a row; the left one alone when there is no memory.
    friend CZeString operator+(CZeString left, const CZeString& right) {
        return std::move(left.append(right));
    }
    friend CZeString operator+(CZeString left, CZeLatin1String right) {
        return std::move(left.append(right));
    }
    friend CZeString operator+(CZeString left, CZeChar right) { return std::move(left.append(right)); }

    // Search, for a string, a view, a Latin-1 text or a unit. Without case A to Z, and no other letters,
    // count as a to z. An empty text, null or not, is found at every position up to and including the end.

    /// The position of the first occurrence at or behind `from`, −1 for none. A negative `from` counts from
    /// the end and is at least the start.
    int indexOf(const ze::TextArgument& text, int from = 0, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    /// The position of the last occurrence that starts at or before `from`, −1 for none. A negative `from`
    /// counts from the end, so that −1 is the last unit.
    int lastIndexOf(const ze::TextArgument& text, int from = -1,
                    Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    /// The number of occurrences, those that overlap included.
    int count(const ze::TextArgument& text, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    /// Whether the text stands at the start, or at the end.
    bool startsWith(const ze::TextArgument& text, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    bool endsWith(const ze::TextArgument& text, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;

    // Comparison

    /// Below, at or above 0 as this string sorts before, with or behind the other. With case the first
    /// differing units give the result by their difference, else the sizes do. Without case A to Z, and no
    /// other letters, count as a to z; the first differing code points decide, then the longer text sorts
    /// behind (±1).
    int compare(const CZeString& other, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    int compare(const CZeStringRef& other, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    /// Without case a null view sorts behind every other text, even behind an empty one.
    int compare(CZeLatin1String other, Ze::CaseSensitivity cs = Ze::CaseSensitive) const;

    /// As `compare` with case.
    friend bool operator==(const CZeString& l, const CZeString& r) { return l.isEqual(r); }
    friend bool operator!=(const CZeString& l, const CZeString& r) { return !l.isEqual(r); }
    friend bool operator<(const CZeString& l, const CZeString& r) { return l.compare(r) < 0; }
    friend bool operator>(const CZeString& l, const CZeString& r) { return l.compare(r) > 0; }
    friend bool operator<=(const CZeString& l, const CZeString& r) { return l.compare(r) <= 0; }
    friend bool operator>=(const CZeString& l, const CZeString& r) { return l.compare(r) >= 0; }
    friend bool operator==(const CZeString& l, CZeLatin1String r) { return l.compare(r) == 0; }
    friend bool operator!=(const CZeString& l, CZeLatin1String r) { return l.compare(r) != 0; }
    friend bool operator<(const CZeString& l, CZeLatin1String r) { return l.compare(r) < 0; }
    friend bool operator>(const CZeString& l, CZeLatin1String r) { return l.compare(r) > 0; }
    friend bool operator<=(const CZeString& l, CZeLatin1String r) { return l.compare(r) <= 0; }
    friend bool operator>=(const CZeString& l, CZeLatin1String r) { return l.compare(r) >= 0; }
    friend bool operator==(CZeLatin1String l, const CZeString& r) { return r == l; }
    friend bool operator!=(CZeLatin1String l, const CZeString& r) { return r != l; }
    friend bool operator<(CZeLatin1String l, const CZeString& r) { return r > l; }
    friend bool operator>(CZeLatin1String l, const CZeString& r) { return r < l; }
    friend bool operator<=(CZeLatin1String l, const CZeString& r) { return r >= l; }
    friend bool operator>=(CZeLatin1String l, const CZeString& r) { return r <= l; }

    // Pieces. The views of the Ref variants point into this string object: it must outlive them unchanged.

    /// `count` units from `position`, up to the end for a negative count. A position behind the end gives the
    /// null string, one at the end the empty string; what lies before the first unit is dropped from the
    /// range.
    CZeString mid(int position, int count = -1) const { return CZeString(m_array.slice(position, count)); }
    /// The first or the last `count` units; all of them when there are fewer or `count` is negative.
    CZeString left(int count) const { return CZeString(m_array.slice(0, count)); }
    CZeString right(int count) const { return CZeString(m_array.sliceRight(count)); }
    /// The same as views.
    CZeStringRef midRef(int position, int count = -1) const;
    CZeStringRef leftRef(int count) const;
    CZeStringRef rightRef(int count) const;

    /// The parts between the occurrences of `separator`, at least one when empty parts are kept. An empty
    /// separator lies before, between and behind all units. An empty list when there is no memory.
    CZeStringList split(const CZeString& separator, SplitBehavior behavior = KeepEmptyParts,
                        Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    CZeStringList split(CZeChar separator, SplitBehavior behavior = KeepEmptyParts,
                        Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    /// The same as views.
    CZeStringRefList splitRef(const CZeString& separator, SplitBehavior behavior = KeepEmptyParts,
                              Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    CZeStringRefList splitRef(CZeChar separator, SplitBehavior behavior = KeepEmptyParts,
                              Ze::CaseSensitivity cs = Ze::CaseSensitive) const;

    /// Of the parts that `split` gives, those from `first` to `last` with the separators between them. Parts
    /// count from 0, or backwards from −1 for the last. The null string when the range contains no part.
    CZeString section(const CZeString& separator, int first, int last = -1,
                      Ze::CaseSensitivity cs = Ze::CaseSensitive) const;
    CZeString section(CZeChar separator, int first, int last = -1,
                      Ze::CaseSensitivity cs = Ze::CaseSensitive) const;

    // Cleaning

    /// The text without the white space (CZeChar::isSpace) at both ends. A temporary string gives its block
    /// to the result if it alone owns it, here and below.
    CZeString trimmed() const& { return trimmed_helper(*this); }
    CZeString trimmed() && { return trimmed_helper(std::move(*this)); }

    /// The trimmed text with one space in place of each run of white space.
    CZeString simplified() const& { return simplified_helper(*this); }
    CZeString simplified() && { return simplified_helper(std::move(*this)); }

    /// The text with each code point in its simple case mapping in Unicode (core/tools/case_table.cpp names
    /// the version), so the size stays. Unpaired surrogates and what has no counterpart stay as they are.
    CZeString toLower() const& { return toLower_helper(*this); }
    CZeString toLower() && { return toLower_helper(std::move(*this)); }
    CZeString toUpper() const& { return toUpper_helper(*this); }
    CZeString toUpper() && { return toUpper_helper(std::move(*this)); }

    // Numbers in

    /// The text as a number. Apart from white space (CZeChar::isSpace) at both ends, all of it must be a
    /// number as strtoll, strtoull and strtod read it in the "C" locale; base 0 goes by the prefix "0" or
    /// "0x". If it is not, or does not fit the type, `ok` (unless null) becomes false and the result is 0. A
    /// minus sign before an unsigned number negates within 64 bits. "inf" and "nan" are numbers. A number too
    /// small for a double fails; one that only a float cannot hold becomes 0.
    long long toLongLong(bool* ok = nullptr, int base = 10) const;
    unsigned long long toULongLong(bool* ok = nullptr, int base = 10) const;
    long toLong(bool* ok = nullptr, int base = 10) const;
    unsigned long toULong(bool* ok = nullptr, int base = 10) const;
    int toInt(bool* ok = nullptr, int base = 10) const;
    unsigned int toUInt(bool* ok = nullptr, int base = 10) const;
    short toShort(bool* ok = nullptr, int base = 10) const;
    unsigned short toUShort(bool* ok = nullptr, int base = 10) const;
    double toDouble(bool* ok = nullptr) const;
    float toFloat(bool* ok = nullptr) const;

    // Numbers out

    /// Replaces the contents by the number: lower-case digits in bases 2 to 36, any other base counts as 10;
    /// a minus sign in every base.
    CZeString& setNum(int value, int base = 10) { return setNum(static_cast<long>(value), base); }
    CZeString& setNum(unsigned int value, int base = 10) {
        return setNum(static_cast<unsigned long>(value), base);
    }
    CZeString& setNum(long value, int base = 10);
    CZeString& setNum(unsigned long value, int base = 10);
    /// Formats as CZeByteArray::setNum does.
    CZeString& setNum(double value, char format = 'g', int precision = 6);

    /// The number as `setNum` writes it.
    static CZeString number(int value, int base = 10) { return number(static_cast<long>(value), base); }
    static CZeString number(unsigned int value, int base = 10) {
        return number(static_cast<unsigned long>(value), base);
    }
    static CZeString number(long value, int base = 10) { return std::move(CZeString().setNum(value, base)); }
    static CZeString number(unsigned long value, int base = 10) {
        return std::move(CZeString().setNum(value, base));
    }
    static CZeString number(double value, char format = 'g', int precision = 6) {
        return std::move(CZeString().setNum(value, format, precision));
    }

    // Formatting

    /// A copy with the argument in place of every occurrence of the lowest escape, %0 to %99, so that chained
    /// calls fill %1, %2 and so on. `fill` pads the argument to the field width, before it when that
    /// is positive, behind it when negative. Without an escape the copy is unchanged and a warning with the
    /// text and the argument is logged, integers in decimal. A result that would be too long is the null
    /// string.
    CZeString arg(const CZeString& argument, int fieldWidth = 0, CZeChar fill = ' ') const;
    CZeString arg(const CZeStringRef& argument, int fieldWidth = 0, CZeChar fill = ' ') const;
    CZeString arg(CZeLatin1String argument, int fieldWidth = 0, CZeChar fill = ' ') const;
    CZeString arg(CZeChar argument, int fieldWidth = 0, CZeChar fill = ' ') const;
    CZeString arg(char argument, int fieldWidth = 0, CZeChar fill = ' ') const;
    CZeString arg(char16_t argument, int fieldWidth = 0, CZeChar fill = ' ') const {
        return arg(CZeChar(argument), fieldWidth, fill);
    }
    template <class Character, class Fill, ze::IfCharacters<Character, Fill> = 0>
    CZeString arg(Character argument, int fieldWidth, Fill fill) const {
        return arg(CZeChar(argument), fieldWidth, CZeChar(fill));
    }
    CZeString arg(long argument, int fieldWidth = 0, int base = 10, CZeChar fill = ' ') const;
    CZeString arg(unsigned long argument, int fieldWidth = 0, int base = 10, CZeChar fill = ' ') const;
    CZeString arg(int argument, int fieldWidth = 0, int base = 10, CZeChar fill = ' ') const {
        return arg(static_cast<long>(argument), fieldWidth, base, fill);
    }
    CZeString arg(unsigned int argument, int fieldWidth = 0, int base = 10, CZeChar fill = ' ') const {
        return arg(static_cast<unsigned long>(argument), fieldWidth, base, fill);
    }
    template <class Integer, class Fill, ze::IfInteger<Integer> = 0, ze::IfCharacters<Fill> = 0>
    CZeString arg(Integer argument, int fieldWidth, int base, Fill fill) const {
        return arg(argument, fieldWidth, base, CZeChar(fill));
    }
    /// A character is no base.
    template <class Integer, class Fill, ze::IfInteger<Integer> = 0, ze::IfCharacters<Fill> = 0>
    CZeString arg(Integer argument, int fieldWidth, Fill fill) const = delete;
    /// With the number formatted as `number` does it.
    CZeString arg(double argument, int fieldWidth = 0, char format = 'g', int precision = 6,
                  CZeChar fill = ' ') const;

    // The workers behind the members above

    /// Does what the member of that name does. Ranges are given by their first element, which is null only in
    /// comparisons and where there are no units, and their size, which is not negative.
    static CZeString fromLatin1_helper(const char* text, int size);
    static CZeString fromAscii_helper(const char* text, int size) { return fromLatin1_helper(text, size); }
    static CZeString fromLocal8Bit_helper(const char* text, int size) { return fromUtf8_helper(text, size); }
    static CZeString fromUtf8_helper(const char* text, int size);
    static CZeByteArray toLatin1_helper(const CZeString& text);
    /// Turns the block of `text` into that of the result where no other string shares it.
    static CZeByteArray toLatin1_helper_inplace(CZeString& text);
    /// As the members.
    static CZeByteArray toLocal8Bit_helper(const CZeString& text) { return toUtf8_helper(text); }
    static CZeByteArray toUtf8_helper(const CZeString& text);
    static CZeList<char32_t> toUcs4_helper(const CZeString& text);
    /// As `compare`. Without case a null range sorts behind every other; two ranges with the same start by
    /// their sizes.
    static int compare_helper(const CZeChar* left, int leftSize, const CZeChar* right, int rightSize,
                              Ze::CaseSensitivity cs);
    static int compare_helper(const CZeChar* left, int leftSize, CZeLatin1String right,
                              Ze::CaseSensitivity cs);
    /// As the member.
    static CZeString trimmed_helper(const CZeString& text);
    /// Uses the block of `text` for the result where no other string shares it; so do the next ones.
    static CZeString trimmed_helper(CZeString&& text);
    static CZeString simplified_helper(const CZeString& text);
    static CZeString simplified_helper(CZeString&& text);
    static CZeString toLower_helper(const CZeString& text);
    static CZeString toLower_helper(CZeString&& text);
    static CZeString toUpper_helper(const CZeString& text);
    static CZeString toUpper_helper(CZeString&& text);
    /// As `replace`.
    CZeString& replace_helper(const CZeChar* before, int beforeSize, const CZeChar* after, int afterSize,
                              Ze::CaseSensitivity cs);
    /// Returns whether the text is a number, which `value` then is, else 0.
    static bool toIntegral_helper(const CZeString& text, int base, long long& value);
    static bool toIntegral_helper(const CZeString& text, int base, unsigned long long& value);

private:
    friend CZeString ze::sharedText(SZeArrayData& block); // for a text that must need no memory

    explicit CZeString(ze::SharedArray<CZeChar> array) : m_array(std::move(array)) {}

    bool isEqual(const CZeString& other) const;
    CZeChar* openGap(int position, int size);

    mutable ze::SharedArray<CZeChar> m_array; // mutable for `utf16`
};

#include "core/tools/string_ref.h" // completes what the members take and return
