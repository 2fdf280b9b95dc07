// Files for tests of files.

#pragma once

#include "core/tools/ze_string.h"
#include "tests/support/temp_directory.h"

#include <set>

inline CZeString name(const std::string& path) {
    return CZeString::fromUtf8(path.data(), int(path.size()));
}

inline std::string madeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

/// Bytes of all values.
inline std::string pattern(size_t size) {
    std::string bytes(size, ' ');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = char(i * 2654435761U >> 13);
    return bytes;
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
