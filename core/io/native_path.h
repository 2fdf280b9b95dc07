// File names as system calls take them.

#pragma once

#include "core/tools/ze_string.h"

#include <climits>

namespace ze {

/// A file name in the local encoding. It lives on the stack: asking for a file needs no memory. A name that
/// cannot be one of a file stays one that the system refuses: it is empty when a zero character in it would
/// make the system see another, shorter name, and has PATH_MAX bytes or more when it is too long.
class NativePath {
public:
    explicit NativePath(const CZeString& name);

    const char* get() const { return m_bytes; }
    char* get() { return m_bytes; }

private:
    char m_bytes[3 * PATH_MAX + 1]; // three bytes for a unit, at most
};

} // namespace ze
