// Both conversion passes, the plane upload and the read-back: their calls, caches and failures.

#include "convert/color_constants.h"
#include "convert/plane_upload.h"
#include "convert/read_back.h"
#include "convert/rgb_to_yuv.h"
#include "convert/yuv_to_rgb.h"
#include "gl/framebuffer.h"
#include "gl/texture.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::FloatEq;
using testing::IsEmpty;
using testing::Pointwise;

namespace ze {
namespace {

using Floats = std::vector<GLfloat>;
const Floats kPositions = {-1, 1, -1, -1, 1, 1, 1, -1};
const Floats kWholeTexture = {0, 1, 0, 0, 1, 1, 1, 0};

/// With the frame buffer bound and a frame texture "frame" of 5 × 3, as the pipeline calls these.
class Conversion : public testing::Test {
protected:
    Conversion() {
        gl.makeHostContextCurrent();
        framebuffer = createFramebuffer();
        gl.labelTextures({"frame", "luma", "chroma", "packed"});
        frame = createTexture(5, 3, GL_RGBA);
        glBindTexture(GL_TEXTURE_2D, 0);
        gl.clear();
    }

    /// Runs the pass on planes whose pitches need no alignment.
    bool toRgb(int standard, int range, bool isNV21 = false) {
        uint8_t luma[8 * 3] = {}, chroma[8 * 2] = {};
        const ZecImage input = {{luma, chroma, nullptr}, {8, 8, 0}};
        return yuvToRgb(converter, input, standard, range, frame, 5, 3, isNV21);
    }
    bool readInto(ZecImage& image, int standard = 0, int range = 1) {
        return readBack(converter, frame, image, standard, range, 5, 3);
    }

    GlRecorder gl;
    LogCapture log;
    ColorConverter converter;
    GLuint framebuffer = 0;
    GLuint frame = 0;
    std::vector<uint8_t> stagingBytes = std::vector<uint8_t>(12 * 3, 0x66);
    ZecImage staging = {{stagingBytes.data(), nullptr, nullptr}, {12, 0, 0}};
};

const std::string kLoadColors = "glUniform3fv(yuvOffset, 1); glUniformMatrix3fv(matYuvToRgb, 1, GL_FALSE)\n";

std::string yuvToRgbPass(const std::string& loadColors) {
    return recipe(R"(
        bind frame; check; nearest; attach frame; check; clear; glViewport(0, 0, 5, 3); check
        unit 1; bind chroma
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR); check
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 3, 2, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE); check
        unit 0; bind luma
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR); check
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 5, 3, GL_LUMINANCE, GL_UNSIGNED_BYTE); check
        glUseProgram(yuvToRgb)
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
    EXPECT_EQ(gl.calls({"glDeleteTextures", "glTexImage2D"}), recipe(R"(
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE, 5, 3, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 3, 2, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 3, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null))"));
    EXPECT_EQ(gl.callsFrom("glGetAttribLocation"), recipe(R"(
        glGetAttribLocation(yuvToRgb, posAttr); glGetAttribLocation(yuvToRgb, texCoordYAttr)
        glGetAttribLocation(yuvToRgb, texCoordUVAttr)
        glGetUniformLocation(yuvToRgb, yuvOffset); glGetUniformLocation(yuvToRgb, matYuvToRgb)
        glUseProgram(yuvToRgb)
        glGetUniformLocation(yuvToRgb, samplerY); glUniform1i(samplerY, 0)
        glGetUniformLocation(yuvToRgb, samplerUV); glUniform1i(samplerUV, 1)
        check; glUseProgram(0))") + yuvToRgbPass(kLoadColors));
    EXPECT_EQ(gl.state(), "active 0, unit 0 -, unit 1 -, framebuffer to -");

    gl.clear();
    ASSERT_TRUE(toRgb(0, 1));
    EXPECT_EQ(gl.calls(), yuvToRgbPass(""));
    ASSERT_THAT(gl.drawTexts(), ElementsAre("yuvToRgb(luma, chroma) -> frame"));
    const auto& attributes = gl.draws()[0].attributes;
    const GLfloat uMax = 10.0f / 12.0f;
    EXPECT_EQ(attributes.at("posAttr"), kPositions);
    EXPECT_EQ(attributes.at("texCoordYAttr"), kWholeTexture);
    EXPECT_THAT(attributes.at("texCoordUVAttr"),
                Pointwise(FloatEq(), Floats{0, 1, 0, 0.25f, uMax, 1, uMax, 0.25f}));
    EXPECT_THAT(log.texts(), IsEmpty());
}

std::string rgbToYuvPass(const std::string& loadCoefficients) {
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
        disable posAttr; disable texCoordAttr; attach 0)");
}

const std::string kRead = recipe(R"(
    bind packed; nearest; clamp; attach packed
    glReadPixels(0, 0, 3, 3, GL_RGBA, GL_UNSIGNED_BYTE); check; attach 0)");

TEST_F(Conversion, ReadBackPacksTheFrameAndReadsIt) {
    ASSERT_TRUE(readInto(staging)); // nobody has made the plane textures before
    EXPECT_EQ(gl.callsFrom("glGetAttribLocation"),
              recipe(R"(
        glGetAttribLocation(rgbToYuv, posAttr); glGetAttribLocation(rgbToYuv, texCoordAttr)
        glGetUniformLocation(rgbToYuv, coefY); glGetUniformLocation(rgbToYuv, coefU)
        glGetUniformLocation(rgbToYuv, coefV); glGetUniformLocation(rgbToYuv, sPerHalfTexel)
        glUseProgram(rgbToYuv); glGetUniformLocation(rgbToYuv, sampler); glUniform1i(sampler, 0)
        check; glUseProgram(0))") +
                  rgbToYuvPass("glUniform4fv(coefY, 1); glUniform4fv(coefU, 1); glUniform4fv(coefV, 1)") +
                  kRead);
    EXPECT_EQ(gl.state(), "active 0, unit 0 packed, unit 1 -, framebuffer to -");
    for (size_t i = 0; i < stagingBytes.size(); ++i)
        ASSERT_EQ(stagingBytes[i], GlRecorder::readBackByte(i));

    gl.clear();
    ASSERT_TRUE(readInto(staging));
    EXPECT_EQ(gl.calls(), rgbToYuvPass("") + kRead);
    ASSERT_THAT(gl.drawTexts(), ElementsAre("rgbToYuv(frame) -> packed"));
    const auto& attributes = gl.draws()[0].attributes;
    EXPECT_EQ(attributes.at("posAttr"), kPositions);
    EXPECT_THAT(attributes.at("texCoordAttr"), Pointwise(FloatEq(), Floats{0, 1, 0, 0, 1.2f, 1, 1.2f, 0}));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Conversion, LoadsColoursOnlyWhenStandardOrRangeChange) {
    // A new pixel format alone keeps the matrix of the earlier one.
    const struct {
        int standard, range;
        bool isNV21;
        bool isLoaded;
        bool hasNV21Matrix;
    } frames[] = {{-1, -1, false, true, false}, {-1, -1, true, false, false}, {0, -1, true, true, true},
                  {0, -1, false, false, true},  {0, 1, false, true, false},   {1, 1, true, true, true},
                  {7, 1, true, true, true},     {7, 0, false, true, false},   {7, 0, false, false, false}};
    for (const auto& f : frames) {
        SCOPED_TRACE(testing::Message() << f.standard << ' ' << f.range << (f.isNV21 ? " NV21" : " NV12"));
        gl.clear();
        ASSERT_TRUE(toRgb(f.standard, f.range, f.isNV21));
        EXPECT_EQ(!gl.calls({"glUniform3fv"}).empty(), f.isLoaded);
        EXPECT_EQ(!gl.calls({"glUniformMatrix3fv"}).empty(), f.isLoaded);
        const GLfloat y0 = f.range == 1 ? 0.0f : 16.0f / 255.0f;
        const GLfloat middle = 128.0f / 255.0f;
        const YuvToRgbFactors& k = yuvToRgbFactors(f.standard, f.range);
        Floats matrix = {k.lumaScale, k.lumaScale, k.lumaScale, 0, -k.uToG, k.uToB, k.vToR, -k.vToG, 0};
        if (f.hasNV21Matrix) // V comes first
            matrix = {k.lumaScale, k.lumaScale, k.lumaScale, k.vToR, -k.vToG, 0, 0, -k.uToG, k.uToB};
        EXPECT_EQ(gl.uniform("yuvToRgb", "yuvOffset"), (Floats{y0, middle, middle}));
        EXPECT_EQ(gl.uniform("yuvToRgb", "matYuvToRgb"), matrix);

        ASSERT_TRUE(readInto(staging, f.standard, f.range));
        const std::string loads = "glUniform4fv(coefY, 1); glUniform4fv(coefU, 1); glUniform4fv(coefV, 1)";
        EXPECT_EQ(gl.calls({"glUniform4fv"}), recipe(f.isLoaded ? loads : ""));
        const RgbToYuvFactors& w = rgbToYuvFactors(f.standard, f.range);
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefY"), (Floats{w.yR, w.yG, w.yB, y0}));
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefU"), (Floats{-w.uR, -w.uG, w.chromaMax, middle}));
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefV"), (Floats{w.chromaMax, -w.vG, -w.vB, middle}));
    }
}

TEST_F(Conversion, UploadsSetTheAlignmentThatThePitchNeedsAndRestoreIt) {
    const struct {
        GLenum format;
        int width, pitch, alignment, rowsApart;
    } cases[] = {{GL_LUMINANCE, 720, 720, 0, 720},
                 {GL_LUMINANCE, 721, 721, 1, 721},
                 {GL_LUMINANCE_ALPHA, 361, 722, 2, 722},
                 {GL_LUMINANCE_ALPHA, 361, 724, 0, 724},
                 {GL_LUMINANCE, 717, 724, 4, 720}, // more padding than alignment can tell: the picture shears
                 {GL_LUMINANCE, 720, 768, 8, 720},
                 {GL_LUMINANCE, 713, 720, 8, 720},
                 {GL_RGB, 5, 15, 1, 15},
                 {GL_RGBA, 3, 12, 0, 12}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " wide, pitch " << c.pitch);
        const int texelBytes = c.format == GL_RGB         ? 3
                               : c.format == GL_RGBA      ? 4
                               : c.format == GL_LUMINANCE ? 1
                                                          : 2;
        std::vector<uint8_t> plane(size_t(c.pitch + c.width * texelBytes)); // two rows
        for (size_t i = 0; i < plane.size(); ++i)
            plane[i] = GlRecorder::readBackByte(i);
        std::vector<uint8_t> expected(plane.begin(), plane.begin() + c.width * texelBytes);
        expected.insert(expected.end(), plane.begin() + c.rowsApart,
                        plane.begin() + c.rowsApart + c.width * texelBytes);

        GLuint texture = createTexture(c.width, 2, c.format);
        gl.clear();
        uploadPlane(plane.data(), c.pitch, c.format, c.width, 2, texture);
        EXPECT_EQ(gl.calls({"glPixelStorei"}),
                  c.alignment == 0 ? ""
                                   : "glPixelStorei(GL_UNPACK_ALIGNMENT, " + std::to_string(c.alignment) +
                                         ")\nglPixelStorei(GL_UNPACK_ALIGNMENT, 4)\n");
        EXPECT_EQ(gl.boundTexture().texels, expected);
        deleteTexture(&texture);
    }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Conversion, UploadsOfOtherFormatsAreRefused) {
    uploadPlane(nullptr, 7, GL_ALPHA, 7, 2, frame);
    EXPECT_EQ(gl.calls(), "");
    EXPECT_THAT(log.texts(), ElementsAre("Invalid GL image format!"));
}

TEST_F(Conversion, ReadBackSetsTheAlignmentThatThePitchNeeds) {
    ASSERT_TRUE(toRgb(0, 1) && readInto(staging));
    for (const auto& [pitch, alignment] : {std::pair{12, 0}, {16, 0}, {13, 1}, {14, 2}}) {
        gl.clear();
        staging.pitches[0] = pitch;
        ASSERT_TRUE(readInto(staging));
        const std::string change =
            "glPixelStorei(GL_PACK_ALIGNMENT, " + std::to_string(alignment) + "); check\n";
        EXPECT_EQ(gl.calls(), alignment == 0 ? rgbToYuvPass("") + kRead
                                             : rgbToYuvPass("") + recipe(change) + kRead +
                                                   recipe("glPixelStorei(GL_PACK_ALIGNMENT, 4); check"));
    }
}

TEST_F(Conversion, AFailedReadLeavesTheTargetAndTheAlignmentAsTheyAre) {
    staging.pitches[0] = 14;
    gl.raise("glReadPixels", 1, GL_OUT_OF_MEMORY);
    EXPECT_FALSE(readInto(staging));
    EXPECT_EQ(gl.state(), "active 0, unit 0 packed, unit 1 -, framebuffer to packed, alignment changed");
    EXPECT_THAT(log.texts(), ElementsAre("glReadPixels() failed!"));
    EXPECT_TRUE(readInto(staging));
    EXPECT_EQ(gl.state(), "active 0, unit 0 packed, unit 1 -, framebuffer to -");
}

TEST_F(Conversion, ReleaseLeavesThePackingProgramToTheContext) {
    gl.clear();
    releaseColorConverter(converter);
    EXPECT_EQ(gl.calls(), ""); // nothing was made yet
    ASSERT_TRUE(toRgb(0, 1) && readInto(staging));
    gl.clear();
    releaseColorConverter(converter);
    EXPECT_EQ(gl.calls(), recipe("glDeleteProgram(yuvToRgb); glDeleteTextures(1, luma)\n"
                                 "glDeleteTextures(1, chroma); glDeleteTextures(1, packed)"));
}

} // namespace
} // namespace ze
