// Files that hold color corrections of the ASC: .cc, .ccc and .cdl.

#pragma once

#include "tool/errors.h"

#include <string>
#include <vector>

namespace ze::tool {

/// A color correction in the text of such a file.
struct Correction {
    std::string name; ///< Its id; "#2" for the second one in the file when it has none.
    size_t begin = 0; ///< Its element in the text.
    size_t end = 0;
};

/// The corrections in the XML `text`, in order. Empty when `text` is no such file.
std::vector<Correction> correctionsIn(std::string text);

std::vector<std::string> namesOf(const std::vector<Correction>& corrections);

/// What to say when `file` has corrections of these names only and not `id`.
Failure unknownCorrection(const std::string& file, const std::string& id,
                          const std::vector<std::string>& names);

/// `text` with nothing but `correction` in it, which makes it a .cc file. Lines keep their numbers.
std::string onlyCorrection(std::string text, const Correction& correction);

} // namespace ze::tool
