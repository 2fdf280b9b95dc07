#include "tool/number_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace ze::tool {

std::string numberText(float value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string numberText(double value, int decimals) {
    char text[400]; // the largest doubles have 309 digits before the point
    return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr};
}

float parsedNumber(std::string_view text) {
    constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
    float value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isWhole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    return isWhole && std::isfinite(value) ? value : kNone;
}

std::string checkAmount(const std::string& text) {
    const float amount = parsedNumber(text);
    return amount >= 0 && amount <= 1 ? "" : "'" + text + "' is no number from 0 to 1";
}

} // namespace ze::tool
