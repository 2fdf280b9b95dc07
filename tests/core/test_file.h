// Files for tests of files.

#pragma once

#include "core/tools/ze_string.h"
#include "tests/support/temp_directory.h"

#include <set>

#include <fcntl.h>

inline CZeString name(const std::string& path) {
    return CZeString::fromUtf8(path.data(), static_cast<int>(path.size()));
}

inline std::string madeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

/// Bytes of all values.
inline std::string pattern(size_t size) {
    std::string bytes(size, ' ');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 2654435761U >> 13);
    return bytes;
}

inline unsigned permissions(const std::string& path) {
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

/// The file descriptors of the process.
inline std::set<int> openDescriptors() {
    std::set<int> descriptors;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        descriptors.insert(std::stoi(entry.path().filename()));
    std::erase_if(descriptors,
                  [](int descriptor) { return fcntl(descriptor, F_GETFD) < 0; }); // the iterator's
    return descriptors;
}

/// The names in a directory, in order, each with a space behind it.
inline std::string listing(const TempDirectory& directory) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path()))
        names.insert(entry.path().filename());
    std::string line;
    for (const std::string& entry : names)
        line += entry + " ";
    return line;
}
