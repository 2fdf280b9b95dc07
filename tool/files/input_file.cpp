#include "tool/files/input_file.h"

#include "core/io/file.h"
#include "tool/errors.h"
#include "tool/files/file_name.h"

#include <algorithm>
#include <filesystem>

namespace ze::tool {
namespace {

constexpr int64_t kMaxBytes = 256 << 20;

} // namespace

std::string readInput(const std::string& path, size_t maxBytes) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw Failure(ExitCode::badInput, path, "is a directory");
    if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored))
        throw Failure(ExitCode::badInput, path, "is no regular file");
    CZeFile file(libraryFileName(path));
    const auto unreadable = [&] {
        return Failure(ExitCode::badInput, path,
                       std::string("cannot be read: ") + file.errorString().toUtf8().constData());
    };
    if (!file.open(Ze::ReadOnly))
        throw unreadable();
    if (file.size() > kMaxBytes)
        throw Failure(ExitCode::badInput, path, "is larger than 256 MiB");
    std::string bytes(std::min(static_cast<size_t>(file.size()), maxBytes), '\0');
    const int64_t count = file.read(bytes.data(), static_cast<int64_t>(bytes.size()));
    if (count < 0)
        throw unreadable();
    bytes.resize(static_cast<size_t>(count));
    return bytes;
}

} // namespace ze::tool
