#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/output_file.h"
#include "tool/lut/temporary_lut.h"
#include "tool/number_text.h"
#include "tool/pictures/photo_options.h"
#include "tool/render/photo_effect.h"
#include "tool/sheet/sheet.h"
#include "tool/video/clip_sniffer.h"

#include <filesystem>
#include <list>
#include <memory>

namespace ze::tool {
namespace {

constexpr int kNarrowestTile = 100;
constexpr int kWidestTile = 4000;

struct SheetOptions {
    std::string input;
    std::string output;
    std::vector<std::string> smooth; // empty for those of the default
    std::vector<std::string> whiten; // likewise
    std::vector<std::string> luts;
    int tileWidth = 480;
    PhotoOptions photo;

    // The list that varies fastest fills the rows.
    size_t columns() const {
        return whiten.size() > 1   ? whiten.size()
               : smooth.size() > 1 ? smooth.size()
                                   : std::max<size_t>(luts.size(), 1);
    }
};

// One version of the photo.
struct Version {
    zebeauty::Settings settings;
    std::string label;
};

Version versionOf(const std::string& smooth, const std::string& whiten, const TemporaryLut* lut,
                  const std::string& lutName) {
    Version version = {{parsedNumber(smooth), parsedNumber(whiten)},
                       "smooth " + smooth + "  whiten " + whiten};
    if (lut) {
        version.settings.table = lut->path();
        version.label += "  " + std::filesystem::path(lutName).filename().string();
    }
    return version;
}

// Gradings alone where nothing else is named, as 'render' has it.
void fillIn(SheetOptions& options) {
    const bool gradesOnly = !options.luts.empty() && options.smooth.empty() && options.whiten.empty();
    using Amounts = std::vector<std::string>;
    if (options.smooth.empty())
        options.smooth = gradesOnly ? Amounts{"0"} : Amounts{"0", "0.4", "0.8"};
    if (options.whiten.empty())
        options.whiten = gradesOnly ? Amounts{"0"} : Amounts{"0", "0.2", "0.4"};
}

// All combinations of the lists; the amounts of whitening change fastest, the tables slowest.
std::vector<Version> versionsOf(const SheetOptions& options, const std::list<TemporaryLut>& tables) {
    std::vector<Version> versions;
    auto table = tables.begin();
    for (size_t i = 0; i < std::max<size_t>(options.luts.size(), 1); ++i) {
        const TemporaryLut* const lut = options.luts.empty() ? nullptr : &*table++;
        for (const std::string& smooth : options.smooth)
            for (const std::string& whiten : options.whiten)
                versions.push_back(versionOf(smooth, whiten, lut, lut ? options.luts[i] : ""));
    }
    return versions;
}

Photo drawSheet(const SheetOptions& options, const Photo& photo, const std::vector<Version>& versions) {
    Sheet sheet(static_cast<int>(options.columns()), options.tileWidth);
    sheet.add(photo, "original");
    sheet.endRow();
    PhotoEffect effect({}, {}, options.luts.empty() ? Detail::photo : Detail::frame);
    for (const Version& version : versions) {
        effect.set(version.settings);
        PhotoFrames frames = effect.prepare(options.input, photo);
        effect.render(frames);
        sheet.add(PhotoEffect::finish(frames), version.label);
    }
    return sheet.picture();
}

void writeSheet(const SheetOptions& options) {
    options.photo.checkWritable(options.output);
    std::list<TemporaryLut> tables;
    for (const std::string& lut : options.luts)
        tables.emplace_back(lut);
    if (holdsClip(options.input))
        throw Failure(ExitCode::badInput, options.input, "is a clip; a sheet is of a picture");
    const Photo photo = options.photo.read(options.input);
    const Photo sheet = withFileInError(
        options.input, [&] { return drawSheet(options, photo, versionsOf(options, tables)); });
    const std::string bytes = options.photo.encoded(options.output, sheet);
    OutputFile(options.output, bytes).commit();
}

} // namespace

void addSheetCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand(
        "sheet", "Show a photo with many strengths and gradings in one labeled picture, to choose from");
    const auto options = std::make_shared<SheetOptions>();
    command->add_option("PHOTO", options->input, "Picture to read")->required();
    command
        ->add_option("SHEET", options->output, "Picture to write: the original first, then every combination")
        ->required();
    const auto addAmounts = [&](const char* name, std::vector<std::string>& amounts,
                                const char* description) {
        command->add_option(name, amounts, description)
            ->delimiter(',')
            ->check(checkAmount)
            ->type_name("NUMBERS");
    };
    addAmounts("--smooth", options->smooth,
               "How much to smooth skin, amounts from 0 to 1 with commas between (default: 0,0.4,0.8; with "
               "--lut alone nothing is smoothed or lifted)");
    addAmounts("--whiten", options->whiten,
               "How much to lift the whole picture, likewise (default: 0,0.2,0.4)");
    command->add_option("--lut", options->luts, "Files to grade colors through, with commas between")
        ->delimiter(',')
        ->type_name("FILES");
    command->add_option("--tile", options->tileWidth, "Width of a version in pixels; none is enlarged")
        ->check(CLI::Range(kNarrowestTile, kWidestTile))
        ->capture_default_str();
    options->photo.addInputOptions(*command);
    options->photo.addOutputOptions(*command);
    command->callback([options] {
        fillIn(*options);
        writeSheet(*options);
    });
}

} // namespace ze::tool
