#include "tool/lut/cube_file.h"

#include "tool/number_text.h"

namespace ze::tool {
namespace {

constexpr int kDecimals = 6;

void appendColor(std::string& text, const Color& color) {
    for (size_t i = 0; i < color.size(); ++i)
        text += numberText(double{color[i]}, kDecimals) + (i + 1 < color.size() ? ' ' : '\n');
}

} // namespace

std::string cubeText(const EvenTable& table) {
    const size_t n = table.levelCount;
    std::string text =
        (table.isThreeDimensional ? "LUT_3D_SIZE " : "LUT_1D_SIZE ") + std::to_string(n) + '\n';
    if (!table.isThreeDimensional) {
        for (const Color& color : table.colors)
            appendColor(text, color);
        return text;
    }
    for (size_t b = 0; b < n; ++b) // red changes fastest
        for (size_t g = 0; g < n; ++g)
            for (size_t r = 0; r < n; ++r)
                appendColor(text, table.entry(r, g, b));
    return text;
}

} // namespace ze::tool
