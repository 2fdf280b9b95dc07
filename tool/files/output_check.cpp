#include "tool/files/output_check.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"

#include <filesystem>

namespace ze::tool {
namespace {

void checkPlace(const std::string& path, bool overwrite) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw Failure(ExitCode::usage, path, "is a directory");
    if (!overwrite && std::filesystem::exists(path, error))
        throw Failure(ExitCode::usage, path, "exists already; -y overwrites it");
}

} // namespace

PictureFormat checkOutput(const std::string& path, bool overwrite) {
    const std::optional<PictureFormat> format = pictureFormatOf(path);
    if (!format)
        throw Failure(ExitCode::usage, path, "unknown extension; .png, .jpg and .jpeg can be written");
    checkPlace(path, overwrite);
    return *format;
}

void checkOutput(const std::string& path, bool overwrite, const std::string& extension) {
    if (extensionOf(path) != extension)
        throw Failure(ExitCode::usage, path, "unknown extension; " + extension + " can be written");
    checkPlace(path, overwrite);
}

} // namespace ze::tool
