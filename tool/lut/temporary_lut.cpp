#include "tool/lut/temporary_lut.h"

#include "tool/errors.h"
#include "tool/lut/lut_bake.h"
#include "tool/lut/lut_file.h"

#include <utility>

namespace ze::tool {
namespace {

ColorTable tableFor(const std::string& path) {
    ColorTransform transform = readTransform(path);
    if (transform.isLutFile()) {
        if (!transform.table->isThreeDimensional)
            throw Failure(ExitCode::badInput, path,
                          "is one-dimensional, of which the library draws none; zebeauty lut bake makes a "
                          "three-dimensional table of it");
        warnOfLevels(path, *transform.table);
        return *transform.table;
    }
    Clamping clamping;
    ColorTable table = bakeLut({std::move(transform)}, evenLevels(kDefaultLevels), clamping);
    warnOfClamping(path, clamping);
    return table;
}

MemoryFile lutFileOf(const ColorTable& table) {
    const std::vector<uint8_t> bytes = lutFileBytes(table);
    return MemoryFile({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace

TemporaryLut::TemporaryLut(const std::string& path) : TemporaryLut(tableFor(path)) {}

TemporaryLut::TemporaryLut(const ColorTable& table)
    : m_levelCount(static_cast<int>(table.levelCount())), m_file(lutFileOf(table)) {}

} // namespace ze::tool
