#include "tool/video/clip_run.h"

#include "tool/errors.h"
#include "tool/files/interruption.h"
#include "tool/files/output_file.h"
#include "tool/number_text.h"
#include "tool/render/headless.h"
#include "tool/render/render_session.h"
#include "tool/render/texture_limit.h"
#include "tool/video/clip_output.h"
#include "tool/video/clip_pipeline.h"
#include "tool/video/clip_progress.h"
#include "tool/video/format_notes.h"
#include "tool/video/frame_converter.h"
#include "tool/video/rotation.h"
#include "tool/video/side_by_side.h"
#include "tool/video/steady_rate.h"

#include <csignal>
#include <deque>
#include <memory>
#include <optional>
#include <utility>

namespace ze::tool {
namespace {

constexpr size_t kLongestStart = size_t{256} << 20; // bytes; 20 minutes of uncompressed sound, an hour of AAC
constexpr size_t kPacketOverhead = 1024;            // of FFmpeg's, about

// What goes through the stages: a frame, with one of before and after where that is wanted, or a packet.
struct Thing {
    ClipItem item;
    ClipItem both;
};

class ClipRun {
public:
    ClipRun(const ClipJob& job, const zebeauty::Settings& settings);
    void run();

private:
    std::string noFrames() const;
    void readStart();
    void checkOutput(const std::string& name, const ClipContainer& container) const;
    std::optional<Thing> read();
    void render(Thing& thing);
    void write(const Thing& thing);
    void refuseDamage(const AVPacket& packet);
    void checkTime(const AVFrame& frame);
    void tellDamage() const;
    template <class Work>
    auto ofInput(Work work) const {
        return withFileInError(m_job.input, work);
    }

    const ClipJob& m_job;
    const zebeauty::Settings& m_settings;
    std::unique_ptr<ClipReader> m_reader;
    std::deque<ClipItem> m_start; // what was read to see the first frame
    VideoFormat m_format;
    std::optional<FormatNotes> m_notes;
    std::optional<FrameConverter> m_converter;
    RenderSession m_session;
    std::optional<ClipOutput> m_output;
    std::optional<SideBySide> m_both; // with the next
    std::optional<ClipOutput> m_compare;
    std::optional<SteadyRate> m_rate; // until times do not fit
    std::optional<ClipProgress> m_progress;
    int m_refused = 0; // packets that the output did not take
};

ClipRun::ClipRun(const ClipJob& job, const zebeauty::Settings& settings)
    : m_job(job), m_settings(settings),
      m_reader(ofInput([&] { return std::make_unique<ClipReader>(job.input, job.reader); })) {
    ofInput([this] { readStart(); });
    checkOutput(job.output, *job.container);
    if (!job.compare.empty())
        checkOutput(job.compare, *job.compareContainer);
    m_output.emplace(job.output, *job.container, job.encoder, m_format, *m_reader);
    if (!job.compare.empty()) {
        const bool isTurned = holdsRotation(*job.compareContainer);
        m_both.emplace(m_format, isTurned ? displayMatrixOf(m_reader->video()) : nullptr);
        m_compare.emplace(job.compare, *job.compareContainer, job.encoder, m_both->format(), *m_reader);
    }
    m_rate.emplace(m_format.frameRate, m_format.timeBase);
    m_progress.emplace(job.progress);
}

std::string ClipRun::noFrames() const {
    if (!m_job.reader.range.isWhole())
        return "has no frames between --from and --to";
    return m_reader->isPipe()
               ? "has no frames that can be read from a pipe; with its index at the end, it has "
                 "to be a file"
               : "has no frames";
}

void ClipRun::readStart() {
    size_t size = 0;
    do {
        std::optional<ClipItem> item = m_reader->next();
        if (!item)
            throw Failure(ExitCode::badInput, noFrames());
        if (item->packet)
            size += static_cast<size_t>(item->packet->size) + kPacketOverhead;
        if (size > kLongestStart)
            throw Failure(ExitCode::badInput, "has more than " + std::to_string(kLongestStart >> 20) +
                                                  " MiB of sound and more before its first frame; --from "
                                                  "leaves that out");
        m_start.push_back(std::move(*item));
    } while (!m_start.back().frame);
    const AVFrame& first = *m_start.back().frame;
    m_format = formatOf(m_reader->video(), m_reader->frameRate(), first, m_job.colors);
    adoptDisplayMatrix(m_reader->video(), first);
    m_notes.emplace(m_job.input, m_format, m_job.colors);
    m_notes->look(first);
    if (m_settings.isActive())
        checkTextureSize(m_format.width, m_format.height, "pixels");
    m_converter.emplace(m_format, m_job.colors);
}

void ClipRun::checkOutput(const std::string& name, const ClipContainer& container) const {
    checkRotation(name, container, m_reader->video());
    tellUnnamed(name, container, m_format);
}

std::optional<Thing> ClipRun::read() {
    std::optional<ClipItem> item;
    if (m_start.empty()) {
        item = m_reader->next();
    } else {
        item = std::move(m_start.front());
        m_start.pop_front();
    }
    if (!item)
        return std::nullopt;
    if (item->frame) {
        checkColors(tagsOf(*item->frame, m_job.colors));
        m_notes->look(*item->frame);
        item->frame = m_converter->convert(std::move(item->frame));
    }
    return Thing{std::move(*item), {}};
}

void ClipRun::render(Thing& thing) {
    if (!thing.item.frame)
        return;
    AVFrame& pixels = *thing.item.frame;
    if (m_compare)
        thing.both.frame = m_both->withBefore(pixels);
    zebeauty::Frame frame;
    frame.planes = {pixels.data[0], pixels.data[1], pixels.linesize[0], pixels.linesize[1]};
    frame.width = pixels.width;
    frame.height = pixels.height;
    frame.format =
        m_format.layout == AV_PIX_FMT_NV21 ? zebeauty::PixelFormat::nv21 : zebeauty::PixelFormat::nv12;
    frame.standard = static_cast<zebeauty::ColorStandard>(standardOf(m_format.tags, m_format.height));
    frame.range = static_cast<zebeauty::ColorRange>(rangeOf(m_format.tags));
    m_session.render(frame, m_settings);
    if (m_compare)
        m_both->addAfter(*thing.both.frame, pixels);
}

void ClipRun::write(const Thing& thing) {
    if (!m_output->write(thing.item))
        refuseDamage(*thing.item.packet);
    if (m_compare)
        m_compare->write(thing.item.frame ? thing.both : thing.item);
    if (thing.item.frame) {
        checkTime(*thing.item.frame);
        m_progress->advance(*thing.item.frame, m_format.timeBase, m_reader->duration());
    }
}

void ClipRun::refuseDamage(const AVPacket& packet) {
    ++m_refused;
    if (m_job.reader.strict)
        throw Failure(ExitCode::badInput, m_job.input,
                      "is damaged: a packet of stream " + std::to_string(packet.stream_index) +
                          " has no place in " + m_job.container->extension);
}

void ClipRun::checkTime(const AVFrame& frame) {
    if (!m_rate || m_rate->fits(frame.pts))
        return;
    m_rate.reset();
    for (const auto& [name, container] :
         {std::pair(m_job.output, m_job.container), {m_job.compare, m_job.compareContainer}})
        if (container && !container->holdsStreams)
            printError(name + ": frames come at varying times, which are left out: " + container->extension +
                       " has frames alone, at one rate");
}

void ClipRun::run() {
    ClipPipeline<Thing>().run([this] { return ofInput([this] { return read(); }); },
                              [this](Thing& thing) { ofInput([&] { render(thing); }); },
                              [this](const Thing& thing) { write(thing); });
    m_output->finish();
    if (m_compare) {
        m_compare->finish();
        m_compare->commit();
    }
    m_output->commit();
    m_progress->finish();
    tellDamage();
}

void ClipRun::tellDamage() const {
    if (const int count = m_reader->damaged() + m_refused)
        printError(m_job.input + ": is damaged: " + std::to_string(count) +
                   (count == 1 ? " packet or frame" : " packets or frames") +
                   " could not be read whole; --strict makes that a failure");
    if (const int64_t missing = m_reader->missing())
        printError(m_job.input + ": ends " + numberText(static_cast<double>(missing) / AV_TIME_BASE, 2) +
                   " s before the end that it names, as it does when it was cut off; --strict makes that a "
                   "failure");
}

// The reader of a pipe wanted no more, which is no failure unless there was to be a file, too.
void endWithoutReader(const ClipJob& job) {
    const std::string& file = isStream(job.output) ? job.compare : job.output;
    if (file.empty() || isStream(file))
        return;
    const Failure failure(ExitCode::failed, file,
                          "is not written, because the reader of the pipe beside it has gone");
    if (waitingSignal() == 0)
        throw failure;
    printError(failure.what());
}

} // namespace

void runClip(const ClipJob& job, const zebeauty::Settings& settings) {
    if (settings.isActive())
        avoidDeadDisplay(); // while there are no threads yet
    const InterruptionHold hold;
    try {
        ClipRun(job, settings).run();
    } catch (const ReaderGone&) {
        endWithoutReader(job);
    } catch (const Failure&) {
        const int signal = waitingSignal(); // at the end of the hold it ends the program
        if (signal == 0)
            throw;
        if (signal == SIGPIPE)
            endWithoutReader(job);
        else
            printError(job.input + ": interrupted");
    }
}

} // namespace ze::tool
