// A picture for arithmetic that has to be right rather than fast.

#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace reference {

/// Red, green, blue and alpha, 0 to 1 where they come from a texture.
using Color = std::array<double, 4>;

struct Picture {
    int width;
    int height;
    std::vector<Color> pixels; ///< row by row

    Picture(int pictureWidth, int pictureHeight, const Color& color = {0, 0, 0, 1})
        : width(pictureWidth), height(pictureHeight),
          pixels(static_cast<size_t>(pictureWidth * pictureHeight), color) {}

    Color& at(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
    const Color& at(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }

    /// The color between the four texels around a place in texel units, texel centers being whole numbers.
    /// Beyond the edge lies the edge's own color.
    Color sample(double x, double y) const {
        const double left = std::floor(x), top = std::floor(y);
        Color sum{};
        for (int corner = 0; corner < 4; ++corner) {
            const int dx = corner % 2, dy = corner / 2;
            const double weight = (dx ? x - left : 1 - (x - left)) * (dy ? y - top : 1 - (y - top));
            const Color& texel = at(std::clamp(static_cast<int>(left) + dx, 0, width - 1),
                                    std::clamp(static_cast<int>(top) + dy, 0, height - 1));
            for (size_t i = 0; i < sum.size(); ++i)
                sum[i] += weight * texel[i];
        }
        return sum;
    }

    /// All channels one after the other, 0 to 255.
    std::vector<double> levels() const {
        std::vector<double> result;
        for (const Color& pixel : pixels)
            for (double channel : pixel)
                result.push_back(255 * channel);
        return result;
    }

    /// What a target of 8 bits a channel keeps.
    Picture stored() const {
        Picture result = *this;
        for (Color& pixel : result.pixels)
            for (double& channel : pixel)
                channel = std::round(std::clamp(channel, 0.0, 1.0) * 255) / 255;
        return result;
    }
};

} // namespace reference
