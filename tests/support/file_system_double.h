// The library's system calls, which a test can make fail or do less than they were asked to.

#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// While it lives, the calls that CMakeLists.txt lists for it are noted and fail where the test wants it. One
/// at a time.
struct FileSystemDouble {
    struct Failure {
        int error;
        int times = 1;
        int skipped = 0; ///< calls that work before the first failure
    };

    FileSystemDouble() { current = this; }
    ~FileSystemDouble() { current = nullptr; }

    auto count(const std::string& function) const { return std::count(calls.begin(), calls.end(), function); }

    std::map<std::string, Failure> failures; ///< by function
    std::size_t mostBytes = SIZE_MAX;        ///< that one read or write moves
    int endingRead = 0;                      ///< the so manyth finds the end of its file; 0: none
    int interrupted = 0;                     ///< a read or write is when it is the so manyth call; 0: none
    std::function<void(const std::string& function)> before; ///< is called first, or behind a closing call
    std::vector<std::string> calls;                          ///< in order

    static inline FileSystemDouble* current = nullptr;
};
