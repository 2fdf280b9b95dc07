#include "log/log_file.h"

#include "core/io/descriptor.h"
#include "core/io/dir.h"
#include "core/io/native_path.h"
#include "log/console_sink.h"
#include "log/joined_text.h"
#include "log/settings_store.h"

#include <utility>

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>

namespace ze {
namespace {

/// Anyone can foresee the file's name. A link at its place is not followed, and anything but a regular file
/// is refused without waiting for its other end. Null when the file cannot be opened.
std::FILE* openForAppending(const char* path) {
    Descriptor descriptor(
        ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
    struct stat status = {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return nullptr;
    std::FILE* const file = fdopen(descriptor.get(), "a");
    if (file)
        descriptor.release();
    return file;
}

} // namespace

void LogFile::flushIfDue(LogDuration waited, LogTime now, const std::tm& today) {
    if (!m_file || (waited <= m_flushInterval && now - m_lastFlush <= m_flushInterval))
        return;
    std::fflush(m_file);
    // The day is only compared here: until then lines after midnight go into the file that is open.
    if (isAnotherDay(m_date, today))
        close();
    m_lastFlush = now;
}

void LogFile::write(const LogLines& lines, LogTime now, const std::tm& today) {
    if (!m_file)
        open(now, today);
    if (!m_file)
        return;
    lines.forEachPiece([this](std::string_view text) { std::fwrite(text.data(), 1, text.size(), m_file); });
}

void LogFile::open(LogTime now, const std::tm& today) {
    if (now < m_nextAttempt)
        return;
    const NativePath path(makePath(today));
    m_file = openForAppending(path.get());
    if (!m_file) {
        m_nextAttempt = now + kRetryPause;
        constexpr char kMessage[] = "Failed to create log file: ";
        const auto message = joinedText(kMessage, path.get());
        // Not through the log itself, which would queue the line for this very file.
        writeToAndroidLog(kLogWarning, message ? message.get() : kMessage);
        return;
    }
    m_date = today;
    m_lastFlush = now;
}

/// Makes the directory for the file as well. Empty when there is no root directory, and when there is no
/// memory: a part of the path would name something else.
CZeString LogFile::makePath(const std::tm& today) const {
    const CZeLatin1String folder("/glowkit/log/");
    const CZeString root = m_rootDirectory.get();
    const CZeString fileName = logFileName(m_name, today);
    if (root.isEmpty() || fileName.isEmpty())
        return CZeString();
    CZeString path = root;
    path.append(folder).append(fileName);
    if (path.size() - fileName.size() - folder.size() != root.size())
        return CZeString();
    CZeDir::mkpath(path.left(path.size() - fileName.size())); // a failure shows when the file is opened
    return path;
}

void LogFile::discardBuffer() {
    if (m_file)
        __fpurge(m_file);
}

void LogFile::close() {
    // Forgotten before it is freed: a child forked in between must not find it.
    if (std::FILE* const file = std::exchange(m_file, nullptr))
        std::fclose(file);
}

} // namespace ze
