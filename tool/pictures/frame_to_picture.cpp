#include "tool/pictures/frame_to_picture.h"

#include "tool/pictures/color_conversion.h"

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace ze::tool {
namespace {

bool hasFlag(const AVPixFmtDescriptor& description, uint64_t flag) {
    return (description.flags & flag) != 0;
}

// RGB or gray in whole numbers of up to 16 bits.
bool isPlain(const AVPixFmtDescriptor& description) {
    constexpr uint64_t kOdd = AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_HWACCEL;
    if (hasFlag(description, kOdd) || description.comp[0].depth > 16)
        return false;
    return hasFlag(description, AV_PIX_FMT_FLAG_RGB) || description.nb_components <= 2;
}

Picture pictureFromPalette(const AVFrame& frame) {
    Picture picture(frame.width, frame.height);
    picture.alpha.resize(picture.index(0, frame.height));
    for (int y = 0; y < frame.height; ++y) {
        const uint8_t* indexes = frame.data[0] + static_cast<ptrdiff_t>(y) * frame.linesize[0];
        for (int x = 0; x < frame.width; ++x) {
            uint32_t argb = 0;
            std::memcpy(&argb, frame.data[1] + 4 * size_t{indexes[x]}, sizeof argb);
            picture.set(x, y,
                        {static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 8),
                         static_cast<uint8_t>(argb)});
            picture.alpha[picture.index(x, y)] = static_cast<uint8_t>(argb >> 24);
        }
    }
    return picture;
}

// Reads one channel of one row and writes it as 8 bits, `step` bytes from pixel to pixel.
class ChannelReader {
public:
    ChannelReader(const AVFrame& frame, const AVPixFmtDescriptor& description)
        : m_frame(frame), m_description(description), m_values(static_cast<size_t>(frame.width)) {}

    void read(int y, int channel, uint8_t* target, int step) {
        const uint8_t* planes[4];
        std::copy_n(m_frame.data, 4, planes);
        av_read_image_line2(m_values.data(), planes, m_frame.linesize, &m_description, 0, y, channel,
                            m_frame.width, 0, sizeof m_values[0]);
        const uint32_t largest = (1U << m_description.comp[channel].depth) - 1;
        const uint32_t inverted = m_frame.format == AV_PIX_FMT_MONOWHITE ? largest : 0;
        for (const uint32_t value : m_values) {
            *target = static_cast<uint8_t>(((value ^ inverted) * 255 + largest / 2) / largest);
            target += step;
        }
    }

private:
    const AVFrame& m_frame;
    const AVPixFmtDescriptor& m_description;
    std::vector<uint16_t> m_values;
};

Picture pictureFromChannels(const AVFrame& frame, const AVPixFmtDescriptor& description) {
    Picture picture(frame.width, frame.height);
    const bool rgb = hasFlag(description, AV_PIX_FMT_FLAG_RGB);
    const bool alpha = hasFlag(description, AV_PIX_FMT_FLAG_ALPHA);
    if (alpha)
        picture.alpha.resize(picture.index(0, frame.height));
    ChannelReader reader(frame, description);
    for (int y = 0; y < frame.height; ++y) {
        for (int channel = 0; channel < 3; ++channel)
            reader.read(y, rgb ? channel : 0, picture.row(y) + channel, 3);
        if (alpha)
            reader.read(y, description.nb_components - 1, picture.alpha.data() + picture.index(0, y), 1);
    }
    return picture;
}

} // namespace

Picture pictureFromFrame(const AVFrame& frame) {
    const AVPixFmtDescriptor& description = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    Picture picture;
    if (frame.format == AV_PIX_FMT_PAL8) {
        picture = pictureFromPalette(frame);
    } else if (isPlain(description)) {
        picture = pictureFromChannels(frame, description);
    } else {
        const bool alpha = hasFlag(description, AV_PIX_FMT_FLAG_ALPHA);
        const FfmpegPtr<AVFrame> rgb =
            makeFrame(alpha ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB24, frame.width, frame.height);
        convertColors(frame, *rgb);
        picture = pictureFromFrame(*rgb);
    }
    if (std::all_of(picture.alpha.begin(), picture.alpha.end(), [](uint8_t value) { return value == 255; }))
        picture.alpha.clear();
    return picture;
}

} // namespace ze::tool
