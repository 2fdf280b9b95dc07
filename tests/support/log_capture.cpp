#include "tests/support/log_capture.h"

#include <android/log.h>

#include <mutex>

namespace {

std::mutex g_mutex; // guards the capture and its entries
LogCapture* g_capture = nullptr;

void setCapture(LogCapture* capture) {
    const std::lock_guard lock(g_mutex);
    g_capture = capture;
}

} // namespace

// The logger is set without the lock: the Android log calls it under a lock of its own.
LogCapture::LogCapture() {
    setCapture(this);
    __android_log_set_logger(record);
}

LogCapture::~LogCapture() {
    __android_log_set_logger(__android_log_stderr_logger);
    setCapture(nullptr);
}

void LogCapture::record(const __android_logger_data* data, const char* text) {
    const std::lock_guard lock(g_mutex);
    if (g_capture)
        g_capture->m_entries.push_back({data->priority, data->tag, text});
}

std::vector<LogCapture::Entry> LogCapture::entries() const {
    const std::lock_guard lock(g_mutex);
    return m_entries;
}

std::vector<std::string> LogCapture::texts() const {
    std::vector<std::string> texts;
    for (const Entry& entry : entries())
        texts.push_back(entry.text);
    return texts;
}

void LogCapture::clear() {
    const std::lock_guard lock(g_mutex);
    m_entries.clear();
}
