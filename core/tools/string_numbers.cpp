// Numbers as text, and back.

#include "core/tools/c_locale.h"
#include "core/tools/ze_string.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

namespace {

bool isSpace(char latin1) {
    return CZeChar(latin1).isSpace();
}

/// Whether `value` is one that the platform's functions return for numbers they cannot represent, or for
/// none.
template <class Number>
bool mayMeanFailure(Number value) {
    using Limits = std::numeric_limits<Number>;
    if constexpr (Limits::has_infinity)
        return value == 0 || std::isinf(value);
    else
        return value == 0 || value == Limits::min() || value == Limits::max();
}

/// Reads a number between white space with `read`, which takes its arguments as strtod does. False and 0
/// unless that is all of the text.
template <class Number, class Read>
bool parse(const CZeString& text, Number& value, Read read) {
    const CZeByteArray bytes = text.toLatin1();
    const char* const first = std::find_if_not(bytes.begin(), bytes.end(), isSpace);
    char* rest = const_cast<char*>(first); // where it stays when the base is none
    errno = 0;
    value = read(first, &rest);
    const bool isRead = !mayMeanFailure(value) || (errno == 0 && rest != first);
    const bool isOk = isRead && std::all_of<const char*>(rest, bytes.end(), isSpace);
    if (!isOk)
        value = 0;
    return isOk;
}

/// `value` as a `Narrow`; 0 and a false `ok` when it does not fit or was not read.
template <class Narrow, class Wide>
Narrow narrow(bool isRead, Wide value, bool* ok) {
    const bool isOk = isRead && std::in_range<Narrow>(value);
    if (ok)
        *ok = isOk;
    return isOk ? static_cast<Narrow>(value) : 0;
}

template <class Narrow>
Narrow toSigned(const CZeString& text, bool* ok, int base) {
    long long value = 0;
    const bool isRead = CZeString::toIntegral_helper(text, base, value);
    return narrow<Narrow>(isRead, value, ok);
}

template <class Narrow>
Narrow toUnsigned(const CZeString& text, bool* ok, int base) {
    unsigned long long value = 0;
    const bool isRead = CZeString::toIntegral_helper(text, base, value);
    return narrow<Narrow>(isRead, value, ok);
}

/// The digits of `magnitude`, most significant first, behind a minus sign if `isNegative`.
CZeString formatInteger(unsigned long magnitude, bool isNegative, int base) {
    const unsigned long radix = base < 2 || base > 36 ? 10 : static_cast<unsigned long>(base);
    char text[1 + 64];
    char* const end = std::end(text);
    char* first = end;
    do {
        *--first = "0123456789abcdefghijklmnopqrstuvwxyz"[magnitude % radix];
        magnitude /= radix;
    } while (magnitude != 0);
    if (isNegative)
        *--first = '-';
    return CZeString::fromLatin1(first, static_cast<int>(end - first));
}

} // namespace

bool CZeString::toIntegral_helper(const CZeString& text, int base, long long& value) {
    return parse(text, value,
                 [base](const char* from, char** rest) { return std::strtoll(from, rest, base); });
}

bool CZeString::toIntegral_helper(const CZeString& text, int base, unsigned long long& value) {
    return parse(text, value,
                 [base](const char* from, char** rest) { return std::strtoull(from, rest, base); });
}

long long CZeString::toLongLong(bool* ok, int base) const {
    return toSigned<long long>(*this, ok, base);
}

unsigned long long CZeString::toULongLong(bool* ok, int base) const {
    return toUnsigned<unsigned long long>(*this, ok, base);
}

long CZeString::toLong(bool* ok, int base) const {
    return toSigned<long>(*this, ok, base);
}

unsigned long CZeString::toULong(bool* ok, int base) const {
    return toUnsigned<unsigned long>(*this, ok, base);
}

int CZeString::toInt(bool* ok, int base) const {
    return toSigned<int>(*this, ok, base);
}

unsigned int CZeString::toUInt(bool* ok, int base) const {
    return toUnsigned<unsigned int>(*this, ok, base);
}

short CZeString::toShort(bool* ok, int base) const {
    return toSigned<short>(*this, ok, base);
}

unsigned short CZeString::toUShort(bool* ok, int base) const {
    return toUnsigned<unsigned short>(*this, ok, base);
}

double CZeString::toDouble(bool* ok) const {
    double value = 0;
    const ze::InCLocale scope;
    const bool isOk =
        parse(*this, value, [](const char* from, char** rest) { return std::strtod(from, rest); });
    if (ok)
        *ok = isOk;
    return value;
}

float CZeString::toFloat(bool* ok) const {
    bool isOk = false;
    const double value = toDouble(&isOk);
    const auto rounded = static_cast<float>(value);
    // The largest float may be written as a number slightly above it, so only rounding shows what is too
    // large.
    const bool isTooLarge = std::isinf(rounded) && !std::isinf(value);
    isOk = isOk && !isTooLarge;
    if (ok)
        *ok = isOk;
    return isOk ? rounded : 0.0f;
}

CZeString& CZeString::setNum(long value, int base) {
    const auto bits = static_cast<unsigned long>(value);
    return *this = formatInteger(value < 0 ? 0 - bits : bits, value < 0, base);
}

CZeString& CZeString::setNum(unsigned long value, int base) {
    return *this = formatInteger(value, false, base);
}

CZeString& CZeString::setNum(double value, char format, int precision) {
    return *this = fromLatin1(CZeByteArray().setNum(value, format, precision));
}
