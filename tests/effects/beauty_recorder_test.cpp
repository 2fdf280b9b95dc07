// The beauty effect: its calls, what it keeps between frames, and its failures.

#include "effects/beauty/beauty_effect.h"
#include "gl/framebuffer.h"
#include "gl/texture.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <cmath>
#include <limits>
#include <optional>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

class Beauty : public testing::Test {
protected:
    Beauty() {
        gl.makeHostContextCurrent();
        createFramebuffer();
        gl.labelTextures({"source", "target", "intermediate"});
        source = createTexture({720, 1280}, GL_RGBA);
        target = createTexture({720, 1280}, GL_RGBA);
        gl.clear();
        effect.emplace();
    }

    bool render() { return effect->render(source, {720, 1280}, target); }
    bool renderSmall() { return effect->render(source, {5, 3}, target); }

    GlRecorder gl;
    LogCapture log;
    GLuint source = 0, target = 0;
    std::optional<BeautyEffect> effect;
};

TEST_F(Beauty, IsActiveAboveOneThresholdAndFromTheOtherOn) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float below = std::nextafter(0.001f, 0.0f); // 0.001f itself widens to more than 0.001
    const struct {
        float mix, whiten;
        bool isActive;
    } cases[] = {{below, below, false}, {0.001f, 0, true}, {0, 0.001f, true},
                 {-1, -1, false},       {nan, 0, true},    {0, nan, true}};
    EXPECT_FALSE(effect->isActive());
    for (const auto& c : cases) {
        effect->setParams(c.mix, c.whiten);
        EXPECT_EQ(effect->isActive(), c.isActive) << c.mix << ' ' << c.whiten;
    }
}

const char kDraws[] = R"(
    glViewport(0, 0, 720, 1280); check; glDisable(GL_BLEND)
    unit 0; bind intermediate; check; nearest; attach intermediate; check; clear
    bind source; check; linear; clamp; glUseProgram(blur); check
    glUniform2fv(blurTexelSampleStep, 1); glUniform1f(distanceNormalizationFactor, 4); check
    point posAttr 16; point texCoordAttr 16; enable posAttr; enable texCoordAttr; draw; check
    disable posAttr; disable texCoordAttr; attach 0

    bind target; check; nearest; attach target; check; clear
    unit 1; bind intermediate; check; linear; clamp; check; unit 0; bind source; check; linear; clamp; check
    glUseProgram(mix); check; glUniform2fv(blurTexelSampleStep, 1)
    glUniform1f(distanceNormalizationFactor, 4)
    glUniform1f(mixFactor, 0.75); glUniform1f(whitenFactor, -2); check
    point posAttr 24; point texCoordAttr 24; point blurTexCoordAttr 24; check
    enable posAttr; enable texCoordAttr; enable blurTexCoordAttr; check; draw; check
    disable posAttr; disable texCoordAttr; disable blurTexCoordAttr; attach 0)";

TEST_F(Beauty, BuildsBothProgramsAndItsTextureOnceAndBlursTwice) {
    ASSERT_TRUE(render());
    EXPECT_EQ(gl.calls({"glUniform1i", "glUniform1fv", "glUseProgram", "glTexImage2D"}), recipe(R"(
        glUseProgram(blur); glUniform1i(sampler, 0); glUniform1fv(gaussianWeight, 7); glUseProgram(0)
        glUseProgram(mix); glUniform1i(originalSampler, 0); glUniform1i(blurSampler, 1)
        glUniform1fv(gaussianWeight, 7); glUseProgram(0)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 720, 1280, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)
        glUseProgram(blur); glUseProgram(mix))"));

    gl.clear();
    effect->setParams(0.75f, -2); // as they are
    ASSERT_TRUE(render());
    EXPECT_EQ(gl.calls(), recipe(kDraws));
    EXPECT_THAT(gl.drawTexts(),
                ElementsAre("blur(source) -> intermediate", "mix(source, intermediate) -> target"));
    EXPECT_FLOAT_EQ(blurSampleStep({5, 3}), 5.0f / 45 / 3 / 3);
    EXPECT_FLOAT_EQ(blurSampleStep({1, 16384}), 1.0f / 135 / 16384);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Beauty, ReplacesItsTextureForANewSizeTryingTwiceAndAgainInTheNextFrame) {
    const char* const first = "glGenTextures(1)";
    const char* const again = "glDeleteTextures(1, intermediate); glGenTextures(1); glGenTextures(1)";
    const struct {
        bool isFirst;
        int refusals;
        bool isRendered;
        const char* calls;
    } cases[] = {{true, 1, false, first}, {false, 1, true, again}, {false, 2, false, again}};
    for (const auto& c : cases)
        for (bool returnsToOldSize : {false, true}) {
            effect.emplace();
            gl.labelTextures({"intermediate"});
            EXPECT_TRUE(c.isFirst || render());
            gl.clear();
            for (int nth = 1; nth <= c.refusals; ++nth)
                gl.refuse("glGenTextures", nth);
            EXPECT_EQ(renderSmall(), c.isRendered) << c.refusals;
            EXPECT_EQ(gl.calls({"glDeleteTextures", "glGenTextures"}), recipe(c.calls));
            EXPECT_EQ(gl.draws().size(), c.isRendered ? 2u : 0u);
            gl.clear();
            ASSERT_TRUE(returnsToOldSize ? render() : renderSmall());
            EXPECT_THAT(gl.draws()[0].sizes, testing::EndsWith(returnsToOldSize ? "-> 720x1280" : "-> 5x3"));
        }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Beauty, DrawsNothingWithoutBothProgramsAndDeletesOneOfThemByName) {
    const struct {
        int refused;
        const char* deletions;
    } cases[] = {{1, ""},
                 {2, "glDeleteProgram(blur)"},
                 {0, "glDeleteProgram(blur); glDeleteTextures(1, intermediate)"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.refused);
        effect.emplace();
        gl.clear();
        gl.refuse("glCreateProgram", c.refused);
        EXPECT_EQ(render(), c.refused == 0);
        EXPECT_EQ(gl.draws().empty(), c.refused != 0);
        gl.clear();
        effect.reset(); // the mix program goes with the context
        EXPECT_EQ(gl.calls(), recipe(c.deletions));
    }
    effect.emplace();
    gl.refuse("glCreateProgram", 2);
    EXPECT_FALSE(render());
    EXPECT_TRUE(render());
    EXPECT_EQ(gl.calls({"glLinkProgram"}), recipe("glLinkProgram(blur); glLinkProgram(mix)"));
}

} // namespace
} // namespace ze
