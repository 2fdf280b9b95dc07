#include "tests/support/reference_beauty.h"

namespace reference {

namespace {

constexpr double kWeights[7] = {0.03663284704089165, 0.11128076165914536, 0.21674533188343048,
                                0.270682156085968,   0.21674533188343048, 0.11128076165914536,
                                0.03663284704089165};

double luma(const Color& color) {
    return 0.2126 * color[0] + 0.7152 * color[1] + 0.0722 * color[2];
}

Color mix(const Color& from, const Color& to, double amount) {
    Color result;
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = from[i] + (to[i] - from[i]) * amount;
    return result;
}

// Seven taps, `stepX` and `stepY` texels apart; those that differ in luma by 0.25 and more do not count.
Color filter(const Picture& source, int x, int y, double stepX, double stepY) {
    const double center = luma(source.at(x, y));
    double weightSum = 0;
    Color sum{};
    for (int tap = 0; tap < 7; ++tap) {
        const Color color = source.sample(x + (tap - 3) * stepX, y + (tap - 3) * stepY);
        const double weight = kWeights[tap] * (1 - std::min(std::abs(luma(color) - center) * 4, 1.0));
        weightSum += weight;
        for (size_t i = 0; i < sum.size(); ++i)
            sum[i] += weight * color[i];
    }
    for (double& channel : sum)
        channel /= weightSum;
    return sum;
}

// A Gaussian in the U-V plane: mean and inverse covariance {uu, uv, vv}.
double likelihood(double u, double v, const double (&mean)[2], const double (&inverse)[3]) {
    const double du = u - mean[0], dv = v - mean[1];
    return std::exp(-0.5 * (inverse[0] * du * du + 2 * inverse[1] * du * dv + inverse[2] * dv * dv));
}

double smoothstep(double from, double to, double value) {
    const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double skinKey(const Color& color) {
    const double y = luma(color);
    const double u = -0.09991 * color[0] - 0.33609 * color[1] + 0.436 * color[2];
    const double v =
        0.436 * color[0] - 0.55861 * (0.436 / 0.615) * color[1] - 0.05639 * (0.436 / 0.615) * color[2];
    const double skin = likelihood(u, v, {-0.055528433718798, 0.071547389444263},
                                   {4.690967914534308e+03, 2.655776801323897e+03, 2.363170007433643e+03});
    const double hair = likelihood(u, v, {-0.002407782949704, 0.004225009409906},
                                   {2.057923888877556e+04, 1.193716909187258e+04, 1.080117955189486e+04});
    const double lip = likelihood(u, v, {-0.0274, 0.1053}, {3304.7436, 737.217, 1317.7054});

    const double light = smoothstep(0.2, 0.45, y) * (1 - smoothstep(0.6, 0.99, y));
    double positive = 0.75 * lip + skin;
    positive = positive < 0.01 ? 0 : positive * light;
    const double negative = hair < 0.01 ? 0 : 1 - light;
    return 0.6 * std::sqrt(positive / (0.05 + positive + negative));
}

} // namespace

Picture beautify(const Picture& source, double mixFactor, double whitenFactor) {
    // One step in texture coordinates serves both axes.
    const double step = source.width / 45.0 / 3.0 / source.height;
    Picture filtered(source.width, source.height);
    for (int y = 0; y < source.height; ++y)
        for (int x = 0; x < source.width; ++x)
            filtered.at(x, y) = filter(source, x, y, step * source.width, 0);
    filtered = filtered.stored();

    Picture result(source.width, source.height);
    for (int y = 0; y < source.height; ++y)
        for (int x = 0; x < source.width; ++x) {
            const Color& original = source.at(x, y);
            const Color blurred = filter(filtered, x, y, 0, step * source.height);
            const double key = skinKey(mix(original, blurred, 0.8));
            Color color = mix(original, blurred, key * mixFactor);
            if (whitenFactor > 0)
                for (size_t i = 0; i < 3; ++i)
                    color[i] = std::min(color[i] + whitenFactor * 0.15, 1.0);
            result.at(x, y) = color;
        }
    return result;
}

} // namespace reference
