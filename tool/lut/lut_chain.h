// Files of any kind that holds a color transform, one applied after the other.

#pragma once

#include "tool/lut/color_transform.h"
#include "tool/lut/lut_picture.h"

#include <string>
#include <vector>

namespace ze::tool {

using LutChain = std::vector<ColorTransform>;

/// How files are read that can be read in several ways.
struct ReadOptions {
    PictureLayout layout = PictureLayout::automatic; ///< Of pictures.
    std::string id; ///< Of the color correction to take from files of several; empty for the first.
};

/// Reads the transform in the file `path`, once; "-" is standard input. What is in the file tells whether it
/// is a LUT file, a picture of a table or a file of a grading program. The first two are interpolated as the
/// library draws them. Throws `Failure`, mostly `badInput`.
ColorTransform readTransform(const std::string& path, const ReadOptions& options = {});

/// Reads one file or more, in order, each with the same options. Throws `Failure` (`badInput`) as well when a
/// LUT file has levels that do not rise, and as `checkId` does.
LutChain readChain(const std::vector<std::string>& paths, const ReadOptions& options = {});

/// Throws `Failure` (`badInput`) when `id` is set and no file of `chain` has a color correction of that name.
void checkId(const LutChain& chain, const std::string& id);

/// Changes `colors` through all of `chain`, in float throughout.
void applyChain(const LutChain& chain, std::vector<Color>& colors);

/// The names of the files, for messages.
std::string namesOf(const LutChain& chain);

} // namespace ze::tool
