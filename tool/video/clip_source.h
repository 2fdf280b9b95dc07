// The bytes of a clip for FFmpeg to read.

#pragma once

#include "tool/files/input_stream.h"

#include <string>

struct AVIOContext;

namespace ze::tool {

/// An input as FFmpeg's demuxers read it; names are names of files, never of anything else. Not movable:
/// FFmpeg keeps its address.
class ClipSource {
public:
    /// Throws `Failure` (`badInput`) when `path` cannot be opened.
    explicit ClipSource(const std::string& path);
    ~ClipSource();
    ClipSource(const ClipSource&) = delete;
    ClipSource& operator=(const ClipSource&) = delete;

    AVIOContext* context() const { return m_context; }

    /// Whether any part can be read at any time.
    bool isSeekable() const { return m_stream.isFile(); }

    /// How many bytes came, as far as they were read in order.
    int64_t position() const { return m_position; }

    /// Why reading failed; empty when it did not.
    const std::string& failure() const { return m_failure; }

private:
    static int read(void* self, uint8_t* to, int count);
    static int64_t seek(void* self, int64_t offset, int whence);

    InputStream m_stream;
    int64_t m_position = 0;
    std::string m_failure;
    AVIOContext* m_context;
};

} // namespace ze::tool
