// Any units through UTF-8, code points and Latin-1: what these can hold comes back, the rest as its
// substitute.

#include "fuzz/fuzz_input.h"

#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::u16string units = FuzzInput(data, size).units();
    std::u16string throughUtf8, throughUcs4, throughLatin1;
    for (size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00, isLow = unit >= 0xDC00 && unit < 0xE000;
        const bool isFirst = isHigh && i + 1 < units.size() && units[i + 1] >> 10 == 0xDC00 >> 10;
        const bool isSecond = isLow && i > 0 && units[i - 1] >> 10 == 0xD800 >> 10;
        const bool isLone = (isHigh || isLow) && !isFirst && !isSecond;
        throughUtf8 += isLone ? u'?' : unit;
        throughUcs4 += isLone ? u'\xFFFD' : unit;
        throughLatin1 += unit > 0xFF ? u'?' : unit;
    }
    if (throughUtf8.rfind(u'\xFEFF', 0) == 0)
        throughUtf8.erase(0, 1); // a byte-order mark

    const CZeString text = CZeString::fromRawData(reinterpret_cast<const CZeChar*>(units.data()),
                                                  static_cast<int>(units.size()));
    require(isSame(CZeString::fromUtf8(text.toUtf8()), throughUtf8));
    const CZeList<char32_t> codePoints = text.toUcs4();
    require(isSame(CZeString::fromUcs4(codePoints.begin(), codePoints.size()), throughUcs4));
    require(isSame(CZeString::fromLatin1(text.toLatin1()), throughLatin1));
    CZeString own(text.unicode(), text.size());
    require(isSame(CZeString::fromLatin1(std::move(own).toLatin1()), throughLatin1));
    return 0;
}
