// Whole files as bytes.

#pragma once

#include <string>

namespace ze::tool {

/// The bytes of the regular file `path`, or the first `most` of them. Throws `Failure` (`badInput`) when it
/// cannot be read, and when it has more than 256 MiB, which no look-up table needs.
std::string readInput(const std::string& path, size_t most = std::string::npos);

} // namespace ze::tool
