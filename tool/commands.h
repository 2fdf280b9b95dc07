// The commands of the program. Each function adds a command with its options; parsing the command line runs
// it.

#pragma once

#include <CLI/CLI.hpp>

namespace ze::tool {

/// `zebeauty render INPUT OUTPUT`
void addRenderCommand(CLI::App& program);

/// `zebeauty sheet PHOTO SHEET`
void addSheetCommand(CLI::App& program);

/// `zebeauty lut bake|info|apply|export|identity`
void addLutCommand(CLI::App& program);

/// `zebeauty info`
void addInfoCommand(CLI::App& program);

/// `zebeauty chart OUTPUT`
void addChartCommand(CLI::App& program);

/// `zebeauty completion`. It prints the commands that `program` has when it runs.
void addCompletionCommand(CLI::App& program);

} // namespace ze::tool
