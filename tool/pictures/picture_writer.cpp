#include "tool/pictures/picture_writer.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/pictures/color_conversion.h"

#include <cstring>

namespace ze::tool {
namespace {

// 2 (coarse) … 31 is the scale of FFmpeg's encoder; 2 gives about what other programs call quality 95.
constexpr int kJpegQuantizer = 2;

// Of zlib's 1 to 9. On photos this is more than twice as fast as zlib's own choice of 6, for 2 % more bytes.
constexpr int kPngCompression = 3;

FfmpegPtr<AVFrame> opaqueFrame(const Picture& picture) {
    FfmpegPtr<AVFrame> frame = makeFrame(AV_PIX_FMT_RGB24, picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y)
        std::memcpy(frame->data[0] + static_cast<ptrdiff_t>(y) * frame->linesize[0], picture.row(y),
                    3 * static_cast<size_t>(picture.width));
    return frame;
}

FfmpegPtr<AVFrame> transparentFrame(const Picture& picture) {
    FfmpegPtr<AVFrame> frame = makeFrame(AV_PIX_FMT_RGBA, picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        uint8_t* target = frame->data[0] + static_cast<ptrdiff_t>(y) * frame->linesize[0];
        for (int x = 0; x < picture.width; ++x, target += 4) {
            std::memcpy(target, picture.row(y) + 3 * static_cast<ptrdiff_t>(x), 3);
            target[3] = picture.alpha[picture.index(x, y)];
        }
    }
    return frame;
}

Picture overWhite(Picture picture) {
    for (size_t i = 0; i < picture.rgb.size(); ++i) {
        const int alpha = picture.alpha[i / 3];
        picture.rgb[i] = static_cast<uint8_t>((picture.rgb[i] * alpha + 255 * (255 - alpha) + 127) / 255);
    }
    picture.alpha.clear();
    return picture;
}

FfmpegPtr<AVFrame> jpegFrame(const Picture& picture) {
    const FfmpegPtr<AVFrame> rgb = opaqueFrame(picture.alpha.empty() ? picture : overWhite(picture));
    FfmpegPtr<AVFrame> yuv = makeFrame(AV_PIX_FMT_YUV444P, picture.width, picture.height);
    yuv->colorspace = AVCOL_SPC_BT470BG;
    yuv->color_range = AVCOL_RANGE_JPEG;
    convertColors(*rgb, *yuv);
    yuv->quality = kJpegQuantizer * FF_QP2LAMBDA;
    return yuv;
}

FfmpegPtr<AVCodecContext> openEncoder(AVCodecID id, const AVFrame& frame) {
    const AVCodec* encoder = avcodec_find_encoder(id);
    FfmpegPtr<AVCodecContext> codec = owned(avcodec_alloc_context3(encoder));
    codec->width = frame.width;
    codec->height = frame.height;
    codec->pix_fmt = static_cast<AVPixelFormat>(frame.format);
    codec->color_range = frame.color_range;
    codec->colorspace = frame.colorspace;
    codec->time_base = {1, 1};
    codec->thread_count = 1;
    codec->flags = AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
    codec->global_quality = frame.quality;
    AVDictionary* options = nullptr;
    if (id == AV_CODEC_ID_PNG)
        av_dict_set(&options, "pred", "mixed", 0);
    codec->compression_level = kPngCompression;
    const int result = avcodec_open2(codec.get(), encoder, &options);
    av_dict_free(&options);
    if (result < 0)
        throw Failure(ExitCode::failed, "cannot encode: " + ffmpegReason(result));
    return codec;
}

std::vector<uint8_t> encode(AVCodecID id, const AVFrame& frame) {
    const FfmpegPtr<AVCodecContext> codec = openEncoder(id, frame);
    const FfmpegPtr<AVPacket> packet = owned(av_packet_alloc());
    int result = avcodec_send_frame(codec.get(), &frame);
    if (result >= 0)
        result = avcodec_receive_packet(codec.get(), packet.get());
    if (result < 0)
        throw Failure(ExitCode::failed, "cannot encode: " + ffmpegReason(result));
    return {packet->data, packet->data + packet->size};
}

} // namespace

std::optional<PictureFormat> pictureFormatOf(const std::string& path) {
    const std::string extension = extensionOf(path);
    if (extension == ".png")
        return PictureFormat::png;
    if (extension == ".jpg" || extension == ".jpeg")
        return PictureFormat::jpeg;
    return std::nullopt;
}

std::vector<uint8_t> encodePicture(const Picture& picture, PictureFormat format) {
    startFfmpegLog();
    if (format == PictureFormat::jpeg)
        return encode(AV_CODEC_ID_MJPEG, *jpegFrame(picture));
    return encode(AV_CODEC_ID_PNG,
                  picture.alpha.empty() ? *opaqueFrame(picture) : *transparentFrame(picture));
}

} // namespace ze::tool
