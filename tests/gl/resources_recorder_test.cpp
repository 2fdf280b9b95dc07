// Textures, frame buffers and programs: their calls, and what their failures leave behind.

#include "gl/framebuffer.h"
#include "gl/program.h"
#include "gl/texture.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

class GlResources : public testing::Test {
protected:
    GlResources() { gl.makeHostContextCurrent(); }

    GlRecorder gl;
    LogCapture log;
};

TEST_F(GlResources, AreMadeAndLeftBoundAndDeletedByName) {
    GLuint texture = createTexture(5, 3, GL_LUMINANCE_ALPHA), framebuffer = createFramebuffer(), none = 0;
    deleteTexture(&none);
    deleteFramebuffer(&none);
    deleteTexture(&texture);
    deleteFramebuffer(&framebuffer);
    EXPECT_EQ(gl.calls(), recipe(R"(
        glGenTextures(1); bind texture; check
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 5, 3, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null)
        check; clamp
        glGenFramebuffers(1); glBindFramebuffer(GL_FRAMEBUFFER, framebuffer); check
        glDeleteTextures(1, texture); glDeleteFramebuffers(1, framebuffer))"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(GlResources, WithoutANameThereIsNothingToMake) {
    EXPECT_EQ((gl.refuse("glGenTextures", 1), createTexture(5, 3, GL_RGBA)), 0u);
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_EQ((gl.refuse("glGenTextures", 1, GL_OUT_OF_MEMORY), createTexture(5, 3, GL_RGBA)), 0u);
    EXPECT_EQ((gl.refuse("glGenFramebuffers", 1), createFramebuffer()), 0u);
    EXPECT_THAT(log.entries(),
                ElementsAre(LogCapture::Entry{6, "glowfx", "GL error: 0x1285"}, // in decimal digits
                            LogCapture::Entry{6, "glowfx", "Failed to create fbo!"}));
    EXPECT_EQ(gl.calls(), recipe("glGenTextures(1); check; glGenTextures(1); check; glGenFramebuffers(1)"));
}

TEST_F(GlResources, LeavesNothingBehindButTheProgramThatCouldBeBuilt) {
    gl.infoLog = std::string(5000, 'x');
    const struct {
        std::string function;
        int nth;
        std::string message; ///< none where the call is refused rather than in error
    } cases[] = {{"glCreateShader", 1, ""},
                 {"glCreateShader", 2, ""},
                 {"glCompileShader", 1, "Failed to compile vertex shader:\n "},
                 {"glCompileShader", 2, "Failed to compile fragment shader:\n "},
                 {"glCreateProgram", 1, ""},
                 {"glLinkProgram", 1, "Failed to link shader program:\n "},
                 {"none", 1, ""}};
    for (const auto& [function, nth, message] : cases) {
        SCOPED_TRACE(testing::Message() << function << ' ' << nth);
        const bool isError = !message.empty();
        log.clear();
        isError ? gl.raise(function, nth, GL_OUT_OF_MEMORY) : gl.refuse(function, nth);
        EXPECT_EQ(createProgram("uniform lowp float mixFactor;", "") != 0, function == "none");
        EXPECT_EQ(log.texts(), std::vector<std::string>(isError, message + std::string(4095, 'x')));
        EXPECT_EQ(gl.liveObjects(),
                  std::string(function == "none" ? "program mix, " : "") + "hostContext, hostDraw, hostRead");
        gl.clear();
    }
}

} // namespace
} // namespace ze
