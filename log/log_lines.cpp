#include "log/log_lines.h"

#include <new>
#include <utility>

namespace ze {

LogLines::~LogLines() {
    while (m_first)
        delete std::exchange(m_first, m_first->next);
}

bool LogLines::appendAcrossBlocks(std::string_view stamp, std::string_view text) noexcept {
    if (!makeRoom(stamp.size() + text.size() + 1))
        return false;
    put(stamp);
    put(text);
    put("\n");
    return true;
}

/// Sees to it that `size` characters fit behind the last one.
bool LogLines::makeRoom(std::size_t size) noexcept {
    std::size_t room = m_last ? roomInLast() : 0;
    for (Block** next = m_last ? &m_last->next : &m_first; room < size; next = &(*next)->next) {
        if (!*next)
            *next = new (std::nothrow) Block;
        if (!*next)
            return false;
        room += sizeof(*next)->text;
    }
    if (!m_last)
        m_last = m_first;
    return true;
}

void LogLines::put(std::string_view text) noexcept {
    for (;;) {
        const std::size_t copied = text.copy(m_last->text + m_last->used, roomInLast());
        m_last->used += copied;
        if (copied == text.size())
            return;
        text.remove_prefix(copied);
        m_last = m_last->next;
    }
}

void LogLines::swap(LogLines& other) noexcept {
    std::swap(m_first, other.m_first);
    std::swap(m_last, other.m_last);
}

void LogLines::clear() noexcept {
    constexpr int kKeptBlocks = 16;
    Block** next = &m_first;
    for (int kept = 0; *next && kept < kKeptBlocks; ++kept) {
        (*next)->used = 0;
        next = &(*next)->next;
    }
    while (*next)
        delete std::exchange(*next, (*next)->next);
    m_last = m_first;
}

} // namespace ze
