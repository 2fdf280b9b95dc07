// Numbers to and from text, with a decimal point in every locale.

#pragma once

#include <string>
#include <string_view>

namespace ze::tool {

/// The shortest text that reads back as the same number: "0.1", "1e-05", "nan".
std::string numberText(float value);
/// With `decimals` digits after the point.
std::string numberText(double value, int decimals);

/// The number that `text` is from end to end; NaN when it is not a finite number.
float parsedNumber(std::string_view text);

/// Empty when `text` is a number from 0 to 1, otherwise a sentence that says it is none.
std::string checkAmount(const std::string& text);

} // namespace ze::tool
