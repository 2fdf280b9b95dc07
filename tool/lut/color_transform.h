// What a file of any kind does to colors.

#pragma once

#include "tool/lut/color_table.h"

#include <functional>
#include <optional>
#include <string>

namespace ze::tool {

/// `ColorTransform::format` of LUT files.
inline constexpr char kLutFileFormat[] = "LUT file";

struct ColorTransform {
    std::string name;   ///< Of the file, for messages.
    std::string format; ///< As above, "lookup picture", "Hald CLUT", or OpenColorIO's name for it.
    std::optional<ColorTable> table; ///< The entries themselves, of LUT files and pictures.

    // Of files of grading programs, as far as they tell
    std::vector<std::string> steps; ///< One after the other: "3D table of 33 levels", "matrix".
    std::string id;
    std::string description;
    std::vector<std::string> corrections; ///< The names of all color corrections in the file.

    /// Changes colors in place. They and the results may lie outside 0 to 1.
    std::function<void(std::vector<Color>&)> apply;

    bool isLutFile() const { return table && format == kLutFileFormat; }
};

} // namespace ze::tool
