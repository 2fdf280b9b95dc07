#include "tests/support/log_capture.h"

#include <android/log.h>

#include <mutex>

namespace {

std::mutex g_mutex; // guards the chain of captures and their entries
LogCapture* g_innermost = nullptr;

} // namespace

// The logger is set without the lock: the Android log calls it under a lock of its own.
LogCapture::LogCapture() {
    {
        const std::lock_guard lock(g_mutex);
        m_outer = g_innermost;
        g_innermost = this;
    }
    __android_log_set_logger(record);
}

LogCapture::~LogCapture() {
    if (!m_outer)
        __android_log_set_logger(__android_log_stderr_logger);
    const std::lock_guard lock(g_mutex);
    g_innermost = m_outer;
}

void LogCapture::record(const __android_logger_data* data, const char* text) {
    const std::lock_guard lock(g_mutex);
    if (g_innermost)
        g_innermost->m_entries.push_back({data->priority, data->tag, text});
}

std::vector<LogCapture::Entry> LogCapture::entries() const {
    const std::lock_guard lock(g_mutex);
    return m_entries;
}

std::vector<std::string> LogCapture::texts() const {
    const std::lock_guard lock(g_mutex);
    std::vector<std::string> texts;
    for (const Entry& entry : m_entries)
        texts.push_back(entry.text);
    return texts;
}

void LogCapture::clear() {
    const std::lock_guard lock(g_mutex);
    m_entries.clear();
}
