// The LUT effect: its calls, what it keeps between frames, and its failures.

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

class Lut : public testing::Test {
protected:
    Lut() {
        gl.makeHostContextCurrent();
        createFramebuffer();
        gl.labelTextures({"source", "target"});
        source = createTexture({5, 4}, GL_RGBA);
        target = createTexture({5, 4}, GL_RGBA);
        start({});
    }

    /// A new effect with a file of these levels.
    void start(const std::vector<float>& levels) {
        effect.emplace();
        writeFile(path, LutFile{levels}.fillWithNoise().bytes());
        effect->setParams(CZeString::fromUtf8(levels.empty() ? "" : path.c_str()), 0.75f);
        gl.labelTextures({"lut"});
        gl.clear();
        log.clear();
    }
    bool render() { return effect->render(source, {5, 4}, target); }

    GlRecorder gl;
    LogCapture log;
    TempDirectory directory;
    std::string path = directory / "file.lut";
    GLuint source = 0, target = 0;
    std::optional<CLutEffect> effect;
};

TEST_F(Lut, LoadsItsTableBuildsOneProgramAndKeepsThem) {
    start({0, 0.25f, 0.5f, 0.75f, 1});
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
        bind target; check; nearest; attach target; check; clear; glViewport(0, 0, 5, 4); check
        unit 1; bind lut; check; linear; unit 0; bind source; check; nearest
        point posAttr 16; point texCoordAttr 16; enable posAttr; enable texCoordAttr; draw; check
        disable posAttr; disable texCoordAttr; attach 0)"));
    EXPECT_THAT(gl.draws, ElementsAre("lutRatio(source, lut) -> target"));
}

TEST_F(Lut, DeletesItsTextureAndTheProgramThatItsLevelsAskFor) {
    for (const auto& [middle, program] : {std::pair{0.5f, "lutRatio"}, {0.25f, "lutMapped"}}) {
        start({0, middle, 1});
        ASSERT_TRUE(render());
        gl.clear();
        effect.reset();
        EXPECT_EQ(gl.calls(),
                  recipe("glDeleteTextures(1, lut); glDeleteProgram(" + std::string(program) + ")"));
    }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Lut, TheFirstPathStaysAndTheLastIntensityCounts) {
    start({0, 1});
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
    EXPECT_THAT(log.texts(), ElementsAre("lut path is empty"));
    start({0, 1});
    const std::string good = LutFile{{0, 1}}.fillWithNoise().bytes();
    std::string flat = good;
    putLittleEndian(flat, 20, 4, 0);
    for (const std::string& file : {good.substr(0, 50), flat}) {
        writeFile(path, file);
        EXPECT_FALSE(render());
    }
    EXPECT_THAT(log.texts(), ElementsAre("Failed to read lut level values!", "failed to read lut file",
                                         "we only support 3D lut now"));
}

} // namespace
} // namespace ze
