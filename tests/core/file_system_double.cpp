#include "tests/core/file_system_double.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace {

bool refuses(const std::string& function, int interrupted = 0) {
    FileSystemDouble* const system = FileSystemDouble::current;
    if (!system)
        return false;
    const int call = ++system->calls[function];
    const auto failure = system->failures.find(function);
    if (interrupted > 0 && call % interrupted == 0)
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
    if (FileSystemDouble::current)
        FileSystemDouble::current->modes.push_back(mode);
    return refuses("fopen") ? nullptr : __real_fopen(path, mode);
}
ssize_t __real_read(int, void*, size_t);
ssize_t __wrap_read(int file, void* data, size_t size) {
    return refusesTransfer("read", size) ? -1 : __real_read(file, data, size);
}
ssize_t __real_write(int, const void*, size_t);
ssize_t __wrap_write(int file, const void* data, size_t size) {
    return refusesTransfer("write", size) ? -1 : __real_write(file, data, size);
}
int __real_rename(const char*, const char*);
int __wrap_rename(const char* from, const char* to) {
    return refuses("rename") ? -1 : __real_rename(from, to);
}
int __real_renameat(int, const char*, int, const char*);
int __wrap_renameat(int fromDirectory, const char* from, int toDirectory, const char* to) {
    return refuses("renameat") ? -1 : __real_renameat(fromDirectory, from, toDirectory, to);
}
int __real_unlink(const char*);
int __wrap_unlink(const char* path) {
    return refuses("unlink") ? -1 : __real_unlink(path);
}
int __real_unlinkat(int, const char*, int);
int __wrap_unlinkat(int directory, const char* path, int flags) {
    return refuses("unlinkat") ? -1 : __real_unlinkat(directory, path, flags);
}
int __real_fsync(int);
int __wrap_fsync(int file) {
    return refuses("fsync") ? -1 : __real_fsync(file);
}
}
