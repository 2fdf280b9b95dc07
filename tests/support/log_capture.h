// Collects what the library writes to the Android log.

#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <android/log.h>

/// While it lives, the messages of every thread go into it instead of the Android log. One at a time.
/// Comparing a whole list finds messages too many as well as missing ones.
class LogCapture {
public:
    struct Entry {
        int priority; ///< of <android/log.h>: 4 info, 5 warning, 6 error
        std::string tag;
        std::string text;

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    // The logger is set without the lock: the Android log calls it under a lock of its own.
    LogCapture() {
        setCurrent(this);
        __android_log_set_logger(record);
    }
    ~LogCapture() {
        __android_log_set_logger(__android_log_stderr_logger);
        setCurrent(nullptr);
    }
    LogCapture(const LogCapture&) = delete;

    /// What has come in so far, in order.
    std::vector<Entry> entries() const {
        const std::lock_guard lock(s_mutex);
        return m_entries;
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const Entry& entry : entries())
            texts.push_back(entry.text);
        return texts;
    }
    void clear() {
        const std::lock_guard lock(s_mutex);
        m_entries.clear();
    }

private:
    static void setCurrent(LogCapture* capture) {
        const std::lock_guard lock(s_mutex);
        s_current = capture;
    }
    static void record(const __android_logger_data* data, const char* text) {
        const std::lock_guard lock(s_mutex);
        if (s_current)
            s_current->m_entries.push_back({data->priority, data->tag, text});
    }

    static inline std::mutex s_mutex; // guards the capture and its entries
    static inline LogCapture* s_current = nullptr;
    std::vector<Entry> m_entries;
};
