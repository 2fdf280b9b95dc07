// What is pending for the log file.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ze {

/// A queue of whole lines without their newline. They follow each other in one piece of memory, a zero behind
/// each, because a block for each line would cost more than the rest of queueing it.
class LogLines {
public:
    bool isEmpty() const { return m_text.empty(); }

    /// Adds "[stamp] text" at the end; neither has a zero inside. Nothing is added when it throws
    /// std::bad_alloc.
    void append(std::string_view stamp, std::string_view text) {
        const size_t oldSize = m_text.size();
        m_text.resize(oldSize + stamp.size() + text.size() + sizeof "[] ");
        char* out = m_text.data() + oldSize;
        *out++ = '[';
        out += stamp.copy(out, stamp.size());
        *out++ = ']';
        *out++ = ' ';
        out[text.copy(out, text.size())] = '\0';
    }

    /// Calls `take` with each line, from the first to the last.
    template <class Take>
    void forEach(Take take) const {
        for (size_t at = 0; at < m_text.size();) {
            const std::string_view line(m_text.data() + at);
            take(line);
            at += line.size() + 1;
        }
    }

    void swap(LogLines& other) noexcept { m_text.swap(other.m_text); }

    /// Forgets the lines. Memory for as many as are usual is kept for the next ones.
    void clear() noexcept {
        constexpr size_t kKept = 1024 * 1024;
        m_text.clear();
        if (m_text.capacity() > kKept)
            std::string().swap(m_text);
    }

private:
    std::string m_text;
};

} // namespace ze
