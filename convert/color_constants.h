// The numbers of both color conversions, per color description.
//
// They follow from the luma weights of ITU-R BT.601 and BT.709, rounded to five decimals. Luma spans the
// codes 0 to 255 in full range and 16 to 235 in video range; chroma reaches 127 or 112 codes to either side
// of 128. Full-range chroma thus spans 254 codes, not 255: the BT.709 V to R factor is 1.5748 · 255 / 254
// = 1.581.

#pragma once

#include "convert/color_description.h"

#include <array>

namespace ze {

inline constexpr float kVideoLumaOffset = 16.0f / 255.0f;
inline constexpr float kChromaOffset = 128.0f / 255.0f;

constexpr float lumaOffset(ColorDescription color) {
    return color.isFullRange() ? 0.0f : kVideoLumaOffset;
}

/// R = lumaScale·(Y − Y0) + vToR·V', G = lumaScale·(Y − Y0) − uToG·U' − vToG·V',
/// B = lumaScale·(Y − Y0) + uToB·U', with Y0 the luma offset and U', V' the chroma less its offset.
struct YuvToRgbFactors {
    float lumaScale, vToR, uToG, vToG, uToB;
};

/// Y = yR·R + yG·G + yB·B + Y0, U = −uR·R − uG·G + chromaMax·B + offset,
/// V = chromaMax·R − vG·G − vB·B + offset.
struct RgbToYuvFactors {
    float yR, yG, yB, uR, uG, vG, vB, chromaMax;
};

// clang-format off
inline constexpr YuvToRgbFactors kBt601FullToRgb  = {1.0f,     1.40752f, 0.34549f, 0.71695f, 1.77898f};
inline constexpr YuvToRgbFactors kBt601VideoToRgb = {1.16438f, 1.59603f, 0.39176f, 0.81297f, 2.01723f};
inline constexpr YuvToRgbFactors kBt709FullToRgb  = {1.0f,     1.581f,   0.18806f, 0.46997f, 1.86291f};
inline constexpr YuvToRgbFactors kBt709VideoToRgb = {1.16438f, 1.79274f, 0.21325f, 0.53291f, 2.1124f};

inline constexpr float kFullChromaMax = 0.49804f;
inline constexpr float kVideoChromaMax = 0.43922f;

inline constexpr RgbToYuvFactors kRgbToBt601Full  = {0.299f,   0.587f,   0.114f,   0.16807f, 0.32997f, 0.41705f, 0.08099f, kFullChromaMax};
inline constexpr RgbToYuvFactors kRgbToBt601Video = {0.25679f, 0.50413f, 0.09791f, 0.14822f, 0.29099f, 0.36779f, 0.07143f, kVideoChromaMax};
inline constexpr RgbToYuvFactors kRgbToBt709Full  = {0.2126f,  0.7152f,  0.0722f,  0.11412f, 0.38392f, 0.45237f, 0.04567f, kFullChromaMax};
inline constexpr RgbToYuvFactors kRgbToBt709Video = {0.18259f, 0.61423f, 0.06201f, 0.10064f, 0.33857f, 0.39894f, 0.04027f, kVideoChromaMax};
// clang-format on

constexpr const YuvToRgbFactors& yuvToRgbFactors(ColorDescription color) {
    if (color.isBt601())
        return color.isFullRange() ? kBt601FullToRgb : kBt601VideoToRgb;
    return color.isFullRange() ? kBt709FullToRgb : kBt709VideoToRgb;
}

constexpr const RgbToYuvFactors& rgbToYuvFactors(ColorDescription color) {
    if (color.isBt601())
        return color.isFullRange() ? kRgbToBt601Full : kRgbToBt601Video;
    return color.isFullRange() ? kRgbToBt709Full : kRgbToBt709Video;
}

/// The conversion matrix in the column order of GLSL: column 0 multiplies luma, columns 1 and 2 the first and
/// second byte of a chroma pair. NV12 stores U first, NV21 V first: they differ in the order of these
/// columns.
constexpr std::array<float, 9> yuvToRgbMatrix(const YuvToRgbFactors& f, bool isNV21) {
    if (isNV21)
        return {f.lumaScale, f.lumaScale, f.lumaScale, f.vToR, -f.vToG, 0, 0, -f.uToG, f.uToB};
    return {f.lumaScale, f.lumaScale, f.lumaScale, 0, -f.uToG, f.uToB, f.vToR, -f.vToG, 0};
}

} // namespace ze
