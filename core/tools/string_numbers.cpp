// Numbers as text.

#include "core/tools/ze_string.h"

#include <iterator>

namespace {

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
