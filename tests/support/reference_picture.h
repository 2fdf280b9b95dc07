// A picture for arithmetic that has to be right rather than fast.

#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace reference {

/// Red, green, blue and alpha, 0 to 1 where they come from a texture.
using Colour = std::array<double, 4>;

struct Picture {
    int width;
    int height;
    std::vector<Colour> pixels; ///< row by row

    Picture(int pictureWidth, int pictureHeight, const Colour& colour = {0, 0, 0, 1})
        : width(pictureWidth), height(pictureHeight),
          pixels(size_t(pictureWidth) * size_t(pictureHeight), colour) {}

    Colour& at(int x, int y) { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
    const Colour& at(int x, int y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }

    /// The colour between the four texels around a place in texel units, texel centres being whole numbers.
    /// Beyond the edge lies the edge's own colour.
    Colour sample(double x, double y) const {
        const double left = std::floor(x), top = std::floor(y);
        Colour sum{};
        for (int corner = 0; corner < 4; ++corner) {
            const int dx = corner % 2, dy = corner / 2;
            const double weight = (dx ? x - left : 1 - (x - left)) * (dy ? y - top : 1 - (y - top));
            const Colour& texel =
                at(std::clamp(int(left) + dx, 0, width - 1), std::clamp(int(top) + dy, 0, height - 1));
            for (size_t i = 0; i < sum.size(); ++i)
                sum[i] += weight * texel[i];
        }
        return sum;
    }

    /// What a target of 8 bits a channel keeps.
    Picture stored() const {
        Picture result = *this;
        for (Colour& pixel : result.pixels)
            for (double& channel : pixel)
                channel = std::round(std::clamp(channel, 0.0, 1.0) * 255) / 255;
        return result;
    }
};

} // namespace reference
