#include "tool/lut/lut_bake.h"

#include "tool/errors.h"
#include "tool/lut/grading_file.h"
#include "tool/lut/lut_file.h"
#include "tool/number_text.h"
#include "tool/pictures/photo_reader.h"

namespace ze::tool {
namespace {

void applyTable(const ColorTable& table, std::vector<Color>& colors) {
    for (Color& color : colors)
        color = lookUp(table, color);
}

} // namespace

ColorTable bakeLut(const std::string& path, const std::vector<float>& levels, PictureLayout layout,
                   Clamping& clamping) {
    std::vector<Color> colors = latticeOf(levels);
    if (isLutFile(path))
        applyTable(readRisingLutFile(path), colors);
    else if (isPictureFile(path))
        applyTable(withFileInError(path, [&] { return tableFromPicture(pixelsOf(readPhoto(path)), layout); }),
                   colors);
    else
        applyGradingFile(path, colors);
    return quantized(levels, colors, clamping);
}

void warnOfLevels(const std::string& path, const ColorTable& table) {
    if (!areRising(table.levels))
        printError("warning: " + path + ": its levels do not rise; colors come out wrong");
}

void warnOfClamping(const std::string& path, const Clamping& clamping, const ColorTable& table) {
    if (clamping.count == 0)
        return;
    printError("warning: " + path + ": " + std::to_string(clamping.count) + " of " +
               std::to_string(table.colors.size()) + " values lie outside 0 to 1 (" +
               numberText(clamping.lowest) + " to " + numberText(clamping.highest) + ") and were clamped");
}

} // namespace ze::tool
