// The checks on output files that come before any work.

#pragma once

#include "tool/pictures/picture_writer.h"

#include <string>

namespace ze::tool {

/// The format for a picture to be written to `path`. Throws `Failure` (`usage`) when its extension names
/// none, when it is a directory, and when it exists and `overwrite` is not set.
PictureFormat checkTarget(const std::string& path, bool overwrite);

/// The same for a file that has to have `extension`, in small or capital letters.
void checkTarget(const std::string& path, bool overwrite, const std::string& extension);

} // namespace ze::tool
