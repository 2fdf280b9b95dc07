// The checks on output files that come before any work.

#pragma once

#include "tool/picture_writer.h"

#include <string>

namespace ze::tool {

/// The format for an output file `path`. Throws `Failure` (`usage`) when its extension names none, when it is
/// a directory, and when it exists and `overwrite` is not set.
PictureFormat checkTarget(const std::string& path, bool overwrite);

} // namespace ze::tool
