// A file that may hold a look-up table, read once.

#pragma once

#include <string>

namespace ze::tool {

struct LutInput {
    std::string name; ///< As the user names it, for messages and for its extension; "-" is standard input.
    std::string bytes;
};

/// Opens `path` once and reads it to its end. Throws `Failure` (`badInput`) when it cannot be read, is empty,
/// or has more than 256 MiB, which no look-up table needs.
LutInput readLutInput(const std::string& path);

/// The bytes of a text file as OpenColorIO expects them: without a byte order mark, lines ending in a line
/// feed alone. Bytes that are no text, as they have a NUL in them, stay as they are. Throws `Failure`
/// (`badInput`) for UTF-16.
std::string plainText(const LutInput& input);

} // namespace ze::tool
