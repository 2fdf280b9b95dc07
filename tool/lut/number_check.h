// Finds numbers in text files that OpenColorIO would read in part or as 0.

#pragma once

#include <string>

namespace ze::tool {

/// Looks at those lines of a look-up table, text or XML, on which every word is meant to be a number. Returns
/// a sentence with the first word that is malformed or not finite and its line, such as "0,5" or "nan", which
/// OpenColorIO takes for 0; empty when there is none. Comments, metadata and lines with other words are left
/// to OpenColorIO.
std::string findBadNumber(std::string text);

} // namespace ze::tool
