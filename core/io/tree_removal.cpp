#include "core/io/tree_removal.h"

#include "core/io/descriptor.h"

#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int kDirectory = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// What a directory is recognized by.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;

    friend bool operator==(const Identity&, const Identity&) = default;
};

Identity identityOf(int directory) {
    struct stat status = {};
    fstat(directory, &status);
    return {status.st_dev, status.st_ino};
}

bool isFileSystemRoot(int directory) {
    struct stat root = {};
    return stat("/", &root) != 0 || identityOf(directory) == Identity{root.st_dev, root.st_ino};
}

/// A directory on the way down to the one that is being emptied.
struct Level {
    std::string name; ///< In the level above.
    Identity identity;
    std::vector<std::string> directories; ///< Not yet tried.
};

std::vector<std::string> entriesOf(int directory) {
    std::vector<std::string> entries;
    const int copy = fcntl(directory, F_DUPFD_CLOEXEC, 0);
    DIR* const stream = copy < 0 ? nullptr : fdopendir(copy);
    if (!stream)
        return entries;
    while (const dirent* const entry = readdir(stream))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            entries.emplace_back(entry->d_name);
    closedir(stream);
    return entries;
}

/// Removes all entries but the directories, and returns those.
std::vector<std::string> removeFiles(int directory) {
    std::vector<std::string> directories;
    for (std::string& entry : entriesOf(directory)) {
        struct stat status = {};
        if (fstatat(directory, entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode))
            directories.push_back(std::move(entry));
        else
            unlinkat(directory, entry.c_str(), 0);
    }
    return directories;
}

/// Empties a directory with one descriptor at a time: it goes down by name and up by "..".
class TreeRemoval {
public:
    explicit TreeRemoval(ze::Descriptor root) : m_current(std::move(root)) { enter(""); }

    void run() {
        while (m_levels.size() > 1 || !m_levels.back().directories.empty()) {
            std::vector<std::string>& directories = m_levels.back().directories;
            if (!directories.empty()) {
                const std::string name = std::move(directories.back());
                directories.pop_back();
                descend(name);
            } else if (!ascend()) {
                return; // the tree was moved about meanwhile
            }
        }
    }

private:
    void enter(const std::string& name) {
        m_levels.push_back({name, identityOf(m_current.get()), removeFiles(m_current.get())});
    }

    /// Stays where it is when there would be no way back.
    void descend(const std::string& name) {
        ze::Descriptor below(openat(m_current.get(), name.c_str(), kDirectory));
        const ze::Descriptor back(below ? openat(below.get(), "..", kDirectory) : -1);
        if (!back || identityOf(back.get()) != m_levels.back().identity) {
            unlinkat(m_current.get(), name.c_str(), AT_REMOVEDIR); // it may be empty
            return;
        }
        m_current = std::move(below);
        enter(name);
    }

    bool ascend() {
        const std::string name = std::move(m_levels.back().name);
        m_levels.pop_back();
        ze::Descriptor above(openat(m_current.get(), "..", kDirectory));
        if (!above || identityOf(above.get()) != m_levels.back().identity)
            return false;
        m_current = std::move(above);
        unlinkat(m_current.get(), name.c_str(), AT_REMOVEDIR);
        return true;
    }

    ze::Descriptor m_current; ///< The last of m_levels.
    std::vector<Level> m_levels;
};

} // namespace

namespace ze {

bool removeTree(std::string path) {
    // A slash at the end would follow a symbolic link.
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    Descriptor directory(open(path.c_str(), kDirectory));
    if (!directory && errno == ENOENT)
        return true;
    if (directory) {
        if (isFileSystemRoot(directory.get()))
            return false;
        TreeRemoval(std::move(directory)).run();
    }
    return rmdir(path.c_str()) == 0;
}

} // namespace ze
