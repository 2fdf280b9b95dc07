#include "tool/commands.h"
#include "tool/lut/lut_options.h"

namespace ze::tool {

void addLutCommand(CLI::App& program) {
    CLI::App& lut = *program.add_subcommand("lut", "Make, show and convert color look-up tables");
    addBakeCommand(lut);
    addLutInfoCommand(lut);
    addApplyCommand(lut);
    addExportCommand(lut);
    addIdentityCommand(lut);
}

} // namespace ze::tool
