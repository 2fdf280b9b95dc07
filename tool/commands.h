// The program's commands. Each adds itself with its options and runs when the command line names it.

#pragma once

#include <CLI/CLI.hpp>

namespace ze::tool {

/// `zebeauty render INPUT OUTPUT`
void addRenderCommand(CLI::App& program);

/// `zebeauty lut bake|info|export|identity`
void addLutCommand(CLI::App& program);

/// `zebeauty info`
void addInfoCommand(CLI::App& program);

/// `zebeauty chart OUTPUT`
void addChartCommand(CLI::App& program);

} // namespace ze::tool
