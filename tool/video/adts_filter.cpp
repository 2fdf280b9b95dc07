#include "tool/video/adts_filter.h"

#include <cstring>

namespace ze::tool {
namespace {

constexpr char kFilter[] = "aac_adtstoasc";

FfmpegPtr<AVBSFContext> makeFilter() {
    AVBSFContext* filter = nullptr;
    av_bsf_alloc(av_bsf_get_by_name(kFilter), &filter);
    return owned(filter);
}

} // namespace

bool AdtsFilter::isFor(const AVStream& stream) {
    const AVCodecParameters& codec = *stream.codecpar;
    return codec.codec_id == AV_CODEC_ID_AAC && codec.extradata_size == 0 && codec.sample_rate > 0;
}

AdtsFilter::AdtsFilter(AVStream& stream) : m_stream(stream), m_filter(makeFilter()) {
    m_filter->time_base_in = stream.time_base;
    if (avcodec_parameters_copy(m_filter->par_in, stream.codecpar) < 0 || av_bsf_init(m_filter.get()) < 0)
        throw std::bad_alloc();
}

bool AdtsFilter::filter(AVPacket& packet) {
    const int sent = av_bsf_send_packet(m_filter.get(), &packet);
    const int received = sent < 0 ? sent : av_bsf_receive_packet(m_filter.get(), &packet);
    if (sent == AVERROR(ENOMEM) || received == AVERROR(ENOMEM))
        throw std::bad_alloc();
    if (received >= 0 && !isDone())
        describe(packet);
    return received >= 0;
}

void AdtsFilter::describe(AVPacket& packet) {
    size_t size = 0;
    const uint8_t* const data = av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, &size);
    if (!data)
        return;
    AVCodecParameters& codec = *m_stream.codecpar;
    codec.extradata = static_cast<uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!codec.extradata)
        throw std::bad_alloc();
    std::memcpy(codec.extradata, data, size);
    codec.extradata_size = static_cast<int>(size);
    av_packet_free_side_data(&packet); // otherwise muxers would write it once more
}

} // namespace ze::tool
