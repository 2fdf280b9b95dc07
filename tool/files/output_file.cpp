#include "tool/files/output_file.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/input_file.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace ze::tool {
namespace {

Failure unwritable(const std::string& path, const std::string& reason) {
    return {ExitCode::failed, path, "cannot be written: " + reason};
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(count > 0 ? static_cast<size_t>(count) : 0);
    }
    return true;
}

} // namespace

bool isStream(const std::string& path) {
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    return path == kStandardStream || std::filesystem::is_other(status);
}

OutputFile::OutputFile(const std::string& path, std::string_view bytes) : m_path(path), m_bytes(bytes) {
    if (isStream(path))
        return;
    m_replacement.emplace();
    CZeSaveFile& file = m_replacement->file;
    file.setFileName(libraryFileName(path));
    require(file.open(Ze::WriteOnly));
    const auto size = static_cast<int64_t>(bytes.size());
    require(file.write(bytes.data(), size) == size);
}

void OutputFile::commit() {
    if (m_replacement)
        require(m_replacement->file.commit());
    else
        writeToStream();
}

void OutputFile::writeToStream() const {
    const bool isStandardOutput = m_path == kStandardStream;
    const int file = isStandardOutput ? STDOUT_FILENO : open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
    const bool done = file >= 0 && writeAll(file, m_bytes);
    const std::string reason = done ? "" : systemReason();
    if (!isStandardOutput && file >= 0)
        close(file);
    if (!done)
        throw unwritable(m_path, reason);
}

void OutputFile::require(bool done) const {
    if (!done)
        throw unwritable(m_path, m_replacement->file.errorString().toUtf8().constData());
}

} // namespace ze::tool
