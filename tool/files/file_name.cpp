#include "tool/files/file_name.h"

#include "tool/errors.h"

#include <algorithm>
#include <filesystem>

namespace ze::tool {

CZeString libraryFileName(const std::string& path) {
    const std::string file = path.rfind(":/", 0) == 0 ? "./" + path : path;
    CZeString name = CZeString::fromUtf8(file.c_str());
    if (file != name.toUtf8().constData())
        throw Failure(ExitCode::usage, path, "its name is no valid UTF-8");
    return name;
}

std::string extensionOf(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension;
}

} // namespace ze::tool
