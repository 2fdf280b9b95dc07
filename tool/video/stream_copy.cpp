#include "tool/video/stream_copy.h"

#include "tool/errors.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>

extern "C" {
#include <libavutil/avstring.h>
}

namespace ze::tool {
namespace {

bool isOther(const ClipReader& reader, const AVStream& stream) {
    return &stream != &reader.video() && stream.discard != AVDISCARD_ALL; // such as the text behind chapters
}

// Timed data of a maker's own, or sound that is announced and does not come.
bool isUnknown(const AVStream& stream) {
    const AVCodecParameters& kind = *stream.codecpar;
    if (kind.codec_id == AV_CODEC_ID_NONE)
        return kind.codec_type != AVMEDIA_TYPE_ATTACHMENT;
    return (kind.codec_type == AVMEDIA_TYPE_AUDIO && kind.sample_rate <= 0) ||
           (kind.codec_type == AVMEDIA_TYPE_VIDEO && kind.width <= 0);
}

// What broadcasts have beside sound and subtitles.
bool isForNoContainer(const AVStream& stream) {
    const auto holds = [&](const ClipContainer& container) { return canHold(container, stream); };
    return stream.codecpar->codec_type == AVMEDIA_TYPE_DATA && !firstContainer(holds);
}

// The time of day of the first frame, which metadata says, too, and FFmpeg makes such a stream of.
bool isTimecode(const AVStream& stream) {
    return stream.codecpar->codec_tag == MKTAG('t', 'm', 'c', 'd');
}

std::string describe(const AVStream& stream) {
    const char* const type = av_get_media_type_string(stream.codecpar->codec_type);
    return "stream " + std::to_string(stream.index) + " (" + (type ? type : "unknown") + ", " +
           avcodec_get_name(stream.codecpar->codec_id) + ")";
}

// How to go on: with another container, or without the stream.
std::string remedy(const ClipReader& from, const std::vector<int>& streams, const AVStream& stream) {
    const AVFormatContext& input = from.container();
    const auto holdsAll = [&](const ClipContainer& other) {
        return std::all_of(streams.begin(), streams.end(),
                           [&](int index) { return canHold(other, *input.streams[index]); });
    };
    if (const ClipContainer* const better = firstContainer(holdsAll))
        return std::string(better->extension) + " holds all streams";
    return "no container holds all streams of this clip; 'ffmpeg -i CLIP -map 0 -map -0:" +
           std::to_string(stream.index) + " -c copy OTHER' leaves this one out";
}

// What describes the old file and would be untrue of the new one.
bool isAboutFile(const std::string& key) {
    for (const char* const known : {"major_brand", "minor_version", "compatible_brands"})
        if (av_strcasecmp(key.c_str(), known) == 0)
            return true;
    for (const char* const start : {"BPS", "NUMBER_OF_", "_STATISTICS_", "DURATION"})
        if (key.rfind(start, 0) == 0)
            return true;
    return false;
}

void copyMetadata(const AVDictionary* from, AVDictionary** to) {
    for (const AVDictionaryEntry* entry = nullptr;
         (entry = av_dict_get(from, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr;)
        if (!isAboutFile(entry->key))
            av_dict_set(to, entry->key, entry->value, 0);
}

bool describesPlacement(AVPacketSideDataType type) {
    return type == AV_PKT_DATA_DISPLAYMATRIX || type == AV_PKT_DATA_STEREO3D || type == AV_PKT_DATA_SPHERICAL;
}

void copySideData(const AVPacketSideData& data, AVStream& to) {
    uint8_t* const copy = av_stream_new_side_data(&to, data.type, data.size);
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(copy, data.data, data.size);
}

bool isCover(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0 && stream.attached_pic.size > 0;
}

bool isMatroska(const AVOutputFormat& format) {
    return std::string_view(format.name) == "matroska";
}

uint8_t* copyOf(const AVPacket& packet) {
    const auto size = static_cast<size_t>(packet.size);
    auto* const copy = static_cast<uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(copy, packet.data, size);
    return copy;
}

AVChapter* copyOf(const AVChapter& chapter) {
    auto* const copy = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
    if (!copy)
        throw std::bad_alloc();
    copy->id = chapter.id;
    copy->time_base = chapter.time_base;
    av_dict_copy(&copy->metadata, chapter.metadata, 0);
    return copy;
}

} // namespace

std::vector<int> streamsToCopy(const std::string& name, const ClipReader& from,
                               const ClipContainer& container) {
    std::vector<int> streams;
    const AVFormatContext& input = from.container();
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream& stream = *input.streams[i];
        if (!isOther(from, stream) || isTimecode(stream))
            continue;
        if (!container.holdsStreams)
            printError(name + ": " + describe(stream) + " is left out: " + container.extension +
                       " has frames alone");
        else if (isUnknown(stream))
            printError(name + ": " + describe(stream) + " is left out: FFmpeg cannot tell what it is");
        else if (isForNoContainer(stream))
            printError(name + ": " + describe(stream) + " is left out: no container holds it");
        else
            streams.push_back(stream.index);
    }
    for (const int index : streams)
        if (!canHold(container, *input.streams[index]))
            throw Failure(ExitCode::usage, describe(*input.streams[index]) + " has no place in " +
                                               container.extension + "; " +
                                               remedy(from, streams, *input.streams[index]));
    return streams;
}

StreamCopy::StreamCopy(const ClipReader& from, const std::vector<int>& streams, AVFormatContext& to)
    : m_from(from.container()), m_to(to) {
    for (unsigned i = 0; i < m_from.nb_streams; ++i) {
        const AVStream& stream = *m_from.streams[i];
        const bool isCopied = std::find(streams.begin(), streams.end(), stream.index) != streams.end();
        if (&stream == &from.video())
            m_video = &addRendered(stream);
        else if (isCopied && isCover(stream) && isMatroska(*m_to.oformat))
            attachCover(stream);
        else if (isCopied)
            m_streams[stream.index] = &addCopied(stream);
    }
    copyMetadata(m_from.metadata, &m_to.metadata);
    copyChapters(from);
}

AVStream& StreamCopy::add(const AVStream& from) {
    AVStream* const stream = avformat_new_stream(&m_to, nullptr);
    if (!stream)
        throw std::bad_alloc();
    stream->id = from.id;
    stream->disposition = from.disposition;
    stream->time_base = from.time_base;
    stream->avg_frame_rate = from.avg_frame_rate;
    stream->r_frame_rate = from.r_frame_rate;
    stream->sample_aspect_ratio = from.sample_aspect_ratio;
    copyMetadata(from.metadata, &stream->metadata);
    return *stream;
}

AVStream& StreamCopy::addRendered(const AVStream& from) {
    AVStream& stream = add(from);
    for (int i = 0; i < from.nb_side_data; ++i)
        if (describesPlacement(from.side_data[i].type))
            copySideData(from.side_data[i], stream);
    for (const char* const untrue : {"encoder", "alpha_mode"}) // in whatever case
        av_dict_set(&stream.metadata, untrue, nullptr, 0);
    return stream;
}

// Matroska has pictures beside the frames as attachments, of these names.
void StreamCopy::attachCover(const AVStream& from) {
    AVStream& stream = add(from);
    const bool isPng = from.codecpar->codec_id == AV_CODEC_ID_PNG;
    stream.disposition = 0;
    stream.codecpar->codec_type = AVMEDIA_TYPE_ATTACHMENT;
    stream.codecpar->codec_id = from.codecpar->codec_id;
    stream.codecpar->extradata = copyOf(from.attached_pic);
    stream.codecpar->extradata_size = from.attached_pic.size;
    av_dict_set(&stream.metadata, "filename", isPng ? "cover.png" : "cover.jpg", AV_DICT_DONT_OVERWRITE);
    av_dict_set(&stream.metadata, "mimetype", isPng ? "image/png" : "image/jpeg", AV_DICT_DONT_OVERWRITE);
}

AVStream& StreamCopy::addCopied(const AVStream& from) {
    AVStream& stream = add(from);
    if (avcodec_parameters_copy(stream.codecpar, from.codecpar) < 0)
        throw std::bad_alloc();
    stream.codecpar->codec_tag = codecTag(*from.codecpar, *m_to.oformat);
    for (int i = 0; i < from.nb_side_data; ++i)
        copySideData(from.side_data[i], stream);
    return stream;
}

void StreamCopy::copyChapters(const ClipReader& reader) {
    m_to.chapters = static_cast<AVChapter**>(av_calloc(m_from.nb_chapters + 1, sizeof(AVChapter*)));
    if (!m_to.chapters)
        throw std::bad_alloc();
    for (unsigned i = 0; i < m_from.nb_chapters; ++i) {
        const AVChapter& chapter = *m_from.chapters[i];
        const int64_t shift = av_rescale_q(reader.shift(), kMicrosecond, chapter.time_base);
        const int64_t start = std::max<int64_t>(0, chapter.start - shift);
        int64_t end = chapter.end - shift;
        if (av_compare_ts(end, chapter.time_base, reader.end(), kMicrosecond) > 0)
            end = av_rescale_q(reader.end(), kMicrosecond, chapter.time_base);
        if (end <= start)
            continue;
        AVChapter* const copy = copyOf(chapter);
        copy->start = start;
        copy->end = end;
        m_to.chapters[m_to.nb_chapters++] = copy;
    }
}

bool StreamCopy::adapt(AVPacket& packet) {
    const auto found = m_streams.find(packet.stream_index);
    if (found == m_streams.end())
        return false;
    AVStream& to = *found->second;
    av_packet_rescale_ts(&packet, m_from.streams[packet.stream_index]->time_base, to.time_base);
    packet.stream_index = to.index;
    packet.pos = -1;
    const auto last = m_lastTimes.find(to.index);
    if (last != m_lastTimes.end() && packet.dts != AV_NOPTS_VALUE && packet.dts <= last->second)
        packet.dts = av_sat_add64(last->second, 1); // parts that overlap, times that were rounded to the same
    if (packet.dts != AV_NOPTS_VALUE) {
        m_lastTimes[to.index] = packet.dts;
        if (packet.pts != AV_NOPTS_VALUE)
            packet.pts = std::max(packet.pts, packet.dts);
    }
    if (packet.duration < 0 || packet.duration > INT_MAX)
        packet.duration = 0; // as damage makes it, and muxers refuse
    return true;
}

} // namespace ze::tool
