#include "tests/support/reference_convert.h"

namespace reference {

namespace {

struct ToRgb {
    double yScale, redV, greenU, greenV, blueU;
};

struct ToYuv {
    double y[3], u[3], v[3];
};

// [BT.601, BT.709][video, full]
constexpr ToRgb kToRgb[2][2] = {
    {{1.16438, 1.59603, 0.39176, 0.81297, 2.01723}, {1.0, 1.40752, 0.34549, 0.71695, 1.77898}},
    {{1.16438, 1.79274, 0.21325, 0.53291, 2.1124}, {1.0, 1.581, 0.18806, 0.46997, 1.86291}}};

constexpr ToYuv kToYuv[2][2] = {
    {{{0.25679, 0.50413, 0.09791}, {-0.14822, -0.29099, 0.43922}, {0.43922, -0.36779, -0.07143}},
     {{0.299, 0.587, 0.114}, {-0.16807, -0.32997, 0.49804}, {0.49804, -0.41705, -0.08099}}},
    {{{0.18259, 0.61423, 0.06201}, {-0.10064, -0.33857, 0.43922}, {0.43922, -0.39894, -0.04027}},
     {{0.2126, 0.7152, 0.0722}, {-0.11412, -0.38392, 0.49804}, {0.49804, -0.45237, -0.04567}}}};

template <class Row>
const Row& rowOf(const Row (&table)[2][2], ColourDescription description) {
    return table[description.standard == 0 ? 0 : 1][description.range == 1 ? 1 : 0];
}

double blackLevel(ColourDescription description) {
    return description.range == 1 ? 0.0 : 16.0 / 255;
}

int halfUp(int n) {
    return (n + 1) / 2;
}

// How much of the chroma texture's width (height) the quad's coordinates span.
double span(int n) {
    const double half = halfUp(n);
    return n % 2 == 0 || n == 1 ? 1.0 : (half - 1) * n / (half * (n - 1));
}

double dot(const double (&row)[3], const Colour& colour) {
    return row[0] * colour[0] + row[1] * colour[1] + row[2] * colour[2];
}

} // namespace

Picture yuvToRgb(const ZecImage& frame, int width, int height, ColourDescription description, bool nv21) {
    const int chromaWidth = halfUp(width), chromaHeight = halfUp(height);
    Picture chroma(chromaWidth, chromaHeight);
    for (int y = 0; y < chromaHeight; ++y)
        for (int x = 0; x < chromaWidth; ++x) {
            const uint8_t* pair = frame.planes[1] + ptrdiff_t{y} * frame.pitches[1] + 2 * x;
            chroma.at(x, y) = {pair[nv21 ? 1 : 0] / 255.0, pair[nv21 ? 0 : 1] / 255.0, 0, 0};
        }

    // Shortened spans are anchored at u = 0 and at v = 1.
    const ToRgb& k = rowOf(kToRgb, description);
    const double uMax = span(width), vSpan = span(height);
    Picture result(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width * uMax, v = 1 - vSpan + (y + 0.5) / height * vSpan;
            const Colour pair = chroma.sample(u * chromaWidth - 0.5, v * chromaHeight - 0.5);
            const double luma = frame.planes[0][ptrdiff_t{y} * frame.pitches[0] + x] / 255.0;
            const double grey = k.yScale * (luma - blackLevel(description));
            const double cb = pair[0] - 128.0 / 255, cr = pair[1] - 128.0 / 255;
            result.at(x, y) = {grey + k.redV * cr, grey - k.greenU * cb - k.greenV * cr, grey + k.blueU * cb,
                               1};
        }
    return result;
}

Planes rgbToYuv(const Picture& picture, ColourDescription description, bool nv21) {
    const ToYuv& k = rowOf(kToYuv, description);
    Planes planes;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const Colour& colour = picture.at(x, y);
            planes.luma.push_back(255 * (dot(k.y, colour) + blackLevel(description)));
            if (x % 2 != 0 || y % 2 != 0)
                continue;
            const double u = 255 * dot(k.u, colour) + 128, v = 255 * dot(k.v, colour) + 128;
            planes.chroma.insert(planes.chroma.end(), {nv21 ? v : u, nv21 ? u : v});
        }
    return planes;
}

} // namespace reference
