#include "tests/support/file_system_double.h"

#include <cerrno>
#include <cstdio>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool refuses(const std::string& function, int interrupted = 0) {
    FileSystemDouble* const system = FileSystemDouble::current;
    if (!system)
        return false;
    FileSystemDouble::current = nullptr; // `before` may use the file system itself
    if (system->before)
        system->before(function);
    FileSystemDouble::current = system;
    system->calls.push_back(function);
    const auto failure = system->failures.find(function);
    if (interrupted > 0 && static_cast<int>(system->calls.size()) % interrupted == 0)
        errno = EINTR;
    else if (failure != system->failures.end() && failure->second.skipped-- <= 0 &&
             failure->second.times-- > 0)
        errno = failure->second.error;
    else
        return false;
    return true;
}

/// Whether a read or write fails, and how much it moves.
bool refusesTransfer(const char* function, std::size_t& size) {
    const FileSystemDouble* const system = FileSystemDouble::current;
    size = std::min(size, system ? system->mostBytes : size);
    return refuses(function, system ? system->interrupted : 0);
}

} // namespace

extern "C" {
FILE* __real_fopen(const char*, const char*);
FILE* __wrap_fopen(const char* path, const char* mode) {
    return refuses("fopen") ? nullptr : __real_fopen(path, mode);
}
DIR* __real_fdopendir(int);
DIR* __wrap_fdopendir(int directory) {
    return refuses("fdopendir") ? nullptr : __real_fdopendir(directory);
}
ssize_t __real_read(int, void*, size_t);
ssize_t __wrap_read(int file, void* data, size_t size) {
    const auto* const system = FileSystemDouble::current;
    if (system && system->count("read") + 1 == system->endingRead)
        size = 0;
    return refusesTransfer("read", size) ? -1 : __real_read(file, data, size);
}
ssize_t __real_write(int, const void*, size_t);
ssize_t __wrap_write(int file, const void* data, size_t size) {
    return refusesTransfer("write", size) ? -1 : __real_write(file, data, size);
}

// Closing that fails has closed.
int __real_fclose(FILE*);
int __wrap_fclose(FILE* stream) {
    const int result = __real_fclose(stream);
    return refuses("fclose") ? -1 : result;
}
int __real_close(int);
int __wrap_close(int file) {
    const int result = __real_close(file);
    return refuses("close") ? -1 : result;
}

#define ZE_DOUBLE(function, parameters, ...)                                                                 \
    int __real_##function parameters;                                                                        \
    int __wrap_##function parameters {                                                                       \
        return refuses(#function) ? -1 : __real_##function(__VA_ARGS__);                                     \
    }
ZE_DOUBLE(stat, (const char* path, struct stat* status), path, status)
ZE_DOUBLE(lstat, (const char* path, struct stat* status), path, status)
ZE_DOUBLE(rename, (const char* from, const char* to), from, to)
ZE_DOUBLE(renameat, (int fromAt, const char* from, int toAt, const char* to), fromAt, from, toAt, to)
ZE_DOUBLE(unlink, (const char* path), path)
ZE_DOUBLE(unlinkat, (int at, const char* path, int flags), at, path, flags)
ZE_DOUBLE(fsync, (int file), file)
ZE_DOUBLE(fchown, (int file, uid_t owner, gid_t group), file, owner, group)
#undef ZE_DOUBLE
}
