#include "core/io/dir.h"

#include "core/io/generic_file_engine.h"
#include "core/warning.h"

namespace {

bool isAbsolute(const CZeString& path) {
    return path.startsWith('/');
}

} // namespace

bool CZeDir::mkpath(const CZeString& path) {
    if (path.isEmpty()) {
        ze::coreWarning("CZeDir::mkpath: Empty or null path name");
        return false;
    }
    if (!isAbsolute(path)) {
        ze::coreWarning("CZeDir::mkpath: only accept absolute dir path!");
        return false;
    }
    return CZeGenericFileEngine::mkpath(path);
}

bool CZeDir::rmdir(const CZeString& path) {
    if (path.isEmpty()) {
        ze::coreWarning("CZeDir::rmdir: Empty or null path name");
        return false;
    }
    if (!isAbsolute(path)) {
        ze::coreWarning("CZeDir::rmdir: only accept absolute dir path!");
        return false;
    }
    return CZeGenericFileEngine::rmdir(path);
}

bool CZeDir::removeRecursively(const CZeString& path) {
    if (!isAbsolute(path)) {
        ze::coreWarning("CZeDir::removeRecursively: only accept absolute dir path!");
        return false;
    }
    return CZeGenericFileEngine::removeRecursively(path);
}
