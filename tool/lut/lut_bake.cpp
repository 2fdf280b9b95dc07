#include "tool/lut/lut_bake.h"

#include "tool/errors.h"
#include "tool/number_text.h"

#include <utility>

namespace ze::tool {

ColorTable bakeLut(const LutChain& chain, const std::vector<float>& levels, Clamping& clamping) {
    std::vector<Color> colors = latticeOf(levels);
    applyChain(chain, colors);
    return quantized(levels, std::move(colors), clamping);
}

void warnOfLevels(const std::string& path, const ColorTable& table) {
    if (!areRising(table.levels))
        printError("warning: " + path + ": its levels do not rise; colors come out wrong");
}

void warnOfClamping(const std::string& names, const Clamping& clamping) {
    if (clamping.count == 0)
        return;
    printError("warning: " + names + ": " + std::to_string(clamping.count) + " of " +
               std::to_string(clamping.total) + " values lie outside 0 to 1 (" + numberText(clamping.lowest) +
               " to " + numberText(clamping.highest) + ") and were clamped");
}

} // namespace ze::tool
