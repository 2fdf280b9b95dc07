#include "effects/lut/lut_tables.h"
#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/output_check.h"
#include "tool/files/output_file.h"
#include "tool/lut/cube_file.h"
#include "tool/lut/lut_bake.h"
#include "tool/lut/lut_file.h"
#include "tool/lut/lut_report.h"
#include "tool/number_text.h"

#include <cmath>
#include <iostream>
#include <map>
#include <memory>

namespace ze::tool {
namespace {

constexpr float kLowestGamma = 0.1f;
constexpr float kHighestGamma = 10;

struct LutOptions {
    std::string input;
    std::string output;
    size_t levelCount = kDefaultLevels;
    std::string levelsAt; // empty for levels placed by `gamma`
    std::string gamma = "1";
    PictureLayout layout = PictureLayout::automatic;
    bool json = false;
    bool overwrite = false;

    std::vector<float> levels() const;
};

// The numbers in "0,0.1,1" or "0, 0.1, 1"; NaN for what is not a number.
std::vector<float> parseLevels(const std::string& text) {
    std::vector<float> levels;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(',', at), text.size());
        const size_t first = std::min(text.find_first_not_of(' ', at), end);
        levels.push_back(parsedNumber(std::string_view(text).substr(first, end - first)));
        at = end + 1;
    }
    return levels;
}

std::string checkLevelsAt(const std::string& text) {
    const std::vector<float> levels = parseLevels(text);
    if (levels.size() < kFewestLevels || levels.size() > kMostLevels)
        return "'" + text + "' has " + std::to_string(levels.size()) + " levels; 2 to 65 are possible";
    for (size_t i = 0; i < levels.size(); ++i) {
        const std::string which = "level " + std::to_string(i + 1) + " of '" + text + "' ";
        if (std::isnan(levels[i]))
            return which + "is no number";
        if (i > 0 && levels[i] <= levels[i - 1])
            return which + "is not above the one before it";
    }
    return levels.front() == 0 && levels.back() == 1 ? "" : "'" + text + "' does not go from 0 to 1";
}

std::string checkGamma(const std::string& text) {
    const float gamma = parsedNumber(text);
    return gamma >= kLowestGamma && gamma <= kHighestGamma ? ""
                                                           : "'" + text + "' is no number from 0.1 to 10";
}

std::vector<float> LutOptions::levels() const {
    return levelsAt.empty() ? gammaLevels(levelCount, parsedNumber(gamma)) : parseLevels(levelsAt);
}

void writeLut(const LutOptions& options, const ColorTable& table) {
    OutputFile(options.output, lutFileBytes(table)).commit();
}

void bake(const LutOptions& options) {
    checkOutput(options.output, options.overwrite, ".lut");
    Clamping clamping;
    const ColorTable table = bakeLut(options.input, options.levels(), options.layout, clamping);
    writeLut(options, table);
    warnOfClamping(options.input, clamping, table);
}

void showInfo(const LutOptions& options) {
    const ColorTable table = readLutFile(options.input);
    std::cout << (options.json ? reportJson(table) : reportText(table));
    warnOfLevels(options.input, table);
}

void exportCube(const LutOptions& options) {
    checkOutput(options.output, options.overwrite, ".cube");
    const ColorTable table = readRisingLutFile(options.input);
    const std::string text = cubeText(table);
    OutputFile(options.output, text).commit();
    if (!hasUniformLevels(table.levels))
        printError("warning: " + options.input + ": its levels are not uniform; resampled to " +
                   std::to_string(table.isThreeDimensional ? kResampledLevels : kResampledLevels1D) +
                   " uniform ones");
}

void writeIdentity(const LutOptions& options) {
    checkOutput(options.output, options.overwrite, ".lut");
    writeLut(options, identityTable(options.levels()));
}

using Options = std::shared_ptr<LutOptions>;

CLI::App* addCommand(CLI::App& lut, const char* name, const char* description, const Options& options,
                     void (*run)(const LutOptions&)) {
    CLI::App* command = lut.add_subcommand(name, description);
    command->callback([options, run] { run(*options); });
    return command;
}

void addOutput(CLI::App& command, const Options& options, const char* description) {
    command.add_option("OUTPUT", options->output, description)->required();
    command.add_flag("-y", options->overwrite, "Overwrite OUTPUT");
}

void addBake(CLI::App& lut, const Options& options) {
    CLI::App* command =
        addCommand(lut, "bake", "Make a LUT file of a grading program's file or of a picture", options, bake);
    command
        ->add_option(
            "INPUT", options->input,
            "What to sample: .cube, .3dl, .csp, .spi1d, .spi3d, .clf or what else OpenColorIO reads; a "
            "lookup picture or Hald CLUT as PNG, JPEG, TIFF or WebP; or a LUT file")
        ->required();
    addOutput(*command, options, "LUT file to write, .lut");
    CLI::Option* count = command
                             ->add_option("--levels", options->levelCount,
                                          "Levels of each channel. The table holds the cube of it in colors")
                             ->check(CLI::Range(kFewestLevels, kMostLevels))
                             ->capture_default_str();
    CLI::Option* at = command
                          ->add_option("--levels-at", options->levelsAt,
                                       "Places the levels: 2 to 65 rising numbers, as in 0,0.02,0.1,0.5,1")
                          ->check(checkLevelsAt)
                          ->excludes(count);
    command
        ->add_option(
            "--gamma", options->gamma,
            "Places the levels at even steps to this power, 0.1 to 10: above 1 they are dense in the "
            "shadows, below 1 in the highlights")
        ->check(checkGamma)
        ->excludes(at)
        ->capture_default_str();
    const std::map<std::string, PictureLayout> layouts = {
        {"auto", PictureLayout::automatic}, {"lookup", PictureLayout::lookup}, {"hald", PictureLayout::hald}};
    command
        ->add_option_function<std::string>(
            "--layout", [options, layouts](const std::string& name) { options->layout = layouts.at(name); },
            "Kind of a picture: lookup (tiles, 8x8 of them in 512x512), hald, or auto, which takes the "
            "one that is smoother")
        ->check(CLI::IsMember({"auto", "lookup", "hald"}))
        ->default_str("auto");
}

} // namespace

void addLutCommand(CLI::App& program) {
    CLI::App* lut = program.add_subcommand("lut", "Make, show and convert color look-up tables");
    const auto options = std::make_shared<LutOptions>();
    addBake(*lut, options);

    CLI::App* info = addCommand(*lut, "info", "Show what a LUT file holds", options, showInfo);
    info->add_option("FILE", options->input, "LUT file to read")->required();
    info->add_flag("--json", options->json, "Print one JSON object; differences are steps of 255");

    CLI::App* cube = addCommand(*lut, "export", "Write a LUT file as .cube", options, exportCube);
    cube->add_option("FILE", options->input, "LUT file to read")->required();
    addOutput(*cube, options, "File to write, .cube. Levels that are not uniform are resampled");

    CLI::App* identity =
        addCommand(*lut, "identity", "Write a LUT file that changes nothing", options, writeIdentity);
    identity->add_option("N", options->levelCount, "Levels of each channel")
        ->check(CLI::Range(kFewestLevels, kMostLevels))
        ->required();
    addOutput(*identity, options, "LUT file to write, .lut");
}

} // namespace ze::tool
