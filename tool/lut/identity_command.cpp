#include "tool/files/output_check.h"
#include "tool/files/output_file.h"
#include "tool/lut/lut_file.h"
#include "tool/lut/lut_options.h"

namespace ze::tool {
namespace {

struct IdentityOptions : LutOptions {
    size_t levelCount = 0;
};

void writeIdentity(const IdentityOptions& options) {
    checkOutput(options.output, options.overwrite, ".lut");
    OutputFile(options.output, lutFileBytes(identityTable(evenLevels(options.levelCount)))).commit();
}

} // namespace

void addIdentityCommand(CLI::App& lut) {
    CLI::App* command = lut.add_subcommand("identity", "Write a LUT file that changes nothing");
    const auto options = std::make_shared<IdentityOptions>();
    command->add_option("N", options->levelCount, "Levels of each channel")
        ->check(CLI::Range(kFewestLevels, kMostLevels))
        ->required();
    addOutput(*command, *options, "LUT file to write, .lut");
    command->callback([options] { writeIdentity(*options); });
}

} // namespace ze::tool
