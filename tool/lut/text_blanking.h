// Taking parts out of a text without moving its lines.

#pragma once

#include <algorithm>
#include <string>

namespace ze::tool {

/// Makes spaces of the bytes from `from` up to `to`, or to the end, line feeds excepted: what remains keeps
/// its line numbers.
inline void blankOut(std::string& text, size_t from, size_t to) {
    for (size_t i = from; i < std::min(to, text.size()); ++i)
        if (text[i] != '\n')
            text[i] = ' ';
}

} // namespace ze::tool
