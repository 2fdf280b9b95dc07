#include "tool/files/input_file.h"

#include "tool/errors.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ze::tool {
namespace {

constexpr size_t kBlockSize = 1 << 20;

Failure unreadable(const std::string& path) {
    return {ExitCode::badInput, path, "cannot be read: " + systemReason()};
}

// A file that is open for reading; standard input stays open at the end.
class Descriptor {
public:
    explicit Descriptor(const std::string& path)
        : m_isStandardInput(path == kStandardStream),
          m_file(m_isStandardInput ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (m_file < 0)
            throw unreadable(path);
    }
    ~Descriptor() {
        if (!m_isStandardInput)
            close(m_file);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    size_t size() const {
        struct stat status = {};
        return fstat(m_file, &status) == 0 && status.st_size > 0 ? static_cast<size_t>(status.st_size) : 0;
    }

    // The number of bytes read, 0 at the end, negative on failure.
    ssize_t read(char* to, size_t count) const {
        ssize_t result = 0;
        do
            result = ::read(m_file, to, count);
        while (result < 0 && errno == EINTR);
        return result;
    }

private:
    bool m_isStandardInput;
    int m_file;
};

} // namespace

std::string readWholeInput(const std::string& path, size_t maxBytes) {
    const Descriptor file(path);
    std::string bytes(std::min(file.size(), maxBytes) + 1, '\0');
    size_t size = 0;
    for (ssize_t count = 1; count > 0; size += static_cast<size_t>(count)) {
        if (size == bytes.size())
            bytes.resize(size + kBlockSize);
        count = file.read(bytes.data() + size, bytes.size() - size);
        if (count < 0)
            throw unreadable(path);
        if (size + static_cast<size_t>(count) > maxBytes)
            throw Failure(ExitCode::badInput, path,
                          "is larger than " + std::to_string(maxBytes >> 20) + " MiB");
    }
    bytes.resize(size);
    return bytes;
}

} // namespace ze::tool
