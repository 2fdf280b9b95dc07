// Options that several commands of `zebeauty lut` share.

#pragma once

#include "tool/lut/lut_bake.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ze::tool {

/// `zebeauty lut COMMAND`: each of these adds one command, which runs when the command line is parsed.
void addBakeCommand(CLI::App& lut);
void addLutInfoCommand(CLI::App& lut);
void addApplyCommand(CLI::App& lut);
void addExportCommand(CLI::App& lut);
void addIdentityCommand(CLI::App& lut);

struct LutOptions {
    std::vector<std::string> inputs;
    std::string output;
    ReadOptions reading;
    bool overwrite = false;
};

/// What every kind of file that can be read is called in help texts.
inline constexpr char kReadableFiles[] =
    ".cube, .3dl, .csp, .spi1d, .spi3d, .clf, .cc, .ccc, .cdl or what else OpenColorIO reads; a lookup "
    "picture "
    "or Hald CLUT as PNG, TIFF, WebP …; a LUT file; or - for standard input";

/// Adds --id to a command that reads files. `options` has to live as long as `command`, here and below.
void addId(CLI::App& command, ReadOptions& options);

/// Adds --layout with the names of `layouts`, the first of which is the default.
void addLayout(CLI::App& command, PictureLayout& layout, const std::string& description,
               const std::vector<std::pair<std::string, PictureLayout>>& layouts);

/// Adds both to a command that reads files, with all layouts.
void addReadOptions(CLI::App& command, ReadOptions& options);

/// Adds INPUT... OUTPUT, `description` telling what the output is, and -y. `splitFiles` has to be called when
/// the command runs.
void addFiles(CLI::App& command, LutOptions& options, const std::string& description);

/// Moves the last of the files named to `output`: a positional that takes all there are leaves none.
void splitFiles(LutOptions& options);

/// Adds OUTPUT and -y.
void addOutput(CLI::App& command, LutOptions& options, const std::string& description);

/// The numbers in "0,0.1,1" or "0, 0.1, 1"; NaN for what is not a number.
std::vector<float> parsedNumbers(const std::string& text);

} // namespace ze::tool
