// Directories by name.

#pragma once

#include "core/export.h"

class CZeString;

class ZE_EXPORT CZeDir {
public:
    /// Creates the directory `path` and every missing parent with mode 0777 less the umask; trailing '/' are
    /// ignored. True when the directory exists afterwards. False for an empty or a relative path, which is
    /// also logged as a warning, and when something stands in the way; parents made by then stay.
    static bool mkpath(const CZeString& path);
};
