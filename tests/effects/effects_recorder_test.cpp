// The effects: their calls, what they keep between frames, and their failures.

#include "effects/beauty/beauty_effect.h"
#include "effects/lut/lut_effect.h"
#include "gl/framebuffer.h"
#include "gl/texture.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"

#include <cmath>
#include <optional>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

constexpr FrameSize kSize = {720, 1280};

/// With the frame buffer bound and two textures, as the pipeline calls an effect.
template <class Effect>
class EffectTest : public testing::Test {
protected:
    EffectTest() {
        gl.makeHostContextCurrent();
        createFramebuffer();
        gl.labelTextures({"source", "target"});
        source = createTexture(kSize, GL_RGBA);
        target = createTexture(kSize, GL_RGBA);
        start();
    }

    /// A new effect, whose first texture is called "own".
    void start() {
        effect.emplace();
        gl.labelTextures({"own"});
        gl.clear();
    }
    bool render(FrameSize size = kSize) { return effect->render(source, size, target); }

    GlRecorder gl;
    LogCapture log;
    GLuint source = 0, target = 0;
    std::optional<Effect> effect;
};

class Beauty : public EffectTest<BeautyEffect> {
protected:
    ~Beauty() override { EXPECT_THAT(log.texts(), IsEmpty()); }
};

TEST_F(Beauty, IsActiveAboveOneThresholdAndFromTheOtherOn) {
    const float nan = std::nanf("");
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
        unit 0; bind own; check; nearest; attach own; check; clear
        bind source; check; linear; clamp; glUseProgram(blur); check
        glUniform2fv(blurTexelSampleStep, 1); glUniform1f(distanceNormalizationFactor, 4); check
        point posAttr 16; point texCoordAttr 16; enable posAttr; enable texCoordAttr; draw; check
        disable posAttr; disable texCoordAttr; attach 0

        bind target; check; nearest; attach target; check; clear
        unit 1; bind own; check; linear; clamp; check; unit 0; bind source; check; linear; clamp; check
        glUseProgram(mix); check; glUniform2fv(blurTexelSampleStep, 1)
        glUniform1f(distanceNormalizationFactor, 4)
        glUniform1f(mixFactor, 0.75); glUniform1f(whitenFactor, -2); check
        point posAttr 24; point texCoordAttr 24; point blurTexCoordAttr 24; check
        enable posAttr; enable texCoordAttr; enable blurTexCoordAttr; check; draw; check
        disable posAttr; disable texCoordAttr; disable blurTexCoordAttr; attach 0)"));
    EXPECT_THAT(gl.uniform("blur", "blurTexelSampleStep"), ElementsAre(1.0f / 240, 0));
    EXPECT_THAT(gl.uniform("mix", "blurTexelSampleStep"), ElementsAre(0, 1.0f / 240));
}

TEST_F(Beauty, ReplacesItsTextureForANewSizeTryingTwiceAndAgainInTheNextFrame) {
    for (const int refusals : {1, 2})
        for (const FrameSize next : {kSize, {5, 3}}) {
            start();
            ASSERT_TRUE(render());
            gl.clear();
            for (int nth = 1; nth <= refusals; ++nth)
                gl.refuse("glGenTextures", nth);
            EXPECT_EQ(render({5, 3}), refusals == 1);
            EXPECT_EQ(gl.calls({"glDeleteTextures", "glGenTextures"}),
                      recipe("glDeleteTextures(1, own); glGenTextures(1); glGenTextures(1)"));
            EXPECT_EQ(gl.draws.empty(), refusals == 2);
            gl.clear();
            ASSERT_TRUE(render(next));
            EXPECT_EQ(gl.draws[0], next == kSize ? "blur(source) -> 720x1280" : "blur(source) -> 5x3");
        }
    start();
    gl.refuse("glGenTextures", 1);
    EXPECT_FALSE(render()); // the first texture gets no second try
    EXPECT_TRUE(render());
}

TEST_F(Beauty, DrawsNothingWithoutBothProgramsAndDeletesOneOfThemByName) {
    const std::pair<int, const char*> cases[] = {// the program that is refused and what is deleted
                                                 {1, ""},
                                                 {2, "glDeleteProgram(blur)"},
                                                 {0, "glDeleteProgram(blur); glDeleteTextures(1, own)"}};
    for (const auto& [refused, deletions] : cases) {
        SCOPED_TRACE(refused);
        start();
        gl.refuse("glCreateProgram", refused);
        EXPECT_EQ(render(), refused == 0);
        EXPECT_EQ(gl.draws.empty(), refused != 0);
        gl.clear();
        effect.reset(); // the mix program goes with the context
        EXPECT_EQ(gl.calls(), recipe(deletions));
    }
    start();
    gl.refuse("glCreateProgram", 2);
    EXPECT_FALSE(render());
    EXPECT_TRUE(render());
    EXPECT_EQ(gl.calls({"glLinkProgram"}), recipe("glLinkProgram(blur); glLinkProgram(mix)"));
}

class Lut : public EffectTest<CLutEffect> {
protected:
    /// A new effect with a file of these levels.
    void startWith(const std::vector<float>& levels) {
        start();
        writeFile(path, LutFile{levels}.fillWithNoise().bytes());
        effect->setParams(CZeString::fromUtf8(path.c_str()), 0.75f);
    }

    TempDirectory directory;
    std::string path = directory / "file.lut";
};

TEST_F(Lut, LoadsItsTableBuildsOneProgramAndKeepsThem) {
    startWith({0, 0.25f, 0.5f, 0.75f, 1});
    ASSERT_TRUE(render());
    EXPECT_EQ(gl.calls({"glTexImage2D", "glTexSubImage2D", "glUniform1i"}), recipe(R"(
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 25, 5, 0, GL_RGB, GL_UNSIGNED_BYTE, null)
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 25, 5, GL_RGB, GL_UNSIGNED_BYTE)
        glUniform1i(sampler, 0); glUniform1i(lutSampler, 1))"));
    gl.clear();
    std::filesystem::remove(path);
    ASSERT_TRUE(render());
    EXPECT_EQ(gl.calls(), recipe(R"(
        glUseProgram(lutRatio); check; glUniform1f(texelSize1D, 0.2)
        glUniform1f(rgbToTexCoordRatio, 0.8); glUniform1f(intensity, 0.75)
        bind target; check; nearest; attach target; check; clear; glViewport(0, 0, 720, 1280); check
        unit 1; bind own; check; linear; unit 0; bind source; check; nearest
        point posAttr 16; point texCoordAttr 16; enable posAttr; enable texCoordAttr; draw; check
        disable posAttr; disable texCoordAttr; attach 0)"));
}

TEST_F(Lut, DeletesItsTextureAndTheProgramThatItsLevelsAskFor) {
    for (const auto& [middle, program] : {std::pair{0.5f, "lutRatio"}, {0.25f, "lutMapped"}}) {
        startWith({0, middle, 1});
        ASSERT_TRUE(render());
        gl.clear();
        effect.reset();
        EXPECT_EQ(gl.calls(),
                  recipe("glDeleteTextures(1, own); glDeleteProgram(" + std::string(program) + ")"));
    }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Lut, TheFirstPathStaysAndTheLastIntensityCounts) {
    startWith({0, 1});
    effect->setParams(CZeString(), -2.5f); // as it is
    EXPECT_THAT(log.texts(), ElementsAre("Lut path is already setted."));
    EXPECT_TRUE(render());
    EXPECT_THAT(gl.uniform("lutRatio", "intensity"), ElementsAre(-2.5f));
    EXPECT_FALSE(effect->isActive());
    effect->setParams(CZeString(), std::nanf(""));
    EXPECT_FALSE(effect->isActive());
}

TEST_F(Lut, TellsWhatIsWrongWithItsTable) {
    EXPECT_FALSE(render());
    startWith({0, 1});
    const std::string good = ::contentOf(path);
    std::string flat = good;
    putLittleEndian(flat, 20, 4, 0);
    for (const std::string& file : {good.substr(0, 50), flat}) {
        writeFile(path, file);
        EXPECT_FALSE(render());
    }
    writeFile(path, good);
    for (const char* const refused : {"glGenTextures", "glCreateProgram"}) {
        gl.refuse(refused, 1);
        EXPECT_FALSE(render());
    }
    EXPECT_TRUE(render());
    EXPECT_THAT(log.texts(), ElementsAre("lut path is empty", "Failed to read lut level values!",
                                         "failed to read lut file", "we only support 3D lut now",
                                         "failed to allocate texture", "Failed to prepare 3d lut program"));
}

} // namespace
} // namespace ze
