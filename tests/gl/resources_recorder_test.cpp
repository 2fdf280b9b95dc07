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
    const std::string start = "glCreateShader(GL_VERTEX_SHADER); glCreateShader(GL_FRAGMENT_SHADER)\n";
    const std::string compileVertex =
        "glShaderSource(vertexShader, 1, null); check; glCompileShader(vertexShader); check\n";
    const std::string compileBoth =
        compileVertex +
        "glShaderSource(fragmentShader, 1, null); check; glCompileShader(fragmentShader); check\n";
    const std::string link = "glCreateProgram(); glAttachShader(program, vertexShader); check\n"
                             "glAttachShader(mix, fragmentShader); check; glLinkProgram(mix); check\n";
    const std::string end = "glDeleteShader(vertexShader); glDeleteShader(fragmentShader)";
    const struct {
        const char* function;
        int nth;
        EGLint error; ///< none: refused
        std::string message, calls;
    } cases[] = {
        {"glCreateShader", 1, 0, "", "glCreateShader(GL_VERTEX_SHADER)"},
        {"glCreateShader", 2, 0, "", start + "glDeleteShader(vertexShader)"},
        {"glCompileShader", 1, GL_INVALID_OPERATION, "Failed to compile vertex shader:\n ",
         start + compileVertex + "glGetShaderInfoLog(vertexShader, 4096)\n" + end},
        {"glCompileShader", 2, GL_INVALID_OPERATION, "Failed to compile fragment shader:\n ",
         start + compileBoth + "glGetShaderInfoLog(fragmentShader, 4096)\n" + end},
        {"glCreateProgram", 1, 0, "", start + compileBoth + "glCreateProgram()\n" + end},
        {"glLinkProgram", 1, GL_OUT_OF_MEMORY, "Failed to link shader program:\n ",
         start + compileBoth + link + "glGetProgramInfoLog(mix, 4096)\n" + end + "; glDeleteProgram(mix)"},
        {"none", 1, 0, "", start + compileBoth + link + end},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.function << ' ' << c.nth);
        gl.clear();
        log.clear();
        c.error ? gl.raise(c.function, c.nth, c.error) : gl.refuse(c.function, c.nth);
        EXPECT_EQ(createProgram("uniform lowp float mixFactor;", "") != 0, c.function == std::string("none"));
        EXPECT_EQ(log.texts(), std::vector<std::string>(c.error ? 1 : 0, c.message + std::string(4095, 'x')));
        EXPECT_EQ(gl.calls(), recipe(c.calls));
    }
}

} // namespace
} // namespace ze
