#include "core/io/save_file.h"

#include "core/io/descriptor.h"
#include "core/io/generic_file_engine.h"
#include "core/io/native_path.h"
#include "core/io/random_name.h"
#include "core/io/resource_info.h"
#include "core/io/restarting.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

/// What is to be replaced. Names are relative to the directory, which may be renamed meanwhile, as may the
/// working directory.
struct CZeSaveFile::Target {
    ze::Descriptor directory;
    std::string name;
    CZeByteArray temporary; ///< Empty before it is made and after it has gone.

    ~Target() {
        if (!temporary.isEmpty())
            unlinkat(directory.get(), temporary.constData(), 0);
    }
};

namespace {

/// Follows symbolic links, whether they lead to a file or not. Empty, with errno set, when they do not end.
std::string followLinks(std::string path) {
    constexpr int kMostLinks = 40;
    for (int i = 0; i < kMostLinks; ++i) {
        char link[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), link, sizeof link);
        if (length < 0)
            return path; // no link
        const size_t name = link[0] == '/' ? 0 : path.rfind('/') + 1;
        path.replace(name, path.npos, link, size_t(length));
    }
    errno = ELOOP;
    return {};
}

/// Opens the directory to work in; where it must not be read, just as a place.
int openDirectory(const char* path) {
    const int readable = ::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return readable >= 0 || errno != EACCES ? readable : ::open(path, O_PATH | O_DIRECTORY | O_CLOEXEC);
}

/// Creates a file of a name that nothing has, and gives that name.
ze::Descriptor createTemporary(int directory, mode_t permissions, CZeByteArray& name) {
    constexpr int kNewFile = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    constexpr int kAttempts = 16;
    for (int i = 0; i < kAttempts; ++i) {
        const CZeByteArray candidate =
            ze::nativePath(ze::randomName(CZeString(CZeLatin1String(".ze-save-")), 16));
        ze::Descriptor file(
            ze::restarting([&] { return openat(directory, candidate.constData(), kNewFile, permissions); }));
        if (file)
            name = candidate;
        if (file || errno != EEXIST)
            return file;
    }
    return {};
}

} // namespace

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
        return fail(Ze::FileErrOpen, CZeString(CZeLatin1String("No file name specified")));
    }
    if (CZeResourceInfo::isResourcePath(m_fileName))
        return failOpen(EROFS);
    m_target = std::make_unique<Target>();
    if (openTemporary(mode))
        return true;
    m_target.reset();
    return false;
}

bool CZeSaveFile::openTemporary(int mode) {
    const std::string path = followLinks(ze::nativePath(m_fileName).constData());
    if (path.empty())
        return failOpen(errno);
    const size_t nameStart = path.rfind('/') + 1;
    m_target->name = path.substr(nameStart);
    if (m_target->name.empty())
        return failOpen(EISDIR);
    m_target->directory =
        ze::Descriptor(openDirectory(nameStart == 0 ? "." : path.substr(0, nameStart).c_str()));
    const int directory = m_target->directory.get();
    if (directory < 0)
        return failOpen(errno);

    struct stat old = {};
    const bool isNew = fstatat(directory, m_target->name.c_str(), &old, AT_SYMLINK_NOFOLLOW) != 0;
    if (isNew && errno != ENOENT)
        return failOpen(errno);
    if (!isNew && !S_ISREG(old.st_mode))
        return fail(Ze::FileErrOpen, CZeString(CZeLatin1String("file to replace is not a regular file")));
    if (!isNew && faccessat(directory, m_target->name.c_str(), W_OK, 0) != 0)
        return failOpen(errno);

    // What is going to be less than public never is public.
    const mode_t permissions = isNew ? 0666 : 0600;
    ze::Descriptor file = createTemporary(directory, permissions, m_target->temporary);
    if (!file || (!isNew && fchmod(file.get(), old.st_mode & 07777) != 0))
        return failOpen(errno);

    auto engine = std::make_unique<CZeGenericFileEngine>(m_fileName);
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
    if (!file.sync())
        return fail(file);
    if (!CZeFileDevice::close())
        return false;
    const int directory = m_target->directory.get();
    if (renameat(directory, m_target->temporary.constData(), directory, m_target->name.c_str()) != 0)
        return fail(Ze::FileErrRename, ze::lastErrorText());
    m_target->temporary = CZeByteArray();
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
