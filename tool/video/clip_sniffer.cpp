#include "tool/video/clip_sniffer.h"

#include "tool/errors.h"
#include "tool/files/input_stream.h"
#include "tool/pictures/photo_reader.h"
#include "tool/video/ffmpeg_errors.h"

#include <algorithm>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
}

namespace ze::tool {
namespace {

constexpr size_t kPeekedBytes = 65536;

// Demuxers for single pictures, for animations in picture formats, and for text drawn on a terminal.
bool isForPictures(std::string_view demuxer) {
    constexpr std::string_view kPipe = "_pipe";
    if (demuxer.size() > kPipe.size() && demuxer.substr(demuxer.size() - kPipe.size()) == kPipe)
        return true;
    for (const std::string_view name :
         {"image2", "gif", "apng", "ico", "fits", "tty", "alias_pix", "brender_pix"})
        if (demuxer == name)
            return true;
    return false;
}

// HEIC, AVIF and CR3 are the same kind of file as MP4 and say in bytes 8 to 11 what they hold.
bool hasPictureBrand(std::string_view start) {
    const std::string_view brand = start.substr(0, 12).substr(std::min<size_t>(8, start.size()));
    for (const std::string_view known : {"mif1", "msf1", "miaf", "avif", "avis", "crx "})
        if (brand == known)
            return true;
    return brand.substr(0, 2) == "he";
}

bool hasPictureLoader(const std::string& start) {
    const std::string loader = photoLoaderOf(start);
    return !loader.empty() && loader.find("Magick") == loader.npos;
}

bool isPicture(std::string_view demuxer, const std::string& start) {
    const bool isMovie = demuxer.substr(0, 3) == "mov";
    return isForPictures(demuxer) || (isMovie ? hasPictureBrand(start) : hasPictureLoader(start));
}

const AVInputFormat* demuxerFor(std::string start) {
    const auto size = static_cast<int>(start.size());
    start.resize(start.size() + AVPROBE_PADDING_SIZE);
    AVProbeData data = {};
    data.filename = "";
    data.buf = reinterpret_cast<unsigned char*>(start.data());
    data.buf_size = size;
    int score = 0;
    const AVInputFormat* const demuxer = av_probe_input_format3(&data, 1, &score);
    return score > AVPROBE_SCORE_RETRY ? demuxer : nullptr;
}

} // namespace

bool beginsLikeClip(const std::string& start) {
    catchFfmpegMessages();
    const AVInputFormat* const demuxer = demuxerFor(start);
    return demuxer && !isPicture(demuxer->name, start);
}

bool holdsClip(const std::string& path) {
    const std::string start = peekInput(path, kPeekedBytes);
    if (start.empty())
        throw Failure(ExitCode::badInput, path, "is empty");
    return beginsLikeClip(start);
}

} // namespace ze::tool
