#include "tool/lut/lut_picture.h"

#include "tool/errors.h"
#include "tool/files/input_file.h"

#include <algorithm>
#include <cstdlib>

namespace ze::tool {
namespace {

constexpr size_t kMagicSize = 12;
constexpr size_t kLargestRoot = 16; // for 256 levels, all that 8 bits have

// The most that a channel may change along a line of the lattice, on average, in ranges from black to white.
// A table that changes nothing has a third (one channel of three changes, once), photos have 4 and more.
constexpr double kMaxMeanChange = 2;

// t for a square with sides of t³; 0 for other pictures.
size_t rootOf(const Picture& picture) {
    for (size_t root = 2; root <= kLargestRoot; ++root)
        if (static_cast<size_t>(picture.width) == root * root * root && picture.height == picture.width)
            return root;
    return 0;
}

ColorTable readAs(PictureLayout layout, const Picture& picture, size_t root) {
    const size_t n = root * root;
    ColorTable table{evenLevels(n), true, {}};
    table.colors.reserve(3 * n * n * n);
    for (size_t r = 0; r < n; ++r)
        for (size_t g = 0; g < n; ++g)
            for (size_t b = 0; b < n; ++b) {
                const size_t pixel = layout == PictureLayout::hald
                                         ? (b * n + g) * n + r
                                         : (b / root * n + g) * n * root + b % root * n + r;
                const uint8_t* const color = picture.rgb.data() + 3 * pixel;
                table.colors.insert(table.colors.end(), color, color + 3);
            }
    return table;
}

// How much a channel changes along a line of the lattice, on average, in ranges from black to white.
double meanChangeOf(const ColorTable& table) {
    const size_t n = table.levelCount();
    const size_t strides[] = {3, 3 * n, 3 * n * n};
    int64_t sum = 0;
    for (const size_t stride : strides)
        for (size_t i = 0; i < table.colors.size(); ++i)
            if (i / stride % n + 1 < n)
                sum += std::abs(table.colors[i + stride] - table.colors[i]);
    const auto lines = static_cast<double>(3 * n * n);
    return static_cast<double>(sum) / 255 / (3 * lines);
}

} // namespace

bool isPictureFile(const std::string& path) {
    using namespace std::string_literals;
    const std::string start = readInput(path, kMagicSize);
    const auto beginsWith = [&](const std::string& magic) { return start.rfind(magic, 0) == 0; };
    return beginsWith("\x89PNG\r\n") || beginsWith("\xff\xd8\xff") || beginsWith("II*\0"s) ||
           beginsWith("MM\0*"s) || (beginsWith("RIFF") && start.find("WEBP") == 8);
}

ColorTable tableFromPicture(const Picture& picture, PictureLayout layout) {
    const size_t root = rootOf(picture);
    if (root == 0)
        throw Failure(ExitCode::badInput,
                      "has " + std::to_string(picture.width) + "x" + std::to_string(picture.height) +
                          " pixels; a picture of a look-up table is a square with a side of 8, 27, 64, 125, "
                          "216, 343, 512 or another third power up to 4096");
    if (layout != PictureLayout::automatic)
        return readAs(layout, picture, root);

    ColorTable lookup = readAs(PictureLayout::lookup, picture, root);
    ColorTable hald = readAs(PictureLayout::hald, picture, root);
    const double lookupChange = meanChangeOf(lookup);
    const double haldChange = meanChangeOf(hald);
    if (std::min(lookupChange, haldChange) > kMaxMeanChange)
        throw Failure(ExitCode::badInput, "does not look like a look-up table but like any other picture; "
                                          "'zebeauty lut bake --layout lookup' (or hald) takes it as it is");
    return haldChange < lookupChange ? hald : lookup;
}

} // namespace ze::tool
