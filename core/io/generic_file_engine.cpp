#include "core/io/generic_file_engine.h"

#include "core/io/native_path.h"
#include "core/io/open_mode.h"
#include "core/io/restarting.h"
#include "core/io/tree_removal.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) == sizeof(int64_t), "files may be larger than 2 GiB");

namespace {

/// The status of the open file, or of the named one when `descriptor` is −1. Its type is 0 when that fails.
struct stat statusOf(int descriptor, const CZeString& name) {
    struct stat status = {};
    if (descriptor >= 0) {
        if (fstat(descriptor, &status) != 0)
            status.st_mode = 0;
        return status;
    }
    const CZeByteArray path = ze::nativePath(name);
    if (stat(path.constData(), &status) != 0) {
        ze::coreWarning("stat() ZE_FAILED for '%s'", path.constData());
        status.st_mode = 0;
    }
    return status;
}

/// The errno of mkdir, or 0 when the directory exists now.
int makeDirectory(const std::string& path) {
    if (mkdir(path.c_str(), 0777) == 0)
        return 0;
    const int error = errno;
    struct stat status = {};
    const bool isThere = error == EEXIST && stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return isThere ? 0 : error;
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

CZeGenericFileEngine::CZeGenericFileEngine(const CZeString& fileName) : m_fileName(fileName) {}

CZeGenericFileEngine::~CZeGenericFileEngine() {
    CZeGenericFileEngine::close();
}

CZeString CZeGenericFileEngine::tempPath() {
    const char* const path = std::getenv("TMPDIR");
    return CZeString::fromLocal8Bit(path && *path ? path : "/tmp");
}

bool CZeGenericFileEngine::mkpath(const CZeString& path) {
    return makeWithParents(ze::nativePath(path).constData());
}

bool CZeGenericFileEngine::rmdir(const CZeString& path) {
    return ::rmdir(ze::nativePath(path).constData()) == 0;
}

bool CZeGenericFileEngine::removeRecursively(const CZeString& path) {
    const CZeByteArray name = ze::nativePath(path);
    return !name.isEmpty() && ze::removeTree(name.constData());
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
        return exists() ? "rb+" : "wb+";
    }
    if (mode & Ze::WriteOnly)
        return reads ? "wb+" : "wb";
    return "";
}

bool CZeGenericFileEngine::open(int mode) {
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeGenericFileEngine::open: No file name specified");
        return fail(Ze::FileErrOpen, CZeString(CZeLatin1String("No file name specified")));
    }
    const CZeByteArray path = ze::nativePath(m_fileName);
    const char* const modeString = streamMode(mode);
    std::FILE* stream = nullptr;
    do
        stream = std::fopen(path.constData(), modeString);
    while (!stream && errno == EINTR);
    if (!stream)
        return failSystemCall(errno == EMFILE ? Ze::FileErrResource : Ze::FileErrOpen);
    if (S_ISDIR(statusOf(fileno(stream), m_fileName).st_mode)) {
        std::fclose(stream);
        return fail(Ze::FileErrOpen, CZeString(CZeLatin1String("file to open is a directory")));
    }
    adoptDescriptor(fileno(stream), mode);
    m_stream = stream;
    fcntl(m_descriptor, F_SETFD, FD_CLOEXEC);
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
    const int64_t count = ze::restarting([&] { return ::read(m_descriptor, data, size_t(maxSize)); });
    if (count < 0)
        failSystemCall(Ze::FileErrRead);
    return count;
}

int64_t CZeGenericFileEngine::write(const char* data, int64_t size) {
    const int64_t count = ze::restarting([&] { return ::write(m_descriptor, data, size_t(size)); });
    if (count > 0)
        return count;
    if (count == 0)
        errno = EIO; // nothing would ever come of trying again
    failSystemCall(Ze::FileErrWrite);
    return -1;
}

bool CZeGenericFileEngine::seek(int64_t pos) {
    return lseek(m_descriptor, pos, SEEK_SET) == pos || failSystemCall(Ze::FileErrPosition);
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
    return unlink(ze::nativePath(m_fileName).constData()) == 0 || failSystemCall(Ze::FileErrRemove);
}

bool CZeGenericFileEngine::rename(const CZeString& newName) {
    const CZeByteArray from = ze::nativePath(m_fileName);
    const CZeByteArray to = ze::nativePath(newName);
    return std::rename(from.constData(), to.constData()) == 0 || failSystemCall(Ze::FileErrRename);
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
        fail(Ze::FileErrMap, CZeString(CZeLatin1String(kRefusal)));
        return nullptr;
    }
    const int64_t intoPage = offset % sysconf(_SC_PAGESIZE);
    const auto length = size_t(size + intoPage);
    const int access = (m_mode & Ze::ReadOnly ? PROT_READ : 0) | (m_mode & Ze::WriteOnly ? PROT_WRITE : 0);
    void* const start = mmap(nullptr, length, access, MAP_SHARED, m_descriptor, offset - intoPage);
    if (start == MAP_FAILED) {
        failSystemCall(Ze::FileErrMap);
        return nullptr;
    }
    unsigned char* const first = static_cast<unsigned char*>(start);
    m_mappings.push_back({first + intoPage, first, length});
    return first + intoPage;
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
