#include "tool/lut/lut_options.h"
#include "tool/lut/lut_report.h"

#include <iostream>

namespace ze::tool {
namespace {

struct InfoOptions {
    std::string file;
    ReadOptions reading;
    bool json = false;
};

void showInfo(const InfoOptions& options) {
    const ColorTransform transform = readTransform(options.file, options.reading);
    checkId({transform}, options.reading.id);
    std::cout << (options.json ? reportJson(transform) : reportText(transform));
    if (transform.table)
        warnOfLevels(options.file, *transform.table);
}

} // namespace

void addLutInfoCommand(CLI::App& lut) {
    CLI::App* command =
        lut.add_subcommand("info", "Show what a file holds and how far it is from changing nothing");
    const auto options = std::make_shared<InfoOptions>();
    command->add_option("FILE", options->file, "File to read: " + std::string(kReadableFiles))->required();
    command->add_flag("--json", options->json, "Print one JSON object; differences are steps of 255");
    addReadOptions(*command, options->reading);
    command->callback([options] { showInfo(*options); });
}

} // namespace ze::tool
