// Why OpenColorIO could not read a file, in a few words.

#pragma once

#include <string>

namespace ze::tool {

/// OpenColorIO tries all its readers and logs why each failed. Returns, on one line, the reasons of those
/// readers in its `log` that are meant for files with `extension` (with its dot, in lower case): only of
/// those that came furthest into the file, and the same reason only once, without the file's name `path`.
/// Empty when there are none.
std::string reasonsIn(const std::string& log, const std::string& extension, const std::string& path);

} // namespace ze::tool
