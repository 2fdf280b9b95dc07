#include "tool/lut/lut_file.h"

#include "effects/lut/lut_file_reader.h"
#include "effects/lut/lut_format.h"
#include "host/library_log.h"
#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/memory_file.h"

#include <algorithm>
#include <bit>

namespace ze::tool {
namespace {

using namespace lut_format;

// Numbers are little-endian.
template <class Unsigned>
void put(std::vector<uint8_t>& bytes, size_t at, Unsigned value) {
    for (size_t i = 0; i < sizeof value; ++i)
        bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

} // namespace

bool isLutFile(std::string_view bytes) {
    return bytes.substr(0, kSignature.size()) == kSignature;
}

ColorTable readLutFile(const LutInput& input) {
    const MemoryFile file(input.bytes);
    zebeauty::catchLibraryErrors(false);
    zebeauty::takeLibraryError(); // An earlier one.
    const CLutFileReader reader(libraryFileName(file.path()));
    if (!reader.isValid()) {
        const std::string reason = zebeauty::takeLibraryError();
        throw Failure(ExitCode::badInput, input.name,
                      "is no valid LUT file: " +
                          (reason.empty() ? "wrong version, number of levels or reserved field in its header"
                                          : reason));
    }
    const size_t n = reader.levelCount();
    const size_t colorBytes = 3 * (reader.isThreeDimensional() ? n * n * n : n);
    return {{reader.levelValues(), reader.levelValues() + n},
            reader.isThreeDimensional(),
            {reader.colorData(), reader.colorData() + colorBytes}};
}

std::vector<uint8_t> lutFileBytes(const ColorTable& table) {
    const size_t levelCount = table.levelCount();
    std::vector<uint8_t> bytes(kHeaderSize + levelCount * sizeof(uint32_t));
    std::copy(kSignature.begin(), kSignature.end(), bytes.begin());
    put(bytes, kVersionAt, kVersion);
    put(bytes, kLevelCountAt, static_cast<uint32_t>(levelCount));
    put(bytes, kDimensionFlagAt, table.isThreeDimensional ? 1u : 0u);
    put(bytes, kLevelsOffsetAt, static_cast<uint64_t>(kHeaderSize)); // the levels follow at once
    for (size_t i = 0; i < levelCount; ++i)
        put(bytes, kHeaderSize + i * sizeof(uint32_t), std::bit_cast<uint32_t>(table.levels[i]));
    bytes.insert(bytes.end(), table.colors.begin(), table.colors.end());
    return bytes;
}

} // namespace ze::tool
