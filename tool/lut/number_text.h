// Numbers as text, with a decimal point in every locale.

#pragma once

#include <string>
#include <string_view>

namespace ze::tool {

/// The fewest digits that give the same number again: "0.1", "1e-05", "nan".
std::string numberText(float value);
/// With `decimals` digits after the point.
std::string numberText(double value, int decimals);

/// The finite number that is all of `text`; NaN when it is none.
float parsedNumber(std::string_view text);

} // namespace ze::tool
