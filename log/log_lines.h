// What is pending for the log file.

#pragma once

#include <cstddef>
#include <string_view>

namespace ze {

/// A queue of whole lines, each with its newline, one behind the other in a list of blocks. A piece of memory
/// for each line would cost more than all the rest of queueing it; a single piece for all of them would have
/// to be copied to grow. Not thread-safe.
class LogLines {
public:
    LogLines() = default;
    LogLines(LogLines&& other) noexcept { swap(other); }
    LogLines& operator=(LogLines&&) = delete;
    ~LogLines();

    bool isEmpty() const { return !m_last || m_first->used == 0; }

    /// Adds the line `stamp` + `text` at the end. Without memory for all of it, adds nothing and returns
    /// false. However much is pending, it takes the time that the line itself asks for.
    bool append(std::string_view stamp, std::string_view text) noexcept {
        const std::size_t size = stamp.size() + text.size() + 1;
        if (!m_last || size > roomInLast())
            return appendAcrossBlocks(stamp, text);
        char* out = m_last->text + m_last->used;
        out += stamp.copy(out, stamp.size());
        out += text.copy(out, text.size());
        *out = '\n';
        m_last->used += size;
        return true;
    }

    /// Calls `take` with the text of all lines in pieces, from the first to the last.
    template <class Take>
    void forEachPiece(Take take) const {
        if (isEmpty())
            return;
        for (const Block* block = m_first; block != m_last->next; block = block->next)
            take(std::string_view(block->text, block->used));
    }

    void swap(LogLines& other) noexcept;

    /// Forgets the lines. Blocks for as many as are usual are kept for the next ones.
    void clear() noexcept;

private:
    struct Block {
        Block* next = nullptr;
        std::size_t used = 0;
        char text[64 * 1024 - 2 * sizeof(void*)]; // `used` characters, the rest uninitialized
    };

    std::size_t roomInLast() const { return sizeof m_last->text - m_last->used; }
    bool appendAcrossBlocks(std::string_view stamp, std::string_view text) noexcept;
    bool makeRoom(std::size_t size) noexcept;
    void put(std::string_view text) noexcept;

    Block* m_first = nullptr;
    Block* m_last = nullptr; // the last one with text; those behind it are spare
};

} // namespace ze
