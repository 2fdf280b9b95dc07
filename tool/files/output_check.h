// Checks of output files before any work is done.

#pragma once

#include "tool/pictures/picture_writer.h"

#include <string>

namespace ze::tool {

/// Returns the format that the extension of `path` asks for. Throws `Failure` (`usage`) when it asks for
/// none, when `path` is a directory, and when it exists and `overwrite` is not set.
PictureFormat checkOutput(const std::string& path, bool overwrite);

/// The same checks for a file that has to have `extension` (with its dot, in lower case), in any case.
void checkOutput(const std::string& path, bool overwrite, const std::string& extension);

} // namespace ze::tool
