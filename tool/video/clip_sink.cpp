#include "tool/video/clip_sink.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/input_file.h"
#include "tool/files/output_file.h"
#include "tool/files/waiting.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace ze::tool {
namespace {

constexpr int kBufferSize = 1 << 18;

} // namespace

ClipSink::ClipSink(const std::string& path) : m_path(path) {
    if (!ze::tool::isStream(path)) {
        m_file.emplace(libraryFileName(path));
        if (!m_file->open(Ze::WriteOnly))
            fail(m_file->errorString().toUtf8().constData());
    } else {
        m_stream = path == kStandardStream ? STDOUT_FILENO : openStream(path, O_WRONLY);
        if (m_stream < 0)
            fail(systemReason());
    }
    check();
    auto* const buffer = static_cast<unsigned char*>(av_malloc(kBufferSize));
    m_context = avio_alloc_context(buffer, kBufferSize, 1, this, nullptr, write, isStream() ? nullptr : seek);
    if (!buffer || !m_context) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

ClipSink::~ClipSink() {
    av_freep(&m_context->buffer);
    avio_context_free(&m_context);
    if (m_stream >= 0 && m_stream != STDOUT_FILENO)
        close(m_stream);
}

void ClipSink::fail(const std::string& reason) {
    if (m_failure.empty())
        m_failure = "cannot be written: " + reason;
}

void ClipSink::check() const {
    if (m_isReaderGone)
        throw ReaderGone();
    if (!m_failure.empty())
        throw Failure(ExitCode::failed, m_path, m_failure);
}

void ClipSink::commit() {
    if (m_file && !m_file->commit())
        fail(m_file->errorString().toUtf8().constData());
    check();
}

int ClipSink::write(void* self, uint8_t* bytes, int count) {
    auto& sink = *static_cast<ClipSink*>(self);
    if (sink.isStream())
        return sink.writeToStream(bytes, count);
    if (sink.m_file->write(reinterpret_cast<const char*>(bytes), count) != count) {
        sink.fail(sink.m_file->errorString().toUtf8().constData());
        return AVERROR(EIO);
    }
    sink.m_size = std::max(sink.m_size, sink.m_file->pos());
    return count;
}

int ClipSink::writeToStream(const uint8_t* bytes, int count) {
    for (int done = 0; done < count;) {
        const bool isReady = waitFor(m_stream, POLLOUT);
        const auto size = static_cast<size_t>(std::min(count - done, PIPE_BUF));
        const ssize_t written = isReady ? ::write(m_stream, bytes + done, size) : -1;
        if (written < 0 && (!isReady || errno != EINTR)) {
            const int error = errno;
            m_isReaderGone = error == EPIPE;
            fail(systemReason());
            return AVERROR(error);
        }
        done += written > 0 ? static_cast<int>(written) : 0;
    }
    return count;
}

int64_t ClipSink::seek(void* self, int64_t offset, int whence) {
    auto& sink = *static_cast<ClipSink*>(self);
    if (whence == AVSEEK_SIZE)
        return sink.m_size;
    int64_t position = offset;
    if ((whence & ~AVSEEK_FORCE) == SEEK_CUR)
        position += sink.m_file->pos();
    else if ((whence & ~AVSEEK_FORCE) == SEEK_END)
        position += sink.m_size;
    return sink.m_file->seek(position) ? position : AVERROR(EIO);
}

} // namespace ze::tool
