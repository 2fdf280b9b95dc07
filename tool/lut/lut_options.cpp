#include "tool/lut/lut_options.h"

#include "tool/number_text.h"

#include <algorithm>
#include <map>

namespace ze::tool {
namespace {

void addOverwrite(CLI::App& command, LutOptions& options) {
    command.add_flag("-y", options.overwrite, "Overwrite the output");
}

} // namespace

void addId(CLI::App& command, ReadOptions& options) {
    command.add_option("--id", options.id,
                       "Which color correction of a .ccc or .cdl to take; the first when not given");
}

void addLayout(CLI::App& command, PictureLayout& layout, const std::string& description,
               const std::vector<std::pair<std::string, PictureLayout>>& layouts) {
    std::vector<std::string> names;
    for (const auto& [name, value] : layouts)
        names.push_back(name);
    const std::map<std::string, PictureLayout> valueOf(layouts.begin(), layouts.end());
    layout = layouts.front().second;
    command
        .add_option_function<std::string>(
            "--layout", [&layout, valueOf](const std::string& name) { layout = valueOf.at(name); },
            description)
        ->check(CLI::IsMember(names))
        ->default_str(names.front());
}

void addReadOptions(CLI::App& command, ReadOptions& options) {
    addId(command, options);
    addLayout(command, options.layout,
              "Kind of a picture: lookup (tiles, 8x8 of them in 512x512), hald, or auto, which takes the one "
              "that is smoother",
              {{"auto", PictureLayout::automatic},
               {"lookup", PictureLayout::lookup},
               {"hald", PictureLayout::hald}});
}

void addFiles(CLI::App& command, LutOptions& options, const std::string& description) {
    command
        .add_option("FILES", options.inputs,
                    "INPUT... OUTPUT: what to sample, one file after the other (" +
                        std::string(kReadableFiles) + "), and last the " + description)
        ->required()
        ->expected(2, -1);
    addOverwrite(command, options);
}

void splitFiles(LutOptions& options) {
    options.output = options.inputs.back();
    options.inputs.pop_back();
}

void addOutput(CLI::App& command, LutOptions& options, const std::string& description) {
    command.add_option("OUTPUT", options.output, description)->required();
    addOverwrite(command, options);
}

std::vector<float> parsedNumbers(const std::string& text) {
    std::vector<float> numbers;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(',', at), text.size());
        const size_t first = std::min(text.find_first_not_of(' ', at), end);
        numbers.push_back(parsedNumber(std::string_view(text).substr(first, end - first)));
        at = end + 1;
    }
    return numbers;
}

} // namespace ze::tool
