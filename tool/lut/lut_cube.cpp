#include "tool/lut/lut_cube.h"

#include "effects/lut/lut_tables.h"
#include "tool/lut/number_text.h"

namespace ze::tool {

namespace {

constexpr int kDecimals = 6;

// The same table on even levels.
LutTable resampled(const LutTable& table) {
    Clamping none;
    if (table.isThreeDimensional) {
        std::vector<Color> colors = latticeOf(evenLevels(kResampledLevels));
        for (Color& color : colors)
            color = lookUp(table, color);
        return quantized(evenLevels(kResampledLevels), colors, none);
    }
    std::vector<Color> colors;
    for (const float level : evenLevels(kResampledLevels1D))
        colors.push_back(lookUp(table, {level, level, level}));
    LutTable even = quantized(evenLevels(kResampledLevels1D), colors, none);
    even.isThreeDimensional = false;
    return even;
}

void appendColor(std::string& text, const uint8_t* color) {
    for (int i = 0; i < 3; ++i)
        text += numberText(color[i] / 255.0, kDecimals) + (i < 2 ? ' ' : '\n');
}

std::string textOfEven(const LutTable& table) {
    const size_t n = table.levelCount();
    std::string text =
        (table.isThreeDimensional ? "LUT_3D_SIZE " : "LUT_1D_SIZE ") + std::to_string(n) + '\n';
    if (!table.isThreeDimensional) {
        for (size_t i = 0; i < n; ++i)
            appendColor(text, table.colors.data() + 3 * i);
        return text;
    }
    for (size_t b = 0; b < n; ++b) // red changes fastest
        for (size_t g = 0; g < n; ++g)
            for (size_t r = 0; r < n; ++r)
                appendColor(text, table.entry(r, g, b));
    return text;
}

} // namespace

bool hasEvenLevels(const LutTable& table) {
    return hasUniformLevels(table.levels);
}

std::string cubeText(const LutTable& table) {
    return textOfEven(hasEvenLevels(table) ? table : resampled(table));
}

} // namespace ze::tool
