// Whole files as bytes.

#pragma once

#include <cstddef>
#include <string>

namespace ze::tool {

/// The name that means standard input, or standard output.
inline constexpr char kStandardStream[] = "-";

/// Returns all bytes of `path`, opened once and read to the end, so that pipes and devices can be read as
/// well; "-" is standard input. Throws `Failure` (`badInput`) when it cannot be read or has more than
/// `maxBytes`.
std::string readWholeInput(const std::string& path, size_t maxBytes);

} // namespace ze::tool
