// Removing a directory with all that is in it.

#include "core/io/descriptor.h"
#include "core/io/generic_file_engine.h"
#include "core/io/native_path.h"
#include "core/io/restarting.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

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

/// "." or "..", which cannot be removed from their directory.
bool isDots(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

ze::Descriptor openDirectory(int parent, const char* name) {
    constexpr int kDirectory = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    return ze::Descriptor(ze::restarting([&] { return openat(parent, name, kDirectory); }));
}

/// A directory on the way down to the one that is being emptied.
struct Level {
    std::string name; ///< In the level above.
    Identity identity;
    std::vector<std::string> directories; ///< Not yet tried.
};

struct CloseDirectory {
    void operator()(DIR* stream) const { closedir(stream); }
};

std::vector<std::string> entriesOf(int directory) {
    std::vector<std::string> entries;
    ze::Descriptor copy(fcntl(directory, F_DUPFD_CLOEXEC, 0));
    const std::unique_ptr<DIR, CloseDirectory> stream(copy ? fdopendir(copy.get()) : nullptr);
    if (!stream)
        return entries;
    copy.release(); // the stream's now
    while (const dirent* const entry = readdir(stream.get()))
        if (!isDots(entry->d_name))
            entries.emplace_back(entry->d_name);
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
        ze::Descriptor below = openDirectory(m_current.get(), name.c_str());
        const ze::Descriptor back = below ? openDirectory(below.get(), "..") : ze::Descriptor();
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
        ze::Descriptor above = openDirectory(m_current.get(), "..");
        if (!above || identityOf(above.get()) != m_levels.back().identity)
            return false;
        m_current = std::move(above);
        unlinkat(m_current.get(), name.c_str(), AT_REMOVEDIR);
        return true;
    }

    ze::Descriptor m_current; ///< The last of m_levels.
    std::vector<Level> m_levels;
};

/// Removes what it can of the directory's contents.
void emptyDirectory(ze::Descriptor directory) {
    try {
        TreeRemoval(std::move(directory)).run();
    } catch (const std::bad_alloc&) {
        // What is left will keep the directory from being removed.
    }
}

} // namespace

bool CZeGenericFileEngine::removeRecursively(const CZeString& path) {
    ze::NativePath native(path);
    char* const name = native.get();
    // A slash at the end would follow a symbolic link.
    for (size_t length = std::strlen(name); length > 1 && name[length - 1] == '/'; --length)
        name[length - 1] = '\0';
    const char* const slash = std::strrchr(name, '/');
    if (name[0] == '\0' || isDots(slash ? slash + 1 : name))
        return false;
    ze::Descriptor directory = openDirectory(AT_FDCWD, name);
    if (!directory && errno == ENOENT)
        return true;
    if (directory) {
        if (isFileSystemRoot(directory.get()))
            return false;
        emptyDirectory(std::move(directory));
    }
    return ::rmdir(name) == 0;
}
