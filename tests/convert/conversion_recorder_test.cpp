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
using testing::IsEmpty;

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
        frame = createTexture({5, 3}, GL_RGBA);
        gl.clear();
    }

    /// Runs both passes, on planes of which the pitch of luma alone needs an alignment.
    void convert(ColorDescription color, bool isNV21 = false) {
        const ZecImage input = {{}, {5, 8, 0}};
        EXPECT_TRUE(yuvToRgb(converter, input, color, frame, {5, 3}, isNV21));
        EXPECT_TRUE(read(color));
    }
    bool read(ColorDescription color = {0, 1}) {
        return convertAndReadBack(converter, frame, staging, color, {5, 3});
    }

    GlRecorder gl;
    LogCapture log;
    ColorConverter converter;
    GLuint frame = 0;
    std::vector<uint8_t> stagingBytes = std::vector<uint8_t>(12 * 3, 0x66);
    ZecImage staging = {{stagingBytes.data(), nullptr, nullptr}, {12, 0, 0}};
};

TEST_F(Conversion, MakesItsTexturesOnceAndLeavesNothingBoundOrEnabled) {
    ASSERT_TRUE(read()); // whichever comes first makes all textures
    convert({0, 1});
    EXPECT_EQ(gl.calls({"glTexImage2D"}), recipe(R"(
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE, 5, 3, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 3, 2, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 3, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null))"));
    gl.clear();
    convert({0, 1});
    EXPECT_EQ(gl.calls(), recipe(R"(
        bind frame; check; nearest; attach frame; check; clear; glViewport(0, 0, 5, 3); check
        unit 1; bind chroma; smooth; check
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 3, 2, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE); check
        unit 0; glPixelStorei(GL_UNPACK_ALIGNMENT, 1); check; bind luma; smooth; check
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 5, 3, GL_LUMINANCE, GL_UNSIGNED_BYTE); check
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4); check
        glUseProgram(yuvToRgb); glDisable(GL_BLEND); glDisable(GL_DEPTH_TEST); glDisable(GL_CULL_FACE)
        point posAttr 24; point texCoordYAttr 24; point texCoordUVAttr 24
        enable posAttr; enable texCoordYAttr; enable texCoordUVAttr; draw; check
        disable posAttr; disable texCoordYAttr; disable texCoordUVAttr; attach 0
        unit 1; bind 0; unit 0; bind 0

        glViewport(0, 0, 3, 3); check; unit 0; check
        bind packed; check; nearest; attach packed; check; clear; bind frame; check; nearest
        glUseProgram(rgbToYuv); glUniform1f(sPerHalfTexel, 0.1); check; glDisable(GL_BLEND)
        point posAttr 16; point texCoordAttr 16; check; enable posAttr; enable texCoordAttr; draw; check
        disable posAttr; disable texCoordAttr; attach 0
        bind packed; nearest; clamp; attach packed
        glReadPixels(0, 0, 3, 3, GL_RGBA, GL_UNSIGNED_BYTE); check; attach 0)"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Conversion, AFailedReadLeavesTheTargetAndTheAlignmentAsTheyAre) {
    staging.pitches[0] = 14;
    gl.raise("glReadPixels", 1, GL_OUT_OF_MEMORY);
    EXPECT_FALSE(read());
    EXPECT_EQ(gl.target().label, "packed");
    EXPECT_EQ(gl.calls({"glPixelStorei"}), "glPixelStorei(GL_PACK_ALIGNMENT, 2)\n");
    EXPECT_THAT(log.texts(), ElementsAre("glReadPixels() failed!"));
}

/// The float nearest to `value` at five decimals.
float rounded(double value) {
    return static_cast<float>(std::round(value * 1e5) / 1e5);
}

TEST_F(Conversion, LoadsColorsOnlyWhenStandardOrRangeChange) {
    // A new pixel format alone keeps the matrix of the earlier one.
    const struct {
        ColorDescription color;
        bool isNV21, isLoaded, hasNV21Matrix;
    } frames[] = {{{-1, -1}, false, true, false}, {{-1, -1}, true, false, false}, {{0, -1}, true, true, true},
                  {{0, -1}, false, false, true},  {{0, 1}, false, true, false},   {{1, 1}, true, true, true},
                  {{7, 1}, true, true, true}};
    for (const auto& [color, isNV21, isLoaded, hasNV21Matrix] : frames) {
        SCOPED_TRACE(testing::Message() << color.colorStandard << ' ' << color.colorRange << ' ' << isNV21);
        gl.clear();
        convert(color, isNV21);
        EXPECT_EQ(gl.calls({"glUniform3fv", "glUniformMatrix3fv", "glUniform4fv"}).empty(), !isLoaded);

        // A standard's weights in luma. Luma spans 255 or 219 codes, chroma 254 or 224.
        const bool isFull = color.colorRange == 1, is601 = color.colorStandard == 0;
        const double r = is601 ? 0.299 : 0.2126, b = is601 ? 0.114 : 0.0722, g = 1 - r - b,
                     luma = (isFull ? 255 : 219) / 255.0, chroma = (isFull ? 254 : 224) / 255.0,
                     u = 2 * (1 - b) / chroma, v = 2 * (1 - r) / chroma;
        const float y = rounded(1 / luma), y0 = isFull ? 0.0f : 16.0f / 255.0f, middle = 128.0f / 255.0f,
                    peak = rounded(chroma / 2);
        Floats matrix = {y, y, y, 0, rounded(-u * b / g), rounded(u), rounded(v), rounded(-v * r / g), 0};
        if (hasNV21Matrix) // V comes first
            std::swap_ranges(matrix.begin() + 3, matrix.begin() + 6, matrix.begin() + 6);
        EXPECT_EQ(gl.uniform("yuvToRgb", "yuvOffset"), (Floats{y0, middle, middle}));
        EXPECT_EQ(gl.uniform("yuvToRgb", "matYuvToRgb"), matrix);
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefY"),
                  (Floats{rounded(r * luma), rounded(g * luma), rounded(b * luma), y0}));
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefU"), (Floats{rounded(-r / u), rounded(-g / u), peak, middle}));
        EXPECT_EQ(gl.uniform("rgbToYuv", "coefV"), (Floats{peak, rounded(-g / v), rounded(-b / v), middle}));
    }
}

TEST_F(Conversion, SetTheAlignmentThatThePitchNeedsAndRestoreIt) {
    const auto alignments = [](const std::string& pack, int alignment) {
        const std::string call = "glPixelStorei(GL_" + pack + "_ALIGNMENT, ";
        return recipe(alignment ? call + std::to_string(alignment) + ");" + call + "4)" : "");
    };
    const struct {
        GLenum format;
        int width, pitch, alignment;
    } cases[] = {{GL_LUMINANCE_ALPHA, 361, 722, 2},
                 {GL_LUMINANCE, 717, 724, 4}, // more padding than alignment can tell
                 {GL_LUMINANCE, 713, 720, 8},
                 {GL_RGBA, 3, 12, 0}};
    for (const auto& c : cases) {
        gl.clear();
        uploadPlane(nullptr, c.pitch, c.format, {c.width, 2}, frame);
        EXPECT_EQ(gl.calls({"glPixelStorei"}), alignments("UNPACK", c.alignment)) << c.width;
    }
    for (const auto& [pitch, alignment] : {std::pair{16, 0}, {13, 1}, {14, 2}}) {
        staging.pitches[0] = pitch;
        gl.clear();
        ASSERT_TRUE(read());
        EXPECT_EQ(gl.calls({"glPixelStorei"}), alignments("PACK", alignment)) << pitch;
    }
    EXPECT_THAT(log.texts(), IsEmpty());
    gl.clear();
    uploadPlane(nullptr, 7, GL_ALPHA, {7, 2}, frame);
    EXPECT_EQ(gl.calls(), "");
    EXPECT_THAT(log.texts(), ElementsAre("Invalid GL image format!"));
}

} // namespace
} // namespace ze
