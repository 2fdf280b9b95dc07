#include "log/log_file.h"

#include "core/io/dir.h"
#include "log/console_sink.h"
#include "log/settings.h"

#include <string>

namespace ze {
namespace {

/// Makes the directory for the file as well. Empty when there is no root directory.
CZeString makePath(const CZeString& rootDirectory, const CZeString& fileName) {
    if (rootDirectory.isEmpty())
        return CZeString();
    CZeString path = rootDirectory;
    path.append(CZeLatin1String("/glowkit")).append(CZeLatin1String("/log/"));
    CZeDir::mkpath(path); // a failure shows when the file is opened
    return path.append(fileName);
}

} // namespace

void LogFile::flushIfDue(LogDuration waited, LogTime now, const std::tm& today) {
    if (!m_file || !mustFlush(waited, m_lastFlush, now))
        return;
    std::fflush(m_file);
    // The day is only compared here: until then lines after midnight go into the file that is open.
    if (isAnotherDay(m_date, today))
        close();
    m_lastFlush = now;
}

void LogFile::write(const LogLines& lines, const CZeString& rootDirectory, LogTime now,
                    const std::tm& today) {
    if (!m_file)
        open(rootDirectory, now, today);
    if (!m_file)
        return;
    lines.forEach([this](std::string_view line) {
        std::fwrite(line.data(), 1, line.size(), m_file);
        std::fputc('\n', m_file);
    });
}

void LogFile::open(const CZeString& rootDirectory, LogTime now, const std::tm& today) {
    if (!mayOpen(m_lastFailure, now))
        return;
    const CZeByteArray path = makePath(rootDirectory, logFileName(m_name, today)).toLocal8Bit();
    m_file = std::fopen(path.constData(), "a");
    if (!m_file) {
        m_lastFailure = now;
        // Not through the log itself, which would queue the line for this very file.
        writeToAndroidLog(kLogWarning,
                          (std::string("Failed to create log file: ") + path.constData()).c_str());
        return;
    }
    m_date = today;
    m_lastFailure.reset();
    m_lastFlush = now;
}

void LogFile::close() {
    if (m_file)
        std::fclose(m_file);
    m_file = nullptr;
}

} // namespace ze
