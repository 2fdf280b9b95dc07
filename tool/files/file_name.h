// File names on their way into the library.

#pragma once

#include "core/tools/ze_string.h"

#include <string>

namespace ze::tool {

/// `path` as the library's files take it. Throws `Failure` (`usage`) when it is no UTF-8: it would come out
/// as the name of another file. What begins with ":/" is a file here and none of the library's resources.
CZeString libraryFileName(const std::string& path);

} // namespace ze::tool
