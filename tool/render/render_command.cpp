#include "tool/batch/batch_run.h"
#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/output_file.h"
#include "tool/lut/temporary_lut.h"
#include "tool/number_text.h"
#include "tool/pictures/photo_options.h"
#include "tool/render/photo_effect.h"
#include "tool/render/texture_limit.h"
#include "tool/video/clip_options.h"
#include "tool/video/clip_run.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

namespace ze::tool {
namespace {

struct RenderOptions {
    std::vector<std::string> files; // INPUT and OUTPUT, or with `into` inputs alone
    BatchOptions batch;             // of which `into` is empty for one picture
    std::string compare;            // empty for no picture of before and after
    float smooth = 0.8f;
    float whiten = 0.2f;
    std::string lut; // empty for no grading
    float intensity = 1;
    bool beautify = true;
    bool gradeFirst = false;
    std::string detail; // empty for what suits the effects
    std::string format = "nv12";
    std::string standard = "bt601";
    std::string range = "full";
    PhotoOptions photo;
    ClipOptions clip;

    YuvDescription description() const {
        return {format == "nv21" ? ChromaOrder::nv21 : ChromaOrder::nv12,
                standard == "bt709" ? ColorStandard::bt709 : ColorStandard::bt601,
                range == "video" ? ColorRange::video : ColorRange::full};
    }

    Detail detailOfEffect() const {
        return detail == "frame" || !lut.empty() ? Detail::frame : Detail::photo;
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

// The effects of a command line, with the table that they draw with.
struct Effects {
    explicit Effects(const RenderOptions& options) {
        if (!options.lut.empty())
            lut.emplace(options.lut);
        settings = options.settings(lut);
        if (lut && settings.isActive())
            withFileInError(options.lut, [this] {
                checkTextureSize(lut->levelCount() * lut->levelCount(), lut->levelCount(),
                                 "texels of the look-up table");
            });
        photo.emplace(settings, options.description(), options.detailOfEffect());
    }

    std::optional<TemporaryLut> lut;
    zebeauty::Settings settings;
    std::optional<PhotoEffect> photo;
};

void checkCompare(const RenderOptions& options, const std::string& output) {
    if (!options.compare.empty() && isSameFile(output, options.compare))
        throw Failure(ExitCode::usage, options.compare, "is named as OUTPUT already");
}

void checkOutputs(const RenderOptions& options, const std::string& output) {
    options.photo.checkWritable(output);
    if (!options.compare.empty())
        options.photo.checkWritable(options.compare);
    checkCompare(options, output);
}

void renderClip(const RenderOptions& options, const std::string& input, const std::string& output) {
    const ClipJob job = options.clip.job(input, output, options.compare, options.photo);
    checkCompare(options, output);
    const Effects effects(options);
    runClip(job, effects.settings);
}

void renderOne(const RenderOptions& options, const std::string& input, const std::string& output) {
    std::error_code ignored;
    if (std::filesystem::is_directory(input, ignored))
        throw Failure(ExitCode::usage, input, "is a folder; --into DIR renders the pictures in it");
    const auto isThere = [&](const std::string& path) {
        return !isStream(path) && std::filesystem::exists(path, ignored);
    };
    if (options.batch.skipExisting && isThere(output) &&
        (options.compare.empty() || isThere(options.compare)))
        return;
    if (options.clip.isClip(input)) {
        renderClip(options, input, output);
        return;
    }
    options.clip.checkUnused();
    checkOutputs(options, output);
    const Photo before = options.photo.read(input);
    Effects effects(options);
    const Photo after = withFileInError(input, [&] {
        PhotoFrames frames = effects.photo->prepare(input, before);
        effects.photo->render(frames);
        return PhotoEffect::finish(frames);
    });
    const std::string bytes = options.photo.encoded(output, after);
    std::string compareBytes;
    if (!options.compare.empty())
        compareBytes = options.photo.encoded(options.compare, sideBySide(before, after));

    OutputFile file(output, bytes);
    if (!options.compare.empty())
        OutputFile(options.compare, compareBytes).commit();
    file.commit();
}

void renderMany(const RenderOptions& options) {
    options.clip.checkUnused();
    const std::vector<BatchJob> jobs = planBatch(options.files, options.batch, options.photo);
    Effects effects(options);
    runBatch(jobs, *effects.photo, options.photo);
}

void render(const RenderOptions& options) {
    if (options.detail == "photo" && !options.lut.empty())
        throw Failure(ExitCode::usage, "--detail photo: a grading cannot be added to a photo; with --lut it "
                                       "is --detail frame");
    if (!options.batch.into.empty())
        renderMany(options);
    else if (options.files.size() == 2)
        renderOne(options, options.files.front(), options.files.back());
    else
        throw Failure(ExitCode::usage, options.files.size() < 2
                                           ? "OUTPUT is missing, or --into DIR"
                                           : "one INPUT and one OUTPUT are possible; more need --into DIR");
}

} // namespace

void addRenderCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand(
        "render", "Smooth the skin in a picture or clip, brighten it and grade its colors");
    const auto options = std::make_shared<RenderOptions>();
    command
        ->add_option(
            "FILES", options->files,
            "INPUT OUTPUT: a picture or clip to read and one to write; with --into pictures and folders to "
            "read. \"-\" is standard input or output. Formats are what libvips reads and writes: "
            "PNG, JPEG, WebP, TIFF, AVIF, HEIC and others; clips are whatever FFmpeg reads, and .mp4, "
            ".mov, .mkv, .webm or .y4m")
        ->required();
    command
        ->add_option("--into", options->batch.into,
                     "Folder to write many pictures to, under their own names; it is made if need be")
        ->type_name("DIR");
    command->add_flag("-r", options->batch.recursive, "Also take the pictures in folders of folders")
        ->needs("--into");
    command->add_flag("--skip-existing", options->batch.skipExisting,
                      "Leave out pictures and clips whose output exists, to go on where a run ended");
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
            ->type_name("FILE")
            ->check([](const std::string& file) { return file.empty() ? "no file is named" : ""; });
    command->add_option("--intensity", options->intensity, "How much of the graded color to mix in, 0 to 1")
        ->check(checkAmount)
        ->needs(lut)
        ->capture_default_str();
    command
        ->add_option("--detail", options->detail,
                     "photo adds what the effects change to the untouched picture, which keeps fine detail, "
                     "16 bits and every pixel that the effects leave alone; frame makes exactly what a "
                     "camera frame becomes, 8-bit 4:2:0. photo is the default; with --lut there is only "
                     "frame, because a grading cannot be added")
        ->check(CLI::IsMember({"photo", "frame"}));
    command->add_option("--format", options->format, "Frame layout")
        ->check(CLI::IsMember({"nv12", "nv21"}))
        ->capture_default_str();
    command->add_option("--standard", options->standard, "Color matrix; of clips, instead of what they say")
        ->check(CLI::IsMember({"bt601", "bt709"}))
        ->capture_default_str();
    command->add_option("--range", options->range, "Color range; of clips, instead of what they say")
        ->check(CLI::IsMember({"full", "video"}))
        ->capture_default_str();
    command
        ->add_option("--compare", options->compare, "Also write before and after, side by side, to this file")
        ->type_name("FILE")
        ->excludes("--into");
    options->photo.addInputOptions(*command);
    options->photo.addOutputOptions(*command);
    options->clip.addTo(*command);
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
