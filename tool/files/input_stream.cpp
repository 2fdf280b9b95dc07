#include "tool/files/input_stream.h"

#include "tool/errors.h"
#include "tool/files/input_file.h"
#include "tool/files/waiting.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ze::tool {
namespace {

// A pipe can be opened once only: its stream is kept here, by its path, until somebody reads on.
std::map<std::string, InputStream>& peekedStreams() {
    static std::map<std::string, InputStream> s_streams;
    return s_streams;
}

} // namespace

InputStream::InputStream(const std::string& path)
    : m_isStandardInput(path == kStandardStream), m_file(m_isStandardInput ? STDIN_FILENO : -1) {
    const auto peeked = peekedStreams().find(path);
    if (peeked != peekedStreams().end()) {
        m_file = std::exchange(peeked->second.m_file, -1);
        m_peeked = std::move(peeked->second.m_peeked);
        peekedStreams().erase(peeked);
        return;
    }
    if (!m_isStandardInput)
        m_file = openStream(path, O_RDONLY);
    struct stat status = {};
    if (m_file < 0 || fstat(m_file, &status) != 0)
        throw Failure(ExitCode::badInput, path, "cannot be read: " + systemReason());
    m_isFile = S_ISREG(status.st_mode) && lseek(m_file, 0, SEEK_CUR) == 0;
}

InputStream::InputStream(InputStream&& other) noexcept
    : m_isStandardInput(other.m_isStandardInput), m_file(std::exchange(other.m_file, -1)),
      m_isFile(other.m_isFile), m_peeked(std::move(other.m_peeked)) {}

InputStream::~InputStream() {
    if (m_file >= 0 && !m_isStandardInput)
        close(m_file);
}

ssize_t InputStream::read(char* to, size_t count) {
    if (!m_peeked.empty()) {
        const size_t taken = std::min(count, m_peeked.size());
        std::memcpy(to, m_peeked.data(), taken);
        m_peeked.erase(0, taken);
        return static_cast<ssize_t>(taken);
    }
    if (!m_isFile && !waitFor(m_file, POLLIN))
        return -1;
    ssize_t result = 0;
    do
        result = ::read(m_file, to, count);
    while (result < 0 && errno == EINTR);
    return result;
}

int64_t InputStream::size() const {
    struct stat status = {};
    return m_isFile && fstat(m_file, &status) == 0 ? status.st_size : 0;
}

bool InputStream::seek(int64_t position) {
    return m_isFile && lseek(m_file, position, SEEK_SET) == position;
}

std::string peekInput(const std::string& path, size_t count) {
    InputStream stream(path);
    std::string start(count, '\0');
    size_t size = 0;
    for (ssize_t read = 1; read > 0 && size < count; size += static_cast<size_t>(read)) {
        read = stream.read(start.data() + size, count - size);
        if (read < 0)
            throw Failure(ExitCode::badInput, path, "cannot be read: " + systemReason());
    }
    start.resize(size);
    if (stream.isFile() && stream.seek(0))
        return start;
    stream.m_peeked = start;
    peekedStreams().emplace(path, std::move(stream));
    return start;
}

} // namespace ze::tool
