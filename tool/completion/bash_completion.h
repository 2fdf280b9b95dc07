// Completion of command lines in bash.

#pragma once

#include <CLI/CLI.hpp>

namespace ze::tool {

/// A bash script that completes the commands of `program`, their options, the values that an option is
/// limited to, and file names wherever else text is expected.
std::string bashCompletion(const CLI::App& program);

} // namespace ze::tool
