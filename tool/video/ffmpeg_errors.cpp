#include "tool/video/ffmpeg_errors.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace ze::tool {
namespace {

thread_local std::string g_message; // the last error logged

__attribute__((format(printf, 3, 0))) void keepError(void*, int level, const char* format,
                                                     va_list arguments) {
    if (level > AV_LOG_ERROR)
        return;
    char line[512];
    std::vsnprintf(line, sizeof line, format, arguments);
    std::string text = line;
    text.erase(text.find_last_not_of(" .\r\n") + 1);
    if (!text.empty())
        g_message = std::move(text);
}

std::string meaningOf(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(error, text, sizeof text);
    return text;
}

} // namespace

void catchFfmpegMessages() {
    av_log_set_callback(keepError);
    setenv("SVT_LOG", "1", 0); // SVT-AV1 writes by itself: errors alone, unless the user wants more
}

std::string ffmpegReason(int error) {
    std::string message = std::exchange(g_message, {});
    return message.empty() ? meaningOf(error) : message;
}

} // namespace ze::tool
