#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/output_check.h"
#include "tool/files/output_file.h"
#include "tool/info/gl_info.h"
#include "tool/lut/temporary_lut.h"
#include "tool/number_text.h"
#include "tool/pictures/picture_reader.h"
#include "tool/pictures/side_by_side.h"
#include "tool/render/render_session.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

namespace ze::tool {
namespace {

struct RenderOptions {
    std::string input;
    std::string output;
    std::string compare; // empty for no picture of before and after
    float smooth = 0.8f;
    float whiten = 0.2f;
    std::string lut; // empty for no grading
    float intensity = 1;
    bool beautify = true;
    bool gradeFirst = false;
    std::string format = "nv12";
    std::string standard = "bt601";
    std::string range = "full";
    bool overwrite = false;

    YuvDescription description() const {
        return {format == "nv21" ? ChromaOrder::nv21 : ChromaOrder::nv12,
                standard == "bt709" ? ColorStandard::bt709 : ColorStandard::bt601,
                range == "video" ? ColorRange::video : ColorRange::full};
    }

    // `table` is set when the command line names a LUT.
    zebeauty::Settings settings(const std::optional<TemporaryLut>& table) const {
        zebeauty::Settings settings;
        if (beautify) {
            settings.smoothing = smooth;
            settings.whitening = whiten;
        }
        if (table)
            settings.table = table->path();
        settings.intensity = intensity;
        settings.tableFirst = gradeFirst;
        return settings;
    }
};

bool isSameFile(const std::string& first, const std::string& second) {
    const auto resolved = [](const std::string& path) {
        std::error_code ignored;
        return std::filesystem::weakly_canonical(std::filesystem::absolute(path), ignored);
    };
    return resolved(first) == resolved(second);
}

void checkSize(const Picture& picture, const std::optional<TemporaryLut>& lut) {
    const int limit = queryGl().maxTextureSize;
    const auto checkSide = [&](int width, int height, const std::string& what) {
        if (width > limit || height > limit)
            throw Failure(ExitCode::failed, std::to_string(width) + "x" + std::to_string(height) + what +
                                                " are too many for the GPU, whose limit is " +
                                                std::to_string(limit) + " in each direction");
    };
    checkSide(picture.width, picture.height, " pixels");
    if (lut)
        checkSide(lut->levelCount() * lut->levelCount(), lut->levelCount(), " texels of the look-up table");
}

Picture rendered(const RenderOptions& options, const std::optional<TemporaryLut>& lut,
                 const Picture& before) {
    const zebeauty::Settings settings = options.settings(lut);
    if (settings.isActive())
        checkSize(before, lut);
    YuvFrame frame = yuvFromPicture(before, options.description());
    RenderSession(settings).render(frame);
    Picture after = pictureFromYuv(frame);
    after.alpha = before.alpha;
    return after;
}

std::vector<uint8_t> encoded(const std::string& file, const Picture& picture, PictureFormat format) {
    return withFileInError(file, [&] { return encodePicture(picture, format); });
}

void render(const RenderOptions& options) {
    const PictureFormat outputFormat = checkOutput(options.output, options.overwrite);
    PictureFormat compareFormat = outputFormat;
    if (!options.compare.empty()) {
        compareFormat = checkOutput(options.compare, options.overwrite);
        if (isSameFile(options.output, options.compare))
            throw Failure(ExitCode::usage, options.compare, "is named as OUTPUT already");
    }

    const Picture before = withFileInError(options.input, [&] { return readPicture(options.input); });
    std::optional<TemporaryLut> lut;
    if (!options.lut.empty())
        lut.emplace(options.lut);
    const Picture after = withFileInError(options.input, [&] { return rendered(options, lut, before); });
    OutputFile output(options.output, encoded(options.output, after, outputFormat));
    if (!options.compare.empty()) {
        const Picture both = withFileInError(options.compare, [&] { return sideBySide(before, after); });
        OutputFile(options.compare, encoded(options.compare, both, compareFormat)).commit();
    }
    output.commit();
}

// CLI::Range would let "nan" through.
std::string checkAmount(const std::string& text) {
    const float amount = parsedNumber(text);
    return amount >= 0 && amount <= 1 ? "" : "'" + text + "' is no number from 0 to 1";
}

} // namespace

void addRenderCommand(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("render", "Smooth the skin in a picture, brighten it and grade its colors");
    const auto options = std::make_shared<RenderOptions>();
    command->add_option("INPUT", options->input, "Picture to read: PNG, JPEG or what else FFmpeg reads")
        ->required();
    command
        ->add_option(
            "OUTPUT", options->output,
            "Picture to write, .png, .jpg or .jpeg. PNG keeps transparency, JPEG gets a white ground")
        ->required();
    CLI::Option* smooth = command->add_option("--smooth", options->smooth, "How much to smooth skin, 0 to 1")
                              ->check(checkAmount)
                              ->capture_default_str();
    CLI::Option* whiten =
        command->add_option("--whiten", options->whiten, "How much to lift the whole picture, 0 to 1")
            ->check(checkAmount)
            ->capture_default_str();
    CLI::Option* lut =
        command
            ->add_option("--lut", options->lut,
                         "Grade colors through a LUT file, or through anything that 'zebeauty lut bake' "
                         "reads. With --smooth or --whiten both effects run, in the order in which they "
                         "are named here; without them the grading runs alone")
            ->check([](const std::string& file) { return file.empty() ? "no file is named" : ""; });
    command->add_option("--intensity", options->intensity, "How much of the graded color to mix in, 0 to 1")
        ->check(checkAmount)
        ->needs(lut)
        ->capture_default_str();
    command->add_option("--format", options->format, "Frame layout")
        ->check(CLI::IsMember({"nv12", "nv21"}))
        ->capture_default_str();
    command->add_option("--standard", options->standard, "Color matrix")
        ->check(CLI::IsMember({"bt601", "bt709"}))
        ->capture_default_str();
    command->add_option("--range", options->range, "Color range")
        ->check(CLI::IsMember({"full", "video"}))
        ->capture_default_str();
    command->add_option("--compare", options->compare,
                        "Also write before and after, side by side, to this file");
    command->add_flag("-y", options->overwrite, "Overwrite OUTPUT and the --compare file");
    command->callback([=] {
        const std::vector<CLI::Option*>& named = command->parse_order();
        const auto placeOf = [&](const CLI::Option* option) {
            return std::find(named.begin(), named.end(), option);
        };
        const auto beauty = std::min(placeOf(smooth), placeOf(whiten));
        options->beautify = beauty != named.end() || options->lut.empty();
        options->gradeFirst = placeOf(lut) < beauty;
        render(*options);
    });
}

} // namespace ze::tool
