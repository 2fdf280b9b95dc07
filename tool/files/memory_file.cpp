#include "tool/files/memory_file.h"

#include "tool/errors.h"

#include <sys/mman.h>
#include <unistd.h>

namespace ze::tool {

MemoryFile::MemoryFile(std::string_view bytes) : m_file(memfd_create("zebeauty", MFD_CLOEXEC)) {
    while (m_file >= 0 && !bytes.empty()) {
        const ssize_t count = write(m_file, bytes.data(), bytes.size());
        if (count <= 0)
            break;
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    if (m_file >= 0 && bytes.empty())
        return;
    const std::string reason = systemReason();
    close(m_file);
    throw Failure(ExitCode::failed, "no room in memory for a table: " + reason);
}

MemoryFile::~MemoryFile() {
    close(m_file);
}

std::string MemoryFile::path() const {
    return "/proc/self/fd/" + std::to_string(m_file);
}

} // namespace ze::tool
