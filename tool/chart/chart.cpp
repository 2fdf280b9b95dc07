#include "tool/chart/chart.h"

#include <algorithm>
#include <cstdlib>

namespace ze::tool {
namespace {

struct Swatch {
    PatchKind kind;
    Rgb color;
};

struct Band {
    int top;    // in twentieths of the height
    int bottom; // likewise
    bool right; // in the right half of the chart, else in the left one
    std::vector<Swatch> swatches;
};

const std::vector<Band>& bands() {
    using enum PatchKind;
    static const std::vector<Band> s_bands = {
        {0, 4, false, {{skin, {0xf6, 0xed, 0xe4}}, {skin, {0xf3, 0xe7, 0xdb}}}},
        {4, 8, false, {{skin, {0xf7, 0xea, 0xd0}}, {skin, {0xea, 0xda, 0xba}}}},
        {8, 12, false, {{skin, {0xd7, 0xbd, 0x96}}, {skin, {0xa0, 0x7e, 0x56}}}},
        {12, 16, false, {{skin, {0x82, 0x5c, 0x43}}, {skin, {0x60, 0x41, 0x34}}}},
        {16, 20, false, {{skin, {0x3a, 0x31, 0x2a}}, {skin, {0x29, 0x24, 0x20}}}},
        {0, 4, true, {{sky, {0xa8, 0xcf, 0xf0}}, {sky, {0x5a, 0x96, 0xd8}}, {sky, {0x2c, 0x5a, 0xa0}}}},
        {4,
         8,
         true,
         {{foliage, {0x9c, 0xb8, 0x5c}}, {foliage, {0x55, 0x80, 0x3a}}, {foliage, {0x2a, 0x48, 0x22}}}},
        {8,
         11,
         true,
         {{primary, {255, 0, 0}},
          {primary, {0, 255, 0}},
          {primary, {0, 0, 255}},
          {primary, {0, 255, 255}},
          {primary, {255, 0, 255}},
          {primary, {255, 255, 0}}}},
        {11,
         14,
         true,
         {{gray, {0, 0, 0}},
          {gray, {36, 36, 36}},
          {gray, {73, 73, 73}},
          {gray, {109, 109, 109}},
          {gray, {146, 146, 146}},
          {gray, {182, 182, 182}},
          {gray, {219, 219, 219}},
          {gray, {255, 255, 255}}}},
        {14, 20, true, {{hair, {0x2e, 0x1e, 0x16}}, {hair, {0xb8, 0x8a, 0x4a}}}},
    };
    return s_bands;
}

// A generator of our own: the standard distributions differ between libraries, and the chart must not.
class Noise {
public:
    // A number from 0 to `count` - 1.
    int next(int count) {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 17;
        m_state ^= m_state << 5;
        return static_cast<int>((static_cast<uint64_t>(m_state) * static_cast<uint64_t>(count)) >> 32);
    }

private:
    uint32_t m_state = 0x5eed1234;
};

Rgb brightened(Rgb color, int amount) {
    const auto channel = [amount](uint8_t value) {
        return static_cast<uint8_t>(std::clamp(value + amount, 0, 255));
    };
    return {channel(color.red), channel(color.green), channel(color.blue)};
}

// Lines of one, two and three pixels with five pixels of skin between them.
bool isHair(int x) {
    constexpr bool kLines[] = {true,  false, false, false, false, false, true,  true,  false, false, false,
                               false, false, true,  true,  true,  false, false, false, false, false};
    return kLines[static_cast<size_t>(x) % std::size(kLines)];
}

void fill(Picture& chart, const ChartPatch& patch) {
    const Rectangle& area = patch.area;
    for (int y = area.top; y < area.top + area.height; ++y) {
        for (int x = area.left; x < area.left + area.width; ++x) {
            const bool ground = patch.kind == PatchKind::hair && !isHair(x - area.left);
            chart.set(x, y, ground ? kHairGround : patch.color);
        }
    }
}

void speckle(Picture& chart, const Rectangle& area, Noise& noise) {
    constexpr int kLargest = 12;
    for (int y = area.top; y < area.top + area.height; ++y)
        for (int x = area.left; x < area.left + area.width; ++x)
            chart.set(x, y, brightened(chart.at(x, y), noise.next(2 * kLargest + 1) - kLargest));

    // One spot, a plus of five pixels, for every 400 pixels of a patch that has room for it.
    if (area.width < 3 || area.height < 3)
        return;
    for (int spots = area.width * area.height / 400; spots > 0; --spots) {
        const int x = area.left + 1 + noise.next(area.width - 2);
        const int y = area.top + 1 + noise.next(area.height - 2);
        for (int i = 0; i < 9; ++i) {
            const int dx = i % 3 - 1;
            const int dy = i / 3 - 1;
            if (std::abs(dx) + std::abs(dy) <= 1)
                chart.set(x + dx, y + dy, brightened(chart.at(x + dx, y + dy), -25));
        }
    }
}

} // namespace

std::vector<ChartPatch> chartPatches(int width, int height) {
    std::vector<ChartPatch> patches;
    for (const Band& band : bands()) {
        const int left = band.right ? width / 2 : 0;
        const int bandWidth = band.right ? width - width / 2 : width / 2;
        const int top = height * band.top / 20;
        const int bottom = height * band.bottom / 20;
        const int count = static_cast<int>(band.swatches.size());
        for (int i = 0; i < count; ++i) {
            const Swatch& swatch = band.swatches[static_cast<size_t>(i)];
            const int begin = left + bandWidth * i / count;
            const int end = left + bandWidth * (i + 1) / count;
            patches.push_back({swatch.kind, swatch.color, {begin, top, end - begin, bottom - top}});
        }
    }
    return patches;
}

Picture drawChart(int width, int height, ChartNoise noise) {
    Picture chart(width, height);
    Noise generator;
    for (const ChartPatch& patch : chartPatches(width, height)) {
        fill(chart, patch);
        if (noise == ChartNoise::speckled && patch.kind != PatchKind::hair)
            speckle(chart, patch.area, generator);
    }
    return chart;
}

} // namespace ze::tool
