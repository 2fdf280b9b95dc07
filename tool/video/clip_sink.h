// The bytes of a clip that FFmpeg writes.

#pragma once

#include "core/io/save_file.h"

#include <optional>
#include <string>

struct AVIOContext;

namespace ze::tool {

/// The reader of a pipe has gone. It wanted no more, which is no failure.
struct ReaderGone {};

/// An output as FFmpeg's muxers write it: a file that appears whole with `commit` or not at all, or a pipe.
/// While a file is being written an `InterruptionHold` has to keep the program alive. Not movable: FFmpeg
/// keeps its address.
class ClipSink {
public:
    /// Throws `Failure` (`failed`) when `path` cannot be written; "-" is standard output.
    explicit ClipSink(const std::string& path);
    ~ClipSink();
    ClipSink(const ClipSink&) = delete;
    ClipSink& operator=(const ClipSink&) = delete;

    AVIOContext* context() const { return m_context; }

    /// Whether bytes go out at once and cannot be changed any more.
    bool isStream() const { return !m_file; }

    /// Throws what went wrong since the last call: `Failure` (`failed`), or `ReaderGone`.
    void check() const;

    /// Puts a file in its place, all of which has been written. Throws `Failure` (`failed`).
    void commit();

private:
    static int write(void* self, uint8_t* bytes, int count);
    static int64_t seek(void* self, int64_t offset, int whence);
    int writeToStream(const uint8_t* bytes, int count);
    void fail(const std::string& reason);

    std::string m_path;
    std::optional<CZeSaveFile> m_file; ///< None for pipes, devices and standard output.
    int m_stream = -1;
    int64_t m_size = 0;
    bool m_isReaderGone = false;
    std::string m_failure;
    AVIOContext* m_context = nullptr;
};

} // namespace ze::tool
