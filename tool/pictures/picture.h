// A picture in host memory, 8 bits per channel.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ze::tool {

struct Rgb {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;

    friend bool operator==(const Rgb&, const Rgb&) = default;
};

/// Opaque pixels, the first row on top. Rows follow each other without padding.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgb; ///< `height` rows of 3 × `width` bytes.

    Picture() = default;

    /// A black picture. Both sizes are at least 1.
    Picture(int pictureWidth, int pictureHeight)
        : width(pictureWidth), height(pictureHeight),
          rgb(3 * static_cast<size_t>(pictureWidth) * static_cast<size_t>(pictureHeight)) {}

    /// Number of the pixel (`x`, `y`), counted row by row.
    size_t index(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }

    const uint8_t* row(int y) const { return rgb.data() + 3 * index(0, y); }
    uint8_t* row(int y) { return rgb.data() + 3 * index(0, y); }

    Rgb at(int x, int y) const {
        const uint8_t* pixel = rgb.data() + 3 * index(x, y);
        return {pixel[0], pixel[1], pixel[2]};
    }

    void set(int x, int y, Rgb color) {
        uint8_t* pixel = rgb.data() + 3 * index(x, y);
        pixel[0] = color.red;
        pixel[1] = color.green;
        pixel[2] = color.blue;
    }
};

} // namespace ze::tool
