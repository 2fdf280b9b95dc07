#include "core/io/save_file.h"

#include "core/io/descriptor.h"
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
#include <climits>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr char kTemporaryPrefix[] = ".ze-save-";
constexpr int kRandomCharacters = 16;

/// Follows symbolic links from `path`, whether they lead to a file or not, and puts in its place where they
/// lead. False, with errno set, when they do not end.
bool followLinks(char (&path)[PATH_MAX]) {
    constexpr int kMostLinks = 40;
    for (int i = 0; i < kMostLinks; ++i) {
        char link[PATH_MAX];
        const ssize_t length = readlink(path, link, sizeof link);
        if (length < 0)
            return true; // no link
        const auto size = static_cast<size_t>(length);
        const char* const slash = std::strrchr(path, '/');
        const size_t name = link[0] == '/' || !slash ? 0 : static_cast<size_t>(slash + 1 - path);
        if (name + size >= sizeof path) {
            errno = ENAMETOOLONG;
            return false;
        }
        std::memcpy(path + name, link, size);
        path[name + size] = '\0';
    }
    errno = ELOOP;
    return false;
}

} // namespace

/// What is to be replaced, and the file that is to do it.
struct CZeSaveFile::Target {
    ze::Place place;
    struct stat old = {}; ///< All zero for a file that is new.
    /// Beside it. Empty before it is made and after it has gone.
    char temporary[sizeof kTemporaryPrefix + kRandomCharacters] = "";

    ~Target() {
        if (temporary[0] != '\0')
            unlinkat(place.directory(), temporary, 0);
    }

    /// Creates a file of a name that nothing has, and notes that name.
    ze::Descriptor createTemporary(mode_t permissions) {
        constexpr int kNewFile = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        constexpr int kAttempts = 16;
        char candidate[sizeof temporary];
        std::memcpy(candidate, kTemporaryPrefix, sizeof kTemporaryPrefix);
        for (int i = 0; i < kAttempts; ++i) {
            ze::writeRandomName(candidate + sizeof kTemporaryPrefix - 1, kRandomCharacters);
            ze::Descriptor file(
                ze::restarting([&] { return openat(place.directory(), candidate, kNewFile, permissions); }));
            if (file)
                std::memcpy(temporary, candidate, sizeof temporary);
            if (file || errno != EEXIST)
                return file;
        }
        return {};
    }
};

CZeSaveFile::CZeSaveFile() = default;

CZeSaveFile::CZeSaveFile(const CZeString& fileName) : m_fileName(fileName) {}

CZeSaveFile::~CZeSaveFile() {
    cancelWriting();
}

void CZeSaveFile::setFileName(const CZeString& fileName) {
    if (isOpen()) {
        ze::coreWarning("CZeSaveFile::setFileName: File (%s) is already opened",
                        m_fileName.toLocal8Bit().constData());
        return;
    }
    m_fileName = fileName;
}

bool CZeSaveFile::open(int mode) {
    if (isOpen()) {
        ze::coreWarning("CZeSaveFile::open: File (%s) already open", m_fileName.toLocal8Bit().constData());
        return false;
    }
    if (!(mode & Ze::ReadWrite))
        return CZeIODevice::open(mode); // which refuses it
    if ((mode & ~(Ze::Truncate | Ze::Text)) != Ze::WriteOnly) {
        ze::coreWarning("CZeSaveFile::open: Unsupported open mode: %d", mode);
        return false;
    }
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeSaveFile::open: No file name specified");
        return fail(Ze::FileErrOpen, ze::errorText("No file name specified"));
    }
    if (CZeResourceInfo::isResourcePath(m_fileName))
        return failOpen(EROFS);
    m_target.reset(new (std::nothrow) Target);
    if (!m_target)
        return failOpen(ENOMEM);
    if (openTemporary(mode))
        return true;
    m_target.reset();
    return false;
}

bool CZeSaveFile::openTemporary(int mode) {
    const ze::NativePath native(m_fileName);
    char path[PATH_MAX];
    const size_t nativeSize = std::strlen(native.get()) + 1;
    if (nativeSize > sizeof path)
        return failOpen(ENAMETOOLONG);
    std::memcpy(path, native.get(), nativeSize);
    if (!followLinks(path))
        return failOpen(errno);
    const size_t length = std::strlen(path);
    if (length == 0)
        return failOpen(ENOENT);
    if (path[length - 1] == '/')
        return failOpen(EISDIR);
    if (!m_target->place.open(path))
        return failOpen(errno);
    const int directory = m_target->place.directory();
    const char* const name = m_target->place.name();

    struct stat& old = m_target->old;
    const bool isNew = fstatat(directory, name, &old, AT_SYMLINK_NOFOLLOW) != 0;
    if (isNew && errno != ENOENT)
        return failOpen(errno);
    if (!isNew && !S_ISREG(old.st_mode))
        return fail(Ze::FileErrOpen, ze::errorText("file to replace is not a regular file"));
    if (!isNew && faccessat(directory, name, W_OK, 0) != 0)
        return failOpen(errno);

    // What is going to be less than public never is public.
    const mode_t permissions = isNew ? 0666 : 0600;
    ze::Descriptor file = m_target->createTemporary(permissions);
    if (!file || (!isNew && !ze::copyPermissions(old, file.get())))
        return failOpen(errno);

    std::unique_ptr<CZeGenericFileEngine> engine(new (std::nothrow) CZeGenericFileEngine(m_fileName));
    if (!engine)
        return failOpen(ENOMEM);
    engine->adoptDescriptor(file.release(), mode);
    return openEngine(std::move(engine), mode);
}

bool CZeSaveFile::commit() {
    if (!isOpen()) {
        ze::coreWarning("CZeSaveFile::commit: IODevice is not open");
        return false;
    }
    const bool isCommitted = flush() && !hasWriteFailed() && replaceTarget();
    cancelWriting();
    return isCommitted;
}

/// Puts the temporary file, which is complete, in the place of the old one.
bool CZeSaveFile::replaceTarget() {
    auto& file = static_cast<CZeGenericFileEngine&>(*engine());
    // Writing costs a file its set-user-ID and set-group-ID bits, but for root.
    if (m_target->old.st_mode & (S_ISUID | S_ISGID))
        ze::copyPermissions(m_target->old, file.descriptor());
    if (!file.sync())
        return fail(file);
    if (!CZeFileDevice::close())
        return false;
    const int directory = m_target->place.directory();
    if (renameat(directory, m_target->temporary, directory, m_target->place.name()) != 0)
        return fail(Ze::FileErrRename, ze::lastErrorText());
    m_target->temporary[0] = '\0';
    // The new file is complete whether or not its directory reaches the disk now.
    fsync(directory);
    return true;
}

void CZeSaveFile::cancelWriting() {
    forgetPending();
    CZeFileDevice::close();
    m_target.reset();
}

bool CZeSaveFile::close() {
    cancelWriting();
    return true;
}

bool CZeSaveFile::failOpen(int systemError) {
    return fail(systemError == EMFILE ? Ze::FileErrResource : Ze::FileErrOpen, ze::errorText(systemError));
}
