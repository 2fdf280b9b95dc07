#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/gl_info.h"
#include "tool/output_file.h"
#include "tool/picture_reader.h"
#include "tool/render_session.h"
#include "tool/side_by_side.h"
#include "tool/targets.h"

#include <charconv>
#include <filesystem>
#include <memory>

namespace ze::tool {

namespace {

struct RenderOptions {
    std::string input;
    std::string output;
    std::string compare; // Empty: no picture of before and after.
    float smooth = 0.8f;
    float whiten = 0.2f;
    std::string format = "nv12";
    std::string standard = "bt601";
    std::string range = "full";
    bool overwrite = false;

    YuvDescription description() const {
        return {format == "nv21" ? ChromaOrder::nv21 : ChromaOrder::nv12,
                standard == "bt709" ? ColourStandard::bt709 : ColourStandard::bt601,
                range == "video" ? ColourRange::video : ColourRange::full};
    }

    // The library's own limits decide; the numbers here only tell whether it will need GL.
    bool changesAnything() const { return double{smooth} > 0.001 || double{whiten} >= 0.001; }
};

bool isSameFile(const std::string& first, const std::string& second) {
    const auto resolved = [](const std::string& path) {
        std::error_code ignored;
        return std::filesystem::weakly_canonical(std::filesystem::absolute(path), ignored);
    };
    return resolved(first) == resolved(second);
}

void checkSize(const Picture& picture) {
    const int limit = queryGl().maxTextureSize;
    if (picture.width > limit || picture.height > limit)
        throw Failure(ExitCode::failed, std::to_string(picture.width) + "x" + std::to_string(picture.height) +
                                            " pixels are too many for the GPU, whose limit is " +
                                            std::to_string(limit) + " in each direction");
}

Picture beautified(const RenderOptions& options, const Picture& before) {
    if (options.changesAnything())
        checkSize(before);
    YuvFrame frame = yuvFromPicture(before, options.description());
    RenderSession(options.smooth, options.whiten).render(frame);
    Picture after = pictureFromYuv(frame);
    after.alpha = before.alpha;
    return after;
}

std::vector<uint8_t> encoded(const std::string& file, const Picture& picture, PictureFormat format) {
    return inNameOf(file, [&] { return encodePicture(picture, format); });
}

void render(const RenderOptions& options) {
    const PictureFormat outputFormat = checkTarget(options.output, options.overwrite);
    PictureFormat compareFormat = outputFormat;
    if (!options.compare.empty()) {
        compareFormat = checkTarget(options.compare, options.overwrite);
        if (isSameFile(options.output, options.compare))
            throw Failure(ExitCode::usage, options.compare, "is named as OUTPUT already");
    }

    const Picture before = inNameOf(options.input, [&] { return readPicture(options.input); });
    const Picture after = inNameOf(options.input, [&] { return beautified(options, before); });
    OutputFile output(options.output, encoded(options.output, after, outputFormat));
    if (!options.compare.empty()) {
        const Picture both = inNameOf(options.compare, [&] { return sideBySide(before, after); });
        OutputFile(options.compare, encoded(options.compare, both, compareFormat)).commit();
    }
    output.commit();
}

// Unlike CLI::Range this does not let "nan" through.
std::string checkAmount(const std::string& text) {
    float amount = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, amount);
    const bool valid = result.ec == std::errc() && result.ptr == end && amount >= 0 && amount <= 1;
    return valid ? "" : "'" + text + "' is no number from 0 to 1";
}

} // namespace

void addRenderCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand("render", "Smooth and whiten the skin in a picture");
    const auto options = std::make_shared<RenderOptions>();
    command->add_option("INPUT", options->input, "Picture to read: PNG, JPEG or what else FFmpeg reads")
        ->required();
    command
        ->add_option(
            "OUTPUT", options->output,
            "Picture to write, .png, .jpg or .jpeg. PNG keeps transparency, JPEG gets a white ground")
        ->required();
    command->add_option("--smooth", options->smooth, "How much to smooth skin, 0 to 1")
        ->check(checkAmount)
        ->capture_default_str();
    command->add_option("--whiten", options->whiten, "How much to lift the whole picture, 0 to 1")
        ->check(checkAmount)
        ->capture_default_str();
    command->add_option("--format", options->format, "Frame layout")
        ->check(CLI::IsMember({"nv12", "nv21"}))
        ->capture_default_str();
    command->add_option("--standard", options->standard, "Colour matrix")
        ->check(CLI::IsMember({"bt601", "bt709"}))
        ->capture_default_str();
    command->add_option("--range", options->range, "Colour range")
        ->check(CLI::IsMember({"full", "video"}))
        ->capture_default_str();
    command->add_option("--compare", options->compare,
                        "Also write before and after, side by side, to this file");
    command->add_flag("-y", options->overwrite, "Overwrite OUTPUT and the --compare file");
    command->callback([options] { render(*options); });
}

} // namespace ze::tool
