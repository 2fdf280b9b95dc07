#include "tool/video/clip_options.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/output_check.h"
#include "tool/files/output_file.h"
#include "tool/video/clip_sniffer.h"

extern "C" {
#include <libavutil/parseutils.h>
}

namespace ze::tool {
namespace {

constexpr char kGroup[] = "Moving pictures";

int64_t timeOf(const std::string& text) {
    int64_t time = 0;
    const std::string whole = (text.rfind('.', 0) == 0 ? "0" : "") + text; // FFmpeg refuses ".5"
    return av_parse_time(&time, whole.c_str(), 1) == 0 && time >= 0 ? time : -1;
}

std::string checkTime(const std::string& text) {
    return timeOf(text) >= 0 ? "" : "'" + text + "' is no time, as 12.5 or 1:02:03.5";
}

std::string checkSize(const std::string& text) {
    int width = 0, height = 0;
    return av_parse_video_size(&width, &height, text.c_str()) == 0 ? ""
                                                                   : "'" + text + "' is no size, as 1280x720";
}

std::string checkRate(const std::string& text) {
    AVRational rate = {};
    return av_parse_video_rate(&rate, text.c_str()) == 0 ? ""
                                                         : "'" + text + "' is no rate, as 25 or 30000/1001";
}

bool isNamed(const CLI::App& command, const std::string& option) {
    return command.get_option(option)->count() > 0;
}

} // namespace

void ClipOptions::addTo(CLI::App& command) {
    m_command = &command;
    const std::vector<CLI::Option*> options = {
        command.add_option("--encoder", m_encoder.encoder,
                           "FFmpeg's encoder; usual are libx264 in .mp4, .mov and .mkv, libvpx-vp9 in .webm"),
        command.add_option("--crf", m_crf,
                           "Quality that the encoder keeps, lower is better; 18 is usual with H.264, 24 with "
                           "VP9"),
        command
            .add_option("--encoder-option", m_encoder.options,
                        "KEY=VALUE, handed to the encoder; once for each")
            ->allow_extra_args(false),
        command.add_option("--raw", m_raw, "INPUT is frames without anything between them, in this layout")
            ->check(CLI::IsMember({"nv12", "nv21"})),
        command.add_option("--size", m_size, "Size of raw frames, as 1280x720")
            ->check(checkSize)
            ->needs("--raw"),
        command.add_option("--rate", m_rate, "Raw frames a second")
            ->check(checkRate)
            ->needs("--raw")
            ->capture_default_str(),
        command.add_option("--from", m_from, "Where to begin, in seconds or as 1:02:03.5")->check(checkTime),
        command.add_option("--to", m_to, "Where to end, counted like --from")->check(checkTime),
        command.add_flag("--strict", m_strict, "Fail where a clip is damaged; else what can be decoded is"),
        command
            .add_option("--progress", m_progress,
                        "How to say how far it is: a line on a terminal, or an object of JSON a line")
            ->check(CLI::IsMember({"line", "json"}))
            ->capture_default_str(),
    };
    for (CLI::Option* option : options)
        option->group(kGroup);
}

bool ClipOptions::isClip(const std::string& input) const {
    return !m_raw.empty() || holdsClip(input);
}

void ClipOptions::checkUnused() const {
    for (const CLI::Option* option : m_command->get_options())
        if (option->get_group() == kGroup && option->count() > 0)
            throw Failure(ExitCode::usage, option->get_name() + " is for moving pictures");
}

ClipJob ClipOptions::job(const std::string& input, const std::string& output, const std::string& compare,
                         const PhotoOptions& common) const {
    for (const char* const option :
         {"--detail", "--format", "--to-srgb", "--untrusted", "--quality", "--strip", "-r"})
        if (isNamed(*m_command, option))
            throw Failure(ExitCode::usage, std::string(option) + " is for pictures, and this is a clip");
    ClipJob job;
    job.input = input;
    job.output = output;
    job.compare = compare;
    job.container = containerFor(output, common);
    if (!compare.empty())
        job.compareContainer = containerFor(compare, common);
    job.reader = {rawLayout(), range(), m_strict};
    job.encoder = m_encoder;
    job.encoder.lossless = common.save.lossless;
    if (isNamed(*m_command, "--crf"))
        job.encoder.crf = m_crf;
    job.colors = colors();
    job.progress = m_progress == "json" ? ProgressKind::json : ProgressKind::line;
    return job;
}

// Pipes without a name for it get frames as they are: raw ones where raw ones come in.
const ClipContainer* ClipOptions::containerFor(const std::string& output, const PhotoOptions& common) const {
    refuseFolder(output);
    std::string extension = common.as.empty() ? extensionOf(output) : extensionOf("x." + common.as);
    if (extension.empty() && isStream(output))
        extension = m_raw.empty() ? ".y4m" : "." + m_raw;
    const ClipContainer* const container = clipContainerOf(extension);
    if (!container)
        throw Failure(ExitCode::usage, output,
                      "unknown extension for a clip; " + clipExtensions() + " can be written");
    if (common.save.lossless && container->holdsStreams && extension != ".mkv")
        throw Failure(ExitCode::usage, output, "--lossless is FFV1, which .mkv holds");
    checkOutput(output, common.overwrite);
    return container;
}

std::optional<RawLayout> ClipOptions::rawLayout() const {
    if (m_raw.empty())
        return std::nullopt;
    if (m_size.empty())
        throw Failure(ExitCode::usage, "--raw needs --size");
    RawLayout raw;
    raw.layout = m_raw == "nv21" ? AV_PIX_FMT_NV21 : AV_PIX_FMT_NV12;
    av_parse_video_size(&raw.width, &raw.height, m_size.c_str());
    raw.rate = m_rate;
    return raw;
}

ColorOverride ClipOptions::colors() const {
    ColorOverride colors;
    const auto valueOf = [this](const char* option) {
        return m_command->get_option(option)->as<std::string>();
    };
    if (isNamed(*m_command, "--standard"))
        colors.standard = valueOf("--standard") == "bt709" ? ColorStandard::bt709 : ColorStandard::bt601;
    if (isNamed(*m_command, "--range"))
        colors.range = valueOf("--range") == "full" ? ColorRange::full : ColorRange::video;
    return colors;
}

TimeRange ClipOptions::range() const {
    TimeRange range;
    range.from = timeOf(m_from);
    if (!m_to.empty())
        range.to = timeOf(m_to);
    if (range.to <= range.from)
        throw Failure(ExitCode::usage, "--to is not after --from");
    return range;
}

} // namespace ze::tool
