#include "core/io/dir.h"

#include "core/tools/ze_string.h"
#include "core/warning.h"

#include <cerrno>
#include <cstddef>
#include <string>

#include <sys/stat.h>

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
    const CZeByteArray bytes = path.toLocal8Bit();
    const std::string name(bytes.constData(), std::size_t(bytes.size()));
    if (name.front() != '/') {
        ze::coreWarning("CZeDir::mkpath: only accept absolute dir path!");
        return false;
    }
    return makeWithParents(name);
}
