#include "tool/output_file.h"

#include "tool/errors.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ze::tool {

namespace {

// Where the bytes of `path` really are or are to be.
std::string behindLinks(const std::string& path) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

// A name that no other output of this or another run has.
std::string temporaryBeside(const std::string& target) {
    static int s_count = 0;
    const std::string name = ".zebeauty-" + std::to_string(getpid()) + "-" + std::to_string(++s_count);
    return std::filesystem::path(target).replace_filename(name + ".tmp");
}

bool writeAll(int file, const std::vector<uint8_t>& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0)
            done += static_cast<size_t>(count);
    }
    return true;
}

} // namespace

OutputFile::OutputFile(const std::string& path, const std::vector<uint8_t>& bytes)
    : m_path(path), m_target(behindLinks(path)), m_temporary(temporaryBeside(m_target)) {
    const int file = open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        throw Failure(ExitCode::failed, m_path, "cannot be written: " + systemReason());
    struct stat old = {};
    if (stat(m_target.c_str(), &old) == 0)
        fchmod(file, old.st_mode & 0777);
    bool whole = writeAll(file, bytes);
    whole = close(file) == 0 && whole;
    if (whole)
        return;
    const std::string reason = systemReason();
    unlink(m_temporary.c_str());
    throw Failure(ExitCode::failed, m_path, "cannot be written: " + reason);
}

OutputFile::~OutputFile() {
    if (!m_temporary.empty())
        unlink(m_temporary.c_str());
}

void OutputFile::commit() {
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0)
        throw Failure(ExitCode::failed, m_path, "cannot be written: " + systemReason());
    m_temporary.clear();
}

} // namespace ze::tool
