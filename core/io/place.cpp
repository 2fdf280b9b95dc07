#include "core/io/place.h"

#include "core/io/restarting.h"

#include <cstring>

#include <fcntl.h>

namespace {

/// Where the directory may not be read, it is opened just as a place.
int openDirectory(const char* path) {
    const int readable = ze::restarting([&] { return ::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (readable >= 0 || errno != EACCES)
        return readable;
    return ze::restarting([&] { return ::open(path, O_PATH | O_DIRECTORY | O_CLOEXEC); });
}

} // namespace

namespace ze {

bool Place::open(const char* path) {
    const char* const slash = std::strrchr(path, '/');
    const char* const name = slash ? slash + 1 : path;
    const size_t nameSize = std::strlen(name) + 1;
    const auto parentSize = static_cast<size_t>(name - path);
    char parent[PATH_MAX] = ".";
    if (nameSize > sizeof m_name || parentSize >= sizeof parent) {
        errno = ENAMETOOLONG;
        return false;
    }
    std::memcpy(m_name, name, nameSize);
    if (parentSize > 0) {
        std::memcpy(parent, path, parentSize);
        parent[parentSize] = '\0';
    }
    m_directory = Descriptor(openDirectory(parent));
    return static_cast<bool>(m_directory);
}

} // namespace ze
