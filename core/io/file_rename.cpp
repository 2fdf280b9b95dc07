// Renaming, and what takes its place where the system cannot do it.

#include "core/io/descriptor.h"
#include "core/io/file.h"
#include "core/io/native_path.h"
#include "core/io/random_name.h"
#include "core/io/restarting.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

bool entryExists(const CZeString& name) {
    struct stat status = {};
    return lstat(ze::nativePath(name).constData(), &status) == 0;
}

/// Both names are one entry of the file system, or hard links to one file. A symbolic link is not the file
/// that it leads to: to rename it to that would lose the file.
bool isSameEntry(const CZeString& left, const CZeString& right) {
    struct stat l = {}, r = {};
    return lstat(ze::nativePath(left).constData(), &l) == 0 &&
           lstat(ze::nativePath(right).constData(), &r) == 0 && l.st_dev == r.st_dev && l.st_ino == r.st_ino;
}

/// A name beside `name` that is free; null when none was found.
CZeString freeNameBeside(const CZeString& name) {
    constexpr int kAttempts = 16;
    for (int i = 0; i < kAttempts; ++i) {
        const CZeString candidate = ze::randomName(name + CZeLatin1String("."), 6);
        if (!entryExists(candidate))
            return candidate;
    }
    return {};
}

bool copyBlocks(CZeFile& source, CZeFile& target) {
    char block[65536];
    for (;;) {
        const int64_t count = source.read(block, sizeof block);
        if (count <= 0)
            return count == 0;
        if (target.write(block, count) != count)
            return false;
    }
}

/// Copies permissions and times, as far as the file system has them.
void copyAttributes(const CZeString& source, int target) {
    struct stat status = {};
    if (stat(ze::nativePath(source).constData(), &status) != 0)
        return;
    fchmod(target, status.st_mode & 07777);
    const timespec times[] = {status.st_atim, status.st_mtim};
    futimens(target, times);
}

/// Copies a file to a name that nothing has, down to the disk. After a failure the new file is gone again.
bool copyFile(const CZeString& from, const CZeString& to) {
    CZeFile source(from);
    if (!source.open(Ze::ReadOnly))
        return false;
    const CZeByteArray path = ze::nativePath(to);
    const ze::Descriptor created(ze::restarting(
        [&] { return ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600); }));
    if (!created)
        return false;
    CZeFile target(to);
    const bool isCopied = target.open(Ze::WriteOnly) && copyBlocks(source, target);
    if (target.close() && isCopied) {
        copyAttributes(from, created.get());
        // The source is going to be removed, so this must survive a loss of power.
        if (ze::restarting([&] { return fsync(created.get()); }) == 0)
            return true;
    }
    unlink(path.constData());
    return false;
}

} // namespace

bool CZeFile::rename(const CZeString& newName) {
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeFile::rename: Empty or null file name");
        return false;
    }
    if (newName == m_fileName)
        return failRename("Destination file is the same file.");
    const std::unique_ptr<CZeFileEngine> engine = CZeFileEngine::create(m_fileName);
    if (!engine->exists())
        return failRename("Source file does not exist.");
    const bool isTaken = CZeFile(newName).exists();
    if (isTaken &&
        !(newName.compare(m_fileName, Ze::CaseInsensitive) == 0 && isSameEntry(m_fileName, newName)))
        return failRename("Destination file exists");
    if (!close())
        return false; // the error of what could not be written stays

    if (isTaken) {
        if (!renameInTwoSteps(newName))
            return false;
    } else if (!engine->rename(newName)) {
        if (engine->isSequential())
            return failRename("Will not rename sequential file using block copy");
        if (!renameByCopy(newName))
            return false;
    }
    m_fileName = newName;
    unsetError();
    return true;
}

/// Where letter case does not count, a direct rename may do nothing.
bool CZeFile::renameInTwoSteps(const CZeString& newName) {
    const CZeString temporary = freeNameBeside(m_fileName);
    if (temporary.isNull())
        return fail(Ze::FileErrRename, ze::errorText(EEXIST));
    const std::unique_ptr<CZeFileEngine> original = CZeFileEngine::create(m_fileName);
    if (!original->rename(temporary))
        return fail(*original);
    const std::unique_ptr<CZeFileEngine> moved = CZeFileEngine::create(temporary);
    if (moved->rename(newName)) {
        // Between two hard links to one file the system does nothing and leaves both.
        if (isSameEntry(temporary, newName))
            moved->remove();
        return true;
    }
    fail(*moved);
    if (!moved->rename(m_fileName))
        fail(Ze::FileErrRename, CZeString(CZeLatin1String("Unable to restore from ")) + temporary +
                                    CZeLatin1String(": ") + moved->errorString());
    return false;
}

bool CZeFile::renameByCopy(const CZeString& newName) {
    if (!copyFile(m_fileName, newName))
        return failRename("Error while renaming.");
    if (CZeFileEngine::create(m_fileName)->remove())
        return true;
    CZeFileEngine::create(newName)->remove();
    return failRename("Cannot remove source file");
}

bool CZeFile::failRename(const char* text) {
    return fail(Ze::FileErrRename, CZeString(CZeLatin1String(text)));
}
