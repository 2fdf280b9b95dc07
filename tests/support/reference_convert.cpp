#include "tests/support/reference_convert.h"

namespace reference {

namespace {

/// Luma weights of a standard, and where its codes lie: luma spans 255 or 219 from black on, chroma 254 or
/// 224.
struct Model {
    explicit Model(ColorDescription description)
        : red(description.standard == 0 ? 0.299 : 0.2126), blue(description.standard == 0 ? 0.114 : 0.0722),
          luma(description.range == 1 ? 1 : 219.0 / 255),
          chroma((description.range == 1 ? 254.0 : 224.0) / 255),
          black(description.range == 1 ? 0 : 16.0 / 255) {}

    double red, blue, luma, chroma, black;
    double green = 1 - red - blue;
};

int halfUp(int n) {
    return (n + 1) / 2;
}

// How much of the chroma texture's width (height) the quad's coordinates span.
double span(int n) {
    const double half = halfUp(n);
    return n % 2 == 0 || n == 1 ? 1.0 : (half - 1) * n / (half * (n - 1));
}

} // namespace

Picture yuvToRgb(const ZecImage& frame, int width, int height, ColorDescription description, bool nv21) {
    const int chromaWidth = halfUp(width), chromaHeight = halfUp(height);
    Picture chroma(chromaWidth, chromaHeight);
    for (int y = 0; y < chromaHeight; ++y)
        for (int x = 0; x < chromaWidth; ++x) {
            const uint8_t* pair = frame.planes[1] + y * frame.pitches[1] + 2 * x;
            chroma.at(x, y) = {pair[nv21 ? 1 : 0] / 255.0, pair[nv21 ? 0 : 1] / 255.0, 0, 0};
        }

    // Shortened spans are anchored at u = 0 and at v = 1.
    const Model k(description);
    const double uMax = span(width), vSpan = span(height);
    Picture result(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width * uMax, v = 1 - vSpan + (y + 0.5) / height * vSpan;
            const Color pair = chroma.sample(u * chromaWidth - 0.5, v * chromaHeight - 0.5);
            const double code = frame.planes[0][y * frame.pitches[0] + x] / 255.0;
            const double luma = (code - k.black) / k.luma;
            const double red = luma + 2 * (1 - k.red) * (pair[1] - 128.0 / 255) / k.chroma;
            const double blue = luma + 2 * (1 - k.blue) * (pair[0] - 128.0 / 255) / k.chroma;
            result.at(x, y) = {red, (luma - k.red * red - k.blue * blue) / k.green, blue, 1};
        }
    return result;
}

Planes rgbToYuv(const Picture& picture, ColorDescription description, bool nv21) {
    const Model k(description);
    Planes planes;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const auto [red, green, blue, alpha] = picture.at(x, y);
            const double luma = k.red * red + k.green * green + k.blue * blue;
            planes.luma.push_back(255 * (luma * k.luma + k.black));
            if (x % 2 != 0 || y % 2 != 0)
                continue;
            const double u = 128 + 255 * k.chroma * (blue - luma) / (2 - 2 * k.blue);
            const double v = 128 + 255 * k.chroma * (red - luma) / (2 - 2 * k.red);
            planes.chroma.insert(planes.chroma.end(), {nv21 ? v : u, nv21 ? u : v});
        }
    return planes;
}

} // namespace reference
