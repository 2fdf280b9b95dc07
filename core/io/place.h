// Where a new file goes.

#pragma once

#include "core/io/descriptor.h"

#include <climits>

namespace ze {

/// A name in a directory that is held open. It stays the same place when the directory is renamed and when
/// the working directory changes.
class Place {
public:
    /// Opens the directory that the last name of `path` stands in. A directory that may be entered but not
    /// read will do; it cannot be synced then. False with errno set.
    bool open(const char* path);

    int directory() const { return m_directory.get(); }
    /// Empty when the path ended with '/'.
    const char* name() const { return m_name; }

private:
    Descriptor m_directory;
    char m_name[PATH_MAX] = ""; // Some file systems have names of more than NAME_MAX bytes.
};

} // namespace ze
