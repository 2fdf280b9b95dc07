#include "tool/lut/cube_file.h"

#include "effects/lut/lut_tables.h"
#include "tool/number_text.h"

namespace ze::tool {
namespace {

constexpr int kDecimals = 6;

// `table` on even levels.
ColorTable resampled(const ColorTable& table) {
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
    ColorTable even = quantized(evenLevels(kResampledLevels1D), colors, none);
    even.isThreeDimensional = false;
    return even;
}

void appendColor(std::string& text, const uint8_t* color) {
    for (int i = 0; i < 3; ++i)
        text += numberText(color[i] / 255.0, kDecimals) + (i < 2 ? ' ' : '\n');
}

std::string textOfEven(const ColorTable& table) {
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

std::string cubeText(const ColorTable& table) {
    return textOfEven(hasUniformLevels(table.levels) ? table : resampled(table));
}

} // namespace ze::tool
