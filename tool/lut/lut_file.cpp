#include "tool/lut/lut_file.h"

#include "effects/lut/lut_file_reader.h"
#include "host/library_log.h"
#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/input_file.h"

#include <bit>

namespace ze::tool {

namespace {

constexpr char kSignature[] = ".QX-LUT ";
constexpr uint32_t kVersion = 1;
constexpr uint64_t kHeaderSize = 48;

void append(std::vector<uint8_t>& bytes, uint64_t value, size_t size) {
    for (size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

} // namespace

bool isLutFile(const std::string& path) {
    return readInput(path, sizeof kSignature - 1) == kSignature;
}

LutTable readLutFile(const std::string& path) {
    if (!isLutFile(path))
        throw Failure(ExitCode::badInput, path,
                      "is no LUT file: it lacks the signature (zebeauty lut bake makes one of other tables)");
    zebeauty::catchLibraryErrors(false);
    zebeauty::takeLibraryError(); // An earlier one.
    const CLutFileReader reader(libraryFileName(path));
    if (!reader.isValid()) {
        const std::string reason = zebeauty::takeLibraryError();
        throw Failure(ExitCode::badInput, path,
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

std::vector<uint8_t> lutFileBytes(const LutTable& table) {
    std::vector<uint8_t> bytes(kSignature, kSignature + sizeof kSignature - 1);
    append(bytes, kVersion, 4);
    append(bytes, table.levelCount(), 4);
    append(bytes, 0, 4);
    append(bytes, table.isThreeDimensional ? 1 : 0, 4);
    append(bytes, 0, 8);
    append(bytes, kHeaderSize, 8); // the levels follow at once
    append(bytes, 0, 8);
    for (const float level : table.levels)
        append(bytes, std::bit_cast<uint32_t>(level), 4);
    bytes.insert(bytes.end(), table.colors.begin(), table.colors.end());
    return bytes;
}

} // namespace ze::tool
