// Renaming, and what takes its place where the system cannot do it.

#include "core/io/file.h"
#include "core/io/generic_file_engine.h"
#include "core/io/native_path.h"
#include "core/io/permissions.h"
#include "core/io/place.h"
#include "core/io/random_name.h"
#include "core/io/resource_info.h"
#include "core/io/restarting.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

bool isSameFile(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// Both names are one entry of the file system, or hard links to one file. A symbolic link is not the file
/// that it leads to: to rename it to that would lose the file.
bool isSameEntry(const char* left, const char* right) {
    struct stat l = {}, r = {};
    return lstat(left, &l) == 0 && lstat(right, &r) == 0 && isSameFile(l, r);
}

/// `name` leads to the file that `source` has open.
bool isStillNamed(const CZeGenericFileEngine& source, const CZeString& name) {
    struct stat open = {}, named = {};
    return fstat(source.descriptor(), &open) == 0 && stat(ze::NativePath(name).get(), &named) == 0 &&
           isSameFile(open, named);
}

/// Puts a random tail behind `name`, at `end`, until nothing has that name.
bool findFreeName(const char* name, char* end) {
    constexpr int kAttempts = 16;
    *end++ = '.';
    for (int i = 0; i < kAttempts; ++i) {
        ze::writeRandomName(end, 6);
        struct stat status = {};
        if (lstat(name, &status) != 0)
            return true;
    }
    errno = EEXIST;
    return false;
}

bool copyBlocks(CZeFileEngine& source, CZeFileEngine& target) {
    char block[65536];
    for (;;) {
        const int64_t count = source.read(block, sizeof block);
        if (count <= 0)
            return count == 0;
        for (int64_t written = 0; written < count;) {
            const int64_t step = target.write(block + written, count - written);
            if (step < 0)
                return false;
            written += step;
        }
    }
}

/// Copies owner, permissions and times, as far as the file system has them.
void copyAttributes(int source, int target) {
    struct stat status = {};
    if (fstat(source, &status) != 0)
        return;
    ze::copyPermissions(status, target);
    const timespec times[] = {status.st_atim, status.st_mtim};
    futimens(target, times);
}

/// The new file is in its directory for good. False when the disk failed: some file systems have no such
/// promise to give, and a directory that may not be read cannot be asked for it.
bool syncDirectory(int directory) {
    const int result = ze::restarting([&] { return fsync(directory); });
    return result == 0 || (errno != EIO && errno != ENOSPC && errno != EDQUOT);
}

/// A copy of a file at a place that nothing has. It is written through the descriptor that has made it, so
/// that nothing that is put in its place meanwhile is written to.
class Copy {
public:
    /// Copies, down to the disk. After a failure the new file is gone again.
    bool make(CZeGenericFileEngine& source, const char* path) {
        constexpr int kNewFile = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        if (!source.open(Ze::ReadOnly) || !m_place.open(path))
            return false;
        m_target = ze::Descriptor(
            ze::restarting([&] { return openat(m_place.directory(), m_place.name(), kNewFile, 0600); }));
        if (!m_target)
            return false;
        if (fill(source) && syncDirectory(m_place.directory()) && isInPlace())
            return true;
        remove();
        return false;
    }

    /// Removes the copy; never anything else that has its name now.
    void remove() {
        if (isInPlace())
            unlinkat(m_place.directory(), m_place.name(), 0);
    }

private:
    bool fill(CZeGenericFileEngine& source) {
        const int descriptor = fcntl(m_target.get(), F_DUPFD_CLOEXEC, 0);
        if (descriptor < 0)
            return false;
        CZeGenericFileEngine engine{CZeString()};
        engine.adoptDescriptor(descriptor, Ze::WriteOnly);
        if (!copyBlocks(source, engine))
            return false;
        copyAttributes(source.descriptor(), descriptor);
        // The source is going to be removed, so this must survive a loss of power.
        return engine.sync() && engine.close();
    }

    bool isInPlace() const {
        struct stat own = {}, named = {};
        return fstat(m_target.get(), &own) == 0 &&
               fstatat(m_place.directory(), m_place.name(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
               isSameFile(own, named);
    }

    ze::Place m_place;
    ze::Descriptor m_target; ///< Open to the end: some file systems number a file anew after it was closed.
};

} // namespace

bool CZeFile::rename(const CZeString& newName) {
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeFile::rename: Empty or null file name");
        return false;
    }
    if (newName == m_fileName)
        return failRename("Destination file is the same file.");
    if (!exists())
        return failRename("Source file does not exist.");
    if (CZeResourceInfo::isResourcePath(newName)) {
        if (CZeResourceInfo::find(newName).exists())
            return failRename("Destination file exists");
        return fail(Ze::FileErrRename, ze::errorText(EROFS));
    }
    const ze::NativePath from(m_fileName);
    const ze::NativePath to(newName);
    struct stat status = {};
    const bool isTaken = lstat(to.get(), &status) == 0;
    // Renaming would replace a file that only cannot be seen now.
    if (!isTaken && errno != ENOENT && errno != ENOTDIR)
        return fail(Ze::FileErrRename, ze::lastErrorText());
    if (isTaken &&
        !(newName.compare(m_fileName, Ze::CaseInsensitive) == 0 && isSameEntry(from.get(), to.get())))
        return failRename("Destination file exists");
    if (!close())
        return false; // the error of what could not be written stays

    const bool isRenamed = isTaken ? renameInTwoSteps(from.get(), to.get()) : renameOrCopy(newName, to.get());
    if (!isRenamed)
        return false;
    m_fileName = newName;
    unsetError();
    return true;
}

/// Where letter case does not count, a direct rename may do nothing.
bool CZeFile::renameInTwoSteps(const char* from, const char* to) {
    char temporary[sizeof(ze::NativePath) + sizeof ".XXXXXX"];
    const size_t length = std::strlen(from);
    std::memcpy(temporary, from, length);
    if (!findFreeName(temporary, temporary + length) || std::rename(from, temporary) != 0)
        return fail(Ze::FileErrRename, ze::lastErrorText());
    if (std::rename(temporary, to) == 0) {
        // Between two hard links to one file the system does nothing and leaves both.
        if (isSameEntry(temporary, to))
            unlink(temporary);
        return true;
    }
    fail(Ze::FileErrRename, ze::lastErrorText());
    if (std::rename(temporary, from) != 0)
        fail(Ze::FileErrRename, CZeString(CZeLatin1String("Unable to restore from ")) +
                                    CZeString::fromLocal8Bit(temporary) + CZeLatin1String(": ") +
                                    ze::lastErrorText());
    return false;
}

bool CZeFile::renameOrCopy(const CZeString& newName, const char* newPath) {
    if (CZeResourceInfo::isResourcePath(m_fileName))
        return failRename("Cannot remove source file");
    CZeGenericFileEngine source(m_fileName);
    if (source.rename(newName))
        return true;
    if (source.isSequential())
        return failRename("Will not rename sequential file using block copy");
    Copy copy;
    if (!copy.make(source, newPath))
        return failRename("Error while renaming.");
    // Another process may have put a newer file in the source's place.
    if (!isStillNamed(source, m_fileName)) {
        copy.remove();
        return failRename("Error while renaming.");
    }
    if (source.remove())
        return true;
    copy.remove();
    return failRename("Cannot remove source file");
}

bool CZeFile::failRename(const char* text) {
    return fail(Ze::FileErrRename, ze::errorText(text));
}
