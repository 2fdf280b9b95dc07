#include "tool/pictures/picture_reader.h"

#include "tool/errors.h"
#include "tool/pictures/ffmpeg.h"
#include "tool/pictures/frame_to_picture.h"
#include "tool/pictures/orientation.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include <unistd.h>

namespace ze::tool {
namespace {

// What a run needs at its peak: the decoded frame, the pictures before and after, the planes, the library's
// textures (in main memory where the driver draws in software) and the encoder's buffers. 30 were measured
// with llvmpipe.
constexpr int64_t kBytesPerPixel = 40;

std::string inMebibytes(int64_t bytes) {
    return std::to_string(bytes >> 20) + " MiB";
}

// What a picture may cost, and what to say when it costs more.
struct Budget {
    int64_t memory = 0;
    std::string refusal;
};

// Decoders ask here for the memory of a picture, which is where one that is too large is turned away.
int refuseHugePicture(AVCodecContext* codec, AVFrame* frame, int flags) {
    Budget& budget = *static_cast<Budget*>(codec->opaque);
    const int64_t needed = int64_t{frame->width} * frame->height * kBytesPerPixel;
    if (needed <= budget.memory)
        return avcodec_default_get_buffer2(codec, frame, flags);
    budget.refusal = std::to_string(frame->width) + "x" + std::to_string(frame->height) + " pixels need " +
                     inMebibytes(needed) + " of memory, of which there are " + inMebibytes(budget.memory);
    return AVERROR(ENOMEM);
}

class PictureDecoder {
public:
    PictureDecoder(std::string path, int64_t memory) : m_path(std::move(path)), m_budget{memory, {}} {
        startFfmpegLog();
        openFile();
        openDecoder();
    }

    FfmpegPtr<AVFrame> firstFrame() {
        FfmpegPtr<AVFrame> frame = owned(av_frame_alloc());
        int result = 0;
        while ((result = avcodec_receive_frame(m_codec.get(), frame.get())) == AVERROR(EAGAIN))
            sendPacket();
        if (result < 0 || frame->decode_error_flags != 0)
            throw damaged(result);
        return frame;
    }

private:
    // The file is opened here and not by name through a demuxer: names are neither URLs nor number patterns.
    void openFile() {
        std::error_code ignored;
        if (std::filesystem::is_directory(m_path, ignored))
            throw Failure(ExitCode::badInput, m_path, "is a directory");
        AVIOContext* stream = nullptr;
        int result = avio_open(&stream, ("file:" + m_path).c_str(), AVIO_FLAG_READ);
        if (result < 0)
            throw Failure(ExitCode::badInput, m_path, "cannot be read: " + ffmpegReason(result));
        m_stream.reset(stream);

        AVFormatContext* format = owned(avformat_alloc_context()).release();
        format->pb = stream;
        // A playlist must not make FFmpeg fetch other files.
        AVDictionary* options = nullptr;
        av_dict_set(&options, "protocol_whitelist", "none", 0);
        result = avformat_open_input(&format, "", nullptr, &options);
        av_dict_free(&options);
        if (result < 0)
            throw damaged(result);
        m_format.reset(format);
    }

    void openDecoder() {
        m_streamIndex = av_find_best_stream(m_format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        if (m_streamIndex < 0)
            throw damaged(m_streamIndex);
        const AVCodecParameters* parameters = m_format->streams[m_streamIndex]->codecpar;
        const AVCodec* decoder = avcodec_find_decoder(parameters->codec_id);
        m_codec = owned(avcodec_alloc_context3(decoder));
        m_codec->thread_count = 1;
        // Without this, decoders fill up what is missing or damaged and only mention it.
        m_codec->err_recognition = AV_EF_EXPLODE | AV_EF_CRCCHECK;
        m_codec->opaque = &m_budget;
        m_codec->get_buffer2 = refuseHugePicture;
        int result = avcodec_parameters_to_context(m_codec.get(), parameters);
        if (result >= 0)
            result = avcodec_open2(m_codec.get(), decoder, nullptr);
        if (result < 0)
            throw damaged(result);
    }

    // Feeds the decoder the next packet of the picture, or the end of the file.
    void sendPacket() {
        const FfmpegPtr<AVPacket> packet = owned(av_packet_alloc());
        int result = 0;
        do {
            av_packet_unref(packet.get());
            result = av_read_frame(m_format.get(), packet.get());
        } while (result >= 0 && packet->stream_index != m_streamIndex);
        result = avcodec_send_packet(m_codec.get(), result >= 0 ? packet.get() : nullptr);
        if (result < 0)
            throw damaged(result);
    }

    Failure damaged(int error) const {
        if (!m_budget.refusal.empty())
            return {ExitCode::failed, m_path, m_budget.refusal};
        const std::string reason = ffmpegReason(error);
        int width = 0;
        int height = 0;
        if (std::sscanf(reason.c_str(), "Picture size %dx%d", &width, &height) == 2 && width > 0 &&
            height > 0)
            return {ExitCode::failed, m_path, "is larger than FFmpeg reads (" + reason + ")"};
        return {ExitCode::badInput, m_path, "is no valid picture (" + reason + ")"};
    }

    std::string m_path;
    Budget m_budget;
    FfmpegPtr<AVIOContext> m_stream;
    FfmpegPtr<AVFormatContext> m_format;
    FfmpegPtr<AVCodecContext> m_codec;
    int m_streamIndex = -1;
};

} // namespace

int64_t machineMemory() {
    return int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
}

Picture readPicture(const std::string& path, int64_t memory) {
    const FfmpegPtr<AVFrame> frame = PictureDecoder(path, memory).firstFrame();
    Picture picture = pictureFromFrame(*frame);
    const AVFrameSideData* matrix = av_frame_get_side_data(frame.get(), AV_FRAME_DATA_DISPLAYMATRIX);
    if (!matrix)
        return picture;
    int32_t numbers[9];
    std::memcpy(numbers, matrix->data, sizeof numbers);
    return upright(std::move(picture), orientationOf(numbers));
}

} // namespace ze::tool
