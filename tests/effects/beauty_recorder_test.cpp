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
    ~Beauty() override { EXPECT_THAT(log.texts(), IsEmpty()); }

    bool render(FrameSize size = {720, 1280}) { return effect->render(source, size, target); }

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
    EXPECT_EQ(gl.calls(), recipe(R"(
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
        disable posAttr; disable texCoordAttr; disable blurTexCoordAttr; attach 0)"));
    EXPECT_THAT(gl.draws, ElementsAre("blur(source) -> intermediate", "mix(source, intermediate) -> target"));
    EXPECT_THAT(gl.uniform("blur", "blurTexelSampleStep"), ElementsAre(1.0f / 240, 0));
    EXPECT_THAT(gl.uniform("mix", "blurTexelSampleStep"), ElementsAre(0, 1.0f / 240));
}

TEST_F(Beauty, ReplacesItsTextureForANewSizeTryingTwiceAndAgainInTheNextFrame) {
    for (const int refusals : {1, 2})
        for (const FrameSize next : {FrameSize{720, 1280}, {5, 3}}) {
            effect.emplace();
            gl.labelTextures({"intermediate"});
            ASSERT_TRUE(render());
            gl.clear();
            for (int nth = 1; nth <= refusals; ++nth)
                gl.refuse("glGenTextures", nth);
            EXPECT_EQ(render({5, 3}), refusals == 1);
            EXPECT_EQ(gl.calls({"glDeleteTextures", "glGenTextures"}),
                      recipe("glDeleteTextures(1, intermediate); glGenTextures(1); glGenTextures(1)"));
            EXPECT_EQ(gl.draws.size(), refusals == 1 ? 2u : 0u);
            gl.clear();
            ASSERT_TRUE(render(next));
            EXPECT_THAT(gl.drawSizes[0], testing::EndsWith(next.width == 5 ? "-> 5x3" : "-> 720x1280"));
        }
    effect.emplace();
    gl.clear();
    gl.refuse("glGenTextures", 1);
    EXPECT_FALSE(render()); // the first texture gets no second try
    EXPECT_TRUE(render());
}

TEST_F(Beauty, DrawsNothingWithoutBothProgramsAndDeletesOneOfThemByName) {
    const std::pair<int, const char*> cases[] = {
        // the program that is refused and what is deleted
        {1, ""},
        {2, "glDeleteProgram(blur)"},
        {0, "glDeleteProgram(blur); glDeleteTextures(1, intermediate)"}};
    for (const auto& [refused, deletions] : cases) {
        SCOPED_TRACE(refused);
        effect.emplace();
        gl.clear();
        gl.refuse("glCreateProgram", refused);
        EXPECT_EQ(render(), refused == 0);
        EXPECT_EQ(gl.draws.empty(), refused != 0);
        gl.clear();
        effect.reset(); // the mix program goes with the context
        EXPECT_EQ(gl.calls(), recipe(deletions));
    }
    effect.emplace();
    gl.refuse("glCreateProgram", 2);
    EXPECT_FALSE(render());
    EXPECT_TRUE(render());
    EXPECT_EQ(gl.calls({"glLinkProgram"}), recipe("glLinkProgram(blur); glLinkProgram(mix)"));
}

} // namespace
} // namespace ze
