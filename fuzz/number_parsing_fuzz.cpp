// Any text as a number, against strtoll, strtod and their like on what lies between the white space.

#include "fuzz/fuzz_input.h"
#include "fuzz/plain_rules.h"

#include <utility>

static void checkReal(const CZeString& text, const std::string& inner) {
    double real = 0;
    bool isReal = isNumber(inner, real, std::strtod), ok = !isReal;
    const auto same = [](auto l, auto r) { return l == r || (std::isnan(l) && std::isnan(r)); };
    require(same(text.toDouble(&ok), isReal ? real : 0) && ok == isReal);
    const auto rounded = static_cast<float>(real);
    isReal = isReal && std::isinf(rounded) == std::isinf(real);
    require(same(text.toFloat(&ok), isReal ? rounded : 0) && ok == isReal);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput input(data, size);
    const int base = input.byte() % 39 - 1;
    const std::string all = input.text(), inner = withoutSpace(all);
    const CZeString text = CZeString::fromLatin1(all.data(), static_cast<int>(all.size()));

    long long wide = 0;
    unsigned long long wideUnsigned = 0;
    const bool isWide = isNumber(inner, wide, [&](auto... to) { return std::strtoll(to..., base); });
    const bool isUnsigned =
        isNumber(inner, wideUnsigned, [&](auto... to) { return std::strtoull(to..., base); });
    const auto check = [&]<class To, class Wide>(To (CZeString::*parse)(bool*, int) const, Wide expected,
                                                 bool isOk) {
        bool ok = !isOk;
        const To value = (text.*parse)(&ok, base);
        isOk = isOk && std::in_range<To>(expected);
        require(ok == isOk && value == (isOk ? static_cast<To>(expected) : 0));
    };
    check(&CZeString::toShort, wide, isWide);
    check(&CZeString::toInt, wide, isWide);
    check(&CZeString::toLong, wide, isWide);
    check(&CZeString::toLongLong, wide, isWide);
    check(&CZeString::toUShort, wideUnsigned, isUnsigned);
    check(&CZeString::toUInt, wideUnsigned, isUnsigned);
    check(&CZeString::toULong, wideUnsigned, isUnsigned);
    check(&CZeString::toULongLong, wideUnsigned, isUnsigned);
    checkReal(text, inner);
    if (isWide && base >= 2 && base <= 36)
        require(CZeString::number(static_cast<long>(wide), base).toLongLong(nullptr, base) == wide);
    return 0;
}
