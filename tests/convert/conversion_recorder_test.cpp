// Both conversion passes, the plane upload and the read-back: their numbers, calls, caches and failures.

#include "convert/plane_upload.h"
#include "convert/read_back.h"
#include "convert/rgb_to_yuv.h"
#include "convert/yuv_to_rgb.h"
#include "gl/framebuffer.h"
#include "gl/texture.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <cmath>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::EndsWith;
using testing::FloatEq;
using testing::IsEmpty;
using testing::Pointwise;

namespace ze {
namespace {

using Floats = std::vector<GLfloat>;

/// With the frame buffer bound and a frame texture "frame" of 5 × 3, as the pipeline calls these.
class Conversion : public testing::Test {
protected:
    Conversion() {
        gl.makeHostContextCurrent();
        createFramebuffer();
        gl.labelTextures({"frame", "luma", "chroma", "packed"});
        frame = createTexture(5, 3, GL_RGBA);
        gl.clear();
    }

    /// Runs the pass on planes whose pitches need no alignment.
    bool toRgb(int standard, int range, bool isNV21 = false) {
        const ZecImage input = {{}, {8, 8, 0}};
        return yuvToRgb(converter, input, standard, range, frame, 5, 3, isNV21);
    }
    bool read(int standard = 0, int range = 1) {
        return readBack(converter, frame, staging, standard, range, 5, 3);
    }

    GlRecorder gl;
    LogCapture log;
    ColorConverter converter;
    GLuint frame = 0;
    std::vector<uint8_t> stagingBytes = std::vector<uint8_t>(12 * 3, 0x66);
    ZecImage staging = {{stagingBytes.data(), nullptr, nullptr}, {12, 0, 0}};
};

std::string yuvToRgbPass(const std::string& loadColors) {
    const std::string linear = R"(
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR); check
        )";
    return recipe(R"(
        bind frame; check; nearest; attach frame; check; clear; glViewport(0, 0, 5, 3); check
        unit 1; bind chroma)" +
                  linear +
                  R"(glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 3, 2, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE)
        check; unit 0; bind luma)" +
                  linear + R"(glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 5, 3, GL_LUMINANCE, GL_UNSIGNED_BYTE)
        check; glUseProgram(yuvToRgb)
        )" + loadColors +
                  R"(
        glDisable(GL_BLEND); glDisable(GL_DEPTH_TEST); glDisable(GL_CULL_FACE)
        point posAttr 24; point texCoordYAttr 24; point texCoordUVAttr 24
        enable posAttr; enable texCoordYAttr; enable texCoordUVAttr
        draw; check
        disable posAttr; disable texCoordYAttr; disable texCoordUVAttr; attach 0
        unit 1; bind 0; unit 0; bind 0)");
}

TEST_F(Conversion, YuvToRgbMakesItsTexturesAndProgramOnceAndDrawsThePlanes) {
    ASSERT_TRUE(toRgb(0, 1));
    EXPECT_EQ(gl.calls({"glTexImage2D"}), recipe(R"(
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE, 5, 3, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 3, 2, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 3, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null))"));
    EXPECT_THAT(
        gl.calls(),
        EndsWith(recipe("glUniform1i(samplerUV, 1); check; glUseProgram(0)") +
                 yuvToRgbPass("glUniform3fv(yuvOffset, 1); glUniformMatrix3fv(matYuvToRgb, 1, GL_FALSE)")));

    gl.clear();
    ASSERT_TRUE(toRgb(0, 1));
    EXPECT_EQ(gl.calls(), yuvToRgbPass(""));
    ASSERT_THAT(gl.drawTexts(), ElementsAre("yuvToRgb(luma, chroma) -> frame"));
    const auto& attributes = gl.draws()[0].attributes;
    const GLfloat uMax = 10.0f / 12.0f;
    EXPECT_THAT(attributes.at("posAttr"), ElementsAre(-1, 1, -1, -1, 1, 1, 1, -1));
    EXPECT_THAT(attributes.at("texCoordYAttr"), ElementsAre(0, 1, 0, 0, 1, 1, 1, 0));
    EXPECT_THAT(attributes.at("texCoordUVAttr"),
                Pointwise(FloatEq(), Floats{0, 1, 0, 0.25f, uMax, 1, uMax, 0.25f}));
    EXPECT_THAT(log.texts(), IsEmpty());
}

/// The pass and the read-back, which sets and restores the alignment where that is told.
std::string rgbToYuvAndRead(const std::string& loadCoefficients, const std::string& align = "",
                            const std::string& restore = "") {
    return recipe(R"(
        glViewport(0, 0, 3, 3); check; unit 0; check
        bind packed; check; nearest; attach packed; check; clear
        bind frame; check; nearest
        glUseProgram(rgbToYuv); glUniform1f(sPerHalfTexel, 0.1); check
        )" + loadCoefficients +
                  R"(
        glDisable(GL_BLEND)
        point posAttr 16; point texCoordAttr 16; check; enable posAttr; enable texCoordAttr
        draw; check
        disable posAttr; disable texCoordAttr; attach 0
        )" + align +
                  R"(
        bind packed; nearest; clamp; attach packed
        glReadPixels(0, 0, 3, 3, GL_RGBA, GL_UNSIGNED_BYTE); check; attach 0
        )" + restore);
}

TEST_F(Conversion, ReadBackPacksTheFrameAndReadsIt) {
    ASSERT_TRUE(read()); // nobody has made the plane textures before
    EXPECT_THAT(
        gl.calls(),
        EndsWith(recipe("glUniform1i(sampler, 0); check; glUseProgram(0)") +
                 rgbToYuvAndRead("glUniform4fv(coefY, 1); glUniform4fv(coefU, 1); glUniform4fv(coefV, 1)")));
    for (size_t i = 0; i < stagingBytes.size(); ++i)
        ASSERT_EQ(stagingBytes[i], GlRecorder::readBackByte(i));

    for (const auto& [pitch, alignment] : {std::pair{12, ""}, {16, ""}, {13, "1"}, {14, "2"}}) {
        gl.clear();
        staging.pitches[0] = pitch;
        ASSERT_TRUE(read());
        const std::string align = "glPixelStorei(GL_PACK_ALIGNMENT, ";
        EXPECT_EQ(gl.calls(), *alignment
                                  ? rgbToYuvAndRead("", align + alignment + "); check", align + "4); check")
                                  : rgbToYuvAndRead(""));
    }
    ASSERT_THAT(gl.drawTexts(), ElementsAre("rgbToYuv(frame) -> packed"));
    const auto& attributes = gl.draws()[0].attributes;
    EXPECT_THAT(attributes.at("posAttr"), ElementsAre(-1, 1, -1, -1, 1, 1, 1, -1));
    EXPECT_THAT(attributes.at("texCoordAttr"), Pointwise(FloatEq(), Floats{0, 1, 0, 0, 1.2f, 1, 1.2f, 0}));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Conversion, AFailedReadLeavesTheTargetAndTheAlignmentAsTheyAre) {
    staging.pitches[0] = 14;
    gl.raise("glReadPixels", 1, GL_OUT_OF_MEMORY);
    EXPECT_FALSE(read());
    EXPECT_EQ(gl.state(), "active 0, unit 0 packed, unit 1 -, framebuffer to packed");
    EXPECT_EQ(gl.calls({"glPixelStorei"}), "glPixelStorei(GL_PACK_ALIGNMENT, 2)\n");
    EXPECT_THAT(log.texts(), ElementsAre("glReadPixels() failed!"));
}

/// The float nearest to `value` at five decimals.
float rounded(double value) {
    return float(std::round(value * 1e5) / 1e5);
}

TEST_F(Conversion, LoadsColoursOnlyWhenStandardOrRangeChange) {
    // A new pixel format alone keeps the matrix of the earlier one.
    const struct {
        int standard, range;
        bool isNV21, isLoaded, hasNV21Matrix;
    } frames[] = {{-1, -1, false, true, false}, {-1, -1, true, false, false}, {0, -1, true, true, true},
                  {0, -1, false, false, true},  {0, 1, false, true, false},   {1, 1, true, true, true},
                  {7, 1, true, true, true},     {7, 0, false, true, false},   {7, 0, false, false, false}};
    for (const auto& f : frames) {
        SCOPED_TRACE(testing::Message() << f.standard << ' ' << f.range << (f.isNV21 ? " NV21" : " NV12"));
        gl.clear();
        ASSERT_TRUE(toRgb(f.standard, f.range, f.isNV21) && read(f.standard, f.range));
        EXPECT_EQ(gl.calls({"glUniform3fv", "glUniformMatrix3fv", "glUniform4fv"}),
                  recipe(f.isLoaded
                             ? R"(glUniform3fv(yuvOffset, 1); glUniformMatrix3fv(matYuvToRgb, 1, GL_FALSE)
            glUniform4fv(coefY, 1); glUniform4fv(coefU, 1); glUniform4fv(coefV, 1))"
                             : ""));

        // A standard's weights of red, green and blue in luma. Luma spans 255 or 219 codes, chroma 254 or
        // 224.
        const double r = f.standard == 0 ? 0.299 : 0.2126, b = f.standard == 0 ? 0.114 : 0.0722,
                     g = 1 - r - b;
        const double luma = (f.range == 1 ? 255 : 219) / 255.0, chroma = (f.range == 1 ? 254 : 224) / 255.0;
        const float y = rounded(1 / luma), y0 = f.range == 1 ? 0.0f : 16.0f / 255.0f;
        const float middle = 128.0f / 255.0f, peak = rounded(chroma / 2);
        const double u = 2 * (1 - b) / chroma, v = 2 * (1 - r) / chroma;
        Floats matrix = {y, y, y, 0, rounded(-u * b / g), rounded(u), rounded(v), rounded(-v * r / g), 0};
        if (f.hasNV21Matrix) // V comes first
            std::swap_ranges(matrix.begin() + 3, matrix.begin() + 6, matrix.begin() + 6);
        EXPECT_EQ(gl.uniform("yuvToRgb", "yuvOffset"), (Floats{y0, middle, middle}));
        EXPECT_EQ(gl.uniform("yuvToRgb", "matYuvToRgb"), matrix);
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefY"),
                  (Floats{rounded(r * luma), rounded(g * luma), rounded(b * luma), y0}));
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefU"), (Floats{rounded(-r / u), rounded(-g / u), peak, middle}));
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefV"), (Floats{peak, rounded(-g / v), rounded(-b / v), middle}));
    }
}

TEST(TextureSpans, GiveEachPixelItsShareOfATexel) {
    for (uint32_t n : {1u, 2u, 3u, 5u, 32u, 719u, 4095u, 16383u}) {
        const double pairs = (n + 1) / 2;
        // A chroma texel belongs to two pixels; the last one of an odd size is half shown, that of size 1
        // whole.
        const double shown = n == 1 ? 1 : n / (2 * pairs);
        EXPECT_FLOAT_EQ(chromaSpan(n, 2).uMax, float(shown)) << n;
        EXPECT_NEAR(chromaSpan(2, n).vLow, 1 - shown, 1e-7) << n;
        // A packed texel covers two pixels, the last one of an odd width one pixel too many.
        EXPECT_FLOAT_EQ(packedSpan(n).uMax, float(2 * pairs / n)) << n;
    }
}

TEST_F(Conversion, UploadsSetTheAlignmentThatThePitchNeedsAndRestoreIt) {
    const struct {
        GLenum format;
        int width, pitch;
        const char* alignment;
    } cases[] = {{GL_LUMINANCE, 720, 720, ""},
                 {GL_LUMINANCE, 721, 721, "1"},
                 {GL_LUMINANCE_ALPHA, 361, 722, "2"},
                 {GL_LUMINANCE_ALPHA, 361, 724, ""},
                 {GL_LUMINANCE, 717, 724, "4"}, // more padding than alignment can tell
                 {GL_LUMINANCE, 720, 768, "8"},
                 {GL_LUMINANCE, 713, 720, "8"},
                 {GL_RGB, 5, 15, "1"},
                 {GL_RGBA, 3, 12, ""}};
    for (const auto& c : cases) {
        gl.clear();
        uploadPlane(nullptr, c.pitch, c.format, c.width, 2, frame);
        const std::string align = "glPixelStorei(GL_UNPACK_ALIGNMENT, ";
        EXPECT_EQ(gl.calls({"glPixelStorei"}),
                  *c.alignment ? align + c.alignment + ")\n" + align + "4)\n" : "")
            << c.width << " wide, pitch " << c.pitch;
    }
    EXPECT_EQ(roundedRowSize(GL_RGBA, INT32_MAX), 4 * int64_t{INT32_MAX});
    EXPECT_THAT(log.texts(), IsEmpty());

    gl.clear();
    uploadPlane(nullptr, 7, GL_ALPHA, 7, 2, frame);
    EXPECT_EQ(gl.calls(), "");
    EXPECT_THAT(log.texts(), ElementsAre("Invalid GL image format!"));
}

TEST_F(Conversion, ReleaseLeavesThePackingProgramToTheContext) {
    releaseColorConverter(converter);
    EXPECT_EQ(gl.calls(), ""); // nothing was made yet
    ASSERT_TRUE(toRgb(0, 1) && read());
    gl.clear();
    releaseColorConverter(converter);
    EXPECT_EQ(gl.calls(), recipe("glDeleteProgram(yuvToRgb); glDeleteTextures(1, luma)\n"
                                 "glDeleteTextures(1, chroma); glDeleteTextures(1, packed)"));
}

} // namespace
} // namespace ze
