// Inputs that are read from their start: files, pipes, devices, standard input.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>

namespace ze::tool {

/// An open input. One thread at a time.
class InputStream {
public:
    /// Opens `path`, "-" for standard input, and begins with what `peekInput` took from it. Throws `Failure`
    /// (`badInput`) when it cannot be opened.
    explicit InputStream(const std::string& path);
    /// Standard input stays open.
    ~InputStream();
    InputStream(InputStream&& other) noexcept;
    InputStream& operator=(InputStream&&) = delete;

    /// Reads up to `count` bytes: their number, 0 at the end, negative with errno set on failure. While a
    /// pipe is empty this waits; it fails with EINTR when a signal waits for the end of the program
    /// (`waitingSignal`).
    ssize_t read(char* to, size_t count);

    /// Whether this is a file that is there as a whole, of which any part can be read.
    bool isFile() const { return m_isFile; }
    /// In bytes; 0 for what is no file.
    int64_t size() const;
    /// Goes on at `position`, in bytes from the start of a file.
    bool seek(int64_t position);

private:
    friend std::string peekInput(const std::string& path, size_t count);

    bool m_isStandardInput;
    int m_file;
    bool m_isFile = false;
    std::string m_peeked; ///< Comes before what is still in the stream.
};

/// The first bytes of `path`, `count` of them where it has as many. Those of a pipe are kept for the next
/// `InputStream` of that path. Throws `Failure` (`badInput`) when it cannot be read. Not for several threads
/// at once.
std::string peekInput(const std::string& path, size_t count);

} // namespace ze::tool
