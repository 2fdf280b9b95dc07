#include "core/io/dir.h"

#include "core/io/native_path.h"
#include "core/io/tree_removal.h"
#include "core/tools/ze_string.h"
#include "core/warning.h"

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isDirectory(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The errno of mkdir, or 0 when the directory exists now.
int makeDirectory(const std::string& path) {
    if (mkdir(path.c_str(), 0777) == 0)
        return 0;
    const int error = errno;
    return error == EEXIST && isDirectory(path) ? 0 : error;
}

/// Tries the directory itself first: most calls find it, or its parent, already there.
bool makeWithParents(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    const int error = makeDirectory(path);
    if (error != ENOENT)
        return error == 0;
    const std::string::size_type slash = path.rfind('/');
    if (slash == 0 || slash == std::string::npos)
        return false;
    return makeWithParents(path.substr(0, slash)) && makeDirectory(path) == 0;
}

} // namespace

bool CZeDir::mkpath(const CZeString& path) {
    if (path.isEmpty()) {
        ze::coreWarning("CZeDir::mkpath: Empty or null path name");
        return false;
    }
    if (path[0] != u'/') {
        ze::coreWarning("CZeDir::mkpath: only accept absolute dir path!");
        return false;
    }
    return makeWithParents(ze::nativePath(path).constData());
}

bool CZeDir::rmdir(const CZeString& path) {
    if (path.isEmpty()) {
        ze::coreWarning("CZeDir::rmdir: Empty or null path name");
        return false;
    }
    if (path[0] != u'/') {
        ze::coreWarning("CZeDir::rmdir: only accept absolute dir path!");
        return false;
    }
    return ::rmdir(ze::nativePath(path).constData()) == 0;
}

bool CZeDir::removeRecursively(const CZeString& path) {
    if (path.isEmpty() || path[0] != u'/') {
        ze::coreWarning("CZeDir::removeRecursively: only accept absolute dir path!");
        return false;
    }
    const CZeByteArray name = ze::nativePath(path);
    return !name.isEmpty() && ze::removeTree(name.constData());
}
