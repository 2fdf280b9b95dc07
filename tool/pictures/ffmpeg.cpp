#include "tool/pictures/ffmpeg.h"

#include <cstdarg>
#include <cstdio>

namespace ze::tool {
namespace {

std::string g_firstError; // As FFmpeg spells it: with an end of line when it is whole.

bool isWhole(const std::string& message) {
    return !message.empty() && message.back() == '\n';
}

__attribute__((format(printf, 3, 0))) void rememberError(void*, int level, const char* format,
                                                         va_list arguments) {
    if (level > AV_LOG_ERROR)
        return;
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (!isWhole(g_firstError)) // Messages may come in pieces.
        g_firstError += text;
}

} // namespace

FfmpegPtr<AVFrame> makeFrame(AVPixelFormat format, int width, int height) {
    FfmpegPtr<AVFrame> frame = owned(av_frame_alloc());
    frame->format = format;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        throw std::bad_alloc();
    return frame;
}

void startFfmpegLog() {
    g_firstError.clear();
    av_log_set_callback(rememberError);
}

std::string ffmpegReason(int error) {
    if (!g_firstError.empty())
        return g_firstError.substr(0, g_firstError.find_last_not_of(".\n") + 1);
    char text[AV_ERROR_MAX_STRING_SIZE];
    av_strerror(error, text, sizeof text);
    return text;
}

} // namespace ze::tool
