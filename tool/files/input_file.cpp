#include "tool/files/input_file.h"

#include "tool/errors.h"
#include "tool/files/input_stream.h"

#include <algorithm>

namespace ze::tool {
namespace {

constexpr size_t kBlockSize = 1 << 20;

} // namespace

std::string readWholeInput(const std::string& path, size_t maxBytes) {
    InputStream stream(path);
    std::string bytes(std::min(static_cast<size_t>(stream.size()), maxBytes) + 1, '\0');
    size_t size = 0;
    for (ssize_t count = 1; count > 0; size += static_cast<size_t>(count)) {
        if (size == bytes.size())
            bytes.resize(size + kBlockSize);
        count = stream.read(bytes.data() + size, bytes.size() - size);
        if (count < 0)
            throw Failure(ExitCode::badInput, path, "cannot be read: " + systemReason());
        if (size + static_cast<size_t>(count) > maxBytes)
            throw Failure(ExitCode::badInput, path,
                          "is larger than " + std::to_string(maxBytes >> 20) + " MiB");
    }
    bytes.resize(size);
    return bytes;
}

} // namespace ze::tool
