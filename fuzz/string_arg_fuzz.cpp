// Any pattern and argument of `arg`, against a plain search for the lowest escape.

#include "fuzz/fuzz_input.h"
#include "fuzz/plain_rules.h"
#include "log/log_settings.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ZeSetLogFilter(0);
    FuzzInput input(data, size);
    const int width = static_cast<int8_t>(input.byte()), base = 2 + input.byte() % 35,
              precision = input.byte() % 50;
    const char fill = static_cast<char>(input.byte());
    const size_t formatIndex = input.byte() % 3;
    const std::string pattern = input.text(input.byte()), given = input.text();
    const CZeString text = CZeString::fromLatin1(pattern.data(), static_cast<int>(pattern.size()));
    const auto check = [&](const CZeString& result, const std::string& argument) {
        const std::string expected = replaceLowest(pattern, padded(argument, width, fill));
        require(result == CZeLatin1String(expected.data(), static_cast<int>(expected.size())));
    };
    const CZeLatin1String view(given.data(), static_cast<int>(given.size()));
    const CZeString string(view);
    check(text.arg(string, width, CZeChar(fill)), given);
    check(text.arg(CZeStringRef(&string), width, CZeChar(fill)), given);
    check(text.arg(view, width, CZeChar(fill)), given);
    check(text.arg(fill, width, CZeChar(fill)), std::string(1, fill));

    const long number = std::strtol(given.c_str(), nullptr, 36);
    check(text.arg(number, width, base, CZeChar(fill)), formatted(number, base));
    const auto bits = static_cast<unsigned long>(number);
    check(text.arg(bits, width, base, CZeChar(fill)), formatted(bits, base));
    const double real = std::strtod(given.c_str(), nullptr);
    using enum std::chars_format;
    const auto format = std::array{scientific, fixed, general}[formatIndex];
    check(text.arg(real, width, "efg"[formatIndex], precision, CZeChar(fill)),
          formatted(real, format, precision).substr(0, 127));
    return 0;
}
