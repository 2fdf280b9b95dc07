// Names of files.

#pragma once

#include "core/tools/ze_string.h"

#include <string>

namespace ze::tool {

/// `path` as the library's file classes take it. A path that begins with ":/" stays a file; the library would
/// take it for a resource. Throws `Failure` (`usage`) when `path` is not valid UTF-8, since converting it
/// would name another file.
CZeString libraryFileName(const std::string& path);

/// The extension of `path` with its dot, in lower case; empty when there is none.
std::string extensionOf(const std::string& path);

} // namespace ze::tool
