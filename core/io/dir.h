// Directories by name.

#pragma once

#include "core/export.h"

class CZeString;

/// What the rest of the library does with directories, by absolute path. Any thread may call it.
class ZE_EXPORT CZeDir {
public:
    /// Creates the directory `path` and every missing parent with mode 0777 less the umask; trailing '/' are
    /// ignored. True when the directory exists afterwards. False for an empty or a relative path, which is
    /// also logged as a warning, and when something stands in the way; parents made by then stay.
    static bool mkpath(const CZeString& path);

    /// Removes the directory `path`, which must be empty. False when that fails, and for an empty or a
    /// relative path, which is also logged as a warning.
    static bool rmdir(const CZeString& path);

    /// Removes the directory `path` with all that is in it. Symbolic links are removed, never followed; when
    /// `path` itself is one, nothing is done. What cannot be removed does not keep the rest from going. True
    /// when nothing is left, also when there was no such directory. False when something is; for the root of
    /// the file system and for a path that ends in "." or "..", of which nothing is removed; and for an empty
    /// or a relative path, which is also logged as a warning. Needs three file descriptors, however deep the
    /// tree is.
    static bool removeRecursively(const CZeString& path);
};
