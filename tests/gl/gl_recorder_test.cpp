// The double has to see what it is there for.

#include "tests/support/gl_recorder.h"

#include <gtest/gtest-spi.h>

namespace {

// The macros for expected failures reach static names alone.
GLuint g_texture, g_program;
GLint g_location;

void draw() {
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

TEST(GlRecorderTest, FailsTheTestOnMisuse) {
    GlRecorder gl;
    EXPECT_NONFATAL_FAILURE(glViewport(0, 0, 1, 1), "without a current context");
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    EXPECT_NONFATAL_FAILURE(glClear(GL_COLOR_BUFFER_BIT), "unknown or deleted name 0"); // no target
    glGenTextures(1, &g_texture);
    glBindTexture(GL_TEXTURE_2D, g_texture);
    EXPECT_NONFATAL_FAILURE(glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 5, 1, GL_RGBA, GL_UNSIGNED_BYTE, nullptr),
                            "does not fit");

    EXPECT_NONFATAL_FAILURE(glUseProgram(g_texture), "unknown or deleted name");
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    const char* source = "uniform sampler2D sampler;\n";
    glShaderSource(shader, 1, &source, nullptr);
    g_program = glCreateProgram();
    glAttachShader(g_program, shader);
    EXPECT_NONFATAL_FAILURE(glGetUniformLocation(g_program, "samplers"), "not declared");
    EXPECT_NONFATAL_FAILURE(glGetAttribLocation(g_program, "sampler"), "not declared");
    g_location = glGetUniformLocation(g_program, "sampler");
    EXPECT_NONFATAL_FAILURE(glUniform1i(g_location, 0), "not of the current program");
    glUseProgram(g_program);
    glUniform1i(g_location, 0);
    EXPECT_NONFATAL_FAILURE(glEnableVertexAttribArray(GLuint(g_location)), "not of the current program");
    glDisableVertexAttribArray(GLuint(g_location));
    EXPECT_NONFATAL_FAILURE(glDisableVertexAttribArray(GLuint(g_location)), "is not enabled");

    GLuint target = 0;
    glGenTextures(1, &target);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target, 0);
    glViewport(0, 0, 0, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    EXPECT_NONFATAL_FAILURE(draw(), "not clamped at its edges");
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    draw();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR);
    EXPECT_NONFATAL_FAILURE(draw(), "no levels to filter between");
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glViewport(0, 0, 1, 0);
    EXPECT_NONFATAL_FAILURE(draw(), "the viewport is not the whole target");
    glViewport(0, 0, 0, 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, g_texture, 0);
    EXPECT_NONFATAL_FAILURE(draw(), "samples its own target");

    glDeleteTextures(1, &g_texture);
    EXPECT_NONFATAL_FAILURE(glDeleteTextures(1, &g_texture), "unknown or deleted name");
    EXPECT_NONFATAL_FAILURE(glBindTexture(GL_TEXTURE_2D, g_texture), "unknown or deleted name");
}

} // namespace
