#include "core/io/generic_file_engine.h"

#include "core/io/native_path.h"
#include "core/io/open_mode.h"
#include "core/io/restarting.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) == sizeof(int64_t), "files may be larger than 2 GiB");

namespace {

/// The status of the open file, or of the named one when `descriptor` is −1. Its type is 0, and errno set,
/// when that fails.
struct stat statusOf(int descriptor, const CZeString& name) {
    struct stat status = {};
    if (descriptor >= 0) {
        if (fstat(descriptor, &status) != 0)
            status.st_mode = 0;
        return status;
    }
    const ze::NativePath path(name);
    if (stat(path.get(), &status) != 0) {
        const int error = errno;
        ze::coreWarning("stat() ZE_FAILED for '%s'", path.get());
        errno = error;
        status.st_mode = 0;
    }
    return status;
}

/// The errno of mkdir, or 0 when the directory exists now.
int makeDirectory(const char* path) {
    if (mkdir(path, 0777) == 0)
        return 0;
    const int error = errno;
    struct stat status = {};
    const bool isThere = error == EEXIST && stat(path, &status) == 0 && S_ISDIR(status.st_mode);
    return isThere ? 0 : error;
}

/// Tries the directory itself first: most calls find it, or its parent, already there.
bool makeWithParents(char* path) {
    size_t length = std::strlen(path);
    while (length > 1 && path[length - 1] == '/')
        path[--length] = '\0';
    // Up to the first directory that can be made; a zero cuts the path there.
    int error = makeDirectory(path);
    while (error == ENOENT) {
        char* slash = std::strrchr(path, '/');
        while (slash && slash > path && slash[-1] == '/')
            --slash;
        if (!slash || slash == path)
            return false;
        *slash = '\0';
        error = makeDirectory(path);
    }
    // And down again.
    for (size_t made = std::strlen(path); error == 0 && made < length; made = std::strlen(path)) {
        path[made] = '/';
        error = makeDirectory(path);
    }
    return error == 0;
}

} // namespace

CZeGenericFileEngine::CZeGenericFileEngine(const CZeString& fileName) : m_fileName(fileName) {}

CZeGenericFileEngine::~CZeGenericFileEngine() {
    CZeGenericFileEngine::close();
}

CZeString CZeGenericFileEngine::tempPath() {
    const char* const path = std::getenv("TMPDIR");
    return CZeString::fromLocal8Bit(path && *path ? path : "/tmp");
}

bool CZeGenericFileEngine::mkpath(const CZeString& path) {
    ze::NativePath native(path);
    return makeWithParents(native.get());
}

bool CZeGenericFileEngine::rmdir(const CZeString& path) {
    return ::rmdir(ze::NativePath(path).get()) == 0;
}

/// Only a mode that allows writing can truncate: Truncate alone or with ReadOnly has no mode string, and
/// fopen refuses it.
const char* CZeGenericFileEngine::streamMode(int mode) const {
    const bool reads = mode & Ze::ReadOnly;
    if (mode & Ze::Append)
        return reads ? "ab+" : "ab";
    if (reads && !(mode & Ze::Truncate)) {
        if (!(mode & Ze::WriteOnly))
            return "rb";
        // "wb+" would empty a file that only cannot be asked for now.
        const bool isMissing = !exists() && (errno == ENOENT || errno == ENOTDIR);
        return isMissing ? "wb+" : "rb+";
    }
    if (mode & Ze::WriteOnly)
        return reads ? "wb+" : "wb";
    return "";
}

bool CZeGenericFileEngine::open(int mode) {
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeGenericFileEngine::open: No file name specified");
        return fail(Ze::FileErrOpen, ze::errorText("No file name specified"));
    }
    const ze::NativePath path(m_fileName);
    const char* const modeString = streamMode(mode);
    std::FILE* const stream = ze::restarting([&] { return std::fopen(path.get(), modeString); });
    if (!stream)
        return failSystemCall(errno == EMFILE ? Ze::FileErrResource : Ze::FileErrOpen);
    const int descriptor = fileno(stream);
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    if (S_ISDIR(statusOf(descriptor, m_fileName).st_mode)) {
        std::fclose(stream);
        return fail(Ze::FileErrOpen, ze::errorText("file to open is a directory"));
    }
    adoptDescriptor(descriptor, mode);
    m_stream = stream;
    return true;
}

void CZeGenericFileEngine::adoptDescriptor(int descriptor, int mode) {
    m_descriptor = descriptor;
    m_mode = mode;
}

bool CZeGenericFileEngine::close() {
    if (m_descriptor < 0)
        return true;
    for (const Mapping& mapping : m_mappings)
        munmap(mapping.start, mapping.length);
    m_mappings.clear();
    const int result = m_stream ? std::fclose(m_stream) : ::close(m_descriptor);
    m_stream = nullptr;
    m_descriptor = -1;
    // An interrupted close has closed the descriptor; it must not be repeated.
    return result == 0 || errno == EINTR || failSystemCall(Ze::FileErrWrite);
}

int64_t CZeGenericFileEngine::read(char* data, int64_t maxSize) {
    const int64_t count =
        ze::restarting([&] { return ::read(m_descriptor, data, static_cast<size_t>(maxSize)); });
    if (count < 0)
        failSystemCall(Ze::FileErrRead);
    return count;
}

int64_t CZeGenericFileEngine::write(const char* data, int64_t size) {
    const int64_t count =
        ze::restarting([&] { return ::write(m_descriptor, data, static_cast<size_t>(size)); });
    if (count > 0)
        return count;
    if (count == 0)
        errno = EIO; // nothing would ever come of trying again
    failSystemCall(Ze::FileErrWrite);
    return -1;
}

bool CZeGenericFileEngine::seek(int64_t pos) {
    return lseek(m_descriptor, pos, SEEK_SET) >= 0 || failSystemCall(Ze::FileErrPosition);
}

bool CZeGenericFileEngine::sync() {
    return ze::restarting([&] { return fsync(m_descriptor); }) == 0 || failSystemCall(Ze::FileErrWrite);
}

int64_t CZeGenericFileEngine::size() const {
    return statusOf(m_descriptor, m_fileName).st_size;
}

bool CZeGenericFileEngine::isSequential() const {
    const mode_t mode = statusOf(m_descriptor, m_fileName).st_mode;
    return S_ISFIFO(mode) || S_ISSOCK(mode) || S_ISCHR(mode);
}

bool CZeGenericFileEngine::exists() const {
    return statusOf(-1, m_fileName).st_mode != 0;
}

bool CZeGenericFileEngine::isDirectory() const {
    return S_ISDIR(statusOf(m_descriptor, m_fileName).st_mode);
}

bool CZeGenericFileEngine::remove() {
    return unlink(ze::NativePath(m_fileName).get()) == 0 || failSystemCall(Ze::FileErrRemove);
}

bool CZeGenericFileEngine::rename(const CZeString& newName) {
    const ze::NativePath from(m_fileName);
    const ze::NativePath to(newName);
    return std::rename(from.get(), to.get()) == 0 || failSystemCall(Ze::FileErrRename);
}

bool CZeGenericFileEngine::supportsMap() const {
    return true;
}

unsigned char* CZeGenericFileEngine::map(int64_t offset, int64_t size) {
    if (offset < 0 || size < 1) {
        fail(Ze::FileErrMap, ze::errorText(EINVAL));
        return nullptr;
    }
    if (size > this->size() - offset) {
        constexpr char kRefusal[] =
            "CZeGenericFileEngine::map: Mapping a file beyond its size is not portable";
        ze::coreWarning(kRefusal);
        fail(Ze::FileErrMap, ze::errorText(kRefusal));
        return nullptr;
    }
    const int64_t intoPage = offset % sysconf(_SC_PAGESIZE);
    const auto length = static_cast<size_t>(size + intoPage);
    const int access = (m_mode & Ze::ReadOnly ? PROT_READ : 0) | (m_mode & Ze::WriteOnly ? PROT_WRITE : 0);
    void* const start = mmap(nullptr, length, access, MAP_SHARED, m_descriptor, offset - intoPage);
    if (start == MAP_FAILED) {
        failSystemCall(Ze::FileErrMap);
        return nullptr;
    }
    unsigned char* const address = static_cast<unsigned char*>(start) + intoPage;
    try {
        m_mappings.push_back({address, start, length});
    } catch (const std::bad_alloc&) {
        munmap(start, length);
        fail(Ze::FileErrMap, ze::errorText(ENOMEM));
        return nullptr;
    }
    return address;
}

bool CZeGenericFileEngine::unmap(unsigned char* address) {
    const auto mapping = std::find_if(m_mappings.begin(), m_mappings.end(),
                                      [&](const Mapping& known) { return known.address == address; });
    if (mapping == m_mappings.end())
        return fail(Ze::FileErrMap, ze::errorText(EINVAL));
    if (munmap(mapping->start, mapping->length) != 0)
        return failSystemCall(Ze::FileErrMap);
    m_mappings.erase(mapping);
    return true;
}

bool CZeGenericFileEngine::failSystemCall(int error) {
    return fail(error, ze::lastErrorText());
}
