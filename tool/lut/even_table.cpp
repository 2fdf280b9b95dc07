#include "tool/lut/even_table.h"

#include "effects/lut/lut_tables.h"
#include "tool/errors.h"
#include "tool/lut/lut_bake.h"

#include <utility>

namespace ze::tool {
namespace {

// The entries of a chain that is nothing but a table; null for others.
const ColorTable* tableIn(const LutChain& chain) {
    return chain.size() == 1 && chain.front().table ? &*chain.front().table : nullptr;
}

bool canStay(const ColorTable& table, const EvenTableLimits& limits) {
    return hasUniformLevels(table.levels) && (table.isThreeDimensional || limits.holdsOneDimension) &&
           table.levelCount() >= limits.fewestLevels &&
           (limits.levelCount == 0 || limits.levelCount == table.levelCount());
}

EvenTable sampled(const LutChain& chain, size_t levelCount, bool isThreeDimensional) {
    EvenTable even{levelCount, isThreeDimensional, {}};
    if (isThreeDimensional)
        even.colors = latticeOf(evenLevels(levelCount));
    else
        for (const float level : evenLevels(levelCount))
            even.colors.push_back({level, level, level});
    applyChain(chain, even.colors);
    return even;
}

} // namespace

EvenTable evenTableOf(const LutChain& chain, const EvenTableLimits& limits) {
    const ColorTable* table = tableIn(chain);
    if (!table)
        return sampled(chain, limits.levelCount > 0 ? limits.levelCount : kDefaultLevels, true);
    if (canStay(*table, limits))
        return {table->levelCount(), table->isThreeDimensional, colorsOf(*table)};
    const bool isOneDimensional = !table->isThreeDimensional && limits.holdsOneDimension;
    const size_t most = isOneDimensional ? kResampledLevels1D : kResampledLevels;
    const size_t levelCount = limits.levelCount > 0 ? limits.levelCount : most;
    printError("warning: " + chain.front().name + ": its " + std::to_string(table->levelCount()) +
               " levels were resampled to " + std::to_string(levelCount) + " uniform ones");
    return sampled(chain, levelCount, !isOneDimensional);
}

} // namespace ze::tool
