#include "tool/video/clip_source.h"

#include "tool/errors.h"
#include "tool/files/interruption.h"

#include <cerrno>
#include <cstdio>
#include <new>

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace ze::tool {
namespace {

constexpr int kBufferSize = 1 << 16;

} // namespace

ClipSource::ClipSource(const std::string& path) : m_stream(path) {
    auto* const buffer = static_cast<unsigned char*>(av_malloc(kBufferSize));
    m_context =
        avio_alloc_context(buffer, kBufferSize, 0, this, read, nullptr, m_stream.isFile() ? seek : nullptr);
    if (!buffer || !m_context) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

ClipSource::~ClipSource() {
    av_freep(&m_context->buffer);
    avio_context_free(&m_context);
}

int ClipSource::read(void* self, uint8_t* to, int count) {
    auto& source = *static_cast<ClipSource*>(self);
    if (waitingSignal() != 0)
        return AVERROR_EXIT;
    const ssize_t got = source.m_stream.read(reinterpret_cast<char*>(to), static_cast<size_t>(count));
    if (got < 0) {
        const int error = errno;
        source.m_failure = systemReason();
        return AVERROR(error);
    }
    source.m_position += got;
    return got > 0 ? static_cast<int>(got) : AVERROR_EOF;
}

int64_t ClipSource::seek(void* self, int64_t offset, int whence) {
    auto& source = *static_cast<ClipSource*>(self);
    const int64_t size = source.m_stream.size();
    if (whence == AVSEEK_SIZE)
        return size;
    const int base = whence & ~AVSEEK_FORCE;
    int64_t position = offset;
    if (base == SEEK_CUR)
        position += source.m_position;
    else if (base == SEEK_END)
        position += size;
    if (!source.m_stream.seek(position))
        return AVERROR(errno);
    source.m_position = position;
    return position;
}

} // namespace ze::tool
