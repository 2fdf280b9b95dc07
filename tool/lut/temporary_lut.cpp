#include "tool/lut/temporary_lut.h"

#include "tool/errors.h"
#include "tool/lut/lut_bake.h"
#include "tool/lut/lut_file.h"

#include <sys/mman.h>
#include <unistd.h>

namespace ze::tool {
namespace {

ColorTable tableFor(const std::string& path) {
    if (isLutFile(path)) {
        ColorTable table = readLutFile(path);
        if (!table.isThreeDimensional)
            throw Failure(ExitCode::badInput, path,
                          "is one-dimensional, of which the library draws none; zebeauty lut bake makes a "
                          "three-dimensional table of it");
        warnOfLevels(path, table);
        return table;
    }
    Clamping clamping;
    ColorTable table = bakeLut(path, evenLevels(kDefaultLevels), PictureLayout::automatic, clamping);
    warnOfClamping(path, clamping, table);
    return table;
}

} // namespace

TemporaryLut::TemporaryLut(const std::string& path) {
    const ColorTable table = tableFor(path);
    m_levelCount = static_cast<int>(table.levelCount());
    const std::vector<uint8_t> bytes = lutFileBytes(table);
    m_file = memfd_create("zebeauty.lut", MFD_CLOEXEC);
    if (m_file < 0 || write(m_file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        const std::string reason = systemReason();
        close(m_file);
        throw Failure(ExitCode::failed, path, "no room for its table: " + reason);
    }
}

TemporaryLut::~TemporaryLut() {
    close(m_file);
}

std::string TemporaryLut::path() const {
    return "/proc/self/fd/" + std::to_string(m_file);
}

} // namespace ze::tool
