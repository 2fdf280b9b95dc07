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

constexpr char kHostObjects[] = "hostContext, hostDraw, hostRead";

class GlResources : public testing::Test {
protected:
    GlResources() { gl.makeHostContextCurrent(); }

    GlRecorder gl;
    LogCapture log;
};

TEST_F(GlResources, MakesATextureAndLeavesItBound) {
    GLuint texture = createTexture(5, 3, GL_LUMINANCE_ALPHA);
    EXPECT_EQ(gl.calls(), recipe(R"(
        glGenTextures(1)
        glBindTexture(GL_TEXTURE_2D, texture1); check
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 5, 3, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null); check
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE))"));
    EXPECT_EQ(gl.state(), "active 0, unit 0 texture1, unit 1 -, - to -");

    gl.clear();
    const GLuint name = texture;
    deleteTexture(&texture);
    EXPECT_EQ(texture, name); // its owner overwrites it
    texture = 0;
    deleteTexture(&texture);
    EXPECT_EQ(gl.calls(), recipe("glDeleteTextures(1, texture1)"));
}

TEST_F(GlResources, MakesAFrameBufferAndLeavesItBound) {
    GLuint framebuffer = createFramebuffer();
    EXPECT_EQ(gl.calls(),
              recipe("glGenFramebuffers(1); glBindFramebuffer(GL_FRAMEBUFFER, framebuffer); check"));
    EXPECT_EQ(gl.state(), "active 0, unit 0 -, unit 1 -, framebuffer to -");

    gl.clear();
    const GLuint name = framebuffer;
    deleteFramebuffer(&framebuffer);
    EXPECT_EQ(framebuffer, name);
    framebuffer = 0;
    deleteFramebuffer(&framebuffer);
    EXPECT_EQ(gl.calls(), recipe("glDeleteFramebuffers(1, framebuffer)"));
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

TEST_F(GlResources, ATextureIsMadeWhateverErrorsThereAre) {
    for (const char* function :
         {"glGenTextures", "glBindTexture", "glTexImage2D"}) { // the first is found later
        log.clear();
        gl.raise(function, 1, GL_INVALID_VALUE);
        EXPECT_NE(createTexture(5, 3, GL_RGBA), 0u);
        EXPECT_THAT(log.texts(), ElementsAre("GL error: 0x1281"));
    }
}

TEST_F(GlResources, BuildsAProgramAndKeepsNoShader) {
    EXPECT_NE(createProgram("uniform lowp float mixFactor;", ""), 0u);
    EXPECT_EQ(gl.calls(), recipe(R"(
        glCreateShader(GL_VERTEX_SHADER); glCreateShader(GL_FRAGMENT_SHADER)
        glShaderSource(vertexShader, 1, null); check
        glCompileShader(vertexShader); check
        glShaderSource(fragmentShader, 1, null); check
        glCompileShader(fragmentShader); check
        glCreateProgram()
        glAttachShader(program, vertexShader); check
        glAttachShader(mix, fragmentShader); check
        glLinkProgram(mix); check
        glDeleteShader(vertexShader); glDeleteShader(fragmentShader))"));
    EXPECT_EQ(gl.liveObjects(), "hostContext, program mix, hostDraw, hostRead");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(GlResources, LeavesNothingBehindWhenAProgramCannotBeBuilt) {
    gl.infoLog = std::string(5000, 'x');
    const std::string cutLog(4095, 'x');
    const struct {
        const char* function;
        int nth;
        bool isRefused;
        EGLint error;
        std::vector<std::string> messages;
        const char* lastCalls;
    } cases[] = {
        {"glCreateShader", 1, true, GL_NO_ERROR, {}, "glCreateShader(GL_VERTEX_SHADER)"},
        {"glCreateShader", 2, true, GL_NO_ERROR, {}, "glDeleteShader(vertexShader)"},
        {"glCompileShader",
         1,
         false,
         GL_INVALID_OPERATION,
         {"Failed to compile vertex shader:\n " + cutLog},
         "glCompileShader(vertexShader); check; glGetShaderInfoLog(vertexShader, 4096)\n"
         "glDeleteShader(vertexShader); glDeleteShader(fragmentShader)"},
        {"glCompileShader",
         2,
         false,
         GL_INVALID_OPERATION,
         {"Failed to compile fragment shader:\n " + cutLog},
         "glCompileShader(fragmentShader); check; glGetShaderInfoLog(fragmentShader, 4096)\n"
         "glDeleteShader(vertexShader); glDeleteShader(fragmentShader)"},
        {"glCreateProgram",
         1,
         true,
         GL_NO_ERROR,
         {},
         "glCreateProgram(); glDeleteShader(vertexShader); glDeleteShader(fragmentShader)"},
        {"glLinkProgram",
         1,
         false,
         GL_OUT_OF_MEMORY,
         {"Failed to link shader program:\n " + cutLog},
         "glLinkProgram(program); check; glGetProgramInfoLog(program, 4096)\n"
         "glDeleteShader(vertexShader); glDeleteShader(fragmentShader); glDeleteProgram(program)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.function << ' ' << c.nth);
        gl.clear();
        log.clear();
        c.isRefused ? gl.refuse(c.function, c.nth) : gl.raise(c.function, c.nth, c.error);
        EXPECT_EQ(createProgram("", ""), 0u);
        EXPECT_EQ(log.texts(), c.messages);
        EXPECT_THAT(gl.calls(), testing::EndsWith(recipe(c.lastCalls)));
        EXPECT_EQ(gl.liveObjects(), kHostObjects);
    }
}

} // namespace
} // namespace ze
