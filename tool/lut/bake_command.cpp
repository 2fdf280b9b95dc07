#include "tool/errors.h"
#include "tool/files/output_check.h"
#include "tool/files/output_file.h"
#include "tool/lut/lut_file.h"
#include "tool/lut/lut_options.h"
#include "tool/number_text.h"

#include <cmath>

namespace ze::tool {
namespace {

constexpr float kLowestGamma = 0.1f;
constexpr float kHighestGamma = 10;

struct BakeOptions : LutOptions {
    size_t levelCount = kDefaultLevels;
    std::string levelsAt; // empty for levels placed by `gamma`
    std::string gamma = "1";

    std::vector<float> levels() const {
        return levelsAt.empty() ? gammaLevels(levelCount, parsedNumber(gamma)) : parsedNumbers(levelsAt);
    }
};

std::string checkLevelsAt(const std::string& text) {
    const std::vector<float> levels = parsedNumbers(text);
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

void bake(BakeOptions options) {
    splitFiles(options);
    checkOutput(options.output, options.overwrite, ".lut");
    const LutChain chain = readChain(options.inputs, options.reading);
    Clamping clamping;
    const ColorTable table = bakeLut(chain, options.levels(), clamping);
    OutputFile(options.output, lutFileBytes(table)).commit();
    warnOfClamping(namesOf(chain), clamping);
}

void addLevels(CLI::App& command, BakeOptions& options) {
    CLI::Option* count = command
                             .add_option("--levels", options.levelCount,
                                         "Levels of each channel. The table holds the cube of it in colors")
                             ->check(CLI::Range(kFewestLevels, kMostLevels))
                             ->capture_default_str();
    CLI::Option* at = command
                          .add_option("--levels-at", options.levelsAt,
                                      "Places the levels: 2 to 65 rising numbers, as in 0,0.02,0.1,0.5,1")
                          ->check(checkLevelsAt)
                          ->excludes(count);
    command
        .add_option("--gamma", options.gamma,
                    "Places the levels at even steps to this power, 0.1 to 10: above 1 they are dense in the "
                    "shadows, below 1 in the highlights")
        ->check(checkGamma)
        ->excludes(at)
        ->capture_default_str();
}

} // namespace

void addBakeCommand(CLI::App& lut) {
    CLI::App* command = lut.add_subcommand(
        "bake", "Make a LUT file of grading programs' files and pictures, one applied after the other");
    const auto options = std::make_shared<BakeOptions>();
    addFiles(*command, *options, "LUT file to write, .lut");
    addLevels(*command, *options);
    addReadOptions(*command, options->reading);
    command->callback([options] { bake(*options); });
}

} // namespace ze::tool
