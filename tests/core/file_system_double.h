// The library's system calls, which a test can make fail or do less than they were asked to.

#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// While it lives, fopen, read, write, rename, renameat, unlink, unlinkat and fsync are counted and fail
/// where the test wants it, in programs that are linked to wrap them. One at a time.
struct FileSystemDouble {
    struct Failure {
        int error;
        int times = 1;
        int skipped = 0; ///< calls that work before the first failure
    };

    FileSystemDouble() { current = this; }
    ~FileSystemDouble() { current = nullptr; }

    std::map<std::string, Failure> failures; ///< by function
    std::size_t mostBytes = SIZE_MAX;        ///< that one read or write moves
    int interrupted = 0;                     ///< every so manyth read or write is interrupted; 0: none
    std::map<std::string, int> calls;
    std::vector<std::string> modes; ///< of fopen

    static inline FileSystemDouble* current = nullptr;
};
