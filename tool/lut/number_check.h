// Numbers in text files that other programs would half read.

#pragma once

#include <string>

namespace ze::tool {

/// Looks at the lines of a look-up table as text or XML in which everything is meant to be a number, and
/// names the first that is none or not finite, with its line: "0,5" and "nan", which OpenColorIO takes for 0.
/// Empty when there is no such line. Comments, metadata and lines with words are left to OpenColorIO.
std::string findBadNumber(std::string text);

} // namespace ze::tool
