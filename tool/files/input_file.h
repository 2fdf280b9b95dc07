// Whole files as bytes.

#pragma once

#include <string>

namespace ze::tool {

/// Returns the bytes of the regular file `path`, at most the first `maxBytes`. Throws `Failure` (`badInput`)
/// when it cannot be read or has more than 256 MiB, which no look-up table needs.
std::string readInput(const std::string& path, size_t maxBytes = std::string::npos);

} // namespace ze::tool
