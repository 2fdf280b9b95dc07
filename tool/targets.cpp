#include "tool/targets.h"

#include "tool/errors.h"

#include <filesystem>

namespace ze::tool {

PictureFormat checkTarget(const std::string& path, bool overwrite) {
    const std::optional<PictureFormat> format = pictureFormatOf(path);
    if (!format)
        throw Failure(ExitCode::usage, path, "unknown extension; .png, .jpg and .jpeg can be written");
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw Failure(ExitCode::usage, path, "is a directory");
    if (!overwrite && std::filesystem::exists(path, error))
        throw Failure(ExitCode::usage, path, "exists already; -y overwrites it");
    return *format;
}

} // namespace ze::tool
