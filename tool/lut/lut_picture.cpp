#include "tool/lut/lut_picture.h"

#include "tool/errors.h"

#include <algorithm>
#include <cstdlib>

namespace ze::tool {
namespace {

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

// The pixel that holds an entry, in a table with root² levels.
size_t pixelOf(PictureLayout layout, size_t root, size_t r, size_t g, size_t b) {
    const size_t n = root * root;
    return layout == PictureLayout::hald ? (b * n + g) * n + r
                                         : (b / root * n + g) * n * root + b % root * n + r;
}

// Calls `copy` with the offsets of each entry's bytes in a table and in a picture of it.
template <class Copy>
void forEachEntry(PictureLayout layout, size_t root, Copy copy) {
    const size_t n = root * root;
    for (size_t r = 0; r < n; ++r)
        for (size_t g = 0; g < n; ++g)
            for (size_t b = 0; b < n; ++b)
                copy(3 * ((r * n + g) * n + b), 3 * pixelOf(layout, root, r, g, b));
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

size_t pictureRoot(size_t levelCount) {
    for (size_t root = 2; root <= kLargestRoot; ++root)
        if (levelCount == root * root)
            return root;
    return 0;
}

PictureLayout layoutOf(const Picture& picture, PictureLayout layout) {
    if (rootOf(picture) == 0)
        throw Failure(ExitCode::badInput,
                      "has " + std::to_string(picture.width) + "x" + std::to_string(picture.height) +
                          " pixels; a picture of a look-up table is a square with a side of 8, 27, 64, 125, "
                          "216, 343, 512 or another third power up to 4096");
    if (layout != PictureLayout::automatic)
        return layout;
    const double lookupChange = meanChangeOf(tableFromPicture(picture, PictureLayout::lookup));
    const double haldChange = meanChangeOf(tableFromPicture(picture, PictureLayout::hald));
    if (std::min(lookupChange, haldChange) > kMaxMeanChange)
        throw Failure(ExitCode::badInput, "does not look like a look-up table but like any other picture; "
                                          "'zebeauty lut bake --layout lookup' (or hald) takes it as it is");
    return haldChange < lookupChange ? PictureLayout::hald : PictureLayout::lookup;
}

ColorTable tableFromPicture(const Picture& picture, PictureLayout layout) {
    const size_t root = rootOf(picture);
    ColorTable table{evenLevels(root * root), true, std::vector<uint8_t>(picture.rgb.size())};
    forEachEntry(layout, root, [&](size_t entry, size_t pixel) {
        std::copy_n(picture.rgb.data() + pixel, 3, table.colors.data() + entry);
    });
    return table;
}

Picture pictureOf(const ColorTable& table, PictureLayout layout) {
    const size_t root = pictureRoot(table.levelCount());
    const auto side = static_cast<int>(root * root * root);
    Picture picture(side, side);
    forEachEntry(layout, root, [&](size_t entry, size_t pixel) {
        std::copy_n(table.colors.data() + entry, 3, picture.rgb.data() + pixel);
    });
    return picture;
}

} // namespace ze::tool
