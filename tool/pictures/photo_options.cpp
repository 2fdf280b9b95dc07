#include "tool/pictures/photo_options.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/output_check.h"
#include "tool/pictures/vips.h"

namespace ze::tool {

void PhotoOptions::addInputOptions(CLI::App& command) {
    command.add_flag("--to-srgb", toSrgb,
                     "Convert colors to sRGB through the profile in the file. Without it numbers and profile "
                     "are passed on as they are");
    command.add_flag_callback("--untrusted", allowUntrustedFormats,
                              "Use also those readers and writers of picture formats that libvips does not "
                              "trust with files of strangers (BMP, PPM, TGA, JPEG 2000, EXR and others)");
}

void PhotoOptions::addOutputOptions(CLI::App& command) {
    command
        .add_option("--as", as,
                    "Format of the output, by its extension (png, jpg, webp, tif, avif …), whatever its "
                    "name says")
        ->type_name("EXTENSION");
    command
        .add_option(
            "--quality", save.quality,
            "Quality of JPEG, WebP, AVIF and the like; libvips' own choice without it, 75 for JPEG and WebP")
        ->check(CLI::Range(1, 100));
    command.add_flag("--lossless", save.lossless, "Lose nothing, where the format has the choice");
    command.add_flag("--strip", save.strip, "Leave out color profile and metadata");
    command.add_flag("-y", overwrite, "Overwrite files that exist");
}

Photo PhotoOptions::read(const std::string& path) const {
    return readPhoto(path, toSrgb ? ColorProfiles::convertedToSrgb : ColorProfiles::kept);
}

const PhotoFormat& PhotoOptions::formatOf(const std::string& output) const {
    const std::string extension = as.empty() ? extensionOf(output) : extensionOf("x." + as);
    const bool isPlain = as.find_first_of("./") == as.npos;
    if (const PhotoFormat* const format = isPlain ? photoFormatOf(extension) : nullptr)
        return *format;
    if (!as.empty())
        throw Failure(ExitCode::usage,
                      "--as: unknown format '" + as + "'; " + writableExtensions() + " can be written");
    throw Failure(ExitCode::usage, output,
                  extension.empty() ? "has no extension; --as names a format"
                                    : "unknown extension; " + writableExtensions() + " can be written");
}

void PhotoOptions::checkWritable(const std::string& output) const {
    refuseFolder(output);
    const PhotoFormat& format = formatOf(output);
    withFileInError(output, [&] { checkSaveOptions(format, save); });
    checkOutput(output, overwrite);
}

std::string PhotoOptions::encoded(const std::string& output, const Photo& photo) const {
    return withFileInError(output, [&] { return encodePhoto(photo, formatOf(output), save); });
}

} // namespace ze::tool
