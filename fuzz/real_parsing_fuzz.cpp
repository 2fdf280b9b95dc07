// Any text as a floating-point number, against strtod on what lies between the white space.

#include "fuzz/fuzz_input.h"
#include "fuzz/plain_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string all = FuzzInput(data, size).text(), inner = withoutSpace(all);
    const CZeString text = CZeString::fromLatin1(all.data(), static_cast<int>(all.size()));
    double real = 0;
    bool isReal = isNumber(inner, real, std::strtod), ok = !isReal;
    const auto same = [](auto l, auto r) { return l == r || (std::isnan(l) && std::isnan(r)); };
    require(same(text.toDouble(&ok), isReal ? real : 0) && ok == isReal);
    const auto rounded = static_cast<float>(real);
    isReal = isReal && std::isinf(rounded) == std::isinf(real);
    require(same(text.toFloat(&ok), isReal ? rounded : 0) && ok == isReal);
    return 0;
}
