#include "tool/files/output_check.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/output_file.h"

#include <filesystem>

namespace ze::tool {

void refuseFolder(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw Failure(ExitCode::usage, path, "is a folder; name a file in it");
}

void checkOutput(const std::string& path, bool overwrite) {
    std::error_code ignored;
    refuseFolder(path);
    if (!isStream(path))
        libraryFileName(path); // refuses what the file could not be called
    if (!overwrite && !isStream(path) && std::filesystem::exists(path, ignored))
        throw Failure(ExitCode::usage, path, "exists already; -y overwrites it");
}

void checkOutput(const std::string& path, bool overwrite, const std::string& extension) {
    refuseFolder(path);
    if (extensionOf(path) != extension && !isStream(path))
        throw Failure(ExitCode::usage, path, "unknown extension; " + extension + " can be written");
    checkOutput(path, overwrite);
}

} // namespace ze::tool
