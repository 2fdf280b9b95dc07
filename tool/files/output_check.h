// Checks of output files before any work is done.

#pragma once

#include <string>

namespace ze::tool {

/// Throws `Failure` (`usage`) when `path` is a folder.
void refuseFolder(const std::string& path);

/// The same, and also when it is a file and `overwrite` is not set.
void checkOutput(const std::string& path, bool overwrite);

/// The same checks for what has to have `extension` (with its dot, in lower case), in any case, unless it is
/// standard output or the like.
void checkOutput(const std::string& path, bool overwrite, const std::string& extension);

} // namespace ze::tool
