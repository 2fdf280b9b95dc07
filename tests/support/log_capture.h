// Collects what the library writes to the Android log.

#pragma once

#include <string>
#include <vector>

struct __android_logger_data;

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

    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// What has come in so far, in order.
    std::vector<Entry> entries() const;
    std::vector<std::string> texts() const;
    void clear();

private:
    static void record(const __android_logger_data* data, const char* text);

    std::vector<Entry> m_entries;
};
