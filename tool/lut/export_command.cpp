#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/output_check.h"
#include "tool/files/output_file.h"
#include "tool/lut/cube_file.h"
#include "tool/lut/grading_export.h"
#include "tool/lut/lut_options.h"
#include "tool/pictures/photo_writer.h"

#include <utility>

namespace ze::tool {
namespace {

constexpr size_t kDefaultPictureLevels = 64; // 512 × 512 pixels
const SaveOptions kPictureSaving = {.quality = std::nullopt, .lossless = true, .strip = true};

struct ExportOptions : LutOptions {
    size_t levelCount = 0; // 0 for whatever suits
    PictureLayout layout = PictureLayout::hald;
};

struct TextFormat {
    const char* extension;
    std::string (*text)(const EvenTable&);
    size_t fewestLevels;
    bool holdsOneDimension;
    bool holdsAllNumbers; // also those outside 0 to 1
};

constexpr TextFormat kTextFormats[] = {{".cube", cubeText, 2, true, true},
                                       {".clf", clfText, 2, true, true},
                                       {".3dl", threeDlText, 4, false, false}};

const TextFormat* textFormatOf(const std::string& path) {
    for (const TextFormat& format : kTextFormats)
        if (extensionOf(path) == format.extension)
            return &format;
    return nullptr;
}

std::string textOf(const ExportOptions& options, const LutChain& chain, const TextFormat& format,
                   Clamping& clamping) {
    EvenTable table = evenTableOf(chain, {options.levelCount, format.fewestLevels, format.holdsOneDimension});
    if (!format.holdsAllNumbers)
        clamp(table.colors, clamping);
    return format.text(table);
}

size_t pictureLevels(const ExportOptions& options, const LutChain& chain) {
    if (options.levelCount > 0)
        return options.levelCount;
    const std::optional<ColorTable>& table = chain.front().table;
    return table && pictureRoot(table->levelCount()) > 0 ? table->levelCount() : kDefaultPictureLevels;
}

std::string encodedPicture(const ExportOptions& options, const LutChain& chain, const PhotoFormat& format,
                           Clamping& clamping) {
    EvenTable even = evenTableOf(chain, {pictureLevels(options, chain), kFewestLevels, false});
    const ColorTable table = quantized(evenLevels(even.levelCount), std::move(even.colors), clamping);
    return encodePhoto(photoOf(pictureOf(table, options.layout)), format, kPictureSaving);
}

// Every step of a color counts, so no format will do that loses any.
const PhotoFormat& checkedPictureFormat(const ExportOptions& options) {
    const PhotoFormat* const format = photoFormatOf(extensionOf(options.output));
    if (!format || !format->canBeLossless)
        throw Failure(ExitCode::usage, options.output,
                      "unknown extension; .cube, .clf, .3dl, and .png or another picture format that loses "
                      "nothing can be written");
    withFileInError(options.output, [&] { checkSaveOptions(*format, kPictureSaving); });
    if (options.levelCount > 0 && pictureRoot(options.levelCount) == 0)
        throw Failure(ExitCode::usage, options.output,
                      "a picture has 4, 9, 16, 25, 36, 49 or 64 levels, and not " +
                          std::to_string(options.levelCount));
    return *format;
}

void checkLevels(const ExportOptions& options, size_t fewest) {
    if (options.levelCount > 0 && options.levelCount < fewest)
        throw Failure(ExitCode::usage, options.output, "has " + std::to_string(fewest) + " levels or more");
}

void exportTable(ExportOptions options) {
    splitFiles(options);
    const TextFormat* const textFormat = textFormatOf(options.output);
    const PhotoFormat* const pictureFormat = textFormat ? nullptr : &checkedPictureFormat(options);
    checkOutput(options.output, options.overwrite);
    checkLevels(options, textFormat ? textFormat->fewestLevels : kFewestLevels);
    const LutChain chain = readChain(options.inputs, options.reading);
    Clamping clamping;
    const std::string bytes = withFileInError(options.output, [&] {
        return textFormat ? textOf(options, chain, *textFormat, clamping)
                          : encodedPicture(options, chain, *pictureFormat, clamping);
    });
    OutputFile(options.output, bytes).commit();
    warnOfClamping(namesOf(chain), clamping);
}

} // namespace

void addExportCommand(CLI::App& lut) {
    CLI::App* command =
        lut.add_subcommand("export", "Write files for other programs: .cube, .clf, .3dl, pictures");
    const auto options = std::make_shared<ExportOptions>();
    addFiles(*command, *options,
             "file to write: .cube, .clf, .3dl, or a picture (.png or another format that loses nothing)");
    command
        ->add_option("--levels", options->levelCount,
                     "Levels of each channel. Without it a LUT file keeps its own where the output can have "
                     "them; pictures have 64, other outputs 33")
        ->check(CLI::Range(kFewestLevels, kMostLevels));
    addLayout(*command, options->layout, "Kind of the picture to write",
              {{"hald", PictureLayout::hald}, {"lookup", PictureLayout::lookup}});
    addId(*command, options->reading);
    command->callback([options] { exportTable(*options); });
}

} // namespace ze::tool
