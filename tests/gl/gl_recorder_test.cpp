// The double has to see what it is there for.

#include "tests/support/gl_recorder.h"

#include <gtest/gtest-spi.h>

namespace {

class GlRecorderTest : public testing::Test {
protected:
    GlRecorderTest() {
        gl.makeHostContextCurrent();
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    }

    static GLuint makeProgram(const char* source) {
        const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
        glShaderSource(shader, 1, &source, nullptr);
        const GLuint program = glCreateProgram();
        glAttachShader(program, shader);
        glUseProgram(program);
        return program;
    }
    static void attach(GLuint name) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, name, 0);
    }

    inline static GLuint texture = 0, framebuffer = 0;
    GlRecorder gl;
};

TEST_F(GlRecorderTest, FailsTheTestOnMisuse) {
    EXPECT_NONFATAL_FAILURE(glUseProgram(texture), "unknown or deleted name");
    EXPECT_NONFATAL_FAILURE(glClear(GL_COLOR_BUFFER_BIT), "unknown or deleted name 0");
    EXPECT_NONFATAL_FAILURE(glDisableVertexAttribArray(1), "is not enabled");
    EXPECT_NONFATAL_FAILURE(glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 5, 1, GL_RGBA, GL_UNSIGNED_BYTE, nullptr),
                            "does not fit");

    const GLuint first = makeProgram("uniform sampler2D sampler;\nuniform lowp float amount;\n");
    const GLint amount = glGetUniformLocation(first, "amount");
    const GLint sampler = glGetUniformLocation(first, "sampler");
    EXPECT_NONFATAL_FAILURE(glEnableVertexAttribArray(GLuint(amount)), "not of the current program");
    attach(texture);
    glViewport(0, 0, 4, 2);
    EXPECT_NONFATAL_FAILURE(glDrawArrays(GL_TRIANGLE_STRIP, 0, 4), "points nowhere");
    glDisableVertexAttribArray(GLuint(amount));
    glViewport(0, 0, 4, 1);
    EXPECT_NONFATAL_FAILURE(glDrawArrays(GL_TRIANGLE_STRIP, 0, 4), "the viewport is not the whole target");
    glViewport(0, 0, 4, 2);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glUniform1i(sampler, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    EXPECT_NONFATAL_FAILURE(glDrawArrays(GL_TRIANGLE_STRIP, 0, 4), "samples its own target");
    makeProgram("uniform lowp float other;\n");
    EXPECT_NONFATAL_FAILURE(glUniform1f(amount, 1), "not of the current program");

    glDeleteTextures(1, &texture);
    EXPECT_NONFATAL_FAILURE(glDeleteTextures(1, &texture), "unknown or deleted name");
    EXPECT_NONFATAL_FAILURE(attach(texture), "unknown or deleted name");
}

TEST_F(GlRecorderTest, KnowsUndeclaredNamesMissingFiltersAndMissingContexts) {
    const GLuint program = makeProgram("uniform sampler2D sampler;\n");
    static GLuint name;
    name = program;
    EXPECT_NONFATAL_FAILURE(glGetUniformLocation(name, "samplers"), "not declared");
    EXPECT_NONFATAL_FAILURE(glGetAttribLocation(name, "sampler"), "not declared");
    glUniform1i(glGetUniformLocation(program, "sampler"), 0);
    GLuint target = 0;
    glGenTextures(1, &target);
    attach(target);
    glViewport(0, 0, 0, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    EXPECT_NONFATAL_FAILURE(glDrawArrays(GL_TRIANGLE_STRIP, 0, 4), "no levels to filter between");
    const GlRecorder fresh;
    EXPECT_NONFATAL_FAILURE(glViewport(0, 0, 1, 1), "without a current context");
}

} // namespace
