// The numbers of the conversions, against the definitions they come from.

#include "convert/color_constants.h"
#include "convert/plane_upload.h"
#include "convert/read_back.h"
#include "convert/rgb_to_yuv.h"
#include "convert/yuv_to_rgb.h"

#include <cmath>

#include <gtest/gtest.h>

namespace ze {
namespace {

/// The float nearest to `value` at five decimals.
float atFiveDecimals(double value) {
    return float(std::round(value * 1e5) / 1e5);
}

/// A standard's weights of red and blue in luma. Luma spans 255 or 219 codes, chroma 254 or 224.
TEST(ColorConstants, FollowFromTheLumaWeightsAtFiveDecimals) {
    const struct {
        int standard;
        double kr, kb;
    } standards[] = {{0, 0.299, 0.114}, {1, 0.2126, 0.0722}, {7, 0.2126, 0.0722}, {-1, 0.2126, 0.0722}};
    const struct {
        int range;
        double luma, chroma;
    } ranges[] = {{1, 255, 254}, {0, 219, 224}, {2, 219, 224}, {-1, 219, 224}};
    for (const auto& [standard, kr, kb] : standards)
        for (const auto& [range, luma, chroma] : ranges) {
            SCOPED_TRACE(testing::Message() << "standard " << standard << ", range " << range);
            const double kg = 1 - kr - kb;
            const YuvToRgbFactors& rgb = yuvToRgbFactors(standard, range);
            EXPECT_EQ(rgb.lumaScale, atFiveDecimals(255 / luma));
            EXPECT_EQ(rgb.vToR, atFiveDecimals(2 * (1 - kr) * 255 / chroma));
            EXPECT_EQ(rgb.uToG, atFiveDecimals(2 * (1 - kb) * kb / kg * 255 / chroma));
            EXPECT_EQ(rgb.vToG, atFiveDecimals(2 * (1 - kr) * kr / kg * 255 / chroma));
            EXPECT_EQ(rgb.uToB, atFiveDecimals(2 * (1 - kb) * 255 / chroma));

            const RgbToYuvFactors& yuv = rgbToYuvFactors(standard, range);
            const double peak = chroma / 2 / 255;
            EXPECT_EQ(yuv.yR, atFiveDecimals(kr * luma / 255));
            EXPECT_EQ(yuv.yG, atFiveDecimals(kg * luma / 255));
            EXPECT_EQ(yuv.yB, atFiveDecimals(kb * luma / 255));
            EXPECT_EQ(yuv.uR, atFiveDecimals(peak * kr / (1 - kb)));
            EXPECT_EQ(yuv.uG, atFiveDecimals(peak * kg / (1 - kb)));
            EXPECT_EQ(yuv.vG, atFiveDecimals(peak * kg / (1 - kr)));
            EXPECT_EQ(yuv.vB, atFiveDecimals(peak * kb / (1 - kr)));
            EXPECT_EQ(yuv.chromaMax, atFiveDecimals(peak));
            EXPECT_EQ(lumaOffset(range), range == 1 ? 0.0f : 16.0f / 255.0f);
        }
}

TEST(TextureSpans, GiveEachPixelItsShareOfATexel) {
    for (uint32_t n : {1u, 2u, 3u, 4u, 5u, 31u, 32u, 33u, 719u, 1280u, 4095u, 16383u}) {
        SCOPED_TRACE(n);
        const double pairs = (n + 1) / 2;
        // A chroma texel belongs to two pixels; the last one of an odd size is half shown, that of size 1
        // whole.
        const double shown = n == 1 ? 1 : n / (2 * pairs);
        EXPECT_FLOAT_EQ(chromaSpan(n, 2).uMax, float(shown));
        EXPECT_EQ(chromaSpan(n, 2).vLow, 0.0f);
        EXPECT_NEAR(chromaSpan(2, n).vLow, 1 - shown, 1e-7);
        EXPECT_EQ(chromaSpan(2, n).uMax, 1.0f);
        // A packed texel covers two pixels, the last one of an odd width one pixel too many.
        EXPECT_FLOAT_EQ(packedSpan(n).uMax, float(2 * pairs / n));
        EXPECT_EQ(packedSpan(n).vLow, 0.0f);
    }
}

TEST(RowAlignment, FollowsFormatAndPitch) {
    const struct {
        GLenum format;
        int32_t width;
        int64_t size;
    } rows[] = {{GL_LUMINANCE, 720, 720},
                {GL_LUMINANCE, 721, 724},
                {GL_LUMINANCE_ALPHA, 361, 724},
                {GL_LUMINANCE_ALPHA, 362, 724},
                {GL_RGB, 5, 16},
                {GL_RGB, 4, 12},
                {GL_RGBA, 3, 12},
                {GL_ALPHA, 3, 0},
                {GL_RGBA, INT32_MAX, 4 * int64_t{INT32_MAX}}};
    for (const auto& row : rows)
        EXPECT_EQ(roundedRowSize(row.format, row.width), row.size) << row.format << ' ' << row.width;
    const struct {
        int32_t pitch;
        GLint unpack, pack;
    } pitches[] = {{768, 8, 0}, {8, 8, 0}, {724, 4, 0}, {12, 4, 0},
                   {722, 2, 2}, {2, 2, 2}, {721, 1, 1}, {1, 1, 1}};
    for (const auto& [pitch, unpack, pack] : pitches) {
        EXPECT_EQ(rowAlignment(pitch), unpack) << pitch;
        EXPECT_EQ(packAlignment(pitch), pack) << pitch; // 8 is never asked for: the default of 4 will do
    }
}

} // namespace
} // namespace ze
